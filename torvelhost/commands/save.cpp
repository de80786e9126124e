// SAVE.
#include "torvelhost/commands/host_commands.h"

namespace host::commands {

CMD_RUNSTATUS save(HostRun& run) {
    OdDbDatabase* const database = run.database;
    OdString name = database->fileName();
    const std::wstring prompt = name.empty() ? L"Enter file name" : L"Enter file name <" + name + L">";
    const int result = run.input.askText(prompt.c_str(), nullptr, name);
    if (result == kCancel || name.empty()) return kCommandCancelled;
    run.document.save(name);
    return kCommandFinished;
}

}  // namespace host::commands
