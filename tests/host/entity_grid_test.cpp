// The grid finds what a look at every entity finds.
#include "torvelhost/session/entity_grid.h"

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
    const EntityGrid grid(database->modelSpaceId());
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
    EXPECT_TRUE(idsIn(EntityGrid(database->modelSpaceId()), anywhere).empty());
    const auto line = OdDbXline::createObject();
    const OdDbObjectId id =
        database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(line.get());
    EXPECT_EQ(idsIn(EntityGrid(database->modelSpaceId()), anywhere), std::vector<OdDbObjectId>{id});
}

TEST(EntityGrid, IsOutOfDateAfterAChangeAndAfterTakingItBack) {
    const auto database = OdDbDatabase::createNew();
    const std::uint64_t before = database->revision();
    EXPECT_EQ(database->revision(), before);
    const std::size_t position = database->undoPosition();
    addLine(*database, {0, 0, 0}, {1, 1, 0});
    const std::uint64_t changed = database->revision();
    EXPECT_NE(changed, before);
    database->undoTo(position);
    EXPECT_NE(database->revision(), changed);
    addLine(*database, {5, 5, 0}, {6, 6, 0});
    EXPECT_NE(database->revision(), changed);
}

}  // namespace
}  // namespace host
