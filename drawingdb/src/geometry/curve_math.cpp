#include "drawingdb/src/geometry/curve_math.h"

#include <algorithm>

namespace drawingdb {

std::optional<PlaneMap> mapPlane(const OdGeMatrix3d& matrix, const OdGeVector3d& normal) {
    const OdGeMatrix3d oldPlane = OdGeMatrix3d::planeToWorld(normal);
    const OdGeMatrix3d image = matrix * oldPlane;
    const OdGeVector3d cross = image.xAxis().crossProduct(image.yAxis());
    const double size = image.xAxis().length() * image.yAxis().length(), area = cross.length();
    if (!(area > 1e-14 * size) || !std::isfinite(size)) return std::nullopt;
    PlaneMap result;
    result.normal = cross / area;
    const OdGeVector3d old = oldPlane.zAxis();
    if (result.normal.dotProduct(old) < 0 && matrix.det() < 0) {
        result.normal = OdGeVector3d::kIdentity - result.normal;  // without minus zeros
        result.reversed = true;
    }
    // The file's own digits are kept where the plane has not turned.
    const bool turned = !result.normal.isEqualTo(old, {1e-12, 1e-12});
    if (!turned) result.normal = normal;
    // The new plane's coordinates of what the old plane's axes have become: the new axes are unit vectors at right
    // angles.
    const OdGeMatrix3d newPlane = turned ? OdGeMatrix3d::planeToWorld(result.normal) : oldPlane;
    const OdGeVector3d axes[3] = {newPlane.xAxis(), newPlane.yAxis(), newPlane.zAxis()};
    const OdGeVector3d columns[4] = {image.xAxis(), image.yAxis(), image.zAxis(), image.offset()};
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 4; ++c) result.map.entry[r][c] = axes[r].dotProduct(columns[c]);
    return result;
}

std::optional<double> planarScale(const PlaneMap& plane, double thickness) {
    constexpr double kTolerance = 1e-9;
    const OdGeVector3d x = plane.map.xAxis(), y = plane.map.yAxis(), rise = plane.map.zAxis();
    const double scale = x.length();
    if (std::fabs(y.length() - scale) > kTolerance * scale || std::fabs(x.dotProduct(y)) > kTolerance * scale * scale)
        return std::nullopt;
    if (thickness != 0 && drawingdb::euclideanLength(rise.x, rise.y) > kTolerance * rise.length()) return std::nullopt;
    return withoutNoise(scale);
}

std::optional<double> equalScale(const OdGeMatrix3d& matrix) {
    const OdGeVector3d x = matrix.xAxis(), y = matrix.yAxis(), z = matrix.zAxis();
    if (!matrix.isUniScaledOrtho() || x.crossProduct(y).dotProduct(z) < 0) return std::nullopt;
    return withoutNoise(x.length());
}

double mapAngle(const PlaneMap& plane, double degrees) {
    const double angle = degrees * kDegree;
    const OdGeVector2d along = directionOf(angle);
    const double turned = turnedTo(angle, (plane.map * OdGeVector3d(along.x, along.y, 0)).xy());
    return turned == angle ? degrees : degreesOf(turned);
}

std::optional<double> widthScale(const PlaneMap& plane, const std::vector<WideSegment>& segments, double thickness) {
    const auto isArc = [](const WideSegment& wide) { return wide.segment.bulge != 0; };
    const bool arcs = std::any_of(segments.begin(), segments.end(), isArc);
    if (const auto uniform = planarScale(plane, arcs ? thickness : 0)) return uniform;
    if (arcs) return std::nullopt;
    if (std::none_of(segments.begin(), segments.end(), [](const WideSegment& wide) { return wide.isWide(); })) return 1;
    // All along one line, the square ends of which stay square.
    OdGeVector2d direction;
    double scale = 1;
    for (const WideSegment& wide : segments) {
        if (wide.isPoint()) continue;
        const OdGeVector2d unit = (wide.segment.end - wide.segment.start).normal(), side = unit.perpVector();
        if (direction.isZeroLength()) {
            constexpr double kTolerance = 1e-9;
            direction = unit;
            const OdGeVector3d along = plane.map * OdGeVector3d(unit.x, unit.y, 0),
                               across = plane.map * OdGeVector3d(side.x, side.y, 0);
            scale = across.length();
            if (std::fabs(along.dotProduct(across)) > kTolerance * along.length() * scale) return std::nullopt;
        } else if (!direction.isParallelTo(unit)) {
            return std::nullopt;
        }
    }
    return scale;
}

double withoutNoise(double factor) { return std::fabs(factor - 1) < 1e-12 ? 1 : factor; }

double mapThickness(const OdGeMatrix3d& matrix, const OdGeVector3d& normal, double thickness,
                    const OdGeVector3d& image) {
    if (thickness == 0) return 0;
    const double factor = (matrix * normal.normal()).dotProduct(image.normal());
    return thickness * (factor < 0 ? -withoutNoise(-factor) : withoutNoise(factor));
}

void addThickness(OdGeExtents3d& extents, const OdGeVector3d& normal, double thickness) {
    if (thickness == 0) return;
    const OdGeVector3d rise = normal.normal() * thickness;
    const OdGeExtents3d base = extents;
    extents.addExtents(OdGeExtents3d(base.minPoint() + rise, base.maxPoint() + rise));
}

// The chord from the start to the point at fraction f of an arc of angle a has the length c sin(f a / 2) / sin(a / 2),
// where c is the whole chord, and leans (1 - f) a / 2 against it. Unlike centre and radius, this stays exact for arcs
// that are nearly straight.
OdGePoint2d BulgeSegment::pointAt(double fraction) const {
    const OdGeVector2d chord = end - start;
    if (bulge == 0) return start + chord * fraction;
    if (fraction == 1) return end;
    const double half = angle() / 2;
    OdGeVector2d reach = chord * (std::sin(fraction * half) / std::sin(half));
    return start + reach.rotateBy((fraction - 1) * half);
}

OdGeVector2d BulgeSegment::derivativeAt(double fraction) const {
    OdGeVector2d direction = end - start;
    if (bulge == 0) return direction;
    direction *= lengthOverChord();
    return direction.rotateBy((fraction - 0.5) * angle());
}

std::optional<OdGePoint2d> BulgeSegment::center() const {
    const OdGeVector2d chord = end - start;
    if (bulge == 0 || !(chord.length() > 0)) return std::nullopt;
    const OdGePoint2d result = start + chord * 0.5 + chord.perpVector() * ((1 - bulge * bulge) / (4 * bulge));
    return std::isfinite((start - result).length()) ? std::optional(result) : std::nullopt;
}

double BulgeSegment::lengthOverChord() const {
    // The sine of half the angle, by the bulge.
    return bulge == 0 ? 1 : angle() / 2 * (1 + bulge * bulge) / (2 * bulge);
}

double BulgeSegment::length() const { return (end - start).length() * lengthOverChord(); }

std::optional<double> BulgeSegment::fractionTowards(double direction) const {
    const OdGeVector2d chord = end - start;
    if (bulge == 0 || chord.lengthSquared() == 0) return std::nullopt;
    const double whole = angle();
    const double startTangent = std::atan2(chord.y, chord.x) - whole / 2;
    const double startRadius = whole > 0 ? startTangent - drawingdb::kPi / 2 : startTangent + drawingdb::kPi / 2;
    const double turn = drawingdb::normalizedAngle(whole > 0 ? direction - startRadius : startRadius - direction);
    const double fraction = turn / std::fabs(whole);
    return fraction < 1 ? std::optional(fraction) : std::nullopt;
}

std::pair<std::size_t, double> segmentAt(double parameter, std::size_t count) {
    const double inside = parameter > 0 ? std::min(parameter, static_cast<double>(count)) : 0;
    const std::size_t index = std::min(static_cast<std::size_t>(inside), count - 1);
    return {index, inside - static_cast<double>(index)};
}

}  // namespace drawingdb
