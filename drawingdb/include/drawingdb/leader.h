// Leaders, which the database carries without a class: what they show.
#pragma once

#include <vector>

#include "drawingdb/spline.h"

namespace drawingdb {

/// World coordinates.
struct LeaderParts {
    std::vector<OdGePoint3d>
        head;  ///< the corners of the arrowhead, which is filled, the tip first; none when there is none
    std::vector<OdGePoint3d> line;  ///< from the base of the arrowhead on
    OdSmartPtr<OdDbSpline> curve;   ///< through all corners, in place of the line; null when that is straight
};

/// A line with an arrowhead of that length at its first corner, in the plane of the normal. A first segment that is not
/// twice as long has no room for one.
DRAWINGDB_API LeaderParts leaderParts(std::vector<OdGePoint3d> corners, const OdGeVector3d& normal, double arrowSize,
                                      bool splined = false);

/// What a LEADER shows, its arrowhead as its dimension style and what it overrides of that say. The head is closed and
/// filled, whatever is asked for.
DRAWINGDB_API LeaderParts leaderParts(const OdDbEntity& leader);

}  // namespace drawingdb
