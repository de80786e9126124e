// What a drawing says that changed since somebody last asked.
#include <gtest/gtest.h>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/layer.h"
#include "tests/drawingdb/sample.h"

namespace {

class Touched : public testing::Test {
  protected:
    OdDbObjectId appendLine() {
        const auto line = OdDbLine::createObject();
        return database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(line.get());
    }
    void setRadius(double radius) { circle.openAs<OdDbCircle>(OdDb::forWrite)->setRadius(radius); }
    OdDbObjectIdArray entities() {
        const OdDbTouched touched = database->takeTouched(mark);
        EXPECT_TRUE(touched.others.empty());
        EXPECT_FALSE(touched.header);
        return touched.entities;
    }

    const OdDbDatabasePtr database = sample();
    const OdDbObjectId circle = objectOf(database, 0x65);
    OdDbTouchMark mark{*database};
};

using Ids = OdDbObjectIdArray;

TEST_F(Touched, TellsEachEntityOnce) {
    EXPECT_EQ(entities(), Ids());
    setRadius(1);
    setRadius(2);
    EXPECT_EQ(entities(), Ids{circle});
    EXPECT_EQ(entities(), Ids());
    const OdDbObjectId line = appendLine();
    EXPECT_EQ(entities(), Ids{line});
    line.openAs<OdDbLine>(OdDb::forWrite)->erase();
    EXPECT_EQ(entities(), Ids{line});
}

TEST_F(Touched, TellsAReferenceForItsAttributes) {
    OdDbObjectId reference, attribute;
    for (const OdDbObjectId id : database->modelSpaceId().openAs<OdDbBlockTableRecord>()->entities())
        if (const auto opened = id.openIf<OdDbBlockReference>())
            for (const OdDbObjectId each : opened->attributes()) reference = id, attribute = each;
    ASSERT_TRUE(attribute);
    attribute.openAs<OdDbAttribute>(OdDb::forWrite)->setTextString(L"touched");
    EXPECT_EQ(entities(), Ids{reference});
    attribute.openAs<OdDbAttribute>(OdDb::forWrite)->erase();
    EXPECT_EQ(entities(), Ids{reference});
}

TEST_F(Touched, TellsWhatWasTakenBackAndDoneAgain) {
    const std::size_t before = database->undoPosition();
    setRadius(1);
    const OdDbObjectId line = appendLine();
    EXPECT_EQ(entities().size(), 2u);
    database->undoForRedo(before);
    EXPECT_EQ(entities().size(), 2u);
    EXPECT_TRUE(line.isErased());
    EXPECT_TRUE(database->redo());
    EXPECT_EQ(entities().size(), 2u);
    EXPECT_FALSE(line.isErased());

    // What nobody was told of is nothing when it is taken back.
    const std::size_t here = database->undoPosition();
    setRadius(5);
    database->undoTo(here);
    EXPECT_EQ(entities(), Ids());

    // A group of which a part was told, and something new in the place of what it did.
    database->blockUndoRecording(true);
    setRadius(6);
    EXPECT_EQ(entities(), Ids{circle});
    const OdDbObjectId other = appendLine();
    database->rollBackUndoGroup();
    line.openAs<OdDbLine>(OdDb::forWrite)->setEndPoint({1, 2, 3});
    Ids expected = {circle, line};
    Ids told = entities();
    std::ranges::sort(told);
    std::ranges::sort(expected);
    EXPECT_EQ(told, expected);
    EXPECT_TRUE(other.isErased());

    // Records that hold no change lie between the changes.
    database->startUndoRecord();
    setRadius(7);
    database->startUndoRecord();
    EXPECT_EQ(entities(), Ids{circle});
    database->undoLastRecord();
    setRadius(8);
    EXPECT_EQ(entities(), Ids{circle});
}

TEST_F(Touched, TellsTablesAndTheHeaderApart) {
    const OdDbObjectId zero = database->findLayer(L"0");
    zero.openAs<OdDbLayerTableRecord>(OdDb::forWrite)->setIsOff(true);
    database->setHeaderReal("$LTSCALE", 40, 17.5);
    OdDbTouched touched = database->takeTouched(mark);
    EXPECT_EQ(touched.others, Ids{zero});
    EXPECT_TRUE(touched.header);
    EXPECT_TRUE(touched.entities.empty());

    const OdDbObjectId block = OdDbBlockTableRecord::addNew(*database, L"TOUCHED");
    touched = database->takeTouched(mark);
    EXPECT_EQ(std::ranges::count(touched.others, block), 1);

    // Everybody is told by himself.
    OdDbTouchMark second(*database);
    setRadius(3);
    EXPECT_EQ(entities(), Ids{circle});
    EXPECT_EQ(database->takeTouched(second).entities, Ids{circle});
}

}  // namespace
