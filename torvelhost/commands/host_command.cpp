#include "torvelhost/commands/host_command.h"

#include "base/number.h"
#include "torvelhost/lines/units.h"

namespace host::commands {

CMD_RUNSTATUS HostRun::refused(const std::wstring& why) const {
    terminal().error(why);
    return kCommandCancelled;
}

int HostRun::askNumber(const wchar_t* prompt, double& number) const {
    return input.ask(
        prompt, nullptr, L"a number",
        [&](const Reply& reply, std::wstring&) {
            const auto typed = textToLength(reply.text);
            if (typed) number = *typed;
            return typed.has_value();
        });
}

bool isInteger(const Reply& reply) { return base::parseInteger(std::wstring_view(reply.text)).has_value(); }

}  // namespace host::commands
