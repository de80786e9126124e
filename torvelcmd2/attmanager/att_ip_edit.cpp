#include "torvelcmd2/attmanager/att_ip_edit.h"

#include "torvelcmd2/attmanager/select_attributed_block.h"
#include "torvelcmd2/attributes/attributed_blocks.h"
#include "torvelcmd2/attributes/multiline_editing.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/frame/module_dialog.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

enum class Implied { kElsewhere = 1, kAttribute = 2, kNothing = 3 };

// Whether the selection made before is one attribute of a reference in the space where the user draws.
Implied impliedAttribute(OdDbObjectId& attribute, OdDbObjectId& blockRef, OdDbDatabase& database) {
    const OdDbObjectIdArray selected = pickFirst();
    if (selected.size() != 1 || !selected.front().isKindOf(OdDbAttribute::desc())) return Implied::kNothing;
    const OdDbObjectId owner = selected.front().containerId();
    if (!owner.isKindOf(OdDbBlockReference::desc())) return Implied::kElsewhere;
    OdDbObjectId space = targetSpaceId(database);
    if (auto* const activeSpace = hostService(hostapi::getActiveBTRId)) activeSpace(space, &database);
    if (owner.containerId() != space) return Implied::kElsewhere;
    attribute = selected.front();
    blockRef = owner;
    return Implied::kAttribute;
}

// The attribute in the group is the one that is edited; only its value comes out.
CMD_RUNSTATUS editSingleLine(OdDbAttribute& attribute) {
    const ModuleFunction edit(hostapi::editText);
    if (!edit) return kCommandCancelled;
    CapturedText value = captureText(attribute);
    {
        const ScratchEditing editing(attribute, WhileEdited::kHidden);
        const auto edited = attribute.objectId().openAs<OdDbAttribute>();
        if (!edit(*edited, *GetCurrentInput())) return kCommandFinished;
        value = captureText(*edited);
    }
    if (!sameText(value, captureText(attribute))) applyText(value, attribute);
    return kCommandFinished;
}

CMD_RUNSTATUS editMultiLineAttribute(OdDbAttribute& attribute) {
    const MultiLineEdit edit = editMultiLine(attribute, WhileEdited::kHidden);
    if (edit.value) applyMultiLine(*edit.value, attribute);
    // A text that was left alone is a command that was finished; only a missing editor is a failure.
    return edit.hasEditor ? kCommandFinished : kCommandCancelled;
}

// The reference is where a multi-line text would be placed by; an attribute lies in world coordinates already.
CMD_RUNSTATUS editAttributeInPlace(OdDbObjectId attributeId, [[maybe_unused]] OdDbObjectId blockRef) {
    if (attributeId.isNull()) return kCommandCancelled;
    const auto attribute = attributeId.openAs<OdDbAttribute>();
    if (const OdString locked = lockedLayerOf(attributeId); !locked.empty()) {
        printLine(lockedLayerText(locked));
        return kCommandCancelled;
    }
    return attribute->isMTextAttribute() ? editMultiLineAttribute(*attribute) : editSingleLine(*attribute);
}

// With a null pick the user is asked for one, again and again until it meets an attribute.
CMD_RUNSTATUS pickAttributeInPlace(const hostapi::Pick* pick) {
    for (;;) {
        OdDbObjectId blockRef, attribute;
        switch (isAttRefSelected(pick, &blockRef, &attribute)) {
            case hostapi::kCancel:
                return kCommandCancelled;
            case hostapi::kEmpty:
                if (pick) return kCommandCancelled;
                printLine(loadText(IDS_UNSUPPORTED_OBJECT));
                break;
            default:
                return editAttributeInPlace(attribute, blockRef);
        }
    }
}

}  // namespace

CMD_RUNSTATUS ATTIPeditCmd::run() {
    setRunStatus(kCommandRunning);
    const ModuleResources resources;
    const RunFrame frame = reachDocument();
    OdDbObjectId attribute, blockRef;
    switch (impliedAttribute(attribute, blockRef, *frame.database)) {
        case Implied::kElsewhere:
            // Quietly: what was selected cannot be seen from here.
            return setRunStatus(kCommandCancelled);
        case Implied::kAttribute:
            return setRunStatus(editAttributeInPlace(attribute, blockRef));
        default:
            return setRunStatus(pickAttributeInPlace(nullptr));
    }
}

CMD_RUNSTATUS ATTIPeditWCmd::run() {
    setRunStatus(kCommandRunning);
    const ModuleResources resources;
    hostapi::Pick pick;
    auto* const currentPick = hostService(hostapi::getCurrentPick);
    // No pick is one that met nothing.
    if (!currentPick || !currentPick(pick)) return setRunStatus(kCommandCancelled);
    return setRunStatus(pickAttributeInPlace(&pick));
}

}  // namespace torvel
