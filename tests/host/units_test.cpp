// Lengths and angles as text and back.

#include "torvelhost/lines/units.h"

#include <gtest/gtest.h>
#include <random>

#include "drawingdb/ge.h"

using namespace host;

namespace {
constexpr double kDegree = drawingdb::kPi / 180.0;
}

TEST(Units, Lengths) {
    struct Case {
        double value;
        int units, precision;
        const wchar_t* text;
    };
    for (const Case& c : {Case{15.5, kScientific, 4, L"1.5500E+01"},
                          {15.5, kDecimal, 4, L"15.5000"},
                          {15.5, kEngineering, 4, L"1'-3.5000\""},
                          {15.5, kArchitectural, 4, L"1'-3 1/2\""},
                          {15.5, kFractional, 4, L"15 1/2"},
                          {-0.00001, kDecimal, 2, L"0.00"},
                          {-15.5, kArchitectural, 4, L"-1'-3 1/2\""},
                          {0.5, kArchitectural, 4, L"1/2\""},
                          {0, kArchitectural, 4, L"0\""},
                          {12, kArchitectural, 0, L"1'-0\""},
                          // Rounding carries over into inches and feet.
                          {11.99999, kEngineering, 2, L"1'-0.00\""},
                          {11.99, kArchitectural, 2, L"1'-0\""},
                          {0.9999, kFractional, 3, L"1"},
                          {-0.001, kFractional, 3, L"0"},
                          {2, kDecimal, 0, L"2"}}) {
        const std::wstring text = lengthToText(c.value, c.units, c.precision);
        EXPECT_EQ(text, c.text);
    }
}

// Beyond the whole numbers that a double counts there are no fractions to show.
TEST(Units, HugeLengthsStayDecimal) {
    for (int units : {kEngineering, kArchitectural, kFractional})
        EXPECT_EQ(lengthToText(1e17, units, 1), L"100000000000000000.0");
    EXPECT_GT(lengthToText(-1e300, kFractional, 8).size(), 300u);
}

TEST(Units, Angles) {
    struct Case {
        double degrees;
        int units, precision;
        const wchar_t* text;
    };
    for (const Case& c : {Case{45, kDegrees, 0, L"45"},
                          {-90, kDegrees, 2, L"270.00"},
                          {359.9999, kDegrees, 2, L"0.00"},
                          {45.5, kDegreesMinutesSeconds, 2, L"45d30'"},
                          {45.5, kDegreesMinutesSeconds, 4, L"45d30'0\""},
                          {44.9999999, kDegreesMinutesSeconds, 4, L"45d0'0\""},
                          {10.2575, kDegreesMinutesSeconds, 5, L"10d15'27.0\""},
                          {90, kGrads, 1, L"100.0g"},
                          {180, kRadians, 4, L"3.1416r"},
                          {0, kSurveyor, 4, L"E"},
                          {90, kSurveyor, 4, L"N"},
                          {60, kSurveyor, 0, L"N 30d E"},
                          {135, kSurveyor, 2, L"N 45d0' W"},
                          {200, kSurveyor, 0, L"S 70d W"},
                          {300, kSurveyor, 0, L"S 30d E"}})
        EXPECT_EQ(angleToText(c.degrees * kDegree, c.units, c.precision), c.text) << c.degrees;
}

TEST(Units, TextsOfEveryForm) {
    for (const auto& [text, value] : {std::pair{L"2.5", 2.5},
                                      {L"-1e3", -1000.0},
                                      {L"15 1/2", 15.5},
                                      {L"1/4", 0.25},
                                      {L"1'-3 1/2\"", 15.5},
                                      {L"1'3.5\"", 15.5},
                                      {L"1'", 12.0},
                                      {L"6\"", 6.0},
                                      {L"-1'-6\"", -18.0},
                                      {L"1'-3-1/2\"", 15.5},
                                      {L" +7 ", 7.0}})
        EXPECT_EQ(textToLength(text), value) << text;
    for (const wchar_t* bad : {L"", L"x", L"1x", L"1/0", L"1 2", L"1'2'3", L"1e999", L"nan", L"--1", L"3,4"})
        EXPECT_FALSE(textToLength(bad)) << bad;

    for (const auto& [text, degrees] : {std::pair{L"45", 45.0},
                                        {L"-45.5", -45.5},
                                        {L"45d30'", 45.5},
                                        {L"10d15'27\"", 10.2575},
                                        {L"100g", 90.0},
                                        {L"N 30d E", 60.0},
                                        {L"S70dW", 200.0},
                                        {L"n", 90.0}})
        EXPECT_NEAR(textToAngle(text, kDegrees).value_or(-1), degrees * kDegree, 1e-12) << text;
    EXPECT_NEAR(*textToAngle(L"1.5", kRadians), 1.5, 0);
    EXPECT_NEAR(*textToAngle(L"90d", kRadians), 90 * kDegree, 1e-15);
    EXPECT_NEAR(*textToAngle(L"50", kGrads), 45 * kDegree, 1e-15);
    for (const wchar_t* bad : {L"", L"d", L"45x", L"N 95d E", L"N 30d", L"45d30'x", L"1e999"})
        EXPECT_FALSE(textToAngle(bad, kDegrees)) << bad;
}

TEST(Units, WhatIsShownReadsBack) {
    std::mt19937 random(20261121);
    for (int i = 0; i < 2000; ++i) {
        const double value = std::ldexp(static_cast<double>(static_cast<int>(random() % 2000001) - 1000000), -6);
        for (int units = kScientific; units <= kFractional; ++units) {
            const std::wstring text = lengthToText(value, units, 8);
            EXPECT_NEAR(textToLength(text).value_or(1e300), value, 1e-4) << "units " << units;
        }
        const double angle = std::ldexp(static_cast<double>(random() % 360000), 0) / 1000 * kDegree;
        for (int units = kDegrees; units <= kSurveyor; ++units) {
            const double back = textToAngle(angleToText(angle, units, 8), units).value_or(99);
            EXPECT_NEAR(std::remainder(back - angle, drawingdb::kTwoPi), 0, 1e-7) << "units " << units;
        }
    }
}
