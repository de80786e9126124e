#include "drawingdb/ge.h"

#include <stdexcept>

#include "drawingdb/src/geometry/angles.h"

double drawingdb::normalizedAngle(double angle) {
    if (!std::isfinite(angle)) return 0.0;
    double turned = std::fmod(angle, kTwoPi);
    if (turned < 0.0) turned += kTwoPi;
    // A tiny negative angle rounds up to the whole turn. Adding zero makes a negative zero positive.
    return turned >= kTwoPi ? 0.0 : turned + 0.0;
}

OdGeVector3d OdGeVector3d::perpVector() const { return OdGeMatrix3d::planeToWorld(*this).xAxis(); }

OdGeVector3d& OdGeVector3d::rotateBy(double angle, const OdGeVector3d& axis) {
    return *this = OdGeMatrix3d::rotation(angle, axis) * *this;
}

double OdGeVector3d::angleTo(const OdGeVector3d& v, const OdGeVector3d& reference) const {
    const double angle = angleTo(v);
    return crossProduct(v).dotProduct(reference) < 0.0 ? drawingdb::normalizedAngle(-angle) : angle;
}

OdGeVector3d& OdGeVector3d::transformBy(const OdGeMatrix3d& matrix) { return *this = matrix * *this; }

OdGePoint3d& OdGePoint3d::transformBy(const OdGeMatrix3d& matrix) { return *this = matrix * *this; }

OdGeMatrix3d OdGeMatrix3d::rotation(double angle, const OdGeVector3d& axis, const OdGePoint3d& center) {
    const OdGeVector3d k = axis.normal();
    if (k == OdGeVector3d::kIdentity) return kIdentity;
    const OdGeVector2d turn = drawingdb::directionOf(angle);
    const auto turned = [&](const OdGeVector3d& v) {
        return v * turn.x + k.crossProduct(v) * turn.y + k * (k.dotProduct(v) * (1.0 - turn.x));
    };
    const OdGePoint3d origin = center - turned(center.asVector());
    return coordSystem(origin, turned(OdGeVector3d::kXAxis), turned(OdGeVector3d::kYAxis),
                       turned(OdGeVector3d::kZAxis));
}

OdGeMatrix3d OdGeMatrix3d::mirroring(const OdGePlane& plane) {
    const OdGeVector3d n = plane.normal.normal();
    const auto mirrored = [&](const OdGeVector3d& v) { return v - n * (2.0 * v.dotProduct(n)); };
    const OdGePoint3d origin = OdGePoint3d::kOrigin + n * (2.0 * plane.origin.asVector().dotProduct(n));
    return coordSystem(origin, mirrored(OdGeVector3d::kXAxis), mirrored(OdGeVector3d::kYAxis),
                       mirrored(OdGeVector3d::kZAxis));
}

OdGeMatrix3d OdGeMatrix3d::planeToWorld(const OdGeVector3d& normal) {
    constexpr double kNearZAxis = 1.0 / 64.0;
    const OdGeVector3d z = normal.normal();
    if (z == OdGeVector3d::kIdentity) return kIdentity;
    const bool nearZAxis = std::fabs(z.x) < kNearZAxis && std::fabs(z.y) < kNearZAxis;
    const OdGeVector3d x = (nearZAxis ? OdGeVector3d::kYAxis : OdGeVector3d::kZAxis).crossProduct(z).normal();
    return coordSystem(OdGePoint3d::kOrigin, x, z.crossProduct(x).normal(), z);
}

OdGeMatrix3d OdGeMatrix3d::worldToPlane(const OdGeVector3d& normal) {
    return worldToPlane(OdGePlane(OdGePoint3d::kOrigin, normal));
}

OdGeMatrix3d OdGeMatrix3d::worldToPlane(const OdGePlane& plane) {
    // The axes are unit vectors at right angles: the transposed matrix turns back, without the rounding of an
    // inversion.
    const OdGeMatrix3d m = planeToWorld(plane.normal);
    OdGeMatrix3d back;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c) back.entry[r][c] = m.entry[c][r];
    back.setOffset(-(back * plane.origin.asVector()));
    return back;
}

OdGeVector3d OdGeMatrix3d::transformNormal(const OdGeVector3d& normal) const {
    // The transposed inverse times the determinant, which exists for singular matrices too.
    const OdGeVector3d x = xAxis(), y = yAxis(), z = zAxis();
    const OdGeVector3d mapped =
        y.crossProduct(z) * normal.x + z.crossProduct(x) * normal.y + x.crossProduct(y) * normal.z;
    return det() < 0.0 ? -mapped.normal() : mapped.normal();
}

bool OdGeMatrix3d::isSingular(const OdGeTol& tol) const {
    const double directions = xAxis().normal().dotProduct(yAxis().normal().crossProduct(zAxis().normal()));
    return !(std::fabs(directions) > tol.equalVector);
}

OdGeMatrix3d OdGeMatrix3d::inverse() const {
    const double d = det();
    if (isSingular() || d == 0.0 || !std::isfinite(d)) throw std::domain_error("a singular matrix has no inverse");
    const OdGeVector3d x = xAxis(), y = yAxis(), z = zAxis();
    const OdGeVector3d rows[3] = {y.crossProduct(z) / d, z.crossProduct(x) / d, x.crossProduct(y) / d};
    OdGeMatrix3d m;
    for (int r = 0; r < 3; ++r) {
        m.entry[r][0] = rows[r].x;
        m.entry[r][1] = rows[r].y;
        m.entry[r][2] = rows[r].z;
        m.entry[r][3] = -rows[r].dotProduct(offset());
    }
    return m;
}

std::optional<double> OdGeMatrix3d::isUniScaledOrtho(const OdGeTol& tol) const {
    const double lengths[3] = {xAxis().length(), yAxis().length(), zAxis().length()};
    const double longest = scale();
    for (const double length : lengths)
        if (!(length > 0.0) || longest - length > tol.equalVector * longest) return std::nullopt;
    const OdGeVector3d x = xAxis().normal(), y = yAxis().normal(), z = zAxis().normal();
    for (const double cosine : {x.dotProduct(y), y.dotProduct(z), z.dotProduct(x)})
        if (std::fabs(cosine) > tol.equalVector) return std::nullopt;
    return lengths[0];
}

bool OdGeMatrix3d::isEqualTo(const OdGeMatrix3d& m, const OdGeTol& tol) const {
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 4; ++c)
            if (!(std::fabs(entry[r][c] - m.entry[r][c]) <= (c == 3 ? tol.equalPoint : tol.equalVector))) return false;
    return true;
}

OdGeExtents3d& OdGeExtents3d::transformBy(const OdGeMatrix3d& matrix) {
    if (!isValid()) return *this;
    OdGeExtents3d mapped;
    for (const double x : {min_.x, max_.x})
        for (const double y : {min_.y, max_.y})
            for (const double z : {min_.z, max_.z}) mapped.addPoint(matrix * OdGePoint3d(x, y, z));
    return *this = mapped;
}
