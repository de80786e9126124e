// Attributes and their definitions, single- and multi-line.
#include "drawingdb/attribute.h"

#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/mtext.h"
#include "drawingdb/symbol_table.h"
#include "drawingdb/text.h"
#include "entity_fixture.h"

namespace {

class Attributes : public RandomTransforms {
  protected:
    OdSmartPtr<OdDbAttributeDefinition> definition() {
        auto made = OdDbAttributeDefinition::createObject();
        made->setTag(L"A_LONG_TAG_NAME");
        made->setPrompt(L"prompt");
        made->setTextString(L"value");
        if (chance()) made->setNormal(direction());
        made->setPosition(point());
        made->setHeight(number(0.5, 5));
        made->setWidthFactor(number(0.5, 2));
        made->setRotation(number(0, 6.28));
        made->mirrorInX(number(0, 1) < 0.3);
        return made;
    }
};

// The attribute looks as the definition would in its place: with its value drawn, and carried there by the block's
// transform.
TEST_F(Attributes, StandWhereTheBlockPutsThem) {
    for (int round = 0; round < 10; ++round)
        for (int horizontal = 0; horizontal <= OdDb::kTextFit; ++horizontal)
            for (int vertical = 0; vertical <= OdDb::kTextTop; ++vertical) {
                const auto source = definition();
                source->setHorizontalMode(horizontal);
                source->setVerticalMode(vertical);
                if (source->isJustified())
                    source->setAlignmentPoint(source->position() + OdGeMatrix3d::planeToWorld(source->normal()) *
                                                                       OdGeVector3d(number(1, 9), 2, 0));
                const OdGeMatrix3d matrix = source->isJustified() ? similarity() : affine();
                // A definition hangs by its tag; a text in its place hangs by the value.
                const auto shown = OdDbAttribute::createObject();
                shown->setAttributeFromBlock(*source, OdGeMatrix3d::kIdentity);
                const auto attribute = OdDbAttribute::createObject();
                attribute->setAttributeFromBlock(*source, matrix);
                expectSameDrawing(strokesOf(*attribute), transformed(strokesOf(*shown), matrix),
                                  "modes " + std::to_string(horizontal) + " " + std::to_string(vertical));
                if (source->isJustified() && horizontal != OdDb::kTextAlign && horizontal != OdDb::kTextFit) {
                    expectNear(attribute->alignmentPoint(), matrix * source->alignmentPoint(), 1e-8, "alignment point");
                    OdGeExtents3d box;
                    ASSERT_TRUE(attribute->geomExtents(box));
                }
            }
}

TEST_F(Attributes, MultiLineOnesToo) {
    for (int i = 0; i < 60; ++i) {
        const auto source = definition();
        source->mirrorInX(false);
        source->convertIntoMTextAttributeDefinition(true);
        const auto lines = source->getMTextAttributeDefinition();
        lines->setContents(L"first\\Psecond {\\H0.7x;line} that wraps");
        lines->setWidth(number(8, 30));
        lines->setAttachment(static_cast<int>(number(1, 9.99)));
        source->setMTextAttributeDefinition(*lines);
        const OdGeMatrix3d matrix = similarity();
        const auto attribute = OdDbAttribute::createObject();
        attribute->setAttributeFromBlock(*source, matrix);
        ASSERT_TRUE(attribute->isMTextAttribute());
        expectSameDrawing(strokesOf(*attribute->getMTextAttribute()), transformed(strokesOf(*lines), matrix), "lines");
        const OdGePoint3d place = matrix * lines->location();
        expectNear(attribute->position(), place, 1e-8, "position");
        expectNear(attribute->alignmentPoint(), place, 1e-8, "alignment point");
        OdGeExtents3d box;
        ASSERT_TRUE(attribute->geomExtents(box));
    }
}

TEST_F(Attributes, ATransformWithoutASizeStillPlacesThem) {
    const auto source = definition();
    source->setNormal(OdGeVector3d::kZAxis);
    source->setPosition(OdGePoint3d(1, 2, 0));
    const auto attribute = OdDbAttribute::createObject();
    attribute->setAttributeFromBlock(
        *source, OdGeMatrix3d::translation({5, 0, 0}) * OdGeMatrix3d::scaling(OdGeScale3d(0, 1, 1)));
    expectNear(attribute->position(), OdGePoint3d(5, 2, 0), 1e-12, "position");
    EXPECT_EQ(attribute->height(), source->height());
}

const char* const kPlan =
    "0|ATTDEF|5|D|100|AcDbEntity|8|DOORS|62|3|100|AcDbText|10|1|20|2|30|0|40|2.5|1|default|50|30|41|0.8|51|10|7|NOTES|"
    "100|AcDbAttributeDefinition|280|0|3|What is it?|2|KIND|70|9|73|12|280|1|71|1|72|0|"
    "0|ATTRIB|5|A|100|AcDbEntity|8|0|100|AcDbText|10|6|20|8|30|0|40|2.5|1|single|100|AcDbAttribute|280|3|2|U|70|0|"
    "0|ATTRIB|5|B|100|AcDbEntity|8|0|100|AcDbText|10|6|20|8|30|0|40|2.5|1|single|100|AcDbAttribute|2|U|70|4|280|1|"
    "0|ATTRIB|5|C|100|AcDbEntity|8|0|100|AcDbText|10|6.0|20|7.0|30|0.0|40|1.5|1|value 1|11|6.0|21|7.0|31|0.0|"
    "100|AcDbAttribute|280|0|2|T|70|0|74|3|71|2|72|0|11|6.0|21|7.0|31|0.0|"
    "101|Embedded Object|10|6.0|20|7.0|30|0.0|40|1.5|41|20.0|46|0.0|71|1|72|5|1|value 1\\Pvalue 2";

// Rows and columns run in the reference's own directions, unscaled; its attributes stand in each cell as its block
// does.
TEST(AttributeFiles, AMultipleReferenceReachesAroundAllItsCells) {
    for (const char* const scaleX : {"-2", "0"}) {
        const auto database = drawing(
            "AC1032", std::string("0|INSERT|5|E|100|AcDbEntity|8|0|100|AcDbMInsertBlock|66|1|2|A|10|1|20|2|30|0|41|") +
                          scaleX +
                          "|50|30|70|3|71|2|44|10|45|-25|"
                          "0|ATTRIB|5|F|100|AcDbEntity|8|0|100|AcDbText|10|6|20|30|30|0|40|2|1|word|100|"
                          "AcDbAttribute|2|T|70|0|0|SEQEND|5|10|0|ENDSEC|0|SECTION|2|BLOCKS|0|BLOCK|5|11|2|A|70|2|10|0|"
                          "20|0|30|0|0|LINE|5|12|100|AcDbEntity|8|0|100|AcDbLine|10|0|20|0|30|0|11|3|21|4|31|0|0|"
                          "ENDBLK|5|13");
        const auto reference = opened<OdDbBlockReference>(database, 0xE);
        OdGeExtents3d word, expected, found;
        ASSERT_TRUE(opened<OdDbAttribute>(database, 0xF)->geomExtents(word));
        const double turn = reference->rotation();
        for (int row = 0; row < 2; ++row)
            for (int column = 0; column < 3; ++column) {
                const OdGeVector3d shift(column * 10 * std::cos(turn) + row * 25 * std::sin(turn),
                                         column * 10 * std::sin(turn) - row * 25 * std::cos(turn), 0);
                const OdGeMatrix3d cell = OdGeMatrix3d::translation(shift);
                OdGeExtents3d line({0, 0, 0}, {3, 4, 0}), text = word;
                expected.addExtents(line.transformBy(cell * reference->blockTransform()));
                expected.addExtents(text.transformBy(cell));
            }
        ASSERT_TRUE(reference->geomExtents(found));
        EXPECT_TRUE(found.minPoint().isEqualTo(expected.minPoint())) << scaleX;
        EXPECT_TRUE(found.maxPoint().isEqualTo(expected.maxPoint())) << scaleX;
    }
}

TEST(AttributeFiles, EverythingComesFromTheDefinition) {
    const auto database = drawing("AC1032", kPlan);
    const auto source = opened<OdDbAttributeDefinition>(database, 0xD);
    EXPECT_EQ(source->prompt(), L"What is it?");
    {
        const auto attribute = opened<OdDbAttribute>(database, 0xA, OdDb::forWrite);
        attribute->setAttributeFromBlock(*source, OdGeMatrix3d::translation({10, 0, 0}));
    }
    const auto again = reread(database);
    const auto attribute = opened<OdDbAttribute>(again, 0xA);
    EXPECT_EQ(attribute->layer(), L"DOORS");
    EXPECT_EQ(attribute->color(), OdCmColor::fromIndex(3));
    EXPECT_EQ(attribute->textString(), L"default");
    EXPECT_EQ(attribute->tag(), L"KIND");
    EXPECT_EQ(attribute->position(), OdGePoint3d(11, 2, 0));
    EXPECT_EQ(attribute->rotation(), source->rotation()) << "a move keeps the digits of everything else";
    EXPECT_EQ(attribute->oblique(), source->oblique());
    EXPECT_EQ(attribute->widthFactor(), 0.8);
    EXPECT_EQ(attribute->textStyleName(), L"NOTES");
    EXPECT_TRUE(attribute->isInvisible());
    EXPECT_TRUE(attribute->isPreset());
    EXPECT_FALSE(attribute->isVerifiable());
    EXPECT_EQ(attribute->fieldLength(), 12);
    EXPECT_TRUE(attribute->lockPositionInBlock());
    const auto groups = savedGroups(database, "A");
    EXPECT_EQ(
        std::count_if(groups.begin(), groups.end(), [](const auto& g) { return g.find("What is it?") != g.npos; }), 0)
        << "attributes have no prompt";
}

// Two groups 280: the version before the tag, the lock behind it; either may stand alone.
TEST(AttributeFiles, VersionAndLockShareACode) {
    const auto database = drawing("AC1032", kPlan);
    EXPECT_FALSE(opened<OdDbAttribute>(database, 0xA)->lockPositionInBlock());
    EXPECT_TRUE(opened<OdDbAttribute>(database, 0xB)->lockPositionInBlock());
    opened<OdDbAttribute>(database, 0xA, OdDb::forWrite)->setLockPositionInBlock(true);
    opened<OdDbAttribute>(database, 0xB, OdDb::forWrite)->setLockPositionInBlock(false);
    const auto again = reread(database);
    EXPECT_TRUE(opened<OdDbAttribute>(again, 0xA)->lockPositionInBlock());
    EXPECT_FALSE(opened<OdDbAttribute>(again, 0xB)->lockPositionInBlock());
    EXPECT_TRUE(opened<OdDbAttribute>(again, 0xB)->isVerifiable());
}

// Versions 2000 to 2006 have the lock in extended data, with the version before it.
TEST(AttributeFiles, OlderFilesLockByExtendedData) {
    const std::string lock = "1001|AcDbAttr|1070|0|1070|1|1040|0.50|";
    const auto database = OdDbDatabase::readBytes(
        [&] {
            std::string bytes =
                "0|SECTION|2|HEADER|9|$ACADVER|1|AC1015|0|ENDSEC|0|SECTION|2|TABLES|0|TABLE|2|APPID|5|9|70|1|0|APPID|5|"
                "12|330|9|100|AcDbSymbolTableRecord|100|AcDbRegAppTableRecord|2|ACAD|70|0|0|ENDTAB|0|ENDSEC|0|SECTION|"
                "2|"
                "ENTITIES|0|ATTDEF|5|D|100|AcDbEntity|8|0|100|AcDbText|10|1|20|2|30|0|40|2|1|x|100|"
                "AcDbAttributeDefinition|3|P|2|T|70|0|" +
                lock +
                "0|ATTRIB|5|A|100|AcDbEntity|8|0|100|AcDbText|10|6|20|8|30|0|40|2.5|1|x|100|AcDbAttribute|2|U|70|0|0|"
                "ENDSEC|0|EOF|";
            for (char& c : bytes)
                if (c == '|') c = '\n';
            return bytes;
        }(),
        L"test.dxf");
    const std::string before = database->writeBytes();
    database->touchEverything();
    EXPECT_EQ(database->writeBytes(), before);
    EXPECT_FALSE(opened<OdDbAttribute>(database, 0xA)->lockPositionInBlock());
    const auto definition = opened<OdDbAttributeDefinition>(database, 0xD, OdDb::forWrite);
    EXPECT_TRUE(definition->lockPositionInBlock());
    opened<OdDbAttribute>(database, 0xA, OdDb::forWrite)->setAttributeFromBlock(*definition, OdGeMatrix3d::kIdentity);
    const auto again = reread(database);
    EXPECT_TRUE(opened<OdDbAttribute>(again, 0xA)->lockPositionInBlock());
    const auto applications = again->tableId("APPID").openAs<OdDbSymbolTable>();
    EXPECT_TRUE(applications->has(L"AcDbAttr")) << "an application that no table lists is a fault";
    definition->setLockPositionInBlock(false);
    EXPECT_FALSE(opened<OdDbAttributeDefinition>(reread(database), 0xD)->lockPositionInBlock());
    const auto endOf = [&](const char* handle) {
        std::string end;
        for (const std::string& group : savedGroups(database, handle))
            if (!end.empty() || group.starts_with("1001|")) end += group + " ";
        return end;
    };
    EXPECT_EQ(endOf("D"), "1001|AcDbAttr 1070|0 1070|0 1040|0.5 ") << "what else stands there stays";
    // Data of another form is not taken for a lock, nor lost by one.
    opened<OdDbAttribute>(database, 0xA, OdDb::forWrite)
        ->setXData({OdDbGroup{1001, L"AcDbAttr"}, OdDbGroup{1000, L"note"}, OdDbGroup{1070, {}, 0, 1}});
    EXPECT_FALSE(opened<OdDbAttribute>(reread(database), 0xA)->lockPositionInBlock());
    opened<OdDbAttribute>(database, 0xA, OdDb::forWrite)->setLockPositionInBlock(true);
    EXPECT_EQ(endOf("A"), "1001|AcDbAttr 1070|0 1070|1 1000|note 1070|1 ");
}

// What is not turned keeps its digits, and what is turned gets few where few will do, the same on every platform.
TEST(AttributeFiles, BeingAnnotativeGoesAlong) {
    const auto database = OdDbDatabase::createNew();
    const auto append = [&](bool annotative, bool multiLine) {
        const auto definition = OdDbAttributeDefinition::createObject();
        definition->setDatabaseDefaults(database.get());
        definition->setTag(L"TAG");
        definition->setAnnotative(annotative);
        definition->convertIntoMTextAttributeDefinition(multiLine);
        database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(definition.get());
        return definition->handle().value();
    };
    const std::uint64_t yes = append(true, false), lines = append(true, true), no = append(false, false);
    const auto again = reread(database);
    for (const std::uint64_t handle : {yes, lines, no}) {
        const auto definition = opened<OdDbAttributeDefinition>(again, handle);
        EXPECT_EQ(definition->isAnnotative(), handle != no);
        const auto attribute = OdDbAttribute::createObject();
        attribute->setAttributeFromBlock(*definition, OdGeMatrix3d::kIdentity);
        EXPECT_EQ(attribute->isAnnotative(), handle != no);
    }
    const auto definition = opened<OdDbAttributeDefinition>(again, yes, OdDb::forWrite);
    definition->setAnnotative(false);
    EXPECT_FALSE(definition->isAnnotative());
    EXPECT_FALSE(opened<OdDbAttributeDefinition>(reread(again), yes)->isAnnotative());
}

TEST(AttributeFiles, AnglesKeepTheirDigits) {
    const auto turned = [](const std::string& definition, const std::string& reference,
                           const std::string& scale = "1") {
        const auto database =
            drawing("AC1032", "0|ATTDEF|5|D|100|AcDbEntity|8|0|100|AcDbText|10|3|20|0|30|0|40|2|1|x|50|" + definition +
                                  "|100|AcDbAttributeDefinition|280|0|3|P|2|T|70|0|"
                                  "0|INSERT|5|B|100|AcDbEntity|8|0|100|AcDbBlockReference|2|B|10|0|20|0|30|0|41|" +
                                  scale + "|42|" + scale + "|43|" + scale + "|50|" + reference);
        const auto block = opened<OdDbBlockReference>(database, 0xB, OdDb::forWrite);
        const auto attribute = OdDbAttribute::createObject();
        block->appendAttribute(attribute.get());
        attribute->setAttributeFromBlock(*opened<OdDbAttributeDefinition>(database, 0xD), block->blockTransform());
        attribute->downgradeOpen();
        std::string angle = "0", place;
        for (const std::string& group : savedGroups(database, attribute->handle().ascii())) {
            if (group.starts_with("50|")) angle = group.substr(3);
            if (group.starts_with("10|") || group.starts_with("20|")) place += group.substr(3) + " ";
        }
        return angle + " at " + place;
    };
    EXPECT_EQ(turned("30", "0"), "30.0 at 3.0 0.0 ");
    EXPECT_EQ(turned("30", "0", "2.5"), "30.0 at 7.5 0.0 ");
    EXPECT_EQ(turned("33.1234567890123", "0"), "33.1234567890123 at 3.0 0.0 ");
    EXPECT_EQ(turned("30", "90"), "120.0 at 0.0 3.0 ");
    EXPECT_EQ(turned("270", "90"), "0 at 0.0 3.0 ");
    EXPECT_EQ(turned("0", "180"), "180.0 at -3.0 0.0 ");
    EXPECT_EQ(turned("350", "10", "0.3").substr(0, 5), "0 at ");
    EXPECT_EQ(turned("30", "45").substr(0, 8), "75.0 at ");
    EXPECT_EQ(turned("12.25", "301.5", "7").substr(0, 10), "313.75 at ");
    // Angles of no few digits, as one sum over their bytes.
    std::uint32_t sum = 2166136261u;
    for (int i = 1; i <= 400; ++i)
        for (const char c : turned(std::to_string(i) + ".123456789", std::to_string(i * 7 % 360) + ".98765432109876"))
            sum = (sum ^ static_cast<unsigned char>(c)) * 16777619u;
    EXPECT_EQ(sum, 3218971742u);
}

// A style that is shown already is no change, also where the file leaves it out.
TEST(AttributeFiles, TheSameStyleWritesNothing) {
    const auto database = OdDbDatabase::createNew();
    const auto space = database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite);
    const auto text = OdDbText::createObject();
    const auto lines = OdDbMText::createObject();
    space->appendOdDbEntity(text.get());
    space->appendOdDbEntity(lines.get());
    const std::string before = database->writeBytes();
    text->setTextStyle(database->findTextStyle(L"Standard"));
    lines->setTextStyle(database->findTextStyle(L"Standard"));
    EXPECT_EQ(database->writeBytes(), before);
}

// Before 2000 there are no markers, and in any order of the groups 71 and 72 are those of the text.
TEST(AttributeFiles, OldFilesHaveTheCodesInOneRow) {
    for (const char* order : {"3|Prompt|2|TAG|70|1|73|5|50|90|41|0.5|7|S|71|2|72|1|11|4|21|2|31|0|74|3",
                              "3|Prompt|2|TAG|70|1|73|5|74|3|72|1|71|2|11|4|21|2|31|0",
                              "71|2|72|1|11|4|21|2|31|0|74|3|73|5|3|Prompt|2|TAG|70|1"}) {
        SCOPED_TRACE(order);
        const auto database = drawing("AC1009", std::string("0|ATTDEF|5|D|8|0|10|1|20|2|30|0|40|2|1|value|") + order);
        const std::string before = database->writeBytes();
        {
            const auto definition = opened<OdDbAttributeDefinition>(database, 0xD, OdDb::forWrite);
            EXPECT_TRUE(definition->isMirroredInX());
            EXPECT_EQ(definition->horizontalMode(), OdDb::kTextCenter);
            EXPECT_EQ(definition->verticalMode(), OdDb::kTextTop);
            EXPECT_EQ(definition->fieldLength(), 5);
            EXPECT_EQ(definition->alignmentPoint(), OdGePoint3d(4, 2, 0));
            EXPECT_TRUE(definition->isInvisible());
            // What is set to the value it has is no change.
            definition->mirrorInX(true);
            definition->setTextString(L"value");
            definition->setHorizontalMode(OdDb::kTextCenter);
        }
        EXPECT_EQ(database->writeBytes(), before);
        opened<OdDbAttributeDefinition>(database, 0xD, OdDb::forWrite)->mirrorInX(false);
        EXPECT_FALSE(opened<OdDbAttributeDefinition>(reread(database), 0xD)->isMirroredInX());
    }
}

TEST(AttributeFiles, BothSidesOfAMultiLineValueChangeTogether) {
    const auto database = drawing("AC1032", kPlan);
    const std::string before = database->writeBytes();
    {
        const auto attribute = opened<OdDbAttribute>(database, 0xC, OdDb::forWrite);
        ASSERT_TRUE(attribute->isMTextAttribute());
        EXPECT_EQ(attribute->textString(), L"value 1\\Pvalue 2");
        EXPECT_EQ(attribute->getMTextAttribute()->plainText(), L"value 1\nvalue 2");
        attribute->setTextString(L"{\\C1;other}\\Plines\\Pthree");
    }
    std::string expected = before;
    const auto replace = [&](const std::string& old, const std::string& now, std::size_t from) {
        expected.replace(expected.find(old, from), old.size(), now);
    };
    replace("\n1\nvalue 1\n", "\n  1\nother\n", 0);
    replace("\n1\nvalue 1\\Pvalue 2\n", "\n  1\n{\\C1;other}\\Plines\\Pthree\n", 0);
    EXPECT_EQ(database->writeBytes(), expected) << "and nothing else";

    const auto attribute = opened<OdDbAttribute>(database, 0xC, OdDb::forWrite);
    attribute->setAlignmentPoint(OdGePoint3d(1, 1, 0));
    EXPECT_EQ(attribute->position(), OdGePoint3d(1, 1, 0));
    attribute->setHeight(4);
    attribute->setRotation(1);
    attribute->setHorizontalMode(OdDb::kTextRight);
    const auto lines = attribute->getMTextAttribute();
    EXPECT_EQ(lines->location(), OdGePoint3d(1, 1, 0));
    EXPECT_EQ(lines->textHeight(), 4);
    EXPECT_NEAR(lines->rotation(), 1, 1e-12);
    EXPECT_EQ(lines->attachment(), 3);
    EXPECT_EQ(attribute->position(), OdGePoint3d(1, 1, 0)) << "not hung by the metrics of a single line";

    lines->setLocation(OdGePoint3d(8, 9, 0));
    lines->setContents(L"new\\Pvalue");
    attribute->setMTextAttribute(*lines);
    attribute->downgradeOpen();
    const auto again = reread(database);
    const auto read = opened<OdDbAttribute>(again, 0xC);
    EXPECT_EQ(read->position(), OdGePoint3d(8, 9, 0));
    EXPECT_EQ(read->getMTextAttribute()->location(), OdGePoint3d(8, 9, 0));
    EXPECT_EQ(read->textString(), L"new\\Pvalue");
}

// Turned or with another width, several lines go on as they ran, and the backwards bit that a file gives them stays.
TEST(AttributeFiles, BackwardsLinesTurnAsFarAsTheirRotation) {
    const auto database = drawing("AC1032", kPlan);
    const auto attribute = opened<OdDbAttribute>(database, 0xC, OdDb::forWrite);
    attribute->setRotation(0.3);
    attribute->mirrorInX(true);
    attribute->setRotation(0.2);
    EXPECT_NEAR(attribute->getMTextAttribute()->rotation(), 0.2, 1e-12);
    const auto setWidth = [&](double width) {
        const auto lines = attribute->getMTextAttribute();
        lines->setWidth(width);
        attribute->setMTextAttribute(*lines);
    };
    setWidth(30);
    EXPECT_EQ(attribute->rotation(), 0.2);
    EXPECT_TRUE(attribute->isMirroredInX());
    attribute->mirrorInX(false);

    // In a mirror they are seen from behind, and run against their baseline.
    attribute->transformBy(OdGeMatrix3d::scaling({-1, 1, 1}));
    ASSERT_TRUE(attribute->isMirroredInX());
    const double rotation = attribute->rotation();
    const OdGeVector3d normal = attribute->normal(), along = attribute->getMTextAttribute()->direction();
    setWidth(40);
    EXPECT_TRUE(attribute->isMirroredInX());
    EXPECT_EQ(attribute->rotation(), rotation);
    EXPECT_EQ(attribute->normal(), normal);
    attribute->setRotation(rotation + 1);
    const OdGeVector3d turned = attribute->getMTextAttribute()->direction();
    EXPECT_NEAR(turned.dotProduct(along) / turned.length() / along.length(), std::cos(1), 1e-12);
    EXPECT_NEAR(attribute->getMTextAttribute()->normal().dotProduct(normal), -1, 1e-12);
}

// However a reference is moved, the lines go by the text that they stand for: in a mirror with the opposite normal and
// against its baseline, else with the same ones. So they do where only the attribute's plane is turned.
TEST(AttributeFiles, MirroredLinesKeepTheirSideOfThePlane) {
    const auto database = drawing("AC1032", kPlan);
    const auto attribute = opened<OdDbAttribute>(database, 0xC, OdDb::forWrite);
    const auto expectOneSide = [&](const char* after) {
        SCOPED_TRACE(after);
        const auto lines = attribute->getMTextAttribute();
        const double side = attribute->isMirroredInX() ? -1 : 1;
        EXPECT_NEAR(lines->normal().dotProduct(attribute->normal()), side, 1e-12);
        const OdGeVector3d baseline = OdGeMatrix3d::planeToWorld(attribute->normal()) *
                                      OdGeVector3d(std::cos(attribute->rotation()), std::sin(attribute->rotation()), 0);
        EXPECT_NEAR(lines->direction().dotProduct(baseline), side, 1e-12);
    };
    attribute->setRotation(0.3);
    for (const bool mirrored : {false, true}) {
        ASSERT_EQ(attribute->isMirroredInX(), mirrored);
        expectOneSide("as it is");
        attribute->transformBy(OdGeMatrix3d::rotation(2.8, OdGeVector3d(1, 2, 0)));
        expectOneSide("turned out of the plane");
        attribute->transformBy(OdGeMatrix3d::scaling({2, 2, -2}));
        expectOneSide("mirrored above and below");
        for (const OdGeVector3d& normal : {OdGeVector3d(0, 0, -1), OdGeVector3d(0, -1, 0.1), OdGeVector3d::kZAxis}) {
            attribute->setNormal(normal);
            expectOneSide("in another plane");
        }
        attribute->transformBy(OdGeMatrix3d::scaling({1, -1, 1}));
    }
}

// What is derived (the place of justified text, the embedded text) goes back with what it was derived from.
TEST(AttributeFiles, UndoReachesOpenAttributes) {
    const auto database = drawing("AC1032", kPlan);
    const std::string before = database->writeBytes();
    const auto single = opened<OdDbAttribute>(database, 0xA, OdDb::forWrite);
    const auto lines = opened<OdDbAttribute>(database, 0xC, OdDb::forWrite);
    database->setUndoMark();
    single->setHorizontalMode(OdDb::kTextRight);
    single->setTextString(L"longer than it was");
    EXPECT_LT(single->position().x, 6);
    single->convertIntoMTextAttribute(true);
    lines->convertIntoMTextAttribute(false);
    lines->transformBy(OdGeMatrix3d::translation({1, 1, 1}));
    database->undoBack();
    EXPECT_EQ(single->position(), OdGePoint3d(6, 8, 0));
    EXPECT_FALSE(single->isMTextAttribute());
    ASSERT_TRUE(lines->isMTextAttribute());
    EXPECT_EQ(lines->getMTextAttribute()->contents(), L"value 1\\Pvalue 2");
    EXPECT_EQ(database->writeBytes(), before);
}

TEST(AttributeFiles, SingleAndMultiLineTurnIntoEachOther) {
    const auto database = drawing("AC1032", kPlan);
    {
        const auto attribute = opened<OdDbAttribute>(database, 0xA, OdDb::forWrite);
        attribute->setTextString(L"C:\\{x}");
        attribute->convertIntoMTextAttribute(true);
        opened<OdDbAttribute>(database, 0xC, OdDb::forWrite)->convertIntoMTextAttribute(false);
    }
    const auto again = reread(database);
    const auto lines = opened<OdDbAttribute>(again, 0xA);
    ASSERT_TRUE(lines->isMTextAttribute());
    EXPECT_EQ(lines->getMTextAttribute()->plainText(), L"C:\\{x}");
    EXPECT_EQ(lines->getMTextAttribute()->location(), OdGePoint3d(6, 8, 0));
    const auto groups = savedGroups(database, "A");
    EXPECT_NE(std::find(groups.begin(), groups.end(), "71|2"), groups.end());
    const auto line = opened<OdDbAttribute>(again, 0xC);
    EXPECT_FALSE(line->isMTextAttribute());
    EXPECT_EQ(line->textString(), L"value 1 value 2");

    const auto old = drawing(
        "AC1015", "0|ATTRIB|5|A|100|AcDbEntity|8|0|100|AcDbText|10|6|20|8|30|0|40|2.5|1|x|100|AcDbAttribute|2|U|70|0");
    const auto attribute = opened<OdDbAttribute>(old, 0xA, OdDb::forWrite);
    try {
        attribute->convertIntoMTextAttribute(true);
        FAIL() << "a file of 2000 has no place for multi-line attributes";
    } catch (const OdError& error) {
        EXPECT_EQ(error.code(), OdResult::notHeldByVersion);
    }
    EXPECT_FALSE(attribute->isMTextAttribute());
}

}  // namespace
