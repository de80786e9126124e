// Writes and reads lengths and angles; their forms stand in the header file.
#include "torvelhost/lines/units.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "base/format.h"
#include "base/number.h"
#include "base/text.h"
#include "drawingdb/ge.h"

namespace host {
namespace {

constexpr double kLargestWhole = 9007199254740992.0;  // above it, doubles have no fractions

std::wstring decimal(double value, int precision) {
    std::wstring text = base::format(L"%.*f", precision, value);
    // What rounds to nothing has no sign.
    if (text.starts_with(L'-') && text.find_first_not_of(L"-0.") == text.npos) text.erase(0, 1);
    return text;
}

// A value that is not negative as a whole number and a fraction of a power of two.
struct Fraction {
    std::int64_t whole = 0;
    std::int64_t numerator = 0;
    std::int64_t denominator = 1;
};

Fraction fractionOf(double value, int precision) {
    Fraction fraction;
    fraction.denominator = std::int64_t{1} << precision;
    const double parts = std::round(value * static_cast<double>(fraction.denominator));
    const auto count = static_cast<std::int64_t>(parts);
    fraction.whole = count / fraction.denominator;
    fraction.numerator = count % fraction.denominator;
    while (fraction.numerator % 2 == 0 && fraction.denominator > 1) {
        fraction.numerator /= 2;
        fraction.denominator /= 2;
    }
    return fraction;
}

std::wstring fractionText(const Fraction& fraction) {
    if (fraction.numerator == 0) return std::to_wstring(fraction.whole);
    const std::wstring part = std::to_wstring(fraction.numerator) + L"/" + std::to_wstring(fraction.denominator);
    return fraction.whole == 0 ? part : std::to_wstring(fraction.whole) + L" " + part;
}

std::wstring architectural(double value, int precision) {
    Fraction fraction = fractionOf(value, precision);
    const std::int64_t feet = fraction.whole / 12;
    fraction.whole %= 12;
    const std::wstring inches = fractionText(fraction) + L"\"";
    return feet == 0 ? inches : std::to_wstring(feet) + L"'-" + inches;
}

std::wstring engineering(double value, int precision) {
    const double scale = std::pow(10.0, precision);
    double feet = std::floor(value / 12.0);
    double inches = std::round((value - feet * 12.0) * scale) / scale;
    if (inches >= 12.0) {
        feet += 1.0;
        inches = 0.0;
    }
    const std::wstring text = decimal(inches, precision) + L"\"";
    return feet == 0.0 ? text : base::format(L"%.0f'-", feet) + text;
}

std::wstring degreesMinutesSeconds(double degrees, int precision) {
    if (precision <= 0) return base::format(L"%.0fd", std::round(degrees));
    const int places = std::max(precision - 4, 0);
    // Counted in the smallest unit shown, so that what is rounded up carries over.
    const double unitsPerDegree = precision <= 2 ? 60.0 : 3600.0 * std::pow(10.0, places);
    const double count = std::round(degrees * unitsPerDegree);
    const double whole = std::floor(count / unitsPerDegree);
    const double rest = count - whole * unitsPerDegree;
    if (precision <= 2) return base::format(L"%.0fd%.0f'", whole, rest);
    const double unitsPerMinute = unitsPerDegree / 60.0;
    const double minutes = std::floor(rest / unitsPerMinute);
    const double seconds = (rest - minutes * unitsPerMinute) / (unitsPerMinute / 60.0);
    return base::format(L"%.0fd%.0f'%.*f\"", whole, minutes, places, seconds);
}

std::wstring surveyor(double degrees, int precision) {
    const auto full = [](double angle) { return angle == 0.0; };
    if (full(degrees)) return L"E";
    if (full(degrees - 90.0)) return L"N";
    if (full(degrees - 180.0)) return L"W";
    if (full(degrees - 270.0)) return L"S";
    const bool north = degrees < 180.0;
    const bool east = degrees < 90.0 || degrees > 270.0;
    const double fromMeridian = std::fabs((north ? 90.0 : 270.0) - degrees);
    return (north ? L"N " : L"S ") + degreesMinutesSeconds(fromMeridian, precision) + (east ? L" E" : L" W");
}

// A reader that eats what it understands from the front of a text.
class Scanner {
  public:
    explicit Scanner(std::wstring_view text) : rest_(base::trimmed(text)) {}

    bool atEnd() const { return rest_.empty(); }
    std::wstring_view rest() const { return rest_; }
    void skipBlanks() { rest_ = base::trimmed(rest_); }
    bool take(wchar_t character) {
        if (rest_.empty() || base::toLower(static_cast<char32_t>(rest_.front())) != static_cast<char32_t>(character))
            return false;
        rest_.remove_prefix(1);
        return true;
    }
    // Digits, a point, an exponent; no sign.
    std::optional<double> takeNumber() {
        std::size_t length = 0;
        const auto isDigit = [this](std::size_t at) { return at < rest_.size() && base::isDigit(rest_[at]); };
        while (isDigit(length) || (length < rest_.size() && rest_[length] == L'.')) ++length;
        if (length < rest_.size() && (rest_[length] == L'e' || rest_[length] == L'E')) {
            std::size_t exponent = length + 1;
            if (exponent < rest_.size() && (rest_[exponent] == L'+' || rest_[exponent] == L'-')) ++exponent;
            if (isDigit(exponent)) {
                while (isDigit(exponent)) ++exponent;
                length = exponent;
            }
        }
        const auto number = base::parseReal(rest_.substr(0, length));
        if (number) rest_.remove_prefix(length);
        return number;
    }

  private:
    std::wstring_view rest_;
};

// "15", "15 1/2", "1/2"
std::optional<double> takeMixedNumber(Scanner& scanner) {
    const auto first = scanner.takeNumber();
    if (!first) return std::nullopt;
    if (scanner.take(L'/')) {
        const auto denominator = scanner.takeNumber();
        if (!denominator || *denominator == 0.0) return std::nullopt;
        return *first / *denominator;
    }
    Scanner ahead = scanner;
    ahead.skipBlanks();
    if (!ahead.take(L'-')) ahead.skipBlanks();
    const auto numerator = ahead.takeNumber();
    if (!numerator || !ahead.take(L'/')) return first;
    const auto denominator = ahead.takeNumber();
    if (!denominator || *denominator == 0.0) return std::nullopt;
    scanner = ahead;
    return *first + *numerator / *denominator;
}

// "45", "45d", "45d30'", "45d30'15.5\""
std::optional<double> takeDegrees(Scanner& scanner) {
    const auto degrees = scanner.takeNumber();
    if (!degrees || !scanner.take(L'd')) return degrees;
    double value = *degrees;
    for (const auto& [mark, share] : {std::pair{L'\'', 60.0}, std::pair{L'"', 3600.0}}) {
        Scanner ahead = scanner;
        const auto number = ahead.takeNumber();
        if (!number || !ahead.take(mark)) continue;
        value += *number / share;
        scanner = ahead;
    }
    return value;
}

}  // namespace

std::wstring lengthToText(double value, int units, int precision) {
    precision = std::clamp(precision, 0, kLargestPrecision);
    const double size = std::fabs(value);
    if (units <= kScientific) return base::format(L"%.*E", precision, value);
    if (units == kDecimal || size * 256.0 > kLargestWhole) return decimal(value, precision);
    const std::wstring text = units == kEngineering     ? engineering(size, precision)
                              : units == kArchitectural ? architectural(size, precision)
                                                        : fractionText(fractionOf(size, precision));
    const bool isZero = text.find_first_of(L"123456789") == text.npos;
    return value < 0 && !isZero ? L"-" + text : text;
}

std::wstring angleToText(double radians, int units, int precision) {
    precision = std::clamp(precision, 0, kLargestPrecision);
    const double turned = drawingdb::normalizedAngle(radians);
    double degrees = turned * 180.0 / drawingdb::kPi;
    // What rounds up to a full turn is none.
    if (const double scale = std::pow(10.0, precision); std::round(degrees * scale) >= 360.0 * scale) degrees = 0.0;
    switch (units) {
        case kDegreesMinutesSeconds:
            return degreesMinutesSeconds(degrees, precision);
        case kGrads:
            return decimal(degrees / 0.9, precision) + L"g";
        case kRadians:
            return decimal(turned, precision) + L"r";
        default:
            return units >= kSurveyor ? surveyor(degrees, precision) : decimal(degrees, precision);
    }
}

std::optional<double> textToLength(std::wstring_view text) {
    Scanner scanner(text);
    const bool negative = scanner.take(L'-');
    if (!negative) scanner.take(L'+');
    const auto first = takeMixedNumber(scanner);
    if (!first) return std::nullopt;
    double value = *first;
    if (scanner.take(L'\'')) {
        value *= 12.0;
        if (!scanner.take(L'-')) scanner.skipBlanks();
        if (!scanner.atEnd()) {
            const auto inches = takeMixedNumber(scanner);
            if (!inches) return std::nullopt;
            value += *inches;
            scanner.take(L'"');
        }
    } else {
        scanner.take(L'"');
    }
    if (!scanner.atEnd() || !std::isfinite(value)) return std::nullopt;
    return negative ? -value : value;
}

std::optional<double> textToAngle(std::wstring_view text, int units) {
    Scanner scanner(text);
    constexpr double kRadiansPerDegree = drawingdb::kPi / 180.0;
    const bool north = scanner.take(L'n');
    const bool south = !north && scanner.take(L's');
    if (north || south || (units == kSurveyor && !scanner.atEnd())) {
        scanner.skipBlanks();
        double degrees = 0.0;
        if (!scanner.atEnd() && (north || south)) {
            const auto fromMeridian = takeDegrees(scanner);
            if (!fromMeridian || *fromMeridian > 90.0) return std::nullopt;
            degrees = *fromMeridian;
            scanner.skipBlanks();
            const bool east = scanner.take(L'e');
            if (!east && !scanner.take(L'w')) return std::nullopt;
            if (!scanner.atEnd()) return std::nullopt;
            const double meridian = north ? 90.0 : 270.0;
            return (north == east ? meridian - degrees : meridian + degrees) * kRadiansPerDegree;
        }
        if (north || south) return (north ? 90.0 : 270.0) * kRadiansPerDegree;
        if (scanner.take(L'e')) return scanner.atEnd() ? std::optional(0.0) : std::nullopt;
        if (scanner.take(L'w')) return scanner.atEnd() ? std::optional(drawingdb::kPi) : std::nullopt;
    }
    const bool negative = scanner.take(L'-');
    if (!negative) scanner.take(L'+');
    const std::wstring_view number = scanner.rest();
    const bool inDegrees = number.find_first_of(L"dD") != number.npos;
    const auto value = takeDegrees(scanner);
    if (!value) return std::nullopt;
    double radians = 0.0;
    if (scanner.take(L'g'))
        radians = *value * 0.9 * kRadiansPerDegree;
    else if (scanner.take(L'r'))
        radians = *value;
    else if (inDegrees || (units != kGrads && units != kRadians))
        radians = *value * kRadiansPerDegree;
    else
        radians = units == kGrads ? *value * 0.9 * kRadiansPerDegree : *value;
    if (!scanner.atEnd() || !std::isfinite(radians)) return std::nullopt;
    return negative ? -radians : radians;
}

}  // namespace host
