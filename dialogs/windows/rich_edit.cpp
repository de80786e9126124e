#include "dialogs/windows/rich_edit.h"

#include <commctrl.h>
#include <richedit.h>

#include <algorithm>

#include "dialogs/text_editing.h"
#include "dialogs/windows/control_window.h"

namespace dialogs {
namespace {

// A fifth of the way from the window's colour to its text's, so that it is seen in every colour scheme.
COLORREF shadeOfRuns() {
    const COLORREF paper = GetSysColor(COLOR_WINDOW);
    const COLORREF ink = GetSysColor(COLOR_WINDOWTEXT);
    const auto mix = [](int a, int b) { return static_cast<BYTE>((4 * a + b) / 5); };
    return RGB(mix(GetRValue(paper), GetRValue(ink)), mix(GetGValue(paper), GetGValue(ink)),
               mix(GetBValue(paper), GetBValue(ink)));
}

RichEditInput typed(std::wstring text) { return {RichEditInput::Kind::kText, std::move(text)}; }
RichEditInput editing(Key key) { return {RichEditInput::Kind::kEditing, {}, key}; }

RichEditInput readCharacter(wchar_t character) {
    static wchar_t highSurrogate = 0;  // comes as a message of its own
    if (character < L' ' || character == 0x7F) return {RichEditInput::Kind::kNone};
    if (IS_HIGH_SURROGATE(character)) {
        highSurrogate = character;
        return {RichEditInput::Kind::kNone};
    }
    if (IS_LOW_SURROGATE(character)) return typed({highSurrogate, character});
    return typed({character});
}

}  // namespace

void prepareRichEdit(HWND window) {
    send(window, EM_SETUNDOLIMIT, 0);
    send(window, EM_SETEVENTMASK, 0, ENM_SELCHANGE);
}

void showRichSelection(const Control& control, HWND window) {
    CHARRANGE range = {static_cast<LONG>(control.selection.begin()), static_cast<LONG>(control.selection.end())};
    send(window, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&range));
}

// The system leaves one that is disabled or can only be read as it is, which looks as if one could type into it.
void showRichEnabled(const Control& control, HWND window) {
    EnableWindow(window, control.enabled);
    send(window, EM_SETBKGNDCOLOR, 0,
         static_cast<LPARAM>(GetSysColor(control.enabled && !control.readOnly ? COLOR_WINDOW : COLOR_3DFACE)));
    CHARFORMAT2W format = {};
    format.cbSize = sizeof format;
    format.dwMask = CFM_COLOR;
    format.crTextColor = GetSysColor(control.enabled ? COLOR_WINDOWTEXT : COLOR_GRAYTEXT);
    for (const WPARAM which : {SCF_DEFAULT, SCF_ALL})
        send(window, EM_SETCHARFORMAT, which, reinterpret_cast<LPARAM>(&format));
}

// The window's own text is never read back.
void showRichText(const Control& control, HWND window) {
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
    showRichSelection(control, window);
    send(window, WM_SETREDRAW, TRUE);
    InvalidateRect(window, nullptr, TRUE);
}

// The window tells no direction: the end that stays is the anchor.
void noteRichSelection(Control& control, HWND window) {
    CHARRANGE range = {};
    send(window, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&range));
    const auto begin = static_cast<std::size_t>(std::max(range.cpMin, 0L));
    const auto end = std::min(static_cast<std::size_t>(std::max(range.cpMax, 0L)), control.text.size());
    control.selection = end == control.selection.anchor ? TextSelection{end, begin} : TextSelection{begin, end};
    snapSelection(control);
}

RichEditInput readRichEditMessage(UINT message, WPARAM word, LPARAM data) {
    switch (message) {
        case WM_CHAR:
            return readCharacter(static_cast<wchar_t>(word));
        case WM_PASTE:
            return editing(Key::kPaste);
        case WM_COPY:
            return editing(Key::kCopy);
        case WM_CUT:
            return editing(Key::kCut);
        case WM_CLEAR:
            return typed({});
        case EM_REPLACESEL:
            return typed(reinterpret_cast<const wchar_t*>(data));
        case WM_UNDO:
        case EM_UNDO:
            return {RichEditInput::Kind::kNone};
        default:
            return {};
    }
}

}  // namespace dialogs
