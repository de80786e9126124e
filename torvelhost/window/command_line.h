// The command line of a window: the prompt with its words, the line that is typed, those typed before, and how a line
// may go on.
#pragma once

#include <string>
#include <vector>

#include "torvelhost/lines/question.h"
#include "torvelhost/window/view_frame.h"

namespace host {

class CommandLine {
  public:
    explicit CommandLine(ViewFrame& frame) : frame_(frame) {}

    /// Shows the prompt; keywords are words that can be clicked. The question must live until it is answered.
    void ask(const Question& question);
    /// Nothing is asked: a command works.
    void rest();
    /// While it does so for long, what was asked last goes.
    void showNone();
    const std::vector<std::wstring>& words() const { return words_; }

    const std::wstring& text() const { return text_; }
    /// As the user has changed it.
    void changed(const std::wstring& text);
    /// As the view sets it.
    void set(const std::wstring& text);
    /// Gives the line, which is remembered, and empties it.
    std::wstring enter();

    /// Towards older lines, and back.
    void recall(bool older);
    /// As far as the line can only go on in one way; tells the ways on where there are several.
    void complete();

  private:
    ViewFrame& frame_;
    const Question* question_ = nullptr;
    bool isShown_ = false;  // it, or the last one
    std::wstring text_;
    std::vector<std::wstring> words_;
    std::vector<std::wstring> entered_;
    std::size_t recalled_ = 0;  // an index of those; their number: the line is new
    std::wstring draft_;        // the new line, while older ones are shown
};

}  // namespace host
