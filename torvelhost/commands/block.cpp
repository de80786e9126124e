// BLOCK: makes a block of objects, which go.
#include "drawingdb/block.h"

#include <unordered_set>

#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/layer_states.h"
#include "drawingdb/viewport.h"
#include "torvelhost/commands/host_commands.h"

namespace host::commands {

std::wstring blockNameRefusal(const OdDbDatabase& database, const OdString& name) {
    const std::wstring quoted = L"\"" + name + L"\"";
    // What the spaces are called in old drawings.
    const bool isSpace = base::equalsNoCase(name, L"$MODEL_SPACE") || base::equalsNoCase(name, L"$PAPER_SPACE");
    const auto known = database.findBlock(name).openIf<OdDbBlockTableRecord>();
    if (isSpace || (known && known->isLayout())) return quoted + L" is the block of a layout";
    if (known && known->isFromExternalReference()) return quoted + L" is an external reference";
    if (known ? known->isAnonymous() : !isRecordName(name)) return quoted + L" is no name for a block";
    return L"";
}

bool asksToRedefine(HostRun& run, const OdString& name) {
    const std::wstring prompt = L"Block \"" + name + L"\" already exists. Redefine it? [%s] <No>";
    return run.input.getKeyword(prompt.c_str(), L"Yes No", 0, 0, 0) == kFirstKeyword;
}

namespace {

// Whether one of the entities is a reference to the block or to one that holds it.
bool wouldHoldItself(OdDbObjectId block, const OdDbObjectIdArray& entities) {
    std::vector<OdDbObjectId> ahead;
    const auto lookInto = [&ahead](OdDbObjectId entity) {
        if (const OdDbObjectId held = OdDbBlockReference::blockTableRecordOf(entity); held) ahead.push_back(held);
    };
    for (const OdDbObjectId id : entities) lookInto(id);
    std::unordered_set<OdDbObjectId> seen;
    while (!ahead.empty()) {
        const OdDbObjectId held = ahead.back();
        ahead.pop_back();
        if (held == block) return true;
        if (!seen.insert(held).second) continue;
        for (const OdDbObjectId id : held.openAs<OdDbBlockTableRecord>()->entities()) lookInto(id);
    }
    return false;
}

// Attribute definitions in the order in which they were selected, which is that in which a reference asks for them; the
// rest in the order in which it is drawn. A block holds no viewports, and what lies on a locked layer stays there.
int selectObjects(HostRun& run, OdDbObjectIdArray& entities) {
    OdDbObjectIdArray selected;
    if (run.session.selection.pickSet(L"Select objects", selected) == kCancel) return kCancel;
    drawingdb::LayerStates layers;
    std::size_t viewports = 0, locked = 0;
    std::unordered_set<OdDbObjectId> drawn;
    for (const OdDbObjectId id : selected)
        if (id.isKindOf(OdDbViewport::desc()))
            ++viewports;
        else if (layers.isLocked(id.openAs<OdDbEntity>()->layerId()))
            ++locked;
        else if (id.isKindOf(OdDbAttributeDefinition::desc()))
            entities.push_back(id);
        else
            drawn.insert(id);
    if (!drawn.empty())
        for (const OdDbObjectId id : run.document.activeSpaceId().openAs<OdDbBlockTableRecord>()->entitiesInDrawOrder())
            if (drawn.contains(id)) entities.push_back(id);
    if (viewports != 0) run.terminal().notice(std::to_wstring(viewports) + L" left out: a viewport fits into no block");
    if (locked != 0) run.terminal().notice(std::to_wstring(locked) + L" left out on locked layers");
    return kValue;
}

// The block's axes are those of the user coordinate system, around the base point. The entity that cannot be taken
// there, or null.
OdDbObjectId define(OdDbObjectId block, const OdDbObjectIdArray& entities, const OdGeMatrix3d& toBlock) {
    OdDbIdMapping copies;
    block.openAs<OdDbBlockTableRecord>(OdDb::forWrite)->redefine(entities, copies);
    // What stays where it is may be of any kind.
    const bool moves = toBlock != OdGeMatrix3d::kIdentity;
    for (const OdDbIdMapping::Pair& pair : copies.pairs())
        if (moves && pair.primary && pair.copy.openAs<OdDbEntity>(OdDb::forWrite)->transformBy(toBlock) != OdResult::ok)
            return pair.source;
    for (const OdDbObjectId id : entities) id.openAs<OdDbEntity>(OdDb::forWrite)->erase();
    return {};
}

}  // namespace

CMD_RUNSTATUS block(HostRun& run) {
    OdString name;
    const int named = run.input.ask(L"Enter block name", nullptr, L"a block name",
                                    [&](const Reply& reply, std::wstring& reason) {
                                        name = reply.text;
                                        reason = blockNameRefusal(*run.database, name);
                                        return reason.empty();
                                    },
                                    {Expected::kText});
    if (named != kValue) return kCommandCancelled;
    OdDbObjectId block = run.database->findBlock(name);
    if (block && !asksToRedefine(run, name)) return kCommandCancelled;
    OdGePoint3d base;
    if (run.input.askPoint(L"Specify insertion base point", nullptr, base) != kValue) return kCommandCancelled;
    OdDbObjectIdArray entities;
    if (selectObjects(run, entities) == kCancel) return kCommandCancelled;
    if (entities.empty()) return run.refused(L"nothing is selected that a block could be made of");
    if (block && wouldHoldItself(block, entities)) return run.refused(L"the block \"" + name + L"\" would hold itself");

    const OdGeMatrix3d ucs = run.document.ucs();
    const OdGeMatrix3d toBlock = OdGeMatrix3d::coordSystem(base, ucs.xAxis(), ucs.yAxis(), ucs.zAxis()).inverse();
    const std::size_t before = run.document.undoPosition();
    if (!block) block = OdDbBlockTableRecord::addNew(*run.database, name);
    const OdDbObjectId failed = define(block, entities, toBlock);
    if (!failed) return kCommandFinished;
    const std::wstring what =
        base::widen(failed.openAs<OdDbEntity>()->dxfName()) + L" #" + base::widen(failed.handle().ascii());
    run.database->undoTo(before);
    return run.refused(what + L" cannot be moved into a block; nothing was changed");
}

}  // namespace host::commands
