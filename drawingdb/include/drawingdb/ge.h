// Points, vectors, planes, extents and matrices: plain values in drawing units and radians.
//
// Everything here is a value without invariants. Comparison with == is exact (the database compares what it stores with
// it); comparison of computed geometry goes through isEqualTo and its tolerance. Only sqrt and the four operations are
// used where an angle is not asked for, so that results agree to the last bit on every platform.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "drawingdb/api.h"

/// The distance below which two points, or two vectors, count as the same.
struct OdGeTol {
    double equalPoint = 1e-10;
    double equalVector = 1e-10;
};

struct OdGeContext {
    static constexpr OdGeTol gTol{};
};

namespace drawingdb {

inline constexpr double kPi = 3.14159265358979323846;
inline constexpr double kTwoPi = 6.28318530717958647693;

/// The angle brought into [0, 2 pi). A value that is not finite gives 0.
DRAWINGDB_API double normalizedAngle(double angle);

/// sqrt(x*x + y*y + z*z), also where the squares would leave the range of double.
inline double euclideanLength(double x, double y, double z = 0.0) {
    const double sum = x * x + y * y + z * z;
    if (sum > 1e-280 && sum < 1e300) return std::sqrt(sum);
    const double largest = std::max({std::fabs(x), std::fabs(y), std::fabs(z)});
    if (!(largest > 0.0) || largest > std::numeric_limits<double>::max()) return largest;
    const double sx = x / largest, sy = y / largest, sz = z / largest;
    return largest * std::sqrt(sx * sx + sy * sy + sz * sz);
}

}  // namespace drawingdb

class OdGeMatrix3d;

// ---------------------------------------------------------------------------------------------------------------------
// Two dimensions

struct OdGeVector2d {
    double x = 0.0;
    double y = 0.0;

    static const OdGeVector2d kIdentity, kXAxis, kYAxis;

    constexpr OdGeVector2d() = default;
    constexpr OdGeVector2d(double xx, double yy) : x(xx), y(yy) {}

    constexpr OdGeVector2d& set(double xx, double yy) { return *this = OdGeVector2d(xx, yy); }
    constexpr bool operator==(const OdGeVector2d&) const = default;
    constexpr OdGeVector2d operator-() const { return {-x, -y}; }
    constexpr OdGeVector2d operator+(const OdGeVector2d& v) const { return {x + v.x, y + v.y}; }
    constexpr OdGeVector2d operator-(const OdGeVector2d& v) const { return {x - v.x, y - v.y}; }
    constexpr OdGeVector2d operator*(double s) const { return {x * s, y * s}; }
    constexpr OdGeVector2d operator/(double s) const { return {x / s, y / s}; }
    constexpr OdGeVector2d& operator+=(const OdGeVector2d& v) { return *this = *this + v; }
    constexpr OdGeVector2d& operator-=(const OdGeVector2d& v) { return *this = *this - v; }
    constexpr OdGeVector2d& operator*=(double s) { return *this = *this * s; }
    constexpr OdGeVector2d& operator/=(double s) { return *this = *this / s; }

    constexpr double dotProduct(const OdGeVector2d& v) const { return x * v.x + y * v.y; }
    /// Positive when v lies counter-clockwise of this vector.
    constexpr double crossProduct(const OdGeVector2d& v) const { return x * v.y - y * v.x; }
    constexpr double lengthSquared() const { return dotProduct(*this); }
    double length() const { return drawingdb::euclideanLength(x, y); }
    bool isZeroLength(const OdGeTol& tol = OdGeContext::gTol) const { return length() <= tol.equalVector; }

    /// Makes the length 1; the zero vector stays as it is.
    OdGeVector2d& normalize() { return *this = normal(); }
    OdGeVector2d normal() const {
        const double l = length();
        return l > 0.0 ? *this / l : *this;
    }

    bool isEqualTo(const OdGeVector2d& v, const OdGeTol& tol = OdGeContext::gTol) const {
        return (*this - v).length() <= tol.equalVector;
    }
    /// The same or the opposite direction; false when either has no length.
    bool isParallelTo(const OdGeVector2d& v, const OdGeTol& tol = OdGeContext::gTol) const {
        return pointsAlong(v, tol) || pointsAlong(-v, tol);
    }
    bool pointsAlong(const OdGeVector2d& v, const OdGeTol& tol = OdGeContext::gTol) const {
        return !isZeroLength(tol) && !v.isZeroLength(tol) && normal().isEqualTo(v.normal(), tol);
    }
    bool isPerpendicularTo(const OdGeVector2d& v, const OdGeTol& tol = OdGeContext::gTol) const {
        return !isZeroLength(tol) && !v.isZeroLength(tol) &&
               std::fabs(normal().dotProduct(v.normal())) <= tol.equalVector;
    }

    /// Turned a quarter counter-clockwise, of the same length.
    constexpr OdGeVector2d perpVector() const { return {-y, x}; }
    OdGeVector2d& rotateBy(double angle) {
        const double c = std::cos(angle), s = std::sin(angle);
        return set(c * x - s * y, s * x + c * y);
    }
    /// The direction from the X axis, counter-clockwise, in [0, 2 pi); 0 for the zero vector.
    double angle() const { return drawingdb::normalizedAngle(std::atan2(y, x)); }
    /// In [0, pi]; 0 when either has no length.
    double angleTo(const OdGeVector2d& v) const { return std::atan2(std::fabs(crossProduct(v)), dotProduct(v)); }
    /// Counter-clockwise from this vector to v, in [0, 2 pi).
    double ccwAngleTo(const OdGeVector2d& v) const {
        return drawingdb::normalizedAngle(std::atan2(crossProduct(v), dotProduct(v)));
    }
};

constexpr OdGeVector2d operator*(double s, const OdGeVector2d& v) { return v * s; }

inline constexpr OdGeVector2d OdGeVector2d::kIdentity{0.0, 0.0};
inline constexpr OdGeVector2d OdGeVector2d::kXAxis{1.0, 0.0};
inline constexpr OdGeVector2d OdGeVector2d::kYAxis{0.0, 1.0};

struct OdGePoint2d {
    double x = 0.0;
    double y = 0.0;

    static const OdGePoint2d kOrigin;

    constexpr OdGePoint2d() = default;
    constexpr OdGePoint2d(double xx, double yy) : x(xx), y(yy) {}

    constexpr OdGePoint2d& set(double xx, double yy) { return *this = OdGePoint2d(xx, yy); }
    constexpr OdGeVector2d asVector() const { return {x, y}; }
    constexpr bool operator==(const OdGePoint2d&) const = default;
    constexpr OdGePoint2d operator+(const OdGeVector2d& v) const { return {x + v.x, y + v.y}; }
    constexpr OdGePoint2d operator-(const OdGeVector2d& v) const { return {x - v.x, y - v.y}; }
    constexpr OdGeVector2d operator-(const OdGePoint2d& p) const { return {x - p.x, y - p.y}; }
    constexpr OdGePoint2d& operator+=(const OdGeVector2d& v) { return *this = *this + v; }
    constexpr OdGePoint2d& operator-=(const OdGeVector2d& v) { return *this = *this - v; }
    /// The point's coordinates times s: a scaling about the origin.
    constexpr OdGePoint2d operator*(double s) const { return {x * s, y * s}; }

    double distanceTo(const OdGePoint2d& p) const { return (p - *this).length(); }
    bool isEqualTo(const OdGePoint2d& p, const OdGeTol& tol = OdGeContext::gTol) const {
        return distanceTo(p) <= tol.equalPoint;
    }
    OdGePoint2d& rotateBy(double angle, const OdGePoint2d& about = kOrigin) {
        return *this = about + (*this - about).rotateBy(angle);
    }
};

inline constexpr OdGePoint2d OdGePoint2d::kOrigin{0.0, 0.0};

// ---------------------------------------------------------------------------------------------------------------------
// Three dimensions

struct OdGeVector3d {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    static const OdGeVector3d kIdentity, kXAxis, kYAxis, kZAxis;

    constexpr OdGeVector3d() = default;
    constexpr OdGeVector3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}

    constexpr OdGeVector3d& set(double xx, double yy, double zz) { return *this = OdGeVector3d(xx, yy, zz); }
    constexpr OdGeVector2d xy() const { return {x, y}; }
    constexpr bool operator==(const OdGeVector3d&) const = default;
    constexpr OdGeVector3d operator-() const { return {-x, -y, -z}; }
    constexpr OdGeVector3d operator+(const OdGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
    constexpr OdGeVector3d operator-(const OdGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
    constexpr OdGeVector3d operator*(double s) const { return {x * s, y * s, z * s}; }
    constexpr OdGeVector3d operator/(double s) const { return {x / s, y / s, z / s}; }
    constexpr OdGeVector3d& operator+=(const OdGeVector3d& v) { return *this = *this + v; }
    constexpr OdGeVector3d& operator-=(const OdGeVector3d& v) { return *this = *this - v; }
    constexpr OdGeVector3d& operator*=(double s) { return *this = *this * s; }
    constexpr OdGeVector3d& operator/=(double s) { return *this = *this / s; }

    constexpr double dotProduct(const OdGeVector3d& v) const { return x * v.x + y * v.y + z * v.z; }
    constexpr OdGeVector3d crossProduct(const OdGeVector3d& v) const {
        return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
    }
    constexpr double lengthSquared() const { return dotProduct(*this); }
    double length() const { return drawingdb::euclideanLength(x, y, z); }
    bool isZeroLength(const OdGeTol& tol = OdGeContext::gTol) const { return length() <= tol.equalVector; }

    /// Makes the length 1; the zero vector stays as it is.
    OdGeVector3d& normalize() { return *this = normal(); }
    OdGeVector3d normal() const {
        const double l = length();
        return l > 0.0 ? *this / l : *this;
    }

    bool isEqualTo(const OdGeVector3d& v, const OdGeTol& tol = OdGeContext::gTol) const {
        return (*this - v).length() <= tol.equalVector;
    }
    /// The same or the opposite direction; false when either has no length.
    bool isParallelTo(const OdGeVector3d& v, const OdGeTol& tol = OdGeContext::gTol) const {
        return pointsAlong(v, tol) || pointsAlong(-v, tol);
    }
    bool pointsAlong(const OdGeVector3d& v, const OdGeTol& tol = OdGeContext::gTol) const {
        return !isZeroLength(tol) && !v.isZeroLength(tol) && normal().isEqualTo(v.normal(), tol);
    }
    bool isPerpendicularTo(const OdGeVector3d& v, const OdGeTol& tol = OdGeContext::gTol) const {
        return !isZeroLength(tol) && !v.isZeroLength(tol) &&
               std::fabs(normal().dotProduct(v.normal())) <= tol.equalVector;
    }

    /// A unit vector at right angles to this one: the X axis that planeToWorld gives this vector as a normal.
    DRAWINGDB_API OdGeVector3d perpVector() const;
    /// Turns by the angle about the axis, counter-clockwise seen against the axis. An axis without length turns
    /// nothing.
    DRAWINGDB_API OdGeVector3d& rotateBy(double angle, const OdGeVector3d& axis);
    /// In [0, pi]; 0 when either has no length.
    double angleTo(const OdGeVector3d& v) const { return std::atan2(crossProduct(v).length(), dotProduct(v)); }
    /// From this vector to v, counter-clockwise seen against the reference axis, in [0, 2 pi).
    DRAWINGDB_API double angleTo(const OdGeVector3d& v, const OdGeVector3d& reference) const;
    DRAWINGDB_API OdGeVector3d& transformBy(const OdGeMatrix3d& matrix);
};

constexpr OdGeVector3d operator*(double s, const OdGeVector3d& v) { return v * s; }

inline constexpr OdGeVector3d OdGeVector3d::kIdentity{0.0, 0.0, 0.0};
inline constexpr OdGeVector3d OdGeVector3d::kXAxis{1.0, 0.0, 0.0};
inline constexpr OdGeVector3d OdGeVector3d::kYAxis{0.0, 1.0, 0.0};
inline constexpr OdGeVector3d OdGeVector3d::kZAxis{0.0, 0.0, 1.0};

struct OdGePoint3d {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    static const OdGePoint3d kOrigin;

    constexpr OdGePoint3d() = default;
    constexpr OdGePoint3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}

    constexpr OdGePoint3d& set(double xx, double yy, double zz) { return *this = OdGePoint3d(xx, yy, zz); }
    constexpr OdGeVector3d asVector() const { return {x, y, z}; }
    constexpr OdGePoint2d xy() const { return {x, y}; }
    constexpr bool operator==(const OdGePoint3d&) const = default;
    constexpr OdGePoint3d operator+(const OdGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
    constexpr OdGePoint3d operator-(const OdGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
    constexpr OdGeVector3d operator-(const OdGePoint3d& p) const { return {x - p.x, y - p.y, z - p.z}; }
    constexpr OdGePoint3d& operator+=(const OdGeVector3d& v) { return *this = *this + v; }
    constexpr OdGePoint3d& operator-=(const OdGeVector3d& v) { return *this = *this - v; }
    /// The point's coordinates times s: a scaling about the origin.
    constexpr OdGePoint3d operator*(double s) const { return {x * s, y * s, z * s}; }

    double distanceTo(const OdGePoint3d& p) const { return (p - *this).length(); }
    bool isEqualTo(const OdGePoint3d& p, const OdGeTol& tol = OdGeContext::gTol) const {
        return distanceTo(p) <= tol.equalPoint;
    }
    OdGePoint3d& rotateBy(double angle, const OdGeVector3d& axis, const OdGePoint3d& about = kOrigin) {
        OdGeVector3d offset = *this - about;
        return *this = about + offset.rotateBy(angle, axis);
    }
    DRAWINGDB_API OdGePoint3d& transformBy(const OdGeMatrix3d& matrix);
};

inline constexpr OdGePoint3d OdGePoint3d::kOrigin{0.0, 0.0, 0.0};

/// Scale factors along three axes.
struct OdGeScale3d {
    double sx = 1.0;
    double sy = 1.0;
    double sz = 1.0;

    static const OdGeScale3d kIdentity;

    constexpr OdGeScale3d() = default;
    constexpr explicit OdGeScale3d(double factor) : sx(factor), sy(factor), sz(factor) {}
    constexpr OdGeScale3d(double x, double y, double z) : sx(x), sy(y), sz(z) {}

    constexpr OdGeScale3d& set(double x, double y, double z) { return *this = OdGeScale3d(x, y, z); }
    constexpr bool operator==(const OdGeScale3d&) const = default;
    constexpr OdGeScale3d operator*(double s) const { return {sx * s, sy * s, sz * s}; }
    constexpr OdGeScale3d operator*(const OdGeScale3d& s) const { return {sx * s.sx, sy * s.sy, sz * s.sz}; }
    bool isEqualTo(const OdGeScale3d& s, const OdGeTol& tol = OdGeContext::gTol) const {
        return drawingdb::euclideanLength(sx - s.sx, sy - s.sy, sz - s.sz) <= tol.equalVector;
    }
    /// The three factors have the same size, whatever their signs.
    bool isProportional(const OdGeTol& tol = OdGeContext::gTol) const {
        const double largest = std::max({std::fabs(sx), std::fabs(sy), std::fabs(sz)});
        const double smallest = std::min({std::fabs(sx), std::fabs(sy), std::fabs(sz)});
        return largest - smallest <= tol.equalVector * std::max(largest, 1.0);
    }
};

inline constexpr OdGeScale3d OdGeScale3d::kIdentity{1.0, 1.0, 1.0};

/// A plane through a point; the normal need not be of unit length.
struct OdGePlane {
    OdGePoint3d origin;
    OdGeVector3d normal = OdGeVector3d::kZAxis;

    constexpr OdGePlane() = default;
    constexpr OdGePlane(const OdGePoint3d& o, const OdGeVector3d& n) : origin(o), normal(n) {}

    /// Positive on the side the normal points to.
    double signedDistanceTo(const OdGePoint3d& p) const { return (p - origin).dotProduct(normal.normal()); }
    /// The foot of the perpendicular from p.
    OdGePoint3d projected(const OdGePoint3d& p) const { return p - normal.normal() * signedDistanceTo(p); }
    bool isOn(const OdGePoint3d& p, const OdGeTol& tol = OdGeContext::gTol) const {
        return std::fabs(signedDistanceTo(p)) <= tol.equalPoint;
    }
};

/// An affine map. entry[row][column]; points are columns, so the translation stands in entry[0..2][3], and a * b maps
/// by b first. The last row is always 0 0 0 1. A new matrix is the identity.
class OdGeMatrix3d {
  public:
    double entry[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};

    static const OdGeMatrix3d kIdentity;

    constexpr OdGeMatrix3d() = default;

    constexpr bool operator==(const OdGeMatrix3d&) const = default;

    static constexpr OdGeMatrix3d translation(const OdGeVector3d& v) {
        return coordSystem({v.x, v.y, v.z}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
    }
    /// Counter-clockwise seen against the axis, which need not be of unit length; one without length gives the
    /// identity.
    DRAWINGDB_API static OdGeMatrix3d rotation(double angle, const OdGeVector3d& axis,
                                               const OdGePoint3d& center = OdGePoint3d::kOrigin);
    static constexpr OdGeMatrix3d scaling(const OdGeScale3d& s, const OdGePoint3d& center = OdGePoint3d::kOrigin) {
        return coordSystem({center.x - s.sx * center.x, center.y - s.sy * center.y, center.z - s.sz * center.z},
                           {s.sx, 0, 0}, {0, s.sy, 0}, {0, 0, s.sz});
    }
    static constexpr OdGeMatrix3d scaling(double s, const OdGePoint3d& center = OdGePoint3d::kOrigin) {
        return scaling(OdGeScale3d(s), center);
    }
    /// The reflection in a plane.
    DRAWINGDB_API static OdGeMatrix3d mirroring(const OdGePlane& plane);
    /// The point reflection.
    static constexpr OdGeMatrix3d mirroring(const OdGePoint3d& center) { return scaling(-1.0, center); }
    /// The half turn about a line.
    static OdGeMatrix3d mirroring(const OdGePoint3d& onLine, const OdGeVector3d& direction) {
        return rotation(drawingdb::kPi, direction, onLine);
    }

    /// From the object coordinates of an entity with this extrusion direction to the world. The X axis follows the
    /// arbitrary axis rule of DXF: the world's Y axis times the normal where the normal is within 1/64 of the world's Z
    /// axis in both x and y, else the world's Z axis times the normal. A normal without length counts as the Z axis.
    DRAWINGDB_API static OdGeMatrix3d planeToWorld(const OdGeVector3d& normal);
    static OdGeMatrix3d planeToWorld(const OdGePlane& plane) {
        OdGeMatrix3d m = planeToWorld(plane.normal);
        m.setOffset(plane.origin.asVector());
        return m;
    }
    DRAWINGDB_API static OdGeMatrix3d worldToPlane(const OdGeVector3d& normal);
    DRAWINGDB_API static OdGeMatrix3d worldToPlane(const OdGePlane& plane);

    /// The map that takes the world's origin and axes to these.
    static constexpr OdGeMatrix3d coordSystem(const OdGePoint3d& o, const OdGeVector3d& x, const OdGeVector3d& y,
                                              const OdGeVector3d& z) {
        OdGeMatrix3d m;
        m.setColumn(0, x);
        m.setColumn(1, y);
        m.setColumn(2, z);
        m.setOffset(o.asVector());
        return m;
    }
    constexpr OdGePoint3d origin() const { return {entry[0][3], entry[1][3], entry[2][3]}; }
    constexpr OdGeVector3d xAxis() const { return column(0); }
    constexpr OdGeVector3d yAxis() const { return column(1); }
    constexpr OdGeVector3d zAxis() const { return column(2); }
    constexpr OdGeVector3d offset() const { return column(3); }
    constexpr OdGeMatrix3d& setOffset(const OdGeVector3d& v) { return setColumn(3, v); }

    constexpr OdGeMatrix3d operator*(const OdGeMatrix3d& b) const {
        OdGeMatrix3d m;
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 4; ++c)
                m.entry[r][c] = entry[r][0] * b.entry[0][c] + entry[r][1] * b.entry[1][c] +
                                entry[r][2] * b.entry[2][c] + entry[r][3] * b.entry[3][c];
        return m;
    }
    constexpr OdGeMatrix3d& operator*=(const OdGeMatrix3d& b) { return *this = *this * b; }

    constexpr OdGePoint3d operator*(const OdGePoint3d& p) const {
        return {entry[0][0] * p.x + entry[0][1] * p.y + entry[0][2] * p.z + entry[0][3],
                entry[1][0] * p.x + entry[1][1] * p.y + entry[1][2] * p.z + entry[1][3],
                entry[2][0] * p.x + entry[2][1] * p.y + entry[2][2] * p.z + entry[2][3]};
    }
    constexpr OdGeVector3d operator*(const OdGeVector3d& v) const {
        return {entry[0][0] * v.x + entry[0][1] * v.y + entry[0][2] * v.z,
                entry[1][0] * v.x + entry[1][1] * v.y + entry[1][2] * v.z,
                entry[2][0] * v.x + entry[2][1] * v.y + entry[2][2] * v.z};
    }
    /// The unit normal of the mapped plane, on the mapped side. A plane that is squeezed to less gives the zero vector.
    DRAWINGDB_API OdGeVector3d transformNormal(const OdGeVector3d& normal) const;

    constexpr double det() const { return xAxis().dotProduct(yAxis().crossProduct(zAxis())); }
    /// The axes lie in a plane: judged by their directions, not by how small they are.
    DRAWINGDB_API bool isSingular(const OdGeTol& tol = OdGeContext::gTol) const;
    /// Throws std::domain_error when there is none.
    DRAWINGDB_API OdGeMatrix3d inverse() const;
    OdGeMatrix3d& invert() { return *this = inverse(); }
    /// The common length of the axes when they are at right angles and of one length (mirrored or not), else nothing.
    DRAWINGDB_API std::optional<double> isUniScaledOrtho(const OdGeTol& tol = OdGeContext::gTol) const;
    /// The largest length among the axes.
    double scale() const { return std::max({xAxis().length(), yAxis().length(), zAxis().length()}); }
    /// Every entry differs by no more than the vector tolerance (the translation: the point tolerance).
    DRAWINGDB_API bool isEqualTo(const OdGeMatrix3d& m, const OdGeTol& tol = OdGeContext::gTol) const;

  private:
    constexpr OdGeVector3d column(int c) const { return {entry[0][c], entry[1][c], entry[2][c]}; }
    constexpr OdGeMatrix3d& setColumn(int c, const OdGeVector3d& v) {
        entry[0][c] = v.x;
        entry[1][c] = v.y;
        entry[2][c] = v.z;
        return *this;
    }
};

inline constexpr OdGeMatrix3d OdGeMatrix3d::kIdentity{};

/// An axis-parallel box; a new one is empty and takes the first point added to it.
class OdGeExtents3d {
  public:
    constexpr OdGeExtents3d() = default;
    /// The box between two corners given in any order.
    constexpr OdGeExtents3d(const OdGePoint3d& a, const OdGePoint3d& b) {
        addPoint(a);
        addPoint(b);
    }

    constexpr const OdGePoint3d& minPoint() const { return min_; }
    constexpr const OdGePoint3d& maxPoint() const { return max_; }
    /// False while the box is empty.
    constexpr bool isValid() const { return min_.x <= max_.x && min_.y <= max_.y && min_.z <= max_.z; }
    constexpr bool operator==(const OdGeExtents3d&) const = default;

    constexpr OdGeExtents3d& addPoint(const OdGePoint3d& p) {
        min_.set(std::min(min_.x, p.x), std::min(min_.y, p.y), std::min(min_.z, p.z));
        max_.set(std::max(max_.x, p.x), std::max(max_.y, p.y), std::max(max_.z, p.z));
        return *this;
    }
    constexpr OdGeExtents3d& addExtents(const OdGeExtents3d& e) {
        return e.isValid() ? addPoint(e.min_).addPoint(e.max_) : *this;
    }
    /// Grows by the distance on all sides; an empty box stays empty.
    constexpr OdGeExtents3d& grow(double distance) {
        if (isValid()) {
            const OdGeVector3d d(distance, distance, distance);
            min_ -= d;
            max_ += d;
        }
        return *this;
    }
    /// Becomes the box around its mapped corners; an empty box stays empty.
    DRAWINGDB_API OdGeExtents3d& transformBy(const OdGeMatrix3d& matrix);

    constexpr OdGePoint3d center() const { return min_ + diagonal() * 0.5; }
    constexpr OdGeVector3d diagonal() const { return max_ - min_; }
    constexpr bool contains(const OdGePoint3d& p) const {
        return min_.x <= p.x && p.x <= max_.x && min_.y <= p.y && p.y <= max_.y && min_.z <= p.z && p.z <= max_.z;
    }
    constexpr bool contains(const OdGeExtents3d& e) const {
        return e.isValid() && contains(e.min_) && contains(e.max_);
    }
    /// They share at least a point.
    constexpr bool intersects(const OdGeExtents3d& e) const {
        return isValid() && e.isValid() && min_.x <= e.max_.x && e.min_.x <= max_.x && min_.y <= e.max_.y &&
               e.min_.y <= max_.y && min_.z <= e.max_.z && e.min_.z <= max_.z;
    }

  private:
    static constexpr double kFar = std::numeric_limits<double>::max();
    OdGePoint3d min_{kFar, kFar, kFar};
    OdGePoint3d max_{-kFar, -kFar, -kFar};
};
