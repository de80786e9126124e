#include "base/paths.h"
#include "torvelhost/fonts/font_folders.h"

namespace host {

std::vector<std::wstring> systemFontFolders() {
    std::vector<std::wstring> folders;
    // Those that a user has installed for himself alone.
    if (const auto own = base::environmentVariable(L"LOCALAPPDATA"))
        folders.push_back(base::joinPath(*own, LR"(Microsoft\Windows\Fonts)"));
    if (const auto windows = base::environmentVariable(L"SystemRoot"))
        folders.push_back(base::joinPath(*windows, L"Fonts"));
    return folders;
}

}  // namespace host
