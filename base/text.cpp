#include "base/text.h"

#include <algorithm>

#include "base/case_tables.h"
#include "base/exact_utf8.h"

namespace base {
namespace {

bool isHighSurrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool isLowSurrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }
bool isCharacter(char32_t c) { return c <= 0x10FFFF && !isHighSurrogate(c) && !isLowSurrogate(c); }

// Plus a byte from 0x80 on: what stands for that byte where bytes come back as they were.
constexpr char32_t kFirstByteSurrogate = 0xDC00;

// A wchar_t's bits without sign.
char32_t unitAt(std::wstring_view text, std::size_t position) {
    if constexpr (sizeof(wchar_t) == 2)
        return static_cast<char16_t>(text[position]);
    else
        return static_cast<char32_t>(text[position]);
}

bool isPairAt(std::wstring_view text, std::size_t position) {
    return position + 1 < text.size() && isHighSurrogate(unitAt(text, position)) &&
           isLowSurrogate(unitAt(text, position + 1));
}

// One character of UTF-8 from the front of `bytes`, which must not be empty: its value and its length, or the
// replacement character and the length of the maximal part that could have begun a character.
struct Utf8Character {
    char32_t value;
    std::size_t length;
    bool wellFormed;
};

Utf8Character takeUtf8(std::string_view bytes) {
    auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char lead = byteAt(0);
    if (lead < 0x80) return {lead, 1, true};
    std::size_t length = 0;
    char32_t value = 0;
    // The second byte's range is narrower where overlong forms, surrogates or numbers beyond the last character begin.
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        value = lead & 0x1Fu;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        value = lead & 0x0Fu;
        if (lead == 0xE0) low = 0xA0;
        if (lead == 0xED) high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        value = lead & 0x07u;
        if (lead == 0xF0) low = 0x90;
        if (lead == 0xF4) high = 0x8F;
    } else {
        return {kReplacementCharacter, 1, false};
    }
    for (std::size_t i = 1; i < length; ++i) {
        if (i >= bytes.size() || byteAt(i) < low || byteAt(i) > high) return {kReplacementCharacter, i, false};
        value = value << 6 | (byteAt(i) & 0x3Fu);
        low = 0x80;
        high = 0xBF;
    }
    return {value, length, true};
}

char32_t mapCase(CaseTable table, char32_t character) {
    const auto run = std::lower_bound(table.begin(), table.end(), character,
                                      [](const CaseRange& range, char32_t c) { return range.last < c; });
    if (run == table.end() || character < run->first || (character - run->first) % run->step != 0) return character;
    return static_cast<char32_t>(static_cast<std::int32_t>(character) + run->delta);
}

std::wstring mapCase(CaseTable table, std::wstring_view text) {
    std::wstring result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) appendCharacter(result, mapCase(table, nextCharacter(text, i)));
    return result;
}

char asciiLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }

template <typename Char>
std::basic_string_view<Char> trimmedText(std::basic_string_view<Char> text) {
    auto isBlank = [](Char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

}  // namespace

std::wstring fromUtf8(std::string_view utf8) {
    std::wstring text;
    text.reserve(utf8.size());
    while (!utf8.empty()) {
        const Utf8Character character = takeUtf8(utf8);
        appendCharacter(text, character.value);
        utf8.remove_prefix(character.length);
    }
    return text;
}

std::string toUtf8(std::wstring_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) appendCharacter(utf8, nextCharacter(text, i));
    return utf8;
}

std::wstring fromUtf8Exact(std::string_view utf8) {
    std::wstring text;
    text.reserve(utf8.size());
    while (!utf8.empty()) {
        const Utf8Character character = takeUtf8(utf8);
        if (character.wellFormed)
            appendCharacter(text, character.value);
        else
            for (const char byte : utf8.substr(0, character.length))
                text += static_cast<wchar_t>(kFirstByteSurrogate + static_cast<unsigned char>(byte));
        utf8.remove_prefix(character.length);
    }
    return text;
}

std::string toUtf8Exact(std::wstring_view text) {
    std::string utf8;
    utf8.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const char32_t unit = unitAt(text, i);
        if (unit >= kFirstByteSurrogate + 0x80 && unit <= kFirstByteSurrogate + 0xFF) {
            utf8 += static_cast<char>(unit - kFirstByteSurrogate);
            ++i;
        } else {
            appendCharacter(utf8, nextCharacter(text, i));
        }
    }
    return utf8;
}

std::size_t utf8Prefix(std::string_view utf8, std::size_t limit) {
    if (utf8.size() <= limit) return utf8.size();
    // Bytes 10xxxxxx continue a character.
    while (limit > 0 && (static_cast<unsigned char>(utf8[limit]) & 0xC0) == 0x80) --limit;
    return limit;
}

bool isUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const Utf8Character character = takeUtf8(bytes);
        if (!character.wellFormed) return false;
        bytes.remove_prefix(character.length);
    }
    return true;
}

std::wstring widen(std::string_view ascii) {
    std::wstring text;
    text.reserve(ascii.size());
    for (char c : ascii) text += static_cast<wchar_t>(static_cast<unsigned char>(c));
    return text;
}

char32_t nextCharacter(std::wstring_view text, std::size_t& position) {
    const char32_t unit = unitAt(text, position);
    if (isPairAt(text, position)) {
        const char32_t low = unitAt(text, position + 1);
        position += 2;
        return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
    }
    ++position;
    return isCharacter(unit) ? unit : kReplacementCharacter;
}

std::u32string charactersOf(std::wstring_view text) {
    std::u32string characters;
    characters.reserve(text.size());
    for (std::size_t position = 0; position < text.size();) characters += nextCharacter(text, position);
    return characters;
}

void appendCharacter(std::wstring& text, char32_t character) {
    if (!isCharacter(character)) character = kReplacementCharacter;
    if (sizeof(wchar_t) == 2 && character >= 0x10000) {
        text += static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10));
        text += static_cast<wchar_t>(0xDC00 + (character & 0x3FF));
    } else {
        text += static_cast<wchar_t>(character);
    }
}

void appendCharacter(std::string& utf8, char32_t character) {
    if (!isCharacter(character)) character = kReplacementCharacter;
    auto append = [&](char32_t byte) { utf8 += static_cast<char>(byte); };
    auto appendTail = [&](unsigned shift) { append(0x80 | (character >> shift & 0x3F)); };
    if (character < 0x80) {
        append(character);
    } else if (character < 0x800) {
        append(0xC0 | character >> 6);
        appendTail(0);
    } else if (character < 0x10000) {
        append(0xE0 | character >> 12);
        appendTail(6);
        appendTail(0);
    } else {
        append(0xF0 | character >> 18);
        appendTail(12);
        appendTail(6);
        appendTail(0);
    }
}

std::size_t positionAfter(std::wstring_view text, std::size_t position) {
    if (position >= text.size()) return text.size();
    return position + (isPairAt(text, position) ? 2 : 1);
}

std::size_t positionBefore(std::wstring_view text, std::size_t position) {
    position = std::min(position, text.size());
    if (position == 0) return 0;
    return position - (position >= 2 && isPairAt(text, position - 2) ? 2 : 1);
}

std::wstring_view prefix(std::wstring_view text, std::size_t length) {
    if (length >= text.size()) return text;
    return text.substr(0, length > 0 && isPairAt(text, length - 1) ? length - 1 : length);
}

char32_t toUpper(char32_t character) { return mapCase(kUpperCase, character); }
char32_t toLower(char32_t character) { return mapCase(kLowerCase, character); }
char32_t foldCase(char32_t character) { return mapCase(kCaseFolding, character); }
std::wstring toUpper(std::wstring_view text) { return mapCase(kUpperCase, text); }
std::wstring toLower(std::wstring_view text) { return mapCase(kLowerCase, text); }

int compareNoCase(std::wstring_view a, std::wstring_view b) {
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < a.size() && j < b.size()) {
        const char32_t inA = foldCase(nextCharacter(a, i));
        const char32_t inB = foldCase(nextCharacter(b, j));
        if (inA != inB) return inA < inB ? -1 : 1;
    }
    return static_cast<int>(i < a.size()) - static_cast<int>(j < b.size());
}

bool equalsNoCase(std::wstring_view a, std::wstring_view b) { return compareNoCase(a, b) == 0; }

bool startsWithNoCase(std::wstring_view text, std::wstring_view start) {
    std::size_t i = 0;
    for (std::size_t j = 0; j < start.size();)
        if (i >= text.size() || foldCase(nextCharacter(text, i)) != foldCase(nextCharacter(start, j))) return false;
    return true;
}

std::size_t findNoCase(std::wstring_view text, std::wstring_view sought, std::size_t from) {
    for (std::size_t i = from; i <= text.size(); i = positionAfter(text, i)) {
        if (startsWithNoCase(text.substr(i), sought)) return i;
        if (i == text.size()) break;
    }
    return std::wstring_view::npos;
}

bool equalsNoCase(std::string_view a, std::string_view b) {
    return std::equal(
        a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return asciiLower(x) == asciiLower(y); });
}

std::wstring_view trimmed(std::wstring_view text) { return trimmedText(text); }
std::string_view trimmed(std::string_view text) { return trimmedText(text); }

std::vector<std::wstring> split(std::wstring_view text, wchar_t separator) {
    std::vector<std::wstring> pieces;
    for (std::size_t end; (end = text.find(separator)) != std::wstring_view::npos; text.remove_prefix(end + 1))
        pieces.emplace_back(text.substr(0, end));
    pieces.emplace_back(text);
    return pieces;
}

std::wstring replaceAll(std::wstring_view text, std::wstring_view what, std::wstring_view with) {
    std::wstring result;
    if (!what.empty()) {
        for (std::size_t found; (found = text.find(what)) != std::wstring_view::npos;
             text.remove_prefix(found + what.size())) {
            result += text.substr(0, found);
            result += with;
        }
    }
    result += text;
    return result;
}

}  // namespace base
