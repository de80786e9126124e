#include "drawingdb/src/file/text_codec.h"

#include "base/exact_utf8.h"
#include "base/number.h"
#include "base/text.h"

namespace drawingdb {

namespace {

// The character of four hexadecimal digits at `at`, or -1.
int fourHex(const std::wstring& text, std::size_t at) {
    if (at + 4 > text.size()) return -1;
    int value = 0;
    for (std::size_t i = at; i < at + 4; ++i) {
        const int digit = base::hexValue(text[i]);
        if (digit < 0) return -1;
        value = value * 16 + digit;
    }
    return value;
}

// "\M+nXXXX": a double-byte character of one of five code pages.
bool appendMultiByte(wchar_t page, int bytes, std::wstring& out) {
    const base::CodePage* codePage = base::CodePage::byMultiByteNumber(page - L'0');
    if (!codePage) return false;
    std::string pair;
    if (bytes > 255) pair.push_back(static_cast<char>(bytes >> 8));
    pair.push_back(static_cast<char>(bytes & 255));
    const std::wstring character = codePage->decode(pair);
    if (character.empty() || character.find(L'\xFFFD') != std::wstring::npos) return false;
    out += character;
    return true;
}

// Joins the two halves of a surrogate pair that were written as two "\U+" sequences, where wide characters hold one
// whole.
void appendUnit(int unit, std::wstring& out) {
    if constexpr (sizeof(wchar_t) > 2) {
        if (unit >= 0xDC00 && unit < 0xE000 && !out.empty()) {
            // NOLINTNEXTLINE(bugprone-signed-char-misuse): a character is never below zero.
            const auto high = static_cast<unsigned>(out.back());
            if (high >= 0xD800 && high < 0xDC00) {
                out.back() =
                    static_cast<wchar_t>(0x10000 + ((high - 0xD800) << 10) + (static_cast<unsigned>(unit) - 0xDC00));
                return;
            }
        }
    }
    out.push_back(static_cast<wchar_t>(unit));
}

}  // namespace

bool isPlainText(std::string_view raw) {
    for (const char c : raw)
        if (c == '\\' || c == '^' || static_cast<unsigned char>(c) >= 0x80) return false;
    return true;
}

std::wstring decodeText(std::string_view raw, const FileFormat& format) {
    if (isPlainText(raw)) return std::wstring(raw.begin(), raw.end());
    std::wstring wide = format.utf8() ? base::fromUtf8Exact(raw) : format.codePage->decode(raw);
    if (wide.find_first_of(L"\\^") == std::wstring::npos) return wide;
    std::wstring out;
    out.reserve(wide.size());
    for (std::size_t i = 0; i < wide.size(); ++i) {
        const wchar_t c = wide[i];
        if (c == L'^' && i + 1 < wide.size()) {
            const wchar_t next = wide[i + 1];
            if (next == L' ') {
                out.push_back(L'^');
                ++i;
                continue;
            }
            if (next >= L'@' && next <= L'_') {
                out.push_back(static_cast<wchar_t>(next - L'@'));
                ++i;
                continue;
            }
        }
        if (c == L'\\' && i + 2 < wide.size() && wide[i + 2] == L'+') {
            if (wide[i + 1] == L'U' || wide[i + 1] == L'u') {
                if (const int unit = fourHex(wide, i + 3); unit > 0) {
                    appendUnit(unit, out);
                    i += 6;
                    continue;
                }
            }
            if ((wide[i + 1] == L'M' || wide[i + 1] == L'm') && i + 3 < wide.size()) {
                if (const int bytes = fourHex(wide, i + 4); bytes > 0 && appendMultiByte(wide[i + 3], bytes, out)) {
                    i += 7;
                    continue;
                }
            }
        }
        out.push_back(c);
    }
    return out;
}

std::string encodeNarrow(std::wstring_view text, const base::CodePage& codePage) {
    return codePage.encode(
        text,
        [](char32_t character, std::string& bytes) {
            const auto unit = [&bytes](unsigned value) {
                bytes += "\\U+";
                for (int shift = 12; shift >= 0; shift -= 4) bytes.push_back(base::kHexDigits[(value >> shift) & 15]);
            };
            if (character < 0x10000) {
                unit(character);
            } else {
                unit(0xD800 + ((character - 0x10000) >> 10));
                unit(0xDC00 + ((character - 0x10000) & 0x3FF));
            }
        });
}

std::string encodeText(std::wstring_view text, const FileFormat& format) {
    std::wstring escaped;
    bool special = false;
    bool ascii = true;
    for (const wchar_t c : text) {
        if (static_cast<char32_t>(c) < 32 || c == L'^') special = true;
        if (c >= 0x80) ascii = false;
    }
    if (special) {
        for (const wchar_t c : text) {
            if (c == L'^') {
                escaped += L"^ ";
            } else if (static_cast<char32_t>(c) < 32) {
                escaped.push_back(L'^');
                escaped.push_back(static_cast<wchar_t>(c + L'@'));
            } else {
                escaped.push_back(c);
            }
        }
        text = escaped;
    }
    if (ascii) {
        std::string out;
        out.reserve(text.size());
        for (const wchar_t c : text) out.push_back(static_cast<char>(c));
        return out;
    }
    return format.utf8() ? base::toUtf8Exact(text) : encodeNarrow(text, *format.codePage);
}

}  // namespace drawingdb
