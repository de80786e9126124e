#include "dialogs/view.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "base/text.h"
#include "dialogs/boxes.h"
#include "dialogs/form_script.h"
#include "dialogs/recording.h"
#include "dialogs/run.h"
#include "dialogs/styles.h"
#include "dialogs/text_editing.h"

namespace dialogs {
namespace {

bool isBack(Key key) { return key == Key::kUp || key == Key::kLeft; }
bool isForward(Key key) { return key == Key::kDown || key == Key::kRight; }

bool isPushed(const Control& control) { return control.isButton() || control.isCheckable(); }

bool isCombo(const Control& control) {
    return control.kind() == ControlKind::kCombo || control.kind() == ControlKind::kEditCombo;
}

bool takesReturn(const Control& field) { return field.isMultiLine() && (field.design->style & kWantReturnStyle) != 0; }

// The choices of a page, by the template, so that it is the same on every screen.
int itemsPerPage(const Control& list) {
    constexpr int kItemHeight = 8, kRowHeight = 10, kHeaderHeight = 14;
    const int height = list.design->place.height;
    return std::max(
        1, list.kind() == ControlKind::kListView ? (height - kHeaderHeight) / kRowHeight : height / kItemHeight);
}

bool isCaption(const Control* control) {
    return control->kind() == ControlKind::kLabel || control->kind() == ControlKind::kGroup;
}

std::wstring_view firstLine(std::wstring_view text) { return text.substr(0, text.find_first_of(L"\r\n")); }

// What is done in it is told by the place where it is done.
bool hasRuns(const Control& field) { return field.richText && !field.richText->runs().empty(); }

bool hasMnemonic(const Control& control, wchar_t letter) {
    if (!isCaption(&control) && !isPushed(control)) return false;
    if (control.kind() == ControlKind::kLabel && (control.design->style & kNoPrefixStyle) != 0) return false;
    const std::wstring& caption = control.text;
    for (std::size_t i = 0; i + 1 < caption.size(); ++i) {
        if (caption[i] != L'&') continue;
        ++i;
        if (caption[i] != L'&') return base::equalsNoCase({&caption[i], 1}, {&letter, 1});
    }
    return false;
}

}  // namespace

// ---- the focus

bool View::moveFocus(Control& control) {
    if (run_.focus() == &control) return true;
    recording().moves(run_, control);
    return goTo(control);
}

bool View::moveFocusBy(const wchar_t* key, Control& control) {
    if (run_.focus() == &control) return true;
    recording().moves(run_, control, key);
    return goTo(control);
}

bool View::goTo(Control& control) {
    const bool went = askAndGo(control);
    if (!went) recording().stays();
    return went;
}

bool View::askAndGo(Control& control) {
    Control* const focus = run_.focus();
    if (focus == &control) return true;
    const Run::Leave leave = focus ? run_.mayLeave(*focus, &control) : Run::Leave::kFree;
    if (run_.hasEnded()) return false;
    if (leave == Run::Leave::kRefused || !control.canHaveFocus() || !run_.isShown(control)) {
        run_.setFocus(run_.focus());  // a window of the system may have it already
        if (leave == Run::Leave::kRefused) changed(*focus, Aspect::kSelection);
        return false;
    }
    run_.setFocus(&control);
    return leave == Run::Leave::kFree;
}

bool View::mayLeaveFor(Control* next) {
    Control* const focus = run_.focus();
    if (!focus || focus == next) return !run_.hasEnded();
    const Run::Leave leave = run_.mayLeave(*focus, next);
    if (leave == Run::Leave::kRefused) {
        run_.setFocus(run_.focus());
        changed(*focus, Aspect::kSelection);
    }
    return leave == Run::Leave::kFree;
}

// ---- what the user did

void View::userPressed(Control& button) {
    recording().presses(run_, button);
    if (goTo(button)) {
        if (button.kind() == ControlKind::kCheck) button.checked = !button.checked;
        if (button.kind() == ControlKind::kRadio) markRadio(button);
        showChecks(button);
        run_.pressed(button);
    } else if (!run_.hasEnded()) {
        showChecks(button);  // a window of the system may have marked it
    }
}

void View::showChecks(Control& button) {
    if (button.kind() == ControlKind::kCheck) changed(button, Aspect::kChecked);
    if (button.kind() == ControlKind::kRadio)
        for (Control* other : radioGroup(button)) changed(*other, Aspect::kChecked);
}

void View::userEdited(Control& field) {
    recording().edits(run_, field);
    edited(field);
}

void View::edited(Control& field) {
    if (field.kind() == ControlKind::kEditCombo) field.selected = -1;
    run_.edited(field);
}

void View::userTyped(Control& field, const std::wstring& text) {
    const bool tellsPlace = hasRuns(field) && !field.readOnly && !(text.empty() && field.selection.isEmpty());
    if (tellsPlace) recording().types(run_, field, firstLine(text));
    if (field.readOnly || !replaceSelection(field, field.upperCase ? base::toUpper(text) : text)) return;
    changed(field, Aspect::kText);
    tellsPlace ? edited(field) : userEdited(field);
}

void View::userChose(Control& list, int item) {
    const bool changes = list.selected != item;
    // A click on the row that is selected does nothing, and not every system tells of it.
    const bool isIdle = !changes && list.kind() == ControlKind::kListView && run_.focus() == &list;
    if (!isIdle) recording().chooses(run_, list, item);
    if (!goTo(list)) {
        if (!run_.hasEnded()) changed(list, Aspect::kSelection);
        return;
    }
    list.selected = item;
    if (isCombo(list)) {
        list.text = list.choices.at(item).text;
        list.selection = {0, list.text.size()};
    }
    changed(list, Aspect::kSelection);
    if (list.kind() == ControlKind::kListView)
        changes ? run_.rowSelected(list) : void();
    else if (list.kind() == ControlKind::kTab)
        changes ? run_.pageChosen(list) : void();
    else
        run_.chosen(list);
}

void View::userDoubleClicked(Control& list, int row) {
    if (row < 0) return;
    recording().doubleClicks(run_, list, row);
    if (goTo(list)) run_.doubleClicked(list, row);
}

void View::userClosed() {
    recording().closes();
    tryToClose();
}

void View::tryToClose() {
    Control* const button = run_.findButton(kCancelButton);
    if (button && !button->enabled) return;
    if (mayLeaveFor(button)) run_.cancelled();
}

std::vector<MenuEntry> View::userWantsMenu(Control& control) {
    return moveFocus(control) ? run_.menuOf(control) : std::vector<MenuEntry>();
}

// ---- keys

bool View::isOwnKey(Key key) const {
    const Control* const focus = run_.focus();
    switch (key) {
        case Key::kEscape:
        case Key::kTab:
        case Key::kHelp:
            return true;
        case Key::kEnter:
            return !focus || !takesReturn(*focus);
        case Key::kSelectAll:
            return focus && focus->isTyped();
        case Key::kSpace:
            return false;
        default:
            break;
    }
    if (!focus || focus->kind() == ControlKind::kEdit) return false;
    if (focus->kind() == ControlKind::kRichEdit) return true;
    if (focus->kind() == ControlKind::kEditCombo)
        return key == Key::kUp || key == Key::kDown || key == Key::kPageUp || key == Key::kPageDown;
    // There the list scrolls.
    if (focus->kind() == ControlKind::kListView) return key != Key::kLeft && key != Key::kRight;
    return true;
}

void View::userPressedKey(Key key, bool shift) {
    Control* const focus = run_.focus();
    switch (key) {
        case Key::kEnter:
            return enter();
        case Key::kEscape:
            recording().presses(key);
            return tryToClose();
        case Key::kTab:
            return tab(shift);
        case Key::kHelp:
            recording().presses(key);
            return run_.helpWanted();
        default:
            break;
    }
    if (!focus) return;
    if (focus->isTyped()) return fieldKey(*focus, key, shift);
    if (!isPushed(*focus)) return itemKey(*focus, key);
    if (key == Key::kSpace) userPressed(*focus);
    if (isBack(key) || isForward(key)) groupKey(*focus, key);
}

// Enter presses a button where the focus is not; the field is asked as if it were left for it.
void View::enter() {
    Control* const focus = run_.focus();
    if (focus && takesReturn(*focus)) return userTyped(*focus, L"\r\n");
    recording().presses(Key::kEnter);
    Control* const button = run_.buttonOfEnter();
    if (button && button->canHaveFocus() && mayLeaveFor(button)) run_.pressed(*button);
}

void View::tab(bool backwards) {
    Control* const next = run_.nextInTabOrder(backwards);
    if (!next || !moveFocusBy(backwards ? L"Shift+Tab" : L"Tab", *next)) return;
    if (next->isTyped()) select(*next, {0, next->text.size()});
}

Control* controlOfCaption(std::span<Control* const> behind, bool (*takes)(const Control&)) {
    const auto isMeant = [takes](const Control* control) { return takes(*control); };
    const auto isField = [takes](const Control* control) { return takes(*control) && control->isField(); };
    const auto nextCaption = std::find_if(behind.begin(), behind.end(), isCaption);
    const auto field = std::find_if(behind.begin(), nextCaption, isField);
    if (field != nextCaption) return *field;
    const auto any = std::find_if(behind.begin(), behind.end(), isMeant);
    return any != behind.end() ? *any : nullptr;
}

bool View::hasMnemonicOf(wchar_t letter) const {
    const std::vector<Control*> shown = run_.shownControls();
    return std::any_of(shown.begin(), shown.end(),
                       [&](const Control* control) { return hasMnemonic(*control, letter); });
}

bool View::userPressedMnemonic(wchar_t letter) {
    std::vector<Control*> shown = run_.shownControls();
    const auto at = std::find(shown.begin(), shown.end(), run_.focus());
    if (at != shown.end()) std::rotate(shown.begin(), at + 1, shown.end());
    for (auto found = shown.begin(); found != shown.end(); ++found) {
        if (!hasMnemonic(**found, letter)) continue;
        if (isPushed(**found)) {
            if (!(*found)->canHaveFocus()) continue;
            userPressed(**found);
            return true;
        }
        Control* const meant =
            controlOfCaption({found + 1, shown.end()}, [](const Control& control) { return control.canHaveFocus(); });
        if (!meant) continue;
        if (moveFocus(*meant) && meant->isTyped()) select(*meant, {0, meant->text.size()});
        return true;
    }
    return false;
}

void View::fieldKey(Control& field, Key key, bool shift) {
    switch (key) {
        case Key::kSpace:
            return userTyped(field, L" ");
        case Key::kSelectAll:
            return select(field, {0, field.text.size()});
        case Key::kCopy:
            return copy(field, key);
        case Key::kCut:
            copy(field, key);
            return cutSelection(field);
        case Key::kPaste:
            return paste(field);
        case Key::kUp:
        case Key::kDown:
            if (field.isMultiLine()) return;
            [[fallthrough]];
        case Key::kPageUp:
        case Key::kPageDown:
            if (field.kind() == ControlKind::kEditCombo) return itemKey(field, key);
            break;
        default:
            break;
    }
    if (field.readOnly && (key == Key::kBackspace || key == Key::kDelete)) return;
    const bool isTold = hasRuns(field) && (key == Key::kBackspace || key == Key::kDelete);
    if (isTold) recording().pressesIn(run_, field, key);
    const std::optional<bool> changes = editByKey(field, key, shift);
    if (!changes) return;
    changed(field, *changes ? Aspect::kText : Aspect::kSelection);
    if (*changes) isTold ? edited(field) : userEdited(field);
}

// What is copied of a rich edit may be pasted with its runs.
void View::copy(Control& field, Key key) {
    const bool isTold = field.richText && !field.selection.isEmpty();
    if (isTold) recording().pressesIn(run_, field, key);
    copySelection(field);
    if (isTold) recording().copied();
}

void View::cutSelection(Control& field) {
    if (field.readOnly || !replaceSelection(field, L"")) return;
    changed(field, Aspect::kText);
    field.richText ? edited(field) : userEdited(field);
}

void View::paste(Control& field) {
    if (field.upperCase) return userTyped(field, clipboardText());
    if (field.readOnly) return;
    const bool isKnown = field.richText && recording().knowsClipboard();
    const bool isTold = isKnown || hasRuns(field);
    if (isKnown)
        recording().pressesIn(run_, field, Key::kPaste);
    else if (isTold)
        recording().types(run_, field, firstLine(clipboardText()));
    if (!pasteClipboard(field)) return;
    changed(field, Aspect::kText);
    isTold ? edited(field) : userEdited(field);
}

void View::itemKey(Control& list, Key key) {
    const int count = list.itemCount();
    int item = list.selected;
    if (key == Key::kHome) item = 0;
    if (key == Key::kEnd) item = count - 1;
    if (key == Key::kPageUp) item = std::max(item - itemsPerPage(list), std::min(item, 0));
    if (key == Key::kPageDown) item = std::min(item + itemsPerPage(list), count - 1);
    const bool sideways = key == Key::kLeft || key == Key::kRight;
    if (sideways && list.kind() == ControlKind::kListView) return;  // it scrolls
    if (isBack(key)) --item;
    if (isForward(key)) ++item;
    if (item != list.selected && item >= 0 && item < count) userChose(list, item);
}

// To the next button of the group that is enabled. A radio button is marked by that.
void View::groupKey(Control& button, Key key) {
    const bool radio = button.kind() == ControlKind::kRadio;
    std::vector<Control*> group = radio ? radioGroup(button) : groupOf(button, isPushed);
    if (isBack(key)) std::reverse(group.begin(), group.end());
    std::rotate(group.begin(), std::find(group.begin(), group.end(), &button) + 1, group.end());
    const auto next = std::find_if(group.begin(), group.end(), [](Control* c) { return c->canHaveFocus(); });
    if (next == group.end() || *next == &button || !moveFocusBy(nameOf(key), **next)) return;
    if ((*next)->kind() == ControlKind::kRadio) userPressed(**next);
}

// ---- doing as a user would

void View::typeText(Control& field, const std::wstring& text) { userTyped(field, text); }

void View::select(Control& field, TextSelection selection) {
    field.selection = selection;
    snapSelection(field);
    changed(field, Aspect::kSelection);
}

void View::dragColumn(Control& list, int column, int width) {
    list.columns.at(column).width = static_cast<int>(std::lround(width * scale()));
    changed(list, Aspect::kColumns);
}

}  // namespace dialogs
