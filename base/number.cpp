#include "base/number.h"

#include <array>
#include <charconv>
#include <cstdlib>

#include "base/text.h"

namespace base {
namespace {

// Without blanks around, and without a plus sign unless another sign follows it.
std::string_view numberIn(std::string_view text) {
    text = trimmed(text);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+') text.remove_prefix(1);
    return text;
}

// A wide text's number as ASCII; a character that no number has becomes one that no number has.
std::string narrowNumber(std::wstring_view text) {
    std::string narrow;
    narrow.reserve(text.size());
    for (wchar_t c : text) narrow += c > 0 && c < 0x80 ? static_cast<char>(c) : '?';
    return narrow;
}

// Whether a well-formed decimal number that does not fit a double is too small, not too large: the power of ten of its
// first digit tells.
bool isTooSmall(std::string_view text) {
    long power = 0;
    bool behindPoint = false;
    bool seenDigit = false;
    std::size_t i = 0;
    for (; i < text.size() && text[i] != 'e' && text[i] != 'E'; ++i) {
        if (text[i] == '.') {
            behindPoint = true;
        } else if (text[i] != '-') {
            seenDigit = seenDigit || text[i] != '0';
            if (seenDigit && !behindPoint)
                ++power;
            else if (!seenDigit && behindPoint)
                --power;
        }
    }
    long exponent = 0;
    if (i < text.size()) {
        std::string_view digits = text.substr(i + 1);
        if (!digits.empty() && digits[0] == '+') digits.remove_prefix(1);
        const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
        if (parsed.ec == std::errc::result_out_of_range) return digits[0] == '-';
    }
    return power + exponent < 0;
}

template <typename Integer>
std::optional<Integer> parseWhole(std::string_view text, int radix) {
    text = numberIn(text);
    Integer number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, radix);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

}  // namespace

std::optional<double> parseReal(std::string_view text) {
    text = numberIn(text);
    // "inf" and "nan" read as numbers too, but are none here.
    const std::string_view unsignedText = !text.empty() && text[0] == '-' ? text.substr(1) : text;
    if (unsignedText.empty() || !(isDigit(unsignedText[0]) || unsignedText[0] == '.')) return std::nullopt;
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end != text.data() + text.size()) return std::nullopt;
    if (error == std::errc::result_out_of_range && isTooSmall(text)) return text[0] == '-' ? -0.0 : 0.0;
    if (error != std::errc()) return std::nullopt;
    return number;
}

std::optional<double> parseReal(std::wstring_view text) { return parseReal(narrowNumber(text)); }
std::optional<std::int64_t> parseInteger(std::string_view text) { return parseWhole<std::int64_t>(text, 10); }
std::optional<std::int64_t> parseInteger(std::wstring_view text) { return parseInteger(narrowNumber(text)); }
std::optional<std::uint64_t> parseHex(std::string_view text) { return parseWhole<std::uint64_t>(text, 16); }
std::optional<std::uint64_t> parseHex(std::wstring_view text) { return parseHex(narrowNumber(text)); }

std::string realToText(double number) {
    // "d.ddde+xx" with the fewest digits; from it the plain form is laid out where the exponent is moderate.
    std::array<char, 40> buffer{};
    const auto written =
        std::to_chars(buffer.data(), buffer.data() + buffer.size() - 1, number, std::chars_format::scientific);
    const std::string_view scientific(buffer.data(), static_cast<std::size_t>(written.ptr - buffer.data()));
    const std::size_t mark = scientific.find('e');
    const int exponent = std::atoi(buffer.data() + mark + 1);
    if (exponent < -4 || exponent >= 16) return std::string(scientific);

    std::string_view mantissa = scientific.substr(0, mark);
    std::string result;
    if (mantissa[0] == '-') {
        result = "-";
        mantissa.remove_prefix(1);
    }
    std::string digits(1, mantissa[0]);
    if (mantissa.size() > 2) digits += mantissa.substr(2);
    if (exponent < 0) {
        result += "0.";
        result.append(static_cast<std::size_t>(-exponent - 1), '0');
        result += digits;
        return result;
    }
    const std::size_t whole = static_cast<std::size_t>(exponent) + 1;
    if (digits.size() <= whole) digits.append(whole - digits.size() + 1, '0');
    result += digits.substr(0, whole);
    result += '.';
    result += digits.substr(whole);
    return result;
}

std::string hexToText(std::uint64_t number) {
    std::string text;
    do {
        text.insert(text.begin(), kHexDigits[number % 16]);
        number /= 16;
    } while (number != 0);
    return text;
}

}  // namespace base
