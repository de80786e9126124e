#include <cstdlib>

#include "base/exact_utf8.h"
#include "base/paths.h"
#include "base/text.h"

namespace base {

wchar_t pathSeparator() { return L'/'; }

bool isPathSeparator(wchar_t character) { return character == L'/'; }

std::filesystem::path toPath(std::wstring_view path) { return toUtf8Exact(path); }

std::wstring fromPath(const std::filesystem::path& path) { return fromUtf8Exact(path.native()); }

namespace {

std::wstring userFolder(std::wstring_view variable, std::wstring_view inHome) {
    if (const auto folder = environmentVariable(variable); folder && isAbsolutePath(*folder)) return *folder;
    return joinPath(environmentVariable(L"HOME").value_or(L"/"), inHome);
}

}  // namespace

std::wstring userSettingsFolder() { return userFolder(L"XDG_CONFIG_HOME", L".config"); }

std::wstring userStateFolder() { return userFolder(L"XDG_STATE_HOME", L".local/state"); }

std::optional<std::wstring> environmentVariable(std::wstring_view name) {
    const char* value = std::getenv(toUtf8Exact(name).c_str());
    return value == nullptr ? std::nullopt : std::optional(fromUtf8Exact(value));
}

}  // namespace base
