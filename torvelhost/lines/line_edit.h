// The line under the cursor and the lines before it: what keys do to them. Knows no terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class LineEdit {
  public:
    enum Key {
        kLeft,
        kRight,
        kWordLeft,
        kWordRight,
        kHome,
        kEnd,
        kPrevious,  // line of the history
        kNext,
        kBackspace,
        kDelete,
        kDeleteWord,
        kDeleteToStart,
        kDeleteToEnd,
    };

    /// `history` is older lines, the oldest first; it must outlive this.
    explicit LineEdit(const std::vector<std::wstring>& history) : history_(history), line_(history.size()) {}

    void insert(std::wstring_view text);
    void press(Key key);
    const std::wstring& text() const { return text_; }
    /// In wchar_t units from the start of the text.
    std::size_t caret() const { return caret_; }

  private:
    void showLine(std::size_t line);

    const std::vector<std::wstring>& history_;
    std::size_t line_;      // history_.size(): the new line
    std::wstring newLine_;  // kept while older lines are shown
    std::wstring text_;
    std::size_t caret_ = 0;
};

}  // namespace host
