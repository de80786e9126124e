// What a tracker shows, told in words where there is no screen.
#pragma once

#include <string>

#include "drawingdb/entity.h"

namespace host {

/// "XLINE 0,0,0 towards 0.6,0.8,0", "LWPOLYLINE 0,0,0 4,0,0 4,3,0": the kind and where it runs, in world coordinates to
/// six places.
std::wstring previewText(const OdDbEntity& entity);

}  // namespace host
