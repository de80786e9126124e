// Hatches, from the groups of a file:
//
//   10 elevation   2 pattern   70 solid   91 paths
//   92 path: bit 2 a polyline   72 with bulges  73 closed  93 count  (10 corner  42 bulge)...
//            else               93 edges, each begun by its 72:
//       1 line      10 11
//       2 arc       10 centre  40 radius  50 51 angles  73 counter-clockwise
//       3 ellipse   10 centre  11 major axis  40 ratio  50 51 angles  73 counter-clockwise
//       4 spline    94 degree  95 knots  96 points  40 knot...  10 point...  42 weight...
//   75 style   76 pattern type
//   78 lines of the pattern: 53 direction  43 44 a point  45 46 to the next line  79 dashes  49 dash...
#include <cmath>

#include "drawingdb/spline.h"
#include "torvelhost/plot/shapes.h"

namespace host {
namespace {

using Groups = std::span<const PlotGroup>;
using Contour = std::vector<OdGePoint2d>;
using Corners = std::vector<OdGePoint3d>;
using AddPoint = std::function<void(const OdGePoint2d&)>;

constexpr int kMostPatternLines = 20000;

// The groups from each with the code `first` to the next of them.
std::vector<Groups> split(Groups groups, int first) {
    std::vector<Groups> parts;
    std::size_t begin = groups.size();
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (groups[i].code != first) continue;
        if (begin < i) parts.push_back(groups.subspan(begin, i - begin));
        begin = i;
    }
    if (begin < groups.size()) parts.push_back(groups.subspan(begin));
    return parts;
}

// The paths that the style hatches between: 0 all of them, 1 the outermost (16) and the outer ones (1), 2 the outer
// ones alone. Where none is marked, all count.
std::vector<Groups> pathsOfStyle(Groups paths, std::int64_t style) {
    std::vector<Groups> all = split(paths, 92), chosen;
    const std::int64_t flags = style == 1 ? 1 | 16 : style == 2 ? 1 : 0;
    for (Groups path : all)
        if (path.front().integer & flags) chosen.push_back(path);
    return chosen.empty() ? all : chosen;
}

void addSplineEdge(Groups edge, const AddPoint& add) {
    std::vector<double> knots, weights;
    Corners points;
    for (const PlotGroup& group : edge) {
        if (group.code == 40) knots.push_back(group.real);
        if (group.code == 10) points.push_back(group.point);
        if (group.code == 42) weights.push_back(group.real);
    }
    const auto spline = OdDbSpline::createObject();
    try {
        spline->setNurbs(static_cast<int>(groupOrZero(edge, 94).integer), knots, points, weights);
    } catch (const OdError&) {
        return;  // no curve, so no edge
    }
    constexpr int kStepsPerKnot = 16;
    const std::vector<double> breaks = spline->breakParams();
    add(spline->pointAtParam(breaks.front()).xy());
    for (std::size_t k = 1; k < breaks.size(); ++k)
        for (int i = 1; i <= kStepsPerKnot; ++i)
            add(spline->pointAtParam(breaks[k - 1] + (breaks[k] - breaks[k - 1]) * i / kStepsPerKnot).xy());
}

// The lines of a pattern inside even-odd contours.
class PatternLines {
  public:
    PatternLines(const std::vector<Contour>& contours, double pixel) : contours_(contours), pixel_(pixel) {}

    // Calls `add` with the ends of each dash. False when the lines are too many or too close to be told apart.
    bool add(Groups line, const std::function<void(const OdGePoint2d&, const OdGePoint2d&)>& add) {
        const double angle = line.front().real;
        const OdGeVector2d along(std::cos(angle), std::sin(angle));
        const OdGePoint2d base(groupOrZero(line, 43).real, groupOrZero(line, 44).real);
        const OdGeVector2d step(groupOrZero(line, 45).real, groupOrZero(line, 46).real);
        const double spacing = along.crossProduct(step);
        if (std::fabs(spacing) < 1e-12 || std::fabs(spacing) < 2 * pixel_) return false;
        std::vector<double> dashes;
        double period = 0;
        for (const PlotGroup& group : line) {
            if (group.code != 49) continue;
            dashes.push_back(group.real);
            period += std::fabs(group.real);
        }
        if (period <= 2 * pixel_) dashes.clear();

        double low = 1e300, high = -1e300;
        for (const Contour& contour : contours_) {
            for (const OdGePoint2d& point : contour) {
                const double number = along.crossProduct(point - base) / spacing;
                low = std::min(low, number);
                high = std::max(high, number);
            }
        }
        if (!(high - low < kMostPatternLines)) return false;
        for (double number = std::ceil(low); number <= high; ++number) {
            const OdGePoint2d origin = base + step * number;
            cross(origin, along);
            for (std::size_t i = 1; i < crossings_.size(); i += 2)
                dash(origin, along, crossings_[i - 1], crossings_[i], dashes, period, add);
        }
        return true;
    }

  private:
    void cross(const OdGePoint2d& origin, const OdGeVector2d& along) {
        crossings_.clear();
        for (const Contour& contour : contours_) {
            for (std::size_t i = 0, last = contour.size() - 1; i < contour.size(); last = i++) {
                const OdGeVector2d a = contour[last] - origin, b = contour[i] - origin;
                const double sideA = along.crossProduct(a), sideB = along.crossProduct(b);
                if ((sideA > 0) == (sideB > 0)) continue;
                crossings_.push_back(along.dotProduct(a + (b - a) * (sideA / (sideA - sideB))));
            }
        }
        std::sort(crossings_.begin(), crossings_.end());
    }

    void dash(const OdGePoint2d& origin, const OdGeVector2d& along, double from, double to,
              const std::vector<double>& dashes, double period,
              const std::function<void(const OdGePoint2d&, const OdGePoint2d&)>& add) const {
        if (dashes.empty() || (to - from) / period > kMostPatternLines) {
            add(origin + along * from, origin + along * to);
            return;
        }
        double place = std::floor(from / period) * period;
        // So far out that a dash is lost beside the place, the count ends it.
        const std::size_t most = static_cast<std::size_t>(kMostPatternLines + 2) * dashes.size();
        for (std::size_t i = 0; place < to && i < most; ++i) {
            const double dash = dashes[i % dashes.size()], end = place + std::fabs(dash);
            if (dash >= 0 && end >= from)
                add(origin + along * std::max(place, from), origin + along * std::min(end, to));
            place = end;
        }
    }

    const std::vector<Contour>& contours_;
    double pixel_;
    std::vector<double> crossings_;
};

}  // namespace

bool Shapes::addHatch(const std::vector<PlotGroup>& groups) {
    // What belongs to the paths ends where the hatch's style (75) begins.
    std::size_t firstPath = groups.size(), style = groups.size();
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (groups[i].code == 91 && firstPath == groups.size()) firstPath = i;
        if (groups[i].code == 75 && firstPath < i && style == groups.size()) style = i;
    }
    const Groups all(groups), head = all.first(firstPath), paths = all.subspan(firstPath, style - firstPath),
                              tail = all.subspan(style);

    std::vector<Contour> contours;
    for (Groups path : pathsOfStyle(paths, style < groups.size() ? groups[style].integer : 0)) {
        Contour contour;
        const AddPoint add = [&](const OdGePoint2d& point) { contour.push_back(point); };
        if (path.front().integer & 2) {
            std::vector<std::pair<OdGePoint2d, double>> corners;
            for (const PlotGroup& group : path) {
                if (group.code == 10) corners.emplace_back(group.point.xy(), 0.0);
                if (group.code == 42 && !corners.empty()) corners.back().second = group.real;
            }
            for (std::size_t i = 0; i < corners.size(); ++i)
                addBulge(corners[i].first, corners[(i + 1) % corners.size()].first, corners[i].second, add);
        } else {
            for (Groups edge : split(path, 72)) {
                const OdGePoint2d from = groupOrZero(edge, 10).point.xy();
                const OdGeVector2d to = groupOrZero(edge, 11).point.xy().asVector();
                const std::int64_t kind = edge.front().integer;
                if (kind == 1) {
                    add(from);
                    add(OdGePoint2d(to.x, to.y));
                } else if (kind == 2 || kind == 3) {
                    const OdGeVector2d x = kind == 2 ? OdGeVector2d(groupOrZero(edge, 40).real, 0) : to;
                    const OdGeVector2d y = kind == 2 ? x.perpVector() : x.perpVector() * groupOrZero(edge, 40).real;
                    double start = groupOrZero(edge, 50).real, end = groupOrZero(edge, 51).real;
                    if (end <= start) end += drawingdb::kTwoPi;
                    // Clockwise arcs have their angles counted clockwise too.
                    const double turn = groupOrZero(edge, 73).integer != 0 ? 1 : -1;
                    const int steps = stepsOf(x.length(), end - start);
                    for (int i = 0; i <= steps; ++i) {
                        const double angle = turn * (start + (end - start) * i / steps);
                        add(from + x * std::cos(angle) + y * std::sin(angle));
                    }
                } else if (kind == 4) {
                    addSplineEdge(edge, add);
                }
            }
        }
        if (contour.size() > 2) contours.push_back(std::move(contour));
    }
    if (contours.empty()) return false;

    const OdGeVector3d normal = [&] {
        const OdGePoint3d& point = groupOrZero(head, 210).point;
        return point == OdGePoint3d() ? OdGeVector3d::kZAxis : point.asVector();
    }();
    const OdGeMatrix3d plane = OdGeMatrix3d::planeToWorld(normal);
    const double elevation = groupOrZero(head, 10).point.z;
    const auto toWorld = [&](const OdGePoint2d& point) { return plane * OdGePoint3d(point.x, point.y, elevation); };
    const auto addContours = [&](DisplayList::Kind kind) {
        list_.begin(kind);
        for (const Contour& contour : contours) {
            for (const OdGePoint2d& point : contour) list_.addPoint(toWorld(point));
            if (kind == DisplayList::Kind::kStrokes) list_.addPoint(toWorld(contour.front()));
            list_.endContour();
        }
        list_.end();
        return true;
    };
    if (groupOrZero(head, 70).integer != 0) return addContours(DisplayList::Kind::kArea);

    PatternLines pattern(contours, pixel_);
    std::vector<std::pair<OdGePoint2d, OdGePoint2d>> dashes;
    bool drawn = true;
    const std::vector<Groups> lines = split(tail, 53);
    for (Groups line : lines) {
        drawn &=
            pattern.add(line, [&](const OdGePoint2d& from, const OdGePoint2d& to) { dashes.emplace_back(from, to); });
        if (!drawn) break;
    }
    // A pattern that cannot be told apart, or is not there, leaves the boundary to be seen.
    if (!drawn || lines.empty()) return addContours(DisplayList::Kind::kStrokes);
    list_.begin(DisplayList::Kind::kStrokes);
    for (const auto& [from, to] : dashes) {
        list_.addPoint(toWorld(from));
        list_.addPoint(toWorld(to));
        list_.endContour();
    }
    list_.end();
    return true;
}

}  // namespace host
