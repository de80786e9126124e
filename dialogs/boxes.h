// Message boxes, file dialogs, and questions that take one line: as windows, or as lines of a form.
#pragma once

#include <optional>
#include <string>

#include "dialogs/api.h"

namespace dialogs {

enum class BoxKind { kNotice, kWarning, kError, kYesNo, kYesNoCancel };
enum class Answer { kOk = 1, kCancel = 2, kYes = 6, kNo = 7 };

/// In forms the text behind "[notice]", "[warning]", "[error]" or "[question]"; a question takes "yes", "no" or
/// "cancel" from the next line.
DIALOGS_API Answer messageBox(BoxKind kind, const std::wstring& text, const std::wstring& caption = {});

struct FileRequest {
    bool save = false;  ///< else the file is to be opened
    std::wstring title;
    std::wstring fileName;          ///< shown at first
    std::wstring defaultExtension;  ///< given to a name that has none; "*.txt" counts as "txt"
    std::wstring filter;            ///< "Texts (*.txt)|*.txt|All files|*.*||"
    bool mustExist = false;         ///< a file to open
    bool askOverwrite = false;      ///< before a file that is there is chosen for saving
};
/// The full path of the file chosen; nothing when the dialog was cancelled. In forms the next line is the answer, and
/// an empty one cancels. A question whether to replace a file may be left unanswered in a script: then it is replaced.
DIALOGS_API std::optional<std::wstring> askFile(const FileRequest& request);
DIALOGS_API std::optional<std::wstring> askFolder(const std::wstring& title);

/// Whether a question such as a choice of colour is to be asked as a line: dialogs are forms, or a script works them.
DIALOGS_API bool asksLines();
/// The next line, for such a question; nothing for an empty one, ^C, and the end of a person's input.
DIALOGS_API std::optional<std::wstring> askLine(const std::wstring& prompt);
/// The line that askLine gave does not suit. Returns when it is to be asked again.
DIALOGS_API void refuseLine(const std::wstring& why);

/// The clipboard's text; with forms one of the process's own.
DIALOGS_API std::wstring clipboardText();
DIALOGS_API void setClipboardText(const std::wstring& text);

}  // namespace dialogs
