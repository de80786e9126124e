// What the program writes, and where: standard output carries what commands print, standard error all the rest.
#pragma once

#include <string_view>

namespace host {

class Terminal {
  public:
    explicit Terminal(bool quiet) : quiet_(quiet) {}

    /// What a command prints: the text and a line end on standard output.
    void print(std::wstring_view text);
    /// Prompts and echoes: as they are, on standard error.
    void show(std::wstring_view text);
    /// A line on standard error, with the program's name in front.
    void error(std::wstring_view text);
    void warning(std::wstring_view text);  // not when quiet
    /// A line on standard error for the user's eyes: a count, a hint.
    void notice(std::wstring_view text);

    bool isQuiet() const { return quiet_; }
    /// Standard output could not be written (a closed pipe, a full disk).
    bool outputFailed() const { return outputFailed_; }

  private:
    bool quiet_;
    bool outputFailed_ = false;
};

}  // namespace host
