// What a double click on an object runs.
#pragma once

#include <functional>

#include "torvelhost/commands/host_command.h"

namespace host {

inline constexpr wchar_t kDoubleClickName[] = L"DBLCLICK";
/// The command for an attribute in its place, and for everything that nothing else is for: it ends quietly then.
inline constexpr wchar_t kInPlaceCommand[] = L"ATTIPeditW";

/// A reference with editable attributes goes to the enhanced editor, a definition to its redefinition, a text to the
/// text editor. Null for a pick that is for the command kInPlaceCommand.
std::function<CMD_RUNSTATUS()> editorOf(const hostapi::Pick& pick, commands::HostRun& run);

}  // namespace host
