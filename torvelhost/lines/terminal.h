// What the program writes, and where: standard output carries what commands print, standard error all the rest.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace host {

/// The text as a terminal may be given it: control characters, which a file can hold to work the terminal, are replaced
/// by signs. Line feeds and tabs stay.
std::wstring visible(std::wstring_view text);

class Terminal {
  public:
    explicit Terminal(bool quiet);

    /// What a command prints: the text and a line end on standard output.
    void print(std::wstring_view text);
    /// What was asked for, boxes, and why a reply does not suit: as it is, on standard error.
    void show(std::wstring_view text);
    /// Prompts and echoes: as they are, on standard error, not when quiet.
    void prompt(std::wstring_view text);
    /// A line on standard error, with the program's name in front.
    void error(std::wstring_view text);
    void warning(std::wstring_view text);  // not when quiet
    /// A line on standard error for the user's eyes: a count, a hint. Not when quiet.
    void notice(std::wstring_view text);

    /// Is told all that is written, as it is written but without the program's name, and what a quiet terminal keeps.
    using Watcher = std::function<void(std::wstring_view text)>;
    void watch(Watcher watcher) { watcher_ = std::move(watcher); }

    bool isQuiet() const { return quiet_; }
    /// Whether somebody looks on, so that words for the moment are worth saying: on standard error, or the watcher.
    bool isSeen() const { return watcher_ || (!quiet_ && errorIsTerminal_); }
    /// Standard output could not be written (a closed pipe, a full disk).
    bool outputFailed() const { return outputFailed_; }

  private:
    void tell(std::wstring_view text, const wchar_t* end = L"") const {
        if (watcher_) watcher_(visible(text) + end);
    }

    Watcher watcher_;
    bool quiet_;
    bool outputIsTerminal_;
    bool errorIsTerminal_;
    bool outputFailed_ = false;
};

}  // namespace host
