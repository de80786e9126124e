// Lines that work the dialogs of a test.
#pragma once

#include <deque>
#include <stdexcept>

#include "base/text.h"
#include "dialogs/process.h"

/// A line did not fit, or there was none left.
class ScriptFault : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class ScriptLines final : public dialogs::LineSource {
  public:
    std::optional<std::wstring> next(const std::wstring& asked) override {
        prompt = base::toUtf8(asked);
        const auto line = peek();
        if (line) lines.pop_front();
        return line;
    }
    std::optional<std::wstring> peek() override {
        return lines.empty() ? std::nullopt : std::optional(base::fromUtf8(lines.front()));
    }
    void print(std::wstring_view text) override { printed += base::toUtf8(text); }
    void refuse(const std::wstring& why) override { throw ScriptFault(base::toUtf8(why)); }
    bool isScript() const override { return true; }

    std::deque<std::string> lines;
    std::string printed;
    std::string prompt;  // the last one
};
