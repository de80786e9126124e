// A block out of another drawing.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "drawingdb/database.h"

/// What importBlock has made, and what its caller may want to tell.
struct OdDbImportedBlock {
    OdDbObjectId block;                                        ///< its record in the target
    std::vector<OdString> kept;                                ///< blocks within it of which the target has its own
    std::vector<std::pair<std::string, std::size_t>> leftOut;  ///< objects that hang on others and that the target's
                                                               ///< version does not hold: kind and how many
};

/// Makes the block `name` of `target` what `block` of `source`, another drawing, is. The two may differ in version,
/// spelling and code page. `block` is model space, whose base point $INSBASE says, or any other block.
///
/// What the entities name or own comes along with new handles: layers, linetypes, styles, the blocks within,
/// dictionaries, fields, objects that a dictionary of the drawing has by a name. Of what the target has by the same
/// name, its own is used as it stands; anonymous blocks get free names. Materials and plot styles are never brought
/// along. Reactors and pointers to what does not come along are dropped.
///
/// A block that is there is made anew: its record and references stay, and the references keep their attributes.
///
/// Throws before anything is changed: OdError(notHeldByVersion) with kinds, counts and names that the target's version
/// does not hold, OdError(invalidInput) when the block would hold itself, OdError(readOnly) for a target that cannot
/// be changed. Does not change the source.
DRAWINGDB_API OdDbImportedBlock importBlock(OdDbDatabase& target, const OdString& name, OdDbObjectId block);
