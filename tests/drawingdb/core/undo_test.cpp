// Undo: marks, records and groups, and that undoing everything gives the bytes back.
#include <gtest/gtest.h>
#include <limits>
#include <random>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/field.h"
#include "drawingdb/text.h"
#include "tests/drawingdb/sample.h"

namespace {

double radius(const OdDbDatabasePtr& database) { return objectOf(database, 0x65).openAs<OdDbCircle>()->radius(); }
void setRadius(const OdDbDatabasePtr& database, double value) {
    objectOf(database, 0x65).openAs<OdDbCircle>(OdDb::forWrite)->setRadius(value);
}

TEST(Undo, MarksNest) {
    const auto database = sample();
    const auto step = [&] {
        database->startUndoRecord();
        database->setUndoMark();
        database->startUndoRecord();
    };
    step();
    setRadius(database, 1);
    step();
    setRadius(database, 2);
    setRadius(database, 3);
    database->undoBack();
    EXPECT_EQ(radius(database), 1);
    setRadius(database, 4);
    database->undoBack();
    EXPECT_EQ(radius(database), 15);
    EXPECT_EQ(database->writeBytes(), sampleBytes());
}

// Objects are closed by destructors, so it is the undo position and the file that refuse what cannot be stored.
TEST(Undo, NumbersThatAreNotFiniteAreNotStored) {
    const auto database = sample();
    const std::size_t before = database->undoPosition();
    objectOf(database, 0x65)
        .openAs<OdDbCircle>(OdDb::forWrite)
        ->setCenter({0, std::numeric_limits<double>::infinity(), 0});
    {
        const auto line = OdDbLine::createObject();
        line->setEndPoint({0, std::numeric_limits<double>::quiet_NaN(), 0});
        database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(line.get());
    }
    try {
        database->writeBytes();
        ADD_FAILURE() << "written";
    } catch (const OdError& error) {
        EXPECT_EQ(std::string(error.what()).rfind("sample.dxf: CIRCLE #65: the number of group 10 is not finite", 0),
                  0u)
            << error.what();
    }
    EXPECT_THROW(database->undoPosition(), OdError);
    database->undoTo(before);
    EXPECT_EQ(database->writeBytes(), sampleBytes());
}

TEST(Undo, RecordsAreTakenBackOneByOne) {
    const auto database = sample();
    for (int i = 1; i <= 3; ++i) {
        database->startUndoRecord();
        setRadius(database, i);
    }
    EXPECT_TRUE(database->undoLastRecord());
    EXPECT_EQ(radius(database), 2);
    EXPECT_TRUE(database->undoLastRecord());
    EXPECT_TRUE(database->undoLastRecord());
    EXPECT_FALSE(database->undoLastRecord());
    EXPECT_EQ(radius(database), 15);
}

TEST(Undo, GroupsAreKeptOrRolledBackWhole) {
    const auto database = sample();
    EXPECT_FALSE(database->isUndoBlockStarted());
    database->blockUndoRecording(true);
    EXPECT_TRUE(database->isUndoBlockStarted());
    setRadius(database, 1);
    database->blockUndoRecording(true);
    EXPECT_EQ(database->undoGroupDepth(), 2);
    database->setUndoMark();
    setRadius(database, 2);
    database->rollBackUndoGroup();
    EXPECT_EQ(database->undoGroupDepth(), 1);
    EXPECT_EQ(radius(database), 1);
    database->blockUndoRecording(false);
    EXPECT_FALSE(database->isUndoBlockStarted());
    EXPECT_EQ(radius(database), 1);
    // Marks before a group are out of reach from inside it.
    database->setUndoMark();
    setRadius(database, 5);
    database->blockUndoRecording(true);
    setRadius(database, 6);
    database->undoBack();
    EXPECT_EQ(radius(database), 5);
}

TEST(Undo, OpenObjectsShowTheRestoredState) {
    const auto database = sample();
    const auto circle = objectOf(database, 0x65).openAs<OdDbCircle>(OdDb::forWrite);
    database->setUndoMark();
    circle->setRadius(7);
    database->undoBack();
    EXPECT_EQ(circle->radius(), 15);
    circle->setRadius(8);
    EXPECT_EQ(radius(database), 8);
}

// Random edits of every kind; after each the drawing must still save, and undoing to any position taken on the way
// must give the bytes of that moment.
TEST(Undo, RandomEditsGiveTheBytesBack) {
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        const auto database = sample();
        std::vector<std::pair<std::size_t, std::string>> moments{{database->undoPosition(), database->writeBytes()}};
        const auto any = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
        std::vector<OdDbObjectPtr> held;
        for (int edit = 0; edit < 25; ++edit) {
            const OdDbObjectId id = database->getObjectId(static_cast<std::uint64_t>(any(0x20C)));
            switch (any(9)) {
                case 0:
                    if (auto entity = id.openIf<OdDbEntity>(OdDb::forWrite))
                        entity->setLayer(L"L" + std::to_wstring(any(5)));
                    break;
                case 1:
                    if (auto text = id.openIf<OdDbText>(OdDb::forWrite))
                        text->setTextString(L"value " + std::to_wstring(any(100)));
                    break;
                case 2:
                    if (auto entity = id.openIf<OdDbEntity>(OdDb::forWrite); entity && any(3) == 0) entity->erase();
                    break;
                case 3:
                    if (auto entity = id.openIf<OdDbEntity>(OdDb::forWrite))
                        entity->transformBy(OdGeMatrix3d::translation(OdGeVector3d(any(9), any(9), 0)));
                    break;
                case 4: {
                    const auto line = OdDbLine::createObject();
                    line->setEndPoint(OdGePoint3d(any(100), 1, 0));
                    const OdDbObjectId space = any(2) ? database->modelSpaceId() : database->paperSpaceId();
                    space.openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(line.get());
                    break;
                }
                case 5:
                    if (auto reference = id.openIf<OdDbBlockReference>(OdDb::forWrite)) {
                        const auto attribute = OdDbAttribute::createObject();
                        reference->appendAttribute(attribute.get());
                        attribute->setTag(L"NEW");
                    }
                    break;
                case 6:
                    if (id.isValid() && id.isKindOf(OdDbEntity::desc()) && !id.isKindOf(OdDbAttribute::desc()) &&
                        id.containerId() != id) {
                        OdDbIdMapping mapping;
                        database->deepCloneObjects({id}, database->modelSpaceId(), mapping);
                    }
                    break;
                case 7:
                    if (auto text = id.openIf<OdDbText>(OdDb::forWrite)) {
                        const auto field = OdDbField::createObject();
                        text->setField(L"TEXT", field);
                        field->setFieldCode(L"%<\\AcExpr " + std::to_wstring(any(50)) + L"+1>%");
                        field->evaluate(63, database.get());
                    }
                    break;
                case 8:
                    if (auto entity = id.openIf<OdDbEntity>()) held.push_back(entity);
                    if (held.size() > 4) held.erase(held.begin());
                    break;
            }
            if (any(4) == 0) moments.emplace_back(database->undoPosition(), database->writeBytes());
        }
        const std::string last = database->writeBytes();
        EXPECT_EQ(OdDbDatabase::readBytes(last, L"")->writeBytes(), last);
        // Back, forth and back again: the second time the log is the one that redoing has made.
        for (const bool redone : {true, false}) {
            for (std::size_t i = moments.size(); i-- > 0;) {
                database->undoForRedo(moments[i].first);
                ASSERT_EQ(database->writeBytes(), moments[i].second);
            }
            ASSERT_EQ(database->writeBytes(), sampleBytes());
            for (std::size_t i = 1; redone && i < moments.size(); ++i) {
                ASSERT_TRUE(database->redo());
                ASSERT_EQ(database->undoPosition(), moments[i].first);
                ASSERT_EQ(database->writeBytes(), moments[i].second);
            }
            if (!redone) continue;
            ASSERT_TRUE(database->redo());
            ASSERT_EQ(database->writeBytes(), last);
            ASSERT_FALSE(database->redo());
        }
    }
}

TEST(Undo, AChangeMakesRedoVoid) {
    const auto database = sample();
    const std::size_t start = database->undoPosition();
    setRadius(database, 1);
    const std::size_t middle = database->undoPosition();
    setRadius(database, 2);
    database->undoForRedo(middle);
    database->startUndoRecord();  // which is no change
    EXPECT_TRUE(database->redo());
    EXPECT_EQ(radius(database), 2);
    database->undoForRedo(middle);
    database->undoTo(start);
    EXPECT_FALSE(database->redo());
    setRadius(database, 3);
    database->undoForRedo(start);
    setRadius(database, 4);
    EXPECT_FALSE(database->redo());
    EXPECT_EQ(radius(database), 4);
}

TEST(Undo, AnAttributeAddedWhereSeqendIsMissingLeavesNothing) {
    // An old drawing without handles: the reference's attributes just end at the next entity.
    const std::string bytes =
        "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\nD\n70\n2\n0\nENDBLK\n0\nENDSEC\n"
        "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1009\n0\nENDSEC\n"
        "0\nSECTION\n2\nENTITIES\n0\nINSERT\n8\n0\n66\n1\n2\nD\n0\nATTRIB\n8\n0\n2\nA\n1\nx\n"
        "0\nLINE\n8\n0\n0\nENDSEC\n0\nEOF\n";
    const auto database = OdDbDatabase::readBytes(bytes, L"old.dxf");
    const auto space = database->modelSpaceId().openAs<OdDbBlockTableRecord>();
    const auto start = database->undoPosition();
    const auto attribute = OdDbAttribute::createObject();
    (*space->entities().begin()).openAs<OdDbBlockReference>(OdDb::forWrite)->appendAttribute(attribute.get());
    attribute->setTag(L"B");
    EXPECT_NE(database->writeBytes().find("SEQEND"), std::string::npos);
    database->undoTo(start);
    EXPECT_EQ(database->writeBytes(), bytes);
}

}  // namespace
