#include "torvelcmd2/attmanager/sync_block.h"

#include <unordered_map>

#include "drawingdb/block.h"
#include "drawingdb/database.h"
#include "torvelcmd2/attributes/sync_reference.h"
#include "torvelcmd2/frame/progress.h"

namespace torvel {
namespace {

OdDbObjectIdArray spacesInOrder(const OdDbDatabase& database) {
    const OdDbObjectId modelSpace = database.modelSpaceId();
    OdDbObjectIdArray spaces = {modelSpace};
    for (OdDbObjectId id : database.blockTableId().openAs<OdDbSymbolTable>()->records())
        if (id != modelSpace && id.openAs<OdDbBlockTableRecord>()->isLayout()) spaces.push_back(id);
    return spaces;
}

}  // namespace

void syncBlockReferences(OdDbObjectId block, const OdDbObjectIdArray& definitions) {
    // Those that lie in spaces, sorted by these once, so that many layouts cost no more than one.
    const OdDbObjectIdArray references = block.openAs<OdDbBlockTableRecord>()->blockReferenceIds(true);
    std::unordered_map<OdDbObjectId, OdDbObjectIdArray> bySpace;
    for (OdDbObjectId id : references) bySpace[id.containerId()].push_back(id);

    ReferenceSynchronizer synchronizer(block, definitions);
    ProgressSteps progress(references.size());
    for (OdDbObjectId space : spacesInOrder(*block.database()))
        for (OdDbObjectId id : bySpace[space]) {
            synchronizer.synchronize(*id.openAs<OdDbBlockReference>());
            progress.step();
        }
}

}  // namespace torvel
