// Where the system keeps its fonts.
#pragma once

#include <string>
#include <vector>

namespace host {

/// Folders, with what lies below them; they need not exist.
std::vector<std::wstring> systemFontFolders();

}  // namespace host
