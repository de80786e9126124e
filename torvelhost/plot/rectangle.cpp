#include "torvelhost/plot/rectangle.h"

#include <algorithm>

#include "torvelhost/plot/cut.h"

namespace host {

Rectangle Rectangle::between(const OdGePoint3d& a, const OdGePoint3d& b) {
    return {{std::min(a.x, b.x), std::min(a.y, b.y)}, {std::max(a.x, b.x), std::max(a.y, b.y)}};
}

Rectangle Rectangle::around(const OdGePoint3d& center, double half) {
    return {{center.x - half, center.y - half}, {center.x + half, center.y + half}};
}

OdGeExtents3d Rectangle::box() const {
    constexpr double kFar = 1e300;
    return OdGeExtents3d({low.x, low.y, -kFar}, {high.x, high.y, kFar});
}

bool Rectangle::contains(const OdGePoint2d& point) const {
    return low.x <= point.x && point.x <= high.x && low.y <= point.y && point.y <= high.y;
}

bool Rectangle::meets(const OdGePoint2d& from, const OdGePoint2d& to) const {
    double first = 0.0, last = 1.0;
    return cutLine(from, to - from, low, high, first, last);
}

bool Rectangle::meetsArea(const std::vector<OdGePoint2d>& corners) const {
    if (corners.empty()) return false;
    bool inside = false;  // of the rectangle's corner in the polygon, by counting crossings
    for (std::size_t i = 0, last = corners.size() - 1; i < corners.size(); last = i++) {
        const OdGePoint2d &a = corners[last], &b = corners[i];
        if (meets(a, b)) return true;
        if ((a.y > low.y) != (b.y > low.y) && low.x < a.x + (b.x - a.x) * (low.y - a.y) / (b.y - a.y)) inside = !inside;
    }
    return inside;
}

}  // namespace host
