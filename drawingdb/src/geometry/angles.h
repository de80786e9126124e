// Angles that come out the same, to the last digit, on every platform: C libraries differ in the last bits of sines,
// and files are to be the same bytes.
#pragma once

#include "drawingdb/ge.h"

namespace drawingdb {

/// In radians, which objects have; files have degrees.
inline constexpr double kDegree = kPi / 180;

/// The unit vector in the direction of an angle; quarter turns give the axes exactly.
OdGeVector2d directionOf(double angle);

/// The direction of a vector, from 0 to below a whole turn; 0 when it has no length. Angles of few digits in degrees
/// come out as these, so that turning by 30 and by 45 degrees makes 75.
double angleOf(double x, double y);
inline double angleOf(const OdGeVector2d& v) { return angleOf(v.x, v.y); }

/// What has become of an angle whose direction has turned into `image`: the angle itself, to the last digit, when it
/// has not turned.
double turnedTo(double angle, const OdGeVector2d& image);

/// The degrees to write for an angle: those that read back as it, with few digits where there are such.
double degreesOf(double angle);

}  // namespace drawingdb
