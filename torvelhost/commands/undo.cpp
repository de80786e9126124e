// UNDO and REDO: take back whole commands, and bring them back.
#include "base/number.h"
#include "torvelhost/commands/host_commands.h"

namespace host::commands {
namespace {

struct Way {
    const wchar_t* prompt;
    std::optional<std::wstring> (Document::*step)();  // gives the command's name
    const wchar_t* nothing;                           // said when there is none
    const wchar_t* atEnd;                             // said when there are no more
};

CMD_RUNSTATUS go(HostRun& run, const Way& way) {
    std::int64_t count = 1;
    const int result = run.input.askIfNext(
        way.prompt, L"an integer above 0",
        [&](const Reply& reply, std::wstring&) {
            const auto number = base::parseInteger(std::wstring_view(reply.text));
            if (!number || *number < 1) return false;
            count = *number;
            return true;
        },
        isInteger);
    if (result == kCancel) return kCommandCancelled;
    for (std::int64_t i = 0; i < count; ++i) {
        const auto command = (run.document.*way.step)();
        if (!command) {
            run.terminal().notice(i == 0 ? way.nothing : way.atEnd);
            break;
        }
        run.terminal().notice(*command);
    }
    return kCommandFinished;
}

}  // namespace

CMD_RUNSTATUS undo(HostRun& run) {
    return go(run, {L"Number of commands to undo <1>", &Document::undoCommand, L"There is nothing to undo.",
                    L"Everything has been undone."});
}

CMD_RUNSTATUS redo(HostRun& run) {
    return go(run, {L"Number of commands to redo <1>", &Document::redoCommand, L"There is nothing to redo.",
                    L"Everything has been redone."});
}

}  // namespace host::commands
