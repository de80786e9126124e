// INSERT: a reference to a block, with its attributes.
#include <cmath>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/field.h"
#include "torvelhost/commands/host_commands.h"

namespace host::commands {
namespace {

// A default that is a field goes on being one.
void takeField(const OdDbAttributeDefinition& definition, OdDbAttribute& attribute) {
    const OdDbFieldPtr standard = definition.getField(L"TEXT");
    if (!standard) return;
    const OdDbFieldPtr field = standard->copy();
    attribute.setField(L"TEXT", field);
    field->evaluate(OdDbField::kAutomatic, attribute.database());
}

// Asks for the value of each attribute that has one to ask for. A cancel leaves the reference with what was answered so
// far.
bool fillAttributes(HostRun& run, OdDbObjectId referenceId, OdDbObjectId block) {
    const auto reference = referenceId.openAs<OdDbBlockReference>(OdDb::forWrite);
    const auto record = block.openAs<OdDbBlockTableRecord>();
    for (OdDbObjectId id : record->entities()) {
        const auto definition = id.openIf<OdDbAttributeDefinition>();
        if (!definition || definition->isConstant()) continue;
        OdString value;
        int result = kEmpty;
        if (!definition->isPreset()) {
            const OdString prompt = definition->prompt().empty() ? definition->tag() : definition->prompt();
            const OdString standard = definition->textString();
            result = run.input.askText((standard.empty() ? prompt : prompt + L" <" + standard + L">").c_str(), nullptr,
                                       value);
            if (result == kCancel) return false;
        }
        const auto attribute = OdDbAttribute::createObject();
        reference->appendAttribute(attribute.get());
        attribute->setAttributeFromBlock(*definition, reference->blockTransform());
        if (result == kValue)
            attribute->setTextString(value);
        else
            takeField(*definition, *attribute);
    }
    return true;
}

}  // namespace

CMD_RUNSTATUS insert(HostRun& run) {
    OdDbDatabase* const database = run.database;
    OdString name;
    OdDbObjectId block;
    const int named = run.input.ask(
        L"Enter block name", nullptr, L"a block name",
        [&](const Reply& reply, std::wstring& reason) {
            block = database->findBlock(reply.text);
            if (!block) reason = L"the drawing has no block \"" + reply.text + L"\"";
            return !block.isNull();
        },
        Input::Asked::kText);
    if (named != kValue) return kCommandCancelled;

    OdGePoint3d point;
    if (run.input.askPoint(L"Specify insertion point", nullptr, point) != kValue) return kCommandCancelled;
    double x = 1, angle = 0;
    if (run.askNumber(L"Enter X scale factor <1>", x) == kCancel) return kCommandCancelled;
    double y = x;
    if (run.askNumber(L"Enter Y scale factor <use X scale factor>", y) == kCancel) return kCommandCancelled;
    if (run.input.getAngle(angle, L"Specify rotation angle <0>", nullptr, 0, 0) == kCancel) return kCommandCancelled;
    if (x == 0 || y == 0) return run.refused(L"a scale factor is not 0");

    const OdGeMatrix3d ucs = run.document.ucs();
    OdDbObjectId inserted;
    {
        const auto reference = OdDbBlockReference::createObject();
        reference->setDatabaseDefaults(database);
        reference->setBlockTableRecord(block);
        reference->setNormal(ucs.zAxis());
        reference->setPosition(point);
        reference->setScaleFactors(OdGeScale3d(x, y, std::fabs(x)));
        // The angle is typed in the user's plane and stored in the plane of the normal.
        const OdGeVector3d direction =
            OdGeMatrix3d::worldToPlane(ucs.zAxis()) * (ucs * OdGeVector3d(std::cos(angle), std::sin(angle), 0));
        reference->setRotation(ucs == OdGeMatrix3d::kIdentity ? angle : direction.xy().angle());
        const auto space = run.document.activeSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite);
        inserted = space->appendOdDbEntity(reference.get());
    }
    return fillAttributes(run, inserted, block) ? kCommandFinished : kCommandCancelled;
}

}  // namespace host::commands
