#include "drawingdb/src/fields/expression.h"

#include <cmath>
#include <gmock/gmock.h>
#include <string>

using drawingdb::evaluateExpression;

namespace {

// Child 0 is 6, child 1 is -0.5, child 2 has no value.
std::optional<double> child(std::size_t index) {
    if (index == 0) return 6.0;
    if (index == 1) return -0.5;
    return {};
}

TEST(Expression, KeepsTheRulesOfArithmetic) {
    const struct {
        const wchar_t* text;
        double value;
    } kRows[] = {
        {L"3+4", 7},
        {L" ( 3 + 4 ) * 2 ", 14},
        {L"2+3*4-6/4", 12.5},
        {L"7-2-1", 4},
        {L"8/4/2", 1},
        {L"-2^2", -4},
        {L"2^3^2", 512},
        {L"2^-1", 0.5},
        {L"--3", 3},
        {L"4*-+-2", 8},
        {L".5+1.", 1.5},
        {L"1.5e3+2E-1", 1500.2},
        {L"%<\\_FldIdx 0>%*2 + %<\\_FldIdx 1>%", 11.5},
        {L"sqrt(%<\\_FldIdx 0>% + 3)", 3},
        {L"abs(-4) + SQR(3)", 13},
        {L"round(2.5) + round(-2.5) + trunc(-2.9)", -2},
        {L"sin(30) + cos(60)", 1},
        {L"tan(45)*atan(1)", 45},
        {L"asin(1) + acos(1)", 90},
        {L"r2d(pi) + d2r(180)/pi", 181},
        {L"ln(exp(2)) + log(exp10(3))", 5},
    };
    for (const auto& row : kRows) {
        const auto value = evaluateExpression(row.text, child);
        ASSERT_TRUE(value.has_value()) << testing::PrintToString(std::wstring(row.text));
        EXPECT_NEAR(*value, row.value, 1e-12) << testing::PrintToString(std::wstring(row.text));
    }
}

TEST(Expression, GivesNothingForWhatHasNoValue) {
    const wchar_t* const kRows[] = {
        L"",
        L"   ",
        L"1+",
        L"(1",
        L"1)",
        L"()",
        L"1 2",
        L"1..2",
        L"1,5",
        L"1/0",
        L"0/0",
        L"sqrt(-1)",
        L"ln(0)",
        L"10^400",
        L"1e400",
        L"sin 30",
        L"sin",
        L"width(3)",
        L"2^",
        L"*2",
        L"nan",
        L"inf",
        L"1e",
        L"%<\\_FldIdx 2>%+1",
        L"%<\\_FldIdx 99>%",
        L"%<\\_ObjIdx 0>%",
        L"%<\\AcVar Title>%",
        L"%<",
        L"0x10",
    };
    for (const wchar_t* row : kRows)
        EXPECT_FALSE(evaluateExpression(row, child)) << testing::PrintToString(std::wstring(row));
}

TEST(Expression, StandsDeepNestingAndLongChains) {
    const auto nested = [](int depth) { return std::wstring(depth, L'(') + L"1" + std::wstring(depth, L')'); };
    EXPECT_EQ(evaluateExpression(nested(60), child), 1.0);
    EXPECT_FALSE(evaluateExpression(nested(10000), child));
    EXPECT_FALSE(evaluateExpression(std::wstring(100000, L'('), child));
    EXPECT_EQ(evaluateExpression(std::wstring(100000, L'-') + L"3", child), 3.0);
    std::wstring sum = L"0", power = L"1";
    for (int i = 0; i < 100000; ++i) {
        sum += L"+1";
        power += L"^1";
    }
    EXPECT_EQ(evaluateExpression(sum, child), 100000.0);
    EXPECT_FALSE(evaluateExpression(power, child));
}

}  // namespace
