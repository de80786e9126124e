// The synchronisation of one reference where it lies outside the current space, as a block manager calls it.
#include "torvelcmd2/attributes/sync_reference.h"

#include <gtest/gtest.h>
#include <vector>

#include "base/text.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/database.h"

namespace {

using Values = std::vector<std::pair<OdString, OdString>>;

TEST(ReferenceSynchronizer, ServesAnySpaceAndBlock) {
    const OdDbDatabasePtr database =
        OdDbDatabase::readFile(base::fromUtf8(TORVEL_SOURCE_DIR) + L"/tests/attsync/plan.dxf");
    const OdDbObjectId door = database->findBlock(L"DOOR");
    torvel::ReferenceSynchronizer synchronizer(door);
    synchronizer.synchronizeReferencesIn(database->findBlock(L"HOUSE"));
    const auto valuesOf = [&](std::uint64_t handle) {
        Values values;
        for (OdDbObjectId id : database->getObjectId(handle).openAs<OdDbBlockReference>()->attributes()) {
            const auto attribute = id.openAs<OdDbAttribute>();
            values.emplace_back(attribute->tag(), attribute->textString());
        }
        return values;
    };
    EXPECT_EQ(valuesOf(0x5C), (Values{{L"SIZE", L"80x200"},
                                      {L"TAG", L"N1"},
                                      {L"TAG", L"E?"},
                                      {L"NOTE", L"none"},
                                      {L"color", L"white"},
                                      {L"COST", L"0"}}));
    EXPECT_EQ(valuesOf(0xC0), (Values{{L"TAG", L"P1"}, {L"OLD", L"paper"}})) << "not asked for";

    const auto reference = database->getObjectId(0xC0).openAs<OdDbBlockReference>();
    synchronizer.synchronize(*reference);
    EXPECT_FALSE(reference->isWriteEnabled());
    EXPECT_EQ(valuesOf(0xC0)[1], (Values::value_type{L"TAG", L"P1"}));
    EXPECT_EQ(valuesOf(0xC0).size(), 6u);
}

TEST(ReferenceSynchronizer, RefusesWhatIsNoBlock) {
    const OdDbDatabasePtr database = OdDbDatabase::createNew();
    EXPECT_THROW(torvel::ReferenceSynchronizer(database->layerTableId()), OdError_NotThatKindOfClass);
}

}  // namespace
