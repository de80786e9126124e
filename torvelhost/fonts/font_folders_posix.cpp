#include "base/paths.h"
#include "torvelhost/fonts/font_folders.h"

namespace host {

std::vector<std::wstring> systemFontFolders() {
    std::vector<std::wstring> folders;
    if (const auto home = base::environmentVariable(L"HOME")) {
        folders.push_back(base::joinPath(*home, L".local/share/fonts"));
        folders.push_back(base::joinPath(*home, L".fonts"));
    }
    folders.push_back(L"/usr/local/share/fonts");
    folders.push_back(L"/usr/share/fonts");
    return folders;
}

}  // namespace host
