// The colour chooser: as a dialog (a form, and on Windows a window too), and as a line.
#include "torvelhost/program/color_dialog.h"

#include <gmock/gmock.h>

#include "base/modules.h"
#include "tests/dialogs/each_maker.h"

using testing::HasSubstr;

namespace {

using ColorChooser = EachMaker;
INSTANTIATE_TEST_SUITE_P(Makers, ColorChooser, EachMaker::all(), EachMaker::name);

TEST_P(ColorChooser, ListAndField) {
    const dialogs::ResourceScope resources(base::processImage());
    const struct {
        std::deque<std::string> lines;
        int code;
        OdCmColor color;
    } kCases[] = {
        {{"press OK"}, 1, OdCmColor::fromIndex(30)},
        {{"Color index = blue", "press OK"}, 1, OdCmColor::fromIndex(5)},
        {{"row color 252", "press OK"}, 1, OdCmColor::fromIndex(252)},
        {{"Color = 1,2,3", "key Enter"}, 1, OdCmColor::fromRgb(1, 2, 3)},
        {{"Color = mauve", "key Enter", "type Color: ByBlock", "key Enter"}, 1, OdCmColor::fromIndex(0)},
        {{"Color = 7", "press Cancel"}, 2, OdCmColor::fromIndex(30)},
    };
    for (const auto& test : kCases) {
        script_.lines = test.lines;
        host::ColorDialog dialog(OdCmColor::fromIndex(30));
        EXPECT_EQ(dialog.runModal(), test.code) << test.lines.front();
        EXPECT_EQ(dialog.color(), test.color) << test.lines.front();
    }
    EXPECT_THAT(script_.printed, HasSubstr("[warning] \"mauve\" is no colour"));
}

TEST_P(ColorChooser, OneLineWhereLinesAnswer) {
    OdCmColor color = OdCmColor::fromIndex(1);
    script_.lines = {"yellow", "", "12,0,255", "mauve"};
    EXPECT_TRUE(host::chooseColor(color));
    EXPECT_EQ(color, OdCmColor::fromIndex(2));
    EXPECT_FALSE(host::chooseColor(color));
    EXPECT_EQ(color, OdCmColor::fromIndex(2));
    EXPECT_TRUE(host::chooseColor(color));
    EXPECT_EQ(color, OdCmColor::fromRgb(12, 0, 255));
    EXPECT_THROW(host::chooseColor(color), ScriptFault);
}

}  // namespace
