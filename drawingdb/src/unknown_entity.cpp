#include "carried_transform.h"
#include "core.h"
#include "drawingdb/block.h"
#include "unknown.h"

using namespace drawingdb;

OdResult OdDbUnknownEntity::transformBy(const OdGeMatrix3d& matrix) {
    if (!stub_) return OdResult::transformRefused;
    Core& core = coreOf(stub_);
    const auto bytes = transformedCarried(dxfName(), core.bytesOf(*stub_), core.format, matrix);
    if (!bytes) return OdResult::transformRefused;
    assertWriteEnabled();
    core.setBytes(*stub_, *bytes);
    return OdResult::ok;
}

OdResult OdDbUnknownEntity::explode(std::vector<OdDbEntityPtr>& pieces) const {
    const std::string kind = dxfName();
    const bool table = kind == "ACAD_TABLE";
    if (!stub_ || (!table && !kind.ends_with("DIMENSION"))) return OdResult::transformRefused;

    Core& core = coreOf(stub_);
    OdString block;
    OdGePoint3d place, moved;
    OdGeVector3d along = OdGeVector3d::kXAxis, normal = OdGeVector3d::kZAxis;
    GroupCursor cursor(core.bytesOf(*stub_), core.format);
    for (Group group; cursor.next(group) && group.code < 1000;) {
        const auto real = [&] { return groupReal(group, core.format.binary).value_or(0); };
        const auto part = [&](int code, auto& to) {
            if (group.code == code) to.x = real();
            if (group.code == code + 10) to.y = real();
            if (group.code == code + 20) to.z = real();
        };
        if (group.code == 2 && block.empty()) block = decodeText(group.value, core.format);
        part(210, normal);
        part(12, moved);
        if (table) part(10, place);
        if (table) part(11, along);
    }
    const OdDbObjectId drawn = database()->findBlock(block);
    if (drawn.isNull() || normal.isZeroLength() || along.isZeroLength()) return OdResult::transformRefused;

    const OdSmartPtr<OdDbBlockReference> reference = OdDbBlockReference::createObject();
    reference->setPropertiesFrom(*this);
    reference->setBlockTableRecord(drawn);
    // The block of a dimension is in its place already; a copy that was moved along says by how much.
    if (!table) place = OdGeMatrix3d::planeToWorld(normal) * moved;
    if (table) {
        const OdGeVector3d x = along.normal(), z = normal.normal();
        reference->transformBy(OdGeMatrix3d::coordSystem(place, x, z.crossProduct(x), z));
    } else {
        reference->setPosition(place);
    }
    pieces.push_back(OdDbEntityPtr(reference.get()));
    return OdResult::ok;
}
