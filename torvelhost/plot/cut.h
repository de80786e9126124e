// Lines cut at a box.
#pragma once

#include <algorithm>

#include "drawingdb/ge.h"

namespace host {

/// Narrows the fractions `first` to `last` of the line from + t * along to those inside the box; false when none are.
inline bool cutLine(const OdGePoint2d& from, const OdGeVector2d& along, const OdGePoint2d& low, const OdGePoint2d& high,
                    double& first, double& last) {
    const auto cut = [&](double direction, double room) {  // direction * t <= room
        if (direction == 0.0) return room >= 0.0;
        const double t = room / direction;
        if (direction > 0.0)
            last = std::min(last, t);
        else
            first = std::max(first, t);
        return first <= last;
    };
    return cut(-along.x, from.x - low.x) && cut(along.x, high.x - from.x) && cut(-along.y, from.y - low.y) &&
           cut(along.y, high.y - from.y);
}

}  // namespace host
