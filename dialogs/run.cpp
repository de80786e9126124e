#include "dialogs/run.h"

#include <algorithm>
#include <utility>

#include "base/format.h"
#include "base/number.h"
#include "base/text.h"
#include "dialogs/recording.h"
#include "dialogs/styles.h"
#include "dialogs/text_editing.h"

namespace dialogs {

Run::Run(Dialog& root) : root_(root), outer_(Process::instance().current) {
    attach(root_, this);
    Process::instance().current = this;
}

Run::~Run() {
    recording().ends();
    Process::instance().current = outer_;
    attach(root_, nullptr);
}

void Run::attach(Dialog& dialog, Run* run) {
    dialog.run_ = run;
    dialog.initialized_ = false;
    for (const auto& control : dialog.controls_)
        for (Dialog* page : control->pages) attach(*page, run);
}

template <class Handler>
void Run::call(Dialog& dialog, Handler handler) {
    if (hasEnded()) return;
    {
        const ResourceScope scope(dialog.resources_);
        handler(dialog);
    }
    moveFocusOn();
}

// A control that was disabled or hidden must not keep the focus: no key would reach the dialog.
void Run::moveFocusOn() {
    if (!hasEnded() && focus_ && !(focus_->canHaveFocus() && isShown(*focus_))) setFocus(nextInTabOrder(false));
}

namespace {

// "left,top,width,height" in pixels; the size is the template's and only tells what was there.
void restorePlacement(View& view, const std::wstring& placement) {
    const std::vector<std::wstring> numbers = base::split(placement, L',');
    if (numbers.size() != 4) return;
    const auto left = base::parseInteger(std::wstring_view(numbers[0]));
    const auto top = base::parseInteger(std::wstring_view(numbers[1]));
    if (left && top) view.movePlace(static_cast<int>(*left), static_cast<int>(*top));
}

std::wstring placementOf(View& view) {
    const PixelRect place = view.place();
    return base::format(L"%d,%d,%d,%d", place.left, place.top, place.width, place.height);
}

}  // namespace

int Run::execute() {
    recording().flush();
    view_ = Process::instance().maker->makeView(*this);
    initialize(root_);
    restorePlacement(*view_, root_.savedPlacement());
    if (!hasEnded() && !focus_) {
        const int wantedId = std::exchange(root_.firstFocus_, 0);
        Control* const wanted = wantedId != 0 ? &root_.control(wantedId) : nullptr;
        Control* const first = wanted && isShown(*wanted) && wanted->canHaveFocus() ? wanted : nextInTabOrder(false);
        setFocus(first);
    }
    if (!hasEnded()) view_->work();
    root_.savePlacement(placementOf(*view_));
    view_.reset();
    return result_.value_or(kCancelButton);
}

void Run::initialize(Dialog& dialog) {
    dialog.initialized_ = true;
    call(dialog, [](Dialog& opened) { opened.onInit(); });
    for (const auto& control : dialog.controls_)
        if (!control->pages.empty()) initializePage(*control);
}

void Run::initializePage(Control& tab) {
    if (tab.selected < 0) tab.selected = 0;
    Dialog& page = *tab.pages.at(tab.selected);
    if (page.run_ != this) attach(page, this);        // added during this run
    if (focus_ && !isShown(*focus_)) setFocus(&tab);  // it was on the page shown before
    view_->pageShown(tab);
    if (!page.initialized_) initialize(page);
}

void Run::end(int code) {
    if (!result_) result_ = code;
}

void Run::setFocus(Control* control) {
    focus_ = control;
    if (view_) view_->showFocus(control);
}

// ---- the controls that are shown

void Run::appendShown(Dialog& dialog, std::vector<Control*>& found, const Control* alsoHidden) {
    for (const auto& control : dialog.controls_) {
        if (!control->visible && control.get() != alsoHidden) continue;
        found.push_back(control.get());
        if (control->selected >= 0 && control->selected < static_cast<int>(control->pages.size()))
            appendShown(*control->pages[control->selected], found, alsoHidden);
    }
}

std::vector<Control*> Run::shownControls() {
    std::vector<Control*> found;
    appendShown(root_, found, nullptr);
    return found;
}

bool Run::isShown(const Control& control) {
    const std::vector<Control*> shown = shownControls();
    return std::find(shown.begin(), shown.end(), &control) != shown.end();
}

namespace {

// The Tab key stops at one radio button of a group: the marked one, or the first when none is.
bool isTabStop(Control& control) {
    if (!control.canHaveFocus()) return false;
    if (control.kind() != ControlKind::kRadio) return (control.design->style & kTabStopStyle) != 0;
    const std::vector<Control*> group = radioGroup(control);
    const auto marked = std::find_if(group.begin(), group.end(), [](Control* c) { return c->checked; });
    return (marked == group.end() ? group.front() : *marked) == &control;
}

}  // namespace

Control* Run::nextInTabOrder(bool backwards) {
    std::vector<Control*> shown;
    appendShown(root_, shown, focus_);  // also from where it cannot stay
    if (backwards) std::reverse(shown.begin(), shown.end());
    const auto at = std::find(shown.begin(), shown.end(), focus_);
    if (at != shown.end()) std::rotate(shown.begin(), at + 1, shown.end());
    const auto next = std::find_if(shown.begin(), shown.end(), [](Control* c) { return isTabStop(*c); });
    return next == shown.end() ? nullptr : *next;
}

Control* Run::buttonOfEnter() {
    if (focus_ && focus_->isButton()) return focus_;
    for (const auto& control : root_.controls_)
        if (control->isDefaultButton() && control->visible) return control.get();
    return findButton(kOkButton);
}

Control* Run::findButton(int id) { return root_.owns(id) ? &root_.control(id) : nullptr; }

std::vector<Control*> groupOf(Control& member, const std::function<bool(const Control&)>& kind) {
    auto& all = member.dialog->controls();
    const auto startsGroup = [](const auto& control) { return (control->design->style & kGroupStyle) != 0; };
    auto end = std::find_if(all.begin(), all.end(), [&](const auto& control) { return control.get() == &member; });
    auto begin = end;
    while (begin != all.begin() && !startsGroup(*begin)) --begin;
    for (++end; end != all.end() && !startsGroup(*end);) ++end;
    std::vector<Control*> group;
    for (; begin != end; ++begin)
        if (kind(**begin)) group.push_back(begin->get());
    return group;
}

std::vector<Control*> radioGroup(Control& radio) {
    return groupOf(
        radio, [](const Control& control) { return control.kind() == ControlKind::kRadio; });
}

void markRadio(Control& radio) {
    for (Control* other : radioGroup(radio)) other->checked = other == &radio;
}

// ---- leaving a field

Run::Leave Run::mayLeave(Control& from, Control* next) {
    if (hasEnded()) return Leave::kInterrupted;
    if (&from == next) return Leave::kFree;
    const int boxesBefore = Process::instance().boxesShown;
    bool may = true;
    call(*from.dialog, [&](Dialog& dialog) { may = dialog.onLeave(from.id(), next ? next->id() : 0); });
    if (hasEnded()) return Leave::kInterrupted;
    if (!may) {
        if (from.isTyped()) from.selection = {0, from.text.size()};
        return Leave::kRefused;
    }
    return Process::instance().boxesShown != boxesBefore ? Leave::kInterrupted : Leave::kFree;
}

// ---- what the user did

void Run::pressed(Control& control) {
    const bool ownButton = control.dialog == &root_ && control.kind() == ControlKind::kButton;
    if (ownButton && control.id() == kOkButton)
        call(root_, [](Dialog& dialog) { dialog.onOk(); });
    else if (ownButton && control.id() == kCancelButton)
        cancelled();
    else if (ownButton && control.id() == kHelpButton)
        helpWanted();
    else
        call(*control.dialog, [&](Dialog& dialog) { dialog.onCommand(control.id(), Event::kPressed); });
}

void Run::edited(Control& control) {
    control.modified = true;
    call(*control.dialog, [&](Dialog& dialog) { dialog.onCommand(control.id(), Event::kEdited); });
}

void Run::chosen(Control& control) {
    control.modified = true;
    call(*control.dialog, [&](Dialog& dialog) { dialog.onCommand(control.id(), Event::kChosen); });
}

void Run::rowSelected(Control& list) {
    call(
        *list.dialog, [&](Dialog& dialog) { dialog.onSelect(list.id(), list.selected); });
}

void Run::doubleClicked(Control& list, int row) {
    call(
        *list.dialog, [&](Dialog& dialog) { dialog.onDoubleClick(list.id(), row); });
}

void Run::pageChosen(Control& tab) {
    if (hasEnded()) return;
    if (!tab.pages.empty()) initializePage(tab);
    call(*tab.dialog, [&](Dialog& dialog) { dialog.onPage(tab.id(), tab.selected); });
}

void Run::cancelled() {
    call(
        root_, [](Dialog& dialog) { dialog.onCancel(); });
}

void Run::helpWanted() {
    call(
        root_, [](Dialog& dialog) { dialog.onHelp(); });
}

std::vector<MenuEntry> Run::menuOf(Control& control) {
    if (control.richText) return control.richText->menu(control.selection);
    std::vector<MenuEntry> entries;
    call(*control.dialog, [&](Dialog& dialog) { entries = dialog.menuOf(control.id()); });
    return entries;
}

void Run::menuChosen(Control& control, int command) {
    recording().choosesEntry(*this, control, command);
    if (!control.richText) return call(*control.dialog, [&](Dialog& dialog) { dialog.onMenu(control.id(), command); });
    bool isEdited = false;
    call(*control.dialog, [&](Dialog&) { isEdited = control.richText->onMenu(command, control.selection); });
    refreshFromRichText(control);
    recording().choseEntry(control);
    view_->changed(control, Aspect::kText);
    if (isEdited) edited(control);
}

}  // namespace dialogs
