// Real windows under real mouse and keys: what the scripts' messages stand for.
#include <gmock/gmock.h>

#include "base/text.h"
#include "dialogs/boxes.h"
#include "dialogs_test.h"
#include "tests/dialogs/real_input_windows.h"

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
    void onCommand(int control, Event event) override {
        if (event == Event::kPressed) note("pressed ", control);
        if (event == Event::kChosen) note("chosen ", control);
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
    input.press(VK_TAB);
    input.type("12");
    input.click(dialog, IDC_INVISIBLE);  // refused: the box has the focus, the click is lost
    input.press(VK_RETURN);              // closes the box; the whole field is selected
    input.type("3");
    input.pressWith(VK_MENU, 'I');  // refused as well
    input.press(VK_RETURN);
    input.type("2");
    input.click(dialog, IDC_INVISIBLE);
    input.pressWith(VK_MENU, 'T');  // to the field behind the label
    input.press(VK_END);
    input.type("S");
    input.click(dialog, IDC_MIDDLE);
    input.press(VK_RIGHT);
    input.click(dialog, IDC_STYLE);
    input.press(VK_DOWN);
    input.press(VK_DOWN);
    input.press(VK_RETURN);
    input.clickAt(
        [&dialog] {
            RECT place;
            GetWindowRect(controlWindow(dialog, IDC_COLORS), &place);
            return POINT{place.left + 10, place.top + 8};
        },
        2);
    input.press(VK_F1);  // helps once
    input.clickRow(dialog, IDC_LIST, 1, 1);
    input.clickRow(dialog, IDC_LIST, 0, 2);
    input.pressWith(VK_SHIFT, VK_TAB);  // to a button, which Enter then presses
    input.press(VK_RETURN);
    input.press(VK_TAB);
    input.press(VK_TAB);
    input.press(VK_RETURN);
    int code = 0;
    input.during([&] { code = dialog.runModal(); });

    EXPECT_EQ(code, kOkButton);
    EXPECT_EQ(base::toUtf8(dialog.text(IDC_TAG)), "doors");
    EXPECT_EQ(base::toUtf8(dialog.text(IDC_HEIGHT)), "2");
    EXPECT_TRUE(dialog.isChecked(IDC_INVISIBLE));
    EXPECT_TRUE(dialog.isChecked(IDC_RIGHT));
    EXPECT_FALSE(dialog.isChecked(IDC_MIDDLE));
    EXPECT_THAT(dialog.log,
                ElementsAre("bad height, going to 103", "bad height, going to 103", "pressed 103", "pressed 105",
                            "pressed 106", "chosen 107", "chosen 107", "chosen 127", "double row 0", "help 127",
                            "row 1", "row 0", "double row 0", "pressed 120", "ok 124"));
}

TEST(RealInput, AFieldIsAskedBeforeARowIsSelected) {
    const OwnDesktop desktop;
    const ResourceScope resources(base::processImage());
    InputDialog dialog;
    RealInput input;
    int rowWhileRefused = 0;
    std::wstring shown;

    input.pressWith(VK_MENU, 'E');  // to the height, by its label
    input.type("3");
    input.clickRow(dialog, IDC_LIST, 1, 1);
    input.press(VK_RETURN);  // the box
    input.then([&] { rowWhileRefused = ListView_GetNextItem(controlWindow(dialog, IDC_LIST), -1, LVNI_SELECTED); });
    input.pressWith(VK_MENU, 'V');  // and the value, by its own
    input.press(VK_RETURN);
    input.type("2");
    input.clickRow(dialog, IDC_LIST, 0, 1);  // not where the last click was: that would be a double click
    // A choice that its handler takes back.
    dialog.addChoice(IDC_LAYER, L"red");
    dialog.addChoice(IDC_LAYER, L"More");
    dialog.setText(IDC_LAYER, L"red");
    input.click(dialog, IDC_LAYER);
    input.press(VK_F4);
    input.press(VK_DOWN);
    input.press(VK_RETURN);
    input.then([] {});
    input.then([&] {
        wchar_t text[20];
        GetWindowTextW(controlWindow(dialog, IDC_LAYER), text, 20);
        shown = text;
        dialog.end(kCancelButton);
    });
    input.during([&] { dialog.runModal(); });

    EXPECT_EQ(rowWhileRefused, -1);
    EXPECT_EQ(base::toUtf8(dialog.text(IDC_HEIGHT)), "2");
    EXPECT_EQ(base::toUtf8(shown), "red");
    EXPECT_THAT(dialog.log, ElementsAre("bad height, going to 122", "bad height, going to 109", "row 0", "chosen 108"));
}

// The host counts as work what is no waiting.
TEST(RealInput, AWindowThatIsDraggedIsWaitedFor) {
    const OwnDesktop desktop;
    int waiting = 0;
    ASSERT_TRUE(useWindows(nullptr, [&](const std::function<void()>& wait) {
        ++waiting;
        wait();
        --waiting;
    }));
    const ResourceScope resources(base::processImage());
    InputDialog dialog;
    RealInput input;
    bool wasDragged = false, wasWaitedFor = false;

    // The move is begun by a message, as that of a mouse is, and ends with Enter.
    input.then([&] { PostMessageW(static_cast<HWND>(dialog.window()), WM_SYSCOMMAND, SC_MOVE, 0); });
    input.press(VK_RIGHT);
    input.then([&] {
        GUITHREADINFO info = {};
        info.cbSize = sizeof info;
        wasDragged = GetGUIThreadInfo(GetCurrentThreadId(), &info) && (info.flags & GUI_INMOVESIZE) != 0;
        wasWaitedFor = waiting > 0;
    });
    input.press(VK_RETURN);
    input.then([&] { dialog.end(kCancelButton); });
    input.during([&] { dialog.runModal(); });

    EXPECT_TRUE(wasDragged);
    EXPECT_TRUE(wasWaitedFor);
}

}  // namespace
