// Open modes, identities, finding things.
#include <gtest/gtest.h>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/layer.h"
#include "drawingdb/symbol_table.h"
#include "drawingdb/text.h"
#include "drawingdb/text_style.h"
#include "drawingdb/viewport.h"
#include "tests/drawingdb/sample.h"

namespace {

OdResult codeOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const OdError& error) {
        return error.code();
    }
    return OdResult::ok;
}

TEST(Open, WritingNeedsWriteAccess) {
    const auto database = sample();
    const auto circle = objectOf(database, 0x65).openAs<OdDbCircle>();
    EXPECT_EQ(codeOf([&] { circle->setRadius(1); }), OdResult::notOpenForWrite);
    EXPECT_EQ(codeOf([&] { circle->erase(); }), OdResult::notOpenForWrite);
    EXPECT_EQ(circle->radius(), 15);
    circle->upgradeOpen();
    circle->setRadius(1);
    EXPECT_EQ(objectOf(database, 0x65).openAs<OdDbCircle>()->radius(),
              1);  // the same object, re-opened while it is open
    circle->downgradeOpen();
    EXPECT_EQ(codeOf([&] { circle->setRadius(2); }), OdResult::notOpenForWrite);
    EXPECT_TRUE(database->isModified());
}

TEST(Open, WrongClassThrows) {
    const auto database = sample();
    EXPECT_THROW((void)objectOf(database, 0x65).openAs<OdDbLine>(), OdError_NotThatKindOfClass);
    EXPECT_EQ(codeOf([&] { (void)objectOf(database, 0x65).openAs<OdDbText>(); }), OdResult::notThatKindOfClass);
    EXPECT_EQ(codeOf([&] { (void)OdDbObjectId().openAs<OdDbLine>(); }), OdResult::nullObjectId);
    objectOf(database, 0x65).openAs<OdDbCircle>(OdDb::forWrite)->erase();
    EXPECT_EQ(codeOf([&] { (void)objectOf(database, 0x65).openAs<OdDbCircle>(); }), OdResult::wasErased);
    EXPECT_TRUE(objectOf(database, 0x65).open(OdDb::forRead, true));
    EXPECT_FALSE(objectOf(database, 0x65).open());
}

TEST(Open, ObjectsOutliveTheirDatabase) {
    OdDbObjectPtr circle;
    {
        const auto database = sample();
        circle = objectOf(database, 0x65).open();
    }
    EXPECT_EQ(circle->database(), nullptr);
}

TEST(Open, SpacesAndBlocks) {
    const auto database = sample();
    EXPECT_EQ(database->currentSpaceId(), database->modelSpaceId());
    std::vector<std::uint64_t> model, paper, door, attributes;
    for (const auto id : database->modelSpaceId().openAs<OdDbBlockTableRecord>()->entities())
        model.push_back(id.handle().value());
    for (const auto id : database->paperSpaceId().openAs<OdDbBlockTableRecord>()->entities())
        paper.push_back(id.handle().value());
    for (const auto id : database->findBlock(L"Door").openAs<OdDbBlockTableRecord>()->entities())
        door.push_back(id.handle().value());
    for (const auto id : objectOf(database, 0x50).openAs<OdDbBlockReference>()->attributes())
        attributes.push_back(id.handle().value());
    EXPECT_EQ(model, (std::vector<std::uint64_t>{0x50, 0x5A, 0x60, 0x61, 0x62, 0x63, 0x64, 0x65, 0x66, 0x68, 0x69, 0x6E,
                                                 0x67}));
    EXPECT_EQ(paper, (std::vector<std::uint64_t>{0x70, 0x71, 0x72}));
    EXPECT_EQ(door, (std::vector<std::uint64_t>{0x34, 0x35, 0x36, 0x37, 0x38, 0x39}));
    EXPECT_EQ(attributes, (std::vector<std::uint64_t>{0x51, 0x52}));

    EXPECT_EQ(objectOf(database, 0x51).containerId(), objectOf(database, 0x50));
    EXPECT_EQ(objectOf(database, 0x34).containerId(), database->findBlock(L"DOOR"));
    EXPECT_EQ(objectOf(database, 0x50).openAs<OdDbBlockReference>()->blockTableRecord(), objectOf(database, 0x30));
    const auto references = objectOf(database, 0x30).openAs<OdDbBlockTableRecord>();
    EXPECT_EQ(references->blockReferenceIds(false).size(), 3u);
    EXPECT_EQ(references->blockReferenceIds(true).size(), 2u);

    // The index follows references that change, and that change blocks.
    const auto moved = objectOf(database, 0x5A).openAs<OdDbBlockReference>(OdDb::forWrite);
    moved->setRotation(1);
    moved->setBlockTableRecord(objectOf(database, 0x31));
    EXPECT_EQ(references->blockReferenceIds(false).size(), 2u);
    EXPECT_EQ(objectOf(database, 0x31).openAs<OdDbBlockTableRecord>()->blockReferenceIds(true).size(), 1u);
}

// A record of no kind of its own, or of another one, would be one that nobody can read.
TEST(Open, TablesTakeRecordsOfTheirKindOnly) {
    const auto database = sample();
    const std::string before = database->writeBytes();
    const auto layers = database->layerTableId().openAs<OdDbSymbolTable>(OdDb::forWrite);
    const auto plain = OdDbSymbolTableRecord::createObject();
    plain->setName(L"PLAIN");
    const auto style = OdDbTextStyleTableRecord::createObject();
    style->setName(L"STYLE");
    EXPECT_EQ(codeOf([&] { layers->add(plain); }), OdResult::invalidInput);
    EXPECT_EQ(codeOf([&] { layers->add(style); }), OdResult::invalidInput);
    EXPECT_EQ(database->writeBytes(), before);
    const auto layer = OdDbLayerTableRecord::createObject();
    layer->setName(L"NEW");
    layers->add(layer);
    EXPECT_EQ(OdDbDatabase::readBytes(database->writeBytes(), L"")->findLayer(L"new").handle(), layer->handle());
}

TEST(Open, LayoutsAndViewports) {
    const auto database = sample();
    EXPECT_TRUE(database->activeViewportId().isNull());
    EXPECT_FALSE(database->setCurrentLayout(L"Nowhere"));
    ASSERT_TRUE(database->setCurrentLayout(L"layout1"));
    EXPECT_EQ(database->currentSpaceId(), database->paperSpaceId());
    EXPECT_EQ(database->activeViewportId().handle().value(), 0x70u);
    database->setActiveViewport(objectOf(database, 0x71));
    EXPECT_EQ(database->activeViewportId().openAs<OdDbViewport>()->number(), 2);
    database->setActiveViewport(OdDbObjectId());
    EXPECT_EQ(database->activeViewportId().openAs<OdDbViewport>()->number(), 1);
    // Which space is current is part of the drawing.
    EXPECT_EQ(OdDbDatabase::readBytes(database->writeBytes(), L"")->currentLayoutName(), L"Layout1");
}

TEST(Open, IdsSortAsHandles) {
    const auto database = sample();
    EXPECT_LT(objectOf(database, 0x30), objectOf(database, 0x1B0 - 0x100));
    EXPECT_LT(OdDbObjectId(), objectOf(database, 0x1));
    EXPECT_GT(objectOf(database, 0x51), objectOf(database, 0x50));
}

}  // namespace
