// The window on Windows, worked by a real mouse and real keys.
#include <windows.h>
#include <commctrl.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/dialogs/real_input.h"
#include "tests/window/recorded_events.h"
#include "torvelhost/window/make_frame.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsSupersetOf;

class Win32Frame : public testing::Test {
  protected:
    void SetUp() override {
        std::wstring reason;
        frame = host::makeViewFrame(reason);
        ASSERT_TRUE(frame) << base::toUtf8(reason);
        fill(*frame);
        frame->open(events);
        settle();
        events.log.clear();
    }

    // Until nothing comes any more.
    void settle() {
        for (std::size_t before = ~std::size_t{0}; before != events.log.size();) {
            before = events.log.size();
            frame->waitForEvents(frame->now() + 60);
        }
    }

    HWND child(const wchar_t* kind, int which = 0) {
        HWND found = nullptr;
        for (int i = 0; i <= which; ++i)
            found = FindWindowExW(static_cast<HWND>(frame->nativeWindow()), found, kind, nullptr);
        return found;
    }
    static void move(HWND window, int x, int y) {
        POINT at = {x, y};
        ClientToScreen(window, &at);
        SetCursorPos(at.x, at.y);
    }
    static void button(DWORD what, int data = 0) {
        INPUT input = {};
        input.type = INPUT_MOUSE;
        input.mi.dwFlags = what;
        input.mi.mouseData = static_cast<DWORD>(data);
        SendInput(1, &input, sizeof input);
    }
    void click(HWND window, int x, int y) {
        move(window, x, y);
        button(MOUSEEVENTF_LEFTDOWN);
        button(MOUSEEVENTF_LEFTUP);
        settle();
    }
    std::vector<std::string> logged(std::string_view beginning) {
        std::vector<std::string> lines;
        for (const std::string& line : events.log)
            if (line.starts_with(beginning)) lines.push_back(line);
        return lines;
    }

    const OwnDesktop desktop;
    RecordedEvents events;
    std::unique_ptr<host::ViewFrame> frame;
};

TEST_F(Win32Frame, MouseOverTheCanvas) {
    HWND const canvas = child(L"TorvelCanvas");
    click(canvas, 40, 30);
    EXPECT_THAT(events.log, IsSupersetOf({"moved 40,30", "pressed left 40,30", "released left 40,30"}));
    button(MOUSEEVENTF_LEFTDOWN);
    button(MOUSEEVENTF_LEFTUP);
    settle();
    EXPECT_THAT(events.log, Contains("double left 40,30"));

    button(MOUSEEVENTF_WHEEL, 2 * WHEEL_DELTA);
    move(canvas, 100, 50);
    button(MOUSEEVENTF_MIDDLEDOWN);
    move(canvas, 120, 60);
    settle();
    button(MOUSEEVENTF_MIDDLEUP);
    settle();
    EXPECT_THAT(events.log,
                IsSupersetOf({"wheel 2 40,30", "pressed middle 100,50", "moved 120,60", "released middle 120,60"}));
}

TEST_F(Win32Frame, WhatIsTypedGoesToTheCommandLine) {
    click(child(L"TorvelCanvas"), 40, 30);
    events.log.clear();
    events.takes = {host::Key::kEnter, host::Key::kEscape, host::Key::kUp};
    hand::press('A', Held::kNothing);
    hand::press(' ', Held::kNothing);
    hand::press('1', Held::kNothing);
    hand::press(Key::kEnter, Held::kNothing);
    settle();
    EXPECT_THAT(events.log, ElementsAre("text a", "key Space", "text a ", "text a 1", "key Enter"));
    frame->setCommandText(L"xline");
    hand::press('1', Held::kNothing);
    settle();
    EXPECT_EQ(events.log.back(), "text xline1") << "the caret stands behind what was set";
    hand::press(Key::kEscape, Held::kNothing);
    hand::press(Key::kHelp, Held::kNothing);
    settle();
    EXPECT_EQ(logged("key Escape").size(), 1u);
    EXPECT_EQ(logged("key Help").size(), 1u);
}

TEST_F(Win32Frame, MenusTabsAndWords) {
    hand::press('S', Held::kControl);
    settle();
    EXPECT_THAT(logged("menu"), ElementsAre("menu File/Save"));
    click(child(L"ToolbarWindow32"), 20, 12);
    EXPECT_THAT(logged("menu"), ElementsAre("menu File/Save", "menu File/Save"));
    hand::press('F', Held::kAlt);
    hand::press('S', Held::kNothing);
    settle();
    EXPECT_EQ(logged("menu").size(), 3u);

    RECT tab;
    SendMessageW(child(L"SysTabControl32"), 0x130A /* TCM_GETITEMRECT */, 1, reinterpret_cast<LPARAM>(&tab));
    click(child(L"SysTabControl32"), (tab.left + tab.right) / 2, (tab.top + tab.bottom) / 2);
    EXPECT_THAT(logged("tab"), ElementsAre("tab 1"));
    hand::press(Key::kTab, Held::kControl);
    settle();
    EXPECT_THAT(logged("tab"), ElementsAre("tab 1", "tab 0"));

    HWND const prompt = child(L"SysLink");
    SIZE whole = {}, before = {};
    HDC const screen = GetDC(prompt);
    SelectObject(screen, reinterpret_cast<HGDIOBJ>(SendMessageW(prompt, WM_GETFONT, 0, 0)));
    const std::wstring line =
        L"Specify a point <\x200B"
        L"a b> or [Hor/Ver";  // no anchor begins there
    GetTextExtentPoint32W(screen, line.c_str(), static_cast<int>(line.size()), &whole);
    GetTextExtentPoint32W(screen, line.c_str(), static_cast<int>(line.size()) - 3, &before);
    ReleaseDC(prompt, screen);
    click(prompt, static_cast<int>(before.cx + whole.cx) / 2, static_cast<int>(whole.cy) / 2);
    EXPECT_THAT(logged("word"), ElementsAre("word 1"));
    hand::press('X', Held::kNothing);
    settle();
    EXPECT_EQ(events.log.back(), "text x") << "the command line has the focus again";
}

// By Tab from the command line on, every control comes, and the line again.
TEST_F(Win32Frame, EverythingIsReachedByKeys) {
    std::vector<std::wstring> kinds;
    for (int i = 0; i < 5; ++i) {
        hand::press(Key::kTab, Held::kNothing);
        settle();
        wchar_t kind[64];
        GetClassNameW(GetFocus(), kind, 64);
        kinds.emplace_back(kind);
    }
    EXPECT_THAT(kinds, ElementsAre(L"ToolbarWindow32", L"SysTabControl32", L"Edit", L"SysLink", L"Edit"));
    EXPECT_EQ(logged("key Tab").size(), 1u) << "the line is asked first";
    hand::press(Key::kTab, Held::kNothing);
    settle();
    hand::press('X', Held::kNothing);
    settle();
    EXPECT_EQ(events.log.back(), "text x") << "typed where nobody can type";
}

// No tool lies beyond the window's edge, and the canvas begins below the last of them.
TEST_F(Win32Frame, TheToolbarBreaksIntoRows) {
    host::Menu menu{L"&Draw", {}};
    for (int i = 0; i < 12; ++i) menu.entries.push_back({L"Infinite line", L"Draw/Line", L"", L"", true});
    frame->setMenus({menu});
    HWND const window = static_cast<HWND>(frame->nativeWindow()), tools = child(L"ToolbarWindow32");
    for (const int width : {500, 1200, 350}) {
        SetWindowPos(window, nullptr, 0, 0, width, 600, SWP_NOZORDER);
        settle();
        RECT whole, last, canvas;
        GetClientRect(window, &whole);
        GetWindowRect(child(L"TorvelCanvas"), &canvas);
        for (WPARAM i = 0; i < 12; ++i) {
            SendMessageW(tools, TB_GETITEMRECT, i, reinterpret_cast<LPARAM>(&last));
            EXPECT_LE(last.right, whole.right) << width << ' ' << i;
        }
        MapWindowPoints(tools, nullptr, reinterpret_cast<POINT*>(&last), 2);
        EXPECT_LE(last.bottom, canvas.top) << width;
    }
}

TEST_F(Win32Frame, SizeAndPicture) {
    HWND const window = static_cast<HWND>(frame->nativeWindow());
    SetWindowPos(window, nullptr, 0, 0, 700, 600, SWP_NOZORDER);
    settle();
    ASSERT_THAT(logged("resized"), ElementsAre("resized"));
    host::PixelBuffer picture{events.width, events.height, {}};
    picture.pixels.assign(static_cast<std::size_t>(events.width) * static_cast<std::size_t>(events.height), 0xFF204060);
    frame->showPicture(picture);
    picture.pixels[static_cast<std::size_t>(15) * static_cast<std::size_t>(events.width) + 15] = 0xFFFF0000;
    frame->showPicture(picture);
    HDC const screen = GetDC(child(L"TorvelCanvas"));
    EXPECT_EQ(GetPixel(screen, 5, 5), RGB(0x20, 0x40, 0x60));
    EXPECT_EQ(GetPixel(screen, 15, 15), RGB(0xFF, 0, 0));
    EXPECT_EQ(GetPixel(screen, 20, 20), RGB(0x20, 0x40, 0x60));
    ReleaseDC(child(L"TorvelCanvas"), screen);
}

// While a command works, Escape is heard and all else waits.
TEST_F(Win32Frame, BreathingHearsEscapeAlone) {
    hand::press('S', Held::kControl);
    EXPECT_FALSE(frame->breathe());
    hand::press(Key::kEscape, Held::kNothing);
    Sleep(50);
    EXPECT_TRUE(frame->breathe());
    EXPECT_FALSE(frame->breathe());
    EXPECT_TRUE(events.log.empty());
}

TEST_F(Win32Frame, TheCloseButtonAsks) {
    PostMessageW(static_cast<HWND>(frame->nativeWindow()), WM_SYSCOMMAND, SC_CLOSE, 0);
    settle();
    EXPECT_THAT(events.log, Contains("close"));
    EXPECT_TRUE(IsWindow(static_cast<HWND>(frame->nativeWindow())));
}

}  // namespace
