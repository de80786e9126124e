#include "torvelcmd2/extract/burst/burst.h"

#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "torvelcmd2/extract/burst/burst_reference.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/frame/module_dialog.h"
#include "torvelcmd2/frame/progress.h"

namespace torvel {
namespace {

// Empty when the selection was cancelled, too.
OdDbObjectIdArray selectObjects() {
    OdDbObjectIdArray selected;
    askSet(L"Select objects", selected);
    return selected;
}

// The objects selected will not be there any more.
void clearHostSelection() {
    if (auto* const setPickFirst = hostService(hostapi::setPickFirst)) setPickFirst(OdDbObjectIdArray());
}

// Whatever is no reference is passed over.
void burstObject(OdDbObjectId id, ReferenceBurster& burster) {
    const auto reference = id.openIf<OdDbBlockReference>(OdDb::forWrite);
    if (!reference) return;
    const auto owner = reference->blockId().openAs<OdDbBlockTableRecord>(OdDb::forWrite);
    if (burster.burst(*reference, *owner))
        reference->erase();
    else if (!burster.obstacle().empty())
        notifyUser(L"reference #" + reference->handle().text() + L" stays: its " + burster.obstacle());
}

}  // namespace

CMD_RUNSTATUS BurstCmd::run() {
    setRunStatus(kCommandRunning);
    const OdDbObjectIdArray selected = selectObjects();
    if (selected.empty()) return setRunStatus(kCommandCancelled);
    clearHostSelection();
    ReferenceBurster burster;
    ProgressSteps progress(selected.size());
    for (OdDbObjectId id : selected) {
        burstObject(id, burster);
        progress.step();
    }
    return setRunStatus(kCommandFinished);
}

}  // namespace torvel
