#include "torvelcmd2/attributes/att_edit.h"

#include <algorithm>

#include "hostapi/module_functions.h"
#include "torvelcmd2/attributes/att_edit_dialog.h"
#include "torvelcmd2/attributes/attributed_blocks.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/frame/undo_scope.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

// False after Cancel, with the drawing as it was, as it is after an exception.
bool editRows(ValueRows& rows) {
    if (rows.count() == 0) return false;
    const ModuleResources resources;
    CAttEditDlgEx dialog(rows);
    int code = dialog.runModal();
    for (; code == CAttEditDlgEx::kEditMultiLine; code = dialog.runModal()) dialog.editMultiLine();
    if (code != dialogs::kOkButton) return false;
    dialog.keep();
    return true;
}

bool isNull(const hostapi::AttributeValues::value_type& value) { return !boost::get<0>(value); }

}  // namespace
}  // namespace torvel

extern "C" int ShowAttEditDialogEx(const OdDbObjectId& blockReference) {
    using namespace torvel;
    const auto reference = blockReference.openIf<OdDbBlockReference>();
    if (!reference) return 0;
    AttributeRows rows(*reference);
    return editRows(rows) ? 1 : 0;
}
static_assert(hostapi::fits(hostapi::ShowAttEditDialogEx, &ShowAttEditDialogEx));

extern "C" int ShowAttEditDialog(const OdString& blockName, hostapi::AttributeValues& values,
                                 const OdGeMatrix3d& transform) {
    using namespace torvel;
    if (std::ranges::any_of(values, isNull)) return 0;
    DefinitionRows rows(blockName, values, transform);
    if (!editRows(rows)) return 0;
    values = rows.values();
    return 1;
}
static_assert(hostapi::fits(hostapi::ShowAttEditDialog, &ShowAttEditDialog));

namespace torvel {

CMD_RUNSTATUS AttEditCmd::run() {
    setRunStatus(kCommandRunning);
    const ModuleResources resources;
    hostapi::Pick pick;
    if (askEntity(loadText(IDS_SELECT_BLOCK_REFERENCE), pick) != hostapi::kValue || pick.entity.isNull())
        return setRunStatus(kCommandCancelled);
    const auto reference = pick.entity.openIf<OdDbBlockReference>();
    if (!reference) {
        printLine(loadText(IDS_ATTEDIT_OBJECT_IS_NOT_A_BLOCK));
        return setRunStatus(kCommandCancelled);
    }
    if (editableAttributes(*reference).empty()) {
        printLine(loadText(IDS_ATTEDIT_NO_EDITABLE_ATTRIBUTES));
        return setRunStatus(kCommandCancelled);
    }
    UndoScope scope;
    const bool accepted = ShowAttEditDialogEx(pick.entity) == 1;
    if (accepted) scope.keep();
    return setRunStatus(accepted ? kCommandFinished : kCommandCancelled);
}

}  // namespace torvel
