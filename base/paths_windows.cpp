#include <windows.h>

#include "base/paths.h"

namespace base {

wchar_t pathSeparator() { return L'\\'; }

bool isPathSeparator(wchar_t character) { return character == L'\\' || character == L'/'; }

std::filesystem::path toPath(std::wstring_view path) { return path; }

std::wstring fromPath(const std::filesystem::path& path) { return path.native(); }

std::wstring userSettingsFolder() { return environmentVariable(L"APPDATA").value_or(temporaryFolder()); }

std::wstring userStateFolder() { return environmentVariable(L"LOCALAPPDATA").value_or(temporaryFolder()); }

std::optional<std::wstring> environmentVariable(std::wstring_view name) {
    const std::wstring key(name);
    std::wstring value;
    for (DWORD needed = 256; needed > value.size();) {
        value.resize(needed);
        SetLastError(ERROR_SUCCESS);
        needed = GetEnvironmentVariableW(key.c_str(), value.data(), static_cast<DWORD>(value.size()));
        if (needed == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
        if (needed < value.size()) {
            value.resize(needed);
            break;
        }
    }
    return value;
}

}  // namespace base
