// The window of the platform.
#pragma once

#include <memory>
#include <string>

#include "torvelhost/window/view_frame.h"

namespace host {

/// Null where there are no windows; `reason` is then what is missing. One file per platform.
std::unique_ptr<ViewFrame> makeViewFrame(std::wstring& reason);

}  // namespace host
