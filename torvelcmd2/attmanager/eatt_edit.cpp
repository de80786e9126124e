#include "torvelcmd2/attmanager/eatt_edit.h"

#include "hostapi/module_functions.h"
#include "torvelcmd2/attmanager/eatt_edit_dialog.h"
#include "torvelcmd2/attmanager/select_attributed_block.h"
#include "torvelcmd2/attributes/attributed_blocks.h"
#include "torvelcmd2/frame/ask.h"

namespace torvel {
namespace {

// The first object selected before, when its attributes can be edited.
OdDbObjectId impliedReference() {
    const OdDbObjectIdArray selected = pickFirst();
    return !selected.empty() && blockHasAttributes(selected.front(), true) ? selected.front() : OdDbObjectId();
}

// That of the reference, or the active one where there is none; null: no drawing is open.
OdDbDatabase* drawingOf(OdDbObjectId reference) {
    if (reference) return reference.database();
    HostDocument* const document = activeDocument();
    return document ? document->database() : nullptr;
}

// The one chosen before stays when the user has none, or one without attributes.
void chooseOther(CEAttEditDlg& dialog) {
    OdDbObjectId reference, attribute;
    if (selectAttributedBlock(reference, attribute, true, false) == hostapi::kValue) dialog.load(reference, attribute);
}

// Until the user has had enough.
bool edit(CEAttEditDlg& dialog) {
    for (;;) {
        switch (dialog.runModal()) {
            case dialogs::kOkButton:
                return true;
            case dialogs::kCancelButton:
                return false;
            case CEAttEditDlg::kSelectBlock:
                chooseOther(dialog);
                break;
            case CEAttEditDlg::kEditMultiLine:
                dialog.editMultiLineText();
                break;
            default:
                break;
        }
    }
}

}  // namespace

CMD_RUNSTATUS EAttEditCmd::run() {
    setRunStatus(kCommandRunning);
    OdDbObjectId reference = impliedReference(), attribute;
    if (reference.isNull() && selectAttributedBlock(reference, attribute, true, true) != hostapi::kValue)
        return setRunStatus(kCommandCancelled);
    return setRunStatus(doEAttEdit(reference, attribute) == 0 ? kCommandFinished : kCommandCancelled);
}

}  // namespace torvel

extern "C" int doEAttEdit(OdDbObjectId& blockRef, OdDbObjectId& attribute) {
    using namespace torvel;
    OdDbDatabase* const database = drawingOf(blockRef);
    if (!database) return 1;
    const ModuleResources resources;
    CEAttEditDlg dialog(*database);
    // A block can have definitions, and this reference of it no attributes.
    while (!dialog.load(blockRef, attribute)) {
        attribute = OdDbObjectId();
        if (selectAttributedBlock(blockRef, attribute, true, false) != hostapi::kValue) return 1;
    }
    const bool kept = edit(dialog);
    blockRef = dialog.reference();
    attribute = dialog.current();
    return kept ? 0 : 1;
}
static_assert(hostapi::fits(hostapi::doEAttEdit, &doEAttEdit));
