// Where the windows of a process that a script works are shown.
#pragma once

#include "dialogs/api.h"

namespace dialogs {

/// To call before the first window of a process whose windows a script works: no other process then takes the focus
/// from them. Nothing where none can.
DIALOGS_API void useOwnDesktop();

}  // namespace dialogs
