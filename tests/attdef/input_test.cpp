// The dialog under real mouse and keys.
#include "base/text.h"
#include "drawingdb/database.h"
#include "tests/dialogs/real_input.h"
#include "torvelcmd2/attributes/att_def_dialog.h"
#include "torvelcmd2/resources/resource.h"

using namespace torvel;

namespace {

// It is ended by the button for a multi-line text, and shown again.
TEST(AttDefWindow, MouseKeysAndMnemonics) {
    const OwnDesktop desktop;
    const dialogs::ResourceScope resources(base::processImage());
    const OdDbDatabasePtr database = OdDbDatabase::createNew();
    CAttDefDlg dialog(*database);
    dialog.select(IDC_ATTDEF_JUSTIFICATION, 0);  // where none is, toolkits do not begin at the same row
    RealInput input;
    bool wasMultiLine = true;
    int focusedAfterRefusal = 0;
    input.type("DOOR");
    input.press(Key::kTab);
    input.type("WHICH ONE");
    input.pressWith(Held::kAlt, 'L');  // the default, a field of rich text
    input.type("D1");
    input.pressWith(Held::kAlt, 'E');  // the height, past the button that picks it
    input.type("X");
    input.click(dialog, IDC_ATTDEF_MULTIPLE_LINES);  // refused: the click is lost
    input.then([&] {
        wasMultiLine = dialog.isChecked(IDC_ATTDEF_MULTIPLE_LINES);
        focusedAfterRefusal = dialog.focused();
    });
    input.type("2");  // over the whole field
    input.press(Key::kHelp);
    input.click(dialog, IDC_ATTDEF_VERIFY);
    input.click(dialog, IDC_ATTDEF_ON_SCREEN);
    input.pressWith(Held::kAlt, 'X');
    input.pressWith(Held::kControl, 'A');
    input.type("12");
    input.click(dialog, IDC_ATTDEF_JUSTIFICATION);
    input.press(Key::kDown);
    input.press(Key::kDown);
    input.press(Key::kEnter);
    input.click(dialog, IDC_ATTDEF_MULTIPLE_LINES);
    input.click(dialog, IDC_ATTDEF_EDITOR);
    int code = 0;
    input.during([&] { code = dialog.runModal(); });
    EXPECT_EQ(code, CAttDefDlg::kEditDefault);
    EXPECT_FALSE(wasMultiLine);
    EXPECT_EQ(focusedAfterRefusal, IDC_ATTDEF_HEIGHT);

    RealInput again;
    again.click(dialog, IDC_ATTDEF_MULTIPLE_LINES);  // back to one line
    again.press(Key::kEnter);
    again.during([&] { code = dialog.runModal(); });
    EXPECT_EQ(code, dialogs::kOkButton);
    const DefinitionValues values = dialog.values();
    EXPECT_EQ(base::toUtf8(values.tag + L"|" + values.prompt + L"|" + values.defaultText), "door|which one|d1");
    EXPECT_EQ(values.height, 2);
    EXPECT_EQ(values.insertionPoint.x, 12);
    EXPECT_FALSE(values.onScreen);
    EXPECT_EQ(values.modes, unsigned{kVerifyMode | kLockPositionMode});
    EXPECT_EQ(values.justification, unsigned{IDS_JUSTIFY_FIT});
}

}  // namespace
