// Which blocks and references have attributes that a user can edit.
#pragma once

#include <vector>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/database.h"

namespace torvel {

/// Which attribute definitions count.
enum class Definitions { kAny, kNotConstant };

bool hasDefinitions(const OdDbBlockTableRecord& block, Definitions which);

struct AttributedBlock {
    OdDbObjectId id;
    OdString name;
};
/// The blocks with such definitions, in the order of the block table. Spaces and anonymous blocks, whose names begin
/// with "*", never count.
std::vector<AttributedBlock> attributedBlocks(const OdDbDatabase& database, Definitions which);

/// Whether this is a reference whose block has an attribute definition; with `editableOnly` one that is not constant.
/// Throws OdError_NotThatKindOfClass when the id names no entity.
bool blockHasAttributes(OdDbObjectId id, bool editableOnly);

/// The attributes that are not constant, in their order.
OdDbObjectIdArray editableAttributes(const OdDbBlockReference& reference);

/// ---- what cannot be edited
/// What keeps an attribute, or the reference with it, from being edited: the name of a locked layer; empty when nothing
/// does. Commands that edit the attributes of one reference leave such an attribute alone; those that go by the block
/// (AttSync, the Block Attribute Manager) change it all the same.
OdString lockedLayerOf(OdDbObjectId attribute);
/// What the user is told of it, a sentence.
OdString lockedLayerText(const OdString& layer);
/// Why an attribute cannot be edited, a sentence: its drawing is damaged, or what lockedLayerOf() finds; empty when
/// nothing keeps it from being edited.
OdString refusalToEdit(OdDbObjectId attribute);

}  // namespace torvel
