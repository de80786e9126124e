#include "drawingdb/src/entities/carried_transform.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "drawingdb/src/entities/group_list.h"
#include "drawingdb/src/geometry/curve_math.h"

namespace drawingdb {
namespace {

bool isOneOf(int code, std::initializer_list<int> codes) {
    return std::find(codes.begin(), codes.end(), code) != codes.end();
}

// ---------------------------------------------------------------------------------------------------------------------
// Points and vectors in world coordinates

bool transformInWorld(GroupList& groups, const OdGeMatrix3d& matrix, std::initializer_list<int> points,
                      std::initializer_list<int> vectors) {
    for (std::size_t i = 0; i < groups.end(); ++i)
        if (isOneOf(groups.code(i), points))
            groups.setPoint(i, matrix * groups.point(i));
        else if (isOneOf(groups.code(i), vectors))
            groups.setPoint(i, OdGePoint3d() + matrix * groups.point(i).asVector());
    return true;
}

// What keeps its form. Directions keep their length; `lengths` are those groups behind the marker of the last zone.
bool transformAlike(GroupList& groups, const OdGeMatrix3d& matrix, std::initializer_list<int> points,
                    std::initializer_list<int> directions, std::initializer_list<int> lengths, bool scales = true) {
    const auto scale = equalScale(matrix);
    if (!scale || (*scale != 1 && !scales)) return false;
    transformInWorld(groups, matrix, points, directions);
    std::size_t lastZone = 0;
    for (std::size_t i = 0; i < groups.end(); ++i)
        if (groups.code(i) == 100) lastZone = i;
    for (std::size_t i = 0; i < groups.end(); ++i) {
        if (isOneOf(groups.code(i), directions)) groups.setPoint(i, groups.point(i) * (1 / *scale));
        if (i > lastZone && isOneOf(groups.code(i), lengths)) groups.setReal(i, groups.real(i) * *scale);
    }
    return true;
}

// Something drawn by another file at a point of a plane, turned by 50 and sized by `sizes`, which are 1 when they are
// left out.
bool transformPlaced(GroupList& groups, const OdGeMatrix3d& matrix, std::initializer_list<int> sizes) {
    const OdGeVector3d normal = groups.normal();
    const auto plane = mapPlane(matrix, normal);
    const auto scale = plane ? planarScale(*plane) : std::nullopt;
    if (!scale || plane->reversed) return false;
    groups.setOrAdd(50, mapAngle(*plane, groups.realOr(50, 0)), 0, groups.end());
    if (const std::size_t place = groups.find(10); place < groups.end())
        groups.setPoint(place, plane->map * groups.point(place));
    for (const int size : sizes) groups.setOrAdd(size, groups.realOr(size, 1) * *scale, 1, groups.end());
    if (const std::size_t thickness = groups.find(39); thickness < groups.end())
        groups.setReal(thickness, mapThickness(matrix, normal, groups.real(thickness), plane->normal));
    groups.setNormal(plane->normal, groups.end());
    return true;
}

// Corners of meshes; what numbers them has a point too, which says nothing.
bool transformVertex(GroupList& groups, const OdGeMatrix3d& matrix) {
    constexpr std::int64_t kCorner = 64, kFaceOrCorner = 128;
    const std::size_t flags = groups.find(70);
    const std::int64_t kind = flags < groups.end() ? groups.integer(flags) : 0;
    return (kind & (kCorner | kFaceOrCorner)) == kFaceOrCorner || transformInWorld(groups, matrix, {10}, {});
}

// ---------------------------------------------------------------------------------------------------------------------
// Four corners in the plane of a normal

bool transformSolid(GroupList& groups, const OdGeMatrix3d& matrix) {
    const OdGeVector3d normal = groups.normal();
    const auto plane = mapPlane(matrix, normal);
    if (!plane) return false;
    for (std::size_t i = 0; i < groups.end(); ++i)
        if (isOneOf(groups.code(i), {10, 11, 12, 13})) groups.setPoint(i, plane->map * groups.point(i));
    if (const std::size_t thickness = groups.find(39); thickness < groups.end())
        groups.setReal(thickness, mapThickness(matrix, normal, groups.real(thickness), plane->normal));
    groups.setNormal(plane->normal, groups.end());
    return true;
}

// ---------------------------------------------------------------------------------------------------------------------
// Hatches. Their paths and patterns lie in the plane of the normal, at an elevation of their own:
//
//   10 20 30 elevation   210 normal   70 solid   91 paths
//   92 path: bit 2 a polyline: 72 73 93   (10 20  42 bulge)...
//            else  93 edges, each begun by its 72:
//              1 line 10 11    2 arc 10 40 radius 50 51 73    3 ellipse 10 11 major axis 40 50 51 73    4 spline 10 11
//              12 13
//      97 and the objects it was made from
//   75   52 angle  41 scale   78 pattern lines: 53 angle  43 44 point  45 46 step  49 dashes
//   98 seeds: 10 20

// An arc of an ellipse, by the centre, the axes and the angles between which it runs, as an edge of the fourth kind: a
// rational spline of degree 2, which takes any matrix.
void writeSplineEdge(GroupWriter& writer, const OdGePoint2d& center, const OdGeVector2d& x, const OdGeVector2d& y,
                     double start, double end) {
    const int spans = std::max(1, static_cast<int>(std::ceil(std::fabs(end - start) / (drawingdb::kPi / 2) - 1e-9)));
    const double step = (end - start) / spans, weight = std::cos(step / 2);
    writer.integer(72, 4);
    writer.integer(94, 2);  // degree
    writer.integer(73, 1);  // rational
    writer.integer(74, 0);  // not periodic
    writer.integer(95, 2 * spans + 4);
    writer.integer(96, 2 * spans + 1);
    for (int knot = 0; knot <= spans; ++knot)
        for (int i = knot == 0 || knot == spans ? 3 : 2; i > 0; --i) writer.real(40, knot);
    for (int i = 0; i <= 2 * spans; ++i) {
        // Every second one lies where the tangents of its neighbours meet.
        const double angle = start + step * i / 2, reach = i % 2 == 0 ? 1 : 1 / weight;
        const OdGePoint2d point = center + x * (std::cos(angle) * reach) + y * (std::sin(angle) * reach);
        writer.real(10, point.x);
        writer.real(20, point.y);
        writer.real(42, i % 2 == 0 ? 1 : weight);
    }
    constexpr int kFirstVersionWithFitPoints = version::v2010;
    if (writer.format().version >= kFirstVersionWithFitPoints) writer.integer(97, 0);
}

// The hatch with its arcs as splines. It belongs to its boundary no longer, which is something else as well then.
class HatchWithoutArcs {
  public:
    HatchWithoutArcs(const GroupList& groups, const FileFormat& format) : groups_(groups), writer_(out_, format) {}

    std::string bytes() {
        const std::size_t paths = groups_.find(91), style = groups_.find(75, paths);
        for (std::size_t i = 0; i <= paths && i < groups_.size(); ++i)
            groups_.code(i) == 71 && i < paths ? writer_.integer(71, 0) : writer_.raw(groups_.bytes(i));
        for (std::size_t begin = groups_.find(92, paths); begin < style;) {
            const std::size_t end = std::min(groups_.find(92, begin + 1), style);
            groups_.integer(begin) & kPolyline ? polyline(begin, end) : edges(begin, end);
            writer_.integer(97, 0);
            begin = end;
        }
        for (std::size_t i = style; i < groups_.size(); ++i) writer_.raw(groups_.bytes(i));
        return out_;
    }

  private:
    static constexpr std::int64_t kPolyline = 2;

    void polyline(std::size_t begin, std::size_t end) {
        std::vector<BulgeSegment> segments;
        for (std::size_t i = begin; i < end && groups_.code(i) != 97; ++i) {
            if (groups_.code(i) == 10) segments.push_back({groups_.point(i).xy(), {}, 0});
            if (groups_.code(i) == 42 && !segments.empty()) segments.back().bulge = groups_.real(i);
        }
        for (std::size_t i = 0; i < segments.size(); ++i) segments[i].end = segments[(i + 1) % segments.size()].start;
        // Polylines often end where they begin.
        std::erase_if(segments, [](const BulgeSegment& s) { return (s.end - s.start).isZeroLength(); });
        writer_.integer(92, groups_.integer(begin) & ~kPolyline);
        writer_.integer(93, static_cast<std::int64_t>(segments.size()));
        for (const BulgeSegment& segment : segments) edge(segment);
    }
    void edge(const BulgeSegment& segment) {
        if (const auto center = segment.center()) {
            const OdGeVector2d x = segment.start - *center;
            return writeSplineEdge(writer_, *center, x, x.perpVector(), 0, segment.angle());
        }
        writer_.integer(72, 1);
        for (const auto& [code, point] : {std::pair(10, segment.start), std::pair(11, segment.end)}) {
            writer_.real(code, point.x);
            writer_.real(code + 10, point.y);
        }
    }

    void edges(std::size_t begin, std::size_t end) {
        std::size_t at = begin, next = 0;
        for (; at < end && groups_.code(at) != 72; ++at) writer_.raw(groups_.bytes(at));
        for (; at < end && groups_.code(at) == 72; at = next) {
            const std::int64_t kind = groups_.integer(at);
            for (next = at + 1; next < end && groups_.code(next) != 72 && !isSourceCount(next); ++next) {
            }
            if (kind == 2 || kind == 3)
                arc(at, next, kind == 2);
            else
                for (std::size_t i = at; i < next; ++i) writer_.raw(groups_.bytes(i));
        }
    }
    // 97 counts the fit points of a spline, which follow it, too.
    bool isSourceCount(std::size_t i) const {
        return groups_.code(i) == 97 && !isOneOf(groups_.code(i + 1), {11, 12, 72, 97});
    }
    void arc(std::size_t begin, std::size_t end, bool circular) {
        const auto real = [&](int code) {
            const std::size_t i = groups_.find(code, begin, end);
            return i < end ? groups_.real(i) : 0;
        };
        const std::size_t center = groups_.find(10, begin, end), sense = groups_.find(73, begin, end),
                          major = groups_.find(11, begin, end);
        const double turn = sense < end && groups_.integer(sense) == 0 ? -1 : 1;
        OdGeVector2d x(real(40), 0);
        if (!circular) x = major < end ? groups_.point(major).xy() - OdGePoint2d() : OdGeVector2d();
        const OdGeVector2d y = x.perpVector() * (circular ? 1 : real(40));
        double start = real(50) * kDegree, sweep = real(51) * kDegree - start;
        if (sweep <= 0) sweep += drawingdb::kTwoPi;
        // Clockwise arcs have their angles counted clockwise too.
        writeSplineEdge(writer_, center < end ? groups_.point(center).xy() : OdGePoint2d(), x, y, turn * start,
                        turn * (start + std::min(sweep, drawingdb::kTwoPi)));
    }

    const GroupList& groups_;
    std::string out_;
    GroupWriter writer_;
};

class HatchTransform {
  public:
    HatchTransform(GroupList& groups, const OdGeMatrix3d& matrix)
        : groups_(groups), plane_(mapPlane(matrix, groups.normal())) {
        if (plane_) uniform_ = planarScale(*plane_);
    }

    bool run() {
        const std::size_t elevation = groups_.find(10), paths = groups_.find(91);
        if (!plane_ || paths >= groups_.end() || elevation > paths) return false;
        elevation_ = groups_.point(elevation).z;
        std::size_t at = paths + 1;
        while (at < groups_.end() && groups_.code(at) != 75)
            if (!(groups_.code(at) == 92 ? path(at) : (++at, true))) return false;
        pattern(at);
        groups_.setPoint(elevation, {0, 0, (plane_->map * OdGePoint3d(0, 0, elevation_)).z});
        groups_.setNormal(plane_->normal, groups_.end());
        return true;
    }

  private:
    void mapPoint(std::size_t at) {
        const OdGePoint3d p = groups_.point(at);
        groups_.setPoint(at, plane_->map * OdGePoint3d(p.x, p.y, elevation_));
    }
    OdGeVector2d mapped(const OdGeVector2d& v) const { return (plane_->map * OdGeVector3d(v.x, v.y, 0)).xy(); }
    void mapVector(std::size_t at) {
        const OdGeVector2d image = mapped(groups_.point(at).xy() - OdGePoint2d());
        groups_.setPoint(at, {image.x, image.y, 0});
    }

    // A path from its 92 on; `at` is behind it afterwards.
    bool path(std::size_t& at) {
        constexpr std::int64_t kPolyline = 2;
        const bool polyline = (groups_.integer(at++) & kPolyline) != 0;
        std::int64_t edge = 0;
        for (; at < groups_.end() && !isOneOf(groups_.code(at), {92, 75}); ++at) {
            const int code = groups_.code(at);
            if (polyline) {
                if (code == 10) mapPoint(at);
                if (code == 42 && !bulge(at)) return false;
                continue;
            }
            if (code == 72) {
                edge = groups_.integer(at);
                if ((edge == kArc || edge == kEllipse) && !curvedEdge(at, edge == kArc)) return false;
            } else if (edge == kLine || edge == kSpline) {
                if (code == 10 || code == 11) mapPoint(at);
                if (code == 12 || code == 13) mapVector(at);
            }
        }
        return true;
    }

    bool bulge(std::size_t at) {
        if (groups_.real(at) == 0) return true;
        if (plane_->reversed) groups_.setReal(at, -groups_.real(at));
        return uniform_.has_value();
    }

    // Clockwise arcs have their angles counted clockwise, so that mirroring turns the sense round and leaves them.
    bool curvedEdge(std::size_t at, bool arc) {
        if (!uniform_) return false;
        const std::size_t sense = groups_.find(73, at);
        if (sense >= groups_.end()) return false;
        const bool counterClockwise = (groups_.integer(sense) != 0) != plane_->reversed;
        groups_.setInteger(sense, counterClockwise ? 1 : 0);
        for (std::size_t i = at + 1; i < sense; ++i) {
            const int code = groups_.code(i);
            if (code == 10) mapPoint(i);
            if (code == 11) mapVector(i);
            if (code == 40 && arc) groups_.setReal(i, groups_.real(i) * *uniform_);
            if ((code == 50 || code == 51) && arc)
                groups_.setReal(i, turnedArcAngle(groups_.real(i), counterClockwise));
        }
        return true;
    }

    double mappedAngle(double degrees, double* stretch) const {
        if (stretch) *stretch = mapped(directionOf(degrees * kDegree)).length();
        return mapAngle(*plane_, degrees);
    }

    // What an arc's angle becomes, as many whole turns away as it is. Angles of clockwise arcs count clockwise.
    double turnedArcAngle(double degrees, bool counterClockwise) const {
        const double sign = counterClockwise ? 1 : -1;
        const OdGeVector2d x = mapped({1, 0});
        const double turn = angleOf(x);
        if (turn == 0) return degrees;
        const OdGeVector2d from = directionOf(degrees * sign * kDegree);
        const double turned = sign * degreesOf(angleOf(x.x * from.x - x.y * from.y, x.y * from.x + x.x * from.y));
        const double near = degrees + sign * std::remainder(turn / kDegree, 360);
        return turned + 360 * std::round((near - turned) / 360);
    }

    // From 75 on: the pattern's lines take any matrix, as lines do.
    void pattern(std::size_t at) {
        const double scale = std::sqrt(plane_->map.xAxis().crossProduct(plane_->map.yAxis()).length());
        double stretch = 1;
        bool seeds = false;
        for (; at < groups_.end(); ++at) {
            switch (groups_.code(at)) {
                case 52:
                    groups_.setReal(at, mappedAngle(groups_.real(at), nullptr));
                    break;
                case 41:
                    groups_.setReal(at, groups_.real(at) * (uniform_ ? *uniform_ : scale));
                    break;
                case 53:
                    groups_.setReal(at, mappedAngle(groups_.real(at), &stretch));
                    break;
                case 43:
                case 45:
                    patternPoint(at, groups_.code(at) == 43);
                    break;
                case 49:
                    groups_.setReal(at, groups_.real(at) * stretch);
                    break;
                case 98:
                    seeds = true;
                    break;
                case 10:
                    if (seeds) mapPoint(at);
                    break;
                default:
                    break;
            }
        }
    }
    // x and y have neighbouring codes here.
    void patternPoint(std::size_t at, bool isPoint) {
        if (at + 1 >= groups_.end() || groups_.code(at + 1) != groups_.code(at) + 1) return;
        const OdGePoint2d p(groups_.real(at), groups_.real(at + 1));
        const OdGeVector2d image = isPoint ? (plane_->map * OdGePoint3d(p.x, p.y, elevation_)).xy() - OdGePoint2d()
                                           : mapped(p - OdGePoint2d());
        groups_.setReal(at, image.x);
        groups_.setReal(at + 1, image.y);
    }

    static constexpr std::int64_t kLine = 1, kArc = 2, kEllipse = 3, kSpline = 4;
    GroupList& groups_;
    std::optional<PlaneMap> plane_;
    std::optional<double> uniform_;
    double elevation_ = 0;
};

bool transform(std::string_view kind, GroupList& groups, const OdGeMatrix3d& matrix) {
    if (kind == "SOLID" || kind == "TRACE") return transformSolid(groups, matrix);
    if (kind == "3DFACE") return transformInWorld(groups, matrix, {10, 11, 12, 13}, {});
    if (kind == "LEADER") return transformInWorld(groups, matrix, {10}, {210, 211, 212, 213});
    if (kind == "IMAGE") return transformInWorld(groups, matrix, {10}, {11, 12});
    if (kind == "HATCH") return HatchTransform(groups, matrix).run();
    if (kind == "MESH") return transformInWorld(groups, matrix, {10}, {});
    if (kind == "VERTEX") return transformVertex(groups, matrix);
    // 41 and 42 are where the light ends to fade and where it is gone.
    if (kind == "LIGHT") return transformAlike(groups, matrix, {10, 11}, {}, {41, 42});
    if (kind == "MLINE") return transformAlike(groups, matrix, {10, 11}, {12, 13, 210}, {40, 41, 42});
    if (kind == "HELIX") return transformAlike(groups, matrix, {10, 11}, {12, 13, 210}, {40, 42});
    // As large as its dimension style says.
    if (kind == "TOLERANCE") return transformAlike(groups, matrix, {10}, {11, 210}, {}, false);
    if (kind == "SHAPE") return transformPlaced(groups, matrix, {40});
    if (kind.ends_with("UNDERLAY")) return transformPlaced(groups, matrix, {41, 42, 43});
    return false;
}

}  // namespace

std::optional<std::string> transformedCarried(std::string_view kind, std::string_view record, const FileFormat& format,
                                              const OdGeMatrix3d& matrix) {
    GroupList groups(record, format);
    if (transform(kind, groups, matrix)) return groups.bytes();
    if (kind != "HATCH") return {};
    const std::string splines = HatchWithoutArcs(GroupList(record, format), format).bytes();
    GroupList changed(splines, format);
    if (!transform(kind, changed, matrix)) return {};
    return changed.bytes();
}

}  // namespace drawingdb
