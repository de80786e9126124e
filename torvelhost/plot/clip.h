// What shows of a clipped reference.
#pragma once

#include <optional>
#include <vector>

#include "drawingdb/block_reference.h"
#include "torvelhost/plot/picture.h"

namespace host {

/// The polygon that a reference is clipped to, in the coordinates of its block; empty when it shows everything. Nothing
/// when it is clipped in a way that is not known here.
std::optional<std::vector<OdGePoint3d>> clipOf(const OdDbBlockReference& reference);

/// The parts that lie in both polygons; nothing when that cannot be told, because one crosses itself.
std::optional<std::vector<Picture::Contour>> commonParts(const Picture::Contour& one, const Picture::Contour& other);

}  // namespace host
