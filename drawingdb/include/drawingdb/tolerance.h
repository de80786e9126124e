// Geometric tolerances, which the database carries without a class: how they look.
#pragma once

#include "drawingdb/entity.h"

namespace drawingdb {

/// In drawing units.
struct ToleranceLook {
    double textHeight = 0.18, gap = 0.09;  ///< of the letters, and around them
    OdCmColor frameColor, textColor;       ///< by block: the entity's own
    OdDbObjectId textStyle;
};

/// What a TOLERANCE takes from its dimension style, and what it overrides of that.
DRAWINGDB_API ToleranceLook toleranceLook(const OdDbEntity& tolerance);

}  // namespace drawingdb
