// What an unsaved drawing is kept in while a window has it, so that no end of the program loses it; and who has a
// drawing open.
//
// A window has a record in the user's state folder, which it holds while it lives:
//
//     FOLDER/plan.dxf                  the drawing; empty: a new one
//     FOLDER/.plan.dxf.kept-9f3c01a2   the copy, once there is one
//
// A record that nobody holds, with a copy that is there, is of a window that did not end in order.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/file_hold.h"
#include "drawingdb/database.h"

namespace host {

/// A copy that a window has left behind.
struct LeftCopy {
    std::wstring drawing;  // empty: a new one
    std::wstring copy;
};

class KeptAside {
  public:
    /// Records are kept in `folder`, which is made. Throws base::FileError.
    explicit KeptAside(std::wstring folder);
    /// The copy and the record go, but for those that were left.
    ~KeptAside();
    KeptAside(const KeptAside&) = delete;
    KeptAside& operator=(const KeptAside&) = delete;

    /// The copies that windows have left behind. They are this window's from then on: nobody else is offered them while
    /// it lives, and what is not dropped is offered again after it.
    std::vector<LeftCopy> takeLeft();
    /// Deletes a copy that was taken, and what was known of it.
    void dropLeft(const LeftCopy& left);

    /// Which drawing the window shows; the copy of the one before goes.
    void show(const std::wstring& drawing);
    /// Writes a copy beside the drawing, or into the folder where that cannot be. Throws base::FileError, OdError.
    void keep(OdDbDatabase& database);
    /// The drawing is saved: the copy goes.
    void drop();
    bool hasCopy() const { return !copy_.empty(); }
    /// The window does not end in order: its copy is for the next one.
    void leaveCopy() { isLeft_ = true; }

  private:
    void writeRecord();

    std::wstring folder_;
    std::wstring extension_;  // of the copies of this window: no other window of anybody has it
    std::unique_ptr<base::FileHold> record_;
    std::wstring drawing_, copy_;
    bool isLeft_ = false;
    struct Taken {
        std::unique_ptr<base::FileHold> record;
        LeftCopy left;
    };
    std::vector<Taken> taken_;
};

/// A drawing that is open for changes in a window: no other window of any user gets it at the same time.
class DrawingHold {
  public:
    /// Where the folder cannot be written, nobody can save there either, and the drawing is free for all.
    explicit DrawingHold(const std::wstring& drawing);
    bool isHeld() const { return !hold_ || hold_->isHeld(); }

  private:
    std::unique_ptr<base::FileHold> hold_;
};

}  // namespace host
