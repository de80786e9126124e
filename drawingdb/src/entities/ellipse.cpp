#include "drawingdb/ellipse.h"

#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/geometry/arc_length.h"
#include "drawingdb/src/geometry/curve_math.h"

using drawingdb::ArcLengths;
using drawingdb::ClassDescription;
using drawingdb::Describer;

OD_DEFINE_CLASS(OdDbEllipse, OdDbCurve)

namespace {
// Files have 6.283185 and the like for the whole turn.
constexpr double kTurnTolerance = 1e-6;
}  // namespace

const ClassDescription* OdDbEllipse::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbEllipse>("ELLIPSE", &OdDbEllipse::describe);
    return &d;
}

void OdDbEllipse::describe(Describer& d) {
    auto& self = d.self<OdDbEllipse>();
    describeCommon(d);
    d.zone("AcDbEllipse");
    d.required().point(10, self.center_);
    d.required().vector(11, self.majorAxis_);
    d.vector(210, self.normal_);
    d.required().real(40, self.ratio_);
    d.required().real(41, self.start_);
    d.required().real(42, self.end_);
}

void OdDbEllipse::afterDecode() { lengths_.reset(); }

OdGeVector3d OdDbEllipse::minorAxis() const { return normal_.normal().crossProduct(majorAxis_) * ratio_; }

void OdDbEllipse::set(const OdGePoint3d& center, const OdGeVector3d& normal, const OdGeVector3d& majorAxis,
                      double radiusRatio, double start, double end) {
    // However small: the angle counts, not the length.
    if (!normal.isPerpendicularTo(majorAxis.normal()) || !(radiusRatio > 0) || radiusRatio > 1 ||
        !std::isfinite(start) || !std::isfinite(end))
        throw OdError(OdResult::invalidInput, "these axes and parameters make no ellipse");
    assertWriteEnabled();
    center_ = center;
    normal_ = normal.normal();
    majorAxis_ = majorAxis;
    ratio_ = radiusRatio;
    start_ = start;
    end_ = end;
    lengths_.reset();
}

bool OdDbEllipse::isClosed() const { return endParam() - startParam() >= drawingdb::kTwoPi - kTurnTolerance; }
double OdDbEllipse::startParam() const { return start_; }
double OdDbEllipse::endParam() const {
    const double sweep = drawingdb::normalizedAngle(end_ - start_);
    // Ends that meet mean the whole ellipse, also where one of them was rounded.
    const bool meets = sweep < kTurnTolerance || drawingdb::kTwoPi - sweep < kTurnTolerance;
    return start_ + (meets ? drawingdb::kTwoPi : sweep);
}

OdGePoint3d OdDbEllipse::pointAtParam(double parameter) const {
    return center_ + majorAxis_ * std::cos(parameter) + minorAxis() * std::sin(parameter);
}
OdGeVector3d OdDbEllipse::firstDerivAtParam(double parameter) const {
    return majorAxis_ * -std::sin(parameter) + minorAxis() * std::cos(parameter);
}

const ArcLengths& OdDbEllipse::lengths() const {
    if (!lengths_)
        lengths_ = std::make_shared<ArcLengths>(breakParams(), [this](double parameter) { return speedAt(parameter); });
    return *lengths_;
}
double OdDbEllipse::distAtParam(double parameter) const {
    return lengths().lengthAt(
        parameter, [this](double t) { return speedAt(t); });
}
double OdDbEllipse::paramAtDist(double distance) const {
    return lengths().parameterAt(
        distance, [this](double t) { return speedAt(t); });
}

bool OdDbEllipse::geomExtents(OdGeExtents3d& extents) const {
    const double start = startParam(), sweep = endParam() - start;
    const OdGeVector3d a = majorAxis_, b = minorAxis();
    extents = OdGeExtents3d(pointAtParam(start), pointAtParam(endParam()));
    // Where the curve turns back along one of the world's axes.
    for (const double angle : {std::atan2(b.x, a.x), std::atan2(b.y, a.y), std::atan2(b.z, a.z)})
        for (const double turning : {angle, angle + drawingdb::kPi})
            if (drawingdb::normalizedAngle(turning - start) < sweep) extents.addPoint(pointAtParam(turning));
    return true;
}

// The axes' images are two radii that need not be at right angles any more. The angle to the new main axis is where
// the image's radius is longest.
OdResult OdDbEllipse::transformBy(const OdGeMatrix3d& matrix) {
    const auto plane = drawingdb::mapPlane(matrix, normal_);
    if (!plane) return OdResult::transformRefused;
    const OdGeVector3d a = matrix * majorAxis_, b = matrix * minorAxis();
    const bool uniform = drawingdb::planarScale(*plane).has_value();
    double turn = 0;
    if (!uniform) turn = std::atan2(2 * a.dotProduct(b), a.lengthSquared() - b.lengthSquared()) / 2;
    const OdGeVector3d major = a * std::cos(turn) + b * std::sin(turn);
    const OdGeVector3d minor = b * std::cos(turn) - a * std::sin(turn);
    const double length = major.length();
    if (!(length > 0) || !std::isfinite(length)) return OdResult::transformRefused;
    assertWriteEnabled();
    if (!isClosed()) {
        start_ = drawingdb::normalizedAngle(start_ - turn);
        end_ = drawingdb::normalizedAngle(end_ - turn);
    }
    // Against the new normal's own minor axis the image may run the other way round.
    if (plane->reversed) {
        const double start = start_;
        start_ = drawingdb::kTwoPi - end_;
        end_ = drawingdb::kTwoPi - start;
    }
    center_.transformBy(matrix);
    if (!uniform) ratio_ = std::min(minor.length() / length, 1.0);
    majorAxis_ = major;
    normal_ = plane->normal;
    lengths_.reset();
    return OdResult::ok;
}
