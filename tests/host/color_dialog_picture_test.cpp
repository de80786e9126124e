// The colour chooser as a window, of which docs/take_pictures takes the picture: in a script of the host's a line
// answers, and no window is seen.
#include <gtest/gtest.h>

#include "base/files.h"
#include "base/modules.h"
#include "tests/dialogs/script_lines.h"
#include "torvelhost/program/color_dialog.h"

TEST(ColorChooserWindow, CanBePictured) {
    ScriptLines script;
    ASSERT_TRUE(dialogs::useWindows(&script));
    const dialogs::ResourceScope resources(base::processImage());
    script.lines = {"Color index = blue", "picture shot.bmp", "press Cancel"};
    EXPECT_EQ(host::ColorDialog(OdCmColor::fromIndex(30)).runModal(), 2);
    dialogs::useStandard();
    EXPECT_TRUE(base::readFile(L"shot.bmp").view().starts_with("BM"));
}
