// The grid finds what a look at every entity finds.
#include "torvelhost/plot/entity_grid.h"

#include <random>

#include "drawingdb/block.h"
#include "drawingdb/curves.h"
#include "drawingdb/database.h"
#include "gtest/gtest.h"

namespace host {
namespace {

OdDbObjectId addLine(OdDbDatabase& database, const OdGePoint3d& from, const OdGePoint3d& to) {
    const auto line = OdDbLine::createObject();
    line->setStartPoint(from);
    line->setEndPoint(to);
    return database.modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(line.get());
}

std::vector<OdDbObjectId> idsIn(const EntityGrid& grid, const Rectangle& rectangle) {
    std::vector<OdDbObjectId> ids;
    for (const EntityGrid::Entry* entry : grid.meeting(rectangle)) ids.push_back(entry->id);
    return ids;
}

TEST(EntityGrid, FindsWhatALookAtEveryEntityFinds) {
    const auto database = OdDbDatabase::createNew();
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(-100, 100), size(0, 1);
    std::vector<std::pair<OdDbObjectId, Rectangle>> boxes;
    for (int i = 0; i < 2000; ++i) {
        // Most are small, some reach through the whole drawing, some lie far away.
        const double reach = i % 50 == 0 ? 300 : 3, far = i % 400 == 0 ? 1e6 : 0;
        const OdGePoint3d from(place(random) + far, place(random), 0), to(from.x + size(random) * reach, from.y, 0);
        boxes.emplace_back(addLine(*database, from, to), Rectangle::between(from, to));
    }
    EntityGrids grids(*database);
    const EntityGrid& grid = grids.of(database->modelSpaceId());
    for (int i = 0; i < 200; ++i) {
        const OdGePoint3d corner(place(random), place(random), 0);
        const Rectangle rectangle = Rectangle::between(corner, {corner.x + size(random) * 20, corner.y + 5, 0});
        std::vector<OdDbObjectId> expected;
        for (const auto& [id, box] : boxes)
            if (rectangle.meets(box.low, box.high)) expected.push_back(id);
        EXPECT_EQ(idsIn(grid, rectangle), expected);
    }
}

TEST(EntityGrid, KnowsInfiniteLinesEverywhereAndNothingInAnEmptySpace) {
    const auto database = OdDbDatabase::createNew();
    const Rectangle anywhere = Rectangle::around({5, 5, 0}, 1);
    EntityGrids grids(*database);
    EXPECT_TRUE(idsIn(grids.of(database->modelSpaceId()), anywhere).empty());
    const auto line = OdDbXline::createObject();
    const OdDbObjectId id =
        database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(line.get());
    grids.update();
    EXPECT_EQ(idsIn(grids.of(database->modelSpaceId()), anywhere), std::vector<OdDbObjectId>{id});
}

TEST(EntityGrid, FollowsWhatChanges) {
    // Lines that wander, go and come back; also far beyond where the first ones were.
    const auto database = OdDbDatabase::createNew();
    EntityGrids grids(*database);
    std::mt19937 random(11);
    std::uniform_real_distribution<double> place(-100, 100);
    std::vector<OdDbObjectId> lines;
    for (int i = 0; i < 3000; ++i) {
        const OdGePoint3d from(place(random) * (i % 100 == 0 ? 50 : 1), place(random), 0),
            to = from + OdGeVector3d(1, 0, 0);
        const std::size_t position = database->undoPosition();
        if (i < 300 || i % 3 == 0) {
            lines.push_back(addLine(*database, from, to));
        } else {
            const OdDbObjectId id = lines[random() % lines.size()];
            if (const auto line = OdSmartPtr<OdDbLine>::cast(id.open(OdDb::forWrite, true)); line && i % 5 == 0)
                line->erase(!line->isErased());
            else if (line)
                line->setStartPoint(from), line->setEndPoint(to);
        }
        if (i % 11 == 0) database->undoTo(position);
        if (i % 17 != 0) continue;
        grids.update();
        const Rectangle rectangle = Rectangle::around({place(random), place(random), 0}, 20);
        std::vector<OdDbObjectId> expected;
        for (const OdDbObjectId id : database->modelSpaceId().openAs<OdDbBlockTableRecord>()->entities()) {
            const auto line = id.openAs<OdDbLine>();
            if (rectangle.meets(line->startPoint().xy(), line->endPoint().xy())) expected.push_back(id);
        }
        ASSERT_EQ(idsIn(grids.of(database->modelSpaceId()), rectangle), expected) << i;
    }
}

}  // namespace
}  // namespace host
