// A window of the system: menu, toolbar, canvas, tabs, history, prompt, command line and status, from the top down.
//
// The command line's field has the focus whenever no other control was given it, so what is typed lands there, wherever
// the mouse is. Keys, accelerators and the wheel are taken where messages are fetched; messages of loops that are not
// this frame's (menus, dialogs) come through the windows' procedures alone. A hand posts the messages that the system
// would, and has them taken at once; exceptions must not pass through the system, and are thrown again behind it.
#include <windows.h>
#include <commctrl.h>
#include <shellapi.h>
#include <shlobj.h>
#include <windowsx.h>

#include <algorithm>
#include <cmath>
#include <exception>

#include "base/modules.h"
#include "base/text.h"
#include "dialogs/windows/themed.h"
#include "torvelhost/window/canvas_window_windows.h"
#include "torvelhost/window/make_frame.h"
#include "torvelhost/window/prompt_words.h"
#include "torvelhost/window/window_hand.h"

namespace host {
namespace {

constexpr wchar_t kClassName[] = L"TorvelWindow";
constexpr UINT kFirstCommand = 1000;  // menu entries have ids from here on, in their order
constexpr LONG kLargestByHand = 30000;
constexpr int kHistoryLines = 5;
constexpr std::size_t kLongestHistory = 200000;  // characters; the older half goes then

HINSTANCE instance() { return static_cast<HINSTANCE>(base::moduleOf(reinterpret_cast<const void*>(&instance))); }

std::wstring windowText(HWND window) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

// Of a menu's entry, for a button.
std::wstring plainText(std::wstring text) {
    std::erase(text, L'&');
    while (text.ends_with(L'.')) text.pop_back();
    return text;
}

// "Ctrl+Shift+Z", "F5"; nothing where the key has no name here.
std::optional<ACCEL> acceleratorOf(std::wstring_view shortcut, WORD command) {
    ACCEL accelerator = {FVIRTKEY, 0, command};
    for (;;) {
        const std::size_t plus = shortcut.find(L'+');
        if (plus == shortcut.npos || plus + 1 == shortcut.size()) break;
        const std::wstring_view word = shortcut.substr(0, plus);
        if (word == L"Ctrl") accelerator.fVirt |= FCONTROL;
        if (word == L"Shift") accelerator.fVirt |= FSHIFT;
        if (word == L"Alt") accelerator.fVirt |= FALT;
        shortcut.remove_prefix(plus + 1);
    }
    if (shortcut.size() == 1 &&
        ((shortcut[0] >= L'0' && shortcut[0] <= L'9') || (shortcut[0] >= L'A' && shortcut[0] <= L'Z')))
        accelerator.key = shortcut[0];
    else if (shortcut.size() >= 2 && shortcut[0] == L'F')
        accelerator.key = static_cast<WORD>(VK_F1 + std::stoi(std::wstring(shortcut.substr(1))) - 1);
    else
        return std::nullopt;
    return accelerator;
}

constexpr struct {
    WPARAM code;
    Key key;
} kKeys[] = {
    {VK_RETURN, Key::kEnter}, {VK_ESCAPE, Key::kEscape}, {VK_SPACE, Key::kSpace},   {VK_TAB, Key::kTab},
    {VK_UP, Key::kUp},        {VK_DOWN, Key::kDown},     {VK_DELETE, Key::kDelete}, {VK_F1, Key::kHelp},
};

std::optional<Key> keyOf(WPARAM code) {
    for (const auto& known : kKeys)
        if (known.code == code) return known.key;
    return std::nullopt;
}

// The text for a SysLink: each word of the prompt is one. It knows no entities and shows a `<` as it
// is, unless an anchor could begin or end there: a character without width keeps those two apart.
std::wstring linkText(const std::wstring& prompt, const std::vector<std::wstring>& words) {
    std::wstring text;
    std::size_t at = 0;
    const auto copyTo = [&](std::size_t end) {
        for (; at < end; ++at) {
            text += prompt[at];
            const wchar_t after = at + 1 < prompt.size() ? prompt[at + 1] : L' ';
            if (prompt[at] == L'<' && (after == L'a' || after == L'A' || after == L'/')) text += L'\x200B';
        }
    };
    const std::vector<std::size_t> places = wordPlaces(prompt, words);
    for (std::size_t i = 0; i < places.size(); ++i) {
        copyTo(places[i]);
        text += L"<a id=\"" + std::to_wstring(i) + L"\">" + words[i] + L"</a>";
        at = places[i] + words[i].size();
    }
    copyTo(prompt.size());
    return text;
}

// Of messages of the mouse.
LPARAM packedPlace(const CanvasPoint& place) {
    return MAKELPARAM(static_cast<WORD>(std::lround(place.x)), static_cast<WORD>(std::lround(place.y)));
}

class Win32Frame final : public ViewFrame, public WindowHand {
  public:
    Win32Frame();
    ~Win32Frame() override;
    Win32Frame(const Win32Frame&) = delete;
    Win32Frame& operator=(const Win32Frame&) = delete;

    void open(ViewEvents& events) override;
    void waitForEvents(std::optional<std::int64_t> until) override;
    std::int64_t now() override { return static_cast<std::int64_t>(GetTickCount64()); }
    bool breathe() override;
    void showPicture(const PixelBuffer& picture) override { canvas_.show(picture); }
    void setCursor(Cursor cursor) override;
    void setTip(const std::wstring& text, CanvasPoint at) override;
    void setTitle(const std::wstring& title) override { SetWindowTextW(window_, title.c_str()); }
    void setStatus(const std::wstring& text) override { showStatus(statusText_ = text); }
    void setProgress(double part) override;
    void setMenus(const std::vector<Menu>& menus) override;
    void setTabs(const std::vector<std::wstring>& names, std::size_t current) override;
    void setPrompt(const std::wstring& prompt, const std::vector<std::wstring>& words) override;
    void setCommandText(const std::wstring& text) override;
    void addHistory(const std::wstring& text) override;
    void* nativeWindow() override { return window_; }
    void activate() override;

    /// ---- as a hand works it
    void resizeCanvas(int width, int height) override;
    void mouse(Mouse what, MouseButton button, CanvasPoint at, bool shift) override;
    void leaveCanvas() override { post(canvas_.window(), WM_MOUSELEAVE); }
    void turnWheel(double notches, CanvasPoint at) override;
    void pressKey(Key key) override;
    void pressBackspace() override { post(focus(), WM_KEYDOWN, VK_BACK); }
    void type(wchar_t character) override { post(focus(), WM_CHAR, character); }
    void enterText(const std::wstring& text) override;
    std::wstring commandText() const override { return windowText(line_); }
    void chooseEntry(const std::wstring& path) override;
    void clickTab(std::size_t index) override;
    void clickWord(std::size_t index) override;
    void dropFile(const std::wstring& path) override;
    void clickClose() override { post(window_, WM_SYSCOMMAND, SC_CLOSE); }

  private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM packed);
    LRESULT handle(UINT message, WPARAM wide, LPARAM packed);
    LRESULT notified(const NMHDR& note);
    HWND makeControl(const wchar_t* kind, const wchar_t* name, DWORD style, DWORD extended = 0);
    void makeControls();
    void layOut();
    int breakToolbar(int width);
    int scaled(int pixels) const { return MulDiv(pixels, dpi_, 96); }
    /// A message that was fetched: what keys and the wheel mean here. False: it goes its usual way.
    bool take(const MSG& message);
    bool takeKey(const MSG& message);
    void deliver(const MSG& message);
    void mouseOverCanvas(UINT message, WPARAM wide, LPARAM packed);
    void tellSize();
    void showStatus(const std::wstring& text);
    void showToolbar(const std::vector<Menu>& menus);

    /// Calls the events, where they may be called.
    template <class Call>
    void tell(Call call) {
        if (!waiting_) return;
        handedOver_ = true;
        try {
            call(*events_);
        } catch (...) {
            if (!failure_) failure_ = std::current_exception();
        }
    }
    void rethrow() {
        if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
    }

    /// Does what a hand would, and hands it over.
    template <class Deed>
    void work(Deed deed);
    void post(HWND window, UINT message, WPARAM wide = 0, LPARAM packed = 0);
    void clickAt(HWND window, int x, int y);
    HWND focus() const;

    ViewEvents* events_ = nullptr;
    HWND window_ = nullptr;
    CanvasWindow canvas_;
    HWND toolbar_ = nullptr, tabs_ = nullptr, history_ = nullptr, prompt_ = nullptr, line_ = nullptr, status_ = nullptr,
         progress_ = nullptr, tip_ = nullptr;
    HFONT font_ = nullptr;
    HACCEL accelerators_ = nullptr;
    std::vector<MenuEntry> entries_;  // by their ids
    std::vector<std::wstring> toolbarTexts_;
    std::wstring statusText_;
    int dpi_ = 96;
    int toldWidth_ = -1, toldHeight_ = -1;
    bool waiting_ = false;     // inside waitForEvents
    bool handedOver_ = false;  // something, in this call of it
    bool settingText_ = false;
    bool mouseInside_ = false;
    bool tipShown_ = false;
    std::exception_ptr failure_;

    bool byHand_ = false;                // a hand works it, and the real mouse says nothing
    std::optional<CanvasPoint> handAt_;  // where it is on the canvas; messages have whole pixels
    WPARAM held_ = 0;                    // MK_LBUTTON and the like, by that hand
};

// ---- making it

Win32Frame::Win32Frame() {
    SetProcessDPIAware();
    const dialogs::Themed themed;
    INITCOMMONCONTROLSEX kinds = {sizeof kinds, ICC_WIN95_CLASSES | ICC_LINK_CLASS | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&kinds);
    if (HDC const screen = GetDC(nullptr)) {
        dpi_ = GetDeviceCaps(screen, LOGPIXELSX);
        ReleaseDC(nullptr, screen);
    }
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    if (SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0))
        font_ = CreateFontIndirectW(&metrics.lfMessageFont);

    WNDCLASSEXW kind = {};
    kind.cbSize = sizeof kind;
    kind.lpfnWndProc = procedure;
    kind.hInstance = instance();
    kind.hIcon = LoadIconW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(1));  // the program's own
    if (!kind.hIcon) kind.hIcon = LoadIconW(nullptr, IDI_APPLICATION);
    kind.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    kind.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    kind.lpszClassName = kClassName;
    RegisterClassExW(&kind);  // fails where it is registered already
    CreateWindowExW(WS_EX_ACCEPTFILES, kClassName, L"torvelhost", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT,
                    CW_USEDEFAULT, scaled(1280), scaled(900), nullptr, nullptr, instance(), this);
    if (window_) makeControls();
}

Win32Frame::~Win32Frame() {
    waiting_ = false;
    if (window_) DestroyWindow(window_);
    if (accelerators_) DestroyAcceleratorTable(accelerators_);
    if (font_) DeleteObject(font_);
}

HWND Win32Frame::makeControl(const wchar_t* kind, const wchar_t* name, DWORD style, DWORD extended) {
    HWND const control = CreateWindowExW(extended, kind, name, WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0, window_,
                                         nullptr, instance(), nullptr);
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font_), FALSE);
    return control;
}

// In the order of the Tab key. The names are what screen readers say.
void Win32Frame::makeControls() {
    canvas_.create(window_,
                   [this](UINT message, WPARAM wide, LPARAM packed) { mouseOverCanvas(message, wide, packed); });
    toolbar_ = makeControl(
        TOOLBARCLASSNAMEW, L"Tools",
        WS_TABSTOP | TBSTYLE_FLAT | TBSTYLE_LIST | TBSTYLE_TOOLTIPS | CCS_NORESIZE | CCS_NOPARENTALIGN | CCS_NODIVIDER);
    SendMessageW(toolbar_, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    SendMessageW(toolbar_, TB_SETBITMAPSIZE, 0, 0);
    tabs_ = makeControl(WC_TABCONTROLW, L"Layouts", WS_TABSTOP | TCS_FOCUSNEVER);
    SetWindowLongW(tabs_, GWL_STYLE, GetWindowLongW(tabs_, GWL_STYLE) & ~TCS_FOCUSNEVER);
    history_ = makeControl(L"EDIT", L"", WS_TABSTOP | WS_VSCROLL | ES_MULTILINE | ES_READONLY | ES_AUTOVSCROLL,
                           WS_EX_CLIENTEDGE);
    SendMessageW(history_, EM_SETLIMITTEXT, 0, 0);
    prompt_ = makeControl(WC_LINK, L"", WS_TABSTOP);
    line_ = makeControl(L"EDIT", L"", WS_TABSTOP | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE);
    status_ = makeControl(STATUSCLASSNAMEW, L"", SBARS_SIZEGRIP);
    progress_ =
        CreateWindowExW(0, PROGRESS_CLASSW, L"Progress", WS_CHILD, 0, 0, 0, 0, status_, nullptr, instance(), nullptr);
    tip_ = CreateWindowExW(WS_EX_TOPMOST | WS_EX_TRANSPARENT, TOOLTIPS_CLASSW, nullptr,
                           WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, 0, 0, 0, 0, window_, nullptr, instance(), nullptr);
    TOOLINFOW tool = {};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_TRACK | TTF_ABSOLUTE | TTF_TRANSPARENT;
    tool.hwnd = window_;
    wchar_t none[] = L"";
    tool.lpszText = none;
    SendMessageW(tip_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void Win32Frame::open(ViewEvents& events) {
    events_ = &events;
    layOut();
    ShowWindow(window_, SW_SHOWDEFAULT);
    SetForegroundWindow(window_);
    SetFocus(line_);
    UpdateWindow(window_);
    // The view shows a drawing in the size that there is.
    waiting_ = true;
    tellSize();
    waiting_ = false;
    rethrow();
}

// Into rows of that width at most. Their height in all.
int Win32Frame::breakToolbar(int width) {
    const auto rectangleOf = [this](int index) {
        RECT place = {};
        SendMessageW(toolbar_, TB_GETITEMRECT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&place));
        return place;
    };
    const auto setBreak = [this](int index, bool on) {
        TBBUTTONINFOW info = {};
        info.cbSize = sizeof info;
        info.dwMask = TBIF_BYINDEX | TBIF_STATE;
        SendMessageW(toolbar_, TB_GETBUTTONINFOW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&info));
        const auto state = static_cast<BYTE>(on ? info.fsState | TBSTATE_WRAP : info.fsState & ~TBSTATE_WRAP);
        if (state == info.fsState) return;
        info.fsState = state;
        SendMessageW(toolbar_, TB_SETBUTTONINFOW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&info));
    };
    const int count = static_cast<int>(SendMessageW(toolbar_, TB_BUTTONCOUNT, 0, 0));
    for (int i = 0, right = 0; i < count; ++i) {
        const RECT place = rectangleOf(i);
        const int own = static_cast<int>(place.right - place.left);
        const bool isBehind = i > 0 && right + own > width;
        if (i > 0) setBreak(i - 1, isBehind);
        right = isBehind ? own : right + own;
    }
    SendMessageW(toolbar_, TB_AUTOSIZE, 0, 0);
    return count > 0 ? static_cast<int>(rectangleOf(count - 1).bottom) : 0;
}

// From both ends towards the canvas, which has what is left.
void Win32Frame::layOut() {
    if (!status_) return;
    RECT area;
    GetClientRect(window_, &area);
    const int width = area.right, gap = scaled(2);
    SendMessageW(status_, WM_SIZE, 0, 0);
    RECT statusArea;
    GetWindowRect(status_, &statusArea);
    const int parts[] = {width - scaled(200), width};
    SendMessageW(status_, SB_SETPARTS, 2, reinterpret_cast<LPARAM>(parts));
    RECT progressArea;
    SendMessageW(status_, SB_GETRECT, 1, reinterpret_cast<LPARAM>(&progressArea));
    MoveWindow(progress_, progressArea.left + gap, progressArea.top + gap,
               progressArea.right - progressArea.left - scaled(24), progressArea.bottom - progressArea.top - 2 * gap,
               TRUE);

    HDC const screen = GetDC(window_);
    HGDIOBJ const former = SelectObject(screen, font_);
    TEXTMETRICW text;
    GetTextMetricsW(screen, &text);
    SelectObject(screen, former);
    ReleaseDC(window_, screen);
    const int row = text.tmHeight + scaled(8);

    int top = 0, bottom = area.bottom - (statusArea.bottom - statusArea.top);
    if (const int height = breakToolbar(width - gap); height > 0) {
        MoveWindow(toolbar_, gap, 0, width - gap, std::max(height, row) + gap, TRUE);
        top = std::max(height, row) + 2 * gap;
    }
    const auto placeBelow = [&](HWND control, int height) {
        bottom -= height;
        MoveWindow(control, gap, bottom, width - 2 * gap, height, TRUE);
        bottom -= gap;
    };
    placeBelow(line_, row);
    placeBelow(prompt_, text.tmHeight + scaled(3));
    placeBelow(history_, text.tmHeight * kHistoryLines + scaled(6));
    placeBelow(tabs_, row);
    MoveWindow(canvas_.window(), 0, top, width, std::max(bottom - top, 1), TRUE);
    tellSize();
}

// The canvas may change its size while the view cannot be told.
void Win32Frame::tellSize() {
    if (!waiting_ || IsIconic(window_)) return;
    RECT area;
    GetClientRect(canvas_.window(), &area);
    if (area.right == toldWidth_ && area.bottom == toldHeight_) return;
    toldWidth_ = area.right;
    toldHeight_ = area.bottom;
    tell([&](ViewEvents& events) { events.resized(std::max(toldWidth_, 1), std::max(toldHeight_, 1), dpi_ / 96.0); });
}

// ---- events

void Win32Frame::waitForEvents(std::optional<std::int64_t> until) {
    waiting_ = true;
    handedOver_ = false;
    tellSize();
    while (!handedOver_) {
        MSG message;
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_QUIT)
                tell([](ViewEvents& events) { events.closeAsked(); });
            else
                deliver(message);
            continue;
        }
        const std::int64_t left = until ? *until - now() : 0;
        if (until && left <= 0) break;
        MsgWaitForMultipleObjectsEx(0, nullptr,
                                    until ? static_cast<DWORD>(std::min<std::int64_t>(left, 60000)) : INFINITE,
                                    QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
    waiting_ = false;
    rethrow();
}

void Win32Frame::deliver(const MSG& message) {
    if (take(message)) return;
    TranslateMessage(&message);
    DispatchMessageW(&message);
}

bool Win32Frame::breathe() {
    bool escaped = false;
    MSG message;
    while (PeekMessageW(&message, nullptr, WM_KEYDOWN, WM_KEYDOWN, PM_REMOVE)) escaped |= message.wParam == VK_ESCAPE;
    while (PeekMessageW(&message, nullptr, WM_PAINT, WM_PAINT, PM_REMOVE)) DispatchMessageW(&message);
    return escaped;
}

bool Win32Frame::take(const MSG& message) {
    if (message.hwnd != window_ && !IsChild(window_, message.hwnd)) return false;
    if (message.message == WM_MOUSEWHEEL) {
        POINT at = {GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)};
        if (WindowFromPoint(at) != canvas_.window()) return false;
        ScreenToClient(canvas_.window(), &at);
        const double notches = GET_WHEEL_DELTA_WPARAM(message.wParam) / static_cast<double>(WHEEL_DELTA);
        const CanvasPoint place = handAt_.value_or(CanvasPoint{static_cast<double>(at.x), static_cast<double>(at.y)});
        tell([&](ViewEvents& events) { events.wheelTurned(notches, place); });
        return true;
    }
    // What is typed where nobody can type.
    if (message.message == WM_CHAR && message.wParam > L' ' && message.hwnd != line_) {
        SetFocus(line_);
        SendMessageW(line_, WM_CHAR, message.wParam, message.lParam);
        return true;
    }
    if (message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN) return takeKey(message);
    return false;
}

bool Win32Frame::takeKey(const MSG& message) {
    MSG copy = message;
    if (accelerators_ && TranslateAcceleratorW(window_, accelerators_, &copy)) return true;
    const bool alt = message.message == WM_SYSKEYDOWN, control = GetKeyState(VK_CONTROL) < 0;
    if (const int tabs = TabCtrl_GetItemCount(tabs_); tabs > 0 && control && !alt && message.wParam == VK_TAB) {
        // All round, whatever has the focus.
        const int step = GetKeyState(VK_SHIFT) < 0 ? tabs - 1 : 1;
        const int next = (TabCtrl_GetCurSel(tabs_) + step) % tabs;
        TabCtrl_SetCurSel(tabs_, next);
        tell([&](ViewEvents& events) { events.tabChosen(static_cast<std::size_t>(next)); });
        return true;
    }
    HWND const focus = GetFocus();
    const bool inLine = focus == line_ || focus == window_;
    if (const auto key = keyOf(message.wParam); key && !alt && !control) {
        // In the other controls Enter, blanks and arrows are theirs.
        const bool everywhere = key == Key::kEscape || key == Key::kHelp;
        bool taken = false;
        const bool isBack = key == Key::kTab && GetKeyState(VK_SHIFT) < 0;  // to the control before
        if ((inLine || everywhere) && !isBack) tell([&](ViewEvents& events) { taken = events.keyPressed(*key); });
        if (taken) {
            if (key == Key::kEscape) SetFocus(line_);
            return true;
        }
        if (key == Key::kTab) {
            HWND const next = GetNextDlgTabItem(window_, focus, isBack);
            SetFocus(next ? next : line_);
            return true;
        }
        if (key == Key::kEnter && inLine) return true;  // the field would beep
    }
    return false;
}

void Win32Frame::mouseOverCanvas(UINT message, WPARAM wide, LPARAM packed) {
    CanvasPoint at = {static_cast<double>(GET_X_LPARAM(packed)), static_cast<double>(GET_Y_LPARAM(packed))};
    if (byHand_ && message != WM_MOUSELEAVE) {
        if (!handAt_ || packed != packedPlace(*handAt_)) return;
        at = *handAt_;
    }
    const bool shift = (wide & MK_SHIFT) != 0;
    const auto press = [&](MouseButton button, bool isDouble) {
        SetFocus(line_);
        SetCapture(canvas_.window());
        tell([&](ViewEvents& events) {
            isDouble ? events.mouseDoubleClicked(button, at, shift) : events.mousePressed(button, at, shift);
        });
    };
    const auto release = [&](MouseButton button) {
        if ((wide & (MK_LBUTTON | MK_MBUTTON | MK_RBUTTON)) == 0) ReleaseCapture();
        tell([&](ViewEvents& events) { events.mouseReleased(button, at, shift); });
    };
    switch (message) {
        case WM_MOUSEMOVE:
            if (!mouseInside_ && !byHand_) {
                TRACKMOUSEEVENT track = {sizeof track, TME_LEAVE, canvas_.window(), 0};
                mouseInside_ = TrackMouseEvent(&track);
            }
            return tell([&](ViewEvents& events) { events.mouseMoved(at, shift); });
        case WM_MOUSELEAVE:
            mouseInside_ = false;
            return tell([](ViewEvents& events) { events.mouseLeft(); });
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            return press(MouseButton::kLeft, message == WM_LBUTTONDBLCLK);
        case WM_MBUTTONDOWN:
        case WM_MBUTTONDBLCLK:
            return press(MouseButton::kMiddle, message == WM_MBUTTONDBLCLK);
        case WM_RBUTTONDOWN:
        case WM_RBUTTONDBLCLK:
            return press(MouseButton::kRight, message == WM_RBUTTONDBLCLK);
        case WM_LBUTTONUP:
            return release(MouseButton::kLeft);
        case WM_MBUTTONUP:
            return release(MouseButton::kMiddle);
        case WM_RBUTTONUP:
            return release(MouseButton::kRight);
        default:
            return;
    }
}

LRESULT Win32Frame::notified(const NMHDR& note) {
    if (note.hwndFrom == tabs_ && note.code == TCN_SELCHANGE) {
        const auto index = static_cast<std::size_t>(TabCtrl_GetCurSel(tabs_));
        tell([&](ViewEvents& events) { events.tabChosen(index); });
    } else if (note.hwndFrom == tabs_ && note.code == NM_CLICK) {
        SetFocus(line_);
    } else if (note.hwndFrom == prompt_ && (note.code == NM_CLICK || note.code == NM_RETURN)) {
        const auto& link = reinterpret_cast<const NMLINK&>(note);
        SetFocus(line_);
        tell([&](ViewEvents& events) { events.wordChosen(std::stoul(link.item.szID)); });
    } else if (note.code == TTN_GETDISPINFOW) {
        auto& info = const_cast<NMTTDISPINFOW&>(reinterpret_cast<const NMTTDISPINFOW&>(note));
        if (note.idFrom >= kFirstCommand && note.idFrom < kFirstCommand + entries_.size())
            info.lpszText = entries_[note.idFrom - kFirstCommand].hint.data();
    }
    return 0;
}

LRESULT Win32Frame::handle(UINT message, WPARAM wide, LPARAM packed) {
    switch (message) {
        case WM_SIZE:
            layOut();
            return 0;
        case WM_GETMINMAXINFO: {
            MINMAXINFO& limits = *reinterpret_cast<MINMAXINFO*>(packed);
            limits.ptMinTrackSize = {scaled(300), scaled(360)};
            if (byHand_) limits.ptMaxTrackSize = {kLargestByHand, kLargestByHand};  // larger than the screen, too
            return 0;
        }
        case WM_SETFOCUS:
            SetFocus(line_);
            return 0;
        case WM_COMMAND:
            if (reinterpret_cast<HWND>(packed) == line_) {
                if (HIWORD(wide) == EN_CHANGE && !settingText_)
                    tell([&](ViewEvents& events) { events.commandTextChanged(windowText(line_)); });
            } else if (const std::size_t index = LOWORD(wide) - kFirstCommand; index < entries_.size()) {
                if (reinterpret_cast<HWND>(packed) == toolbar_) SetFocus(line_);
                const std::wstring path = entries_[index].path;
                tell([&](ViewEvents& events) { events.menuChosen(path); });
            }
            return 0;
        case WM_MENUSELECT:
            if (const std::size_t index = LOWORD(wide) - kFirstCommand;
                index < entries_.size() && (HIWORD(wide) & MF_POPUP) == 0)
                showStatus(entries_[index].hint);
            else
                showStatus(statusText_);
            return 0;
        case WM_NOTIFY:
            return notified(*reinterpret_cast<const NMHDR*>(packed));
        case WM_DROPFILES: {
            auto* const drop = reinterpret_cast<HDROP>(wide);
            std::wstring path(static_cast<std::size_t>(DragQueryFileW(drop, 0, nullptr, 0)) + 1, L'\0');
            DragQueryFileW(drop, 0, path.data(), static_cast<UINT>(path.size()));
            path.pop_back();
            DragFinish(drop);
            tell([&](ViewEvents& events) { events.fileDropped(path); });
            return 0;
        }
        case WM_CTLCOLORSTATIC:  // the history is read-only, and white all the same
            if (reinterpret_cast<HWND>(packed) == history_)
                return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_WINDOW));
            break;
        case WM_CLOSE:
            tell([](ViewEvents& events) { events.closeAsked(); });
            return 0;
        case WM_NCDESTROY:
            window_ = nullptr;
            return 0;
        default:
            break;
    }
    return DefWindowProcW(window_, message, wide, packed);
}

LRESULT CALLBACK Win32Frame::procedure(HWND window, UINT message, WPARAM wide, LPARAM packed) {
    if (message == WM_NCCREATE) {
        auto* const frame = static_cast<Win32Frame*>(reinterpret_cast<const CREATESTRUCTW*>(packed)->lpCreateParams);
        frame->window_ = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(frame));
    }
    auto* const frame = reinterpret_cast<Win32Frame*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return frame && frame->window_ ? frame->handle(message, wide, packed)
                                   : DefWindowProcW(window, message, wide, packed);
}

// ---- what it shows

void Win32Frame::setCursor(Cursor cursor) {
    const auto system = [](const wchar_t* name) { return LoadCursorW(nullptr, name); };
    switch (cursor) {
        case Cursor::kNone:
            return canvas_.setCursor(nullptr);
        case Cursor::kArrow:
            return canvas_.setCursor(system(IDC_ARROW));
        case Cursor::kWait:
            return canvas_.setCursor(system(IDC_WAIT));
    }
}

void Win32Frame::setTip(const std::wstring& text, CanvasPoint at) {
    TOOLINFOW tool = {};
    tool.cbSize = sizeof tool;
    tool.hwnd = window_;
    std::wstring shown = text;
    tool.lpszText = shown.data();
    if (!text.empty()) {
        POINT corner = {static_cast<LONG>(at.x) + scaled(18), static_cast<LONG>(at.y) + scaled(18)};
        ClientToScreen(canvas_.window(), &corner);
        SendMessageW(tip_, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
        SendMessageW(tip_, TTM_TRACKPOSITION, 0, MAKELPARAM(corner.x, corner.y));
    }
    if (tipShown_ == !text.empty()) return;
    tipShown_ = !text.empty();
    SendMessageW(tip_, TTM_TRACKACTIVATE, tipShown_, reinterpret_cast<LPARAM>(&tool));
}

void Win32Frame::showStatus(const std::wstring& text) {
    SendMessageW(status_, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void Win32Frame::setProgress(double part) {
    ShowWindow(progress_, part < 0 ? SW_HIDE : SW_SHOWNA);
    SendMessageW(progress_, PBM_SETPOS, static_cast<WPARAM>(std::clamp(part, 0.0, 1.0) * 100), 0);
    if (part >= 0) UpdateWindow(progress_);
}

void Win32Frame::setMenus(const std::vector<Menu>& menus) {
    const dialogs::Themed themed;
    entries_.clear();
    HMENU const bar = CreateMenu();
    std::vector<ACCEL> accelerators;
    for (const Menu& menu : menus) {
        HMENU const popup = CreatePopupMenu();
        for (const MenuEntry& entry : menu.entries) {
            if (entry.text.empty()) {
                AppendMenuW(popup, MF_SEPARATOR, 0, nullptr);
                continue;
            }
            const auto id = static_cast<UINT>(kFirstCommand + entries_.size());
            const std::wstring text = entry.shortcut.empty() ? entry.text : entry.text + L"\t" + entry.shortcut;
            AppendMenuW(popup, MF_STRING, id, text.c_str());
            if (const auto accelerator = acceleratorOf(entry.shortcut, static_cast<WORD>(id)))
                accelerators.push_back(*accelerator);
            entries_.push_back(entry);
        }
        AppendMenuW(bar, MF_POPUP | MF_STRING, reinterpret_cast<UINT_PTR>(popup), menu.title.c_str());
    }
    HMENU const former = GetMenu(window_);
    SetMenu(window_, bar);
    if (former) DestroyMenu(former);
    if (accelerators_) DestroyAcceleratorTable(accelerators_);
    accelerators_ = accelerators.empty()
                        ? nullptr
                        : CreateAcceleratorTableW(accelerators.data(), static_cast<int>(accelerators.size()));

    showToolbar(menus);
    layOut();
}

// The entries of a menu stand together.
void Win32Frame::showToolbar(const std::vector<Menu>& menus) {
    while (SendMessageW(toolbar_, TB_DELETEBUTTON, 0, 0)) continue;
    toolbarTexts_.clear();
    const auto add = [this](int id, BYTE state, BYTE style, int width) {
        TBBUTTON button = {};
        button.iBitmap = style == BTNS_SEP ? width : I_IMAGENONE;
        button.idCommand = id;
        button.fsState = state;
        button.fsStyle = style;
        if (style != BTNS_SEP) button.iString = reinterpret_cast<INT_PTR>(toolbarTexts_.back().c_str());
        SendMessageW(toolbar_, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&button));
    };
    int id = static_cast<int>(kFirstCommand);
    for (const Menu& menu : menus) {
        bool isFirst = true;
        for (const MenuEntry& entry : menu.entries) {
            if (entry.text.empty()) continue;
            const int own = id++;
            if (!entry.inToolbar) continue;
            if (isFirst && !toolbarTexts_.empty()) add(0, TBSTATE_ENABLED, BTNS_SEP, scaled(8));
            isFirst = false;
            toolbarTexts_.push_back(plainText(entry.text));
            add(own, TBSTATE_ENABLED, BTNS_AUTOSIZE | BTNS_SHOWTEXT, 0);
        }
    }
}

void Win32Frame::setTabs(const std::vector<std::wstring>& names, std::size_t current) {
    TabCtrl_DeleteAllItems(tabs_);
    for (std::size_t i = 0; i < names.size(); ++i) {
        TCITEMW item = {};
        item.mask = TCIF_TEXT;
        std::wstring name = names[i];
        item.pszText = name.data();
        SendMessageW(tabs_, TCM_INSERTITEMW, i, reinterpret_cast<LPARAM>(&item));
    }
    TabCtrl_SetCurSel(tabs_, static_cast<int>(current));
}

void Win32Frame::setPrompt(const std::wstring& prompt, const std::vector<std::wstring>& words) {
    SetWindowTextW(prompt_, linkText(prompt, words).c_str());
    InvalidateRect(prompt_, nullptr, TRUE);  // a control without a text does not see to it
}

void Win32Frame::setCommandText(const std::wstring& text) {
    settingText_ = true;
    SetWindowTextW(line_, text.c_str());
    SendMessageW(line_, EM_SETSEL, text.size(), static_cast<LPARAM>(text.size()));
    settingText_ = false;
}

void Win32Frame::addHistory(const std::wstring& text) {
    std::wstring lines;
    for (const wchar_t c : text) {
        if (c == L'\n') lines += L'\r';
        lines += c;
    }
    const auto length = static_cast<std::size_t>(GetWindowTextLengthW(history_));
    if (length + lines.size() > kLongestHistory) {
        SendMessageW(history_, EM_SETSEL, 0, static_cast<LPARAM>(length / 2));
        SendMessageW(history_, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(L""));
    }
    const auto end = static_cast<WPARAM>(GetWindowTextLengthW(history_));
    SendMessageW(history_, EM_SETSEL, end, static_cast<LPARAM>(end));
    SendMessageW(history_, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(lines.c_str()));
    SendMessageW(history_, EM_SCROLLCARET, 0, 0);
}

void Win32Frame::activate() {
    SetForegroundWindow(window_);
    SetFocus(line_);
}

// ---- as a hand works it

template <class Deed>
void Win32Frame::work(Deed deed) {
    const bool wasWaiting = std::exchange(waiting_, true);
    byHand_ = true;
    deed();
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) deliver(message);
    waiting_ = wasWaiting;
    rethrow();
}

void Win32Frame::post(HWND window, UINT message, WPARAM wide, LPARAM packed) {
    work([&] { PostMessageW(window, message, wide, packed); });
}

// The system gives it back behind dialogs in its own time.
HWND Win32Frame::focus() const {
    if (!IsChild(window_, GetFocus())) SetFocus(line_);
    return GetFocus();
}

void Win32Frame::resizeCanvas(int width, int height) {
    RECT canvas, whole;
    GetClientRect(canvas_.window(), &canvas);
    if (canvas.right == width && canvas.bottom == height) return;
    work([&] {
        // A toolbar that breaks into rows takes from the height that was wanted.
        for (int i = 0; i < 2; ++i) {
            GetClientRect(canvas_.window(), &canvas);
            GetWindowRect(window_, &whole);
            SetWindowPos(window_, nullptr, 0, 0, whole.right - whole.left + width - canvas.right,
                         whole.bottom - whole.top + height - canvas.bottom, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        }
    });
}

void Win32Frame::mouse(Mouse what, MouseButton button, CanvasPoint at, bool shift) {
    constexpr WPARAM kHeld[] = {MK_LBUTTON, MK_MBUTTON, MK_RBUTTON};
    constexpr UINT kMessages[][3] = {{WM_MOUSEMOVE, WM_MOUSEMOVE, WM_MOUSEMOVE},
                                     {WM_LBUTTONDOWN, WM_MBUTTONDOWN, WM_RBUTTONDOWN},
                                     {WM_LBUTTONUP, WM_MBUTTONUP, WM_RBUTTONUP},
                                     {WM_LBUTTONDBLCLK, WM_MBUTTONDBLCLK, WM_RBUTTONDBLCLK}};
    const auto which = static_cast<std::size_t>(button);
    if (what == Mouse::kPress || what == Mouse::kDoubleClick) held_ |= kHeld[which];
    if (what == Mouse::kRelease) held_ &= ~kHeld[which];
    handAt_ = at;
    post(canvas_.window(), kMessages[static_cast<std::size_t>(what)][which], held_ | (shift ? MK_SHIFT : 0),
         packedPlace(at));
}

void Win32Frame::turnWheel(double notches, CanvasPoint at) {
    handAt_ = at;
    POINT place = {std::lround(at.x), std::lround(at.y)};
    ClientToScreen(canvas_.window(), &place);
    post(canvas_.window(), WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(std::lround(notches * WHEEL_DELTA))),
         MAKELPARAM(place.x, place.y));
}

void Win32Frame::pressKey(Key key) {
    const auto* const known =
        std::ranges::find_if(kKeys, [key](const auto& candidate) { return candidate.key == key; });
    post(focus(), WM_KEYDOWN, known->code);
}

void Win32Frame::enterText(const std::wstring& text) {
    work([&] {
        SetFocus(line_);
        SendMessageW(line_, EM_SETSEL, 0, -1);
        SendMessageW(line_, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text.c_str()));
    });
}

void Win32Frame::chooseEntry(const std::wstring& path) {
    const auto found = std::ranges::find(entries_, path, &MenuEntry::path);
    if (found != entries_.end())
        post(window_, WM_COMMAND, kFirstCommand + static_cast<WPARAM>(found - entries_.begin()));
}

void Win32Frame::clickAt(HWND window, int x, int y) {
    post(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
    post(window, WM_LBUTTONUP, 0, MAKELPARAM(x, y));
}

void Win32Frame::clickTab(std::size_t index) {
    RECT place = {};
    TabCtrl_GetItemRect(tabs_, static_cast<int>(index), &place);
    clickAt(tabs_, (place.left + place.right) / 2, (place.top + place.bottom) / 2);
}

// The control does not say where its links are, but which one is at a place.
void Win32Frame::clickWord(std::size_t index) {
    RECT area;
    GetClientRect(prompt_, &area);
    LHITTESTINFO hit = {};
    for (hit.pt.y = 2; hit.pt.y < area.bottom; hit.pt.y += 4)
        for (hit.pt.x = 0; hit.pt.x < area.right; hit.pt.x += 2)
            if (SendMessageW(prompt_, LM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit)) &&
                hit.item.iLink == static_cast<int>(index))
                return clickAt(prompt_, hit.pt.x, hit.pt.y);
}

void Win32Frame::dropFile(const std::wstring& path) {
    const std::size_t size = sizeof(DROPFILES) + (path.size() + 2) * sizeof(wchar_t);
    HGLOBAL const memory = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size);  // WM_DROPFILES frees it
    auto* const files = static_cast<DROPFILES*>(GlobalLock(memory));
    files->pFiles = sizeof(DROPFILES);
    files->fWide = TRUE;
    std::copy(path.begin(), path.end(), reinterpret_cast<wchar_t*>(files + 1));
    GlobalUnlock(memory);
    post(window_, WM_DROPFILES, reinterpret_cast<WPARAM>(memory));
}

}  // namespace

std::unique_ptr<ViewFrame> makeViewFrame(std::wstring& reason) {
    auto frame = std::make_unique<Win32Frame>();
    if (frame->nativeWindow()) return frame;
    reason = L"the system gives no window";
    return nullptr;
}

}  // namespace host
