// Where replies come from: scripts, or a person at the prompt.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "torvelhost/lines/question.h"
#include "torvelhost/lines/terminal.h"

namespace host {

/// A script whose line does not fit the prompt it meets, or that ends inside a prompt. Ends the run.
class ScriptError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

class ReplySource {
  public:
    virtual ~ReplySource() = default;
    ReplySource(const ReplySource&) = delete;
    ReplySource& operator=(const ReplySource&) = delete;

    /// Shows the prompt and takes a line. Nothing at the end.
    virtual std::optional<std::wstring> next(const Question& question) = 0;
    /// The line taken last does not suit, and why. Throws ScriptError in a script; returns when a person is to be told,
    /// and asked again.
    virtual void refused(const std::wstring& why) = 0;
    /// The line that next() will take; nothing at the end, and from a person, who cannot be looked at in advance.
    virtual std::optional<std::wstring> peek() { return std::nullopt; }
    /// Where the line taken last stands: "plan.scr:3".
    virtual std::wstring place() const { return L""; }
    virtual bool isScript() const = 0;
    /// A person cancelled an empty line: at the command prompt that asks for the end.
    virtual bool wantsToLeave() const { return false; }

  protected:
    ReplySource() = default;
};

/// Lines of scripts, one after the other. Comment lines are left out. Each reply is echoed behind its prompt.
class ScriptReplies : public ReplySource {
  public:
    explicit ScriptReplies(Terminal& terminal) : terminal_(terminal) {}

    /// Throws base::FileError. "-" is standard input, which is read line by line as the replies are needed.
    void addFile(const std::wstring& path);
    void addText(const std::wstring& text);

    std::optional<std::wstring> next(const Question& question) override;
    std::optional<std::wstring> peek() override;
    void refused(const std::wstring& why) override;
    std::wstring place() const override { return place_; }
    bool isScript() const override { return true; }

  private:
    struct Part {
        std::wstring name;
        std::vector<std::wstring> lines;
        bool standardInput = false;
        std::size_t taken = 0;
    };
    std::optional<std::wstring> nextRaw();

    Terminal& terminal_;
    std::vector<Part> parts_;
    std::size_t part_ = 0;
    std::optional<std::wstring> peeked_;
    std::wstring place_;
};

/// A person at the prompt. Ctrl+C gives "^C"; where it is kept from ending the program it does so, too, at the prompt
/// after the work that it came in.
class TypedReplies : public ReplySource {
  public:
    explicit TypedReplies(Terminal& terminal) : terminal_(terminal) {}

    std::optional<std::wstring> next(const Question& question) override;
    void refused(const std::wstring&) override {}
    bool isScript() const override { return false; }
    bool wantsToLeave() const override { return wantsToLeave_; }

  private:
    Terminal& terminal_;
    bool wantsToLeave_ = false;
};

}  // namespace host
