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
#include <array>
#include <cmath>

#include "drawingdb/spline.h"
#include "torvelhost/plot/shapes.h"

namespace host {
namespace {

using Groups = std::span<const PlotGroup>;
using Contour = std::vector<OdGePoint2d>;
using Corners = std::vector<OdGePoint3d>;
using AddPoint = std::function<void(const OdGePoint2d&)>;

// More than any picture shows.
constexpr int kMostPatternLines = 20000;
constexpr std::size_t kMostDashes = 2'000'000;

struct PlaneBox {
    OdGePoint2d low{1e300, 1e300}, high{-1e300, -1e300};

    void add(const OdGePoint2d& point) {
        low.set(std::min(low.x, point.x), std::min(low.y, point.y));
        high.set(std::max(high.x, point.x), std::max(high.y, point.y));
    }
    void cutBy(const PlaneBox& other) {
        low.set(std::max(low.x, other.low.x), std::max(low.y, other.low.y));
        high.set(std::min(high.x, other.high.x), std::min(high.y, other.high.y));
    }
    bool isEmpty() const { return !(low.x <= high.x && low.y <= high.y); }
    std::array<OdGePoint2d, 4> corners() const {
        return {low, OdGePoint2d(high.x, low.y), high, OdGePoint2d(low.x, high.y)};
    }
};

// A window seen from above, in a plane that is seen so too; nothing for a plane seen at an angle.
std::optional<PlaneBox> inPlane(const std::optional<OdGeExtents3d>& window, const OdGeMatrix3d& plane) {
    if (!window || !plane.zAxis().xy().isZeroLength()) return std::nullopt;
    const OdGeMatrix3d toPlane = plane.inverse();
    PlaneBox box;
    for (const OdGePoint3d& corner : {window->minPoint(), window->maxPoint()})
        box.add((toPlane * OdGePoint3d(corner.x, corner.y, 0)).xy());
    return box;
}

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

// The lines of a pattern inside even-odd contours: of each family of lines its dashes where they can be told apart,
// else how much ink they make.
class PatternLines {
  public:
    using Dash = std::pair<OdGePoint2d, OdGePoint2d>;

    // What lies beside the window, in the plane of the contours, need not be drawn.
    PatternLines(const std::vector<Contour>& contours, double pixel, const std::optional<PlaneBox>& window)
        : contours_(contours), pixel_(pixel) {
        for (const Contour& contour : contours)
            for (const OdGePoint2d& point : contour) box_.add(point);
        seen_ = box_;
        if (window) seen_.cutBy(*window);
    }

    // False for what is no family of lines.
    bool add(Groups line) {
        const double angle = line.front().real;
        along_ = OdGeVector2d(std::cos(angle), std::sin(angle));
        base_ = OdGePoint2d(groupOrZero(line, 43).real, groupOrZero(line, 44).real);
        step_ = OdGeVector2d(groupOrZero(line, 45).real, groupOrZero(line, 46).real);
        spacing_ = along_.crossProduct(step_);
        if (!(std::fabs(spacing_) > 1e-12) || !std::isfinite(spacing_)) return false;
        dashes_.clear();
        period_ = 0;
        double ink = 0;
        for (const PlotGroup& group : line) {
            if (group.code != 49) continue;
            dashes_.push_back(group.real);
            period_ += std::fabs(group.real);
            // A dot is as long as a line is wide.
            ink += group.real == 0 ? pixel_ : std::max(group.real, 0.0);
        }
        if (!std::isfinite(period_)) return false;
        const double density = (period_ > 0 ? ink / period_ : 1) / std::fabs(spacing_);
        if (!(period_ > 2 * pixel_)) dashes_.clear();
        bringNear();

        const std::size_t before = drawn_.size();
        if (std::fabs(spacing_) < 2 * pixel_ || !addLines()) {
            drawn_.resize(before);
            densities_.push_back(density);
        }
        return true;
    }

    const std::vector<Dash>& dashes() const { return drawn_; }
    // The length of the lines in a unit of area, for each family that cannot be told apart.
    const std::vector<double>& densities() const { return densities_; }

  private:
    // So far away that the hatch is lost beside it, a line says nothing of where the lines lie in the hatch.
    void bringNear() {
        constexpr double kFar = 1e12;
        const double far = kFar * std::fabs(spacing_);
        if (!(base_.distanceTo(box_.low) < far)) base_ = box_.low;
        if (!(step_.length() < far)) step_ = along_.perpVector() * spacing_;
    }

    // False when they are too many.
    bool addLines() {
        if (seen_.isEmpty()) return true;
        double low = 1e300, high = -1e300;
        for (const OdGePoint2d& corner : seen_.corners()) {
            const double number = along_.crossProduct(corner - base_) / spacing_;
            low = std::min(low, number);
            high = std::max(high, number);
        }
        if (!(high - low < kMostPatternLines)) return false;
        const double first = std::ceil(low);
        const int count = static_cast<int>(std::floor(high) - first) + 1;
        for (int i = 0; i < count; ++i) {
            const OdGePoint2d origin = base_ + step_ * (first + i);
            double from = 1e300, to = -1e300;  // of the line what can be seen
            for (const OdGePoint2d& corner : seen_.corners()) {
                from = std::min(from, along_.dotProduct(corner - origin));
                to = std::max(to, along_.dotProduct(corner - origin));
            }
            cross(origin);
            for (std::size_t k = 1; k < crossings_.size(); k += 2)
                if (!dash(origin, std::max(crossings_[k - 1], from), std::min(crossings_[k], to))) return false;
        }
        return true;
    }

    void cross(const OdGePoint2d& origin) {
        crossings_.clear();
        for (const Contour& contour : contours_) {
            for (std::size_t i = 0, last = contour.size() - 1; i < contour.size(); last = i++) {
                const OdGeVector2d a = contour[last] - origin, b = contour[i] - origin;
                const double sideA = along_.crossProduct(a), sideB = along_.crossProduct(b);
                if ((sideA > 0) == (sideB > 0)) continue;
                crossings_.push_back(along_.dotProduct(a + (b - a) * (sideA / (sideA - sideB))));
            }
        }
        std::sort(crossings_.begin(), crossings_.end());
    }

    // False when they are too many.
    bool dash(const OdGePoint2d& origin, double from, double to) {
        if (!(from < to)) return true;
        const auto add = [&](double begin, double end) {
            drawn_.emplace_back(origin + along_ * begin, origin + along_ * end);
            return drawn_.size() < kMostDashes;
        };
        if (dashes_.empty()) return add(from, to);
        double place = std::floor(from / period_) * period_;
        // So far out that a dash is lost beside the place, the count ends it.
        const double most = ((to - from) / period_ + 2) * static_cast<double>(dashes_.size());
        if (!(most < kMostDashes)) return false;
        for (std::size_t i = 0; place < to && static_cast<double>(i) < most; ++i) {
            const double dash = dashes_[i % dashes_.size()], end = place + std::fabs(dash);
            if (dash >= 0 && end >= from && !add(std::max(place, from), std::min(end, to))) return false;
            place = end;
        }
        return true;
    }

    const std::vector<Contour>& contours_;
    double pixel_;
    PlaneBox box_, seen_;
    std::vector<Dash> drawn_;
    std::vector<double> densities_;

    // The family at work.
    OdGeVector2d along_, step_;
    OdGePoint2d base_;
    double spacing_ = 0, period_ = 0;
    std::vector<double> dashes_;
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

    const std::vector<Groups> lines = split(tail, 53);
    // The pattern reaches as far as its boundary does.
    if (pixel_ == 0) return addContours(DisplayList::Kind::kStrokes);
    PatternLines pattern(contours, pixel_, inPlane(window_, plane));
    bool drawn = !lines.empty();
    for (Groups line : lines) drawn = drawn && pattern.add(line);
    // A pattern that is none, or not there, leaves the boundary to be seen.
    if (!drawn) return addContours(DisplayList::Kind::kStrokes);
    if (!pattern.densities().empty()) {
        addContours(DisplayList::Kind::kTint);
        list_.setInk(pattern.densities());
    }
    list_.begin(DisplayList::Kind::kStrokes);
    for (const auto& [from, to] : pattern.dashes()) {
        list_.addPoint(toWorld(from));
        list_.addPoint(toWorld(to));
        list_.endContour();
    }
    list_.end();
    return true;
}

}  // namespace host
