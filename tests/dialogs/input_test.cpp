// Dialogs under real mouse and keys: what the scripts' lines stand for.
#include <gmock/gmock.h>

#include "base/modules.h"
#include "base/text.h"
#include "dialogs/boxes.h"
#include "dialogs/process.h"
#include "dialogs_test.h"
#include "tests/dialogs/real_input.h"

using namespace dialogs;
using testing::ElementsAre;

namespace {

// A height must be "2"; anything else shows a box.
class InputDialog final : public Dialog {
  public:
    InputDialog() : Dialog(IDD_FIELDS) {
        setColumns(IDC_LIST, {{L"Tag", 60}, {L"Value", 80}});
        setRows(IDC_LIST, {{{L"WIDTH", L"12"}}, {{L"NAME", L"Door"}}});
        for (const wchar_t* color : {L"red", L"green"}) addChoice(IDC_COLORS, color);
        addChoice(IDC_STYLE, L"Standard");
        addChoice(IDC_STYLE, L"ROMANS");
    }
    std::vector<std::string> log;

  private:
    void note(const char* what, int control) { log.push_back(what + std::to_string(control)); }
    // Lists that are dropped down may tell of every choice that is passed, or of the last one alone.
    void noteChosen(int control) {
        const std::string chosen = "chosen " + std::to_string(control);
        if (log.empty() || log.back() != chosen) log.push_back(chosen);
    }
    void onCommand(int control, Event event) override {
        if (event == Event::kPressed) note("pressed ", control);
        if (event == Event::kChosen) noteChosen(control);
        if (event == Event::kChosen && control == IDC_LAYER) setText(IDC_LAYER, L"red");
    }
    bool onLeave(int control, int next) override {
        if (control != IDC_HEIGHT || text(IDC_HEIGHT) == L"2" || next == kCancelButton) return true;
        note("bad height, going to ", next);
        messageBox(BoxKind::kWarning, L"Invalid value for height");
        return false;
    }
    void onSelect(int, int row) override { note("row ", row); }
    void onDoubleClick(int, int row) override { note("double row ", row); }
    void onHelp() override { note("help ", focused()); }
    std::vector<MenuEntry> menuOf(int control) override {
        note("menu of ", control);
        return {{L"Clear", 7, true}};
    }
    void onMenu(int, int command) override { note("menu ", command); }
    void onOk() override {
        note("ok ", focused());
        Dialog::onOk();
    }
};

TEST(RealInput, MouseKeysAndMnemonics) {
    const OwnDesktop desktop;
    const ResourceScope resources(base::processImage());
    InputDialog dialog;
    RealInput input;
    input.type("DOOR");
    input.turnWheel(dialog, IDC_STYLE);  // it has not the focus: nothing is chosen
    input.press(Key::kTab);
    input.type("12");
    input.click(dialog, IDC_INVISIBLE);  // refused: the box has the focus, the click is lost
    input.press(Key::kEnter);            // closes the box; the whole field is selected
    input.type("3");
    input.pressWith(Held::kAlt, 'I');  // refused as well
    input.press(Key::kEnter);
    input.type("2");
    input.click(dialog, IDC_INVISIBLE);
    input.pressWith(Held::kAlt, 'T');  // to the field behind the label
    input.press(Key::kEnd);
    input.type("S");
    input.pressWith(Held::kAlt, 'Q');  // nobody's: nothing is typed
    input.click(dialog, IDC_MIDDLE);
    input.press(Key::kRight);
    input.click(dialog, IDC_STYLE);
    input.press(Key::kDown);
    input.press(Key::kDown);
    input.press(Key::kEnter);
    input.clickItem(dialog, IDC_COLORS, 0, 2);
    input.press(Key::kHelp);  // helps once
    input.clickItem(dialog, IDC_LIST, 1);
    input.clickItem(dialog, IDC_LIST, 0, 2);
    input.press(Key::kTab, Held::kShift);  // to a button, which Enter then presses
    input.press(Key::kEnter);
    input.press(Key::kTab);
    input.press(Key::kTab);
    input.press(Key::kEnter);
    int code = 0;
    input.during([&] { code = dialog.runModal(); });

    EXPECT_EQ(code, kOkButton);
    EXPECT_EQ(base::toUtf8(dialog.text(IDC_TAG)), "doors");
    EXPECT_EQ(base::toUtf8(dialog.text(IDC_HEIGHT)), "2");
    EXPECT_TRUE(dialog.isChecked(IDC_INVISIBLE));
    EXPECT_TRUE(dialog.isChecked(IDC_RIGHT));
    EXPECT_FALSE(dialog.isChecked(IDC_MIDDLE));
    EXPECT_EQ(dialog.selected(IDC_STYLE), 1);
    EXPECT_THAT(dialog.log, ElementsAre("bad height, going to 103", "bad height, going to 103", "pressed 103",
                                        "pressed 105", "pressed 106", "chosen 107", "chosen 127", "double row 0",
                                        "help 127", "row 1", "row 0", "double row 0", "pressed 120", "ok 124"));
}

TEST(RealInput, AFieldIsAskedBeforeARowIsSelected) {
    const OwnDesktop desktop;
    const ResourceScope resources(base::processImage());
    InputDialog dialog;
    RealInput input;
    int rowWhileRefused = 0;
    std::string shown;
    input.pressWith(Held::kAlt, 'E');  // to the height, by its label
    input.type("3");
    input.clickItem(dialog, IDC_LIST, 1);
    input.press(Key::kEnter);  // the box
    input.then([&] { rowWhileRefused = hand::selectedRow(dialog, IDC_LIST); });
    input.pressWith(Held::kAlt, 'V');  // and the value, by its own
    input.press(Key::kEnter);
    input.type("2");
    input.clickItem(dialog, IDC_LIST, 0);  // not where the last click was: that would be a double click
    // A choice that its handler takes back.
    dialog.addChoice(IDC_LAYER, L"red");
    dialog.addChoice(IDC_LAYER, L"More");
    dialog.setText(IDC_LAYER, L"red");
    input.click(dialog, IDC_LAYER);
    input.press(Key::kDropDown);
    input.press(Key::kDown);
    input.press(Key::kEnter);
    input.then([] {});
    input.then([&] {
        shown = hand::shownText(dialog, IDC_LAYER);
        dialog.end(kCancelButton);
    });
    input.during([&] { dialog.runModal(); });

    EXPECT_EQ(rowWhileRefused, -1);
    EXPECT_EQ(base::toUtf8(dialog.text(IDC_HEIGHT)), "2");
    EXPECT_EQ(shown, "red");
    EXPECT_THAT(dialog.log, ElementsAre("bad height, going to 122", "bad height, going to 109", "row 0", "chosen 108"));
}

TEST(RealInput, AFieldIsAskedBeforeAMenuIsShown) {
    const OwnDesktop desktop;
    const ResourceScope resources(base::processImage());
    for (const int control : {IDC_VALUE, IDC_LIST}) {
        InputDialog dialog;
        RealInput input;
        int focusWhileRefused = 0;
        input.pressWith(Held::kAlt, 'E');  // to the height
        input.type("3");
        input.rightClick(dialog, control);
        input.press(Key::kEnter);  // the box
        input.then([&] { focusWhileRefused = dialog.focused(); });
        input.type("2");
        input.rightClick(dialog, control);
        input.press(Key::kDown);
        input.press(Key::kEnter);
        input.then([&] { dialog.end(kCancelButton); });
        input.during([&] { dialog.runModal(); });

        const std::string name = std::to_string(control);
        EXPECT_EQ(focusWhileRefused, IDC_HEIGHT) << control;
        std::erase_if(dialog.log, [](const std::string& line) { return line.starts_with("row "); });
        EXPECT_THAT(dialog.log, ElementsAre("bad height, going to " + name, "menu of " + name, "menu 7")) << control;
    }
}

}  // namespace
