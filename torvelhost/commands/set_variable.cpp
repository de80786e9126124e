// SETVAR: shows and sets system variables.
#include "base/text.h"
#include "torvelhost/commands/host_commands.h"

namespace host::commands {

CMD_RUNSTATUS setVariable(HostRun& run) {
    OdString name;
    const int named = run.input.ask(L"Enter variable name or [%s]", L"?", L"a variable name",
                                    [&](const Reply& reply, std::wstring& reason) {
                                        if (!run.variables.get(reply.text)) {
                                            reason = L"there is no variable \"" + reply.text + L"\"";
                                            return false;
                                        }
                                        name = base::toUpper(reply.text);
                                        return true;
                                    },
                                    {Expected::kText});
    if (named == kCancel || named == kEmpty) return statusOf(named);
    if (named == kFirstKeyword) {
        for (const std::wstring& each : run.variables.names())
            run.input.printMessage(L"%s = %s", each.c_str(), variableText(*run.variables.get(each)).c_str());
        return kCommandFinished;
    }
    const std::wstring current = variableText(*run.variables.get(name));
    if (run.variables.isReadOnly(name)) {
        run.input.printMessage(L"%s = %s (read only)", name.c_str(), current.c_str());
        return kCommandFinished;
    }
    const std::wstring prompt = L"Enter new value for " + name + L" <" + current + L">";
    const int result = run.input.ask(
        prompt.c_str(), nullptr, L"a value",
        [&](const Reply& reply, std::wstring& reason) { return run.variables.set(name, reply.text, reason); },
        {Expected::kText});
    return statusOf(result);
}

}  // namespace host::commands
