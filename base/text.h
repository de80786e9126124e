// Wide and UTF-8 text, and letter case by one built-in table.
//
// wchar_t holds UTF-16 units on Windows and whole characters elsewhere. Code that counts, cuts or walks text by
// characters uses the functions here, so that no surrogate pair is split.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace base {

// ---- Conversion. Neither direction fails: what is no character becomes U+FFFD.

/// Each maximal ill-formed part of the bytes becomes one U+FFFD.
std::wstring fromUtf8(std::string_view utf8);
/// Unpaired surrogates become U+FFFD; a pair of surrogates is joined on both platforms.
std::string toUtf8(std::wstring_view text);
bool isUtf8(std::string_view bytes);
/// The length of a piece from the front of UTF-8 text, at most `limit` bytes, that splits no character.
std::size_t utf8Prefix(std::string_view utf8, std::size_t limit);
/// For texts that are known to be ASCII (names, keywords); other bytes become the character of the same number.
std::wstring widen(std::string_view ascii);

// ---- Characters

constexpr char32_t kReplacementCharacter = 0xFFFD;

/// The character that begins at `position`, which moves behind it. `position` must lie inside the text.
char32_t nextCharacter(std::wstring_view text, std::size_t& position);
/// All of them.
std::u32string charactersOf(std::wstring_view text);
/// A number that is no character (a surrogate, beyond U+10FFFF) appends U+FFFD.
void appendCharacter(std::wstring& text, char32_t character);
void appendCharacter(std::string& utf8, char32_t character);
/// The positions one character after and before `position`; they stay inside the text.
std::size_t positionAfter(std::wstring_view text, std::size_t position);
std::size_t positionBefore(std::wstring_view text, std::size_t position);
/// At most `length` units from the front, one less where a pair would be split.
std::wstring_view prefix(std::wstring_view text, std::size_t length);

// ---- Letter case: Unicode's simple mappings, one character to one character, whatever the locale.

char32_t toUpper(char32_t character);
char32_t toLower(char32_t character);
char32_t foldCase(char32_t character);
std::wstring toUpper(std::wstring_view text);
std::wstring toLower(std::wstring_view text);

/// Orders by folded characters: negative, zero or positive.
int compareNoCase(std::wstring_view a, std::wstring_view b);
bool equalsNoCase(std::wstring_view a, std::wstring_view b);
bool startsWithNoCase(std::wstring_view text, std::wstring_view start);
/// The position of the first occurrence at or after `from`, or npos.
std::size_t findNoCase(std::wstring_view text, std::wstring_view sought, std::size_t from = 0);

/// The same for bytes, where only ASCII letters have case.
bool equalsNoCase(std::string_view a, std::string_view b);

/// For maps and sets whose keys are names.
struct LessNoCase {
    using is_transparent = void;
    bool operator()(std::wstring_view a, std::wstring_view b) const { return compareNoCase(a, b) < 0; }
};

// ---- Pieces

/// Without blanks, tabs and line ends at both ends.
std::wstring_view trimmed(std::wstring_view text);
std::string_view trimmed(std::string_view text);
/// n separators give n + 1 pieces, empty ones included.
std::vector<std::wstring> split(std::wstring_view text, wchar_t separator);
std::wstring replaceAll(std::wstring_view text, std::wstring_view what, std::wstring_view with);

}  // namespace base
