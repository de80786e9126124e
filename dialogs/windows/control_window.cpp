#include "dialogs/windows/control_window.h"

#include <algorithm>
#include <stdexcept>

#include "base/text.h"
#include "dialogs/dialog.h"
#include "dialogs/windows/rich_edit.h"

namespace dialogs {
namespace {

bool isCombo(const Control& control) {
    return control.kind() == ControlKind::kCombo || control.kind() == ControlKind::kEditCombo;
}

std::wstring windowText(HWND window) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)), L'\0');
    const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size()) + 1);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

COLORREF colorOf(std::uint32_t rgb) { return RGB(rgb >> 16 & 0xFF, rgb >> 8 & 0xFF, rgb & 0xFF); }

// ---- the aspects

void showSelection(const Control& control, HWND window) {
    if (!control.isTyped()) return;
    if (control.kind() == ControlKind::kRichEdit) return showRichSelection(control, window);
    HWND const edit = editOf(control, window);
    send(edit, EM_SETSEL, control.selection.anchor, static_cast<LPARAM>(control.selection.caret));
    send(edit, EM_SCROLLCARET);
}

void showRow(const Control& list, HWND window) {
    constexpr UINT kState = LVIS_SELECTED | LVIS_FOCUSED;
    if (list.selected < 0) {
        if (ListView_GetSelectedCount(window) != 0) ListView_SetItemState(window, -1, 0, kState);
        return;
    }
    // The one that was selected is so no more: there is but one.
    if ((ListView_GetItemState(window, list.selected, LVIS_SELECTED) & LVIS_SELECTED) == 0)
        ListView_SetItemState(window, list.selected, kState, kState);
    ListView_EnsureVisible(window, list.selected, FALSE);
}

// The choice, row or page selected.
void showItem(const Control& control, HWND window) {
    if (control.kind() == ControlKind::kListView) return showRow(control, window);
    if (shownItem(control, window) != control.selected) {
        if (isCombo(control)) send(window, CB_SETCURSEL, static_cast<WPARAM>(control.selected));
        if (control.kind() == ControlKind::kListBox) send(window, LB_SETCURSEL, static_cast<WPARAM>(control.selected));
        if (control.kind() == ControlKind::kTab) TabCtrl_SetCurSel(window, control.selected);
    }
    if (control.kind() == ControlKind::kEditCombo && windowText(window) != control.text)
        SetWindowTextW(window, control.text.c_str());
}

void showText(const Control& control, HWND window) {
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

void showChoices(const Control& control, HWND window) {
    if (!isCombo(control) && control.kind() != ControlKind::kListBox) return;
    const bool combo = isCombo(control);
    send(window, combo ? CB_RESETCONTENT : LB_RESETCONTENT);
    for (const Choice& choice : control.choices) send(window, combo ? CB_ADDSTRING : LB_ADDSTRING, 0, choice.text);
    showItem(control, window);
}

// The window asks for what it shows of them.
void showRows(const Control& control, HWND window) {
    if (control.kind() != ControlKind::kListView) return;
    if (ListView_GetItemCount(window) != control.itemCount())
        ListView_SetItemCountEx(window, control.itemCount(), LVSICF_NOSCROLL);
    showItem(control, window);
    InvalidateRect(window, nullptr, TRUE);
}

void showColumns(const Control& control, HWND window) {
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

void showPages(const Control& control, HWND window) {
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

void showPicture(const Control& control, HWND window) {
    if (control.picture == 0) return;
    // Small icons grow with the screen's resolution.
    HANDLE const picture =
        LoadImageW(static_cast<HINSTANCE>(control.dialog->resources()), MAKEINTRESOURCEW(control.picture), IMAGE_ICON,
                   GetSystemMetrics(SM_CXSMICON), GetSystemMetrics(SM_CYSMICON), LR_SHARED);
    send(window, BM_SETIMAGE, IMAGE_ICON, reinterpret_cast<LPARAM>(picture));
}

}  // namespace

int send(HWND window, UINT message, WPARAM word, LPARAM data) {
    return static_cast<int>(SendMessageW(window, message, word, data));
}

int send(HWND window, UINT message, WPARAM word, const std::wstring& text) {
    return send(window, message, word, reinterpret_cast<LPARAM>(text.c_str()));
}

HWND editOf(const Control& control, HWND window) {
    if (control.kind() != ControlKind::kEditCombo || !window) return window;
    COMBOBOXINFO info = {};
    info.cbSize = sizeof info;
    return GetComboBoxInfo(window, &info) ? info.hwndItem : window;
}

void prepareWindow(const Control& control, HWND window) {
    if (control.kind() == ControlKind::kListView) {
        if ((control.design->style & LVS_OWNERDATA) == 0)
            throw std::logic_error("list view " + std::to_string(control.id()) + " is not LVS_OWNERDATA");
        ListView_SetExtendedListViewStyle(window, LVS_EX_FULLROWSELECT);
    }
    if (control.kind() == ControlKind::kRichEdit) prepareRichEdit(window);
}

void showAspect(const Control& control, HWND window, Aspect aspect) {
    switch (aspect) {
        case Aspect::kText:
            return showText(control, window);
        case Aspect::kChecked:
            if (control.isCheckable()) send(window, BM_SETCHECK, control.checked ? BST_CHECKED : BST_UNCHECKED);
            return;
        case Aspect::kEnabled:
            if (control.kind() == ControlKind::kRichEdit)
                showRichEnabled(control, window);
            else
                EnableWindow(window, control.enabled);
            return;
        case Aspect::kVisible:
            ShowWindow(window, control.visible ? SW_SHOWNA : SW_HIDE);
            return;
        case Aspect::kReadOnly:
            if (control.isText()) send(window, EM_SETREADONLY, control.readOnly);
            if (control.kind() == ControlKind::kRichEdit) showRichEnabled(control, window);
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
            return showPicture(control, window);
    }
}

// ---- from the window into the control

void noteText(Control& control, HWND window) {
    control.text = windowText(window);
    noteSelection(control, window);
}

void noteSelection(Control& control, HWND window) {
    if (control.kind() != ControlKind::kEdit && control.kind() != ControlKind::kEditCombo) return;
    DWORD begin = 0, end = 0;
    send(editOf(control, window), EM_GETSEL, reinterpret_cast<WPARAM>(&begin), reinterpret_cast<LPARAM>(&end));
    control.selection = {begin, end};
}

void noteColumns(Control& list, HWND window) {
    for (std::size_t i = 0; i < list.columns.size(); ++i)
        list.columns[i].width = ListView_GetColumnWidth(window, static_cast<int>(i));
}

int shownItem(const Control& control, HWND window) {
    switch (control.kind()) {
        case ControlKind::kCombo:
        case ControlKind::kEditCombo:
            return send(window, CB_GETCURSEL);
        case ControlKind::kListBox:
            return send(window, LB_GETCURSEL);
        case ControlKind::kTab:
            return TabCtrl_GetCurSel(window);
        default:
            return -1;
    }
}

void giveCell(const Control& list, NMLVDISPINFOW& wanted) {
    const auto row = static_cast<std::size_t>(wanted.item.iItem), cell = static_cast<std::size_t>(wanted.item.iSubItem);
    if ((wanted.item.mask & LVIF_TEXT) == 0 || row >= list.rows.size() || cell >= list.rows[row].cells.size()) return;
    wanted.item.pszText = const_cast<wchar_t*>(list.rows[row].cells[cell].c_str());
}

int findRow(const Control& list, const NMLVFINDITEMW& wanted) {
    if ((wanted.lvfi.flags & (LVFI_STRING | LVFI_PARTIAL)) == 0 || !wanted.lvfi.psz || list.columns.empty()) return -1;
    const int count = list.itemCount();
    for (int step = 0; step < count; ++step) {
        const int row = (std::max(wanted.iStart, 0) + step) % count;
        const std::vector<std::wstring>& cells = list.rows[static_cast<std::size_t>(row)].cells;
        if (!cells.empty() && base::startsWithNoCase(cells.front(), wanted.lvfi.psz)) return row;
    }
    return -1;
}

bool isDroppedDown(const Control& control, HWND window) { return isCombo(control) && send(window, CB_GETDROPPEDSTATE); }

// ---- as a hand would

void chooseInWindow(const Control& list, HWND window, int item) {
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

void doubleClickInWindow(const Control& list, HWND window, int row) {
    if (list.kind() == ControlKind::kListBox) {
        SendMessageW(GetParent(window), WM_COMMAND, MAKEWPARAM(list.id(), LBN_DBLCLK),
                     reinterpret_cast<LPARAM>(window));
        return;
    }
    NMITEMACTIVATE click = {};
    click.hdr = {window, static_cast<UINT_PTR>(list.id()), static_cast<UINT>(NM_DBLCLK)};
    click.iItem = row;
    SendMessageW(GetParent(window), WM_NOTIFY, click.hdr.idFrom, reinterpret_cast<LPARAM>(&click));
}

// ---- drawing

void drawChoice(const Control& control, const DRAWITEMSTRUCT& item) {
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

LRESULT drawRow(const Control& list, NMLVCUSTOMDRAW& draw) {
    if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
    if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT) return CDRF_DODEFAULT;
    if (draw.nmcd.dwItemSpec < list.rows.size() && list.rows[draw.nmcd.dwItemSpec].emphasized)
        draw.clrText = RGB(200, 0, 0);
    return CDRF_NEWFONT;
}

}  // namespace dialogs
