#include "base/format.h"

#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace {

using base::format;

TEST(Format, Integers) {
    EXPECT_EQ(format(L"\n%d objects in extract file.\n", 12), L"\n12 objects in extract file.\n");
    EXPECT_EQ(format(L"[%5d][%-5d][%05d][%+d][% d][%.3d][%5.3d]", 42, 42, -42, 42, 42, 7, -7),
              L"[   42][42   ][-0042][+42][ 42][007][ -007]");
    EXPECT_EQ(format(L"%i %u %x %X %o %#x %#X %#o", -1, 4294967295u, 0xBEEFu, 0xBEEFu, 8u, 255u, 255u, 8u),
              L"-1 4294967295 beef BEEF 10 0xff 0XFF 010");
    EXPECT_EQ(format(L"%I64d %lld %I64u %ld %hd %hhu", std::numeric_limits<std::int64_t>::min(), -1ll,
                     std::numeric_limits<std::uint64_t>::max(), -5l, 65537, 257),
              L"-9223372036854775808 -1 18446744073709551615 -5 1 1");
    EXPECT_EQ(format(L"%zu %I64x %lu", std::size_t{9}, std::uint64_t{0x123456789A}, 7ul), L"9 123456789a 7");
    EXPECT_EQ(format(L"[%.0d][%.0x][%#x]", 0, 0u, 0u), L"[][][0]");
}

TEST(Format, StarsTakeWidthAndPrecision) {
    EXPECT_EQ(format(L"%*.*f", 10, 3, 2.5), L"     2.500");
    EXPECT_EQ(format(L"[%*.*f]", -10, 1, 2.25), L"[2.2       ]");
    EXPECT_EQ(format(L"[%*d][%-*d]", -4, 7, 4, 7), L"[7   ][7   ]");
    EXPECT_EQ(format(L"[%.*f][%.*s]", -1, 1.5, -1, L"abc"), L"[1.500000][abc]");
    EXPECT_EQ(format(L"[%*s]", std::numeric_limits<int>::min(), L"x").size(), (1u << 20) + 2u);
}

TEST(Format, Reals) {
    const struct {
        const wchar_t* how;
        double number;
        const wchar_t* text;
    } cases[] = {
        {L"%f", 1.0 / 3.0, L"0.333333"},
        {L"%.2f", 0.125, L"0.12"},  // ties go to the even digit
        {L"%.2f", 0.375, L"0.38"},
        {L"%.0f", 0.5, L"0"},
        {L"%.0f", 1.5, L"2"},
        {L"%#.0f", 1.5, L"2."},
        {L"%.4f", -1e-9, L"-0.0000"},
        {L"%+.1f", 2.0, L"+2.0"},
        {L"%08.2f", -3.14159, L"-0003.14"},
        {L"%.3f''", 25.4 * 0.03937007874015748, L"1.000''"},
        {L"%e", 12345.678, L"1.234568e+04"},
        {L"%.0e", 1.0, L"1e+00"},
        {L"%E", 1e-300, L"1.000000E-300"},
        {L"%g", 100000.0, L"100000"},
        {L"%g", 1000000.0, L"1e+06"},
        {L"%g", 0.0001, L"0.0001"},
        {L"%g", 0.00001, L"1e-05"},
        {L"%g", 999999.5, L"1e+06"},  // the exponent after rounding decides
        {L"%.10g", 3.0, L"3"},
        {L"%#g", 3.0, L"3.00000"},
        {L"%.3g", 0.00012345, L"0.000123"},
        {L"%.0g", 25.0, L"2e+01"},
        {L"%G", 1e-10, L"1E-10"},
        {L"%g", 0.0, L"0"},
        {L"%.17g", 0.1, L"0.10000000000000001"},
        {L"%8g", HUGE_VAL, L"     inf"},
        {L"%08F", -HUGE_VAL, L"    -INF"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(format(c.how, c.number), c.text) << testing::PrintToString(std::wstring(c.how));
    EXPECT_EQ(format(L"%.1f", 1e308).size(), 311u);
}

TEST(Format, Texts) {
    EXPECT_EQ(format(L"Cannot find block %s.", L"T\u00FCr"), L"Cannot find block T\u00FCr.");
    EXPECT_EQ(format(L"[%5s][%-5s][%.2s][%ls]", L"ab", L"ab", L"abc", L"x"), L"[   ab][ab   ][ab][x]");
    EXPECT_EQ(format(L"%S %hs", "T\xC3\xBCr", "narrow"), L"T\u00FCr narrow");
    EXPECT_EQ(format(L"%s|%S", static_cast<const wchar_t*>(nullptr), static_cast<const char*>(nullptr)),
              L"(null)|(null)");
    EXPECT_EQ(format(L"%c%C%3c%lc", L'a', 'b', L'c', L'\u00E4'), L"ab  c\u00E4");

    // No more is read than the precision allows.
    const wchar_t unterminated[] = {L'a', L'b'};
    EXPECT_EQ(format(L"%.2s", unterminated), L"ab");
    // A pair of surrogates is not cut in two.
    const wchar_t pair[] = {L'a', wchar_t(0xD83D), wchar_t(0xDE00), 0};
    EXPECT_EQ(format(L"%.2s", pair), L"a");
    EXPECT_EQ(format(L"%.3s", pair), pair);
}

TEST(Format, PercentSignsAndUnknownConversions) {
    EXPECT_EQ(format(L"%%<\\_FldIdx %d>%%", 3), L"%<\\_FldIdx 3>%");
    EXPECT_EQ(format(L"\td\n%d", 1), L"\td\n1");
    EXPECT_EQ(format(L"100%"), L"100%");
    EXPECT_EQ(format(L"%y %d", 5), L"%y 5");
    EXPECT_EQ(format(L"%-5", 5), L"%-5");
}

TEST(Format, PointersAreSixteenDigits) {
    EXPECT_EQ(format(L"0x%p", reinterpret_cast<void*>(std::uintptr_t{0xAB12})), L"0x000000000000AB12");
}

TEST(Format, Positional) {
    using base::formatPositional;
    EXPECT_EQ(formatPositional(L"ATTSYNC block %1%? [%%s] <Yes>", L"DOOR"), L"ATTSYNC block DOOR? [%s] <Yes>");
    EXPECT_EQ(formatPositional(L"Found in drawing: %1%", 12345), L"Found in drawing: 12345");
    EXPECT_EQ(formatPositional(L"%2% before %1%, %2%", std::wstring(L"a"), L"%1%"), L"%1% before a, %1%");
    EXPECT_EQ(formatPositional(L"%1% %2%|", L"only"), L"only |");
    EXPECT_EQ(formatPositional(L"none", L"extra"), L"none");
    EXPECT_EQ(formatPositional(L"%1%", -1), L"-1");
}

}  // namespace
