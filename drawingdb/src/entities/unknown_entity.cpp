#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/leader.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/unknown.h"
#include "drawingdb/src/entities/carried_transform.h"
#include "drawingdb/src/entities/dimension.h"
#include "drawingdb/src/entities/filled_strip.h"
#include "drawingdb/src/entities/leader_groups.h"
#include "drawingdb/src/geometry/curve_math.h"

using namespace drawingdb;

namespace {

// An arrowhead is as large as its dimension style says, whatever has become of the line.
bool resizesHead(const OdDbEntity& leader, const OdGeMatrix3d& matrix) {
    const LeaderGroups groups = leaderGroups(leader);
    // Heads and curves of its own are left to the programs that know them.
    if (groups.ownHead || groups.splined || drawingdb::leaderParts(leader).head.empty()) return false;
    const auto plane = mapPlane(matrix, groups.normal);
    return !plane || planarScale(*plane) != 1.0;
}

void explodeLeader(const OdDbEntity& leader, std::vector<OdDbEntityPtr>& pieces) {
    const OdGeVector3d normal = OdGeMatrix3d::planeToWorld(leaderGroups(leader).normal).zAxis();
    const drawingdb::LeaderParts parts = drawingdb::leaderParts(leader);
    const auto add = [&](const OdDbEntityPtr& piece) {
        piece->setPropertiesFrom(leader);
        pieces.push_back(piece);
    };
    if (!parts.head.empty()) {
        const OdGeMatrix3d toPlane = OdGeMatrix3d::worldToPlane(normal);
        const auto corner = [&](std::size_t i) { return toPlane * parts.head[i]; };
        add(newSolid(normal, 0, {corner(0), corner(1), corner(2), corner(2)}));
    }
    if (parts.curve) return add(OdDbEntityPtr(parts.curve.get()));
    for (std::size_t i = 1; i < parts.line.size(); ++i) {
        const OdSmartPtr<OdDbLine> line = OdDbLine::createObject();
        line->setStartPoint(parts.line[i - 1]);
        line->setEndPoint(parts.line[i]);
        add(OdDbEntityPtr(line.get()));
    }
}

// The vertices of a polygon or polyface mesh; what else the polyline says has no place.
OdResult transformMesh(Core& core, Stub& mesh, const OdGeMatrix3d& matrix) {
    for (Stub* child = core.nextChild(mesh, nullptr); child; child = core.nextChild(mesh, child)) {
        if (child->gone() || child->type != rtVertex) continue;
        if (const auto bytes = transformedCarried("VERTEX", core.bytesOf(*child), core.format, matrix))
            core.setBytes(*child, *bytes);
    }
    return OdResult::ok;
}

}  // namespace

OdResult OdDbUnknownEntity::transformBy(const OdGeMatrix3d& matrix) {
    if (!stub_ || (dxfName() == "LEADER" && resizesHead(*this, matrix))) return OdResult::transformRefused;
    Core& core = coreOf(stub_);
    if (isDimension(dxfName())) return transformDimension(*this, matrix);
    if (dxfName() == "POLYLINE") {
        assertWriteEnabled();
        return transformMesh(core, *stub_, matrix);
    }
    const auto bytes = transformedCarried(dxfName(), core.bytesOf(*stub_), core.format, matrix);
    if (!bytes) return OdResult::transformRefused;
    assertWriteEnabled();
    core.setBytes(*stub_, *bytes);
    return OdResult::ok;
}

OdResult OdDbUnknownEntity::explode(std::vector<OdDbEntityPtr>& pieces) const {
    const std::string kind = dxfName();
    if (stub_ && kind == "LEADER") {
        explodeLeader(*this, pieces);
        return OdResult::ok;
    }
    const bool table = kind == "ACAD_TABLE";
    if (!stub_ || (!table && !isDimension(kind))) return OdResult::transformRefused;

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
