// What the planar entities share: how matrices act on the plane an entity lies in, thickness, and arcs between two
// points.
#pragma once

#include <initializer_list>
#include <optional>
#include <utility>
#include <vector>

#include "drawingdb/ge.h"
#include "drawingdb/src/geometry/angles.h"

namespace drawingdb {

/// What a matrix makes of a plane. Coordinates in a plane are those that files use: along the axes that planeToWorld
/// gives the plane's normal.
struct PlaneMap {
    OdGeVector3d normal;    ///< of the image
    OdGeMatrix3d map;       ///< from coordinates in the old plane to coordinates in the new one
    bool reversed = false;  ///< what ran counter-clockwise runs clockwise in the new coordinates
};

/// The image of a plane, by the one rule for all planar entities: a matrix that does not mirror takes the normal along.
/// One that does leaves a choice, and then the image's normal is the one that points to the same side as the old one:
/// so a flat drawing mirrored in its plane keeps its normal (and is reversed), and mirroring above and below changes
/// nothing. Nothing when the matrix squeezes the plane to a line or is not finite.
std::optional<PlaneMap> mapPlane(const OdGeMatrix3d& matrix, const OdGeVector3d& normal);

/// The scale within the plane, when it is the same in all its directions to within 1e-9, whatever happens across it;
/// else nothing. What has a thickness must also still rise at right angles from its plane.
std::optional<double> planarScale(const PlaneMap& plane, double thickness = 0);

/// The factor of a matrix that shifts, turns and scales alike in all directions; none for another, or one that mirrors.
std::optional<double> equalScale(const OdGeMatrix3d& matrix);

/// What a direction in the plane is taken to, both in degrees as files have them. One that is not turned keeps its
/// digits.
double mapAngle(const PlaneMap& plane, double degrees);

/// 1 when the factor is 1 but for rounding: what was only turned keeps its sizes to the last digit.
double withoutNoise(double factor);

/// The thickness of an entity, measured along the image's normal.
double mapThickness(const OdGeMatrix3d& matrix, const OdGeVector3d& normal, double thickness,
                    const OdGeVector3d& image);

/// Adds what an entity with a thickness covers besides its base.
void addThickness(OdGeExtents3d& extents, const OdGeVector3d& normal, double thickness);

/// A segment of a polyline: straight, or with a bulge, the tangent of a quarter of the angle of its arc, positive when
/// the arc runs counter-clockwise.
struct BulgeSegment {
    OdGePoint2d start, end;
    double bulge = 0;

    /// The angle of the arc, negative clockwise; 0 for a straight segment.
    double angle() const { return bulge == 0 ? 0 : 4 * std::atan(bulge); }
    double length() const;
    /// Fractions of the length, 0 to 1.
    OdGePoint2d pointAt(double fraction) const;
    OdGeVector2d derivativeAt(double fraction) const;
    /// The centre of the arc; none of a straight segment, or of one so flat that its radius is no number.
    std::optional<OdGePoint2d> center() const;
    /// Calls `add` with the ends and, for an arc, each point where it goes farthest along a direction given by its
    /// angle.
    template <class Add>
    void extremes(std::initializer_list<double> directions, Add add) const {
        add(start);
        add(end);
        for (const double direction : directions)
            for (const double angle : {direction, direction + drawingdb::kPi})
                if (const auto fraction = fractionTowards(angle)) add(pointAt(*fraction));
    }

  private:
    /// Where the arc's radius points in that direction; nothing when it nowhere does.
    std::optional<double> fractionTowards(double direction) const;
    /// The length of the arc over that of its chord.
    double lengthOverChord() const;
};

/// A segment with the widths of the line at its ends.
struct WideSegment {
    BulgeSegment segment;
    double startWidth = 0, endWidth = 0;

    bool isWide() const { return startWidth > 0 || endWidth > 0; }
    bool isPoint() const { return (segment.end - segment.start).isZeroLength(); }
};

/// The factor for the widths of a polyline in a plane; none where no polyline shows the image. A width is measured
/// across its segment: under an unequal scale each direction has a factor of its own, ends come out slanted and arcs as
/// parts of ellipses. What is without widths and arcs takes any matrix.
std::optional<double> widthScale(const PlaneMap& plane, const std::vector<WideSegment>& segments, double thickness);

/// The segment of a row of `count` segments (one at least) that a parameter lies in, and the fraction of it; a
/// parameter outside means the end next to it.
std::pair<std::size_t, double> segmentAt(double parameter, std::size_t count);

}  // namespace drawingdb
