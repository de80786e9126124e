// Takes command lines and runs them.
#pragma once

#include <functional>
#include <string>

#include "hostapi/command.h"
#include "torvelhost/commands/command_factory.h"
#include "torvelhost/session/application.h"

namespace host {

class CommandLoop {
  public:
    explicit CommandLoop(Application& application)
        : application_(application), session_(*application.session()), terminal_(application.terminal()) {}

    /// Until QUIT or the end of the replies. Returns kAllFinished, kSomeFailed or kFileFailed; throws ScriptError and
    /// base::FileError.
    ExitStatus run();

  private:
    using Body = std::function<CMD_RUNSTATUS()>;

    /// False: no more lines are wanted.
    bool runLine(const Reply& reply);
    bool mayLeave();
    /// How a command is run.
    struct Manner {
        bool usesPickFirst = false;
        bool isForUndo = true;
    };
    void runCommand(const std::wstring& name, const Body& body, Manner manner);
    void runRegistered(const RegisteredCommand& registered);
    /// To who looks on: how many objects the command that began at this position of the undo log has made, changed or
    /// erased.
    void tellChanges(const std::wstring& name, std::size_t position);
    /// Memory ran out in the command, whose changes have been taken back. Throws base::FileError in a script.
    void endForMemory(const std::wstring& command);
    /// What is said about a command; all of them when none is named.
    void showHelp(std::wstring_view topic);
    void doubleClick(std::wstring_view where);
    /// A line that names nothing: the end of a script, a hint for a person.
    void refuse(const std::wstring& what);

    Application& application_;
    Application::Session& session_;
    Terminal& terminal_;
    ExitStatus status_ = kAllFinished;
};

}  // namespace host
