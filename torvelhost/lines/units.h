// Lengths and angles as text in the units of a drawing, and back.
//
//   length   1 scientific 1.5500E+01    2 decimal 15.5000    3 engineering 1'-3.5000"
//            4 architectural 1'-3 1/2"  5 fractional 15 1/2
//   angle    0 degrees 45.0000          1 45d0'0"            2 grads 50.0000g
//            3 radians 0.7854r          4 surveyor's N 45d0'0" E
//
// A precision is a number of decimal places, or for fractions the power of two of the largest denominator; for angles
// in minutes and seconds 0 is whole degrees, 1 and 2 minutes, 3 and 4 seconds, more adds decimal places of a second.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace host {

constexpr int kScientific = 1, kDecimal = 2, kEngineering = 3, kArchitectural = 4, kFractional = 5;
constexpr int kDegrees = 0, kDegreesMinutesSeconds = 1, kGrads = 2, kRadians = 3, kSurveyor = 4;
constexpr int kLargestPrecision = 8;

/// `value` must be finite. Units and precisions out of range count as the nearest in range.
std::wstring lengthToText(double value, int units, int precision);
std::wstring angleToText(double radians, int units, int precision);

/// Every form above whatever the units: "2.5", "1e3", "15 1/2", "1'3.5\"", "1'-3 1/2\"". Feet are 12.
std::optional<double> textToLength(std::wstring_view text);
/// Every form above; a bare number is in `units`. Radians.
std::optional<double> textToAngle(std::wstring_view text, int units);

}  // namespace host
