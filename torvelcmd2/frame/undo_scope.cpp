#include "torvelcmd2/frame/undo_scope.h"

#include <utility>

#include "torvelcmd2/frame/host_binding.h"

namespace torvel {
namespace {

void callFor(HostDocument* document, const hostapi::Service<void(HostDocument*)>& service) {
    if (auto* const function = hostService(service)) function(document);
}

}  // namespace

UndoScope::UndoScope() : document_(activeDocument()) {
    // All of it must be there: a group that nobody can count is never closed.
    auto* const depth = hostService(hostapi::undoGroupDepth);
    auto* const open = hostService(hostapi::openUndoGroup);
    if (!depth || !open || !hostService(hostapi::closeUndoGroup) || !hostService(hostapi::rollBackUndoGroup))
        document_ = nullptr;
    if (!document_) return;
    depth_ = depth(document_);
    open(document_);
}

UndoScope::~UndoScope() {
    try {
        rollBack();
    } catch (...) {
        // Out of memory: the host takes its whole command back.
    }
}

bool UndoScope::isAboveDepth() const {
    auto* const depth = hostService(hostapi::undoGroupDepth);
    return document_ && depth && depth(document_) > depth_;
}

void UndoScope::keep() {
    while (isAboveDepth()) callFor(document_, hostapi::closeUndoGroup);
}

void UndoScope::rollBack() {
    while (isAboveDepth()) callFor(document_, hostapi::rollBackUndoGroup);
}

ScratchGroup::ScratchGroup(OdDbDatabasePtr database)
    : database_(std::move(database)), depth_(database_->undoGroupDepth()) {
    database_->blockUndoRecording(true);
}

ScratchGroup::~ScratchGroup() {
    while (database_->undoGroupDepth() > depth_) database_->rollBackUndoGroup();
}

}  // namespace torvel
