// Pictures: shapes are cut off at the border and kept in thousandths of a pixel.
#include "torvelhost/plot/picture.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "torvelhost/plot/cut.h"

namespace host {
namespace {

// Beyond it, cutting off would be off by more than a hundredth of a pixel.
constexpr double kFarthest = 1e13;

bool canBeCut(const OdGePoint2d& point) { return std::fabs(point.x) < kFarthest && std::fabs(point.y) < kFarthest; }

// So much is kept before it is given away.
constexpr std::size_t kManyPoints = 50000, kManyTexts = 2000;

// Points that are nearer than this, in pixels, are one.
constexpr double kSame = 0.02;

bool isSame(const Picture::Point& a, const OdGePoint2d& b) {
    return std::fabs(a.x - b.x) < kSame && std::fabs(a.y - b.y) < kSame;
}

// Keeps of a polygon what lies on the inner side of a line: `side` is not negative there.
template <typename Side>
void cutBySide(Picture::Contour& polygon, const Side& side) {
    Picture::Contour kept;
    for (std::size_t i = 0, last = polygon.size() - 1; i < polygon.size(); last = i++) {
        const double before = side(polygon[last]), here = side(polygon[i]);
        if ((before < 0.0) != (here < 0.0))
            kept.push_back(polygon[last] + (polygon[i] - polygon[last]) * (before / (before - here)));
        if (here >= 0.0) kept.push_back(polygon[i]);
    }
    polygon = std::move(kept);
}

// What lies in a convex polygon that turns left.
Picture::Contour cutByPolygon(Picture::Contour contour, const Picture::Contour& convex) {
    for (std::size_t i = 0, last = convex.size() - 1; i < convex.size(); last = i++) {
        const OdGePoint2d corner = convex[last];
        const OdGeVector2d side = convex[i] - corner;
        cutBySide(contour, [&](const OdGePoint2d& point) { return side.crossProduct(point - corner); });
    }
    return contour;
}

double signedArea(const Picture::Contour& polygon) {
    double twice = 0.0;
    for (std::size_t i = 0, last = polygon.size() - 1; i < polygon.size(); last = i++)
        twice += (polygon[last] - polygon[0]).crossProduct(polygon[i] - polygon[0]);
    return twice / 2;
}

bool isConvex(const Picture::Contour& polygon) {
    bool left = false, right = false;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const OdGePoint2d& middle = polygon[(i + 1) % polygon.size()];
        const double turn = (middle - polygon[i]).crossProduct(polygon[(i + 2) % polygon.size()] - middle);
        left |= turn > 0.0;
        right |= turn < 0.0;
    }
    return !(left && right);
}

bool isInside(const OdGePoint2d& point, const Picture::Contour& polygon) {
    bool inside = false;
    for (std::size_t i = 0, last = polygon.size() - 1; i < polygon.size(); last = i++) {
        const OdGePoint2d &a = polygon[last], &b = polygon[i];
        if ((a.y > point.y) != (b.y > point.y) && point.x < a.x + (b.x - a.x) * (point.y - a.y) / (b.y - a.y))
            inside = !inside;
    }
    return inside;
}

}  // namespace

Picture::Picture(int width, int height, std::uint32_t background)
    : width_(width), height_(height), background_(background) {
    clearClip();
}

std::span<const Picture::Point> Picture::contour(std::uint32_t index) const {
    const std::size_t begin = index == 0 ? 0 : contourEnds_[index - 1];
    return std::span(points_).subspan(begin, contourEnds_[index] - begin);
}

void Picture::clear() {
    shapes_.clear();
    contourEnds_.clear();
    points_.clear();
    texts_.clear();
    images_.clear();
}

void Picture::giveAway() {
    taker_(*this);
    clear();
}

void Picture::giveAwayMuch() {
    if (taker_ && (points_.size() > kManyPoints || texts_.size() > kManyTexts)) giveAway();
}

void Picture::clearClip() {
    clip_.clear();
    low_ = {0.0, 0.0};
    high_ = {static_cast<double>(width_), static_cast<double>(height_)};
}

void Picture::setClip(const Contour& polygon) {
    clearClip();
    OdGePoint2d low = high_, high = low_;
    for (const OdGePoint2d& point : polygon) {
        low.set(std::min(low.x, point.x), std::min(low.y, point.y));
        high.set(std::max(high.x, point.x), std::max(high.y, point.y));
    }
    low_.set(std::max(low.x, 0.0), std::max(low.y, 0.0));
    high_.set(std::min(high.x, high_.x), std::min(high.y, high_.y));
    bool isBox = polygon.size() == 4;
    for (std::size_t i = 0; isBox && i < 4; ++i) {
        const OdGeVector2d side = polygon[(i + 1) % 4] - polygon[i];
        isBox = side.x == 0.0 || side.y == 0.0;
    }
    if (isBox) return;
    clip_ = polygon;
    if (clip_.size() > 2 && signedArea(clip_) < 0) std::reverse(clip_.begin(), clip_.end());
    clipIsConvex_ = isConvex(clip_);
}

Picture::Contour Picture::clip() const {
    if (!clip_.empty()) return clip_;
    return {low_, {high_.x, low_.y}, high_, {low_.x, high_.y}};
}

void Picture::beginShape(std::uint32_t color, float width) {
    const auto contours = static_cast<std::uint32_t>(contourEnds_.size());
    // Lines in one pen look the same as one shape or several; overlapping areas do not.
    if (width > 0 && !shapes_.empty() && shapes_.back().color == color && shapes_.back().width == width) return;
    shapes_.push_back({color, width, FillRule::kEvenOdd, 1, 0, contours, 0});
}

void Picture::addPoint(const OdGePoint2d& point) {
    const std::size_t begin = contourEnds_.empty() ? 0 : contourEnds_.back();
    if (points_.size() > begin && isSame(points_.back(), point)) return;
    points_.push_back({static_cast<float>(point.x), static_cast<float>(point.y)});
}

void Picture::endContour() {
    contourEnds_.push_back(static_cast<std::uint32_t>(points_.size()));
    ++shapes_.back().contourCount;
}

void Picture::endPolyline(const Pen& pen, std::size_t firstPoint) {
    const std::size_t count = points_.size() - firstPoint;
    if (count > 1) return endContour();
    if (count == 0) return;
    const OdGePoint2d place(points_.back().x, points_.back().y);
    points_.resize(firstPoint);
    if (shapes_.back().contourCount == 0) shapes_.pop_back();
    addDot(place, pen);
}

void Picture::addDot(const OdGePoint2d& center, const Pen& pen) {
    beginShape(pen.color, 0);
    const double half = pen.width / 2, cut = half * 0.41421356;
    for (const OdGeVector2d& corner :
         {OdGeVector2d(half, cut), OdGeVector2d(cut, half), OdGeVector2d(-cut, half), OdGeVector2d(-half, cut),
          OdGeVector2d(-half, -cut), OdGeVector2d(-cut, -half), OdGeVector2d(cut, -half), OdGeVector2d(half, -cut)}) {
        const OdGePoint2d point = center + corner;
        points_.push_back({static_cast<float>(point.x), static_cast<float>(point.y)});
    }
    endContour();
}

void Picture::addPolyline(std::span<const OdGePoint2d> points, const Pen& pen) {
    if (points.empty() || !std::all_of(points.begin(), points.end(), canBeCut)) return;
    giveAwayMuch();
    if (clip_.empty())
        addCutAtBox(points, pen);
    else
        addCutAtPolygon(points, pen);
}

void Picture::addCutAtBox(std::span<const OdGePoint2d> points, const Pen& pen) {
    // Half the pen reaches in from outside; a viewport's edge, unlike the picture's, cuts the pen too, but no one sees
    // that.
    const OdGeVector2d reach(pen.width / 2, pen.width / 2);
    const OdGePoint2d low = low_ - reach, high = high_ + reach;
    beginShape(pen.color, static_cast<float>(pen.width));
    std::size_t begin = points_.size();
    if (points.size() == 1 && points[0].x >= low.x && points[0].x <= high.x && points[0].y >= low.y &&
        points[0].y <= high.y)
        addPoint(points[0]);
    bool drawing = false;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const OdGeVector2d along = points[i] - points[i - 1];
        double first = 0.0, last = 1.0;
        if (!cutLine(points[i - 1], along, low, high, first, last)) {
            drawing = false;
            continue;
        }
        if (!drawing || first > 0.0) {
            endPolyline(pen, begin);
            beginShape(pen.color, static_cast<float>(pen.width));
            begin = points_.size();
            addPoint(first > 0.0 ? points[i - 1] + along * first : points[i - 1]);
        }
        addPoint(last < 1.0 ? points[i - 1] + along * last : points[i]);
        drawing = last == 1.0;
    }
    endPolyline(pen, begin);
    if (!shapes_.empty() && shapes_.back().contourCount == 0) shapes_.pop_back();
}

void Picture::addCutAtPolygon(std::span<const OdGePoint2d> points, const Pen& pen) {
    Contour part;
    std::vector<double> cuts;
    const auto finish = [&] {
        if (!part.empty()) addCutAtBox(part, pen);
        part.clear();
    };
    if (points.size() == 1 && isInside(points[0], clip_)) addCutAtBox(points, pen);
    for (std::size_t i = 1; i < points.size(); ++i) {
        const OdGePoint2d &from = points[i - 1], &to = points[i];
        const OdGeVector2d along = to - from;
        cuts = {0.0, 1.0};
        for (std::size_t k = 0, last = clip_.size() - 1; k < clip_.size(); last = k++) {
            const OdGeVector2d edge = clip_[k] - clip_[last];
            const double cross = along.crossProduct(edge);
            if (cross == 0.0) continue;
            const OdGeVector2d offset = clip_[last] - from;
            const double t = offset.crossProduct(edge) / cross, u = offset.crossProduct(along) / cross;
            if (t > 0.0 && t < 1.0 && u >= 0.0 && u <= 1.0) cuts.push_back(t);
        }
        std::sort(cuts.begin(), cuts.end());
        for (std::size_t k = 1; k < cuts.size(); ++k) {
            if (!isInside(from + along * ((cuts[k - 1] + cuts[k]) / 2), clip_)) {
                finish();
                continue;
            }
            if (part.empty()) part.push_back(from + along * cuts[k - 1]);
            part.push_back(cuts[k] == 1.0 ? to : from + along * cuts[k]);
        }
    }
    finish();
}

void Picture::addArea(std::span<const Contour> contours, std::uint32_t color, FillRule rule) {
    giveAwayMuch();
    beginShape(color, 0);
    shapes_.back().rule = rule;
    for (const Contour& contour : contours) {
        if (contour.size() < 3 || !std::all_of(contour.begin(), contour.end(), canBeCut)) continue;
        if (clip_.empty() && std::all_of(contour.begin(), contour.end(), [this](const OdGePoint2d& point) {
                return point.x >= low_.x && point.x <= high_.x && point.y >= low_.y && point.y <= high_.y;
            })) {
            addContour(contour);
            continue;
        }
        Contour inBox = contour;
        cutBySide(
            inBox, [this](const OdGePoint2d& point) { return point.x - low_.x; });
        cutBySide(
            inBox, [this](const OdGePoint2d& point) { return high_.x - point.x; });
        cutBySide(
            inBox, [this](const OdGePoint2d& point) { return point.y - low_.y; });
        cutBySide(inBox, [this](const OdGePoint2d& point) { return high_.y - point.y; });
        if (clip_.empty() || inBox.empty())
            addContour(inBox);
        else if (clipIsConvex_)
            addContour(cutByPolygon(inBox, clip_));
        else
            addInTriangles(inBox);
    }
    if (shapes_.back().contourCount == 0) shapes_.pop_back();
}

void Picture::addTint(std::span<const Contour> contours, std::uint32_t color, double opacity) {
    giveAwayMuch();
    const std::size_t before = shapes_.size();
    addArea(contours, color);
    if (shapes_.size() > before) shapes_.back().opacity = static_cast<float>(opacity);
}

void Picture::addImage(std::span<const Contour> contours, const Image& image) {
    const auto& [corner, along, down] = image.place;
    if (!canBeCut(corner) || !canBeCut(corner + along) || !canBeCut(corner + down) ||
        !(std::fabs(along.crossProduct(down)) > kSame * kSame))
        return;
    giveAwayMuch();
    const std::size_t before = shapes_.size();
    addArea(contours, 0);
    if (shapes_.size() == before) return;
    images_.push_back(image);
    shapes_.back().image = static_cast<std::uint32_t>(images_.size());
}

void Picture::addText(Text text) {
    if (!keepsTexts() || text.characters.empty()) return;
    const OdGePoint2d middle = text.start + (text.end - text.start + (text.top - text.start)) * 0.5;
    if (!canBeCut(text.start) || !canBeCut(text.end) || !canBeCut(text.top)) return;
    if (middle.x < low_.x || middle.x > high_.x || middle.y < low_.y || middle.y > high_.y) return;
    if (!clip_.empty() && !isInside(middle, clip_)) return;
    giveAwayMuch();
    texts_.push_back(std::move(text));
}

// What lies in any polygon is what lies in the triangles between its first corner and its sides, where those that turn
// the other way round take away.
void Picture::addInTriangles(const Contour& contour) {
    for (std::size_t i = 2; i < clip_.size(); ++i) {
        Contour triangle = {clip_[0], clip_[i - 1], clip_[i]};
        const bool takesAway = signedArea(triangle) < 0;
        if (takesAway) std::swap(triangle[1], triangle[2]);
        Contour part = cutByPolygon(contour, triangle);
        if (takesAway) std::reverse(part.begin(), part.end());
        addContour(part);
    }
}

void Picture::addContour(const Contour& contour) {
    const std::size_t begin = points_.size();
    for (const OdGePoint2d& point : contour) addPoint(point);
    if (points_.size() - begin < 3)
        points_.resize(begin);
    else
        endContour();
}

}  // namespace host
