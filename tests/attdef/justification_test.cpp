// What a change of the justification leaves where it is.
#include "torvelcmd2/attributes/justification.h"

#include <gtest/gtest.h>

#include "drawingdb/database.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

std::vector<OdGePoint3d> cornersOf(const OdDbMText& text) {
    std::vector<OdGePoint3d> corners;
    for (const OdGePoint2d& corner : text.layout().boundingPoints)
        corners.push_back(text.layoutToWorld() * OdGePoint3d(corner.x, corner.y, 0));
    return corners;
}

TEST(Justification, LinesStayWhereTheyAre) {
    const auto database = OdDbDatabase::createNew();
    for (unsigned from = 1; from <= 9; ++from)
        for (const unsigned to : {IDS_JUSTIFY_TOP_LEFT, IDS_JUSTIFY_MIDDLE_RIGHT, IDS_JUSTIFY_BOTTOM_CENTER}) {
            const auto text = OdDbMText::createObject();
            text->setDatabaseDefaults(database.get());
            text->setContents(L"a longer line\\Pshort");
            text->setNormal({0.3, -0.5, 0.8});
            text->setLocation({5, 6, 7});
            text->setRotation(0.7);
            text->setWidth(100);
            text->setAttachment(static_cast<int>(from));
            const std::vector<OdGePoint3d> before = cornersOf(*text);
            justify(*text, *findJustification(to));
            EXPECT_EQ(text->attachment(), findJustification(to)->attachment);
            const std::vector<OdGePoint3d> after = cornersOf(*text);
            for (std::size_t i = 0; i < before.size(); ++i)
                EXPECT_NEAR(before[i].distanceTo(after[i]), 0, 1e-9) << from << " to " << to;
        }
}

TEST(Justification, ATextHangsOnItsPositionOnlyWhenItWasLeft) {
    const auto database = OdDbDatabase::createNew();
    const auto text = OdDbText::createObject();
    text->setDatabaseDefaults(database.get());
    text->setTextString(L"text");
    text->setPosition({1, 2, 0});
    justify(*text, *findJustification(IDS_JUSTIFY_TOP_RIGHT));
    EXPECT_EQ(text->alignmentPoint(), OdGePoint3d(1, 2, 0));
    const OdGePoint3d start = text->position();
    EXPECT_LT(start.x, 1);
    justify(*text, *findJustification(IDS_JUSTIFY_CENTER));
    EXPECT_EQ(text->alignmentPoint(), OdGePoint3d(1, 2, 0));
    const OdGePoint3d middle = text->position();
    justify(*text, *findJustification(IDS_JUSTIFY_LEFT));
    EXPECT_EQ(text->position(), middle);
}

}  // namespace
}  // namespace torvel
