// Numbers as text, whatever the locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace base {

/// Decimal digits alone, whatever the locale.
template <class Character>
constexpr bool isDigit(Character c) {
    return c >= Character('0') && c <= Character('9');
}
/// The value of a hexadecimal digit of either case; -1 for what is none.
template <class Character>
constexpr int hexValue(Character c) {
    if (isDigit(c)) return static_cast<int>(c - Character('0'));
    if (c >= Character('A') && c <= Character('F')) return static_cast<int>(c - Character('A')) + 10;
    if (c >= Character('a') && c <= Character('f')) return static_cast<int>(c - Character('a')) + 10;
    return -1;
}
inline constexpr char kHexDigits[] = "0123456789ABCDEF";

/// All of these read the whole text: blanks and tabs around the number and a plus sign are allowed, anything else
/// beside it gives nothing. Reals: decimal, with or without exponent, finite; too small a number is zero.
std::optional<double> parseReal(std::string_view text);
std::optional<double> parseReal(std::wstring_view text);
std::optional<std::int64_t> parseInteger(std::string_view text);
std::optional<std::int64_t> parseInteger(std::wstring_view text);
/// Hexadecimal digits without prefix, as handles are written. At most 64 bits.
std::optional<std::uint64_t> parseHex(std::string_view text);
std::optional<std::uint64_t> parseHex(std::wstring_view text);

/// The fewest digits that read back as the same number, always with a point or an exponent: "0.0", "10.5", "1e+20".
/// Exponents appear from 1e16 on and below 1e-4. The number must be finite.
std::string realToText(double number);
/// Upper-case hexadecimal digits without leading zeros.
std::string hexToText(std::uint64_t number);

}  // namespace base
