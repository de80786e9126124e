// Undo groups around what a command does: kept together, taken back together, or tried without a trace.
#pragma once

#include "drawingdb/database.h"
#include "hostapi/application.h"

namespace torvel {

/// An undo group of the host's current document, opened here. The groups that are open above the depth found are kept
/// or rolled back together, those too that somebody opened within and left open. A host without undo groups has no
/// scope: everything stays then.
class UndoScope {
  public:
    UndoScope();
    /// Rolls back what was not kept.
    ~UndoScope();
    UndoScope(const UndoScope&) = delete;
    UndoScope& operator=(const UndoScope&) = delete;

    /// Closes the groups; their changes belong to what is around them.
    void keep();
    void rollBack();

  private:
    bool isAboveDepth() const;

    HostDocument* document_;
    int depth_ = 0;
};

/// Everything that is done to the drawing while one lives is taken back at its end, to the byte: temporary objects
/// leave no field list, no class record and no higher handle behind. Objects that are open follow. What is to stay is
/// carried out as values, in no database, and applied behind it.
class ScratchGroup {
  public:
    explicit ScratchGroup(OdDbDatabasePtr database);
    ~ScratchGroup();
    ScratchGroup(const ScratchGroup&) = delete;
    ScratchGroup& operator=(const ScratchGroup&) = delete;

  private:
    OdDbDatabasePtr database_;
    int depth_;
};

}  // namespace torvel
