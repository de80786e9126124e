// What works the dialogs: the lines that answer all other prompts.
#pragma once

#include "dialogs/process.h"
#include "torvelhost/lines/reply_source.h"

namespace host {

class DialogLines : public dialogs::LineSource {
  public:
    DialogLines(ReplySource& replies, Terminal& terminal) : replies_(replies), terminal_(terminal) {}

    std::optional<std::wstring> next(const std::wstring& prompt) override { return choose(prompt, {}); }
    std::optional<std::wstring> choose(const std::wstring& prompt, const Choices& choices) override;
    std::optional<std::wstring> answer(const std::wstring& question) override;
    std::optional<std::wstring> peek() override { return replies_.peek(); }
    void print(std::wstring_view text) override { terminal_.show(text); }
    /// Throws ScriptError in a script.
    void refuse(const std::wstring& why) override;
    bool isScript() const override { return replies_.isScript(); }

  private:
    ReplySource& replies_;
    Terminal& terminal_;
};

/// Dialogs are windows or forms while this lives: windows where the options want them, and for a person at a terminal
/// where that is usual.
class DialogUse {
  public:
    DialogUse(bool windows, DialogLines& lines);
    ~DialogUse();
    DialogUse(const DialogUse&) = delete;
    DialogUse& operator=(const DialogUse&) = delete;
};

}  // namespace host
