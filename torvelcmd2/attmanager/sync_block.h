// Brings all references of a block in line with its definitions, in every space.
#pragma once

#include "drawingdb/object.h"

namespace torvel {

/// Goes through model space first, then each layout once in the order of the block table. What each reference gets is
/// told at ReferenceSynchronizer; references nested in other blocks stay as they are. `definitions` are the block's, in
/// its order.
void syncBlockReferences(OdDbObjectId block, const OdDbObjectIdArray& definitions);

}  // namespace torvel
