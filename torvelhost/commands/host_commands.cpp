#include "torvelhost/commands/host_commands.h"

#include "base/text.h"

namespace host {
namespace {

// A new command is a body in a file of its own, its line in the header and its row here.
const HostCommand kHostCommands[] = {
    // UNDO has taken back, it does not stand there to be taken back itself.
    {L"UNDO", commands::undo, HostCommand::kChangesView | HostCommand::kNotForUndo},
    {L"REDO", commands::redo, HostCommand::kChangesView | HostCommand::kNotForUndo},
    {L"ZOOM", commands::zoom, HostCommand::kChangesView},
    {L"REGEN", commands::regen, HostCommand::kChangesView},
    {L"LAYER", commands::layer},
    {L"UCS", commands::ucs},
    {L"BLOCK", commands::block},
    {L"INSERT", commands::insert},
    {L"SETVAR", commands::setVariable},
    {L"LAYOUT", commands::layout, HostCommand::kChangesView},
    {L"MSPACE", commands::enterViewport, HostCommand::kChangesView},
    {L"PSPACE", commands::leaveViewport, HostCommand::kChangesView},
    {L"WHATIS", commands::whatIs},
    {L"VALUESOUT", commands::valuesOut, HostCommand::kUsesPickFirst},
    {L"VALUESIN", commands::valuesIn},
    {L"SAVE", commands::save},
};

}  // namespace

const HostCommand* findHostCommand(std::wstring_view name) {
    for (const HostCommand& command : kHostCommands)
        if (base::equalsNoCase(name, command.name)) return &command;
    return nullptr;
}

std::vector<std::wstring> hostCommandNames() {
    std::vector<std::wstring> names;
    for (const HostCommand& command : kHostCommands) names.emplace_back(command.name);
    return names;
}

}  // namespace host
