// Where segments of lines with widths meet.
#pragma once

#include <optional>
#include <utility>

#include "drawingdb/api.h"
#include "drawingdb/ge.h"

namespace drawingdb {

/// Segments that are equally wide where they meet share the corners of the mitre there, unless it were too sharp.
/// Others end square, and a wedge fills the gap between their outer corners.
struct WideJoint {
    OdGeVector2d end, start;  ///< to the left corner of the segment before and of the one behind, for widths of 2
    /// From the joint to the corners of a wedge: of the segment before, of the one behind.
    std::optional<std::pair<OdGeVector2d, OdGeVector2d>> wedge;
    bool turnsLeft = false;
};

/// The joint of two segments by their sides, unit vectors to the left of the line, and their widths there.
DRAWINGDB_API WideJoint wideJoint(const OdGeVector2d& sideBefore, double widthBefore, const OdGeVector2d& sideBehind,
                                  double widthBehind);

}  // namespace drawingdb
