#include "base/format.h"

#include <algorithm>
#include <boost/format.hpp>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <locale>
#include <optional>

#include "base/number.h"
#include "base/text.h"

namespace base {
namespace {

// The argument list as an object that functions may take by reference, whatever type va_list is.
struct Arguments {
    std::va_list list;
};

// One conversion: % flags width .precision length letter
struct Conversion {
    bool left = false;
    bool plus = false;
    bool blank = false;
    bool zero = false;
    bool alternate = false;
    int width = 0;
    std::optional<int> precision;
    // "", "h", "hh", "l", "ll", "j", "z", "t", "L", "w", "I64", "I32", "I"
    std::wstring_view length;
    wchar_t letter = 0;
};

// Widths and precisions beyond this are taken for damage; the text would only fill the memory.
constexpr int kLargestField = 1 << 20;

int readNumber(std::wstring_view text, std::size_t& i) {
    int number = 0;
    for (; i < text.size() && isDigit(text[i]); ++i)
        number = std::min(number * 10 + static_cast<int>(text[i] - L'0'), kLargestField);
    return number;
}

std::wstring_view readLength(std::wstring_view text, std::size_t& i) {
    for (std::wstring_view length : {L"I64", L"I32", L"I", L"hh", L"h", L"ll", L"l", L"j", L"z", L"t", L"L", L"w"}) {
        if (text.substr(i).starts_with(length)) {
            i += length.size();
            return length;
        }
    }
    return {};
}

// Reads the conversion behind the percent sign at `i` and moves behind it. Stars take their arguments.
Conversion readConversion(std::wstring_view text, std::size_t& i, Arguments& arguments) {
    Conversion conversion;
    for (bool more = true; more && i < text.size();) {
        switch (text[i]) {
            case L'-':
                conversion.left = true;
                break;
            case L'+':
                conversion.plus = true;
                break;
            case L' ':
                conversion.blank = true;
                break;
            case L'0':
                conversion.zero = true;
                break;
            case L'#':
                conversion.alternate = true;
                break;
            default:
                more = false;
        }
        if (more) ++i;
    }
    if (i < text.size() && text[i] == L'*') {
        ++i;
        const int width = std::clamp(va_arg(arguments.list, int), -kLargestField, kLargestField);
        conversion.left = conversion.left || width < 0;
        conversion.width = std::abs(width);
    } else {
        conversion.width = readNumber(text, i);
    }
    if (i < text.size() && text[i] == L'.') {
        ++i;
        if (i < text.size() && text[i] == L'*') {
            ++i;
            const int precision = va_arg(arguments.list, int);
            if (precision >= 0) conversion.precision = std::min(precision, kLargestField);
        } else {
            conversion.precision = readNumber(text, i);
        }
    }
    conversion.length = readLength(text, i);
    if (i < text.size()) conversion.letter = text[i++];
    return conversion;
}

void appendPadded(std::wstring& result, const Conversion& conversion, std::wstring_view text) {
    const std::size_t width = static_cast<std::size_t>(conversion.width);
    const std::size_t padding = width > text.size() ? width - text.size() : 0;
    if (!conversion.left) result.append(padding, L' ');
    result += text;
    if (conversion.left) result.append(padding, L' ');
}

// A number's sign or prefix and its digits; zeros that fill the width stand between them.
void appendNumber(std::wstring& result, const Conversion& conversion, std::wstring_view sign, std::string_view digits,
                  bool zeroFill) {
    std::wstring text(sign);
    const std::size_t width = static_cast<std::size_t>(conversion.width);
    if (zeroFill && !conversion.left && sign.size() + digits.size() < width)
        text.append(width - sign.size() - digits.size(), L'0');
    text += widen(digits);
    appendPadded(result, conversion, text);
}

std::wstring_view signOf(const Conversion& conversion, bool negative) {
    return negative ? L"-" : conversion.plus ? L"+" : conversion.blank ? L" " : L"";
}

std::int64_t takeSigned(const Conversion& conversion, Arguments& arguments) {
    const std::wstring_view length = conversion.length;
    if (length == L"ll" || length == L"I64" || length == L"j") return va_arg(arguments.list, long long);
    if (length == L"l") return va_arg(arguments.list, long);
    if (length == L"z" || length == L"t" || length == L"I") return va_arg(arguments.list, std::ptrdiff_t);
    const int number = va_arg(arguments.list, int);
    if (length == L"hh") return static_cast<signed char>(number);
    if (length == L"h") return static_cast<short>(number);
    return number;
}

std::uint64_t takeUnsigned(const Conversion& conversion, Arguments& arguments) {
    const std::wstring_view length = conversion.length;
    if (length == L"ll" || length == L"I64" || length == L"j") return va_arg(arguments.list, unsigned long long);
    if (length == L"l") return va_arg(arguments.list, unsigned long);
    if (length == L"z" || length == L"t" || length == L"I") return va_arg(arguments.list, std::size_t);
    const unsigned number = va_arg(arguments.list, unsigned);
    if (length == L"hh") return static_cast<unsigned char>(number);
    if (length == L"h") return static_cast<unsigned short>(number);
    return number;
}

void appendInteger(std::wstring& result, const Conversion& conversion, Arguments& arguments) {
    const bool isSigned = conversion.letter == L'd' || conversion.letter == L'i';
    std::wstring_view sign;
    std::uint64_t magnitude;
    if (isSigned) {
        const std::int64_t number = takeSigned(conversion, arguments);
        magnitude = number < 0 ? 0 - static_cast<std::uint64_t>(number) : static_cast<std::uint64_t>(number);
        sign = signOf(conversion, number < 0);
    } else {
        magnitude = takeUnsigned(conversion, arguments);
    }
    const bool isHex = conversion.letter == L'x' || conversion.letter == L'X';
    const int radix = isHex ? 16 : conversion.letter == L'o' ? 8 : 10;
    char buffer[32];
    const char* end = std::to_chars(buffer, buffer + sizeof buffer, magnitude, radix).ptr;
    std::string digits(static_cast<const char*>(buffer), end);
    if (conversion.letter == L'X')
        for (char& c : digits) c = c >= 'a' ? static_cast<char>(c - 32) : c;
    if (magnitude == 0 && conversion.precision == 0) digits.clear();
    const std::size_t least = static_cast<std::size_t>(conversion.precision.value_or(1));
    if (digits.size() < least) digits.insert(0, least - digits.size(), '0');
    if (conversion.alternate && radix == 8 && !digits.starts_with('0')) digits.insert(0, 1, '0');
    if (conversion.alternate && isHex && magnitude != 0) sign = conversion.letter == L'x' ? L"0x" : L"0X";
    appendNumber(result, conversion, sign, digits, conversion.zero && !conversion.precision);
}

std::string toChars(double number, std::chars_format form, int precision) {
    // The largest double has 309 digits before the point.
    std::string text(static_cast<std::size_t>(precision) + 330, '\0');
    const auto written = std::to_chars(text.data(), text.data() + text.size(), number, form, precision);
    text.resize(static_cast<std::size_t>(written.ptr - text.data()));
    return text;
}

// "%g": the shorter of the two forms by the exponent after rounding; trailing zeros go unless `keepZeros`.
std::string generalForm(double magnitude, int precision, bool keepZeros) {
    precision = std::max(precision, 1);
    std::string text = toChars(magnitude, std::chars_format::scientific, precision - 1);
    std::size_t mark = text.find('e');
    const int exponent = std::atoi(text.c_str() + mark + 1);
    if (exponent >= -4 && exponent < precision) {
        text = toChars(magnitude, std::chars_format::fixed, precision - 1 - exponent);
        mark = text.size();
    }
    if (!keepZeros && text.substr(0, mark).find('.') != std::string::npos) {
        std::size_t last = text.find_last_not_of('0', mark - 1);
        if (text[last] != '.') ++last;
        text.erase(last, mark - last);
    }
    return text;
}

void appendReal(std::wstring& result, const Conversion& conversion, Arguments& arguments) {
    const double number = va_arg(arguments.list, double);
    const std::wstring_view sign = signOf(conversion, std::signbit(number));
    const double magnitude = std::abs(number);
    const int precision = conversion.precision.value_or(6);
    const bool isFinite = std::isfinite(magnitude);

    std::string text;
    if (!isFinite)
        text = std::isnan(magnitude) ? "nan" : "inf";
    else if (conversion.letter == L'f' || conversion.letter == L'F')
        text = toChars(magnitude, std::chars_format::fixed, precision);
    else if (conversion.letter == L'e' || conversion.letter == L'E')
        text = toChars(magnitude, std::chars_format::scientific, precision);
    else
        text = generalForm(magnitude, precision, conversion.alternate);
    if (isFinite && conversion.alternate && text.find('.') == std::string::npos)
        text.insert(std::min(text.find('e'), text.size()), ".");
    if (conversion.letter < L'a')
        for (char& c : text) c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
    appendNumber(result, conversion, sign, text, conversion.zero && isFinite);
}

// The length of a text that ends at a zero or, without one, at `limit`.
template <typename Char>
std::size_t lengthOf(const Char* text, std::optional<int> limit) {
    std::size_t length = 0;
    while ((!limit || length < static_cast<std::size_t>(*limit)) && text[length] != 0) ++length;
    return length;
}

// A text's precision is also the most that may be read of it: it need not end with a zero then.
void appendText(std::wstring& result, const Conversion& conversion, Arguments& arguments) {
    const bool isNarrow = conversion.length == L"h" || (conversion.letter == L'S' && conversion.length != L"l");
    std::wstring text;
    if (isNarrow) {
        const char* narrow = va_arg(arguments.list, const char*);
        if (!narrow) narrow = "(null)";
        text = fromUtf8(std::string_view(narrow, lengthOf(narrow, conversion.precision)));
    } else {
        const wchar_t* wide = va_arg(arguments.list, const wchar_t*);
        if (!wide) wide = L"(null)";
        text.assign(wide, lengthOf(wide, conversion.precision));
        const bool endsInHalfPair = !text.empty() && text.back() >= 0xD800 && text.back() <= 0xDBFF;
        if (conversion.precision && endsInHalfPair) text.pop_back();
    }
    appendPadded(result, conversion, text);
}

void appendLetter(std::wstring& result, const Conversion& conversion, Arguments& arguments) {
    const int value = va_arg(arguments.list, int);
    const bool isNarrow = conversion.length == L"h" || (conversion.letter == L'C' && conversion.length != L"l");
    const wchar_t letter =
        isNarrow ? static_cast<wchar_t>(static_cast<unsigned char>(value)) : static_cast<wchar_t>(value);
    appendPadded(result, conversion, std::wstring_view(&letter, 1));
}

void appendPointer(std::wstring& result, const Conversion& conversion, Arguments& arguments) {
    const auto address = reinterpret_cast<std::uintptr_t>(va_arg(arguments.list, void*));
    std::wstring text;
    for (int shift = 60; shift >= 0; shift -= 4)
        text += static_cast<wchar_t>(kHexDigits[static_cast<std::uint64_t>(address) >> shift & 15]);
    appendPadded(result, conversion, text);
}

}  // namespace

std::wstring vformat(const wchar_t* format, std::va_list list) {
    Arguments arguments;
    va_copy(arguments.list, list);
    const std::wstring_view text(format);
    std::wstring result;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t percent = std::min(text.find(L'%', i), text.size());
        result += text.substr(i, percent - i);
        if (percent == text.size()) break;
        i = percent + 1;
        const Conversion conversion = readConversion(text, i, arguments);
        switch (conversion.letter) {
            case L'd':
            case L'i':
            case L'u':
            case L'o':
            case L'x':
            case L'X':
                appendInteger(result, conversion, arguments);
                break;
            case L'f':
            case L'F':
            case L'e':
            case L'E':
            case L'g':
            case L'G':
                appendReal(result, conversion, arguments);
                break;
            case L's':
            case L'S':
                appendText(result, conversion, arguments);
                break;
            case L'c':
            case L'C':
                appendLetter(result, conversion, arguments);
                break;
            case L'p':
                appendPointer(result, conversion, arguments);
                break;
            case L'%':
                result += L'%';
                break;
            default:
                result += text.substr(percent, i - percent);
        }
    }
    va_end(arguments.list);
    return result;
}

std::wstring format(const wchar_t* format, ...) {
    std::va_list list;
    va_start(list, format);
    std::wstring result = vformat(format, list);
    va_end(list);
    return result;
}

std::wstring formatPositional(std::wstring_view format, std::initializer_list<PositionalArgument> arguments) {
    boost::wformat formatter(std::wstring(), std::locale::classic());
    formatter.exceptions(boost::io::no_error_bits);
    formatter.parse(std::wstring(format));
    for (const PositionalArgument& argument : arguments) formatter % argument.text();
    return formatter.str();
}

}  // namespace base
