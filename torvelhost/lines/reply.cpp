// Reads replies: quotes, keywords, points, picks, windows; their forms stand in the header file.
#include "torvelhost/lines/reply.h"

#include <cmath>
#include <utility>

#include "base/number.h"
#include "base/text.h"

namespace host {
namespace {

// The pieces between blanks.
std::vector<std::wstring_view> wordsOf(std::wstring_view text) {
    std::vector<std::wstring_view> pieces;
    std::size_t at = 0;
    while ((at = text.find_first_not_of(L" \t", at)) != text.npos) {
        const std::size_t end = std::min(text.find_first_of(L" \t", at), text.size());
        pieces.push_back(text.substr(at, end - at));
        at = end;
    }
    return pieces;
}

std::optional<std::vector<TypedObject>> parsePath(std::wstring_view text) {
    std::vector<TypedObject> path;
    for (const std::wstring& piece : base::split(text, L'/')) {
        const std::wstring_view name = piece;
        const bool byNumber = name.starts_with(L"#?");
        if (name.size() < 2 || name[0] != L'#') return std::nullopt;
        const auto number = byNumber ? base::parseInteger(name.substr(2)) : std::nullopt;
        const auto handle = byNumber ? std::nullopt : base::parseHex(name.substr(1));
        if (number.value_or(0) < 1 && handle.value_or(0) == 0) return std::nullopt;
        path.push_back({handle.value_or(0), static_cast<std::uint64_t>(number.value_or(0))});
    }
    return path;
}

// Quotes around keep blanks.
std::wstring_view unquoted(std::wstring_view text) {
    text = base::trimmed(text);
    return text.size() >= 2 && text.front() == L'"' && text.back() == L'"' ? text.substr(1, text.size() - 2) : text;
}

}  // namespace

Reply parseReply(std::wstring_view line) {
    const std::wstring_view text = base::trimmed(line);
    if (text.empty()) return {Reply::kEnter, L"", false};
    if (text == L"^C" || text == L"^c") return {Reply::kCancel, L"", false};
    if (text.size() >= 2 && text.front() == L'"' && text.back() == L'"')
        return {Reply::kText, std::wstring(text.substr(1, text.size() - 2)), true};
    return {Reply::kText, std::wstring(text), false};
}

bool isComment(std::wstring_view line) {
    const std::wstring_view text = base::trimmed(line);
    return !text.empty() && text.front() == L';';
}

Keywords::Keywords(const wchar_t* list) {
    if (!list) return;
    std::vector<std::wstring>* names = &local_;
    for (std::wstring_view word : wordsOf(list))
        if (word == L"_")
            names = &global_;
        else
            names->emplace_back(word);
}

std::wstring Keywords::joined() const {
    std::wstring text;
    for (const std::wstring& keyword : local_) text += (text.empty() ? L"" : L"/") + keyword;
    return text;
}

Keywords::Match Keywords::find(std::wstring_view text) const {
    const bool globalOnly = text.size() > 1 && text.front() == L'_';
    if (globalOnly) text.remove_prefix(1);
    if (text.empty()) return {};
    const bool hasGlobal = !global_.empty();
    Match match;
    for (const std::vector<std::wstring>* names : {&local_, &global_}) {
        if (globalOnly && hasGlobal && names == &local_) continue;
        for (std::size_t i = 0; i < names->size() && i < local_.size(); ++i) {
            const std::wstring& name = (*names)[i];
            const int index = static_cast<int>(i);
            if (base::equalsNoCase(name, text)) return {Match::kExact, index};
            if (!base::startsWithNoCase(name, text)) continue;
            if (match.kind == Match::kNone)
                match = {Match::kAbbreviated, index};
            else if (match.index != index)
                match.kind = Match::kAmbiguous;
        }
    }
    return match;
}

std::wstring promptText(const wchar_t* prompt, const Keywords& keywords) {
    std::wstring text = prompt ? prompt : L"";
    if (const std::size_t at = text.rfind(L"[%s]"); at != text.npos && !keywords.empty())
        text.replace(at + 1, 2, keywords.joined());
    while (!text.empty() && (text.back() == L' ' || text.back() == L':')) text.pop_back();
    return text + L":";
}

OdGeVector3d directionAt(double degrees) {
    const double turn = std::fmod(degrees, 360.0);
    const double quarter = turn / 90.0;
    if (quarter == std::floor(quarter)) {
        static constexpr OdGeVector3d kDirections[] = {{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}};
        return kDirections[(static_cast<int>(quarter) + 4) % 4];
    }
    const double angle = turn * drawingdb::kPi / 180.0;
    return {std::cos(angle), std::sin(angle), 0};
}

std::optional<TypedPoint> parsePoint(std::wstring_view text) {
    TypedPoint point;
    text = base::trimmed(text);
    if (!text.empty() && text.front() == L'@') {
        point.relative = true;
        text.remove_prefix(1);
        if (text.empty()) return point;  // the last point itself
    }
    if (const std::size_t polar = text.find(L'<'); polar != text.npos) {
        const auto distance = base::parseReal(text.substr(0, polar));
        const auto angle = base::parseReal(text.substr(polar + 1));
        if (!distance || !angle) return std::nullopt;
        point.value = directionAt(*angle) * *distance;
        point.flat = true;
        return point;
    }
    const std::vector<std::wstring> pieces = base::split(text, L',');
    if (pieces.size() < 2 || pieces.size() > 3) return std::nullopt;
    double numbers[3] = {};
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const auto number = base::parseReal(std::wstring_view(pieces[i]));
        if (!number) return std::nullopt;
        numbers[i] = *number;
    }
    point.value = {numbers[0], numbers[1], numbers[2]};
    point.flat = pieces.size() == 2;
    return point;
}

std::optional<TypedPick> parsePick(std::wstring_view text) {
    TypedPick pick;
    text = base::trimmed(text);
    pick.isNone = base::equalsNoCase(text, L"none");
    if (pick.isNone) return pick;
    if (!text.empty() && text.front() == L'#') {
        const std::size_t end = std::min(text.find_first_of(L" \t"), text.size());
        std::wstring_view names = text.substr(0, end);
        pick.isItself = names.ends_with(L"/.");
        if (pick.isItself) names.remove_suffix(2);
        const auto path = parsePath(names);
        if (!path) return std::nullopt;
        pick.path = *path;
        text = base::trimmed(text.substr(end));
        if (text.empty()) return pick;
    }
    pick.point = parsePoint(text);
    if (!pick.point) return std::nullopt;
    return pick;
}

std::wstring TypedObject::text() const { return number > 0 ? L"#?" + std::to_wstring(number) : L"#" + handle.text(); }

std::optional<std::vector<TypedObject>> parseObjects(std::wstring_view text) {
    std::vector<TypedObject> objects;
    for (std::wstring_view word : wordsOf(text)) {
        const auto path = parsePath(word);
        if (!path || path->size() != 1) return std::nullopt;
        objects.push_back(path->front());
    }
    if (objects.empty()) return std::nullopt;
    return objects;
}

std::optional<TypedWindow> parseWindow(std::wstring_view text) {
    const std::vector<std::wstring_view> pieces = wordsOf(text);
    if (pieces.size() != 1 && pieces.size() != 3) return std::nullopt;
    TypedWindow window;
    const bool inside = base::equalsNoCase(pieces[0], L"W") || base::equalsNoCase(pieces[0], L"window");
    window.crossing = base::equalsNoCase(pieces[0], L"C") || base::equalsNoCase(pieces[0], L"crossing");
    if (!inside && !window.crossing) return std::nullopt;
    for (std::size_t i = 1; i < pieces.size(); ++i) {
        window.corners[i - 1] = parsePoint(pieces[i]);
        if (!window.corners[i - 1]) return std::nullopt;
    }
    return window;
}

std::optional<TypedFilter> parseFilter(std::wstring_view text) {
    static constexpr std::pair<const wchar_t*, TypedFilter::What> kWords[] = {
        {L"block", TypedFilter::kBlock},
        {L"layer", TypedFilter::kLayer},
        {L"kind", TypedFilter::kKind},
        {L"tag", TypedFilter::kTag},
    };
    text = base::trimmed(text);
    const std::size_t blank = text.find_first_of(L" \t");
    if (blank == text.npos) return std::nullopt;
    for (const auto& [word, what] : kWords) {
        if (!base::equalsNoCase(text.substr(0, blank), word)) continue;
        std::wstring_view pattern = base::trimmed(text.substr(blank));
        TypedFilter filter{.what = what};
        if (what == TypedFilter::kTag) {
            const std::size_t quote = pattern.starts_with(L'"') ? pattern.find(L"\"=", 1) : pattern.npos;
            if (quote == pattern.npos) pattern = unquoted(pattern);  // around both, or none
            const std::size_t sign = quote == pattern.npos ? pattern.find(L'=') : quote + 1;
            if (sign != pattern.npos) {
                filter.value = unquoted(pattern.substr(sign + 1));
                pattern = pattern.substr(0, sign);
            }
        }
        filter.pattern = unquoted(pattern);
        return filter;
    }
    return std::nullopt;
}

}  // namespace host
