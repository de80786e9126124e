#include "torvelcmd2/attmanager/batt_man.h"

#include <vector>

#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "torvelcmd2/attmanager/batt_man_dialog.h"
#include "torvelcmd2/attmanager/select_attributed_block.h"
#include "torvelcmd2/attributes/attributed_blocks.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

// What an external drawing defines is changed there.
bool isExternal(OdDbObjectId block) { return block.openAs<OdDbBlockTableRecord>()->isFromExternalReference(); }

std::vector<AttributedBlock> blocksToManage(const OdDbDatabase& database) {
    std::vector<AttributedBlock> blocks = attributedBlocks(database, Definitions::kAny);
    std::erase_if(blocks, [](const AttributedBlock& block) { return isExternal(block.id); });
    return blocks;
}

// Of the reference that was selected first before the command; null when it is none with attributes.
OdDbObjectId impliedBlock() {
    const OdDbObjectIdArray selected = pickFirst();
    if (selected.empty() || !blockHasAttributes(selected.front(), false)) return {};
    const OdDbObjectId block = OdDbBlockReference::blockTableRecordOf(selected.front());
    return isExternal(block) ? OdDbObjectId() : block;
}

OdDbObjectId pickBlock() {
    OdDbObjectId reference, attribute;
    constexpr bool kEditableOnly = true, kAllowNone = true;
    if (selectAttributedBlock(reference, attribute, !kEditableOnly, !kAllowNone) != hostapi::kValue) return {};
    const OdDbObjectId block = OdDbBlockReference::blockTableRecordOf(reference);
    if (!isExternal(block)) return block;
    printLine(loadText(IDS_BATTMAN_EXTERNAL));
    return {};
}

// Until the user has done; true for OK.
bool workDialog(CBAttManDlg& dialog) {
    for (;;) {
        switch (dialog.runModal()) {
            case dialogs::kOkButton:
                return true;
            case CBAttManDlg::kSelectBlock:
                if (const OdDbObjectId block = pickBlock()) dialog.chooseBlock(block);
                break;
            case CBAttManDlg::kEdit:
                dialog.editDefinition();
                break;
            default:
                return false;
        }
    }
}

}  // namespace

CMD_RUNSTATUS BAttManCmd::run() {
    setRunStatus(kCommandRunning);
    const ModuleResources resources;
    const RunFrame frame = reachDocument();
    const std::vector<AttributedBlock> blocks = blocksToManage(*frame.database);
    if (blocks.empty()) {
        printLine(loadText(IDS_ATTSYNC_NO_ATTRIBUTED_BLOCKS));
        return setRunStatus(kCommandCancelled);
    }
    CBAttManDlg dialog(frame.database, blocks);
    if (const OdDbObjectId block = impliedBlock()) dialog.chooseBlock(block);
    return setRunStatus(workDialog(dialog) ? kCommandFinished : kCommandCancelled);
}

}  // namespace torvel
