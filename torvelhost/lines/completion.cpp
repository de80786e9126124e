#include "torvelhost/lines/completion.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "base/paths.h"
#include "base/text.h"

namespace host {
namespace {

std::vector<std::wstring> filesThatBeginWith(std::wstring_view typed) {
    const std::wstring_view name = typed.substr(typed.size() - base::fileNameOf(typed).size());
    const std::wstring folder(typed.substr(0, typed.size() - name.size()));
    std::vector<std::wstring> found;
    std::error_code error;
    std::filesystem::directory_iterator entries(base::toPath(folder.empty() ? L"." : folder), error);
    for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) {
        std::wstring file = base::fromPath(entries->path().filename());
        if (!file.starts_with(name) || (name.empty() && file.starts_with(L'.'))) continue;
        std::error_code ignored;
        if (entries->is_directory(ignored)) file += base::pathSeparator();
        found.push_back(folder + file);
    }
    return found;
}

// The beginning that all have.
std::wstring commonBeginning(const std::vector<std::wstring>& lines) {
    std::size_t length = lines.front().size();
    for (const std::wstring& line : lines)
        while (!base::startsWithNoCase(line, std::wstring_view(lines.front()).substr(0, length))) --length;
    return lines.front().substr(0, length);
}

}  // namespace

Completion complete(std::wstring_view typed, const std::vector<std::wstring>& lines) {
    std::vector<std::wstring> found;
    for (const std::wstring& line : lines)
        if (base::startsWithNoCase(line, typed)) found.push_back(line);
    std::wstring_view front;
    if (found.empty() && !typed.empty()) {
        const std::size_t sign = typed.rfind(L'=');
        const std::size_t begin = sign == typed.npos ? 0 : typed.find_first_not_of(L' ', sign + 1);
        front = typed.substr(0, begin);
        found = filesThatBeginWith(typed.substr(front.size()));
    }
    if (found.empty()) return {std::wstring(typed), {}};
    std::sort(found.begin(), found.end());
    Completion completion{std::wstring(front) + commonBeginning(found), {}};
    if (found.size() > 1) completion.among = std::move(found);
    return completion;
}

}  // namespace host
