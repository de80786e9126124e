// File names and folders, as wide text. The separator is `\` on Windows, where a `/` is accepted too, and `/`
// elsewhere.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace base {

/// The separator the platform writes.
wchar_t pathSeparator();
/// Whether the platform takes the character for a separator.
bool isPathSeparator(wchar_t character);
/// Between the folders of a search path; the same on both platforms.
constexpr wchar_t kSearchPathSeparator = L';';

/// For the standard library's functions, and back.
std::filesystem::path toPath(std::wstring_view path);
std::wstring fromPath(const std::filesystem::path& path);

// ---- Pieces of a path. They look at the text alone.

/// Puts a separator between unless there is one; an absolute `name` stays as it is.
std::wstring joinPath(std::wstring_view folder, std::wstring_view name);
/// What stands before the last separator ("" when there is none; a root stays a root).
std::wstring folderOf(std::wstring_view path);
/// What stands behind the last separator.
std::wstring fileNameOf(std::wstring_view path);
/// The file name without its extension, and the extension with its point ("" when there is none).
std::wstring stemOf(std::wstring_view path);
std::wstring extensionOf(std::wstring_view path);
/// Whether it begins at a root.
bool isAbsolutePath(std::wstring_view path);
/// The folders of a search path in order, empty ones left out.
std::vector<std::wstring> splitSearchPath(std::wstring_view searchPath);

// ---- Questions to the system. They do not throw: a file that cannot be asked about is not there.

std::wstring absolutePath(std::wstring_view path);
bool isFile(std::wstring_view path);
/// Whether both lead to one file, links followed.
bool isSameFile(std::wstring_view path, std::wstring_view other);
bool isFolder(std::wstring_view path);
std::wstring currentFolder();
std::wstring temporaryFolder();
/// Where a program keeps the user's settings; need not exist yet.
std::wstring userSettingsFolder();
/// Where it keeps what it was doing, on this machine alone; need not exist yet.
std::wstring userStateFolder();
std::optional<std::wstring> environmentVariable(std::wstring_view name);

}  // namespace base
