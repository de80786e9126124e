// Real mouse and keys for the windows of a test: each piece of input goes through the system, one a tick of a timer,
// behind all other messages.
//
//     const OwnDesktop desktop;
//     RealInput input;
//     input.type("DOOR");
//     input.click(dialog, IDC_NEXT);
//     int code = 0;
//     input.during([&] { code = dialog.runModal(); });
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <functional>
#include <gtest/gtest.h>
#include <string_view>

#include "dialogs/dialog.h"
#include "dialogs/process.h"

/// Dialogs are windows that a person works, on a desktop that no other process shares.
class OwnDesktop {
  public:
    OwnDesktop() {
        // A script's use of windows gives the process a desktop of its own.
        EXPECT_TRUE(dialogs::useWindows(&noLines_));
        EXPECT_TRUE(dialogs::useWindows(nullptr));
    }
    ~OwnDesktop() { dialogs::useStandard(); }
    OwnDesktop(const OwnDesktop&) = delete;
    OwnDesktop& operator=(const OwnDesktop&) = delete;

  private:
    class NoLines final : public dialogs::LineSource {
      public:
        std::optional<std::wstring> next(const std::wstring&) override { return std::nullopt; }
        void print(std::wstring_view) override {}
        void refuse(const std::wstring&) override {}
        bool isScript() const override { return true; }
    } noLines_;
};

inline HWND controlWindow(const dialogs::Dialog& dialog, int id) {
    return GetDlgItem(static_cast<HWND>(dialog.window()), id);
}

class RealInput {
  public:
    /// Any other piece.
    void then(std::function<void()> step) { steps_.push_back(std::move(step)); }

    void press(WORD code) {
        then([code] { pressAndRelease(code); });
    }
    void pressWith(WORD modifier, WORD code) {
        then([modifier, code] {
            sendKey(modifier, false);
            sendKey(code, false);
            sendKey(code, true);
            sendKey(modifier, true);
        });
    }
    /// Capital letters, digits and blanks are their own codes; letters come out small.
    void type(std::string_view text) {
        for (char c : text) press(static_cast<WORD>(c));
    }
    void clickAt(const std::function<POINT()>& place, int times = 1) {
        then([place, times] {
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
    void click(const dialogs::Dialog& dialog, int id) {
        clickAt([&dialog, id] {
            RECT place;
            GetWindowRect(controlWindow(dialog, id), &place);
            return POINT{place.left + 8, (place.top + place.bottom) / 2};
        });
    }
    void clickRow(const dialogs::Dialog& dialog, int id, int row, int times) {
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

    /// Does the work, which shows windows, and the input meanwhile. All of it must have been used when the work ends.
    void during(const std::function<void()>& work) {
        current_ = this;
        UINT_PTR const timer = SetTimer(nullptr, 0, 40, tick);
        work();
        KillTimer(nullptr, timer);
        EXPECT_GE(next_, steps_.size()) << "input was left over";
        EXPECT_LT(next_, steps_.size() + kPatience) << "a window stayed open";
    }

  private:
    static void CALLBACK tick(HWND, UINT, UINT_PTR, DWORD) {
        RealInput& input = *current_;
        if (input.next_ < input.steps_.size()) input.steps_[input.next_]();
        // A window that is still open long after the last piece would wait for ever.
        if (++input.next_ >= input.steps_.size() + kPatience) pressAndRelease(VK_ESCAPE);
    }
    static void sendKey(WORD code, bool up) {
        INPUT input = {};
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = code;
        input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(code, MAPVK_VK_TO_VSC));
        input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
        SendInput(1, &input, sizeof input);
    }

    static void pressAndRelease(WORD code) {
        sendKey(code, false);
        sendKey(code, true);
    }

    static constexpr std::size_t kPatience = 50;
    static inline RealInput* current_ = nullptr;
    std::vector<std::function<void()>> steps_;
    std::size_t next_ = 0;
};
