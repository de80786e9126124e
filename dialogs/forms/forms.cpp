// Dialogs without windows: what the user does comes as lines, and is done to the controls' state.
#include <algorithm>

#include "base/text.h"
#include "dialogs/form_script.h"
#include "dialogs/maker.h"
#include "dialogs/run.h"
#include "dialogs/styles.h"
#include "dialogs/text_editing.h"

namespace dialogs {
namespace {

class FormView final : public View {
  public:
    explicit FormView(Run& run) : run_(run) {}

    void work() override {
        LineSource& lines = *Process::instance().lines;
        if (!lines.isScript()) lines.print(formText(run_));
        FormScript script(run_, lines);
        while (!run_.hasEnded()) script.step();
    }

    // The state is all there is.
    void titleChanged() override {}
    void changed(Control&, Aspect) override {}
    void pageShown(Control& tab) override {
        if (run_.focus() && !run_.isShown(*run_.focus())) run_.setFocus(tab);  // it was on the page shown before
    }
    void focusChanged(Control&) override {}
    int listWidth(const Control& list) override { return list.design->place.width * 3 / 2; }
    void restorePlacement(const std::wstring& placement) override { placement_ = placement; }
    std::wstring placement() override { return placement_; }  // a form has no place of its own
    void savePicture(const std::wstring&) override {
        Process::instance().lines->refuse(L"a form has no picture; show the dialog as a window");
    }

    bool moveFocus(Control& control) override {
        if (run_.focus() == &control) return true;
        const Run::Leave leave = run_.focus() ? run_.mayLeave(*run_.focus(), &control) : Run::Leave::kFree;
        if (leave == Run::Leave::kRefused) return false;
        if (!run_.hasEnded()) run_.setFocus(control);
        return leave == Run::Leave::kFree;
    }

    void press(Control& button) override {
        if (button.kind() == ControlKind::kCheck) button.checked = !button.checked;
        if (button.kind() == ControlKind::kRadio) markRadio(button);
        run_.pressed(button);
    }

    void replaceText(Control& field, const std::wstring& text) override {
        field.selection = {0, field.text.size()};
        typeText(field, text);
    }

    void typeText(Control& field, const std::wstring& text) override {
        const bool upper = field.kind() == ControlKind::kEdit && (field.design->style & kUpperCaseStyle) != 0;
        if (!replaceSelection(field, upper ? base::toUpper(text) : text)) return;
        if (field.kind() == ControlKind::kEditCombo) field.selected = -1;
        run_.edited(field);
    }

    void select(Control& field, TextSelection selection) override {
        field.selection = selection;
        snapSelection(field);
    }

    void choose(Control& list, int item) override {
        const bool changes = list.selected != item;
        list.selected = item;
        switch (list.kind()) {
            case ControlKind::kListView:
                if (changes) run_.rowSelected(list);
                break;
            case ControlKind::kTab:
                if (changes) run_.pageChosen(list);
                break;
            default:
                if (list.kind() != ControlKind::kListBox) {
                    list.text = list.choices[item].text;
                    list.selection = {0, list.text.size()};
                }
                run_.chosen(list);
                break;
        }
    }

    void doubleClick(Control& list, int row) override { run_.doubleClicked(list, row); }

    void key(Key key, bool shift) override {
        switch (key) {
            case Key::kEnter:
                return enter();
            case Key::kEscape:
                return cancel();
            case Key::kTab:
                if (Control* const next = run_.nextInTabOrder(shift))
                    if (moveFocus(*next) && next->isText()) next->selection = {0, next->text.size()};
                return;
            case Key::kHelp:
                return run_.helpWanted();
            default:
                if (run_.focus()) keyOf(*run_.focus(), key, shift);
        }
    }

    void close() override { cancel(); }

  private:
    // Enter and Escape press a button where the focus is not; the field is asked as if it were left for the button.
    bool mayLeaveFor(Control* button) {
        Control* const focus = run_.focus();
        return !focus || focus == button || run_.mayLeave(*focus, button) == Run::Leave::kFree;
    }

    void enter() {
        Control* const focus = run_.focus();
        if (focus && focus->isMultiLine() && (focus->design->style & kWantReturnStyle) != 0) {
            if (!focus->readOnly) typeText(*focus, L"\r\n");
            return;
        }
        Control* const button = run_.buttonOfEnter();
        if (button && button->canHaveFocus() && mayLeaveFor(button)) run_.pressed(*button);
    }

    void cancel() {
        Control* const button = run_.findButton(kCancelButton);
        if (button && !button->enabled) return;
        if (mayLeaveFor(button)) run_.cancelled();
    }

    void keyOf(Control& focus, Key key, bool shift) {
        if (focus.isTyped()) return fieldKey(focus, key, shift);
        if (focus.kind() == ControlKind::kRadio && (isBack(key) || isForward(key))) return radioKey(focus, isBack(key));
        if (focus.isButton() || focus.isCheckable()) {
            if (key == Key::kSpace) press(focus);
            return;
        }
        itemKey(focus, key);
    }

    static bool isBack(Key key) { return key == Key::kUp || key == Key::kLeft; }
    static bool isForward(Key key) { return key == Key::kDown || key == Key::kRight; }

    // To the next of the group that is enabled, which is clicked.
    void radioKey(Control& focus, bool back) {
        std::vector<Control*> group = radioGroup(focus);
        if (back) std::reverse(group.begin(), group.end());
        std::rotate(group.begin(), std::find(group.begin(), group.end(), &focus) + 1, group.end());
        const auto next = std::find_if(group.begin(), group.end(), [](Control* c) { return c->canHaveFocus(); });
        if (next != group.end() && *next != &focus && moveFocus(**next)) press(**next);
    }

    void itemKey(Control& list, Key key) {
        const int count = list.itemCount();
        int item = list.selected;
        if (key == Key::kHome) item = 0;
        if (key == Key::kEnd) item = count - 1;
        if (isBack(key)) --item;
        if (isForward(key)) ++item;
        if (item != list.selected && item >= 0 && item < count) choose(list, item);
    }

    void fieldKey(Control& field, Key key, bool shift) {
        if (field.readOnly && (key == Key::kBackspace || key == Key::kDelete || key == Key::kSpace)) return;
        if (key == Key::kUp || key == Key::kDown) {
            if (field.kind() == ControlKind::kEditCombo) itemKey(field, key);
            return;
        }
        static const struct {
            Key key;
            TextKey textKey;
        } kTextKeys[] = {{Key::kBackspace, kBackspaceKey}, {Key::kDelete, kDeleteKey}, {Key::kLeft, kLeftKey},
                         {Key::kRight, kRightKey},         {Key::kHome, kHomeKey},     {Key::kEnd, kEndKey}};
        if (key == Key::kSpace) return typeText(field, L" ");
        for (const auto& known : kTextKeys)
            if (known.key == key && editByKey(field, known.textKey, shift)) return run_.edited(field);
    }

    Run& run_;
    std::wstring placement_;
};

class FormsMaker final : public Maker {
  public:
    std::unique_ptr<View> makeView(Run& run) override { return std::make_unique<FormView>(run); }
    Answer messageBox(BoxKind, const std::wstring&, const std::wstring&, std::optional<Answer> answer) override {
        return answer.value_or(Answer::kOk);  // asked and answered in a line
    }
    std::optional<std::wstring> askFile(const FileRequest&) override { return std::nullopt; }
    std::optional<std::wstring> askFolder(const std::wstring&) override { return std::nullopt; }
    std::wstring clipboardText() override { return clipboard_; }
    void setClipboardText(const std::wstring& text) override { clipboard_ = text; }

  private:
    std::wstring clipboard_;
};

}  // namespace

std::unique_ptr<Maker> makeFormsMaker() { return std::make_unique<FormsMaker>(); }

}  // namespace dialogs
