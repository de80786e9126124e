// What the database itself needs to know of a leader.
#pragma once

#include <vector>

#include "drawingdb/entity.h"

namespace drawingdb {

struct LeaderGroups {
    std::vector<OdGePoint3d> corners;
    OdGeVector3d normal{0, 0, 1};
    bool hasHead = true;
    bool ownHead = false;  ///< a block is drawn for it
    bool splined = false;
    double size = 0.18, scale = 1;

    double arrowSize() const { return hasHead ? size * (scale > 0 ? scale : 1) : 0; }
};

/// Of a LEADER in a database.
LeaderGroups leaderGroups(const OdDbEntity& entity);

}  // namespace drawingdb
