// Reads as much of Markdown as the pages use: headings of sections ("## Ray"), tables, pictures, links, code.
#include "torvelhost/lines/help_text.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "base/modules.h"
#include "base/resources.h"
#include "base/text.h"
#include "torvelhost/resources/resource.h"

namespace host {
namespace {

constexpr std::wstring_view kHeading = L"## ", kRow = L"| `";

std::wstring page(std::uint16_t resource) {
    static const char inThisModule = 0;
    const base::ResourceBytes bytes =
        base::findResource(base::moduleOf(&inThisModule), base::kRawDataResource, resource);
    return base::fromUtf8({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

std::vector<std::wstring> linesOf(std::uint16_t resource) {
    std::vector<std::wstring> lines = base::split(page(resource), L'\n');
    for (std::wstring& line : lines)
        if (line.ends_with(L'\r')) line.pop_back();
    return lines;
}

// Without the marks of code, links and strong words. What is code stands as it is.
std::wstring plain(std::wstring_view line) {
    std::wstring text;
    bool isCode = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const wchar_t next = i + 1 < line.size() ? line[i + 1] : L'\0';
        if (line[i] == L'`')
            isCode = !isCode;
        else if (line[i] == L'\\' && next == L'|')
            text += line[++i];
        else if (isCode)
            text += line[i];
        else if (line[i] == L']' && next == L'(')
            i = std::min(line.find(L')', i), line.size());
        else if (line[i] != L'*' && line[i] != L'[')
            text += line[i];
    }
    return text;
}

std::vector<std::wstring> cellsOf(std::wstring_view row) {
    std::vector<std::wstring> cells(1);
    for (std::size_t i = 1; i < row.size(); ++i)
        if (row[i] == L'|' && row[i - 1] != L'\\')
            cells.emplace_back();
        else
            cells.back() += row[i];
    if (base::trimmed(cells.back()).empty()) cells.pop_back();
    for (std::wstring& cell : cells) cell = plain(base::trimmed(cell));
    return cells;
}

// A row is a line of its cells.
std::wstring tableLine(std::wstring_view row) {
    std::wstring text;
    for (const std::wstring& cell : cellsOf(row)) text += (text.empty() ? L"  " : L": ") + cell;
    return text;
}

bool isRule(std::wstring_view line) { return line.starts_with(L'|') && line.find_first_not_of(L"|-: ") == line.npos; }

bool isNamed(std::wstring_view names, std::wstring_view sought) {
    if (base::equalsNoCase(names, sought)) return true;
    for (const std::wstring& name : base::split(names, L','))
        if (base::equalsNoCase(base::trimmed(name), sought)) return true;
    return false;
}

std::wstring section(const std::vector<std::wstring>& lines, std::size_t heading) {
    std::wstring text = lines[heading].substr(kHeading.size()) + L"\n";
    bool isBlank = false;  // several in a row are one
    for (std::size_t i = heading + 1; i < lines.size() && !lines[i].starts_with(kHeading); ++i) {
        const std::wstring& line = lines[i];
        if (line.starts_with(L"![") || line.starts_with(L"Drawn by ") || isRule(line)) continue;
        if (line.empty()) {
            isBlank = true;
            continue;
        }
        if (std::exchange(isBlank, false)) text += L"\n";
        text += (line.starts_with(L'|') ? tableLine(line) : line.starts_with(L"    ") ? line : plain(line)) + L"\n";
    }
    return text;
}

std::wstring firstSentence(const std::vector<std::wstring>& lines, std::size_t heading) {
    std::wstring text;
    for (std::size_t i = heading + 1; i < lines.size() && !lines[i].starts_with(kHeading); ++i) {
        if (lines[i].empty() && !text.empty()) break;
        text += (text.empty() ? L"" : L" ") + plain(lines[i]);
    }
    text.resize(std::min(text.find(L". "), text.size()));
    if (text.ends_with(L'.')) text.pop_back();
    return text;
}

}  // namespace

std::vector<HelpTopic> helpTopics() {
    std::vector<HelpTopic> topics;
    const std::vector<std::wstring> commands = linesOf(IDR_HELP_COMMANDS);
    for (std::size_t i = 0; i < commands.size(); ++i) {
        if (!commands[i].starts_with(kHeading)) continue;
        const std::wstring names = commands[i].substr(kHeading.size());
        // Names of commands have no blanks.
        if (base::split(names, L' ').size() != base::split(names, L',').size()) continue;
        topics.push_back({names, firstSentence(commands, i)});
    }
    for (const std::wstring& line : linesOf(IDR_HELP_SCRIPTS))
        if (const std::vector<std::wstring> cells =
                line.starts_with(kRow) ? cellsOf(line) : std::vector<std::wstring>();
            cells.size() == 2 && base::toUpper(cells[0]) == cells[0] && cells[0].find_first_of(L" #^>=") == line.npos)
            topics.push_back({cells[0], L""});
    return topics;
}

std::wstring helpOverview() {
    std::wstring text;
    for (const HelpTopic& topic : helpTopics())
        text += (text.empty() ? L"" : L"\n") + topic.names + (topic.about.empty() ? L"" : L": ") + topic.about;
    return text;
}

std::optional<std::wstring> helpOn(std::wstring_view topic) {
    for (const std::uint16_t resource : {IDR_HELP_COMMANDS, IDR_HELP_SCRIPTS}) {
        const std::vector<std::wstring> lines = linesOf(resource);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            if (lines[i].starts_with(kHeading) && isNamed(std::wstring_view(lines[i]).substr(kHeading.size()), topic))
                return section(lines, i);
            if (resource == IDR_HELP_SCRIPTS && lines[i].starts_with(kRow))
                if (const auto cells = cellsOf(lines[i]); cells.size() == 2 && base::equalsNoCase(cells[0], topic))
                    return cells[0] + L"\n" + cells[1] + L"\n";
        }
    }
    return std::nullopt;
}

}  // namespace host
