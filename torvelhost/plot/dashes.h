// Polylines in a linetype.
#pragma once

#include <span>
#include <vector>

#include "torvelhost/plot/picture.h"

namespace host {

/// Draws a polyline with the dashes of a linetype (positive a dash, negative a gap, 0 a dot), each `scale` pixels a
/// unit. Dashes are laid so that the polyline begins and ends with one, as long as both; a polyline too short for the
/// pattern, or a pattern too small to be seen, is drawn without gaps.
void addDashed(Picture& picture, std::span<const OdGePoint2d> points, const Pen& pen, std::span<const double> dashes,
               double scale);

}  // namespace host
