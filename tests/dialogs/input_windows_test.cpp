// Real windows under real mouse and keys: what the scripts' messages stand for.
#include <windows.h>
#include <commctrl.h>

#include <functional>
#include <gmock/gmock.h>

#include "base/text.h"
#include "dialogs/boxes.h"
#include "dialogs/dialog.h"
#include "dialogs/process.h"
#include "dialogs_test.h"

using namespace dialogs;
using testing::ElementsAre;

namespace {

class NoLines final : public LineSource {
  public:
    std::optional<std::wstring> next(const std::wstring&) override { return std::nullopt; }
    void print(std::wstring_view) override {}
    void refuse(const std::wstring&) override {}
    bool isScript() const override { return true; }
};

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

// ---- input, one piece a tick of a timer, behind all other messages

std::vector<std::function<void()>> steps;
std::size_t nextStep = 0;

Dialog* open = nullptr;

void CALLBACK tick(HWND, UINT, UINT_PTR, DWORD) {
    constexpr std::size_t kPatience = 50;
    if (nextStep < steps.size()) steps[nextStep]();
    // A dialog that is still open long after the last piece would wait for ever.
    if (++nextStep == steps.size() + kPatience) open->end(kCancelButton);
}

void sendKey(WORD code, bool up) {
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = code;
    input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(code, MAPVK_VK_TO_VSC));
    input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
    SendInput(1, &input, sizeof input);
}

void press(WORD code) {
    steps.push_back([code] {
        sendKey(code, false);
        sendKey(code, true);
    });
}

void pressWith(WORD modifier, WORD code) {
    steps.push_back([modifier, code] {
        sendKey(modifier, false);
        sendKey(code, false);
        sendKey(code, true);
        sendKey(modifier, true);
    });
}

void type(std::string_view text) {
    for (char c : text) press(static_cast<WORD>(c));  // letters and digits are their own codes
}

void clickAt(const std::function<POINT()>& place, int times = 1) {
    steps.push_back([place, times] {
        const POINT point = place();
        SetCursorPos(point.x, point.y);
        for (int i = 0; i < 2 * times; ++i) {
            INPUT input = {};
            input.type = INPUT_MOUSE;
            input.mi.dwFlags = i % 2 == 0 ? MOUSEEVENTF_LEFTDOWN : MOUSEEVENTF_LEFTUP;
            SendInput(1, &input, sizeof input);
        }
    });
}

HWND controlWindow(const Dialog& dialog, int id) { return GetDlgItem(static_cast<HWND>(dialog.window()), id); }

void click(const Dialog& dialog, int id) {
    clickAt([&dialog, id] {
        RECT place;
        GetWindowRect(controlWindow(dialog, id), &place);
        return POINT{place.left + 8, (place.top + place.bottom) / 2};
    });
}

void clickRow(const Dialog& dialog, int id, int row, int times) {
    clickAt(
        [&dialog, id, row] {
            RECT place;
            ListView_GetItemRect(controlWindow(dialog, id), row, &place, LVIR_LABEL);
            POINT point = {place.left + 10, (place.top + place.bottom) / 2};
            ClientToScreen(controlWindow(dialog, id), &point);
            return point;
        },
        times);
}

TEST(RealInput, MouseKeysAndMnemonics) {
    NoLines lines;
    ASSERT_TRUE(useWindows(&lines));  // gives this process a desktop of its own
    ASSERT_TRUE(useWindows(nullptr));
    const ResourceScope resources(base::processImage());
    InputDialog dialog;
    steps.clear();
    nextStep = 0;

    type("DOOR");
    press(VK_TAB);
    type("12");
    click(dialog, IDC_INVISIBLE);  // refused: the box has the focus, the click is lost
    press(VK_RETURN);              // closes the box; the whole field is selected
    type("3");
    pressWith(VK_MENU, 'I');  // refused as well
    press(VK_RETURN);
    type("2");
    click(dialog, IDC_INVISIBLE);
    pressWith(VK_MENU, 'T');  // to the field behind the label
    press(VK_END);
    type("S");
    click(dialog, IDC_MIDDLE);
    press(VK_RIGHT);
    click(dialog, IDC_STYLE);
    press(VK_DOWN);
    press(VK_DOWN);
    press(VK_RETURN);
    clickAt(
        [&dialog] {
            RECT place;
            GetWindowRect(controlWindow(dialog, IDC_COLORS), &place);
            return POINT{place.left + 10, place.top + 8};
        },
        2);
    press(VK_F1);  // helps once
    clickRow(dialog, IDC_LIST, 1, 1);
    clickRow(dialog, IDC_LIST, 0, 2);
    pressWith(VK_SHIFT, VK_TAB);  // to a button, which Enter then presses
    press(VK_RETURN);
    press(VK_TAB);
    press(VK_TAB);
    press(VK_RETURN);
    open = &dialog;
    UINT_PTR const timer = SetTimer(nullptr, 0, 40, tick);
    const int code = dialog.runModal();
    KillTimer(nullptr, timer);
    useStandard();

    EXPECT_EQ(code, kOkButton);
    EXPECT_GE(nextStep, steps.size());
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
    NoLines lines;
    ASSERT_TRUE(useWindows(&lines));
    ASSERT_TRUE(useWindows(nullptr));
    const ResourceScope resources(base::processImage());
    InputDialog dialog;
    steps.clear();
    nextStep = 0;
    int rowWhileRefused = 0;
    std::wstring shown;

    pressWith(VK_MENU, 'E');  // to the height, by its label
    type("3");
    clickRow(dialog, IDC_LIST, 1, 1);
    press(VK_RETURN);  // the box
    steps.push_back(
        [&] { rowWhileRefused = ListView_GetNextItem(controlWindow(dialog, IDC_LIST), -1, LVNI_SELECTED); });
    pressWith(VK_MENU, 'V');  // and the value, by its own
    press(VK_RETURN);
    type("2");
    clickRow(dialog, IDC_LIST, 0, 1);  // not where the last click was: that would be a double click
    // A choice that its handler takes back.
    dialog.addChoice(IDC_LAYER, L"red");
    dialog.addChoice(IDC_LAYER, L"More");
    dialog.setText(IDC_LAYER, L"red");
    click(dialog, IDC_LAYER);
    press(VK_F4);
    press(VK_DOWN);
    press(VK_RETURN);
    steps.push_back([] {});
    steps.push_back([&] {
        wchar_t text[20];
        GetWindowTextW(controlWindow(dialog, IDC_LAYER), text, 20);
        shown = text;
        dialog.end(kCancelButton);
    });
    open = &dialog;
    UINT_PTR const timer = SetTimer(nullptr, 0, 40, tick);
    dialog.runModal();
    KillTimer(nullptr, timer);
    useStandard();

    EXPECT_EQ(rowWhileRefused, -1);
    EXPECT_EQ(base::toUtf8(dialog.text(IDC_HEIGHT)), "2");
    EXPECT_EQ(base::toUtf8(shown), "red");
    EXPECT_THAT(dialog.log, ElementsAre("bad height, going to 122", "bad height, going to 109", "row 0", "chosen 108"));
}

// The host counts as work what is no waiting.
TEST(RealInput, AWindowThatIsDraggedIsWaitedFor) {
    NoLines lines;
    ASSERT_TRUE(useWindows(&lines));
    int waiting = 0;
    ASSERT_TRUE(useWindows(nullptr, [&](const std::function<void()>& wait) {
        ++waiting;
        wait();
        --waiting;
    }));
    const ResourceScope resources(base::processImage());
    InputDialog dialog;
    steps.clear();
    nextStep = 0;
    bool wasDragged = false, wasWaitedFor = false;

    // The move is begun by a message, as that of a mouse is, and ends with Enter.
    steps.push_back([&] { PostMessageW(static_cast<HWND>(dialog.window()), WM_SYSCOMMAND, SC_MOVE, 0); });
    press(VK_RIGHT);
    steps.push_back([&] {
        GUITHREADINFO info = {};
        info.cbSize = sizeof info;
        wasDragged = GetGUIThreadInfo(GetCurrentThreadId(), &info) && (info.flags & GUI_INMOVESIZE) != 0;
        wasWaitedFor = waiting > 0;
    });
    press(VK_RETURN);
    steps.push_back([&] { dialog.end(kCancelButton); });
    open = &dialog;
    UINT_PTR const timer = SetTimer(nullptr, 0, 40, tick);
    dialog.runModal();
    KillTimer(nullptr, timer);
    useStandard();

    EXPECT_TRUE(wasDragged);
    EXPECT_TRUE(wasWaitedFor);
}

}  // namespace
