#include "drawingdb/src/geometry/angles.h"

#include <algorithm>
#include <cmath>

namespace drawingdb {

namespace {

// Sums of series up to an eighth of a turn; what is left out is below the last bit.
double sineNear(double x) {
    double sum = 1;
    for (int n = 18; n >= 2; n -= 2) sum = 1 - x * x / (n * (n + 1)) * sum;
    return x * sum;
}
double cosineNear(double x) {
    double sum = 1;
    for (int n = 19; n >= 1; n -= 2) sum = 1 - x * x / (n * (n + 1)) * sum;
    return sum;
}

// Of a tangent from 0 to 1. Halving the angle twice makes the series short.
double arcTangent(double tangent) {
    double t = tangent;
    for (int halving = 0; halving < 2; ++halving) t = t / (1 + std::sqrt(1 + t * t));
    double sum = 0;
    for (int n = 27; n >= 1; n -= 2) sum = 1.0 / n - t * t * sum;
    return 4 * t * sum;
}

double rounded(double degrees, double unitsOfADegree) {
    return std::nearbyint(degrees * unitsOfADegree) / unitsOfADegree;
}

// A number of few digits in place of one that is only a few last bits beside it.
double withoutNoiseInDegrees(double degrees, double noise) {
    const double near = rounded(degrees, 1e8);
    return std::fabs(near - degrees) <= noise ? near : degrees;
}

}  // namespace

OdGeVector2d directionOf(double angle) {
    if (angle == 0) return {1, 0};
    const double degrees = std::fmod(withoutNoiseInDegrees(angle / kDegree, 4e-16 * std::fabs(angle / kDegree)), 360);
    const double beside = std::remainder(degrees, 90);                                            // without rounding
    const double sine = sineNear(beside * kDegree) + 0.0, cosine = cosineNear(beside * kDegree);  // no minus zero
    switch (std::lround((degrees - beside) / 90) & 3) {
        case 0:
            return {cosine, sine};
        case 1:
            return {-sine + 0.0, cosine};
        case 2:
            return {-cosine, -sine + 0.0};
        default:
            return {sine, -cosine};
    }
}

double angleOf(double x, double y) {
    const double along = std::fabs(x), across = std::fabs(y), larger = std::max(along, across);
    if (!(larger > 0) || !std::isfinite(larger)) return 0;
    double angle = arcTangent(std::min(along, across) / larger);
    if (across > along) angle = kPi / 2 - angle;
    if (x < 0) angle = kPi - angle;
    if (y < 0) angle = kTwoPi - angle;
    constexpr double kNoise = 2e-12;
    return normalizedAngle(withoutNoiseInDegrees(angle / kDegree, kNoise) * kDegree);
}

double turnedTo(double angle, const OdGeVector2d& image) {
    const double length = image.length();
    if (!(length > 0)) return angle;
    const OdGeVector2d from = directionOf(angle);
    constexpr double kSame = 1e-14;
    const bool same = std::fabs(image.x / length - from.x) <= kSame && std::fabs(image.y / length - from.y) <= kSame;
    return same ? angle : angleOf(image);
}

double degreesOf(double angle) {
    const double degrees = angle / kDegree;
    for (const double units : {1e6, 1e10, 1e13})
        if (const double near = rounded(degrees, units); near * kDegree == angle) return near;
    for (const double beside : {std::nextafter(degrees, -HUGE_VAL), std::nextafter(degrees, HUGE_VAL)})
        if (degrees * kDegree != angle && beside * kDegree == angle) return beside;
    return degrees;
}

}  // namespace drawingdb
