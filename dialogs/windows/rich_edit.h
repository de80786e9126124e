// Rich edits of the system only show their text. Every message that would edit it is taken from them and done to the
// control's state; then the text is shown anew, its runs shaded.
#pragma once

#include <windows.h>

#include <string>

#include "dialogs/view.h"

namespace dialogs {

void prepareRichEdit(HWND window);
void showRichText(const Control& control, HWND window);
void showRichSelection(const Control& control, HWND window);
void showRichEnabled(const Control& control, HWND window);
/// By mouse.
void noteRichSelection(Control& control, HWND window);

/// What a message to the window means.
struct RichEditInput {
    enum class Kind {
        kOther,   ///< nothing that edits: the window may have it
        kNone,    ///< nothing is to happen
        kText,    ///< typed: in the place of the selection
        kEditing  ///< the key does it
    };
    Kind kind = Kind::kOther;
    std::wstring text = {};
    Key key = Key::kDelete;
};
RichEditInput readRichEditMessage(UINT message, WPARAM word, LPARAM data);

}  // namespace dialogs
