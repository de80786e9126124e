#include "torvelcmd2/attmanager/select_attributed_block.h"

#include "drawingdb/block_reference.h"
#include "hostapi/module_functions.h"
#include "torvelcmd2/attributes/attributed_blocks.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

// What is said of an object that does not suit, before the next try.
unsigned refusalOf(OdDbObjectId picked, bool editableOnly) {
    if (!picked.isKindOf(OdDbBlockReference::desc())) return IDS_OBJECT_IS_NOT_A_BLOCK;
    return editableOnly ? IDS_NO_EDITABLE_ATTRIBUTES : IDS_ATTSYNC_NO_ATTRIBUTES;
}

}  // namespace

int selectAttributedBlock(OdDbObjectId& blockRef, OdDbObjectId& attribute, bool editableOnly, bool allowNone) {
    blockRef = OdDbObjectId();
    const OdString prompt = loadText(IDS_SELECT_A_BLOCK);
    for (int flags = hostapi::kSingleEntity;; flags |= hostapi::kRetry) {
        hostapi::Pick pick;
        const int status = askEntity(prompt, pick, flags);
        if (status == hostapi::kEmpty && !allowNone) continue;
        if (status != hostapi::kValue) return status;
        if (pick.entity.isNull()) continue;
        if (!blockHasAttributes(pick.entity, editableOnly)) {
            printLine(loadText(refusalOf(pick.entity, editableOnly)));
            continue;
        }
        blockRef = pick.entity;
        OdDbObjectId holder, met;
        if (isAttRefSelected(&pick, &holder, &met) == hostapi::kValue && holder == blockRef) attribute = met;
        return hostapi::kValue;
    }
}

bool AttrRefSelReactor::selected(OdDbObjectId entity, const OdDbObjectId* containers, std::size_t containerCount) {
    if (!entity.openIf<OdDbAttribute>()) return false;
    attribute_ = entity;
    path_.clear();
    for (std::size_t i = 0; i < containerCount && containers[i].openIf<OdDbBlockReference>(); ++i)
        path_.push_back(containers[i]);
    return true;
}

}  // namespace torvel

extern "C" int isAttRefSelected(const hostapi::Pick* pick, OdDbObjectId* blockRef, OdDbObjectId* attribute) {
    using namespace torvel;
    auto* const selectNested = hostService(hostapi::selectNested);
    if (!selectNested) return hostapi::kCancel;
    AttrRefSelReactor reactor;
    hostapi::Pick found;
    const int status = selectNested(loadText(IDS_SELECT_ATTRIBUTE).c_str(), 0, pick, &reactor, found);
    if (status == hostapi::kCancel) return status;
    if (status != hostapi::kValue || reactor.path().size() != 1) return hostapi::kEmpty;
    if (blockRef) *blockRef = reactor.path().front();
    if (attribute) *attribute = reactor.attribute();
    return hostapi::kValue;
}
static_assert(hostapi::fits(hostapi::isAttRefSelected, &isAttRefSelected));
