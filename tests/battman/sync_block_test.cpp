// All references of a block in line: which, and in what order.
#include "torvelcmd2/attmanager/sync_block.h"

#include <gtest/gtest.h>
#include <vector>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/database.h"

namespace {

OdDbObjectId addDefinition(OdDbObjectId block, const OdString& tag, bool constant = false) {
    const auto definition = OdDbAttributeDefinition::createObject();
    definition->setDatabaseDefaults(block.database());
    definition->setTag(tag);
    definition->setConstant(constant);
    return block.openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(definition.get());
}

OdDbObjectId addReference(OdDbObjectId space, OdDbObjectId block) {
    const auto reference = OdDbBlockReference::createObject();
    reference->setDatabaseDefaults(block.database());
    reference->setBlockTableRecord(block);
    return space.openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(reference.get());
}

using Handles = std::vector<std::uint64_t>;
Handles attributeHandles(OdDbObjectId reference) {
    Handles handles;
    for (OdDbObjectId id : reference.openAs<OdDbBlockReference>()->attributes()) handles.push_back(id.handle().value());
    return handles;
}

// New handles tell the order, and that nothing was done twice.
TEST(SyncBlock, GoesThroughModelSpaceThenEachLayoutOnce) {
    const OdDbDatabasePtr database = OdDbDatabase::createNew();
    const OdDbObjectId block = OdDbBlockTableRecord::addNew(*database, L"DOOR");
    const OdDbObjectId other = OdDbBlockTableRecord::addNew(*database, L"HOUSE");
    const OdDbObjectIdArray definitions = {addDefinition(block, L"A"), addDefinition(block, L"FIXED", true),
                                           addDefinition(block, L"B")};
    const OdDbObjectId onPaper = addReference(database->paperSpaceId(), block);
    const OdDbObjectId nested = addReference(other, block);
    const OdDbObjectId first = addReference(database->modelSpaceId(), block);
    const OdDbObjectId second = addReference(database->modelSpaceId(), block);
    torvel::syncBlockReferences(block, definitions);

    // Two attributes and their end mark each.
    const std::uint64_t one = attributeHandles(first).front();
    EXPECT_GT(one, second.handle().value());
    EXPECT_EQ(attributeHandles(first), (Handles{one, one + 1}));
    EXPECT_EQ(attributeHandles(second), (Handles{one + 3, one + 4}));
    EXPECT_EQ(attributeHandles(onPaper), (Handles{one + 6, one + 7}));
    EXPECT_TRUE(attributeHandles(nested).empty());
    EXPECT_LE(addReference(other, other).handle().value(), one + 9);
}

}  // namespace
