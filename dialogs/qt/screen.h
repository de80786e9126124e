// The one QApplication of the process, and whether there is a screen for it.
#pragma once

#include <string>

namespace dialogs {

/// False, and why, where there is no screen. Qt would end the process at one that does not answer, so it is first tried
/// by another one.
bool openScreen(std::wstring& reason);

}  // namespace dialogs
