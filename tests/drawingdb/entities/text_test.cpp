// Single-line text: alignment, transforms, files.

#include "drawingdb/text.h"

#include "drawingdb/block.h"
#include "drawingdb/text_metrics.h"
#include "entity_fixture.h"

namespace {

class Texts : public RandomTransforms {
  protected:
    OdSmartPtr<OdDbText> text(int horizontal, int vertical) {
        auto made = OdDbText::createObject();
        made->setTextString(L"Agx %%c12");
        if (chance()) made->setNormal(direction());
        made->setPosition(point());
        made->setHeight(number(0.5, 5));
        made->setWidthFactor(number(0.5, 2));
        made->setRotation(number(0, 6.28));
        made->mirrorInX(number(0, 1) < 0.3);
        made->mirrorInY(number(0, 1) < 0.3);
        made->setHorizontalMode(horizontal);
        made->setVerticalMode(vertical);
        // In the plane of the text.
        if (made->isJustified())
            made->setAlignmentPoint(made->position() + OdGeMatrix3d::planeToWorld(made->normal()) *
                                                           OdGeVector3d(number(1, 9), number(1, 9), 0));
        return made;
    }
};

// The strongest thing to say of a transform: every stroke comes to lie where the matrix puts it. Text that hangs takes
// what keeps angles; text by its position takes everything.
TEST_F(Texts, EveryStrokeIsWhereTheMatrixPutsIt) {
    for (int round = 0; round < 10; ++round)
        for (int horizontal = 0; horizontal <= OdDb::kTextFit; ++horizontal)
            for (int vertical = 0; vertical <= OdDb::kTextTop; ++vertical) {
                const auto made = text(horizontal, vertical);
                if (!made->isJustified()) made->setOblique(number(-0.5, 0.5));
                const OdGeMatrix3d matrix = made->isJustified() ? similarity() : affine();
                const Strokes expected = transformed(strokesOf(*made), matrix);
                const OdGePoint3d alignment = matrix * made->alignmentPoint();
                ASSERT_EQ(made->transformBy(matrix), OdResult::ok);
                const std::string what = "modes " + std::to_string(horizontal) + " " + std::to_string(vertical);
                expectSameDrawing(strokesOf(*made), expected, what);
                if (made->isJustified()) {
                    if (horizontal != OdDb::kTextAlign && horizontal != OdDb::kTextFit)
                        expectNear(made->alignmentPoint(), alignment, 1e-8, what.c_str());
                    // The place is the one that the alignment gives, so nothing moves when the text is set again.
                    made->adjustAlignment();
                    expectSameDrawing(strokesOf(*made), expected, what + ", hung anew");
                }
            }
}

TEST_F(Texts, MirroringKeepsTheReadersSide) {
    const auto made = text(OdDb::kTextLeft, OdDb::kTextBase);
    made->setNormal(OdGeVector3d::kZAxis);
    made->mirrorInX(false);
    made->setRotation(0);
    ASSERT_EQ(made->transformBy(OdGeMatrix3d::mirroring(OdGePlane({}, OdGeVector3d::kXAxis))), OdResult::ok);
    EXPECT_EQ(made->normal(), OdGeVector3d::kZAxis);
    EXPECT_TRUE(made->isMirroredInX());
    EXPECT_EQ(made->rotation(), 0);
    ASSERT_EQ(made->transformBy(OdGeMatrix3d::mirroring(OdGePlane({}, OdGeVector3d::kZAxis))), OdResult::ok);
    EXPECT_EQ(made->normal(), OdGeVector3d::kZAxis);
    EXPECT_TRUE(made->isMirroredInX()) << "mirrored above and below: seen from above, nothing has changed";
    EXPECT_EQ(made->transformBy(OdGeMatrix3d::scaling(OdGeScale3d(1, 0, 1))), OdResult::transformRefused);
}

// What hangs on the alignment point stays there whatever the text becomes.
TEST_F(Texts, AlignmentHoldsWhenTheTextChanges) {
    for (int horizontal = 0; horizontal <= OdDb::kTextFit; ++horizontal)
        for (int vertical = 0; vertical <= OdDb::kTextTop; ++vertical) {
            SCOPED_TRACE("modes " + std::to_string(horizontal) + " " + std::to_string(vertical));
            const auto made = OdDbText::createObject();
            made->setHeight(3);
            made->setPosition(OdGePoint3d(1, 2, 5));
            made->setHorizontalMode(horizontal);
            made->setVerticalMode(vertical);
            if (made->isJustified()) made->setAlignmentPoint(OdGePoint3d(21, 2, 5));
            for (const wchar_t* value : {L"I", L"a longer text"}) {
                made->setTextString(value);
                const drawingdb::TextExtents size = drawingdb::textExtents(value, made->height(), made->widthFactor());
                const OdGePoint3d start = made->position(), hook = made->alignmentPoint();
                if (horizontal == OdDb::kTextAlign || horizontal == OdDb::kTextFit ||
                    (horizontal == 0 && vertical == 0)) {
                    EXPECT_EQ(start, OdGePoint3d(1, 2, 5));
                    if (horizontal != 0) {
                        EXPECT_NEAR(size.width, 20, 1e-9);
                        EXPECT_EQ(horizontal == OdDb::kTextFit ? made->height() / 3 : made->widthFactor(), 1);
                    }
                    continue;
                }
                const double share = horizontal == OdDb::kTextLeft ? 0 : horizontal == OdDb::kTextRight ? 1 : 0.5;
                EXPECT_NEAR(start.x + share * size.width, hook.x, 1e-12);
                EXPECT_EQ(start.z, 5);
                if (horizontal == OdDb::kTextMid) continue;
                const double raised[] = {0, -1, 1.5, 3};  // by how much the hook is above the baseline
                EXPECT_NEAR(start.y + raised[vertical], hook.y, 1e-12);
            }
        }
}

constexpr const char* kCentred =
    "0|TEXT|5|A|100|AcDbEntity|8|0|100|AcDbText|10|7.50|20|1.0|30|0|40|2|1|old|72|1|11|10|21|1|31|0|100|AcDbText|73|0";

// Another program's font is wider or narrower than ours: its place for the text holds until the text changes.
TEST(TextFiles, APlaceIsLeftAloneUntilTheTextChanges) {
    const auto database = drawing("AC1032", kCentred);
    const std::string before = database->writeBytes();
    {
        const auto text = opened<OdDbText>(database, 0xA, OdDb::forWrite);
        EXPECT_EQ(text->position(), OdGePoint3d(7.5, 1, 0));
        text->setThickness(0);
        EXPECT_EQ(text->position(), OdGePoint3d(7.5, 1, 0));
    }
    EXPECT_EQ(database->writeBytes(), before);
    opened<OdDbText>(database, 0xA, OdDb::forWrite)->setTextString(L"new");
    const double width = drawingdb::textExtents(L"new", 2).width;
    const auto again = reread(database);
    const auto text = opened<OdDbText>(again, 0xA);
    EXPECT_NEAR(text->position().x, 10 - width / 2, 1e-12);
    EXPECT_EQ(text->alignmentPoint(), OdGePoint3d(10, 1, 0));
    std::string groups;
    for (const std::string& group : savedGroups(database, "A")) groups += group + "\n";
    EXPECT_NE(groups.find("\n20|1.0\n30|0\n40|2\n1|new\n72|1\n11|10\n21|1\n31|0\n"), std::string::npos)
        << "only what changed is respelled:\n"
        << groups;
}

// The alignment point is written where it means something, at the origin too.
TEST(TextFiles, AlignmentPointsAreWrittenForJustifiedText) {
    const auto database = OdDbDatabase::createNew();
    const auto made = [&](bool justified) {
        const auto text = OdDbText::createObject();
        text->setDatabaseDefaults(database.get());
        text->setTextString(L"text");
        text->setPosition(OdGePoint3d(3, 3, 0));
        if (justified) text->setHorizontalMode(OdDb::kTextCenter);
        text->setAlignmentPoint(OdGePoint3d());
        const auto space = database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite);
        return space->appendOdDbEntity(text.get()).handle().ascii();
    };
    const std::string hanging = made(true), standing = made(false);
    const auto count = [&](const std::string& handle, const std::string& start) {
        const auto groups = savedGroups(database, handle);
        return std::count_if(groups.begin(), groups.end(), [&](const std::string& g) { return g.starts_with(start); });
    };
    EXPECT_EQ(count(hanging, "11|"), 1);
    EXPECT_EQ(count(hanging, "31|"), 1);
    EXPECT_EQ(count(standing, "11|"), 0);
    EXPECT_EQ(count(standing, "100|AcDbText"), 2);
}

TEST(TextFiles, PlanesAndStyles) {
    const auto database = OdDbDatabase::createNew();
    const auto text = OdDbText::createObject();
    text->setTextString(L"x");
    text->setPosition(OdGePoint3d(1, 2, 3));
    text->setNormal(OdGeVector3d(0, -1, 0));
    expectNear(text->position(), OdGePoint3d(1, 2, 3), 1e-12, "a new normal keeps the place");
    EXPECT_TRUE(text->textStyle().isNull());
    text->setTextStyle(database->findTextStyle(L"standard"));
    EXPECT_EQ(text->textStyleName(), L"Standard");
    const auto space = database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite);
    const OdDbHandle handle = space->appendOdDbEntity(text.get()).handle();
    const auto saved = reread(database);
    const auto again = saved->getObjectId(handle).openAs<OdDbText>();
    expectNear(again->position(), OdGePoint3d(1, 2, 3), 1e-12, "position");
    EXPECT_EQ(again->normal(), OdGeVector3d(0, -1, 0));
    EXPECT_EQ(again->textStyle(), saved->findTextStyle(L"Standard"));
    EXPECT_THROW(text->setHorizontalMode(6), OdError);
    EXPECT_THROW(text->setVerticalMode(-1), OdError);
}

}  // namespace
