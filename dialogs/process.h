// What a process decides about its dialogs: whether they are windows or forms, and where the lines come from that
// answer them. Without a say they are windows on Windows, and forms on the terminal elsewhere.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dialogs/api.h"

namespace dialogs {

/// Where lines come from and where forms are printed.
class DIALOGS_API LineSource {
  public:
    virtual ~LineSource();

    /// Shows the prompt and takes a line; nothing at the end.
    virtual std::optional<std::wstring> next(const std::wstring& prompt) = 0;
    /// The line that next() will take, where that can be known.
    virtual std::optional<std::wstring> peek() { return std::nullopt; }
    /// The same for a question of a message box, which is shown where prompts are not.
    virtual std::optional<std::wstring> answer(const std::wstring& question) { return next(question); }
    /// The same for a line that may be one of the choices, for a person who wants it completed.
    using Choices = std::function<std::vector<std::wstring>()>;
    virtual std::optional<std::wstring> choose(const std::wstring& prompt, const Choices&) { return next(prompt); }
    /// A text with its line ends.
    virtual void print(std::wstring_view text) = 0;
    /// A line did not suit, or there was none. The source of a script throws, which ends all dialogs; that of a person
    /// tells why and returns.
    virtual void refuse(const std::wstring& why) = 0;
    virtual bool isScript() const = 0;
};

/// Dialogs are forms, worked by the lines of `lines`. It must outlive its use.
DIALOGS_API void useForms(LineSource& lines);
/// Calls `wait`, which returns when a person has done something; shows meanwhile that nothing is being worked at.
using Waiting = std::function<void(const std::function<void()>& wait)>;
/// Dialogs are windows. With a script its lines do what a user would do; without one (null) the user does.
/// False, and nothing changed, where there are no windows; `reason` is then what is missing.
DIALOGS_API bool useWindows(LineSource* script, Waiting waiting = {}, std::wstring* reason = nullptr);
/// While it lives, the windows of the dialogs that are open are not seen and nobody can work them: the user is asked
/// for something elsewhere. Nothing where lines answer.
class DIALOGS_API HiddenWindows {
  public:
    HiddenWindows();
    ~HiddenWindows();
    HiddenWindows(const HiddenWindows&) = delete;
    HiddenWindows& operator=(const HiddenWindows&) = delete;
};
/// Whether dialogs are windows without a say.
DIALOGS_API bool windowsAreStandard();
/// Dialogs and boxes that open outside of any other dialog belong to that window, the handle of the host's main window,
/// and are modal to it. Null: to none.
DIALOGS_API void useMainWindow(void* window);
/// The caption of the innermost dialog or box that is open; a box without one goes by the dialog it belongs to, or else
/// by its text. Empty: none is open.
DIALOGS_API std::wstring openTitle();

/// Is told what the user does in dialogs and boxes, as lines that do the same in a script. Null: nobody is.
DIALOGS_API void useRecorder(std::function<void(std::wstring_view line)> recorder);
/// A dialog in the place of which a script is asked for one line. While it lives, what is done in dialogs is not told,
/// and replies to prompts are none of a script's either; at its end the answer is.
class DIALOGS_API OneAnswer {
  public:
    explicit OneAnswer(std::wstring_view cancel = {}) : line_(cancel) { begin(); }
    ~OneAnswer();
    OneAnswer(const OneAnswer&) = delete;
    OneAnswer& operator=(const OneAnswer&) = delete;

    /// A text that was accepted. Without it the answer is the line that cancels.
    void tell(std::wstring_view text);
    static bool isAwaited();

  private:
    static void begin();
    std::wstring line_;
};

/// Back to what holds without a say.
DIALOGS_API void useStandard();

}  // namespace dialogs
