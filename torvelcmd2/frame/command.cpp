#include "torvelcmd2/frame/command.h"

#include "base/resources.h"
#include "drawingdb/block.h"
#include "drawingdb/viewport.h"
#include "torvelcmd2/frame/module_instance.h"

namespace torvel {

RunFrame reachDocument() {
    // The application is reached once for each: the host may be asked to activate a document in between.
    OdDbDatabasePtr database = hostApplication()->activeDocument()->database();
    HostEdInput* const input = hostApplication()->activeDocument()->input();
    return {std::move(database), input};
}

CMD_RUNSTATUS statusOfInput(int inputResult) {
    return inputResult == hostapi::kCancel ? kCommandCancelled : kCommandFinished;
}

OdString loadText(unsigned id) { return base::loadString(GetModuleResourceHandle(), id); }

void printLine(const OdString& text) { GetCurrentInput()->printMessage(L"%s", text.c_str()); }

OdDbObjectId targetSpaceId(const OdDbDatabase& database) {
    const OdDbObjectId current = database.currentSpaceId();
    const OdDbObjectId viewport = database.activeViewportId();
    if (current == database.modelSpaceId() || viewport.isNull()) return current;
    // Number 1 is the paper space's own viewport.
    return viewport.openAs<OdDbViewport>()->number() > 1 ? database.modelSpaceId() : current;
}

void appendToSpace(OdDbObjectId space, OdDbEntity& entity) {
    space.openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(&entity);
}

}  // namespace torvel
