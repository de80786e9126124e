// One run's windows: how they are made from the templates, the loop that looks at keys and mouse before the windows do,
// and what their notifications tell View.
#include "dialogs/windows/window_view.h"

#include <richedit.h>
#include <windowsx.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <stdexcept>
#include <utility>
#include <uxtheme.h>

#include "base/resources.h"
#include "base/text.h"
#include "dialogs/form_script.h"
#include "dialogs/windows/control_window.h"
#include "dialogs/windows/picture.h"
#include "dialogs/windows/rich_edit.h"

namespace dialogs {
namespace {

constexpr UINT kFocusMessage = WM_APP + 1;     // the focus went somewhere by itself
constexpr UINT kShowTextMessage = WM_APP + 2;  // data: the window of an editable drop-down
constexpr UINT_PTR kSubclass = 1;

std::set<HWND>& openWindows() {
    static std::set<HWND> windows;
    return windows;
}

void prepareSystem() {
    static const bool prepared = [] {
        SetProcessDPIAware();
        LoadLibraryW(L"riched20.dll");
        return true;
    }();
    static_cast<void>(prepared);
}

INT_PTR messageResult(HWND dialog, LRESULT result) {
    SetWindowLongPtrW(dialog, DWLP_MSGRESULT, result);
    return TRUE;
}

bool isDown(int key) { return GetKeyState(key) < 0; }

constexpr struct {
    Key key;
    WPARAM code;
    bool control;
} kKeyCodes[] = {
    {Key::kEnter, VK_RETURN, false},
    {Key::kEscape, VK_ESCAPE, false},
    {Key::kTab, VK_TAB, false},
    {Key::kSpace, VK_SPACE, false},
    {Key::kBackspace, VK_BACK, false},
    {Key::kDelete, VK_DELETE, false},
    {Key::kLeft, VK_LEFT, false},
    {Key::kRight, VK_RIGHT, false},
    {Key::kUp, VK_UP, false},
    {Key::kDown, VK_DOWN, false},
    {Key::kHome, VK_HOME, false},
    {Key::kEnd, VK_END, false},
    {Key::kPageUp, VK_PRIOR, false},
    {Key::kPageDown, VK_NEXT, false},
    {Key::kSelectAll, 'A', true},
    {Key::kCopy, 'C', true},
    {Key::kCut, 'X', true},
    {Key::kPaste, 'V', true},
    {Key::kCopy, VK_INSERT, true},
    {Key::kBackspace, VK_BACK, true},
    {Key::kDelete, VK_DELETE, true},
};

std::optional<Key> keyOf(WPARAM code) {
    if (code == VK_INSERT && isDown(VK_SHIFT)) return Key::kPaste;
    const bool control = isDown(VK_CONTROL);
    for (const auto& known : kKeyCodes)
        if (known.code == code && known.control == control) return known.key;
    return std::nullopt;
}

}  // namespace

bool WindowView::isDialogWindow(HWND window) { return openWindows().contains(window); }

// ---- making windows

WindowView::WindowView(Run& run) : View(run), owner_(static_cast<HWND>(Process::instance().mainWindow)) {
    prepareSystem();
    if (Run* const outer = run_.outer(); outer && outer->view()) owner_ = static_cast<HWND>(outer->view()->window());
    root_ = createWindow(run_.root(), owner_);
    openWindows().insert(root_);
    titleChanged();
}

WindowView::~WindowView() {
    applying_ = 1;  // what comes while the windows go is nobody's doing
    if (owner_ && disabledOwner_) {
        // Before the window goes, or another program's would come to the front.
        EnableWindow(owner_, TRUE);
        SetActiveWindow(owner_);
    }
    openWindows().erase(root_);
    if (tooltips_) DestroyWindow(tooltips_);
    DestroyWindow(root_);
}

HWND WindowView::createWindow(Dialog& dialog, HWND parent) {
    const base::ResourceBytes bytes =
        base::findResource(dialog.resources(), base::kDialogResource, static_cast<std::uint16_t>(dialog.templateId()));
    // A copy, so that the window is not shown before it is filled.
    std::vector<std::byte> copy(bytes.begin(), bytes.end());
    constexpr std::size_t kStylePlace = 12;
    copy[kStylePlace + 3] &= ~std::byte{WS_VISIBLE >> 24};
    HWND const window = CreateDialogIndirectParamW(static_cast<HINSTANCE>(dialog.resources()),
                                                   reinterpret_cast<DLGTEMPLATE*>(copy.data()), parent, dialogProcedure,
                                                   reinterpret_cast<LPARAM>(this));
    if (!window)
        throw std::runtime_error("the window of dialog " + std::to_string(dialog.templateId()) + " cannot be made");
    dialogs_[&dialog] = window;
    adoptControls(dialog, window);
    return window;
}

// The windows of the controls come in template order; later ones belong to pages.
void WindowView::adoptControls(Dialog& dialog, HWND window) {
    HWND child = GetWindow(window, GW_CHILD);
    for (const auto& control : dialog.controls()) {
        if (!child) break;
        controls_[child] = control.get();
        windows_[control.get()] = child;
        if (control->takesFocus())
            SetWindowSubclass(child, controlProcedure, kSubclass, reinterpret_cast<DWORD_PTR>(this));
        if (HWND const edit = editOf(*control, child); edit && edit != child) {
            controls_[edit] = control.get();
            SetWindowSubclass(edit, controlProcedure, kSubclass, reinterpret_cast<DWORD_PTR>(this));
        }
        prepareWindow(*control, child);
        child = GetWindow(child, GW_HWNDNEXT);
    }
    for (const auto& control : dialog.controls())
        for (Aspect aspect : {Aspect::kColumns, Aspect::kPages, Aspect::kChoices, Aspect::kText, Aspect::kSelection,
                              Aspect::kChecked, Aspect::kReadOnly, Aspect::kEnabled, Aspect::kVisible, Aspect::kExtras})
            changed(*control, aspect);
}

Control* WindowView::controlOf(HWND window) const {
    const auto found = controls_.find(window);
    return found == controls_.end() ? nullptr : found->second;
}

HWND WindowView::windowOf(const Control& control) const {
    const auto found = windows_.find(&control);
    return found == windows_.end() ? nullptr : found->second;
}

// ---- showing

void WindowView::titleChanged() { SetWindowTextW(root_, run_.root().title().c_str()); }

void WindowView::changed(Control& control, Aspect aspect) {
    HWND const window = windowOf(control);
    if (!window) return;
    const Applying applying(*this);
    showAspect(control, window, aspect);
    if (aspect == Aspect::kExtras || aspect == Aspect::kEnabled) showTooltip(control, window);
}

void WindowView::showTooltip(Control& control, HWND window) {
    if (control.tooltip.empty() && !tooltips_) return;
    if (!tooltips_)
        tooltips_ = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX, CW_USEDEFAULT,
                                    CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, GetAncestor(window, GA_ROOT), nullptr,
                                    nullptr, nullptr);
    TTTOOLINFOW tool = {};
    tool.cbSize = sizeof tool;
    tool.hwnd = GetParent(window);
    tool.lpszText = control.tooltip.data();
    // A window that is disabled hears no mouse: its parent does, at its place.
    GetWindowRect(window, &tool.rect);
    MapWindowPoints(nullptr, tool.hwnd, reinterpret_cast<POINT*>(&tool.rect), 2);
    for (const bool enabled : {true, false}) {
        tool.uFlags = TTF_SUBCLASS | (enabled ? TTF_IDISHWND : 0U);
        tool.uId = enabled ? reinterpret_cast<UINT_PTR>(window) : static_cast<UINT_PTR>(GetDlgCtrlID(window));
        send(tooltips_, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
        if (!control.tooltip.empty() && enabled == (IsWindowEnabled(window) != 0))
            send(tooltips_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    }
}

void WindowView::pageShown(Control& tab) {
    Dialog& page = *tab.pages.at(static_cast<std::size_t>(tab.selected));
    if (!dialogs_.contains(&page)) {
        HWND const window = createWindow(page, dialogs_.at(tab.dialog));
        EnableThemeDialogTexture(window, ETDT_ENABLETAB);  // the page of a tab control has its colour
    }
    changed(tab, Aspect::kSelection);
    for (Dialog* other : tab.pages) {
        const auto window = dialogs_.find(other);
        if (other != &page && window != dialogs_.end()) ShowWindow(window->second, SW_HIDE);
    }
    placePage(tab, dialogs_.at(&page));
}

void WindowView::placePage(Control& tab, HWND page) {
    HWND const window = windowOf(tab);
    RECT place;
    GetWindowRect(window, &place);
    MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&place), 2);
    TabCtrl_AdjustRect(window, FALSE, &place);
    SetWindowPos(page, window, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_SHOWWINDOW);
}

void WindowView::showFocus(Control* control) {
    const Applying applying(*this);
    HWND const window = control ? windowOf(*control) : nullptr;
    if (!window) {
        SetFocus(root_);  // keys must still reach the dialog
        return;
    }
    if (controlOf(GetFocus()) == control) return;
    // By the dialog manager, which marks the button that Enter would press, and selects a field's whole text.
    SendMessageW(root_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(window), TRUE);
    if (control->isTyped()) showAspect(*control, window, Aspect::kSelection);
}

int WindowView::listWidth(const Control& list) {
    RECT client = {};
    GetClientRect(windowOf(list), &client);
    return client.right;
}

PixelRect WindowView::place() {
    RECT place;
    GetWindowRect(root_, &place);
    return {static_cast<int>(place.left), static_cast<int>(place.top), static_cast<int>(place.right - place.left),
            static_cast<int>(place.bottom - place.top)};
}

// A screen that is gone since must not hide the dialog.
void WindowView::movePlace(int left, int top) {
    if (!MonitorFromPoint({left, top}, MONITOR_DEFAULTTONULL)) return;
    SetWindowPos(root_, nullptr, left, top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

double WindowView::scale() {
    HDC const screen = GetDC(root_);
    const int dots = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(root_, screen);
    return dots / 96.0;
}

void WindowView::savePicture(const std::wstring& fileName) { saveWindowPicture(root_, fileName); }

// ---- the loop

template <class Action>
void WindowView::guard(Action action) {
    try {
        action();
    } catch (...) {
        if (!failure_) failure_ = std::current_exception();
        run_.end(kCancelButton);
    }
}

void WindowView::rethrow() {
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
}

void WindowView::setShown(bool on) {
    ShowWindow(root_, on ? SW_SHOW : SW_HIDE);
    if (on) SetActiveWindow(root_);
}

void WindowView::work() {
    LineSource* const lines = Process::instance().lines;
    // A host may have disabled its window itself.
    if (owner_) disabledOwner_ = EnableWindow(owner_, FALSE) == 0;
    ShowWindow(root_, SW_SHOW);
    SetActiveWindow(root_);
    SetForegroundWindow(root_);
    showFocus(run_.focus());
    rethrow();
    std::optional<FormScript> script;
    if (lines) script.emplace(run_, *lines);
    while (!run_.hasEnded()) {
        pump();
        if (run_.hasEnded()) break;
        if (script) {
            script->step();
            rethrow();
        } else {
            Process::instance().waitFor([] { WaitMessage(); });
        }
    }
}

// Until nothing is left to do.
void WindowView::pump() {
    MSG message;
    while (!run_.hasEnded() && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) dispatch(message);
}

void WindowView::dispatch(MSG& message) {
    if (message.message == WM_QUIT) {
        PostQuitMessage(static_cast<int>(message.wParam));
        run_.end(kCancelButton);
    } else if (!takeInput(message) && !IsDialogMessageW(root_, &message)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    rethrow();
}

bool WindowView::takeInput(const MSG& message) {
    if (message.hwnd != root_ && !IsChild(root_, message.hwnd)) return false;
    switch (message.message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_RBUTTONDOWN:
        case WM_RBUTTONDBLCLK:
            return takeMouseButton(message);
        case WM_MOUSEWHEEL:
            return takeWheel(message);
        case WM_KEYDOWN:
            return takeKey(message);
        case WM_CHAR:
        case WM_SYSCHAR:
            return takeLetter(message);
        default:
            return false;
    }
}

// The focus moves before the click is seen by the control, which would act on it at once.
bool WindowView::takeMouseButton(const MSG& message) {
    Control* const control = controlOf(message.hwnd);
    if (!control || !control->canHaveFocus()) return false;
    const bool right = message.message == WM_RBUTTONDOWN || message.message == WM_RBUTTONDBLCLK;
    if (right && !control->isField()) return false;
    if (control->kind() == ControlKind::kTab) {
        TCHITTESTINFO hit = {{GET_X_LPARAM(message.lParam), GET_Y_LPARAM(message.lParam)}, 0};
        if (TabCtrl_HitTest(message.hwnd, &hit) < 0) return false;
    }
    return !moveFocus(*control) || run_.hasEnded();
}

// A wheel that scrolls past must not change what it comes upon.
bool WindowView::takeWheel(const MSG& message) {
    const Control* const control = controlOf(message.hwnd);
    if (!control || control == run_.focus()) return false;
    return control->kind() == ControlKind::kCombo || control->kind() == ControlKind::kEditCombo;
}

bool WindowView::takeKey(const MSG& message) {
    const auto key = keyOf(message.wParam);
    if (!key || !isOwnKey(*key)) return false;
    const Control* const focus = run_.focus();
    if (focus && *key != Key::kTab && isDroppedDown(*focus, windowOf(*focus))) return false;
    userPressedKey(*key, isDown(VK_SHIFT));
    return true;
}

// A mnemonic needs no Alt where letters are not typed.
bool WindowView::takeLetter(const MSG& message) {
    const Control* const focus = run_.focus();
    if (message.wParam <= L' ') return false;
    if (message.message == WM_CHAR && focus && focus->isField()) return false;
    return userPressedMnemonic(static_cast<wchar_t>(message.wParam));
}

// ---- procedures of the system

INT_PTR CALLBACK WindowView::dialogProcedure(HWND window, UINT message, WPARAM word, LPARAM data) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, data);
        return FALSE;  // the view sets the focus
    }
    auto* const view = reinterpret_cast<WindowView*>(GetWindowLongPtrW(window, DWLP_USER));
    if (!view) return FALSE;
    INT_PTR result = FALSE;
    view->guard([&] { result = view->onDialogMessage(window, message, word, data); });
    return result;
}

INT_PTR WindowView::onDialogMessage(HWND window, UINT message, WPARAM word, LPARAM data) {
    switch (message) {
        case kFocusMessage:
            if (Control* const control = controlOf(GetFocus()); control && !run_.hasEnded()) moveFocus(*control);
            return TRUE;
        case kShowTextMessage:
            if (Control* const control = controlOf(reinterpret_cast<HWND>(data))) changed(*control, Aspect::kText);
            return TRUE;
        case WM_CLOSE:
            userClosed();
            return TRUE;
        case WM_HELP:  // F1
            userPressedKey(Key::kHelp, false);
            return TRUE;
        case WM_COMMAND: {
            Control* const control = controlOf(reinterpret_cast<HWND>(data));
            if (control && applying_ == 0) onCommand(*control, HIWORD(word));
            return TRUE;
        }
        case WM_NOTIFY:
            return onNotify(window, *reinterpret_cast<const NMHDR*>(data), data);
        case WM_CONTEXTMENU:
            if (Control* const control = controlOf(reinterpret_cast<HWND>(word)))
                onContextMenu(*control, reinterpret_cast<HWND>(word), data);
            return TRUE;
        case WM_SYSCOMMAND: {
            // The system goes through messages of its own until the mouse or the keys have moved the window or left its
            // menu.
            const WPARAM what = word & 0xFFF0;
            if (what != SC_MOVE && what != SC_SIZE && what != SC_MOUSEMENU && what != SC_KEYMENU) return FALSE;
            Process::instance().waitFor([&] { DefWindowProcW(window, message, word, data); });
            return TRUE;
        }
        case WM_DRAWITEM: {
            const auto& item = *reinterpret_cast<const DRAWITEMSTRUCT*>(data);
            const Control* const control = controlOf(item.hwndItem);
            if (!control || item.CtlType == ODT_BUTTON) return FALSE;
            drawChoice(*control, item);
            return TRUE;
        }
        default:
            return FALSE;
    }
}

void WindowView::onCommand(Control& control, int code) {
    HWND const window = windowOf(control);
    switch (control.kind()) {
        case ControlKind::kButton:
        case ControlKind::kPictureButton:
        case ControlKind::kCheck:
        case ControlKind::kRadio:
            if (code == BN_CLICKED) userPressed(control);
            return;
        case ControlKind::kEdit:
            if (code != EN_CHANGE) return;
            noteText(control, window);
            return userEdited(control);
        case ControlKind::kCombo:
        case ControlKind::kEditCombo:
            if (code == CBN_EDITCHANGE) {
                noteText(control, window);
                return userEdited(control);
            }
            if (code != CBN_SELCHANGE || shownItem(control, window) < 0) return;
            userChose(control, shownItem(control, window));
            // The system puts the choice into the field once more, whatever a handler put there. Posted behind the
            // handler: a dialog that it opens takes every message out of the queue.
            if (control.kind() == ControlKind::kEditCombo)
                PostMessageW(root_, kShowTextMessage, 0, reinterpret_cast<LPARAM>(window));
            return;
        case ControlKind::kListBox:
            if (code == LBN_DBLCLK) return userDoubleClicked(control, control.selected);
            if (code == LBN_SELCHANGE) return userChose(control, shownItem(control, window));
            return;
        default:
            return;
    }
}

INT_PTR WindowView::onNotify(HWND dialog, const NMHDR& header, LPARAM data) {
    Control* const control = controlOf(header.hwndFrom);
    if (!control) return FALSE;
    switch (header.code) {
        case LVN_ITEMCHANGING:
        case LVN_ITEMCHANGED: {
            const auto& change = *reinterpret_cast<const NMLISTVIEW*>(data);
            const bool selectedNow = (change.uNewState & LVIS_SELECTED) != 0;
            const bool selectedBefore = (change.uOldState & LVIS_SELECTED) != 0;
            if (applying_ > 0 || selectedNow == selectedBefore) return messageResult(dialog, FALSE);
            if (header.code == LVN_ITEMCHANGING) return messageResult(dialog, selectedNow && !moveFocus(*control));
            if (selectedNow)
                userChose(*control, change.iItem);
            else if (change.iItem < 0 || control->selected == change.iItem)  // below 0: all of them
                control->selected = -1;
            return TRUE;
        }
        case LVN_GETDISPINFOW:
            giveCell(*control, *reinterpret_cast<NMLVDISPINFOW*>(data));
            return TRUE;
        case LVN_ODFINDITEMW:
            return messageResult(dialog, findRow(*control, *reinterpret_cast<const NMLVFINDITEMW*>(data)));
        case NM_DBLCLK:
            if (control->kind() == ControlKind::kListView) userDoubleClicked(*control, control->selected);
            return TRUE;
        case NM_CUSTOMDRAW:
            if (control->kind() != ControlKind::kListView) return FALSE;
            return messageResult(dialog, drawRow(*control, *reinterpret_cast<NMLVCUSTOMDRAW*>(data)));
        case TCN_SELCHANGING:
            return messageResult(dialog, applying_ == 0 && !moveFocus(*control));
        case TCN_SELCHANGE:
            if (applying_ == 0) userChose(*control, shownItem(*control, header.hwndFrom));
            return TRUE;
        case EN_SELCHANGE:
            if (applying_ > 0) return TRUE;
            noteRichSelection(*control, header.hwndFrom);
            changed(*control, Aspect::kSelection);
            return TRUE;
        default:
            return FALSE;
    }
}

void WindowView::onContextMenu(Control& control, HWND window, LPARAM place) {
    const std::vector<MenuEntry> entries = userWantsMenu(control);
    if (entries.empty()) return;
    HMENU const menu = CreatePopupMenu();
    for (std::size_t i = 0; i < entries.size(); ++i)
        AppendMenuW(menu,
                    entries[i].text.empty() ? MF_SEPARATOR
                    : entries[i].enabled    ? MF_STRING
                                            : MF_STRING | MF_GRAYED,
                    i + 1, entries[i].text.c_str());
    POINT point = {GET_X_LPARAM(place), GET_Y_LPARAM(place)};
    if (place == -1) {  // by key
        point = {8, 8};
        ClientToScreen(window, &point);
    }
    int chosen = 0;
    Process::instance().waitFor([&] {
        chosen = TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON, point.x, point.y, 0, dialogs_.at(control.dialog),
                                nullptr);
    });
    DestroyMenu(menu);
    if (chosen > 0) run_.menuChosen(control, entries[static_cast<std::size_t>(chosen) - 1].command);
}

LRESULT CALLBACK WindowView::controlProcedure(HWND window, UINT message, WPARAM word, LPARAM data, UINT_PTR,
                                              DWORD_PTR viewPointer) {
    auto& view = *reinterpret_cast<WindowView*>(viewPointer);
    Control* const control = view.controlOf(window);
    if (message == WM_NCDESTROY) RemoveWindowSubclass(window, controlProcedure, kSubclass);
    if (!control || view.applying_ > 0) return DefSubclassProc(window, message, word, data);
    bool done = false;
    view.guard([&] { done = view.beforeControl(*control, message, word, data); });
    if (done) return 0;
    const LRESULT result = DefSubclassProc(window, message, word, data);
    view.afterControl(*control, window, message, data);
    return result;
}

bool WindowView::beforeControl(Control& control, UINT message, WPARAM& word, LPARAM data) {
    if (message == WM_SETFOCUS && &control != run_.focus()) PostMessageW(root_, kFocusMessage, 0, 0);
    if (message == WM_KILLFOCUS) noteSelection(control, windowOf(control));
    if (control.upperCase && message == WM_CHAR) word = base::toUpper(static_cast<wchar_t>(word));
    if (control.upperCase && message == WM_PASTE) {
        noteSelection(control, windowOf(control));
        userPressedKey(Key::kPaste, false);
        return true;
    }
    if (control.kind() != ControlKind::kRichEdit) return false;
    const RichEditInput input = readRichEditMessage(message, word, data);
    if (input.kind == RichEditInput::Kind::kText) userTyped(control, input.text);
    if (input.kind == RichEditInput::Kind::kEditing && moveFocus(control)) userPressedKey(input.key, false);
    return input.kind != RichEditInput::Kind::kOther;
}

void WindowView::afterControl(Control& control, HWND window, UINT message, LPARAM data) {
    if (message != WM_NOTIFY || control.kind() != ControlKind::kListView) return;
    const UINT code = reinterpret_cast<const NMHDR*>(data)->code;
    if (code == HDN_ITEMCHANGEDW || code == HDN_ITEMCHANGEDA || code == HDN_ENDTRACKW || code == HDN_ENDTRACKA)
        noteColumns(control, window);
}

// ---- doing as a user would

void WindowView::press(Control& button) { SendMessageW(windowOf(button), BM_CLICK, 0, 0); }

void WindowView::typeText(Control& field, const std::wstring& text) {
    send(editOf(field, windowOf(field)), EM_REPLACESEL, TRUE, field.upperCase ? base::toUpper(text) : text);
}

void WindowView::choose(Control& list, int item) { chooseInWindow(list, windowOf(list), item); }

void WindowView::doubleClick(Control& list, int row) { doubleClickInWindow(list, windowOf(list), row); }

void WindowView::pressKey(Key key, bool shift) {
    if (key == Key::kHelp) {
        SendMessageW(root_, WM_HELP, 0, 0);
        return;
    }
    BYTE before[256];
    GetKeyboardState(before);
    BYTE state[256];
    std::copy(std::begin(before), std::end(before), state);
    const auto known = std::find_if(std::begin(kKeyCodes), std::end(kKeyCodes),
                                    [key](const auto& candidate) { return candidate.key == key; });
    state[VK_SHIFT] = shift ? 0x80 : 0;
    state[VK_CONTROL] = known->control ? 0x80 : 0;
    SetKeyboardState(state);
    HWND const target = GetFocus() ? GetFocus() : root_;
    PostMessageW(target, WM_KEYDOWN, known->code, 1);
    PostMessageW(target, WM_KEYUP, known->code, static_cast<LPARAM>(0xC0000001));
    pump();
    SetKeyboardState(before);
    // A key may have moved the caret of a field of the system's.
    if (Control* const focus = run_.focus(); focus && !run_.hasEnded()) noteSelection(*focus, windowOf(*focus));
}

void WindowView::pressMnemonic(wchar_t letter) {
    constexpr LPARAM kAltIsDown = 1 << 29;
    PostMessageW(GetFocus() ? GetFocus() : root_, WM_SYSCHAR, letter, kAltIsDown);
    pump();
}

void WindowView::dragColumn(Control& list, int column, int width) {
    ListView_SetColumnWidth(windowOf(list), column, static_cast<int>(std::lround(width * scale())));
}

void WindowView::close() { SendMessageW(root_, WM_CLOSE, 0, 0); }

}  // namespace dialogs
