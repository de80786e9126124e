#include "drawingdb/leader.h"

#include "drawingdb/database.h"
#include "drawingdb/error.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/entities/dimension_style.h"
#include "drawingdb/src/entities/leader_groups.h"

namespace drawingdb {

LeaderGroups leaderGroups(const OdDbEntity& entity) {
    Core& core = entity.database()->core();
    const FileFormat& format = core.format;
    LeaderGroups leader;
    const auto real = [&](const Group& group) { return groupReal(group, format.binary).value_or(0); };
    const std::string_view bytes = core.bytesOf(*entity.objectId().stub());
    OdGeVector3d normal;
    GroupCursor cursor(bytes, format);
    for (Group group; cursor.next(group) && group.code < 1000;) {
        switch (group.code) {
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
    readDimensionStyle(entity, [&](int code, const Group& value) {
        if (code == dimension_style::overallScale) leader.scale = real(value);
        if (code == dimension_style::arrowSize) leader.size = real(value);
        if (code == dimension_style::leaderArrow) leader.ownHead = parseHandle(value.value) != 0;
    });
    return leader;
}

}  // namespace drawingdb

namespace drawingdb {

LeaderParts leaderParts(std::vector<OdGePoint3d> corners, const OdGeVector3d& normal, double arrowSize, bool splined) {
    LeaderParts parts{{}, std::move(corners), {}};
    if (splined && parts.line.size() > 2) {
        parts.curve = OdDbSpline::createObject();
        try {
            parts.curve->setFitPoints(parts.line);
        } catch (const OdError&) {  // all corners are one
            parts.curve = {};
        }
    }
    if (parts.line.size() < 2 || !(arrowSize > 0)) return parts;
    const OdGePoint3d tip = parts.line[0];
    const OdGeVector3d along = parts.line[1] - tip;
    if (!(along.length() > 2 * arrowSize)) return parts;
    const OdGeVector3d unit =
        (parts.curve ? parts.curve->firstDerivAtParam(parts.curve->startParam()) : along).normal();
    const OdGeVector3d side = normal.normal().crossProduct(unit) * (arrowSize / 6);
    const OdGePoint3d base = tip + unit * arrowSize;
    parts.head = {tip, base + side, base - side};
    parts.line[0] = base;
    return parts;
}

LeaderParts leaderParts(const OdDbEntity& leader) {
    const drawingdb::LeaderGroups groups = drawingdb::leaderGroups(leader);
    return leaderParts(groups.corners, groups.normal, groups.arrowSize(), groups.splined);
}

}  // namespace drawingdb
