// Filled areas between two lines, as the entities that a drawing's version has for them.
#pragma once

#include <array>
#include <vector>

#include "drawingdb/entity.h"

namespace drawingdb {

/// A strip in the plane of `normal` at `elevation`, in coordinates of that plane: `left` and `right` are its two edges,
/// point for point.
struct FilledStrip {
    OdGeVector3d normal;
    double elevation = 0;
    std::vector<OdGePoint2d> left, right;
};

/// A new solid HATCH. Versions before 1014 have none.
OdDbEntityPtr newSolidHatch(const FilledStrip& strip);
/// A new SOLID with these corners, in coordinates of the plane; the third and the fourth stand crosswise.
OdDbEntityPtr newSolid(const OdGeVector3d& normal, double thickness, const std::array<OdGePoint3d, 4>& corners);
/// New SOLIDs, one from each pair of points to the next; they have a thickness.
std::vector<OdDbEntityPtr> newSolids(const FilledStrip& strip, double thickness);

}  // namespace drawingdb
