// Telling drawings from other files.
#pragma once

#include <string_view>

#include "drawingdb/api.h"

namespace drawingdb {

/// Whether a plain file of that name is there and begins as a drawing does: what writes other files leaves it alone.
DRAWINGDB_API bool isDrawingFile(std::wstring_view path);

}  // namespace drawingdb
