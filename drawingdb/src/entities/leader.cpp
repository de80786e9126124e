#include "drawingdb/leader.h"

#include "drawingdb/database.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/entities/leader_groups.h"
#include "drawingdb/symbol_table.h"

namespace drawingdb {
namespace {

// What a leader takes from its dimension style. A style has it as groups, a leader overrides it in its extended data:
//   1001 ACAD  1000 DSTYLE  1002 {  (1070 the group's code  1040, 1070 or 1005 its value)...  1002 }
void takeStyleGroup(LeaderGroups& leader, int code, const Group& group, bool binary) {
    if (code == 40) leader.scale = groupReal(group, binary).value_or(0);
    if (code == 41) leader.size = groupReal(group, binary).value_or(0);
    if (code == 341) leader.ownHead = parseHandle(group.value) != 0;
}

void readStyle(LeaderGroups& leader, Core& core, const OdDbEntity& entity, const OdString& name) {
    const auto table = entity.database()->tableId("DIMSTYLE").openIf<OdDbSymbolTable>();
    const OdDbObjectId style = table ? table->getAt(name) : OdDbObjectId();
    if (style.isNull()) return;
    GroupCursor cursor(core.bytesOf(*style.stub()), core.format);
    for (Group group; cursor.next(group) && group.code < 1000;)
        takeStyleGroup(leader, group.code, group, core.format.binary);
}

}  // namespace

LeaderGroups leaderGroups(const OdDbEntity& entity) {
    Core& core = entity.database()->core();
    const FileFormat& format = core.format;
    LeaderGroups leader;
    const auto real = [&](const Group& group) { return groupReal(group, format.binary).value_or(0); };
    const std::string_view bytes = core.bytesOf(*entity.objectId().stub());
    OdString style;
    OdGeVector3d normal;
    GroupCursor cursor(bytes, format);
    Group group;
    bool more = cursor.next(group);
    for (; more && group.code < 1000; more = cursor.next(group)) {
        switch (group.code) {
            case 3:
                style = decodeText(group.value, format);
                break;
            case 71:
                leader.hasHead = groupInteger(group, format.binary).value_or(1) != 0;
                break;
            case 72:
                leader.splined = groupInteger(group, format.binary).value_or(0) != 0;
                break;
            case 10:
                leader.corners.emplace_back(real(group), 0, 0);
                break;
            case 20:
                if (!leader.corners.empty()) leader.corners.back().y = real(group);
                break;
            case 30:
                if (!leader.corners.empty()) leader.corners.back().z = real(group);
                break;
            case 210:
                normal.x = real(group);
                break;
            case 220:
                normal.y = real(group);
                break;
            case 230:
                normal.z = real(group);
                break;
            default:
                break;
        }
    }
    if (!normal.isZeroLength()) leader.normal = normal;
    readStyle(leader, core, entity, style);
    bool overrides = false;
    for (int code = 0; more; more = cursor.next(group)) {
        if (group.code == 1001) overrides = false;
        if (group.code == 1000) overrides = group.value == "DSTYLE";
        if (!overrides || group.code == 1000 || group.code == 1002) continue;
        if (code == 0) {
            code = static_cast<int>(groupInteger(group, format.binary).value_or(0));
        } else {
            takeStyleGroup(leader, code, group, format.binary);
            code = 0;
        }
    }
    return leader;
}

}  // namespace drawingdb

namespace drawingdb {

LeaderParts leaderParts(std::vector<OdGePoint3d> corners, const OdGeVector3d& normal, double arrowSize) {
    LeaderParts parts{{}, std::move(corners)};
    if (parts.line.size() < 2 || !(arrowSize > 0)) return parts;
    const OdGePoint3d tip = parts.line[0];
    const OdGeVector3d along = parts.line[1] - tip;
    if (!(along.length() > 2 * arrowSize)) return parts;
    const OdGeVector3d unit = along.normal();
    const OdGeVector3d side = normal.normal().crossProduct(unit) * (arrowSize / 6);
    const OdGePoint3d base = tip + unit * arrowSize;
    parts.head = {tip, base + side, base - side};
    parts.line[0] = base;
    return parts;
}

LeaderParts leaderParts(const OdDbEntity& leader) {
    const drawingdb::LeaderGroups groups = drawingdb::leaderGroups(leader);
    return leaderParts(groups.corners, groups.normal, groups.arrowSize());
}

}  // namespace drawingdb
