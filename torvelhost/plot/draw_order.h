// The order in which entities are drawn, one over the other.
#pragma once

#include <functional>

#include "drawingdb/object_id.h"

namespace host {

// The entities of a block record: in the order of the file, unless the block has a table that says otherwise.
void forEachInDrawOrder(OdDbObjectId block, const std::function<void(OdDbObjectId)>& visit);

}  // namespace host
