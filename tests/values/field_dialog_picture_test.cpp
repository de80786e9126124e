// The field manager's dialog as a window, of which docs/take_pictures takes the picture.
#include <gtest/gtest.h>

#include "base/files.h"
#include "base/modules.h"
#include "tests/dialogs/script_lines.h"
#include "torvelhost/modules/field_manager/field_dialog.h"

TEST(FieldDialogWindow, CanBePictured) {
    ScriptLines script;
    ASSERT_TRUE(dialogs::useWindows(&script));
    {
        const OdDbDatabasePtr database = OdDbDatabase::createNew();
        database->setHeaderText("$TITLE", 1, L"Plan");
        const dialogs::ResourceScope resources(base::processImage());
        fieldmanager::FieldDialog dialog({}, *database);
        script.lines = {"Name = Title", "Format = %tc1", "picture shot.bmp", "press Cancel"};
        EXPECT_EQ(dialog.runModal(), dialogs::kCancelButton);
    }
    dialogs::useStandard();
    EXPECT_TRUE(base::readFile(L"shot.bmp").view().starts_with("BM"));
}
