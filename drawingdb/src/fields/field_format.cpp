#include "drawingdb/src/fields/field_format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

#include "base/number.h"
#include "base/paths.h"
#include "base/text.h"

namespace drawingdb {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kMostDigits = 16;

enum ZeroSuppression { kLeadingZeros = 1, kTrailingZeros = 2, kZeroFeet = 4, kZeroInches = 8 };

// ---------------------------------------------------------------------------------------------------------------------
// The format taken apart

struct ValueFormat {
    int letterCase = 0;
    std::optional<int> linear;
    std::optional<int> angular;
    std::optional<int> precision;
    double factor = 1;
    std::wstring prefix, suffix;
    wchar_t decimalSeparator = L'.';
    wchar_t thousandsSeparator = 0;
    wchar_t listSeparator = L',';
    int zeros = kZeroFeet | kZeroInches;
    int coordinates = 7;
    int fileParts = 0;
    std::optional<int> boolean;
    std::wstring datePicture;
};

bool isLetter(wchar_t c) { return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z'); }

// A separator by its number; what is no character of the first plane is left as it was.
void setSeparator(wchar_t& separator, int number) {
    if (number >= 32 && number < 0xD800) separator = static_cast<wchar_t>(number);
}

void applyCode(ValueFormat& format, std::wstring_view name, int number, std::wstring_view bracket) {
    if (name == L"tc")
        format.letterCase = number;
    else if (name == L"lu")
        format.linear = number;
    else if (name == L"au")
        format.angular = number;
    else if (name == L"pr")
        format.precision = std::min(number, kMostDigits);
    else if (name == L"ds")
        setSeparator(format.decimalSeparator, number);
    else if (name == L"th")
        setSeparator(format.thousandsSeparator, number);
    else if (name == L"ls")
        setSeparator(format.listSeparator, number);
    else if (name == L"zs")
        format.zeros = number;
    else if (name == L"pt")
        format.coordinates = number;
    else if (name == L"fn")
        format.fileParts = number;
    else if (name == L"bl")
        format.boolean = number;
    else if (name == L"ct" && number == 8)
        format.factor = base::parseReal(bracket).value_or(1.0);
    else if (name == L"ps") {
        const std::size_t comma = bracket.find(L',');
        format.prefix = bracket.substr(0, comma);
        format.suffix = comma == std::wstring_view::npos ? std::wstring_view() : bracket.substr(comma + 1);
    }
}

ValueFormat parseFormat(std::wstring_view text) {
    ValueFormat format;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] != L'%' || at + 2 >= text.size() || !isLetter(text[at + 1]) || !isLetter(text[at + 2])) {
            format.datePicture.push_back(text[at++]);
            continue;
        }
        const std::wstring_view name = text.substr(at + 1, 2);
        int number = 0;
        for (at += 3; at < text.size() && base::isDigit(text[at]); ++at)
            if (number < 1000000) number = number * 10 + (text[at] - L'0');
        std::wstring_view bracket;
        if (at < text.size() && text[at] == L'[') {
            const std::size_t close = std::min(text.find(L']', at), text.size());
            bracket = text.substr(at + 1, close - at - 1);
            at = std::min(close + 1, text.size());
        }
        applyCode(format, name, number, bracket);
    }
    return format;
}

// ---------------------------------------------------------------------------------------------------------------------
// Numbers

std::wstring toText(double value, std::chars_format style, int precision) {
    std::array<char, 512> buffer;
    const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, style, precision);
    return error == std::errc() ? std::wstring(buffer.data(), end) : std::wstring();
}

// Applies separators and the suppression of zeros to digits with or without a point; no sign, no exponent.
std::wstring finishDigits(const std::wstring& digits, const ValueFormat& format) {
    const std::size_t point = std::min(digits.find(L'.'), digits.size());
    std::wstring whole = digits.substr(0, point);
    std::wstring fraction = point < digits.size() ? digits.substr(point + 1) : std::wstring();
    if (format.zeros & kTrailingZeros) fraction.erase(fraction.find_last_not_of(L'0') + 1);
    if ((format.zeros & kLeadingZeros) && whole == L"0" && !fraction.empty()) whole.clear();
    if (format.thousandsSeparator)
        for (std::size_t place = whole.size(); place > 3;) whole.insert(place -= 3, 1, format.thousandsSeparator);
    if (!fraction.empty()) whole.append(1, format.decimalSeparator).append(fraction);
    return whole;
}

// Whether any digit but zero stands in the text: "-0.00" is shown without its sign.
bool isZeroText(std::wstring_view text) { return text.find_first_of(L"123456789") == std::wstring_view::npos; }

std::wstring withSign(const std::wstring& text, double value) {
    return value < 0 && !isZeroText(text) ? L'-' + text : text;
}

std::wstring decimalText(double value, int precision, const ValueFormat& format) {
    return withSign(finishDigits(toText(std::fabs(value), std::chars_format::fixed, precision), format), value);
}

std::wstring scientificText(double value, int precision, const ValueFormat& format) {
    std::wstring text = toText(std::fabs(value), std::chars_format::scientific, precision);
    const std::size_t exponent = text.find(L'e');
    std::wstring mantissa = finishDigits(text.substr(0, exponent), format);
    if (exponent != std::wstring::npos) mantissa += L'E' + text.substr(exponent + 1);
    return withSign(mantissa, value);
}

std::wstring fractionText(std::uint64_t whole, std::uint64_t parts, std::uint64_t denominator, bool showZeroWhole) {
    if (parts == 0) return std::to_wstring(whole);
    while (parts % 2 == 0) {
        parts /= 2;
        denominator /= 2;
    }
    std::wstring text = whole || showZeroWhole ? std::to_wstring(whole) + L' ' : std::wstring();
    return text + std::to_wstring(parts) + L'/' + std::to_wstring(denominator);
}

// Inches behind their feet: 1'-3 1/2". `inches` gives the text of the inches, which may stand behind feet.
template <class Inches>
std::wstring feetAndInches(std::uint64_t feet, bool zeroInches, const ValueFormat& format, Inches inches) {
    const bool showFeet = feet != 0 || !(format.zeros & kZeroFeet);
    const bool showInches = !zeroInches || !(format.zeros & kZeroInches) || !showFeet;
    std::wstring text;
    if (showFeet) text += std::to_wstring(feet) + L'\'';
    if (showFeet && showInches) text += L'-';
    if (showInches) text += inches(showFeet) + L'"';
    return text;
}

std::wstring linearText(double value, int unit, int precision, const ValueFormat& format) {
    constexpr double kMostCounted = 1e15;  // beyond, a count of fractions would not be exact
    const double size = std::fabs(value);
    const int halvings = std::min(precision, 8);
    const std::uint64_t denominator = std::uint64_t{1} << halvings;
    const double scale = unit == 3 ? std::pow(10.0, precision) : static_cast<double>(denominator);
    if (unit >= 3 && unit <= 5 && size * scale > kMostCounted) unit = 1;
    switch (unit) {
        case 1:
            return scientificText(value, precision, format);
        case 3: {
            const auto all = static_cast<std::uint64_t>(std::llround(size * scale));
            const auto foot = static_cast<std::uint64_t>(std::llround(12 * scale));
            const double inches = static_cast<double>(all % foot) / scale;
            return withSign(
                feetAndInches(
                    all / foot, all % foot == 0, format,
                    [&](bool) { return finishDigits(toText(inches, std::chars_format::fixed, precision), format); }),
                value);
        }
        case 4: {
            const auto all = static_cast<std::uint64_t>(std::llround(size * scale));
            const std::uint64_t rest = all % (12 * denominator);
            return withSign(feetAndInches(all / (12 * denominator), rest == 0, format,
                                          [&](bool behindFeet) {
                                              return fractionText(rest / denominator, rest % denominator, denominator,
                                                                  behindFeet);
                                          }),
                            value);
        }
        case 5: {
            const auto all = static_cast<std::uint64_t>(std::llround(size * scale));
            return withSign(fractionText(all / denominator, all % denominator, denominator, false), value);
        }
        default:
            return decimalText(value, precision, format);
    }
}

int secondDigits(int precision) { return std::min(std::max(precision - 4, 0), 8); }

// Into how many parts a degree is divided when it is shown as degrees, minutes and seconds.
double minutesResolution(int precision) {
    return precision == 0 ? 1 : precision <= 2 ? 60 : 3600 * std::pow(10.0, secondDigits(precision));
}

// Degrees as 12d30'15.5": the precision says how far; up to 2 minutes, up to 4 seconds, then digits of the seconds.
std::wstring degreesMinutesSeconds(double degrees, int precision, const ValueFormat& format) {
    const int digits = secondDigits(precision);
    const double secondParts = std::pow(10.0, digits);
    const double unitsPerDegree = minutesResolution(precision);
    const auto all = static_cast<std::uint64_t>(std::llround(degrees * unitsPerDegree));
    const auto perDegree = static_cast<std::uint64_t>(unitsPerDegree);
    std::wstring text = std::to_wstring(all / perDegree) + L'd';
    if (precision == 0) return text;
    const std::uint64_t rest = all % perDegree;
    if (precision <= 2) return text + std::to_wstring(rest) + L'\'';
    const std::uint64_t perMinute = perDegree / 60;
    const double seconds = static_cast<double>(rest % perMinute) / secondParts;
    text += std::to_wstring(rest / perMinute) + L'\'';
    return text + finishDigits(toText(seconds, std::chars_format::fixed, digits), format) + L'"';
}

// Bearings: N 30d0'0" E. Degrees lie in [0, 360), counted from east.
std::wstring surveyorsText(double degrees, int precision, const ValueFormat& format) {
    if (degrees == 0) return L"E";
    if (degrees == 90) return L"N";
    if (degrees == 180) return L"W";
    if (degrees == 270) return L"S";
    const bool north = degrees < 180;
    const bool east = degrees < 90 || degrees > 270;
    const double fromEastWest = east ? (north ? degrees : 360 - degrees) : std::fabs(degrees - 180);
    return (north ? L"N " : L"S ") + degreesMinutesSeconds(90 - fromEastWest, precision, format) +
           (east ? L" E" : L" W");
}

std::wstring angleText(double radians, int unit, int precision, const ValueFormat& format) {
    double turns = radians / (2 * kPi);
    turns -= std::floor(turns);
    const double full = unit == 2 ? 400 : unit == 3 ? 2 * kPi : 360;
    double value = turns * full;
    // What would be rounded up to a full turn is shown as zero.
    const double lastDigit = unit == 1 || unit == 4 ? 1 / minutesResolution(precision) : std::pow(10.0, -precision);
    if (full - value <= lastDigit / 2) value = 0;
    switch (unit) {
        case 1:
            return degreesMinutesSeconds(value, precision, format);
        case 2:
            return decimalText(value, precision, format) + L'g';
        case 3:
            return decimalText(value, precision, format) + L'r';
        case 4:
            return surveyorsText(value, precision, format);
        default:
            return decimalText(value, precision, format);
    }
}

std::wstring numberText(double value, const ValueFormat& format, const UnitSettings& units, Quantity quantity) {
    value *= format.factor;
    if (!std::isfinite(value)) return L"####";
    if (format.angular || (quantity == Quantity::angle && !format.linear)) {
        const bool drawing = !format.angular || *format.angular >= 5;
        return angleText(value, drawing ? units.angular : *format.angular,
                         format.precision.value_or(units.angularPrecision), format);
    }
    const bool drawing = !format.linear || *format.linear >= 6;
    return linearText(value, drawing ? units.linear : *format.linear, format.precision.value_or(units.linearPrecision),
                      format);
}

// ---------------------------------------------------------------------------------------------------------------------
// Texts

std::wstring lettersText(const std::wstring& text, int letterCase) {
    if (letterCase == 1) return base::toUpper(text);
    if (letterCase == 2) return base::toLower(text);
    if (letterCase != 3 && letterCase != 4) return text;
    std::wstring result;
    result.reserve(text.size());
    bool capital = true;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = base::nextCharacter(text, at);
        const bool blank = c == U' ' || c == U'\t' || c == U'\n' || c == U'\r';
        base::appendCharacter(result, capital ? base::toUpper(c) : base::toLower(c));
        if (!blank)
            capital = false;
        else if (letterCase == 4)
            capital = true;
    }
    return result;
}

std::wstring fileNameText(const std::wstring& path, int parts) {
    const std::wstring folder = (parts & 1) ? base::folderOf(path) : std::wstring();
    std::wstring name = (parts & 2) ? base::stemOf(path) : std::wstring();
    if (parts & 4) {
        std::wstring extension = base::extensionOf(path);
        // An extension by itself goes without its point.
        if (!(parts & 2) && !extension.empty()) extension.erase(0, 1);
        name += extension;
    }
    if (folder.empty()) return name;
    return name.empty() ? folder : base::joinPath(folder, name);
}

std::wstring booleanText(bool value, int words) {
    static constexpr const wchar_t* kWords[][2] = {
        {L"False", L"True"}, {L"No", L"Yes"}, {L"Off", L"On"}, {L"Disabled", L"Enabled"}};
    return kWords[static_cast<std::size_t>(std::clamp(words, 0, 3))][value];
}

std::wstring pointText(const OdDbFieldValue& value, const ValueFormat& format, const UnitSettings& units) {
    const int count = value.type == OdDbFieldValue::kPoint ? 2 : 3;
    std::wstring text;
    bool first = true;
    for (int i = 0; i < count; ++i) {
        if (!(format.coordinates & (1 << i))) continue;
        if (!first) text.push_back(format.listSeparator);
        first = false;
        text += numberText(value.point[i], format, units, Quantity::length);
    }
    return text;
}

std::wstring plainText(const OdDbFieldValue& value, const ValueFormat& format, const UnitSettings& units) {
    if (format.fileParts) return fileNameText(value.text, format.fileParts);
    if (format.linear || format.angular)
        if (const auto number = base::parseReal(value.text)) return numberText(*number, format, units, Quantity::none);
    return value.text;
}

// ---------------------------------------------------------------------------------------------------------------------
// Dates

constexpr double kFirstDay = 1721425.5;         // 1 January of the year 1
constexpr double kLastInstant = 5373484.49999;  // 31 December 9999
constexpr std::int64_t kDayMilliseconds = 86400000;

constexpr std::array<std::wstring_view, 12> kMonths = {L"January",   L"February", L"March",    L"April",
                                                       L"May",       L"June",     L"July",     L"August",
                                                       L"September", L"October",  L"November", L"December"};
constexpr std::array<std::wstring_view, 7> kWeekdays = {L"Sunday",   L"Monday", L"Tuesday", L"Wednesday",
                                                        L"Thursday", L"Friday", L"Saturday"};

std::wstring padded(int number, std::size_t width) {
    std::wstring text = std::to_wstring(number);
    return text.size() < width ? std::wstring(width - text.size(), L'0') + text : text;
}

std::wstring nameOrNumber(int number, std::wstring_view name, std::size_t width) {
    if (width <= 2) return padded(number, width);
    return std::wstring(width == 3 ? name.substr(0, 3) : name);
}

std::wstring datePart(const CalendarDate& date, wchar_t letter, std::size_t width) {
    switch (letter) {
        case L'd':
            return nameOrNumber(date.day, kWeekdays[static_cast<std::size_t>(date.weekday)], width);
        case L'M':
            return nameOrNumber(date.month, kMonths[static_cast<std::size_t>(date.month - 1)], width);
        case L'y':
            return width <= 2 ? padded(date.year % 100, width) : padded(date.year, 4);
        case L'h':
            return padded(date.hour % 12 == 0 ? 12 : date.hour % 12, std::min<std::size_t>(width, 2));
        case L'H':
            return padded(date.hour, std::min<std::size_t>(width, 2));
        case L'm':
            return padded(date.minute, std::min<std::size_t>(width, 2));
        case L's':
            return padded(date.second, std::min<std::size_t>(width, 2));
        default:
            return std::wstring(date.hour < 12 ? L"AM" : L"PM", std::min<std::size_t>(width, 2));
    }
}

// Appends the quoted literal at `at`; gives the place behind it. Two quotes are a quote, within a literal and without
// one.
std::size_t appendLiteral(std::wstring& text, std::wstring_view picture, std::size_t at) {
    const auto isPair = [&] { return picture.substr(at, 2) == L"''"; };
    if (isPair()) {
        text.push_back(L'\'');
        return at + 2;
    }
    for (++at; at < picture.size() && (picture[at] != L'\'' || isPair()); ++at) {
        text.push_back(picture[at]);
        if (isPair()) ++at;
    }
    return at + 1;
}

std::wstring dateText(double julian, std::wstring_view picture) {
    static constexpr std::wstring_view kShort = L"M/d/yyyy", kTime = L"h:mm:ss tt", kLong = L"dddd, MMMM d, yyyy";
    static constexpr std::array<std::pair<std::wstring_view, std::array<std::wstring_view, 2>>, 5> kStanding = {{
        {L"%#c", {kLong, kTime}},
        {L"%#x", {kLong, {}}},
        {L"%c", {kShort, kTime}},
        {L"%x", {kShort, {}}},
        {L"%X", {kTime, {}}},
    }};
    const CalendarDate date = calendarDate(julian);
    if (base::trimmed(picture).empty()) picture = kShort;
    std::wstring text;
    for (std::size_t at = 0; at < picture.size();) {
        const wchar_t c = picture[at];
        if (c == L'\'') {
            at = appendLiteral(text, picture, at);
        } else if (std::wstring_view(L"dMyhHmst").find(c) != std::wstring_view::npos) {
            const std::size_t end = std::min(picture.find_first_not_of(c, at), picture.size());
            text += datePart(date, c, end - at);
            at = end;
        } else {
            const auto standing = std::find_if(kStanding.begin(), kStanding.end(), [&](const auto& entry) {
                return picture.substr(at).starts_with(entry.first);
            });
            if (standing == kStanding.end()) {
                text.push_back(c);
                ++at;
                continue;
            }
            text += dateText(julian, standing->second[0]);
            if (!standing->second[1].empty()) text += L' ' + dateText(julian, standing->second[1]);
            at += standing->first.size();
        }
    }
    return text;
}

}  // namespace

CalendarDate calendarDate(double julian) {
    julian = std::clamp(julian, kFirstDay, kLastInstant);
    // Days begin at midnight, Julian days at noon.
    std::int64_t day = static_cast<std::int64_t>(std::floor(julian + 0.5));
    std::int64_t time = std::llround((julian + 0.5 - static_cast<double>(day)) * static_cast<double>(kDayMilliseconds));
    if (time >= kDayMilliseconds) {
        time -= kDayMilliseconds;
        ++day;
    }
    CalendarDate date;
    date.weekday = static_cast<int>((day + 1) % 7);
    // Counted from 1 March of a year before the first, so that the day put in falls at the end of a year.
    const std::int64_t days = day - 1721120 + 146097;
    const std::int64_t era = days / 146097;
    const std::int64_t dayOfEra = days % 146097;
    const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t month = (5 * dayOfYear + 2) / 153;  // 0 is March
    date.day = static_cast<int>(dayOfYear - (153 * month + 2) / 5 + 1);
    date.month = static_cast<int>(month < 10 ? month + 3 : month - 9);
    date.year = static_cast<int>((era - 1) * 400 + yearOfEra + (date.month <= 2 ? 1 : 0));
    date.hour = static_cast<int>(time / 3600000);
    date.minute = static_cast<int>(time / 60000 % 60);
    date.second = static_cast<int>(time / 1000 % 60);
    date.millisecond = static_cast<int>(time % 1000);
    return date;
}

double julianDay(const CalendarDate& date) {
    const std::int64_t year = static_cast<std::int64_t>(date.year) + 400 - (date.month <= 2 ? 1 : 0);
    const std::int64_t month = date.month > 2 ? date.month - 3 : date.month + 9;
    const std::int64_t days = 365 * year + year / 4 - year / 100 + year / 400 + (153 * month + 2) / 5 + date.day - 1;
    const double time = ((date.hour * 60.0 + date.minute) * 60.0 + date.second) * 1000.0 + date.millisecond;
    return static_cast<double>(days + 1721120 - 146097) - 0.5 + time / static_cast<double>(kDayMilliseconds);
}

std::wstring formatFieldValue(const OdDbFieldValue& value, std::wstring_view formatText, const UnitSettings& units,
                              Quantity quantity) {
    const ValueFormat format = parseFormat(formatText);
    std::wstring text;
    switch (value.type) {
        case OdDbFieldValue::kLong:
            if (format.boolean)
                text = booleanText(value.integer != 0, *format.boolean);
            else if (format.linear || format.angular || format.factor != 1)
                text = numberText(static_cast<double>(value.integer), format, units, quantity);
            else
                text = withSign(finishDigits(std::to_wstring(value.integer).substr(value.integer < 0), format),
                                value.integer < 0 ? -1 : 1);
            break;
        case OdDbFieldValue::kDouble:
            text = numberText(value.real, format, units, quantity);
            break;
        case OdDbFieldValue::kString:
            text = plainText(value, format, units);
            break;
        case OdDbFieldValue::kDate:
            text = dateText(value.real, format.datePicture);
            break;
        case OdDbFieldValue::kPoint:
        case OdDbFieldValue::k3dPoint:
            text = pointText(value, format, units);
            break;
        default:
            break;
    }
    return format.prefix + lettersText(text, format.letterCase) + format.suffix;
}

}  // namespace drawingdb
