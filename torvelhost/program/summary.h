// What is in a drawing, told without running anything in it.
#pragma once

#include "drawingdb/database.h"
#include "torvelhost/lines/terminal.h"

namespace host {

/// Prints the drawing's blocks with their references and tags, layers, layouts, text styles, kinds of object, and what
/// is wrong with the file; as lines of text, or as JSON.
void printSummary(OdDbDatabase& database, bool asJson, Terminal& terminal);

}  // namespace host
