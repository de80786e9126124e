// Plot styles of entities, as files keep them.
#include "drawingdb/plot_style.h"

#include <algorithm>

#include "drawingdb/block.h"
#include "drawingdb/curves.h"
#include "entity_fixture.h"

using drawingdb::PlotStyle;
using drawingdb::PlotStyleKind;

namespace {

OdDbObjectId newLine(OdDbDatabase& database) {
    const auto line = OdDbLine::createObject();
    line->setDatabaseDefaults(&database);
    return database.modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(line.get());
}

bool holds(const OdDbDatabasePtr& database, OdDbObjectId entity, const std::string& group) {
    const std::vector<std::string> groups = savedGroups(database, entity.handle().ascii());
    return std::ranges::find(groups, group) != groups.end();
}

}  // namespace

TEST(PlotStyles, AreFoundInTheDictionary) {
    const OdDbDatabasePtr database = OdDbDatabase::createNew();
    EXPECT_EQ(drawingdb::plotStyleNames(*database), std::vector<OdString>{L"Normal"});
    EXPECT_TRUE(drawingdb::findPlotStyle(*database, L"normal"));
    EXPECT_FALSE(drawingdb::findPlotStyle(*database, L"Thick"));
    EXPECT_TRUE(drawingdb::holdsPlotStyles(*database));
    const OdDbDatabasePtr old = drawing("AC1009", "0|LINE|8|0|10|0|20|0|11|1|21|1");
    EXPECT_FALSE(drawingdb::holdsPlotStyles(*old));
    EXPECT_TRUE(drawingdb::plotStyleNames(*old).empty());
}

TEST(PlotStyles, AreWrittenAndReadAgain) {
    const OdDbDatabasePtr database = OdDbDatabase::createNew();
    const OdDbObjectId id = newLine(*database);
    const OdDbObjectId normal = drawingdb::findPlotStyle(*database, L"Normal");
    EXPECT_EQ(drawingdb::plotStyleOf(*id.openAs<OdDbEntity>()), PlotStyle());
    const auto set = [&](const PlotStyle& style) {
        drawingdb::setPlotStyle(*id.openAs<OdDbEntity>(OdDb::forWrite), style);
        EXPECT_EQ(drawingdb::plotStyleOf(*id.openAs<OdDbEntity>()), style);
        const OdDbDatabasePtr saved = reread(database);
        const auto again = opened<OdDbEntity>(saved, id.handle().value());
        EXPECT_EQ(drawingdb::plotStyleOf(*again).kind, style.kind);
        EXPECT_EQ(drawingdb::plotStyleName(*again), style.style ? L"Normal" : L"");
    };
    EXPECT_FALSE(holds(database, id, "390|" + normal.handle().ascii()));
    set({PlotStyleKind::kByName, normal});
    EXPECT_TRUE(holds(database, id, "380|3"));
    EXPECT_TRUE(holds(database, id, "390|" + normal.handle().ascii()));
    set({PlotStyleKind::kByBlock, {}});
    EXPECT_TRUE(holds(database, id, "380|1"));
    EXPECT_FALSE(holds(database, id, "390|" + normal.handle().ascii()));
    set({PlotStyleKind::kStandard, {}});
    set({});
    EXPECT_THROW(drawingdb::setPlotStyle(*id.openAs<OdDbEntity>(), {}), OdError);
}
