#include "torvelhost/commands/double_click.h"

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/layer.h"
#include "drawingdb/mtext.h"
#include "torvelhost/commands/module_function.h"

namespace host {
namespace {

using commands::HostRun;
using commands::moduleFunction;

CMD_RUNSTATUS statusOfEdit(bool edited) { return edited ? kCommandFinished : kCommandCancelled; }

bool hasEditableAttributes(const OdDbBlockReference& reference) {
    const auto block = reference.blockTableRecord().openIf<OdDbBlockTableRecord>();
    if (!block) return false;
    for (OdDbObjectId id : block->entities())
        if (const auto definition = id.openIf<OdDbAttributeDefinition>(); definition && !definition->isConstant())
            return true;
    return false;
}

CMD_RUNSTATUS editAttributes(OdDbObjectId reference) {
    auto* const edit = moduleFunction(hostapi::doEAttEdit);
    OdDbObjectId attribute;
    // It tells by the status of a command how it ended.
    return edit && edit(reference, attribute) == kCommandFinished ? kCommandFinished : kCommandCancelled;
}

CMD_RUNSTATUS redefine(OdDbObjectId definition) {
    auto* const edit = moduleFunction(hostapi::ShowAttDDEIT);
    return statusOfEdit(edit && edit(definition) == 1);
}

CMD_RUNSTATUS editText(OdDbEntity& text, HostRun& run) {
    if (const auto layer = text.layerId().openIf<OdDbLayerTableRecord>(); layer && layer->isLocked())
        return run.refused(L"the layer " + layer->name() + L" is locked");
    const base::ModuleReference editor = base::loadModule(base::libraryFileName(hostapi::kTextEditorModule));
    text.upgradeOpen();
    if (auto* const paragraphs = drawingdb::as<OdDbMText>(text)) {
        auto* const edit = base::findFunction<bool(OdDbMText&, const wchar_t*)>(editor.get(), hostapi::editMText.name);
        return statusOfEdit(edit && edit(*paragraphs, L"ATTIPE"));
    }
    auto* const edit = base::findFunction<bool(OdDbText&, HostEdInput&)>(editor.get(), hostapi::editText.name);
    return statusOfEdit(edit && edit(static_cast<OdDbText&>(text), run.input));
}

}  // namespace

std::function<CMD_RUNSTATUS()> editorOf(const hostapi::Pick& pick, HostRun& run) {
    if (pick.nested.isKindOf(OdDbAttribute::desc())) return nullptr;
    if (const auto reference = pick.entity.openIf<OdDbBlockReference>())
        return hasEditableAttributes(*reference) ? [id = pick.entity] { return editAttributes(id); }
                                                 : std::function<CMD_RUNSTATUS()>();
    if (pick.entity.isKindOf(OdDbAttributeDefinition::desc())) return [id = pick.entity] { return redefine(id); };
    if (pick.entity.isKindOf(OdDbText::desc()) || pick.entity.isKindOf(OdDbMText::desc()))
        return [id = pick.entity, &run] { return editText(*id.openAs<OdDbEntity>(), run); };
    return nullptr;
}

}  // namespace host
