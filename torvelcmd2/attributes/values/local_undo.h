// Restore points of a dialog that changes the drawing while it is open.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "drawingdb/database.h"

namespace torvel {

/// A stack of restore points in the drawing's undo history. What is left of them at the end is forgotten.
class RestorePoints {
  public:
    /// Null: nothing is recorded.
    explicit RestorePoints(OdDbDatabasePtr database) : database_(std::move(database)) {}
    RestorePoints(const RestorePoints&) = delete;
    RestorePoints& operator=(const RestorePoints&) = delete;
    ~RestorePoints() { dropTo(0); }

    /// To be called before the drawing is changed.
    void recordStep();
    /// Takes the drawing back to the last restore point, which is used up. False when there is none.
    bool undo();
    /// The same for all restore points above a level.
    void undoTo(std::int32_t level);

    /// The number of restore points that can be undone.
    std::int32_t level() const { return static_cast<std::int32_t>(marks_.size()); }
    /// Forgets the restore points above a level without undoing them: their changes belong to the one below, and are
    /// kept for good at level 0.
    void dropTo(std::int32_t level);

  private:
    OdDbDatabasePtr database_;
    std::vector<std::uint64_t> marks_;  // the database's, one of each restore point
};

/// The restore points of a dialog. While the object lives its changes form a group: whoever opened the dialog decides
/// at the end whether all of it is kept. The group is the one that was open already, or else one of the object's own.
/// Several may live at once.
class HostLocalUndo : public RestorePoints {
  public:
    /// Works on the drawing that is current in the host.
    HostLocalUndo();
    explicit HostLocalUndo(const OdDbDatabasePtr& database);
    virtual ~HostLocalUndo();

    /// Making one records a restore point.
    class step {
      public:
        explicit step(HostLocalUndo& undo) { undo.recordStep(); }
        virtual ~step() = default;
    };

  private:
    OdDbDatabasePtr groupedIn_;  // null: in the group of somebody else
};

}  // namespace torvel
