#include "dialogs/dialog.h"

#include <stdexcept>

#include "base/resources.h"
#include "dialogs/run.h"
#include "dialogs/styles.h"
#include "dialogs/text_editing.h"

namespace dialogs {

// ---- contents of rich edits

RichText::~RichText() = default;
std::wstring RichText::copy(std::size_t begin, std::size_t end) { return text().substr(begin, end - begin); }
void RichText::paste(std::size_t begin, std::size_t end, std::wstring_view copied) { replace(begin, end, copied); }
std::vector<MenuEntry> RichText::menu(const TextSelection&) const { return {}; }
bool RichText::onMenu(int, TextSelection&) { return false; }

// ---- the state of a control

Control::Control(Dialog& owner, const ControlTemplate& design_)
    : dialog(&owner),
      design(&design_),
      text(design_.caption),
      visible((design_.style & kVisibleStyle) != 0),
      enabled((design_.style & kDisabledStyle) == 0) {
    readOnly = isText() && (design_.style & kReadOnlyStyle) != 0;
}

bool Control::isField() const {
    switch (kind()) {
        case ControlKind::kEdit:
        case ControlKind::kRichEdit:
        case ControlKind::kListBox:
        case ControlKind::kCombo:
        case ControlKind::kEditCombo:
        case ControlKind::kListView:
            return true;
        default:
            return false;
    }
}

bool Control::isMultiLine() const { return isText() && !richText && (design->style & kMultiLineStyle) != 0; }

bool Control::isDefaultButton() const {
    return kind() == ControlKind::kButton && (design->style & kButtonTypeMask) == kDefaultButtonType;
}

// ---- resources

ResourceScope::ResourceScope(base::ModuleHandle resources) : before_(Process::instance().resources) {
    Process::instance().resources = resources;
    useSystemLocale();
}

ResourceScope::~ResourceScope() { Process::instance().resources = before_; }

base::ModuleHandle ResourceScope::current() { return Process::instance().resources; }

// ---- the dialog

Dialog::Dialog(int templateId) : resources_(ResourceScope::current()), templateId_(templateId) {
    const base::ResourceBytes bytes =
        base::findResource(resources_, base::kDialogResource, static_cast<std::uint16_t>(templateId));
    if (bytes.empty())
        throw std::runtime_error("there is no dialog " + std::to_string(templateId) + " in the resources in force");
    design_ = readDialogTemplate(bytes);
    title_ = design_.caption;
    for (const ControlTemplate& design : design_.controls)
        controls_.push_back(std::make_unique<Control>(*this, design));
}

Dialog::~Dialog() = default;

int Dialog::runModal() {
    if (run_) throw std::logic_error("a dialog is run while it is open");
    return Run(*this).execute();
}

void Dialog::end(int code) {
    if (run_) run_->end(code);
}

bool Dialog::isOpen() const { return run_ != nullptr; }

void* Dialog::window() const { return run_ && run_->view() ? run_->view()->window() : nullptr; }

Run* Dialog::run() const { return run_; }

bool Dialog::owns(int id) const {
    for (const auto& candidate : controls_)
        if (candidate->id() == id) return true;
    return false;
}

Control& Dialog::control(int id) {
    for (const auto& candidate : controls_)
        if (candidate->id() == id) return *candidate;
    throw std::out_of_range("dialog " + std::to_string(templateId_) + " has no control " + std::to_string(id));
}

const Control& Dialog::control(int id) const { return const_cast<Dialog*>(this)->control(id); }

namespace {

void changed(Control& control, Aspect aspect) {
    Run* const run = control.dialog->run();
    if (!run) return;
    if (aspect == Aspect::kRows || aspect == Aspect::kChoices) run->itemsChanged();
    if (run->view()) run->view()->changed(control, aspect);
}

}  // namespace

void Dialog::setTitle(std::wstring_view title) {
    title_ = title;
    if (run_ && run_->view()) run_->view()->titleChanged();
}

void Dialog::setText(int id, std::wstring_view text) {
    Control& target = control(id);
    target.text = text;
    target.selection = {};
    if (target.kind() == ControlKind::kEditCombo) target.selected = findChoice(id, text);
    changed(target, Aspect::kText);
}

void Dialog::enable(int id, bool on) {
    Control& target = control(id);
    target.enabled = on;
    changed(target, Aspect::kEnabled);
}

void Dialog::show(int id, bool on) {
    Control& target = control(id);
    target.visible = on;
    changed(target, Aspect::kVisible);
}

void Dialog::setTooltip(int id, std::wstring_view text) {
    control(id).tooltip = text;
    changed(control(id), Aspect::kExtras);
}

void Dialog::setPicture(int id, int icon) {
    control(id).picture = icon;
    changed(control(id), Aspect::kExtras);
}

void Dialog::focus(int id) {
    Control& target = control(id);
    if (run_)
        run_->setFocus(&target);
    else
        firstFocus_ = id;
}

int Dialog::focused() const {
    const Control* const focus = run_ ? run_->focus() : nullptr;
    return focus && focus->dialog == this ? focus->id() : 0;
}

void Dialog::setChecked(int id, bool on) {
    Control& target = control(id);
    if (target.kind() == ControlKind::kRadio && on) {
        markRadio(target);
        for (Control* other : radioGroup(target)) changed(*other, Aspect::kChecked);
    } else {
        target.checked = on;
        changed(target, Aspect::kChecked);
    }
}

void Dialog::setSelection(int id, TextSelection selection) {
    Control& target = control(id);
    target.selection = selection;
    snapSelection(target);
    changed(target, Aspect::kSelection);
}

void Dialog::selectAll(int id) { setSelection(id, {0, control(id).text.size()}); }

void Dialog::setReadOnly(int id, bool on) {
    control(id).readOnly = on;
    changed(control(id), Aspect::kReadOnly);
}

void Dialog::setRichText(int id, RichText* contents) {
    Control& target = control(id);
    target.richText = contents;
    target.selection = {};
    if (!contents) target.text.clear();
    refreshRichText(id);
}

void Dialog::refreshRichText(int id) {
    refreshFromRichText(control(id));
    changed(control(id), Aspect::kText);
}

int Dialog::addChoice(int id, std::wstring_view text, std::intptr_t data) {
    Control& target = control(id);
    target.choices.push_back({std::wstring(text), data, std::nullopt});
    changed(target, Aspect::kChoices);
    return static_cast<int>(target.choices.size()) - 1;
}

void Dialog::clearChoices(int id) {
    Control& target = control(id);
    target.choices.clear();
    target.selected = -1;
    if (target.kind() == ControlKind::kCombo) target.text.clear();
    changed(target, Aspect::kChoices);
}

void Dialog::setSwatch(int id, int choice, std::uint32_t rgb) {
    control(id).choices.at(choice).swatch = rgb;
    changed(control(id), Aspect::kChoices);
}

int Dialog::findChoice(int id, std::wstring_view text) const {
    const std::vector<Choice>& choices = control(id).choices;
    for (std::size_t i = 0; i < choices.size(); ++i)
        if (choices[i].text == text) return static_cast<int>(i);
    return -1;
}

int Dialog::findChoiceData(int id, std::intptr_t data) const {
    const std::vector<Choice>& choices = control(id).choices;
    for (std::size_t i = 0; i < choices.size(); ++i)
        if (choices[i].data == data) return static_cast<int>(i);
    return -1;
}

void Dialog::select(int id, int item) {
    Control& target = control(id);
    if (item < -1 || item >= target.itemCount())
        throw std::out_of_range("control " + std::to_string(id) + " has no item " + std::to_string(item));
    if (target.kind() == ControlKind::kTab && run_ && run_->view()) {
        target.selected = item;
        return run_->pageChosen(target);
    }
    target.selected = item;
    if (target.kind() == ControlKind::kCombo || (target.kind() == ControlKind::kEditCombo && item >= 0)) {
        target.text = item < 0 ? std::wstring() : target.choices[item].text;
        target.selection = {};
    }
    changed(target, Aspect::kSelection);
}

void Dialog::setColumns(int id, std::vector<Column> columns) {
    Control& list = control(id);
    list.columns = std::move(columns);
    for (Row& row : list.rows) row.cells.resize(std::max(row.cells.size(), list.columns.size()));
    changed(list, Aspect::kColumns);
}

int Dialog::listWidth(int id) const {
    const Control& list = control(id);
    if (run_ && run_->view()) return run_->view()->listWidth(list);
    return list.design->place.width * 3 / 2;  // what dialog units come to with the usual font
}

void Dialog::setRows(int id, std::vector<Row> rows) {
    Control& list = control(id);
    for (Row& row : rows) row.cells.resize(std::max(row.cells.size(), list.columns.size()));
    list.rows = std::move(rows);
    list.selected = -1;
    changed(list, Aspect::kRows);
}

void Dialog::setCell(int id, int row, int column, std::wstring_view text) {
    control(id).rows.at(row).cells.at(column) = text;
    changed(control(id), Aspect::kRows);
}

void Dialog::addPage(int id, std::wstring_view title, Dialog& page) {
    Control& tab = control(id);
    tab.choices.push_back({std::wstring(title), 0, std::nullopt});
    tab.pages.push_back(&page);
    if (tab.selected < 0) tab.selected = 0;
    page.parent_ = this;
    changed(tab, Aspect::kPages);
}

}  // namespace dialogs
