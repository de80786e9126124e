#include "dialogs/recording.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "dialogs/boxes.h"
#include "dialogs/form_names.h"
#include "dialogs/maker.h"

namespace dialogs {
namespace {

bool isList(const Control& control) {
    return control.kind() == ControlKind::kListView || control.kind() == ControlKind::kListBox;
}

// Who the lines with a verb look among.
bool isField(const Control& control) { return control.isField(); }
bool isTyped(const Control& control) { return control.isTyped(); }
bool isButton(const Control& control) { return control.isButton(); }
bool isCheck(const Control& control) { return control.kind() == ControlKind::kCheck; }
bool takesFocus(const Control& control) { return control.takesFocus(); }

std::wstring fieldName(Run& run, const Control& field) { return distinctName(run, field, isField); }

std::wstring pressing(Run& run, const Control& button) {
    if (button.isButton()) return L"press " + distinctName(run, button, isButton);
    if (isCheck(button) && button.checked) return L"uncheck " + distinctName(run, button, isCheck);
    return L"check " + distinctName(run, button, [](const Control& control) { return control.isCheckable(); });
}

std::wstring showing(const Control& tab, int page) { return L"tab " + plainName(tab.choices.at(page).text); }

std::wstring focusing(Run& run, const Control& control) {
    if (control.kind() == ControlKind::kTab && control.selected >= 0) return showing(control, control.selected);
    return L"focus " + distinctName(run, control, takesFocus);
}

std::wstring selecting(Run& run, const Control& field) {
    const TextSelection& selection = field.selection;
    std::wstring line = L"caret " + distinctName(run, field, isTyped) + L" " + std::to_wstring(selection.anchor);
    return selection.isEmpty() ? line : line + L" " + std::to_wstring(selection.caret);
}

std::wstring typing(const std::wstring& name, std::wstring_view text) {
    return L"type " + name + L": " + valueText(text);
}

bool isOnlyList(Run& run, const Control& list) {
    const std::vector<Control*> shown = run.shownControls();
    return std::all_of(shown.begin(), shown.end(),
                       [&](const Control* control) { return control == &list || !isList(*control); });
}

bool holdsChoice(const Control& combo, std::wstring_view text) {
    return std::any_of(
        combo.choices.begin(), combo.choices.end(),
        [text](const Choice& choice) { return base::equalsNoCase(choice.text, text); });
}

}  // namespace

void Recording::use(Recorder recorder) {
    flush();
    recorder_ = std::move(recorder);
    copied_.reset();
}

void Recording::setQuiet(bool on) {
    flush();
    quiet_ += on ? 1 : -1;
}

Recording& recording() { return *Process::instance().recording; }

// ---- what waits

void Recording::tell(const std::wstring& line) const { recorder_(line); }

void Recording::flush() {
    const Waiting action = std::exchange(waiting_, {});
    if (!isOn()) return;
    for (const std::wstring& line : action.kind == Kind::kEdit ? linesOf(action) : action.lines) tell(line);
}

void Recording::ends() {
    flush();
    names_.reset();
}

void Recording::wait(Waiting action) {
    flush();
    waiting_ = std::move(action);
}

// Its line moves the focus there itself.
void Recording::begin(const Control& control) {
    if (waiting_.kind == Kind::kMove && waiting_.control == &control) waiting_ = {};
    flush();
}

void Recording::stays() {
    if (waiting_.kind != Kind::kMove) return;
    waiting_.lines = std::move(waiting_.instead);
    flush();
}

// A line ends where the text does: the next one begins with the key that begins one.
std::vector<std::wstring> Recording::linesOf(const Waiting& edit) {
    const Control& field = *edit.control;
    // Assigning the text of a choice would choose it.
    if (field.kind() == ControlKind::kEditCombo && holdsChoice(field, edit.text))
        return {L"focus " + edit.name, L"key Ctrl+A", typing(edit.name, edit.text)};
    std::vector<std::wstring> texts = {edit.text};
    if (field.isMultiLine()) texts = base::split(base::replaceAll(edit.text, L"\r\n", L"\n"), L'\n');
    std::vector<std::wstring> lines = {edit.name + L" = " + valueText(texts.front())};
    if (texts.front().empty()) lines.front().pop_back();
    for (std::size_t i = 1; i < texts.size(); ++i) {
        lines.emplace_back(L"key Enter");
        if (!texts[i].empty()) lines.push_back(typing(edit.name, texts[i]));
    }
    return lines;
}

// ---- what the user is about to do

void Recording::moves(Run& run, const Control& control, std::wstring_view key) {
    if (!isOn()) return;
    const std::wstring line = key.empty() ? focusing(run, control) : L"key " + std::wstring(key);
    const bool isPushed = control.isButton() || control.isCheckable();
    wait({Kind::kMove, &control, {line}, {key.empty() && isPushed ? pressing(run, control) : line}});
}

void Recording::presses(Run& run, const Control& button) {
    if (!isOn()) return;
    begin(button);
    tell(pressing(run, button));
}

std::wstring Recording::itemOf(Run& run, const Control& list, int item) {
    if (!isList(list)) return valueText(list.choices.at(item).text);
    if (!names_ || &names_->list() != &list || namesRevision_ != run.itemsRevision()) names_.emplace(list);
    namesRevision_ = run.itemsRevision();
    return distinctItem(*names_, item);
}

void Recording::chooses(Run& run, const Control& list, int item) {
    if (!isOn()) return;
    begin(list);
    if (list.kind() == ControlKind::kTab) return tell(showing(list, item));
    const std::wstring text = itemOf(run, list, item);
    if (isList(list) && isOnlyList(run, list))
        return wait({Kind::kChoice, &list, {L"row " + text}, {}, {}, {}, {}, {}, item});
    const std::wstring line = fieldName(run, list) + L" = " + text;
    if (!isList(list)) return tell(line);
    wait({Kind::kChoice, &list, {line}, {focusing(run, list)}, {}, {}, {}, {}, item});
}

void Recording::doubleClicks(Run& run, const Control& list, int row) {
    if (!isOn()) return;
    const std::wstring line = L"double row " + itemOf(run, list, row);
    if (waiting_.kind == Kind::kChoice && waiting_.control == &list && waiting_.item == row)
        waiting_.lines = std::move(waiting_.instead);
    flush();
    tell(line);
}

void Recording::presses(Key key) {
    if (!isOn()) return;
    flush();
    tell(std::wstring(L"key ") + nameOf(key));
}

void Recording::closes() {
    if (!isOn()) return;
    flush();
    tell(L"close");
}

void Recording::edits(Run& run, const Control& field) {
    if (!isOn()) return;
    if (waiting_.kind != Kind::kEdit || waiting_.control != &field) {
        begin(field);
        wait({Kind::kEdit, &field, {}, {}, fieldName(run, field)});
    }
    waiting_.text = field.text;
}

void Recording::answers(std::wstring_view line) {
    if (!isOn()) return;
    flush();
    tell(std::wstring(line));
}

// ---- in a rich edit

void Recording::types(Run& run, const Control& field, std::wstring_view text) {
    if (!isOn()) return;
    const std::size_t end = waiting_.selection.begin() + waiting_.text.size();
    const bool goesOn = waiting_.kind == Kind::kTyping && waiting_.control == &field && field.selection.isEmpty() &&
                        field.selection.caret == end;
    if (!goesOn) {
        begin(field);
        wait({Kind::kTyping, &field, {selecting(run, field), {}}, {}, distinctName(run, field, isTyped)});
        waiting_.selection = field.selection;
    }
    waiting_.text += text;
    waiting_.lines.back() = typing(waiting_.name, waiting_.text);
}

void Recording::pressesIn(Run& run, const Control& field, Key key) {
    if (!isOn()) return;
    begin(field);
    tell(selecting(run, field));
    presses(key);
}

void Recording::copied() {
    if (isOn()) copied_ = clipboardText();
}

bool Recording::knowsClipboard() const { return copied_ && *copied_ == clipboardText(); }

void Recording::choosesEntry(Run& run, const Control& control, int command) {
    if (!isOn()) return;
    const std::vector<MenuEntry> entries = run.menuOf(const_cast<Control&>(control));
    const auto entry = std::find_if(entries.begin(), entries.end(), [command](const MenuEntry& candidate) {
        return !candidate.text.empty() && candidate.command == command;
    });
    if (entry == entries.end()) return;
    begin(control);
    const std::wstring line = L"menu " + fieldName(run, control) + L": " + plainName(entry->text);
    if (!control.richText) return tell(line);
    const std::wstring name = distinctName(run, control, isTyped);
    wait({Kind::kEntry,
          &control,
          {selecting(run, control), line},
          {},
          name,
          control.text,
          clipboardText(),
          control.selection});
}

void Recording::choseEntry(const Control& control) {
    if (!isOn()) return;
    if (waiting_.kind == Kind::kEntry && waiting_.control == &control && !knowsClipboard()) {
        std::wstring pasted = waiting_.clipboard.substr(0, waiting_.clipboard.find_first_of(L"\r\n"));
        std::wstring text = waiting_.text;
        const TextSelection& selection = waiting_.selection;
        text.replace(selection.begin(), selection.end() - selection.begin(), pasted);
        if (!pasted.empty() && text == control.text) waiting_.lines.back() = typing(waiting_.name, pasted);
    }
    const bool copies = waiting_.kind == Kind::kEntry && clipboardText() != waiting_.clipboard;
    flush();
    if (copies) copied();
}

}  // namespace dialogs
