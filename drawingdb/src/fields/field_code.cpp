#include "drawingdb/src/fields/field_code.h"

#include <algorithm>

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/field.h"

namespace drawingdb {

namespace {

bool isBlank(wchar_t c) { return c == L' ' || c == L'\t' || c == L'\n' || c == L'\r'; }
bool isLetter(wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_'; }

std::size_t skipBlanks(std::wstring_view text, std::size_t at) {
    while (at < text.size() && isBlank(text[at])) ++at;
    return at;
}

bool opensAt(std::wstring_view text, std::size_t at) {
    if (text.substr(at, 2) != L"%<") return false;
    const std::size_t next = skipBlanks(text, at + 2);
    return next < text.size() && text[next] == L'\\';
}

// Turns a field into the marker that it is, if it is one.
void classify(FieldSpan& span, std::wstring_view text) {
    static constexpr std::pair<std::wstring_view, FieldSpan::Kind> kMarkers[] = {
        {L"\\_FldIdx", FieldSpan::childIndex},
        {L"\\_ObjIdx", FieldSpan::objectIndex},
        {L"\\_ObjId", FieldSpan::objectId},
    };
    const std::wstring_view code = base::trimmed(span.code(text));
    for (const auto& [name, kind] : kMarkers) {
        if (!code.starts_with(name) || code.size() == name.size() || !isBlank(code[name.size()])) continue;
        const std::wstring_view digits = base::trimmed(code.substr(name.size()));
        if (digits.empty() || digits.size() > 19 || !std::all_of(digits.begin(), digits.end(), base::isDigit<wchar_t>))
            return;
        span.kind = kind;
        for (const wchar_t digit : digits) span.number = span.number * 10 + static_cast<std::uint64_t>(digit - L'0');
        return;
    }
}

// Behind the quoted text that begins at `at`; the text without its quotes goes to `value`. A quote that is never
// closed reaches to the end.
std::size_t readQuoted(std::wstring_view text, std::size_t at, std::wstring& value) {
    for (++at; at < text.size(); ++at) {
        if (text[at] == L'"') return at + 1;
        if (text[at] == L'\\' && at + 1 < text.size() && (text[at + 1] == L'"' || text[at + 1] == L'\\')) ++at;
        value.push_back(text[at]);
    }
    return at;
}

// Where the next option begins, or the end: a backslash and a letter behind a blank, outside of quotes and fields.
std::size_t findOption(std::wstring_view code, std::size_t at, const std::vector<FieldSpan>& nested) {
    auto span = std::lower_bound(nested.begin(), nested.end(), at,
                                 [](const FieldSpan& s, std::size_t place) { return s.begin < place; });
    while (at < code.size()) {
        if (span != nested.end() && at == span->begin) {
            at = span++->end;
        } else if (code[at] == L'"') {
            std::wstring ignored;
            at = readQuoted(code, at, ignored);
            while (span != nested.end() && span->begin < at) ++span;
        } else if (code[at] == L'\\' && at > 0 && isBlank(code[at - 1]) && at + 1 < code.size() &&
                   isLetter(code[at + 1])) {
            return at;
        } else {
            ++at;
        }
    }
    return code.size();
}

}  // namespace

std::vector<FieldSpan> findFields(std::wstring_view text) {
    std::vector<FieldSpan> found;
    std::vector<std::size_t> open;
    for (std::size_t at = 0; at + 1 < text.size();) {
        if (opensAt(text, at)) {
            open.push_back(at);
            at += 2;
        } else if (!open.empty() && text[at] == L'>' && text[at + 1] == L'%') {
            const std::size_t begin = open.back();
            open.pop_back();
            while (!found.empty() && found.back().begin > begin) found.pop_back();
            at += 2;
            found.push_back({begin, at});
        } else {
            ++at;
        }
    }
    for (FieldSpan& span : found) classify(span, text);
    return found;
}

std::wstring fieldMarker(FieldSpan::Kind kind, std::uint64_t number) {
    const wchar_t* name = kind == FieldSpan::childIndex    ? L"\\_FldIdx "
                          : kind == FieldSpan::objectIndex ? L"\\_ObjIdx "
                                                           : L"\\_ObjId ";
    return bracketed(name + std::to_wstring(number));
}

OdString fieldIndexMarker(std::size_t child) { return fieldMarker(FieldSpan::childIndex, child); }

std::optional<FieldIndexMarker> fieldIndexMarkerAt(std::wstring_view text, std::size_t begin) {
    if (!opensAt(text, begin)) return std::nullopt;
    const std::size_t end = text.find(L'%', begin + 2);
    if (end == text.npos || text[end - 1] != L'>') return std::nullopt;
    FieldSpan span{begin, end + 1};
    classify(span, text);
    if (span.kind != FieldSpan::childIndex) return std::nullopt;
    return FieldIndexMarker{static_cast<std::size_t>(span.number), span.end};
}

std::wstring bracketed(std::wstring_view code) {
    std::wstring result;
    result.reserve(code.size() + 4);
    return result.append(L"%<").append(code).append(L">%");
}

std::wstring FieldCode::option(std::wstring_view name) const {
    for (const auto& [key, value] : options)
        if (key == name) return value;
    return {};
}

FieldCode parseFieldCode(std::wstring_view code) {
    FieldCode result;
    std::size_t at = skipBlanks(code, 0);
    if (at == code.size() || code[at] != L'\\') {
        result.body = base::trimmed(code);
        return result;
    }
    const std::size_t name = ++at;
    while (at < code.size() && (isLetter(code[at]) || base::isDigit(code[at]) || code[at] == L'.')) ++at;
    result.evaluator = code.substr(name, at - name);

    const std::vector<FieldSpan> nested = findFields(code);
    const std::size_t body = at;
    at = findOption(code, at, nested);
    result.body = base::trimmed(code.substr(body, at - body));
    while (at < code.size()) {
        const std::size_t begin = ++at;
        while (at < code.size() && (isLetter(code[at]) || base::isDigit(code[at]))) ++at;
        auto& [key, value] = result.options.emplace_back(code.substr(begin, at - begin), std::wstring());
        at = skipBlanks(code, at);
        if (at < code.size() && code[at] == L'"') {
            at = findOption(code, readQuoted(code, at, value), nested);
        } else {
            const std::size_t end = findOption(code, at, nested);
            value = base::trimmed(code.substr(at, end - at));
            at = end;
        }
    }
    return result;
}

std::wstring_view withoutVersion(std::wstring_view evaluator) {
    for (std::size_t dot = evaluator.find(L'.'); dot != std::wstring_view::npos; dot = evaluator.find(L'.', dot + 1))
        if (dot + 1 < evaluator.size() && base::isDigit(evaluator[dot + 1])) return evaluator.substr(0, dot);
    return evaluator;
}

std::wstring unquoted(std::wstring_view text) {
    text = base::trimmed(text);
    if (text.size() < 2 || text.front() != L'"') return std::wstring(text);
    std::wstring value;
    readQuoted(text, 0, value);
    return value;
}

}  // namespace drawingdb
