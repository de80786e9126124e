// A rectangle seen from above.
#pragma once

#include <vector>

#include "drawingdb/ge.h"

namespace host {

struct Rectangle {
    OdGePoint2d low, high;

    static Rectangle between(const OdGePoint3d& a, const OdGePoint3d& b);
    static Rectangle around(const OdGePoint3d& center, double half);
    OdGeExtents3d box() const;
    bool contains(const OdGePoint2d& point) const;
    bool contains(const Rectangle& other) const { return contains(other.low) && contains(other.high); }
    /// They share at least a point.
    bool meets(const Rectangle& other) const {
        return low.x <= other.high.x && other.low.x <= high.x && low.y <= other.high.y && other.low.y <= high.y;
    }
    bool meets(const OdGePoint2d& from, const OdGePoint2d& to) const;
    /// The filled polygon shares a point with the rectangle.
    bool meetsArea(const std::vector<OdGePoint2d>& corners) const;
};

}  // namespace host
