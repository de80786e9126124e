#include "torvelcmd2/attributes/values/local_undo.h"

#include <algorithm>
#include <utility>

#include "torvelcmd2/frame/host_binding.h"

namespace torvel {

namespace {

// Null when no drawing is open.
OdDbDatabasePtr activeDatabase() {
    HostDocument* const document = activeDocument();
    return document ? OdDbDatabasePtr(document->database()) : OdDbDatabasePtr();
}

}  // namespace

HostLocalUndo::HostLocalUndo() : HostLocalUndo(activeDatabase()) {}

HostLocalUndo::HostLocalUndo(const OdDbDatabasePtr& database)
    : RestorePoints(database), groupedIn_(database && !database->isUndoBlockStarted() ? database : nullptr) {
    if (groupedIn_) groupedIn_->blockUndoRecording(true);
}

HostLocalUndo::~HostLocalUndo() {
    dropTo(0);
    if (groupedIn_) groupedIn_->blockUndoRecording(false);
}

// A record before the mark and one behind it, so that neither has changes of both sides.
void RestorePoints::recordStep() {
    if (!database_) return;
    database_->startUndoRecord();
    marks_.push_back(database_->setUndoMark());
    database_->startUndoRecord();
}

bool RestorePoints::undo() {
    // What somebody else has gone back behind is used up here too.
    while (!marks_.empty() && !database_->hasUndoMark(marks_.back())) marks_.pop_back();
    if (marks_.empty()) return false;
    while (database_->hasUndoMark(marks_.back())) database_->undoBack();
    marks_.pop_back();
    database_->startUndoRecord();
    return true;
}

void RestorePoints::undoTo(std::int32_t level) {
    while (this->level() > level && undo()) {
    }
}

// The marks go from the drawing's history too, or whoever goes back from outside would stop at them.
void RestorePoints::dropTo(std::int32_t level) {
    for (const std::int32_t kept = std::max(level, 0); this->level() > kept; marks_.pop_back())
        database_->dropUndoMark(marks_.back());
}

}  // namespace torvel
