#include "torvelcmd2/extract/att_ext.h"

#include <algorithm>
#include <map>

#include "base/paths.h"
#include "drawingdb/block_reference.h"
#include "torvelcmd2/extract/att_ext_dialog.h"
#include "torvelcmd2/extract/extract.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

constexpr int kClosedWithoutButton = 3;

OdString drawingPath(const OdDbDatabase& database) {
    if (!database.fileName().empty()) return base::absolutePath(database.fileName());
    return hostVariable(hostapi::getTextVariable, L"DWGNAME", OdString());
}

// Replaced whole, also by nothing when the selection was cancelled.
void selectObjects(CAttExtDlg& dialog, OdDbObjectIdArray& selection) {
    askSet(loadText(IDS_ATTEXT_SELECT_OBJECTS), selection);
    dialog.setNumberFound(static_cast<int>(selection.size()));
}

// Until the user wants the extract, or no more. True for OK.
bool workDialog(CAttExtDlg& dialog, OdDbObjectIdArray& selection) {
    for (;;) {
        switch (dialog.runModal()) {
            case dialogs::kOkButton:
                return true;
            case dialogs::kCancelButton:
            case kClosedWithoutButton:
                return false;
            case CAttExtDlg::kSelectObjects:
                selectObjects(dialog, selection);
                break;
            default:
                break;
        }
    }
}

// By block definition, so that all references of one block stand together, and by reference. There are few blocks, and
// a selection is nearly always in order, so that sorting all pairs would mostly be in vain.
OdDbObjectIdArray orderedReferences(const OdDbObjectIdArray& selection) {
    std::map<OdDbObjectId, OdDbObjectIdArray> byBlock;
    for (OdDbObjectId id : selection)
        if (id.isValid() && id.isKindOf(OdDbBlockReference::desc()))
            byBlock[OdDbBlockReference::blockTableRecordOf(id)].push_back(id);
    OdDbObjectIdArray ordered;
    for (auto& [block, references] : byBlock) {
        if (!std::ranges::is_sorted(references)) std::ranges::sort(references);
        ordered.insert(ordered.end(), references.begin(), references.end());
    }
    return ordered;
}

// The number of records written.
int writeExtract(const CAttExtDlg& dialog, const OdDbObjectIdArray& selection) {
    if (selection.empty()) return 0;
    ExtractSettings& settings = extractSettings();
    settings.format = dialog.format();
    settings.isUtf8 = hostVariable(hostapi::getIntegerVariable, L"EXTRACTUTF8", 0) != 0;
    const OdString templatePath = dialog.templatePath();
    if (dialog.format() == ExtractFormat::dxf)
        return writeDxfExtract(selection, dialog.outputPath(), templatePath.c_str());
    settings.delimiter.assign(1, dialog.format() == ExtractFormat::commaDelimited ? ',' : ' ');
    const OdDbObjectIdArray references = orderedReferences(selection);
    return references.empty() ? 0 : writeDelimitedExtract(templatePath, dialog.outputPath(), references);
}

}  // namespace

CMD_RUNSTATUS AttExtCmd::run() {
    // Failed until at least one record is written.
    setRunStatus(kCommandCancelled);
    const ModuleResources resources;
    const RunFrame frame = reachDocument();
    CAttExtDlg dialog(drawingPath(*frame.database));
    OdDbObjectIdArray selection;
    if (!workDialog(dialog, selection)) return runStatus();
    const int written = writeExtract(dialog, selection);
    if (written > 0) setRunStatus(kCommandFinished);
    // The count is told whatever happened, 0 included.
    frame.input->printMessage(loadText(IDS_ATTEXT_COUNT).c_str(), written);
    return runStatus();
}

}  // namespace torvel
