#include "dialogs/windows/window_view.h"

#include <windowsx.h>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <utility>

#include "base/format.h"
#include "base/number.h"
#include "base/resources.h"
#include "base/text.h"
#include "dialogs/form_script.h"
#include "dialogs/styles.h"
#include "dialogs/text_editing.h"
#include "dialogs/windows/picture.h"

namespace dialogs {
namespace {

constexpr UINT kLeaveMessage = WM_APP + 1;
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

// The library's manifest asks for common controls 6, whatever the program has.
ULONG_PTR activateControls() {
    ACTCTXW context = {};
    context.cbSize = sizeof context;
    context.dwFlags = ACTCTX_FLAG_HMODULE_VALID | ACTCTX_FLAG_RESOURCE_NAME_VALID;
    context.lpResourceName = MAKEINTRESOURCEW(2);
    context.hModule = static_cast<HMODULE>(base::moduleOf(reinterpret_cast<const void*>(&activateControls)));
    static HANDLE const handle = CreateActCtxW(&context);
    ULONG_PTR cookie = 0;
    if (handle != INVALID_HANDLE_VALUE) ActivateActCtx(handle, &cookie);
    return cookie;
}

std::wstring windowText(HWND window) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)), L'\0');
    const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size()) + 1);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

int send(HWND window, UINT message, WPARAM word = 0, LPARAM data = 0) {
    return static_cast<int>(SendMessageW(window, message, word, data));
}

int send(HWND window, UINT message, WPARAM word, const std::wstring& text) {
    return send(window, message, word, reinterpret_cast<LPARAM>(text.c_str()));
}

bool isCombo(const Control& control) {
    return control.kind() == ControlKind::kCombo || control.kind() == ControlKind::kEditCombo;
}

INT_PTR messageResult(HWND dialog, LRESULT result) {
    SetWindowLongPtrW(dialog, DWLP_MSGRESULT, result);
    return TRUE;
}

// A fifth of the way from the window's colour to its text's, so that it is seen in every colour scheme.
COLORREF shadeOfRuns() {
    const COLORREF paper = GetSysColor(COLOR_WINDOW);
    const COLORREF ink = GetSysColor(COLOR_WINDOWTEXT);
    const auto mix = [](int a, int b) { return static_cast<BYTE>((4 * a + b) / 5); };
    return RGB(mix(GetRValue(paper), GetRValue(ink)), mix(GetGValue(paper), GetGValue(ink)),
               mix(GetBValue(paper), GetBValue(ink)));
}

COLORREF colorOf(std::uint32_t rgb) { return RGB(rgb >> 16 & 0xFF, rgb >> 8 & 0xFF, rgb & 0xFF); }

}  // namespace

bool WindowView::isDialogWindow(HWND window) { return openWindows().contains(window); }

// ---- making windows

WindowView::WindowView(Run& run) : run_(run) {
    prepareSystem();
    activation_ = activateControls();
    if (Run* const outer = run_.outer(); outer && outer->view()) owner_ = static_cast<HWND>(outer->view()->window());
    root_ = createWindow(run_.root(), owner_);
    openWindows().insert(root_);
    titleChanged();
}

WindowView::~WindowView() {
    applying_ = 1;  // what comes while the windows go is nobody's doing
    if (owner_) {
        // Before the window goes, or another program's would come to the front.
        EnableWindow(owner_, TRUE);
        SetActiveWindow(owner_);
    }
    openWindows().erase(root_);
    if (tooltips_) DestroyWindow(tooltips_);
    DestroyWindow(root_);
    if (activation_) DeactivateActCtx(0, activation_);
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
        if (HWND const edit = editOf(*control); edit && edit != child) {
            controls_[edit] = control.get();
            SetWindowSubclass(edit, controlProcedure, kSubclass, reinterpret_cast<DWORD_PTR>(this));
        }
        if (control->kind() == ControlKind::kListView) ListView_SetExtendedListViewStyle(child, LVS_EX_FULLROWSELECT);
        if (control->kind() == ControlKind::kRichEdit) {
            send(child, EM_SETUNDOLIMIT, 0);
            send(child, EM_SETEVENTMASK, 0, ENM_SELCHANGE);
        }
        child = GetWindow(child, GW_HWNDNEXT);
    }
    for (const auto& control : dialog.controls()) showAll(*control);
}

void WindowView::showAll(Control& control) {
    for (Aspect aspect :
         {Aspect::kColumns, Aspect::kRows, Aspect::kPages, Aspect::kChoices, Aspect::kText, Aspect::kSelection,
          Aspect::kChecked, Aspect::kReadOnly, Aspect::kEnabled, Aspect::kVisible, Aspect::kExtras})
        changed(control, aspect);
}

Control* WindowView::controlOf(HWND window) const {
    const auto found = controls_.find(window);
    return found == controls_.end() ? nullptr : found->second;
}

HWND WindowView::windowOf(const Control& control) const {
    const auto found = windows_.find(&control);
    return found == windows_.end() ? nullptr : found->second;
}

HWND WindowView::editOf(const Control& control) const {
    HWND const window = windowOf(control);
    if (control.kind() != ControlKind::kEditCombo || !window) return window;
    COMBOBOXINFO info = {};
    info.cbSize = sizeof info;
    return GetComboBoxInfo(window, &info) ? info.hwndItem : window;
}

// ---- showing state

void WindowView::titleChanged() { SetWindowTextW(root_, run_.root().title().c_str()); }

void WindowView::changed(Control& control, Aspect aspect) {
    HWND const window = windowOf(control);
    if (!window) return;
    const Applying applying(*this);
    switch (aspect) {
        case Aspect::kText:
            return showText(control, window);
        case Aspect::kChecked:
            if (control.isCheckable()) send(window, BM_SETCHECK, control.checked ? BST_CHECKED : BST_UNCHECKED);
            return;
        case Aspect::kEnabled:
            EnableWindow(window, control.enabled);
            return;
        case Aspect::kVisible:
            ShowWindow(window, control.visible ? SW_SHOWNA : SW_HIDE);
            return;
        case Aspect::kReadOnly:
            if (control.isText()) send(window, EM_SETREADONLY, control.readOnly);
            return;
        case Aspect::kSelection:
            showItem(control, window);
            return showSelection(control, window);
        case Aspect::kChoices:
            return showChoices(control, window);
        case Aspect::kColumns:
            return showColumns(control, window);
        case Aspect::kRows:
            return showRows(control, window);
        case Aspect::kPages:
            return showPages(control, window);
        case Aspect::kExtras:
            return showExtras(control, window);
    }
}

void WindowView::showText(Control& control, HWND window) {
    switch (control.kind()) {
        case ControlKind::kRichEdit:
            return showRichText(control, window);
        case ControlKind::kCombo:
            return showItem(control, window);
        case ControlKind::kListBox:
        case ControlKind::kListView:
        case ControlKind::kTab:
        case ControlKind::kPicture:
        case ControlKind::kOther:
            return;
        default:
            SetWindowTextW(window, control.text.c_str());
            showSelection(control, window);
    }
}

void WindowView::showSelection(Control& control, HWND window) {
    if (!control.isTyped()) return;
    const auto anchor = static_cast<LONG>(control.selection.anchor);
    const auto caret = static_cast<LONG>(control.selection.caret);
    if (control.kind() == ControlKind::kRichEdit) {
        CHARRANGE range = {std::min(anchor, caret), std::max(anchor, caret)};
        send(window, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
    } else {
        send(editOf(control), EM_SETSEL, static_cast<WPARAM>(anchor), caret);
    }
}

// Runs are shaded. The window's own text is never read back.
void WindowView::showRichText(Control& control, HWND window) {
    send(window, WM_SETREDRAW, FALSE);
    SetWindowTextW(window, control.text.c_str());
    CHARFORMAT2W format = {};
    format.cbSize = sizeof format;
    format.dwMask = CFM_BACKCOLOR;
    for (const RichText::Run& run : control.richText ? control.richText->runs() : std::vector<RichText::Run>()) {
        CHARRANGE range = {static_cast<LONG>(run.begin), static_cast<LONG>(run.end)};
        send(window, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
        format.crBackColor = shadeOfRuns();
        send(window, EM_SETCHARFORMAT, SCF_SELECTION, reinterpret_cast<LPARAM>(&format));
    }
    showSelection(control, window);
    send(window, WM_SETREDRAW, TRUE);
    InvalidateRect(window, nullptr, TRUE);
}

// The choice, row or page selected.
void WindowView::showItem(Control& control, HWND window) {
    switch (control.kind()) {
        case ControlKind::kCombo:
            send(window, CB_SETCURSEL, static_cast<WPARAM>(control.selected));
            return;
        case ControlKind::kEditCombo:
            if (send(window, CB_GETCURSEL) != control.selected)
                send(window, CB_SETCURSEL, static_cast<WPARAM>(control.selected));
            if (windowText(window) != control.text) SetWindowTextW(window, control.text.c_str());
            return;
        case ControlKind::kListBox:
            send(window, LB_SETCURSEL, static_cast<WPARAM>(control.selected));
            return;
        case ControlKind::kListView:
            ListView_SetItemState(window, -1, 0, LVIS_SELECTED | LVIS_FOCUSED);
            if (control.selected < 0) return;
            ListView_SetItemState(window, control.selected, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
            ListView_EnsureVisible(window, control.selected, FALSE);
            return;
        case ControlKind::kTab:
            TabCtrl_SetCurSel(window, control.selected);
            return;
        default:
            return;
    }
}

void WindowView::showChoices(Control& control, HWND window) {
    if (!isCombo(control) && control.kind() != ControlKind::kListBox) return;
    const bool combo = isCombo(control);
    send(window, combo ? CB_RESETCONTENT : LB_RESETCONTENT);
    for (const Choice& choice : control.choices) send(window, combo ? CB_ADDSTRING : LB_ADDSTRING, 0, choice.text);
    if (control.kind() == ControlKind::kEditCombo) SetWindowTextW(window, control.text.c_str());
    showItem(control, window);
}

void WindowView::showColumns(Control& control, HWND window) {
    if (control.kind() != ControlKind::kListView) return;
    while (ListView_DeleteColumn(window, 0)) {
    }
    LVCOLUMNW column = {};
    column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_SUBITEM;
    for (const Column& shown : control.columns) {
        column.pszText = const_cast<wchar_t*>(shown.title.c_str());
        column.cx = shown.width;
        send(window, LVM_INSERTCOLUMNW, static_cast<WPARAM>(column.iSubItem), reinterpret_cast<LPARAM>(&column));
        ++column.iSubItem;
    }
    showRows(control, window);
}

void WindowView::showRows(Control& control, HWND window) {
    if (control.kind() != ControlKind::kListView) return;
    send(window, WM_SETREDRAW, FALSE);
    ListView_DeleteAllItems(window);
    for (std::size_t row = 0; row < control.rows.size(); ++row) {
        LVITEMW item = {};
        item.mask = LVIF_TEXT;
        item.iItem = static_cast<int>(row);
        for (const std::wstring& cell : control.rows[row].cells) {
            item.pszText = const_cast<wchar_t*>(cell.c_str());
            send(window, item.iSubItem == 0 ? LVM_INSERTITEMW : LVM_SETITEMTEXTW, item.iSubItem == 0 ? 0 : row,
                 reinterpret_cast<LPARAM>(&item));
            ++item.iSubItem;
        }
    }
    showItem(control, window);
    send(window, WM_SETREDRAW, TRUE);
    InvalidateRect(window, nullptr, TRUE);
}

void WindowView::showPages(Control& control, HWND window) {
    if (control.kind() != ControlKind::kTab) return;
    TabCtrl_DeleteAllItems(window);
    TCITEMW item = {};
    item.mask = TCIF_TEXT;
    for (std::size_t i = 0; i < control.choices.size(); ++i) {
        item.pszText = const_cast<wchar_t*>(control.choices[i].text.c_str());
        send(window, TCM_INSERTITEMW, i, reinterpret_cast<LPARAM>(&item));
    }
    showItem(control, window);
}

void WindowView::showExtras(Control& control, HWND window) {
    if (control.picture != 0) {
        HANDLE const picture =
            LoadImageW(static_cast<HINSTANCE>(control.dialog->resources()), MAKEINTRESOURCEW(control.picture),
                       IMAGE_BITMAP, 0, 0, LR_LOADMAP3DCOLORS | LR_SHARED);
        send(window, BM_SETIMAGE, IMAGE_BITMAP, reinterpret_cast<LPARAM>(picture));
    }
    if (control.tooltip.empty()) return;
    if (!tooltips_)
        tooltips_ = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX, CW_USEDEFAULT,
                                    CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, GetAncestor(window, GA_ROOT), nullptr,
                                    nullptr, nullptr);
    TTTOOLINFOW tool = {};
    tool.cbSize = sizeof tool;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = GetParent(window);
    tool.uId = reinterpret_cast<UINT_PTR>(window);
    tool.lpszText = control.tooltip.data();
    send(tooltips_, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
    send(tooltips_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

// ---- pages

void WindowView::pageShown(Control& tab) {
    Dialog& page = *tab.pages.at(static_cast<std::size_t>(tab.selected));
    if (!dialogs_.contains(&page)) createWindow(page, dialogs_.at(tab.dialog));
    if (TabCtrl_GetCurSel(windowOf(tab)) != tab.selected) TabCtrl_SetCurSel(windowOf(tab), tab.selected);
    for (Dialog* other : tab.pages) {
        const auto window = dialogs_.find(other);
        if (other == &page || window == dialogs_.end()) continue;
        if (IsChild(window->second, GetFocus())) focusChanged(tab);
        ShowWindow(window->second, SW_HIDE);
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

// ---- the focus

void WindowView::focusChanged(Control& control) {
    const Applying applying(*this);
    pending_.reset();
    if (HWND const window = windowOf(control)) SetFocus(window);
    run_.noteFocus(control);
}

void WindowView::onFocusGained(Control& control) {
    if (!run_.hasEnded()) run_.noteFocus(control);
}

void WindowView::onFocusLost(Control& control, HWND window, HWND next) {
    if (control.kind() == ControlKind::kEdit || control.kind() == ControlKind::kEditCombo) {
        DWORD begin = 0, end = 0;
        send(editOf(control), EM_GETSEL, reinterpret_cast<WPARAM>(&begin), reinterpret_cast<LPARAM>(&end));
        control.selection = {begin, end};
    }
    Control* const to = controlOf(next);
    // Only a step between controls of this window is one of the user's; boxes and other windows come and go.
    if (applying_ > 0 || !to || to == &control || !IsWindowVisible(window)) return;
    if (pending_)
        pending_->to = to;
    else
        pending_ = Step{&control, to};
    PostMessageW(root_, kLeaveMessage, 0, 0);
}

bool WindowView::settle() {
    if (!pending_) return true;
    const Step step = *pending_;
    pending_.reset();
    if (step.from == step.to) return true;
    const Run::Leave leave = run_.mayLeave(*step.from, step.to);
    if (leave == Run::Leave::kRefused) putFocusBack(*step.from);
    return leave == Run::Leave::kFree;
}

bool WindowView::leaveFocusFor(Control* next) {
    Control* const focus = run_.focus();
    if (!focus || focus == next) return true;
    const Run::Leave leave = run_.mayLeave(*focus, next);
    if (leave == Run::Leave::kRefused) putFocusBack(*focus);
    return leave == Run::Leave::kFree;
}

void WindowView::putFocusBack(Control& field) {
    if (run_.hasEnded()) return;
    focusChanged(field);
    const Applying applying(*this);
    showSelection(field, windowOf(field));
}

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

void WindowView::dispatch(MSG& message) {
    if (message.message == WM_QUIT) {
        PostQuitMessage(static_cast<int>(message.wParam));
        run_.end(kCancelButton);
    } else if (message.message == WM_KEYDOWN && message.wParam == VK_F1) {
        guard([&] { run_.helpWanted(); });
    } else if (!IsDialogMessageW(root_, &message)) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    rethrow();
}

// Until nothing is left to do.
void WindowView::pump() {
    MSG message;
    while (!run_.hasEnded() && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) dispatch(message);
}

void WindowView::work() {
    LineSource* const lines = Process::instance().lines;
    if (owner_) EnableWindow(owner_, FALSE);
    Control* const first = run_.focus();
    ShowWindow(root_, SW_SHOW);
    SetActiveWindow(root_);
    SetForegroundWindow(root_);
    if (first) focusChanged(*first);
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
    noteColumns();
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
        case kLeaveMessage:
            settle();
            return TRUE;
        case WM_CLOSE:
            cancelled();
            return TRUE;
        case WM_HELP:
            run_.helpWanted();
            return TRUE;
        case WM_COMMAND: {
            Control* control = controlOf(reinterpret_cast<HWND>(data));
            const int id = LOWORD(word);
            if (!control && window == root_ && (id == IDOK || id == IDCANCEL)) {
                // Enter or Escape in a dialog that has no such button.
                if (id == IDCANCEL)
                    cancelled();
                else if (Control* const button = run_.buttonOfEnter())
                    clicked(*button);
                return TRUE;
            }
            if (!control && id == IDHELP) run_.helpWanted();  // by no button
            if (control && applying_ == 0) onCommand(*control, HIWORD(word));
            return TRUE;
        }
        case WM_NOTIFY:
            return onNotify(window, *reinterpret_cast<const NMHDR*>(data), data);
        case WM_CONTEXTMENU:
            if (Control* const control = controlOf(reinterpret_cast<HWND>(word)))
                onContextMenu(*control, reinterpret_cast<HWND>(word), data);
            return TRUE;
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
            if (code == BN_CLICKED && !movingFocus_) clicked(control);
            return;
        case ControlKind::kEdit:
            if (code != EN_CHANGE) return;
            noteText(control);
            return run_.edited(control);
        case ControlKind::kCombo:
        case ControlKind::kEditCombo:
            if (code == CBN_EDITCHANGE) {
                control.selected = -1;
                noteText(control);
                return run_.edited(control);
            }
            if (code != CBN_SELCHANGE || !settle()) return;
            control.selected = send(window, CB_GETCURSEL);
            if (control.selected < 0) return;
            control.text = control.choices[static_cast<std::size_t>(control.selected)].text;
            return run_.chosen(control);
        case ControlKind::kListBox:
            if (code == LBN_DBLCLK && control.selected >= 0 && settle())
                return run_.doubleClicked(control, control.selected);
            if (code != LBN_SELCHANGE || !settle()) return;
            control.selected = send(window, LB_GETCURSEL);
            return run_.chosen(control);
        default:
            return;
    }
}

void WindowView::noteText(Control& control) {
    control.text = windowText(windowOf(control));
    DWORD begin = 0, end = 0;
    send(editOf(control), EM_GETSEL, reinterpret_cast<WPARAM>(&begin), reinterpret_cast<LPARAM>(&end));
    control.selection = {begin, end};
}

// A button by mouse, key or mnemonic. Enter and Escape press one without moving the focus.
void WindowView::clicked(Control& control) {
    const bool cancels =
        control.kind() == ControlKind::kButton && control.dialog == &run_.root() && control.id() == kCancelButton;
    if (!settle() || !leaveFocusFor(&control)) {
        changed(control, Aspect::kChecked);  // the system has toggled it
        if (control.kind() == ControlKind::kRadio)
            for (Control* other : radioGroup(control)) changed(*other, Aspect::kChecked);
        return;
    }
    if (cancels) return run_.cancelled();
    if (control.kind() == ControlKind::kCheck) {
        control.checked = !control.checked;
        changed(control, Aspect::kChecked);
    } else if (control.kind() == ControlKind::kRadio) {
        markRadio(control);
        for (Control* other : radioGroup(control)) changed(*other, Aspect::kChecked);
    }
    run_.pressed(control);
}

void WindowView::cancelled() {
    Control* const button = run_.findButton(kCancelButton);
    if (button && !button->enabled) return;
    if (settle() && leaveFocusFor(button)) run_.cancelled();
}

INT_PTR WindowView::onNotify(HWND dialog, const NMHDR& header, LPARAM data) {
    Control* const control = controlOf(header.hwndFrom);
    if (!control) return FALSE;
    switch (header.code) {
        case LVN_ITEMCHANGED: {
            const auto& change = *reinterpret_cast<const NMLISTVIEW*>(data);
            const bool selectedNow = (change.uNewState & LVIS_SELECTED) != 0;
            const bool selectedBefore = (change.uOldState & LVIS_SELECTED) != 0;
            if (applying_ > 0 || selectedNow == selectedBefore) return TRUE;
            if (!selectedNow) {
                if (control->selected == change.iItem) control->selected = -1;
                return TRUE;
            }
            const int before = control->selected;
            if (!settle()) {
                control->selected = before;
                changed(*control, Aspect::kSelection);
                return TRUE;
            }
            control->selected = change.iItem;
            run_.rowSelected(*control);
            return TRUE;
        }
        case NM_DBLCLK:
            if (control->kind() == ControlKind::kListView && control->selected >= 0 && settle())
                run_.doubleClicked(*control, control->selected);
            return TRUE;
        case NM_CUSTOMDRAW:
            return control->kind() == ControlKind::kListView ? onDrawRow(dialog, *control, data) : FALSE;
        case TCN_SELCHANGING:
            if (applying_ > 0) return messageResult(dialog, FALSE);
            return messageResult(dialog, !settle() || !leaveFocusFor(control));
        case TCN_SELCHANGE:
            if (applying_ > 0) return TRUE;
            control->selected = TabCtrl_GetCurSel(header.hwndFrom);
            focusChanged(*control);
            run_.pageChosen(*control);
            return TRUE;
        case EN_SELCHANGE:
            if (applying_ == 0) noteRichSelection(*control, header.hwndFrom);
            return TRUE;
        default:
            return FALSE;
    }
}

INT_PTR WindowView::onDrawRow(HWND dialog, const Control& list, LPARAM data) {
    auto& draw = *reinterpret_cast<NMLVCUSTOMDRAW*>(data);
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return messageResult(dialog, CDRF_NOTIFYITEMDRAW);
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT) return messageResult(dialog, CDRF_DODEFAULT);
    if (draw.nmcd.dwItemSpec < list.rows.size() && list.rows[draw.nmcd.dwItemSpec].emphasized)
        draw.clrText = RGB(200, 0, 0);
    return messageResult(dialog, CDRF_NEWFONT);
}

void WindowView::onContextMenu(Control& control, HWND window, LPARAM place) {
    if (!settle()) return;
    const std::vector<MenuEntry> entries = run_.menuOf(control);
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
    const int chosen = TrackPopupMenu(menu, TPM_RETURNCMD | TPM_RIGHTBUTTON, point.x, point.y, 0,
                                      dialogs_.at(control.dialog), nullptr);
    DestroyMenu(menu);
    if (chosen > 0) run_.menuChosen(control, entries[static_cast<std::size_t>(chosen) - 1].command);
}

// A choice with its colour in front.
void WindowView::drawChoice(const Control& control, const DRAWITEMSTRUCT& item) {
    const bool selected = (item.itemState & ODS_SELECTED) != 0;
    FillRect(item.hDC, &item.rcItem, GetSysColorBrush(selected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
    if (item.itemID >= control.choices.size()) return;
    const Choice& choice = control.choices[item.itemID];
    RECT text = item.rcItem;
    text.left += 2;
    if (choice.swatch) {
        const LONG side = item.rcItem.bottom - item.rcItem.top - 4;
        RECT swatch = {item.rcItem.left + 3, item.rcItem.top + 2, item.rcItem.left + 3 + side * 3 / 2,
                       item.rcItem.top + 2 + side};
        HBRUSH const brush = CreateSolidBrush(colorOf(*choice.swatch));
        FillRect(item.hDC, &swatch, brush);
        FrameRect(item.hDC, &swatch, GetSysColorBrush(COLOR_WINDOWTEXT));
        DeleteObject(brush);
        text.left = swatch.right + 4;
    }
    SetBkMode(item.hDC, TRANSPARENT);
    SetTextColor(item.hDC, GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
    DrawTextW(item.hDC, choice.text.c_str(), -1, &text, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    if ((item.itemState & ODS_FOCUS) != 0) DrawFocusRect(item.hDC, &item.rcItem);
}

LRESULT CALLBACK WindowView::controlProcedure(HWND window, UINT message, WPARAM word, LPARAM data, UINT_PTR,
                                              DWORD_PTR viewPointer) {
    auto& view = *reinterpret_cast<WindowView*>(viewPointer);
    Control* const control = view.controlOf(window);
    if (message == WM_NCDESTROY) RemoveWindowSubclass(window, controlProcedure, kSubclass);
    if (!control) return DefSubclassProc(window, message, word, data);
    bool done = false;
    view.guard([&] {
        if (control->kind() == ControlKind::kRichEdit && view.applying_ == 0)
            done = view.onRichEditMessage(*control, window, message, word, data);
        if (message == WM_KILLFOCUS) view.onFocusLost(*control, window, reinterpret_cast<HWND>(word));
        if (message == WM_SETFOCUS) view.onFocusGained(*control);
    });
    return done ? 0 : DefSubclassProc(window, message, word, data);
}

// ---- rich edits

bool WindowView::onRichEditMessage(Control& control, HWND, UINT message, WPARAM word, LPARAM data) {
    const auto insert = [&](std::wstring_view text) {
        if (!control.readOnly && replaceSelection(control, text)) richChanged(control, true);
        return true;
    };
    const auto paste = [&] {
        if (!control.readOnly && pasteClipboard(control)) richChanged(control, true);
        return true;
    };
    switch (message) {
        case WM_KEYDOWN:
            return onRichEditKey(control, word);
        case WM_CHAR:
            switch (word) {
                case 1:  // Ctrl+A
                    control.selection = {0, control.text.size()};
                    richChanged(control, false);
                    return true;
                case 3:  // Ctrl+C
                    copySelection(control);
                    return true;
                case 22:  // Ctrl+V
                    return paste();
                case 24:  // Ctrl+X
                    copySelection(control);
                    return insert(L"");
                default:
                    break;
            }
            if (word < L' ' || word == 0x7F) return true;
            if (IS_HIGH_SURROGATE(word)) {
                highSurrogate_ = static_cast<wchar_t>(word);
                return true;
            }
            if (IS_LOW_SURROGATE(word)) return insert(std::wstring{highSurrogate_, static_cast<wchar_t>(word)});
            return insert(std::wstring(1, static_cast<wchar_t>(word)));
        case WM_PASTE:
            return paste();
        case WM_COPY:
            copySelection(control);
            return true;
        case WM_CUT:
            copySelection(control);
            return insert(L"");
        case WM_CLEAR:
            return insert(L"");
        case EM_REPLACESEL:
            return insert(reinterpret_cast<const wchar_t*>(data));
        case WM_UNDO:
        case EM_UNDO:
            return true;
        default:
            return false;
    }
}

bool WindowView::onRichEditKey(Control& control, WPARAM keyCode) {
    static const struct {
        WPARAM code;
        TextKey key;
    } kKeys[] = {{VK_BACK, kBackspaceKey}, {VK_DELETE, kDeleteKey}, {VK_LEFT, kLeftKey},
                 {VK_RIGHT, kRightKey},    {VK_HOME, kHomeKey},     {VK_END, kEndKey}};
    const bool shift = GetKeyState(VK_SHIFT) < 0;
    const bool ctrl = GetKeyState(VK_CONTROL) < 0;
    if (keyCode == VK_INSERT && (shift || ctrl)) {
        SendMessageW(windowOf(control), shift ? WM_PASTE : WM_COPY, 0, 0);
        return true;
    }
    for (const auto& known : kKeys) {
        if (known.code != keyCode) continue;
        if (control.readOnly && (known.key == kBackspaceKey || known.key == kDeleteKey)) return true;
        richChanged(control, editByKey(control, known.key, shift));
        return true;
    }
    return keyCode == VK_UP || keyCode == VK_DOWN;
}

void WindowView::richChanged(Control& control, bool edited) {
    changed(control, edited ? Aspect::kText : Aspect::kSelection);
    if (edited) run_.edited(control);
}

// By mouse. The window tells no direction: the end that stays is the anchor.
void WindowView::noteRichSelection(Control& control, HWND window) {
    CHARRANGE range = {};
    send(window, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
    const auto begin = static_cast<std::size_t>(std::max(range.cpMin, 0L));
    const auto end = std::min(static_cast<std::size_t>(std::max(range.cpMax, 0L)), control.text.size());
    control.selection = end == control.selection.anchor ? TextSelection{end, begin} : TextSelection{begin, end};
    snapSelection(control);
    changed(control, Aspect::kSelection);
}

// ---- doing as a user would

bool WindowView::moveFocus(Control& control) {
    if (run_.focus() == &control) return settle();
    // Coming by the dialog manager selects the whole text; a script says itself where it types.
    const TextSelection selection = control.selection;
    movingFocus_ = true;
    SendMessageW(root_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(windowOf(control)), TRUE);
    movingFocus_ = false;
    rethrow();
    if (control.isTyped()) {
        control.selection = selection;
        changed(control, Aspect::kSelection);
    }
    const bool free = settle();
    rethrow();
    return free;
}

void WindowView::press(Control& button) { SendMessageW(windowOf(button), BM_CLICK, 0, 0); }

void WindowView::replaceText(Control& field, const std::wstring& text) {
    select(field, {0, field.text.size()});
    typeText(field, text);
}

void WindowView::typeText(Control& field, const std::wstring& text) { send(editOf(field), EM_REPLACESEL, TRUE, text); }

void WindowView::select(Control& field, TextSelection selection) {
    field.selection = selection;
    snapSelection(field);
    changed(field, Aspect::kSelection);
}

void WindowView::choose(Control& list, int item) {
    HWND const window = windowOf(list);
    const auto tell = [&](int code) {
        SendMessageW(GetParent(window), WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(window), code),
                     reinterpret_cast<LPARAM>(window));
    };
    switch (list.kind()) {
        case ControlKind::kCombo:
        case ControlKind::kEditCombo:
            send(window, CB_SETCURSEL, static_cast<WPARAM>(item));
            return tell(CBN_SELCHANGE);
        case ControlKind::kListBox:
            send(window, LB_SETCURSEL, static_cast<WPARAM>(item));
            return tell(LBN_SELCHANGE);
        case ControlKind::kListView:
            ListView_SetItemState(window, item, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
            ListView_EnsureVisible(window, item, FALSE);
            return;
        case ControlKind::kTab:
            TabCtrl_SetCurFocus(window, item);
            return;
        default:
            return;
    }
}

void WindowView::doubleClick(Control& list, int row) {
    if (list.kind() == ControlKind::kListBox) {
        SendMessageW(GetParent(windowOf(list)), WM_COMMAND, MAKEWPARAM(list.id(), LBN_DBLCLK),
                     reinterpret_cast<LPARAM>(windowOf(list)));
        return;
    }
    NMITEMACTIVATE click = {};
    click.hdr = {windowOf(list), static_cast<UINT_PTR>(list.id()), static_cast<UINT>(NM_DBLCLK)};
    click.iItem = row;
    SendMessageW(GetParent(click.hdr.hwndFrom), WM_NOTIFY, click.hdr.idFrom, reinterpret_cast<LPARAM>(&click));
}

void WindowView::key(Key key, bool shift) {
    static constexpr struct {
        Key key;
        WPARAM code;
    } kCodes[] = {{Key::kEnter, VK_RETURN},   {Key::kEscape, VK_ESCAPE}, {Key::kTab, VK_TAB},   {Key::kSpace, VK_SPACE},
                  {Key::kBackspace, VK_BACK}, {Key::kDelete, VK_DELETE}, {Key::kLeft, VK_LEFT}, {Key::kRight, VK_RIGHT},
                  {Key::kUp, VK_UP},          {Key::kDown, VK_DOWN},     {Key::kHome, VK_HOME}, {Key::kEnd, VK_END},
                  {Key::kHelp, VK_F1}};
    BYTE before[256];
    GetKeyboardState(before);
    BYTE state[256];
    std::copy(std::begin(before), std::end(before), state);
    state[VK_SHIFT] = shift ? 0x80 : 0;
    SetKeyboardState(state);
    for (const auto& known : kCodes) {
        if (known.key != key) continue;
        PostMessageW(GetFocus(), WM_KEYDOWN, known.code, 1);
        PostMessageW(GetFocus(), WM_KEYUP, known.code, static_cast<LPARAM>(0xC0000001));
    }
    pump();
    SetKeyboardState(before);
    // A key may have moved the caret of a field of the system's.
    if (Control* const focus = run_.focus(); focus && focus->kind() == ControlKind::kEdit && !run_.hasEnded()) {
        DWORD begin = 0, end = 0;
        send(windowOf(*focus), EM_GETSEL, reinterpret_cast<WPARAM>(&begin), reinterpret_cast<LPARAM>(&end));
        focus->selection = {begin, end};
    }
}

void WindowView::close() { SendMessageW(root_, WM_CLOSE, 0, 0); }

// ---- sizes

int WindowView::listWidth(const Control& list) {
    RECT client = {};
    GetClientRect(windowOf(list), &client);
    return client.right;
}

void WindowView::noteColumns() {
    for (const auto& [control, window] : windows_) {
        if (control->kind() != ControlKind::kListView) continue;
        Control& list = *controls_.at(window);
        for (std::size_t i = 0; i < list.columns.size(); ++i)
            list.columns[i].width = ListView_GetColumnWidth(window, static_cast<int>(i));
    }
}

// "left,top,width,height" in pixels; the size is the template's and only tells what was there.
void WindowView::restorePlacement(const std::wstring& placement) {
    const std::vector<std::wstring> numbers = base::split(placement, L',');
    if (numbers.size() != 4) return;
    const auto left = base::parseInteger(std::wstring_view(numbers[0]));
    const auto top = base::parseInteger(std::wstring_view(numbers[1]));
    if (!left || !top) return;
    const POINT corner = {static_cast<LONG>(*left), static_cast<LONG>(*top)};
    // A screen that is gone since must not hide the dialog.
    if (!MonitorFromPoint(corner, MONITOR_DEFAULTTONULL)) return;
    SetWindowPos(root_, nullptr, corner.x, corner.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

std::wstring WindowView::placement() {
    RECT place;
    GetWindowRect(root_, &place);
    return base::format(L"%d,%d,%d,%d", static_cast<int>(place.left), static_cast<int>(place.top),
                        static_cast<int>(place.right - place.left), static_cast<int>(place.bottom - place.top));
}

void WindowView::savePicture(const std::wstring& fileName) { saveWindowPicture(root_, fileName); }

}  // namespace dialogs
