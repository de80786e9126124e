// Dimensions: carried without a class, and drawn by a block each.
#pragma once

#include <string_view>

#include "drawingdb/entity.h"

namespace drawingdb {

/// DIMENSION, ARC_DIMENSION, LARGE_RADIAL_DIMENSION.
bool isDimension(std::string_view kind);

/// Transforms a dimension of a database by a matrix that shifts, turns and scales alike in all directions; refuses any
/// other.
///
/// It gets a picture of its own: a new block with what its old one holds, transformed. The old one stays, for other
/// dimensions may show it too. What it shows stays so when a program draws it anew: the sizes of its style and the
/// factor of its measurement are overridden where it was scaled. It follows what it measures no longer. Those that look
/// otherwise at other scales of annotations refuse.
OdResult transformDimension(OdDbEntity& dimension, const OdGeMatrix3d& matrix);

}  // namespace drawingdb
