#include "torvelcmd2/attmanager/edited_block.h"

#include <utility>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "torvelcmd2/attmanager/sync_block.h"
#include "torvelcmd2/frame/host_binding.h"

namespace torvel {
namespace {

void regenerate(OdDbDatabase* database) {
    if (auto* const regenerateDrawing = hostService(hostapi::regenerate)) regenerateDrawing(database);
}

}  // namespace

EditedBlock::EditedBlock(OdDbDatabasePtr database) : database_(std::move(database)), undo_(database_) {}

void EditedBlock::open(OdDbObjectId block) {
    block_ = block;
    findDefinitions();
}

void EditedBlock::findDefinitions() {
    definitions_.clear();
    for (OdDbObjectId id : block_.openAs<OdDbBlockTableRecord>()->entities())
        if (id.isKindOf(OdDbAttributeDefinition::desc())) definitions_.push_back(id);
}

void EditedBlock::exchange(std::size_t definition, std::size_t other) {
    const HostLocalUndo::step step(undo_);
    definitions_[definition].openAs<OdDbAttributeDefinition>(OdDb::forWrite)->swapIdWith(definitions_[other]);
}

void EditedBlock::remove(std::size_t definition) {
    const HostLocalUndo::step step(undo_);
    definitions_[definition].openAs<OdDbAttributeDefinition>(OdDb::forWrite)->erase();
    definitions_.erase(definitions_.begin() + static_cast<std::ptrdiff_t>(definition));
}

void EditedBlock::synchronize() {
    // Before, while little lies behind the steps in the log.
    keep();
    syncBlockReferences(block_, definitions_);
    regenerate(database_.get());
}

void EditedBlock::takeBack() {
    undo_.undoTo(0);
    findDefinitions();
    regenerate(database_.get());
}

}  // namespace torvel
