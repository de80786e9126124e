#include "torvelhost/session/profile.h"

#include <filesystem>
#include <limits>

#include "base/files.h"
#include "base/number.h"
#include "base/paths.h"

namespace host {
namespace {

std::wstring escaped(std::wstring_view value) {
    return base::replaceAll(base::replaceAll(base::replaceAll(value, L"\\", L"\\\\"), L"\n", L"\\n"), L"\r", L"\\r");
}

std::wstring unescaped(std::wstring_view value) {
    std::wstring text;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] != L'\\' || i + 1 == value.size()) {
            text += value[i];
            continue;
        }
        const wchar_t next = value[++i];
        text += next == L'n' ? L'\n' : next == L'r' ? L'\r' : next;
    }
    return text;
}

}  // namespace

Profile Profile::of(const std::optional<std::wstring>& fileName) {
    if (fileName) return Profile(*fileName);
    // Without a width here the Block Attribute Manager shows no column before the user has chosen some.
    constexpr wchar_t kFirst[] =
        L"[Dialogs\\\\BAttMan]\n"
        L"Tag=90\n"
        L"Prompt=140\n"
        L"Default=120\n"
        L"Modes=60\n";
    return Profile(base::joinPath(base::joinPath(base::userSettingsFolder(), L"torvelhost"), L"profile.ini"), kFirst);
}

std::wstring Profile::readFile() const {
    if (!base::isFile(fileName_)) return {};
    try {
        return base::fromUtf8(base::readTextFile(fileName_));
    } catch (const base::FileError&) {
        return {};
    }
}

Profile::Sections Profile::parsed(std::wstring_view text) {
    Sections sections;
    Section* section = &sections[L""];
    for (std::wstring& line : base::split(text, L'\n')) {
        if (line.ends_with(L'\r')) line.pop_back();
        if (line.size() > 1 && line.front() == L'[' && line.back() == L']')
            section = &sections[unescaped(std::wstring_view(line).substr(1, line.size() - 2))];
        else if (const std::size_t equals = line.find(L'='); equals != line.npos)
            (*section)[line.substr(0, equals)] = unescaped(std::wstring_view(line).substr(equals + 1));
    }
    return sections;
}

// A section that the user has is the user's, whatever it lacks.
Profile::Sections& Profile::sections() {
    if (sections_) return *sections_;
    sections_ = parsed(readFile());
    sections_->merge(parsed(first_));
    return *sections_;
}

bool Profile::readText(const wchar_t* section, const wchar_t* key, CXStringW& value) {
    const auto found = sections().find(std::wstring_view(section));
    if (found == sections().end()) return false;
    const auto entry = found->second.find(std::wstring_view(key));
    if (entry == found->second.end()) return false;
    value = entry->second;
    return true;
}

void Profile::writeText(const wchar_t* section, const wchar_t* key, const wchar_t* value) {
    const auto [entry, isNew] = sections()[section].try_emplace(key, value);
    if (!isNew && entry->second == value) return;
    entry->second = value;
    changed_ = true;
}

bool Profile::readInteger(const wchar_t* section, const wchar_t* key, std::int32_t& value) {
    std::wstring text;
    if (!readText(section, key, text)) return false;
    const auto number = base::parseInteger(std::wstring_view(text));
    if (!number || *number < std::numeric_limits<std::int32_t>::min() ||
        *number > std::numeric_limits<std::int32_t>::max())
        return false;
    value = static_cast<std::int32_t>(*number);
    return true;
}

void Profile::writeInteger(const wchar_t* section, const wchar_t* key, std::int32_t value) {
    writeText(section, key, std::to_wstring(value).c_str());
}

void Profile::removeKey(const wchar_t* section, const wchar_t* key) {
    const auto found = sections().find(std::wstring_view(section));
    if (found != sections().end() && found->second.erase(key) > 0) changed_ = true;
}

void Profile::removeSection(const wchar_t* section) {
    if (sections().erase(section) > 0) changed_ = true;
}

void Profile::save() {
    if (!changed_) return;
    changed_ = false;  // a file that cannot be written is told of once, not at every command
    std::wstring text;
    for (const auto& [name, entries] : sections()) {
        if (entries.empty()) continue;
        if (!name.empty()) text += L"[" + escaped(name) + L"]\n";
        for (const auto& [key, value] : entries) text += key + L"=" + escaped(value) + L"\n";
    }
    std::error_code ignored;  // the file tells when its folder could not be made
    std::filesystem::create_directories(base::toPath(base::folderOf(base::absolutePath(fileName_))), ignored);
    base::writeFile(fileName_, base::toUtf8(text));
}

}  // namespace host
