#include "torvelcmd2/attributes/values/local_undo.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "torvelcmd2/frame/host_binding.h"

namespace torvel {

namespace {

// Null when no drawing is open.
OdDbDatabasePtr activeDatabase() {
    auto* const application = hostApplication();
    auto* const document = application != nullptr ? application->activeDocument() : nullptr;
    return document != nullptr ? OdDbDatabasePtr(document->database()) : OdDbDatabasePtr();
}

}  // namespace

HostLocalUndo::HostLocalUndo() : HostLocalUndo(activeDatabase()) {}

HostLocalUndo::HostLocalUndo(OdDbDatabasePtr database)
    : database_(std::move(database)), outerGroup_(database_ && database_->isUndoBlockStarted()) {
    if (database_ && !outerGroup_) database_->blockUndoRecording(true);
}

HostLocalUndo::~HostLocalUndo() {
    if (database_ && !outerGroup_) database_->blockUndoRecording(false);
}

// A record before the mark and one behind it, so that neither has changes of both sides.
void HostLocalUndo::recordStep() {
    if (!database_) return;
    database_->startUndoRecord();
    database_->setUndoMark();
    database_->startUndoRecord();
    steps_.push_back(1);
}

bool HostLocalUndo::undo() {
    if (steps_.empty()) return false;
    for (int marks = steps_.back(); marks > 0; --marks) database_->undoBack();
    steps_.pop_back();
    database_->startUndoRecord();
    return true;
}

void HostLocalUndo::dropTo(std::int32_t level) {
    const auto kept = static_cast<std::size_t>(std::clamp<std::int32_t>(level, 0, this->level()));
    const int dropped = std::accumulate(steps_.begin() + static_cast<std::ptrdiff_t>(kept), steps_.end(), 0);
    steps_.resize(kept);
    if (!steps_.empty()) steps_.back() += dropped;
}

}  // namespace torvel
