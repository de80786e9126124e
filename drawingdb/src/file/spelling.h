// How a file is spelled, read off its bytes: for the index, and for the recovery of files that it refuses.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "base/number.h"
#include "drawingdb/src/file/groups.h"

namespace drawingdb {

/// "… Binary DXF", CR, LF, 1A, 0: 22 bytes at the front of a binary file, behind a name of seven.
inline constexpr std::size_t kBinaryHead = 22;
inline bool isBinary(std::string_view file) {
    constexpr std::string_view sign{" Binary DXF\r\n\x1A\0", 15};
    return file.size() >= kBinaryHead && file.substr(kBinaryHead - sign.size(), sign.size()) == sign;
}

/// Whether the codes of a binary file have two bytes: it shows in the first record, which comments may precede.
inline bool hasWideCodes(std::string_view file) {
    FileFormat format;
    format.binary = true;
    for (const bool wide : {true, false}) {
        format.wideCodes = wide;
        GroupCursor probe(file.substr(kBinaryHead), format);
        Group first;
        while (probe.next(first) && first.code == 999) {
        }
        if (first.code == 0 && first.value == "SECTION") return wide;
    }
    return false;
}

/// "AC1015" is 1015; all of the first versions, "AC1.2" to "AC2.22", are 1000. Nothing for what is none.
inline std::optional<int> versionNumber(std::string_view name) {
    constexpr int kFirst = 1001, kLast = 1099, kTooLarge = 100000;
    int number = 0;
    for (const char c : name)
        if (base::isDigit(c) && number < kTooLarge) number = number * 10 + (c - '0');
    if (number >= kFirst && number <= kLast) return number;
    if (name.find('.') != name.npos && number < kFirst) return version::ofTheFirst;
    return std::nullopt;
}

inline std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r')) text.remove_suffix(1);
    return text;
}

/// A code that is not written as most are; blanks may stand around it. Nothing when the line is no number.
inline std::optional<int> readCode(std::string_view line) {
    constexpr std::size_t kMostDigits = 6;
    std::string_view text = trimmed(line);
    const bool negative = text.starts_with('-');
    if (negative) text.remove_prefix(1);
    if (text.empty() || text.size() > kMostDigits || text.find_first_not_of("0123456789") != std::string_view::npos)
        return std::nullopt;
    int code = 0;
    for (const char digit : text) code = code * 10 + (digit - '0');
    return negative ? -code : code;
}

}  // namespace drawingdb
