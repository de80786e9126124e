// Multi-line text: place, transforms, files.
#include "drawingdb/mtext.h"

#include "drawingdb/block.h"
#include "drawingdb/text.h"
#include "entity_fixture.h"

namespace {

class MultiLineTexts : public RandomTransforms {
  protected:
    OdSmartPtr<OdDbMText> text() {
        auto made = OdDbMText::createObject();
        made->setContents(L"First line\\P{\\H0.5;small} and {\\H2x;large} words that wrap\\P\\U+00E9nd");
        if (chance()) made->setNormal(direction());
        made->setLocation(point());
        made->setTextHeight(number(0.5, 3));
        made->setWidth(number(10, 40));
        made->setAttachment(static_cast<int>(number(1, 9.99)));
        made->setRotation(number(0, 6.28));
        return made;
    }
};

TEST_F(MultiLineTexts, EveryStrokeIsWhereTheMatrixPutsIt) {
    for (int i = 0; i < 50; ++i) {
        const auto made = text();
        const OdGeMatrix3d matrix = similarity();
        const Strokes expected = transformed(strokesOf(*made), matrix);
        OdGeExtents3d box;
        ASSERT_EQ(made->transformBy(matrix), OdResult::ok);
        expectSameDrawing(strokesOf(*made), expected, "strokes");
        ASSERT_TRUE(made->geomExtents(box));
        EXPECT_NEAR(made->direction().dotProduct(made->normal()), 0, 1e-12);
    }
    EXPECT_EQ(text()->transformBy(OdGeMatrix3d::scaling(OdGeScale3d(0, 0, 0))), OdResult::transformRefused);
}

TEST_F(MultiLineTexts, DirectionAndRotationAreOne) {
    for (int i = 0; i < 50; ++i) {
        const auto made = text();
        const OdGeVector3d before = made->direction();
        made->setRotation(made->rotation());
        EXPECT_TRUE(made->direction().isEqualTo(before));
        made->setDirection(before);
        EXPECT_TRUE(made->direction().isEqualTo(before));
    }
    const auto made = OdDbMText::createObject();
    made->setRotation(drawingdb::kPi / 2);
    EXPECT_EQ(made->direction(), OdGeVector3d::kYAxis);
}

TEST_F(MultiLineTexts, AttachmentsAndModesAreOne) {
    const auto made = OdDbMText::createObject();
    for (const int vertical : {OdDb::kTextTop, OdDb::kTextVertMid, OdDb::kTextBottom})
        for (const int horizontal : {OdDb::kTextLeft, OdDb::kTextCenter, OdDb::kTextRight}) {
            made->setHorizontalMode(horizontal);
            made->setVerticalMode(vertical);
            EXPECT_EQ(made->horizontalMode(), horizontal);
            EXPECT_EQ(made->verticalMode(), vertical);
            OdGeExtents3d box;
            made->setContents(L"words");
            made->setTextHeight(3);
            ASSERT_TRUE(made->geomExtents(box));
            // The attachment is the point of the box that lies at the location.
            if (horizontal == OdDb::kTextLeft) EXPECT_NEAR(box.minPoint().x, 0, 1e-9);
            if (horizontal == OdDb::kTextCenter) EXPECT_NEAR(box.center().x, 0, 1e-9);
            if (horizontal == OdDb::kTextRight) EXPECT_NEAR(box.maxPoint().x, 0, 1e-9);
            if (vertical == OdDb::kTextTop) EXPECT_NEAR(box.maxPoint().y, 0, 1e-9);
            if (vertical == OdDb::kTextBottom) EXPECT_NEAR(box.minPoint().y, 0, 1e-9);
        }
    EXPECT_EQ(made->attachment(), 9);
    EXPECT_THROW(made->setAttachment(0), OdError);
}

std::string record(const std::string& groups) {
    return "0|MTEXT|5|A|100|AcDbEntity|8|0|100|AcDbMText|10|1|20|2|30|0|40|2.5|41|0|71|1|72|1|" + groups;
}

// A file may give the direction, the rotation or both; the later one holds, and a change goes where the file has it.
TEST(MultiLineTextFiles, TheLaterOfDirectionAndRotationHolds) {
    const struct {
        const char* groups;
        OdGeVector3d direction;
    } cases[] = {{"1|x", {1, 0, 0}},
                 {"1|x|50|90", {0, 1, 0}},
                 {"1|x|11|0|21|2|31|0", {0, 1, 0}},
                 {"1|x|50|90|11|-1|21|0|31|0", {-1, 0, 0}},
                 {"1|x|11|-1|21|0|31|0|50|90", {0, 1, 0}}};
    for (const auto& c : cases) {
        const auto database = drawing("AC1032", record(c.groups));
        {
            const auto text = opened<OdDbMText>(database, 0xA, OdDb::forWrite);
            EXPECT_TRUE(text->direction().isEqualTo(c.direction)) << c.groups;
            text->setRotation(drawingdb::kPi);
            EXPECT_TRUE(text->direction().isEqualTo(OdGeVector3d(-1, 0, 0))) << c.groups;
        }
        const auto again = reread(database);
        const auto text = opened<OdDbMText>(again, 0xA);
        EXPECT_TRUE(text->direction().isEqualTo(OdGeVector3d(-1, 0, 0))) << c.groups;
        EXPECT_NEAR(text->rotation(), drawingdb::kPi, 1e-12) << c.groups;
    }
}

TEST(MultiLineTextFiles, BackgroundsSurviveAFile) {
    const auto database = OdDbDatabase::createNew();
    const auto text = OdDbMText::createObject();
    text->setDatabaseDefaults(database.get());
    text->setContents(L"x");
    text->setUseBackgroundColor(true);
    EXPECT_TRUE(text->backgroundFillOn());
    text->setUseBackgroundColor(false);
    EXPECT_TRUE(text->backgroundFillOn()) << "filled with a colour of its own then";
    text->setBackgroundFillColor(OdCmColor::fromRgb(1, 2, 3));
    text->setBackgroundScaleFactor(1.25);
    text->setLineSpacingFactor(2);
    const auto space = database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite);
    const OdDbHandle handle = space->appendOdDbEntity(text.get()).handle();
    const auto again = reread(database);
    const auto read = again->getObjectId(handle).openAs<OdDbMText>();
    EXPECT_TRUE(read->backgroundFillOn());
    EXPECT_FALSE(read->useBackgroundColorOn());
    EXPECT_EQ(read->backgroundFillColor(), OdCmColor::fromRgb(1, 2, 3));
    EXPECT_EQ(read->backgroundScaleFactor(), 1.25);
    EXPECT_EQ(read->lineSpacingFactor(), 2);
}

// From 2018 on the place stands a second time, with the columns, and readers go by that.
TEST(MultiLineTextFiles, ColumnsMoveAlong) {
    const std::string columns =
        "101|Embedded "
        "Object|70|1|10|1|20|0|30|0|11|1|21|2|31|0|40|20|41|100|42|62|43|100|71|2|72|2|44|20|45|1|73|0|74|0|46|8|46|9";
    const auto database = drawing("AC1032", record("1|x|73|1|44|1|" + columns));
    opened<OdDbMText>(database, 0xA, OdDb::forWrite)
        ->transformBy(OdGeMatrix3d::translation(OdGeVector3d(10, 0, 0)) *
                      OdGeMatrix3d::rotation(drawingdb::kPi / 2, OdGeVector3d::kZAxis) * OdGeMatrix3d::scaling(2));
    const auto groups = savedGroups(database, "A");
    const auto embedded = std::find(groups.begin(), groups.end(), "101|Embedded Object");
    ASSERT_NE(embedded, groups.end());
    std::vector<double> values;
    for (const char* code : {"11|", "21|", "40|", "41|", "42|", "43|", "44|", "45|", "46|", "20|"}) {
        const auto found =
            std::find_if(embedded, groups.end(), [&](const std::string& g) { return g.starts_with(code); });
        ASSERT_NE(found, groups.end()) << code;
        values.push_back(std::stod(found->substr(found->find('|') + 1)));
    }
    const std::vector<double> expected = {10 - 4, 2, 40, 200, 124, 200, 40, 2, 16, 1};
    for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(values[i], expected[i], 1e-9) << i;
    EXPECT_NE(std::find(embedded, groups.end(), "46|18.0"), groups.end());
}

}  // namespace
