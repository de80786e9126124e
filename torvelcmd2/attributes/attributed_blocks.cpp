#include "torvelcmd2/attributes/attributed_blocks.h"

#include <utility>

#include "base/format.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/layer_states.h"
#include "drawingdb/symbol_table.h"
#include "torvelcmd2/frame/command.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {

bool hasDefinitions(const OdDbBlockTableRecord& block, Definitions which) {
    return block.hasAttributeDefinitions(which == Definitions::kNotConstant);
}

std::vector<AttributedBlock> attributedBlocks(const OdDbDatabase& database, Definitions which) {
    std::vector<AttributedBlock> blocks;
    const auto table = database.blockTableId().openIf<OdDbSymbolTable>();
    if (!table) return blocks;  // an old drawing of bare entities
    for (OdDbObjectId id : table->records()) {
        const auto block = id.openAs<OdDbBlockTableRecord>();
        OdString name = block->name();
        // Spaces have other names in old drawings.
        if (!name.starts_with(L'*') && !block->isLayout() && hasDefinitions(*block, which))
            blocks.push_back({id, std::move(name)});
    }
    return blocks;
}

bool blockHasAttributes(OdDbObjectId id, bool editableOnly) {
    id.openAs<OdDbEntity>();  // anything else is an error of the caller
    if (!id.isKindOf(OdDbBlockReference::desc())) return false;
    const auto block = OdDbBlockReference::blockTableRecordOf(id).openIf<OdDbBlockTableRecord>();
    return block && hasDefinitions(*block, editableOnly ? Definitions::kNotConstant : Definitions::kAny);
}

OdDbObjectIdArray editableAttributes(const OdDbBlockReference& reference) {
    OdDbObjectIdArray editable;
    for (OdDbObjectId id : reference.attributes())
        if (const auto attribute = id.openIf<OdDbAttribute>(); attribute && !attribute->isConstant())
            editable.push_back(id);
    return editable;
}

OdString lockedLayerOf(OdDbObjectId attribute) {
    for (OdDbObjectId id : {attribute, attribute.containerId()})
        if (const auto entity = id.openIf<OdDbEntity>(); entity && drawingdb::isOnLockedLayer(*entity))
            return entity->layer();
    return {};
}

OdString lockedLayerText(const OdString& layer) { return base::formatPositional(loadText(IDS_LAYER_IS_LOCKED), layer); }

OdString refusalToEdit(OdDbObjectId attribute) {
    if (attribute.database()->isReadOnly()) return loadText(IDS_DRAWING_IS_READ_ONLY);
    const OdString layer = lockedLayerOf(attribute);
    return layer.empty() ? layer : lockedLayerText(layer);
}

}  // namespace torvel
