// Typing in a field whose text is not edited by a window of the system: the fields of forms, and rich edits everywhere.
#pragma once

#include <optional>
#include <string_view>

#include "dialogs/control.h"
#include "dialogs/keys.h"

namespace dialogs {

/// Puts the text in the place of the selection, runs whole; the caret is behind it afterwards. A field of one line
/// takes the text up to its first line end. False when there was nothing to replace and nothing to put there.
bool replaceSelection(Control& field, std::wstring_view text);
bool pasteClipboard(Control& field);
void copySelection(Control& field);
/// Whether the text changed; nothing for a key that neither edits a text nor moves in it. The caret steps over runs;
/// deleting beside one deletes it. Up and Down are those of a field of one line.
std::optional<bool> editByKey(Control& field, Key key, bool shift);
/// Widens the selection so that it cuts no run, and brings it inside the text.
DIALOGS_API void snapSelection(Control& field);
/// After the contents of a rich edit changed.
void refreshFromRichText(Control& field);

}  // namespace dialogs
