// The contents of a rich edit control.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "dialogs/api.h"

namespace dialogs {

/// A caret and the other end of what is selected; positions count units of wchar_t.
struct TextSelection {
    std::size_t anchor = 0;
    std::size_t caret = 0;

    std::size_t begin() const { return anchor < caret ? anchor : caret; }
    std::size_t end() const { return anchor < caret ? caret : anchor; }
    bool isEmpty() const { return anchor == caret; }
};

/// An entry of a context menu. An empty text is a separator.
struct MenuEntry {
    std::wstring text;
    int command = 0;
    bool enabled = true;
};

/// One line of text in which some runs of characters are handled as a whole: they are shown shaded, selected whole, and
/// deleted whole. The text belongs to the implementer; the control shows it and asks for every change.
class DIALOGS_API RichText {
  public:
    struct Run {
        std::size_t begin = 0;
        std::size_t end = 0;  ///< behind the last character
    };

    virtual ~RichText();

    virtual std::wstring text() const = 0;
    /// In ascending order, none of them empty; two may touch.
    virtual std::vector<Run> runs() const = 0;
    /// Puts plain text in the place of the characters from `begin` to `end`, which cut no run.
    virtual void replace(std::size_t begin, std::size_t end, std::wstring_view plain) = 0;

    /// For the clipboard; a paste puts it in the place of the characters from `begin` to `end`. Both are plain text
    /// here.
    virtual std::wstring copy(std::size_t begin, std::size_t end);
    virtual void paste(std::size_t begin, std::size_t end, std::wstring_view copied);

    virtual std::vector<MenuEntry> menu(const TextSelection& selection) const;
    /// A choice from the menu. May change the text, the runs and the selection; the control shows what comes of it.
    /// Whether the contents may be others now, also where they look the same.
    virtual bool onMenu(int command, TextSelection& selection);
};

}  // namespace dialogs
