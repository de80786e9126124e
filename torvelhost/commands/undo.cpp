// UNDO: takes back whole commands.
#include "base/number.h"
#include "torvelhost/commands/host_commands.h"

namespace host::commands {

CMD_RUNSTATUS undo(HostRun& run) {
    std::int64_t count = 1;
    const int result = run.input.askIfNext(
        L"Number of commands to undo <1>", L"an integer above 0",
        [&](const Reply& reply, std::wstring&) {
            const auto number = base::parseInteger(std::wstring_view(reply.text));
            if (!number || *number < 1) return false;
            count = *number;
            return true;
        },
        isInteger);
    if (result == kCancel) return kCommandCancelled;
    for (std::int64_t i = 0; i < count; ++i) {
        const auto command = run.document.undoCommand();
        if (!command) {
            run.terminal().notice(i == 0 ? L"There is nothing to undo." : L"Everything has been undone.");
            break;
        }
        run.terminal().notice(*command);
    }
    return kCommandFinished;
}

}  // namespace host::commands
