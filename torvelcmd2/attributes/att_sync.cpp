// AttSync: asks for a block, by its name or by a reference, and brings its references in the current space in line.
#include "torvelcmd2/attributes/att_sync.h"

#include <algorithm>
#include <vector>

#include "base/format.h"
#include "base/text.h"
#include "drawingdb/block_reference.h"
#include "torvelcmd2/attributes/attributed_blocks.h"
#include "torvelcmd2/attributes/sync_reference.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

using AttributedBlocks = std::vector<AttributedBlock>;

void printListing(const AttributedBlocks& blocks) {
    OdString line = loadText(IDS_ATTSYNC_LIST_HEAD);
    const wchar_t* separator = L" ";
    for (const AttributedBlock& block : blocks) {
        line += separator + block.name;
        separator = L", ";
    }
    printLine(line);
}

// A null id: none was chosen.
AttributedBlock askName(HostEdInput& input, const AttributedBlocks& blocks) {
    constexpr int kListing = hostapi::kFirstKeyword;
    const OdString prompt = loadText(IDS_ATTSYNC_ENTER_NAME);
    const OdString keyword = loadText(IDS_ATTSYNC_NAME_KEYWORD);
    for (;;) {
        OdString name;
        const int result = askText(input, prompt, name, keyword);
        if (result == kListing) {
            printListing(blocks);
            continue;
        }
        // A cancel and an empty answer end the command without a message.
        if (result != hostapi::kValue || name.empty()) return {};
        const auto found = std::ranges::find_if(
            blocks, [&](const AttributedBlock& block) { return base::equalsNoCase(block.name, name); });
        if (found != blocks.end()) return *found;
        printLine(base::formatPositional(loadText(IDS_ATTSYNC_NO_SUCH_BLOCK), name));
    }
}

bool confirms(HostEdInput& input, const AttributedBlock& block) {
    constexpr int kYes = hostapi::kFirstKeyword;
    const OdString prompt = base::formatPositional(loadText(IDS_ATTSYNC_CONFIRM), block.name);
    const int result = askKeyword(input, prompt, loadText(IDS_ATTSYNC_YES_NO_KEYWORDS));
    return result == hostapi::kEmpty || result == kYes;
}

AttributedBlock selectBlock(HostEdInput& input, const AttributedBlocks& blocks) {
    const OdString prompt = loadText(IDS_ATTSYNC_SELECT_BLOCK);
    for (;;) {
        hostapi::Pick pick;
        if (askEntity(prompt, pick) == hostapi::kCancel) return {};
        if (pick.entity.isNull()) {
            printLine(loadText(IDS_ATTSYNC_SELECTION_ERROR));
            continue;
        }
        const auto reference = pick.entity.openIf<OdDbBlockReference>();
        if (!reference) {
            printLine(loadText(IDS_ATTSYNC_NOT_A_BLOCK));
            continue;
        }
        const auto found = std::ranges::find(blocks, reference->blockTableRecord(), &AttributedBlock::id);
        if (found == blocks.end()) {
            printLine(loadText(IDS_ATTSYNC_NO_ATTRIBUTES));
            continue;
        }
        // Everything but a yes, a cancel too, goes back to the selection.
        if (confirms(input, *found)) return *found;
    }
}

AttributedBlock chooseBlock(HostEdInput& input, const AttributedBlocks& blocks) {
    constexpr int kListing = hostapi::kFirstKeyword;
    constexpr int kName = hostapi::kFirstKeyword + 1;
    constexpr int kSelect = hostapi::kFirstKeyword + 2;
    const OdString prompt = loadText(IDS_ATTSYNC_ENTER_OPTION);
    const OdString keywords = loadText(IDS_ATTSYNC_KEYWORDS);
    for (;;) {
        switch (askKeyword(input, prompt, keywords)) {
            case kListing:
                printListing(blocks);
                break;
            case kName:
                return askName(input, blocks);
            case kSelect:
            case hostapi::kEmpty:
                return selectBlock(input, blocks);
            default:
                return {};
        }
    }
}

// References nested in other blocks or lying in other layouts are left alone deliberately.
void synchronizeBlock(OdDbObjectId block, OdDbDatabase& database) {
    ReferenceSynchronizer synchronizer(block);
    auto* const activeSpace = hostService(hostapi::getActiveBTRId);
    if (!activeSpace) return;
    OdDbObjectId space;
    activeSpace(space, &database);
    synchronizer.synchronizeReferencesIn(space);
}

}  // namespace

CMD_RUNSTATUS CAttSyncCmd::run() {
    setRunStatus(kCommandRunning);
    const RunFrame frame = reachDocument();
    const AttributedBlocks blocks = attributedBlocks(*frame.database, Definitions::kNotConstant);
    if (blocks.empty()) {
        printLine(loadText(IDS_ATTSYNC_NO_ATTRIBUTED_BLOCKS));
        return setRunStatus(kCommandCancelled);
    }
    const AttributedBlock chosen = chooseBlock(*frame.input, blocks);
    if (chosen.id.isNull()) return setRunStatus(kCommandCancelled);
    synchronizeBlock(chosen.id, *frame.database);
    printLine(loadText(IDS_ATTSYNC_COMPLETE));
    return setRunStatus(kCommandFinished);
}

}  // namespace torvel
