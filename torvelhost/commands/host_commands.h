// The table of the host's own commands; their prompts are in docs/scripts.md.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "torvelhost/commands/host_command.h"

namespace host {

namespace commands {

// The bodies, each in the file of its family.

CMD_RUNSTATUS block(HostRun& run);          // block.cpp
CMD_RUNSTATUS insert(HostRun& run);         // insert.cpp
CMD_RUNSTATUS layer(HostRun& run);          // layer.cpp
CMD_RUNSTATUS layout(HostRun& run);         // layouts.cpp
CMD_RUNSTATUS enterViewport(HostRun& run);  // layouts.cpp
CMD_RUNSTATUS leaveViewport(HostRun& run);  // layouts.cpp
CMD_RUNSTATUS save(HostRun& run);           // save.cpp
CMD_RUNSTATUS setVariable(HostRun& run);    // set_variable.cpp
CMD_RUNSTATUS ucs(HostRun& run);            // ucs.cpp
CMD_RUNSTATUS undo(HostRun& run);           // undo.cpp
CMD_RUNSTATUS redo(HostRun& run);           // undo.cpp
CMD_RUNSTATUS valuesIn(HostRun& run);       // values_in.cpp
CMD_RUNSTATUS valuesOut(HostRun& run);      // values_out.cpp
CMD_RUNSTATUS zoom(HostRun& run);           // views.cpp
CMD_RUNSTATUS regen(HostRun& run);          // views.cpp
CMD_RUNSTATUS whatIs(HostRun& run);         // what_is.cpp

}  // namespace commands

struct HostCommand {
    enum Flags { kChangesView = 1, kNotForUndo = 2, kUsesPickFirst = 4 };

    const wchar_t* name;
    commands::HostCommandBody body;
    int flags = 0;

    /// It shows the drawing anew, so that a slide goes.
    bool changesView() const { return (flags & kChangesView) != 0; }
    /// What it changed stands there to be taken back.
    bool isForUndo() const { return (flags & kNotForUndo) == 0; }
    /// It takes what was selected before it, and then asks for nothing.
    bool usesPickFirst() const { return (flags & kUsesPickFirst) != 0; }
};

/// In any case; null when there is none.
const HostCommand* findHostCommand(std::wstring_view name);
std::vector<std::wstring> hostCommandNames();

}  // namespace host
