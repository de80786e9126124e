#include "base/number.h"

#include <clocale>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {

TEST(Number, ReadsReals) {
    const struct {
        const char* text;
        double number;
    } cases[] = {
        {"0", 0},
        {" 1.5\t", 1.5},
        {"+2", 2},
        {"-3.", -3},
        {".5", 0.5},
        {"-.5", -0.5},
        {"1e5", 1e5},
        {"1E+5", 1e5},
        {"2.5e-3", 2.5e-3},
        {"1e-400", 0},
        {"00012", 12},
        {"-0", -0.0},
        {"4.9e-324", 5e-324},
        {"1000e-400", 0},
        {"0e999", 0},
        {"1.7976931348623157e308", std::numeric_limits<double>::max()},
    };
    for (const auto& c : cases) {
        const auto number = base::parseReal(std::string_view(c.text));
        ASSERT_TRUE(number.has_value()) << c.text;
        EXPECT_EQ(*number, c.number) << c.text;
        EXPECT_EQ(std::signbit(*number), std::signbit(c.number)) << c.text;
    }
    EXPECT_EQ(base::parseReal("0." + std::string(400, '0') + "1"), 0.0);
    EXPECT_EQ(base::parseReal(L" 12.25 "), 12.25);
}

TEST(Number, RefusesWhatIsNoReal) {
    for (const char* text : {"",
                             " ",
                             "1O.5",
                             "1.D0",
                             "1,5",
                             "1 2",
                             "--1",
                             "+-1",
                             "++1",
                             "e5",
                             "1e",
                             "0x10",
                             "inf",
                             "nan",
                             "-inf",
                             "infinity",
                             "1e400",
                             "-1e400",
                             "1e99999999999999999999",
                             ".",
                             "-",
                             "+",
                             "1.2.3"})
        EXPECT_FALSE(base::parseReal(std::string_view(text)).has_value()) << text;
    EXPECT_FALSE(base::parseReal(std::string(400, '9')).has_value());
    EXPECT_FALSE(base::parseReal(L"\u0661").has_value());  // a digit, but no ASCII one
    EXPECT_FALSE(base::parseReal(std::wstring_view(L"1\0", 2)).has_value());
}

TEST(Number, ReadsIntegersAndHandles) {
    EXPECT_EQ(base::parseInteger(std::string_view("  70")), 70);
    EXPECT_EQ(base::parseInteger(std::string_view("+5 ")), 5);
    EXPECT_EQ(base::parseInteger(std::string_view("-9223372036854775808")), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(base::parseInteger(L"-12"), -12);
    for (const char* text : {"", "1.0", "9223372036854775808", "0x1", "1a", "+ 1", "+-1"})
        EXPECT_FALSE(base::parseInteger(std::string_view(text)).has_value()) << text;
    EXPECT_EQ(base::parseHex(std::string_view("2f")), 0x2Fu);
    EXPECT_EQ(base::parseHex(L" FFFFFFFFFFFFFFFF"), 0xFFFFFFFFFFFFFFFFu);
    for (const char* text : {"", "-1", "G", "10000000000000000"})
        EXPECT_FALSE(base::parseHex(std::string_view(text)).has_value()) << text;
    EXPECT_EQ(base::hexToText(0), "0");
    EXPECT_EQ(base::hexToText(0x1F00AB), "1F00AB");
}

TEST(Number, WritesRealsAsDrawingsHoldThem) {
    const struct {
        double number;
        const char* text;
    } cases[] = {
        {0, "0.0"},
        {-0.0, "-0.0"},
        {10.5, "10.5"},
        {-7, "-7.0"},
        {100000, "100000.0"},
        {1e15, "1000000000000000.0"},
        {1e16, "1e+16"},
        {1e20, "1e+20"},
        {123456789012345680.0, "1.2345678901234568e+17"},
        {0.0001, "0.0001"},
        {0.00012345, "0.00012345"},
        {0.00001, "1e-05"},
        {0.1, "0.1"},
        {1.0 / 3.0, "0.3333333333333333"},
        {12.000000000000002, "12.000000000000002"},
        {5e-324, "5e-324"},
    };
    for (const auto& c : cases) EXPECT_EQ(base::realToText(c.number), c.text);
}

TEST(Number, RealsReadBackTheSameInEveryLocale) {
    std::setlocale(LC_ALL, "de_DE.UTF-8");  // where it is installed the decimal point is a comma
    std::mt19937_64 random(20240229);
    for (int i = 0; i < 20000; ++i) {
        const std::uint64_t bits = random();
        double number;
        std::memcpy(&number, &bits, sizeof number);
        if (!std::isfinite(number)) continue;
        ASSERT_EQ(base::parseReal(base::realToText(number)), number) << base::realToText(number);
    }
    std::setlocale(LC_ALL, "C");
}

}  // namespace
