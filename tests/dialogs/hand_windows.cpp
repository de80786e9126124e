#include <windows.h>
#include <commctrl.h>
#include <windowsx.h>

#include "base/text.h"
#include "tests/dialogs/hand.h"

namespace hand {
namespace {

void sendKey(WORD code, bool up) {
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = code;
    input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(code, MAPVK_VK_TO_VSC));
    input.ki.dwFlags = up ? KEYEVENTF_KEYUP : 0;
    SendInput(1, &input, sizeof input);
}

WORD codeOf(Held held) {
    switch (held) {
        case Held::kNothing:
            return 0;
        case Held::kShift:
            return VK_SHIFT;
        case Held::kControl:
            return VK_CONTROL;
        case Held::kAlt:
            return VK_MENU;
    }
    return 0;
}

void pressCode(WORD code, Held held) {
    if (held != Held::kNothing) sendKey(codeOf(held), false);
    sendKey(code, false);
    sendKey(code, true);
    if (held != Held::kNothing) sendKey(codeOf(held), true);
}

WORD codeOf(Key key) {
    switch (key) {
        case Key::kEnter:
            return VK_RETURN;
        case Key::kEscape:
            return VK_ESCAPE;
        case Key::kTab:
            return VK_TAB;
        case Key::kDelete:
            return VK_DELETE;
        case Key::kEnd:
            return VK_END;
        case Key::kRight:
            return VK_RIGHT;
        case Key::kDown:
            return VK_DOWN;
        case Key::kHelp:
            return VK_F1;
        case Key::kDropDown:
            return VK_F4;
    }
    return 0;
}

// A page's controls lie in a window of the page's own.
HWND controlWindow(const dialogs::Dialog& dialog, int id) {
    struct Search {
        int id;
        HWND found;
    } search{id, nullptr};
    EnumChildWindows(
        static_cast<HWND>(dialog.window()),
        [](HWND window, LPARAM searched) -> BOOL {
            Search& wanted = *reinterpret_cast<Search*>(searched);
            if (GetDlgCtrlID(window) != wanted.id) return TRUE;
            wanted.found = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

void sendMouse(DWORD what, int data = 0) {
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = what;
    input.mi.mouseData = static_cast<DWORD>(data);
    SendInput(1, &input, sizeof input);
}

void pointTo(const dialogs::Dialog& dialog, int control) {
    RECT place;
    GetWindowRect(controlWindow(dialog, control), &place);
    SetCursorPos(place.left + 8, (place.top + place.bottom) / 2);
}

void clickHere(int times) {
    for (int i = 0; i < times; ++i) {
        sendMouse(MOUSEEVENTF_LEFTDOWN);
        sendMouse(MOUSEEVENTF_LEFTUP);
    }
}

std::function<void()> currentTick;

void CALLBACK onTimer(HWND, UINT, UINT_PTR, DWORD) { currentTick(); }

}  // namespace

void press(Key key, Held held) { pressCode(codeOf(key), held); }

// Letters, digits and the blank are their own codes.
void press(char character, Held held) { pressCode(static_cast<WORD>(character), held); }

void click(const dialogs::Dialog& dialog, int control) {
    pointTo(dialog, control);
    clickHere(1);
}

void rightClick(const dialogs::Dialog& dialog, int control) {
    pointTo(dialog, control);
    sendMouse(MOUSEEVENTF_RIGHTDOWN);
    sendMouse(MOUSEEVENTF_RIGHTUP);
}

void clickItem(const dialogs::Dialog& dialog, int list, int item, int times) {
    HWND const window = controlWindow(dialog, list);
    RECT place = {};
    wchar_t name[32];
    GetClassNameW(window, name, 32);
    if (std::wstring_view(name) == WC_LISTVIEWW)
        ListView_GetItemRect(window, item, &place, LVIR_LABEL);
    else
        SendMessageW(window, LB_GETITEMRECT, static_cast<WPARAM>(item), reinterpret_cast<LPARAM>(&place));
    POINT point = {place.left + 10, (place.top + place.bottom) / 2};
    ClientToScreen(window, &point);
    SetCursorPos(point.x, point.y);
    clickHere(times);
}

void turnWheel(const dialogs::Dialog& dialog, int control) {
    pointTo(dialog, control);
    sendMouse(MOUSEEVENTF_WHEEL, -WHEEL_DELTA);
}

bool meets(const dialogs::Dialog& dialog, int control) {
    RECT place;
    GetWindowRect(controlWindow(dialog, control), &place);
    return WindowFromPoint({place.left + 8, (place.top + place.bottom) / 2}) == controlWindow(dialog, control);
}

int selectedRow(const dialogs::Dialog& dialog, int list) {
    return ListView_GetNextItem(controlWindow(dialog, list), -1, LVNI_SELECTED);
}

std::string shownText(const dialogs::Dialog& dialog, int dropDown) {
    wchar_t text[100];
    GetWindowTextW(controlWindow(dialog, dropDown), text, 100);
    return base::toUtf8(text);
}

void workWithTicks(const std::function<void()>& work, const std::function<void()>& tick) {
    currentTick = tick;
    UINT_PTR const timer = SetTimer(nullptr, 0, 40, onTimer);  // behind all other messages
    work();
    KillTimer(nullptr, timer);
}

}  // namespace hand
