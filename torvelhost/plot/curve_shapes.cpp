// Curves and points.
#include <cmath>

#include "drawingdb/wide_joint.h"
#include "torvelhost/plot/shapes.h"

namespace host {
namespace {

// How far a polyline may lie from the curve it stands for, in pixels.
constexpr double kTolerance = 0.1;
constexpr int kFinestSteps = 128;  // a turn, when nothing is known of pixels
constexpr int kMostSteps = 20000;
constexpr int kDeepestHalving = 8;

}  // namespace

bool boxOf(const OdDbEntity& entity, OdGeExtents3d& box) {
    if (!entity.geomExtents(box)) return false;
    double widest = 0;
    if (const auto* const polyline = drawingdb::as<OdDbPolyline>(entity)) {
        widest = polyline->constantWidth();
        for (std::size_t i = 0; i < polyline->numVerts(); ++i)
            widest = std::max({widest, polyline->vertexAt(i).startWidth, polyline->vertexAt(i).endWidth});
    } else if (const auto* const old = drawingdb::as<OdDb2dPolyline>(entity)) {
        for (const OdDbOldPolyline::Vertex& vertex : old->vertices())
            widest = std::max({widest, vertex.startWidth, vertex.endWidth});
    }
    if (widest > 0) box.grow(widest / 2);
    return true;
}

int Shapes::stepsOf(double radius, double sweep) const {
    sweep = std::fabs(sweep);
    double step = drawingdb::kTwoPi / kFinestSteps;
    if (pixel_ > 0 && radius > 0) {
        const double flatness = std::min(kTolerance * pixel_ / radius, 0.5);
        step = 2 * std::acos(1 - flatness);
        if (!(step > 0)) step = std::sqrt(8 * flatness);
    }
    const double steps = std::ceil(sweep / step);
    return steps < 1 ? 1 : steps < kMostSteps ? static_cast<int>(steps) : kMostSteps;
}

void Shapes::addCircle(const OdDbCircle& circle, double start, double sweep) {
    const OdGeMatrix3d plane = OdGeMatrix3d::planeToWorld(circle.normal());
    const OdGePoint3d center = circle.center();
    const double radius = circle.radius();
    const OdGeVector3d x = plane.xAxis() * radius, y = plane.yAxis() * radius;
    const int steps = stepsOf(radius, sweep);
    list_.begin(DisplayList::Kind::kPolyline);
    for (int i = 0; i <= steps; ++i) {
        const double angle = start + sweep * i / steps;
        list_.addPoint(center + x * std::cos(angle) + y * std::sin(angle));
    }
    list_.end();
}

// Any curve that has a beginning and an end: halved until it is straight enough.
void Shapes::addCurve(const OdDbCurve& curve) {
    const double first = curve.startParam(), last = curve.endParam();
    if (!std::isfinite(first) || !std::isfinite(last)) return;
    OdGeExtents3d box;
    double tolerance = kTolerance * pixel_;
    if (!(tolerance > 0)) tolerance = curve.geomExtents(box) ? box.diagonal().length() / 2000 : 0;
    list_.begin(DisplayList::Kind::kPolyline);
    const std::function<void(double, const OdGePoint3d&, double, const OdGePoint3d&, int)> halve =
        [&](double from, const OdGePoint3d& a, double to, const OdGePoint3d& b, int depth) {
            const double middle = (from + to) / 2;
            const OdGePoint3d between = curve.pointAtParam(middle);
            if (depth < kDeepestHalving && between.distanceTo(a + (b - a) * 0.5) > tolerance) {
                halve(from, a, middle, between, depth + 1);
                halve(middle, between, to, b, depth + 1);
            } else {
                list_.addPoint(between);
                list_.addPoint(b);
            }
        };
    // So many pieces that no bend is missed between two of them.
    constexpr int kPieces = 8;
    const std::vector<double> breaks = curve.breakParams();
    OdGePoint3d a = curve.pointAtParam(first);
    list_.addPoint(a);
    for (std::size_t k = 1; k < breaks.size(); ++k) {
        const double step = (breaks[k] - breaks[k - 1]) / kPieces;
        for (int i = 0; i < kPieces; ++i) {
            const double from = breaks[k - 1] + step * i, to = i + 1 == kPieces ? breaks[k] : from + step;
            const OdGePoint3d b = curve.pointAtParam(to);
            halve(from, a, to, b, 0);
            a = b;
        }
    }
    list_.end();
}

void Shapes::addConstructionLine(const OdDbConstructionLine& line) {
    const bool isRay = line.isKindOf(OdDbRay::desc());
    const OdGePoint3d points[2] = {line.basePoint(), line.basePoint() + line.unitDir()};
    list_.add(isRay ? DisplayList::Kind::kRay : DisplayList::Kind::kInfiniteLine, points);
}

void Shapes::addBulge(const OdGePoint2d& from, const OdGePoint2d& to, double bulge,
                      const std::function<void(const OdGePoint2d&)>& add) const {
    const OdGeVector2d chord = to - from;
    if (bulge == 0 || chord.isZeroLength() || !std::isfinite(bulge)) return add(to);
    const double sweep = 4 * std::atan(bulge);
    // From the middle of the chord to the centre.
    const OdGeVector2d offset = chord.perpVector() * ((1 - bulge * bulge) / (4 * bulge));
    const OdGePoint2d center = from + chord * 0.5 + offset;
    const OdGeVector2d radius = from - center;
    const int steps = stepsOf(radius.length(), sweep);
    for (int i = 1; i < steps; ++i) {
        OdGeVector2d turned = radius;
        add(center + turned.rotateBy(sweep * i / steps));
    }
    add(to);
}

void Shapes::addPolyline(const OdDbPolyline& polyline) {
    std::vector<Vertex> vertices;
    const auto widthOf = [&](double width) { return width >= 0 ? width : polyline.constantWidth(); };
    for (std::size_t i = 0; i < polyline.numVerts(); ++i) {
        const OdDbPolyline::Vertex& vertex = polyline.vertexAt(i);
        vertices.push_back({vertex.point, vertex.bulge, widthOf(vertex.startWidth), widthOf(vertex.endWidth)});
    }
    addFlatPolyline(vertices, polyline.isClosed(), polyline.isLinetypeGenerated(),
                    OdGeMatrix3d::planeToWorld(polyline.normal()), polyline.elevation());
}

void Shapes::add2dPolyline(const OdDb2dPolyline& polyline) {
    std::vector<Vertex> vertices;
    for (const OdDbOldPolyline::Vertex& vertex : polyline.vertices())
        vertices.push_back({vertex.point.xy(), vertex.bulge, vertex.startWidth, vertex.endWidth});
    addFlatPolyline(vertices, polyline.isClosed(), polyline.isLinetypeGenerated(),
                    OdGeMatrix3d::planeToWorld(polyline.normal()), polyline.elevation());
}

void Shapes::addFlatPolyline(const std::vector<Vertex>& vertices, bool closed, bool throughout,
                             const OdGeMatrix3d& toWorld, double elevation) {
    if (vertices.empty()) return;
    std::vector<WideSegment> segments;
    std::vector<std::size_t> sides;  // where each begins among the segments
    bool isWide = false;
    std::vector<OdGePoint2d> ends;
    for (std::size_t i = 0; i + (closed ? 0 : 1) < vertices.size(); ++i) {
        const Vertex &from = vertices[i], &to = vertices[(i + 1) % vertices.size()];
        const double widest = std::max(from.startWidth, from.endWidth);
        isWide |= widest > 0 && widest > pixel_;
        ends.assign(1, from.point);
        addBulge(from.point, to.point, from.bulge, [&](const OdGePoint2d& point) { ends.push_back(point); });
        const double widening = (from.endWidth - from.startWidth) / static_cast<double>(ends.size() - 1);
        sides.push_back(segments.size());
        for (std::size_t k = 1; k < ends.size(); ++k)
            segments.push_back({ends[k - 1], ends[k], from.startWidth + widening * static_cast<double>(k - 1),
                                from.startWidth + widening * static_cast<double>(k)});
    }
    if (isWide) return addWide(segments, closed, toWorld, elevation);
    const auto add = [&](const OdGePoint2d& point) {
        list_.addPoint(toWorld * OdGePoint3d(point.x, point.y, elevation));
    };
    list_.begin(throughout ? DisplayList::Kind::kPolyline : DisplayList::Kind::kSides);
    std::size_t side = 0;
    add(vertices[0].point);
    for (std::size_t i = 0; i < segments.size(); ++i) {
        if (!throughout && i > 0 && side + 1 < sides.size() && i == sides[side + 1]) {
            ++side;
            list_.endContour();
            add(segments[i].start);
        }
        add(segments[i].end);
    }
    list_.end();
}

// A quadrilateral a segment, and what the joints need besides.
void Shapes::addWide(const std::vector<WideSegment>& segments, bool closed, const OdGeMatrix3d& toWorld,
                     double elevation) {
    const auto sideOf = [](const WideSegment& segment) { return (segment.end - segment.start).normal().perpVector(); };
    const auto jointOf = [&](const WideSegment& before, const WideSegment& behind) {
        return drawingdb::wideJoint(sideOf(before), before.endWidth, sideOf(behind), behind.startWidth);
    };
    const auto addContour = [&](std::initializer_list<OdGePoint2d> corners) {
        for (const OdGePoint2d& corner : corners) list_.addPoint(toWorld * OdGePoint3d(corner.x, corner.y, elevation));
        list_.endContour();
    };
    list_.begin(DisplayList::Kind::kUnion);
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const WideSegment& segment = segments[i];
        if ((segment.end - segment.start).isZeroLength()) continue;
        const WideSegment* before = i > 0 ? &segments[i - 1] : closed ? &segments.back() : nullptr;
        const WideSegment* behind = i + 1 < segments.size() ? &segments[i + 1] : closed ? &segments.front() : nullptr;
        if (before && (before->end - before->start).isZeroLength()) before = nullptr;
        if (behind && (behind->end - behind->start).isZeroLength()) behind = nullptr;
        drawingdb::WideJoint joint{sideOf(segment), {}, {}};
        const OdGeVector2d start = (before ? jointOf(*before, segment).start : joint.end) * (segment.startWidth / 2);
        if (behind) joint = jointOf(segment, *behind);
        const OdGeVector2d end = joint.end * (segment.endWidth / 2);
        addContour({segment.start + start, segment.start - start, segment.end - end, segment.end + end});
        if (!joint.wedge) continue;
        const OdGePoint2d own = segment.end + joint.wedge->first, other = segment.end + joint.wedge->second;
        // All contours turn the same way round, so that what they cover adds up.
        joint.turnsLeft ? addContour({segment.end, own, other}) : addContour({segment.end, other, own});
    }
    list_.end();
}

}  // namespace host
