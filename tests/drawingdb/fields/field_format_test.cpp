#include "drawingdb/src/fields/field_format.h"

#include <cmath>
#include <gmock/gmock.h>

using drawingdb::calendarDate;
using drawingdb::formatFieldValue;
using drawingdb::julianDay;
using drawingdb::Quantity;
using drawingdb::UnitSettings;

namespace {

constexpr double kDegree = 3.14159265358979323846 / 180;

OdDbFieldValue text(const wchar_t* value) {
    OdDbFieldValue result;
    result.type = OdDbFieldValue::kString;
    result.text = value;
    return result;
}

OdDbFieldValue real(double value) {
    OdDbFieldValue result;
    result.type = OdDbFieldValue::kDouble;
    result.real = value;
    return result;
}

OdDbFieldValue whole(std::int64_t value) {
    OdDbFieldValue result;
    result.type = OdDbFieldValue::kLong;
    result.integer = value;
    return result;
}

OdDbFieldValue point(int type, double x, double y, double z) {
    OdDbFieldValue result;
    result.type = type;
    result.point[0] = x;
    result.point[1] = y;
    result.point[2] = z;
    return result;
}

std::wstring length(double value, const wchar_t* format) {
    return formatFieldValue(real(value), format, {}, Quantity::length);
}
std::wstring angle(double degrees, const wchar_t* format) {
    return formatFieldValue(real(degrees * kDegree), format, {}, Quantity::angle);
}

TEST(FieldFormat, Letters) {
    EXPECT_EQ(formatFieldValue(text(L"the First äpfel"), L"%tc1", {}, Quantity::none), L"THE FIRST ÄPFEL");
    EXPECT_EQ(formatFieldValue(text(L"The FIRST Äpfel"), L"%tc2", {}, Quantity::none), L"the first äpfel");
    EXPECT_EQ(formatFieldValue(text(L"the FIRST äpfel"), L"%tc3", {}, Quantity::none), L"The first äpfel");
    EXPECT_EQ(formatFieldValue(text(L"the FIRST äpfel"), L"%tc4", {}, Quantity::none), L"The First Äpfel");
    EXPECT_EQ(formatFieldValue(text(L"as It is"), L"%tc0%zz9[?]", {}, Quantity::none), L"as It is");
    EXPECT_EQ(formatFieldValue(text(L"plan"), L"%tc1%ps[no. , !]", {}, Quantity::none), L"no. PLAN !");
}

TEST(FieldFormat, Lengths) {
    const struct {
        double value;
        const wchar_t* format;
        const wchar_t* shown;
    } kRows[] = {
        {15.5, L"%lu1%pr2", L"1.55E+01"},
        {15.5, L"%lu2%pr3", L"15.500"},
        {-0.04, L"%lu2%pr1", L"0.0"},
        {2.675, L"%lu2%pr0", L"3"},
        {15.5, L"%lu3%pr2", L"1'-3.50\""},
        {15.5, L"%lu4%pr1", L"1'-3 1/2\""},
        {12.5, L"%lu4%pr1", L"1'-0 1/2\""},
        {12, L"%lu4%pr4", L"1'"},
        {12, L"%lu4%pr4%zs0", L"1'-0\""},
        {0.25, L"%lu4%pr2", L"1/4\""},
        {0.25, L"%lu4%pr2%zs0", L"0'-0 1/4\""},
        {0, L"%lu4%pr2", L"0\""},
        {-11.999, L"%lu4%pr2", L"-1'"},
        {11.999, L"%lu3%pr2", L"1'"},
        {15.375, L"%lu5%pr4", L"15 3/8"},
        {-0.5, L"%lu5%pr1", L"-1/2"},
        {1e300, L"%lu4%pr2", L"1.00E+300"},
        {15.5, L"%pr1", L"15.5"},
        {0.5, L"%lu2%pr3%zs1", L".500"},
        {0.5, L"%lu2%pr3%zs3", L".5"},
        {4, L"%lu2%pr3%zs2", L"4"},
        {1234567.891, L"%lu2%pr2%ds44%th46", L"1.234.567,89"},
        {-123.4, L"%lu2%pr0%th44", L"-123"},
        {-1234.4, L"%lu2%pr0%th44", L"-1,234"},
        {2500, L"%lu2%pr1%ct8[0.001]%ps[, m]", L"2.5 m"},
        {2500, L"%lu2%pr1%ct8[0.001%ps[", L"2500.0"},
        {1, L"%lu2%pr99", L"1.0000000000000000"},
    };
    for (const auto& row : kRows)
        EXPECT_EQ(length(row.value, row.format), row.shown) << row.value << testing::PrintToString(row.format);

    const UnitSettings architect{4, 3, 1, 4};
    EXPECT_EQ(formatFieldValue(real(15.125), L"", architect, Quantity::length), L"1'-3 1/8\"");
    EXPECT_EQ(formatFieldValue(real(15.125), L"%lu6", architect, Quantity::none), L"1'-3 1/8\"");
    EXPECT_EQ(formatFieldValue(real(kDegree * 1.5), L"", architect, Quantity::angle), L"1d30'0\"");
    EXPECT_EQ(formatFieldValue(text(L"2.50"), L"%lu2%pr0", {}, Quantity::none), L"2");
    EXPECT_EQ(formatFieldValue(text(L"2.5 m"), L"%lu2%pr0", {}, Quantity::none), L"2.5 m");
    EXPECT_EQ(formatFieldValue(real(std::nan("")), L"%lu2", {}, Quantity::none), L"####");
}

TEST(FieldFormat, Angles) {
    const struct {
        double degrees;
        const wchar_t* format;
        const wchar_t* shown;
    } kRows[] = {
        {45.25, L"%au0%pr2", L"45.25"},
        {-90, L"%au0", L"270"},
        {359.9999, L"%au0%pr1", L"0.0"},
        {12.5042, L"%au1%pr0", L"13d"},
        {12.5042, L"%au1%pr2", L"12d30'"},
        {12.5042, L"%au1%pr4", L"12d30'15\""},
        {12.5042, L"%au1%pr6", L"12d30'15.12\""},
        {29.99999, L"%au1%pr4", L"30d0'0\""},
        {45, L"%au2%pr1", L"50.0g"},
        {180, L"%au3%pr4", L"3.1416r"},
        {0, L"%au4%pr4", L"E"},
        {90, L"%au4%pr4", L"N"},
        {30, L"%au4%pr2", L"N 60d0' E"},
        {150, L"%au4%pr2", L"N 60d0' W"},
        {210, L"%au4%pr2", L"S 60d0' W"},
        {330, L"%au4%pr2", L"S 60d0' E"},
        {90, L"%lu2%pr4", L"1.5708"},
    };
    for (const auto& row : kRows) EXPECT_EQ(angle(row.degrees, row.format), row.shown) << row.degrees;
}

TEST(FieldFormat, WholeNumbersPointsAndFileNames) {
    EXPECT_EQ(formatFieldValue(whole(-1234567), L"%th44", {}, Quantity::none), L"-1,234,567");
    EXPECT_EQ(formatFieldValue(whole(2048), L"%lu2%pr1%ct8[0.0009765625]", {}, Quantity::none), L"2.0");
    EXPECT_EQ(formatFieldValue(whole(1), L"%bl0", {}, Quantity::none), L"True");
    EXPECT_EQ(formatFieldValue(whole(0), L"%bl1", {}, Quantity::none), L"No");
    EXPECT_EQ(formatFieldValue(whole(7), L"%bl2", {}, Quantity::none), L"On");
    EXPECT_EQ(formatFieldValue(whole(0), L"%bl3", {}, Quantity::none), L"Disabled");

    EXPECT_EQ(formatFieldValue(point(OdDbFieldValue::k3dPoint, 1, 2.5, -3), L"%lu2%pr1", {}, Quantity::none),
              L"1.0,2.5,-3.0");
    EXPECT_EQ(formatFieldValue(point(OdDbFieldValue::k3dPoint, 1, 2.5, -3), L"%lu2%pr1%pt5%ls59", {}, Quantity::none),
              L"1.0;-3.0");
    EXPECT_EQ(formatFieldValue(point(OdDbFieldValue::kPoint, 1, 2.5, -3), L"%lu2%pr0", {}, Quantity::none), L"1,2");

    const OdDbFieldValue path = text(L"/plans/house/ground floor.dxf");
    const std::pair<const wchar_t*, const wchar_t*> kParts[] = {
        {L"%fn1", L"/plans/house"},     {L"%fn2", L"ground floor"},         {L"%fn4", L"dxf"},
        {L"%fn6", L"ground floor.dxf"}, {L"%fn6%tc1", L"GROUND FLOOR.DXF"}, {L"", L"/plans/house/ground floor.dxf"},
    };
    for (const auto& [format, shown] : kParts) EXPECT_EQ(formatFieldValue(path, format, {}, Quantity::none), shown);
    EXPECT_EQ(formatFieldValue(text(L"bare"), L"%fn7", {}, Quantity::none), L"bare");
}

TEST(FieldFormat, Dates) {
    OdDbFieldValue value;
    value.type = OdDbFieldValue::kDate;
    value.real = julianDay({2024, 7, 9, 0, 15, 4, 5, 250});  // a Tuesday
    const std::pair<const wchar_t*, const wchar_t*> kPictures[] = {
        {L"", L"7/9/2024"},
        {L"M/d/yyyy", L"7/9/2024"},
        {L"MM/dd/yy", L"07/09/24"},
        {L"dddd, MMMM d, yyyy", L"Tuesday, July 9, 2024"},
        {L"ddd d MMM y", L"Tue 9 Jul 24"},
        {L"h:mm tt", L"3:04 PM"},
        {L"hh:mm:ss t", L"03:04:05 P"},
        {L"HH:mm:ss", L"15:04:05"},
        {L"H 'o''clock'", L"15 o'clock"},
        {L"'day' d ''yy''", L"day 9 '24'"},
        {L"yyyy-MM-dd'T'HH:mm", L"2024-07-09T15:04"},
        {L"dddd%tc1", L"TUESDAY"},
        {L"%#x", L"Tuesday, July 9, 2024"},
        {L"%c", L"7/9/2024 3:04:05 PM"},
        {L"'open", L"open"},
    };
    for (const auto& [picture, shown] : kPictures)
        EXPECT_EQ(formatFieldValue(value, picture, {}, Quantity::none), shown);
    value.real = julianDay({2024, 2, 29, 0, 0, 30, 0, 0});
    EXPECT_EQ(formatFieldValue(value, L"ddd h:mm tt", {}, Quantity::none), L"Thu 12:30 AM");
}

TEST(FieldFormat, JulianDaysAndCalendarDatesAgree) {
    EXPECT_DOUBLE_EQ(julianDay({2000, 1, 1, 0, 12, 0, 0, 0}), 2451545.0);
    EXPECT_DOUBLE_EQ(julianDay({1970, 1, 1, 0, 0, 0, 0, 0}), 2440587.5);
    double day = julianDay({1599, 12, 1, 0, 18, 30, 15, 0});
    int weekday = calendarDate(day).weekday;
    int lastDay = 0, months = 0;
    for (int i = 0; i < 146097 + 62; ++i, day += 1) {
        const auto date = calendarDate(day);
        ASSERT_EQ(date.weekday, (weekday + i) % 7);
        ASSERT_TRUE(date.day == lastDay + 1 || (date.day == 1 && lastDay >= 28) || i == 0)
            << date.year << '-' << date.month;
        ASSERT_EQ(date.hour * 10000 + date.minute * 100 + date.second, 183015);
        ASSERT_DOUBLE_EQ(julianDay(date), day);
        months += date.day == 1;
        lastDay = date.day;
    }
    EXPECT_EQ(months, 4800 + 2);
    // Beyond the calendar: the nearest day of it.
    EXPECT_EQ(calendarDate(-1e300).year, 1);
    EXPECT_EQ(calendarDate(1e300).year, 9999);
    EXPECT_EQ(calendarDate(1e300).day, 31);
}

}  // namespace
