// The block that the manager works on, with its changes.
#pragma once

#include "drawingdb/database.h"
#include "torvelcmd2/attributes/values/local_undo.h"

namespace torvel {

/// A block's attribute definitions while they are edited. Each change is a step of one stack of restore points, so that
/// what was not applied yet can be taken back; whoever edits a definition works on the same stack, above the step that
/// was begun for it.
class EditedBlock {
  public:
    explicit EditedBlock(OdDbDatabasePtr database);

    /// Makes a block the one that is edited. The changes to the one before must have been kept or taken back.
    void open(OdDbObjectId block);

    /// Null before the first.
    OdDbObjectId block() const { return block_; }
    /// All of them, in the block's order.
    const OdDbObjectIdArray& definitions() const { return definitions_; }
    /// Whether there are changes that were neither kept nor taken back.
    bool isChanged() const { return undo_.level() > 0; }
    HostLocalUndo& undo() { return undo_; }

    /// The two change places in the block, with all that belongs to them.
    void exchange(std::size_t definition, std::size_t other);
    void remove(std::size_t definition);

    /// Brings all references in line and shows the drawing anew; the changes are kept then.
    void synchronize();
    void keep() { undo_.dropTo(0); }
    /// Shows the drawing anew.
    void takeBack();

  private:
    void findDefinitions();

    OdDbDatabasePtr database_;
    HostLocalUndo undo_;
    OdDbObjectId block_;
    OdDbObjectIdArray definitions_;
};

}  // namespace torvel
