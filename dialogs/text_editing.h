// Typing in a field whose text is not edited by a window of the system: the fields of forms, and rich edits everywhere.
#pragma once

#include <string_view>

#include "dialogs/control.h"

namespace dialogs {

enum TextKey { kBackspaceKey, kDeleteKey, kLeftKey, kRightKey, kHomeKey, kEndKey };

/// Puts the text in the place of the selection, runs whole; the caret is behind it afterwards. A field of one line
/// takes the text up to its first line end. False when there was nothing to replace and nothing to put there.
bool replaceSelection(Control& field, std::wstring_view text);
bool pasteClipboard(Control& field);
void copySelection(Control& field);
/// True when the text changed. The caret steps over runs; deleting beside one deletes it.
bool editByKey(Control& field, TextKey key, bool shift);
/// Widens the selection so that it cuts no run, and brings it inside the text.
DIALOGS_API void snapSelection(Control& field);
/// After the contents of a rich edit changed.
void refreshFromRichText(Control& field);

}  // namespace dialogs
