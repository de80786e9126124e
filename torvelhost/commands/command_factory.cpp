#include "torvelhost/commands/command_factory.h"

namespace host {

CommandFactory& CommandFactory::instance() {
    static CommandFactory factory;
    return factory;
}

int CommandFactory::addCommandInGroup(const char* name, CommandCreator creator, const wchar_t* group, int flags,
                                      std::uintptr_t, std::uintptr_t) {
    if (!name || !creator) return 0;
    const std::wstring wideName = base::widen(name);
    return commands_.try_emplace(wideName, RegisteredCommand{wideName, creator, group ? group : L"", flags}).second;
}

int CommandFactory::addCommand(const char* name, CommandCreator creator) {
    return addCommandInGroup(name, creator, nullptr, 0, 0, 0);
}

const RegisteredCommand* CommandFactory::find(std::wstring_view name) const {
    const auto found = commands_.find(name);
    return found == commands_.end() ? nullptr : &found->second;
}

std::vector<std::wstring> CommandFactory::names() const {
    std::vector<std::wstring> names;
    for (const auto& [name, command] : commands_) names.push_back(name);
    return names;
}

}  // namespace host
