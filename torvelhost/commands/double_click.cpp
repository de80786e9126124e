#include "torvelhost/commands/double_click.h"

#include "base/modules.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/layer_states.h"
#include "drawingdb/mtext.h"
#include "hostapi/module_functions.h"

namespace host {
namespace {

using commands::HostRun;

CMD_RUNSTATUS statusOfEdit(bool edited) { return edited ? kCommandFinished : kCommandCancelled; }

bool hasEditableAttributes(const OdDbBlockReference& reference) {
    const auto block = reference.blockTableRecord().openIf<OdDbBlockTableRecord>();
    return block && block->hasAttributeDefinitions(true);
}

CMD_RUNSTATUS editAttributes(const hostapi::Pick& pick) {
    OdDbObjectId reference = pick.entity, holder, attribute;
    auto* const findAttribute = base::findFunction(hostapi::isAttRefSelected);
    if (!findAttribute || findAttribute(&pick, &holder, &attribute) != hostapi::kValue || holder != reference)
        attribute = OdDbObjectId();
    auto* const edit = base::findFunction(hostapi::doEAttEdit);
    // It tells by the status of a command how it ended.
    return edit && edit(reference, attribute) == kCommandFinished ? kCommandFinished : kCommandCancelled;
}

CMD_RUNSTATUS redefine(OdDbObjectId definition) {
    auto* const edit = base::findFunction(hostapi::ShowAttDDEIT);
    return statusOfEdit(edit && edit(definition) == 1);
}

CMD_RUNSTATUS editText(OdDbEntity& text, HostRun& run) {
    if (drawingdb::isOnLockedLayer(text)) return run.refused(L"the layer " + text.layer() + L" is locked");
    if (auto* const paragraphs = drawingdb::as<OdDbMText>(text)) {
        const base::ModuleFunction edit(hostapi::editMText);
        return statusOfEdit(edit && edit(*paragraphs, L"ATTIPE"));
    }
    const base::ModuleFunction edit(hostapi::editText);
    return statusOfEdit(edit && edit(static_cast<OdDbText&>(text), run.input));
}

}  // namespace

std::function<CMD_RUNSTATUS()> editorOf(const hostapi::Pick& pick, HostRun& run) {
    // An attribute of a reference inside the reference is none that can be edited in place.
    if (pick.nested.isKindOf(OdDbAttribute::desc()) && pick.containers.size() <= 1) return nullptr;
    if (const auto reference = pick.entity.openIf<OdDbBlockReference>())
        return hasEditableAttributes(*reference) ? [pick] { return editAttributes(pick); }
                                                 : std::function<CMD_RUNSTATUS()>();
    if (pick.entity.isKindOf(OdDbAttributeDefinition::desc())) return [id = pick.entity] { return redefine(id); };
    if (pick.entity.isKindOf(OdDbText::desc()) || pick.entity.isKindOf(OdDbMText::desc()))
        return [id = pick.entity, &run] { return editText(*id.openAs<OdDbEntity>(), run); };
    return nullptr;
}

}  // namespace host
