#pragma once
#include <string>

namespace drawingdb {
/// The bytes of an empty drawing, version 2018.
std::string newDrawing();
}  // namespace drawingdb
