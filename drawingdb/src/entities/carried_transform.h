// Transforms of entities that the database carries without a class of their own: their groups are mapped in place.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "drawingdb/ge.h"
#include "drawingdb/src/file/groups.h"

namespace drawingdb {

/// The record after the transform. Nothing when this kind of entity is not known here, or not with such a matrix. Of
/// hatches that are scaled unequally the arcs become splines.
///
/// Known are SOLID, TRACE, 3DFACE, LEADER, IMAGE, HATCH, MESH and the VERTEX of a mesh; SHAPE and underlays unless
/// their plane is scaled unequally or mirrored; MLINE, HELIX and LIGHT unless anything is; TOLERANCE unless it is
/// scaled at all.
std::optional<std::string> transformedCarried(std::string_view kind, std::string_view record, const FileFormat& format,
                                              const OdGeMatrix3d& matrix);

}  // namespace drawingdb
