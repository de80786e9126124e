// Where texts are once they are justified in the Enhanced Attribute Editor, with each maker, and which attribute it
// opens with.
#include "torvelcmd2/attmanager/eatt_edit.h"

#include <algorithm>

#include "base/text.h"
#include "tests/dialogs/each_maker.h"
#include "tests/eattedit/sign.h"
#include "torvelcmd2/attmanager/eatt_edit_dialog.h"

namespace {

class Editor : public EachMaker {
  protected:
    int run(std::size_t row, std::deque<std::string> lines) {
        const dialogs::ResourceScope resources(base::processImage());
        torvel::CEAttEditDlg dialog(*sign_.database);
        EXPECT_TRUE(dialog.load(sign_.id, sign_.attributes[row]));
        script_.lines = std::move(lines);
        return dialog.runModal();
    }
    OdGeExtents3d box(std::size_t row) const {
        OdGeExtents3d extents;
        EXPECT_TRUE(sign_.attribute(row)->geomExtents(extents));
        return extents;
    }

    void reread(const std::string& bytes) {
        const OdDbDatabasePtr other = OdDbDatabase::readBytes(bytes, L"sign.dxf");
        const auto find = [&](OdDbObjectId& id) { id = other->getObjectId(id.handle()); };
        find(sign_.id);
        std::ranges::for_each(sign_.attributes, find);
        sign_.database = other;
    }

    Sign sign_;
};
INSTANTIATE_TEST_SUITE_P(Makers, Editor, EachMaker::all(), EachMaker::name);

constexpr double kNear = 1e-9;

// How far a point lies in a box, from 0 at the lower left to 1.
OdGePoint2d within(const OdGePoint3d& point, const OdGeExtents3d& box) {
    const OdGePoint3d low = box.minPoint(), high = box.maxPoint();
    return {(point.x - low.x) / (high.x - low.x), (point.y - low.y) / (high.y - low.y)};
}

}  // namespace

// The point stays, and the text goes round it.
TEST_P(Editor, ASingleLineHangsOnThePointThatItHad) {
    const struct {
        const char* name;
        int horizontal, vertical;
        double across;  // of the box
    } kCases[] = {
        {"Center", OdDb::kTextCenter, OdDb::kTextBase, 0.5},
        {"Right", OdDb::kTextRight, OdDb::kTextBase, 1},
        {"Middle", OdDb::kTextMid, OdDb::kTextBase, 0.5},
        {"Top left", OdDb::kTextLeft, OdDb::kTextTop, 0},
        {"Top center", OdDb::kTextCenter, OdDb::kTextTop, 0.5},
        {"Top right", OdDb::kTextRight, OdDb::kTextTop, 1},
        {"Middle left", OdDb::kTextLeft, OdDb::kTextVertMid, 0},
        {"Middle center", OdDb::kTextCenter, OdDb::kTextVertMid, 0.5},
        {"Middle right", OdDb::kTextRight, OdDb::kTextVertMid, 1},
        {"Bottom left", OdDb::kTextLeft, OdDb::kTextBottom, 0},
        {"Bottom center", OdDb::kTextCenter, OdDb::kTextBottom, 0.5},
        {"Bottom right", OdDb::kTextRight, OdDb::kTextBottom, 1},
    };
    double lastTop = 0;
    for (const auto& test : kCases) {
        const std::string choose = std::string("Justification = ") + test.name;
        EXPECT_EQ(run(0, {"tab Text Options", choose, "Justification = Align", "Justification = Fit", "press OK"}),
                  dialogs::kOkButton);
        const auto text = sign_.attribute(0);
        EXPECT_EQ(text->horizontalMode(), test.horizontal) << test.name;
        EXPECT_EQ(text->verticalMode(), test.vertical) << test.name;
        EXPECT_TRUE(text->alignmentPoint().isEqualTo({3, 4, 0})) << test.name;
        EXPECT_NEAR(within({3, 4, 0}, box(0)).x, test.across, kNear) << test.name;
        // From the baseline row over Top and Middle to Bottom; the text climbs past the point from Top on.
        if (test.vertical != OdDb::kTextBase && test.vertical != OdDb::kTextTop)
            EXPECT_GE(box(0).maxPoint().y, lastTop);
        lastTop = box(0).maxPoint().y;
    }
    EXPECT_EQ(run(0, {"tab Text Options", "Justification = Left", "press OK"}), dialogs::kOkButton);
    EXPECT_FALSE(sign_.attribute(0)->isJustified());
}

// The text stays, and its point goes to the corner, whatever its width and wherever it is turned.
TEST_P(Editor, SeveralLinesStayWhereTheyAre) {
    static constexpr const char* kNames[] = {"Top left",    "Top center",    "Top right",
                                             "Middle left", "Middle center", "Middle right",
                                             "Bottom left", "Bottom center", "Bottom right"};
    for (const char* const rotation : {"0", "0.5"}) {
        EXPECT_EQ(run(2, {"tab Text Options", std::string("Rotation = ") + rotation, "press OK"}), dialogs::kOkButton);
        for (int attachment = 9; attachment >= 1; --attachment) {
            const OdGeExtents3d before = box(2);
            const std::string choose = std::string("Justification = ") + kNames[attachment - 1];
            EXPECT_EQ(run(2, {"tab Text Options", choose, "press OK"}), dialogs::kOkButton);
            const auto attribute = sign_.attribute(2);
            const OdSmartPtr<OdDbMText> lines = attribute->getMTextAttribute();
            EXPECT_EQ(lines->attachment(), attachment) << choose;
            EXPECT_TRUE(attribute->alignmentPoint().isEqualTo(lines->location())) << choose;
            EXPECT_LT((box(2).minPoint() - before.minPoint()).length(), kNear) << choose;
            EXPECT_LT((box(2).maxPoint() - before.maxPoint()).length(), kNear) << choose;
        }
    }
}

TEST_P(Editor, DoesNotGoOnToWhatHasNoAttributes) {
    const dialogs::ResourceScope resources(base::processImage());
    torvel::CEAttEditDlg dialog(*sign_.database);
    EXPECT_FALSE(dialog.load({}, {}));
    EXPECT_FALSE(dialog.load(sign_.attributes[0], {}));
    ASSERT_TRUE(dialog.load(sign_.id, sign_.attributes[1]));
    const auto bare = OdDbBlockReference::createObject();
    bare->setDatabaseDefaults(sign_.database.get());
    bare->setBlockTableRecord(sign_.id.openAs<OdDbBlockReference>()->blockTableRecord());
    const OdDbObjectId bareId =
        sign_.database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(bare.get());
    EXPECT_FALSE(dialog.load(bareId, {}));
    EXPECT_EQ(dialog.reference(), sign_.id);
    EXPECT_EQ(dialog.current(), sign_.attributes[1]);
    ASSERT_TRUE(dialog.load(sign_.id, bareId));
    EXPECT_EQ(dialog.current(), sign_.attributes[0]);
}

TEST_P(Editor, TheExportTellsWhatWasCurrentInTheEnd) {
    const dialogs::ResourceScope resources(base::processImage());
    OdDbObjectId reference = sign_.id, attribute = sign_.attributes[1];
    script_.lines = {"Value = other", "row LINES", "press OK"};
    EXPECT_EQ(doEAttEdit(reference, attribute), 0);
    EXPECT_EQ(reference, sign_.id);
    EXPECT_EQ(attribute, sign_.attributes[2]);
    EXPECT_EQ(sign_.attribute(1)->textString(), L"other");
    attribute = OdDbObjectId();
    script_.lines = {"Value = lost", "press Cancel"};
    EXPECT_EQ(doEAttEdit(reference, attribute), 1);
    EXPECT_EQ(sign_.attribute(0)->textString(), L"some value");
    // There is no host that could ask for one.
    reference = sign_.attributes[0];
    EXPECT_EQ(doEAttEdit(reference, attribute), 1);
    EXPECT_TRUE(reference.isNull());
    EXPECT_EQ(doEAttEdit(reference, attribute), 1);
}

// The rest of the file is missing: what is there is shown, and no way out of the dialog fails.
TEST_P(Editor, ADamagedDrawingIsShown) {
    std::string bytes = sign_.database->writeBytes();
    bytes.resize(bytes.rfind("ENDSEC"));
    reread(bytes);
    ASSERT_TRUE(sign_.database->isReadOnly());
    for (const char* const way : {"press OK", "press Cancel"}) {
        run(0, {"tip Value", "tab Text Options", "show", "press Apply", "tab Properties", "show", way});
        for (const char* const shown :
             {"opened for reading alone", "Height = \"2.5\"  (disabled)", "Layer = \"0\"  (disabled)"})
            EXPECT_NE(script_.printed.find(shown), std::string::npos) << script_.printed;
    }
}

// Other programs write them; what this one cannot write again is not offered.
TEST_P(Editor, SeveralLinesInAnOlderDrawingKeepTheirForm) {
    std::string bytes = sign_.database->writeBytes();
    bytes.replace(bytes.find("AC1032"), 6, "AC1027");
    reread(bytes);
    ASSERT_TRUE(sign_.attribute(2)->isMTextAttribute());
    EXPECT_EQ(run(2, {"show", "tab Text Options", "show", "tip Boundary width", "Height = 7", "press OK"}),
              dialogs::kOkButton);
    for (const char* const shown : {"2018 has.)  (disabled)", "Justification = \"Bottom left\"  (disabled)",
                                    "Boundary width = \"0.0\"  (disabled)", "version 2018 has"})
        EXPECT_NE(script_.printed.find(shown), std::string::npos) << script_.printed;
    EXPECT_EQ(sign_.attribute(2)->getMTextAttribute()->textHeight(), 7);
}

TEST_P(Editor, ALinetypeInOtherCaseIsTheSame) {
    sign_.attributes[0].openAs<OdDbAttribute>(OdDb::forWrite)->setLinetype(L"BYBLOCK");
    EXPECT_EQ(run(0, {"tab Properties", "show", "Linetype = ByBlock", "press OK"}), dialogs::kOkButton);
    EXPECT_NE(script_.printed.find("Linetype = \"ByBlock\""), std::string::npos) << script_.printed;
    EXPECT_EQ(sign_.attribute(0)->linetype(), L"BYBLOCK");
}

// Whoever goes back from outside must not stop at a mark of the dialog's.
TEST_P(Editor, LeavesNoMarkBehind) {
    sign_.database->startUndoRecord();
    const std::uint64_t outside = sign_.database->setUndoMark();
    sign_.database->startUndoRecord();
    EXPECT_EQ(run(0, {"Value = kept", "press Apply", "Value = too", "press OK"}), dialogs::kOkButton);
    EXPECT_EQ(sign_.attribute(0)->textString(), L"too");
    ASSERT_TRUE(sign_.database->hasUndoMark(outside));
    sign_.database->undoBack();
    EXPECT_EQ(sign_.attribute(0)->textString(), L"some value");
    EXPECT_FALSE(sign_.database->hasUndoMark(outside));
}
