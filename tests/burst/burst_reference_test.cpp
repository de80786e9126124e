#include "torvelcmd2/extract/burst/burst_reference.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/database.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/ellipse.h"
#include "drawingdb/layer.h"
#include "drawingdb/mtext.h"
#include "drawingdb/symbol_table.h"
#include "drawingdb/text.h"

namespace {

class BurstReference : public testing::Test {
  protected:
    // Blocks come with the drawing; this program makes no new ones.
    BurstReference() {
        std::string bytes = OdDbDatabase::createNew()->writeBytes();
        std::erase(bytes, '\r');
        const auto insert = [&bytes](const std::string& table, const std::string& closer, const std::string& text) {
            insertBefore(bytes, "\n  2\n" + table + "\n", closer, text);
        };
        int handle = 0x500;
        for (const char* name : {"A", "B", "LOCKED_UP"}) {
            const std::string first = hex(handle++), record = hex(handle++), end = hex(handle++);
            insert("BLOCK_RECORD", "ENDTAB",
                   "  0\nBLOCK_RECORD\n  5\n" + record +
                       "\n330\n1\n100\nAcDbSymbolTableRecord\n100\nAcDbBlockTableRecord\n  2\n" + name +
                       "\n102\n{BLKREFS\n331\nABC\n102\n}\n340\n0\n280\n" + (name[1] ? "0" : "1") + "\n");
            insert("BLOCKS", "ENDSEC",
                   "  0\nBLOCK\n  5\n" + first + "\n330\n" + record +
                       "\n100\nAcDbEntity\n  8\n0\n100\nAcDbBlockBegin\n  2\n" + name +
                       "\n 70\n0\n 10\n0\n 20\n0\n 30\n0\n  3\n" + name + "\n  1\n\n  0\nENDBLK\n  5\n" + end +
                       "\n330\n" + record + "\n100\nAcDbEntity\n  8\n0\n100\nAcDbBlockEnd\n");
        }
        database_ = OdDbDatabase::readBytes(bytes, L"blocks.dxf");
    }
    // Before the first `closer` behind `begin`.
    static void insertBefore(std::string& bytes, const std::string& begin, const std::string& closer,
                             const std::string& text) {
        bytes.insert(bytes.find("  0\n" + closer + "\n", bytes.find(begin)), text);
    }
    // The drawing with more records, whose lines are separated by "|"; in a block, or a section.
    void addRecords(const std::string& where, std::string records) {
        std::string bytes = database_->writeBytes();
        for (char& c : records)
            if (c == '|') c = '\n';
        const bool section = where == "ENTITIES" || where == "OBJECTS";
        insertBefore(bytes, (section ? "\n  2\n" : "AcDbBlockBegin\n  2\n") + where + "\n",
                     section ? "ENDSEC" : "ENDBLK", records);
        database_ = OdDbDatabase::readBytes(bytes, L"more.dxf");
    }
    template <class T>
    OdSmartPtr<T> opened(std::uint64_t handle) {
        return database_->getObjectId(OdDbHandle(handle)).openAs<T>(OdDb::forWrite);
    }
    static std::string hex(int value) { return OdDbHandle(static_cast<std::uint64_t>(value)).ascii(); }

    OdSmartPtr<OdDbBlockTableRecord> block(const wchar_t* name) {
        return database_->findBlock(name).openAs<OdDbBlockTableRecord>(OdDb::forWrite);
    }
    OdSmartPtr<OdDbBlockTableRecord> model() {
        return database_->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite);
    }
    template <class Entity>
    OdSmartPtr<Entity> add(const OdSmartPtr<OdDbBlockTableRecord>& to, const OdSmartPtr<Entity>& entity) {
        to->appendOdDbEntity(entity.get());
        return entity;
    }
    OdSmartPtr<OdDbBlockReference> reference(const OdSmartPtr<OdDbBlockTableRecord>& to, const wchar_t* name,
                                             const OdGeScale3d& scale = OdGeScale3d(1), double rotation = 0) {
        const auto made = OdDbBlockReference::createObject();
        made->setBlockTableRecord(database_->findBlock(name));
        made->setScaleFactors(scale);
        made->setRotation(rotation);
        return add(to, made);
    }
    template <class Entity>
    std::vector<OdSmartPtr<Entity>> entities(const OdSmartPtr<OdDbBlockTableRecord>& of) {
        std::vector<OdSmartPtr<Entity>> found;
        for (const OdDbObjectId id : of->entities())
            if (auto entity = id.openIf<Entity>()) found.push_back(entity);
        return found;
    }

    OdDbDatabasePtr database_;
};

TEST_F(BurstReference, WorksInsideAnyBlockAndLeavesTheReference) {
    const auto line = add(block(L"A"), OdDbLine::createObject());
    line->setEndPoint({1, 0, 0});
    const auto inner = reference(block(L"B"), L"A", OdGeScale3d(2));
    EXPECT_TRUE(burstBlockReference(*inner, *block(L"B")));
    EXPECT_FALSE(inner->isErased()) << "the caller erases it";
    const auto lines = entities<OdDbLine>(block(L"B"));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0]->endPoint(), OdGePoint3d(2, 0, 0));
    EXPECT_EQ(lines[0]->blockId(), block(L"B")->objectId());

    // The copy of a nested reference is told to its block.
    EXPECT_TRUE(burstBlockReference(*reference(model(), L"B"), *model()));
    std::string saved = database_->writeBytes();
    std::erase(saved, '\r');
    const auto nested = entities<OdDbBlockReference>(model());
    ASSERT_EQ(nested.size(), 2u);
    EXPECT_NE(saved.find("{BLKREFS\n331\nABC\n331\n" + inner->handle().ascii() + "\n331\n" +
                         nested[1]->handle().ascii() + "\n102\n}\n"),
              std::string::npos);
}

TEST_F(BurstReference, UnequalScalesMakeEllipsesOfCircularArcs) {
    add(block(L"A"), OdDbCircle::createObject())->setRadius(3);
    const auto arc = add(block(L"A"), OdDbArc::createObject());
    arc->setAngles(0.5, 2);
    const auto polyline = add(block(L"A"), OdDbPolyline::createObject());
    polyline->addVertexAt(0, {{0, 0}, 1});
    polyline->addVertexAt(1, {{2, 0}, -0.4});
    polyline->addVertexAt(2, {{5, 1}});
    // Where points of the curves must come to lie.
    std::vector<OdGePoint3d> wanted;
    const auto made = reference(model(), L"A", OdGeScale3d(2, 0.5, 1), 0.3);
    for (const auto& curve : entities<OdDbCurve>(block(L"A")))
        for (const double part : {0.0, 0.1, 0.37, 0.62, 0.99})
            wanted.push_back(
                made->blockTransform() *
                curve->pointAtParam(curve->startParam() + (curve->endParam() - curve->startParam()) * part));

    EXPECT_TRUE(burstBlockReference(*made, *model()));
    EXPECT_TRUE(entities<OdDbCircle>(model()).empty());
    const auto ellipses = entities<OdDbEllipse>(model());
    ASSERT_EQ(ellipses.size(), 4u) << "the circle, the arc, two bulges";
    for (const OdGePoint3d& point : wanted) {
        double nearest = 1e9;
        for (const auto& ellipse : ellipses) {
            const OdGeVector3d offset = point - ellipse->center();
            const double x = offset.dotProduct(ellipse->majorAxis()) / ellipse->majorAxis().lengthSquared();
            const double y = offset.dotProduct(ellipse->minorAxis()) / ellipse->minorAxis().lengthSquared();
            const double angle = drawingdb::normalizedAngle(std::atan2(y, x) - ellipse->startParam());
            const double sweep = ellipse->endParam() - ellipse->startParam();
            if (angle <= sweep + 1e-9 || angle >= drawingdb::kTwoPi - 1e-9)
                nearest = std::min(nearest, ellipse->pointAtParam(ellipse->startParam() + angle).distanceTo(point));
        }
        EXPECT_LT(nearest, 1e-9) << point.x << "," << point.y;
    }
}

TEST_F(BurstReference, LeavesWholeWhatCannotBeBurst) {
    add(block(L"A"), OdDbLine::createObject());
    EXPECT_FALSE(burstBlockReference(*reference(model(), L"LOCKED_UP"), *model()));

    const auto frozen = reference(model(), L"A");
    database_->findLayer(L"0").openAs<OdDbLayerTableRecord>(OdDb::forWrite)->setIsFrozen(true);
    EXPECT_FALSE(burstBlockReference(*frozen, *model()));
    database_->findLayer(L"0").openAs<OdDbLayerTableRecord>(OdDb::forWrite)->setIsFrozen(false);

    // A block that holds itself, sheared: a viewer shows no end of it.
    reference(block(L"A"), L"A", OdGeScale3d(1), 0.5);
    const auto cyclic = reference(model(), L"A", OdGeScale3d(2, 1, 1));
    EXPECT_FALSE(burstBlockReference(*cyclic, *model()));
    EXPECT_TRUE(entities<OdDbLine>(model()).empty()) << "what had been added is gone again";
    EXPECT_EQ(entities<OdDbBlockReference>(model()).size(), 3u);

    // Without a shear there is one more of it for each burst.
    const auto straight = reference(model(), L"A");
    EXPECT_TRUE(burstBlockReference(*straight, *model()));
    EXPECT_EQ(entities<OdDbLine>(model()).size(), 1u);
}

// One burster for a whole selection: a block whose own references it bursts is not what it was any more.
TEST_F(BurstReference, ContentsThatWereBurstThemselvesGoAlong) {
    torvel::ReferenceBurster burster;
    add(block(L"A"), OdDbLine::createObject());
    const auto inner = reference(block(L"B"), L"A");
    EXPECT_TRUE(burster.burst(*reference(model(), L"B"), *model()));
    EXPECT_TRUE(burster.burst(*inner, *block(L"B")));
    inner->erase();
    EXPECT_TRUE(burster.burst(*reference(model(), L"B"), *model()));
    EXPECT_EQ(entities<OdDbLine>(model()).size(), 1u);
}

TEST_F(BurstReference, TextsOnTheBackgroundOfTheDrawingArePlacedToo) {
    const auto text = OdDbMText::createObject();
    text->setContents(L"a\\Pb");
    text->setLocation(OdGePoint3d(2, 3, 0));
    text->setBackgroundFill(true);
    text->setUseBackgroundColor(true);
    const auto constant = OdDbAttributeDefinition::createObject();
    constant->setMTextAttributeDefinition(*text);
    constant->setConstant(true);
    add(block(L"A"), constant);
    EXPECT_TRUE(burstBlockReference(*reference(model(), L"A", OdGeScale3d(3, 1, 1)), *model()));
    ASSERT_EQ(entities<OdDbMText>(model()).size(), 1u);
    EXPECT_NEAR(entities<OdDbMText>(model())[0]->location().x, 6, 1e-9);
}

// Squeezed to a line it shows nothing that a text could.
TEST_F(BurstReference, LeavesWholeWhatHasNoRoomForText) {
    const auto text = add(block(L"A"), OdDbMText::createObject());
    text->setContents(L"two\\Plines");
    const auto flat = reference(model(), L"A", OdGeScale3d(1, 0, 1), 0.5);
    EXPECT_FALSE(burstBlockReference(*flat, *model()));
    EXPECT_TRUE(entities<OdDbMText>(model()).empty());
}

TEST_F(BurstReference, CopiesCoverEachOtherAsTheOriginalsDo) {
    const auto first = add(block(L"A"), OdDbLine::createObject());
    const auto second = add(block(L"A"), OdDbCircle::createObject());
    const auto last = add(block(L"A"), OdDbLine::createObject());
    // A table that draws the last one first, in the extension dictionary of the block.
    std::string bytes = database_->writeBytes();
    std::erase(bytes, '\r');
    const std::string record = block(L"A")->handle().ascii();
    const std::string head = "BLOCK_RECORD\n  5\n" + record + "\n";
    bytes.insert(bytes.find(head) + head.size(), "102\n{ACAD_XDICTIONARY\n360\n600\n102\n}\n");
    const std::size_t objects = bytes.find("  0\nENDSEC\n", bytes.find("\n  2\nOBJECTS\n"));
    bytes.insert(objects, "  0\nDICTIONARY\n  5\n600\n330\n" + record +
                              "\n100\nAcDbDictionary\n280\n1\n281\n1\n  3\nACAD_SORTENTS\n360\n601\n"
                              "  0\nSORTENTSTABLE\n  5\n601\n330\n600\n100\nAcDbSortentsTable\n330\n" +
                              record + "\n331\n" + last->handle().ascii() + "\n  5\n1\n");
    database_ = OdDbDatabase::readBytes(bytes, L"sorted.dxf");
    EXPECT_TRUE(burstBlockReference(*reference(model(), L"A"), *model()));
    std::vector<std::string> kinds;
    for (const auto& entity : entities<OdDbCurve>(model())) kinds.push_back(entity->dxfName());
    EXPECT_EQ(kinds, (std::vector<std::string>{"LINE", "LINE", "CIRCLE"}));
}

TEST_F(BurstReference, WhatShowsNothingKeepsNothingBack) {
    add(block(L"A"), OdDbLine::createObject());
    add(block(L"B"), OdDbLine::createObject());
    const auto sheared = reference(block(L"B"), L"A", OdGeScale3d(1), 0.5);
    sheared->setLayer(L"FROZEN");
    const auto layer = OdDbLayerTableRecord::createObject();
    layer->setName(L"FROZEN");
    layer->setIsFrozen(true);
    database_->layerTableId().openAs<OdDbSymbolTable>(OdDb::forWrite)->add(layer);
    EXPECT_TRUE(burstBlockReference(*reference(model(), L"B", OdGeScale3d(2, 1, 1)), *model()));
    EXPECT_EQ(entities<OdDbLine>(model()).size(), 1u);

    // What does show something does, and the user is told.
    reference(block(L"B"), L"LOCKED_UP", OdGeScale3d(1), 0.5);
    torvel::ReferenceBurster burster;
    EXPECT_FALSE(burster.burst(*reference(model(), L"B", OdGeScale3d(2, 1, 1)), *model()));
    EXPECT_EQ(burster.obstacle(), L"block B has a reference of LOCKED_UP, which cannot be exploded");
    EXPECT_FALSE(burster.burst(*reference(model(), L"LOCKED_UP"), *model()));
    EXPECT_EQ(burster.obstacle(), L"");
}

TEST_F(BurstReference, SaysWhatKeepsAReference) {
    const auto clip = [](const OdSmartPtr<OdDbBlockReference>& reference) {
        const auto dictionary = reference->createExtensionDictionary().openAs<OdDbDictionary>(OdDb::forWrite);
        const auto filters = OdDbDictionary::createObject();
        dictionary->setAt(L"ACAD_FILTER", filters);
        filters->setAt(L"SPATIAL", OdDbDictionary::createObject());
    };
    const auto expectKept = [&](const OdSmartPtr<OdDbBlockReference>& kept, const wchar_t* obstacle) {
        const std::string before = database_->writeBytes();
        torvel::ReferenceBurster burster;
        EXPECT_FALSE(burster.burst(*kept, *model()));
        EXPECT_EQ(burster.obstacle(), obstacle);
        EXPECT_EQ(database_->writeBytes(), before) << "what was added on the way is gone, to the byte";
        kept->erase();
    };
    const OdGeScale3d squeeze(2, 1, 1);
    add(block(L"A"), OdDbLine::createObject());
    const auto clipped = reference(model(), L"A");
    clip(clipped);
    expectKept(clipped, L"clip would be lost");

    // Of contents that have to be taken apart themselves, the inner block is named and what it holds.
    add(block(L"B"), OdDbLine::createObject());
    const auto inner = reference(block(L"B"), L"A", OdGeScale3d(1), 0.5);
    clip(inner);
    expectKept(reference(model(), L"B", squeeze), L"block B has a clipped reference of A");
    inner->erase();
    reference(block(L"B"), L"A", OdGeScale3d(1), 0.5);
    addRecords("A", "  0|REGION|  5|600|100|AcDbEntity|  8|0|100|AcDbModelerGeometry|");
    expectKept(reference(model(), L"B", squeeze), L"block A has a REGION");
    opened<OdDbEntity>(0x600)->erase();

    const std::string array = "|100|AcDbEntity|  8|0|100|AcDbBlockReference|  2|A| 10|0| 20|0| 30|0| 70|1001| 71|";
    addRecords("ENTITIES", "  0|INSERT|  5|601" + array + "1000|  0|INSERT|  5|602" + array + "2|");
    expectKept(opened<OdDbBlockReference>(0x601), L"contents are more than a million pieces");
    EXPECT_TRUE(burstBlockReference(*opened<OdDbBlockReference>(0x602), *model()));
    EXPECT_EQ(entities<OdDbLine>(model()).size(), 2002u);
}

// One that was moved together with its picture, and that follows a line.
TEST_F(BurstReference, DimensionsGetPicturesOfTheirOwn) {
    add(block(L"B"), OdDbLine::createObject())->setEndPoint({4, 0, 0});
    addRecords("OBJECTS",
               "  0|DICTIONARY|  5|601|330|600|100|AcDbDictionary|280|1|281|1|  3|ACAD_DIMASSOC|360|602|"
               "  0|DIMASSOC|  5|602|330|601|100|AcDbDimAssoc|330|600|331|603|");
    const std::string reactor = "102|{ACAD_REACTORS|330|602|102|}|";
    addRecords("A", "  0|LINE|  5|603|" + reactor +
                        "100|AcDbEntity|  8|0|100|AcDbLine| 10|0| 20|0| 30|0| 11|4| 21|0| 31|0|"
                        "  0|DIMENSION|  5|600|" +
                        reactor +
                        "102|{ACAD_XDICTIONARY|360|601|102|}|100|AcDbEntity|  8|0|"
                        "100|AcDbDimension|  2|B| 10|4| 20|0| 30|0| 12|0| 22|1| 32|0| 70|1|100|AcDbAlignedDimension|"
                        " 13|0| 23|0| 33|0| 14|4| 24|0| 34|0|");
    for (int i = 0; i < 2; ++i) {
        const auto made = reference(model(), L"A", OdGeScale3d(2));
        made->setPosition({10, 0, 0});
        EXPECT_TRUE(burstBlockReference(*made, *model()));
    }
    const std::string bytes = database_->writeBytes();
    for (const wchar_t* name : {L"*D1", L"*D2"}) {
        const auto lines = entities<OdDbLine>(block(name));
        ASSERT_EQ(lines.size(), 1u);
        EXPECT_EQ(lines[0]->startPoint(), OdGePoint3d(10, 2, 0));
        EXPECT_EQ(lines[0]->endPoint(), OdGePoint3d(18, 2, 0));
        const std::string moved = "\n  2\n" + base::toUtf8(name) + "\n 10\n18.0\n 20\n0\n 30\n0\n 12\n0\n 22\n0.0\n";
        EXPECT_NE(bytes.find(moved), std::string::npos) << "what it was moved by is in the picture now";
    }
    // What they measured has not come along, and nobody names it any more.
    for (const auto& entity : entities<OdDbEntity>(model())) {
        EXPECT_TRUE(entity->persistentReactors().empty());
        const auto dictionary = entity->extensionDictionary().openIf<OdDbDictionary>();
        EXPECT_TRUE(!dictionary || dictionary->entries().empty());
    }

    // A picture that cannot be transformed leaves a reference of it.
    addRecords("B", "  0|REGION|  5|604|100|AcDbEntity|  8|0|100|AcDbModelerGeometry|");
    EXPECT_TRUE(burstBlockReference(*reference(model(), L"A"), *model()));
    EXPECT_EQ(entities<OdDbBlockReference>(model()).back()->blockName(), L"B");
    EXPECT_TRUE(database_->findBlock(L"*D3").isNull());
}

TEST_F(BurstReference, ShowsConstantsAndSkipsWhatIsHidden) {
    const auto define = [&](const wchar_t* tag, const wchar_t* value, auto&& set) {
        const auto definition = OdDbAttributeDefinition::createObject();
        definition->setTag(tag);
        definition->setTextString(value);
        set(*definition);
        add(block(L"A"), definition);
    };
    define(
        L"VARIABLE", L"default", [](auto&) {});
    define(
        L"CONSTANT", L"constant", [](auto& d) { d.setConstant(true); });
    define(L"SECRET", L"secret", [](auto& d) { d.setConstant(true), d.setInvisible(true); });
    const auto made = reference(model(), L"A", OdGeScale3d(2));
    for (const wchar_t* value : {L"shown", L"invisible", L"hidden"}) {
        const auto attribute = OdDbAttribute::createObject();
        attribute->setTextString(value);
        attribute->setInvisible(value[0] == L'i');
        attribute->setVisibility(value[0] != L'h');
        made->appendAttribute(attribute.get());
    }
    EXPECT_TRUE(burstBlockReference(*made, *model()));
    std::vector<OdString> values;
    for (const auto& text : entities<OdDbText>(model())) values.push_back(text->textString());
    EXPECT_EQ(values, (std::vector<OdString>{L"constant", L"shown"}));
    EXPECT_DOUBLE_EQ(entities<OdDbText>(model())[0]->height(), 0.4) << "definitions have their places in the block";
}

}  // namespace
