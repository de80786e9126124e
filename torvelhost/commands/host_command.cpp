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

bool isRecordName(std::wstring_view name) {
    return !name.empty() && name.find_first_of(L"<>/\\\":;?*|,=`") == name.npos;
}

}  // namespace host::commands
