#include "base/paths.h"

#include <algorithm>

#include "base/text.h"

namespace base {
namespace {

constexpr std::size_t kNone = std::wstring_view::npos;

std::size_t lastSeparator(std::wstring_view path) {
    for (std::size_t i = path.size(); i > 0; --i)
        if (isPathSeparator(path[i - 1])) return i - 1;
    return kNone;
}

std::wstring_view nameIn(std::wstring_view path) {
    const std::size_t separator = lastSeparator(path);
    return separator == kNone ? path : path.substr(separator + 1);
}

// Where the extension begins: at the last point of the name, unless the name begins with it.
std::size_t extensionStart(std::wstring_view name) {
    const std::size_t point = name.rfind(L'.');
    return point == kNone || point == 0 ? name.size() : point;
}

}  // namespace

std::wstring joinPath(std::wstring_view folder, std::wstring_view name) {
    if (folder.empty() || isAbsolutePath(name)) return std::wstring(name);
    std::wstring path(folder);
    if (!isPathSeparator(path.back())) path += pathSeparator();
    path += name;
    return path;
}

std::wstring folderOf(std::wstring_view path) {
    const std::size_t separator = lastSeparator(path);
    if (separator == kNone) return {};
    const std::wstring_view root = path.substr(0, separator + 1);
    const bool isRoot = separator == 0 || (isAbsolutePath(root) && !isAbsolutePath(path.substr(0, separator)));
    return std::wstring(isRoot ? root : path.substr(0, separator));
}

std::wstring fileNameOf(std::wstring_view path) { return std::wstring(nameIn(path)); }

std::wstring stemOf(std::wstring_view path) {
    const std::wstring_view name = nameIn(path);
    return std::wstring(name.substr(0, extensionStart(name)));
}

std::wstring extensionOf(std::wstring_view path) {
    const std::wstring_view name = nameIn(path);
    return std::wstring(name.substr(extensionStart(name)));
}

bool isAbsolutePath(std::wstring_view path) {
    // On Windows a path from the root of the current drive counts too: it cannot go behind a folder.
    return toPath(path).has_root_directory();
}

std::vector<std::wstring> splitSearchPath(std::wstring_view searchPath) {
    std::vector<std::wstring> folders = split(searchPath, kSearchPathSeparator);
    for (std::wstring& folder : folders) folder = trimmed(folder);
    std::erase(folders, std::wstring());
    return folders;
}

std::wstring absolutePath(std::wstring_view path) {
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(toPath(path), error);
    return error ? std::wstring(path) : fromPath(absolute.lexically_normal());
}

bool isFile(std::wstring_view path) {
    std::error_code error;
    const auto status = std::filesystem::status(toPath(path), error);
    return !error && std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

bool isSameFile(std::wstring_view path, std::wstring_view other) {
    std::error_code error;
    return std::filesystem::equivalent(toPath(path), toPath(other), error) && !error;
}

bool isFolder(std::wstring_view path) {
    std::error_code error;
    return std::filesystem::is_directory(toPath(path), error);
}

std::wstring currentFolder() {
    std::error_code error;
    return fromPath(std::filesystem::current_path(error));
}

std::wstring temporaryFolder() {
    std::error_code error;
    std::wstring folder = fromPath(std::filesystem::temp_directory_path(error));
    while (folder.size() > 1 && isPathSeparator(folder.back())) folder.pop_back();
    return folder;
}

}  // namespace base
