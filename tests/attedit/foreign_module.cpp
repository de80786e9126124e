#include "foreign_module.h"

#include "base/modules.h"
#include "drawingdb/database.h"

extern "C" {

int foreignAsk(OdDbObjectId blockId, const OdGeMatrix3d& transform, std::vector<ForeignValue>& answers) {
    auto* const ask = base::findFunction(hostapi::ShowAttEditDialog);
    if (!ask) return -1;
    hostapi::AttributeValues values;
    const auto block = blockId.openAs<OdDbBlockTableRecord>();
    for (OdDbObjectId id : block->entities())
        if (const auto definition = id.openIf<OdDbAttributeDefinition>(); definition && !definition->isConstant())
            values.emplace_back(definition, definition->textString());
    block->database()->blockUndoRecording(true);
    const int result = ask(block->name(), values, transform);
    for (const auto& [definition, text] : values)
        answers.push_back({text, definition->textString(), static_cast<bool>(definition->getField(L"TEXT"))});
    block->database()->rollBackUndoGroup();
    return result;
}

int foreignEdit(OdDbObjectId reference) {
    auto* const edit = base::findFunction(hostapi::ShowAttEditDialogEx);
    return edit ? edit(reference) : -1;
}

}  // extern "C"
