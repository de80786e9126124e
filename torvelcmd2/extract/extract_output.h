// The file that an extract is written to.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "base/files.h"
#include "drawingdb/database.h"

namespace torvel {

/// Appends text as a text file has it: each line feed becomes carriage return and line feed.
void appendLines(std::string& bytes, std::string_view text);

/// Opens the output without touching what is there yet. Null when it cannot be written, or when it is the file of the
/// drawing that the extract is made from or any other drawing.
std::unique_ptr<base::AtomicFile> openExtractOutput(const OdString& path, const OdDbDatabase* drawing);

}  // namespace torvel
