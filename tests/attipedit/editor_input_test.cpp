// The text editor as windows under real mouse and keys, as commands show it where no script is at work, and its
// pictures.
#include "base/files.h"
#include "drawingdb/attribute.h"
#include "drawingdb/database.h"
#include "hostapi/input.h"
#include "tests/dialogs/real_input.h"
#include "tests/dialogs/script_lines.h"
#include "tests/module/loaded_services.h"
#include "torvelcmd2/attmanager/att_ip_edit.h"
#include "torvelhost/modules/text_editor/editor_dialogs.h"
#include "torvelhost/modules/text_editor/resource.h"

using fake::host;
using texteditor::EditorDialog;

extern "C" {
void* GetMainDllInstance() { return base::processImage(); }
const wchar_t* GetMainDllNameW() { return L""; }
void new_ICmdFactory(ICmdFactory** factory) { fake::newCommandFactory(factory); }
fake::HostFunction get_host_funcptr(int id) { return fake::hostFunction(id); }
}

namespace {

class TextEditorWindow : public testing::Test {
  protected:
    void SetUp() override {
        host().database = OdDbDatabase::readFile(base::fromUtf8(TORVEL_SOURCE_DIR) + L"/tests/burst/multi_line.dxf");
    }
    void TearDown() override { host() = {}; }

    OdSmartPtr<OdDbAttribute> doubleClicked(std::uint64_t reference, std::uint64_t attribute) {
        hostapi::Pick pick;
        pick.entity = host().database->getObjectId(OdDbHandle(reference));
        pick.nested = host().database->getObjectId(OdDbHandle(attribute));
        pick.containers = {pick.entity};
        services_->currentPick = pick;
        return pick.nested.openAs<OdDbAttribute>();
    }
    static int run(RealInput& input) {
        ICmdProcess* created = nullptr;
        torvel::createCommand<torvel::ATTIPeditWCmd>(&created);
        const torvel::CountedReference<ICmdProcess> command(created);
        int status = -1;
        input.during([&] { status = command->run(); });
        return status;
    }

    LoadedServices services_{L"rich"};
};

TEST_F(TextEditorWindow, MouseKeysAndMnemonics) {
    const OwnDesktop desktop;
    const dialogs::ResourceScope resources(base::processImage());
    EditorDialog dialog(EditorDialog::Lines::kParagraphs, {{L"one\\Ptwo", {}}, 3});
    RealInput input;
    input.press(Key::kEnd, Held::kControl);
    input.press(Key::kEnter);  // a line, not the button
    input.type("NEW ");
    input.click(dialog, IDC_EDITOR_FIELD);
    input.press(Key::kEnd);  // the field manager's dialog: the last kind, a formula
    input.pressWith(Held::kAlt, 'U');
    input.type("34");
    input.press(Key::kEnter);
    input.type("X");
    input.pressWith(Held::kAlt, 'W');
    input.type("WIDE");
    input.click(dialog, dialogs::kOkButton);  // refused: the box has the focus
    input.press(Key::kEnter);
    input.type("12");  // over the whole field
    input.press(Key::kEnter);
    int code = 0;
    input.during([&] { code = dialog.runModal(); });
    EXPECT_EQ(code, dialogs::kOkButton);
    EXPECT_EQ(base::toUtf8(dialog.sheet().contents.text), "one\\Ptwo\\Pnew %<\\_FldIdx 0>%x");
    EXPECT_EQ(dialog.sheet().width, 12);
}

// The text stays as it is to the last code; the width alone changes.
TEST_F(TextEditorWindow, TheWidthArrivesInTheAttribute) {
    const OwnDesktop desktop;
    const auto attribute = doubleClicked(0x39, 0x3C);
    const OdString text = attribute->textString();
    RealInput input;
    input.pressWith(Held::kAlt, 'W');
    input.type("7");
    input.press(Key::kEnter);
    EXPECT_EQ(run(input), 0);
    EXPECT_EQ(attribute->getMTextAttribute()->width(), 7);
    EXPECT_EQ(attribute->textString(), text);
    EXPECT_FALSE(attribute->isInvisibleEntity());
}

TEST_F(TextEditorWindow, ASingleLineHasOneOrTheFullEditor) {
    const OwnDesktop desktop;
    const auto attribute = doubleClicked(0x39, 0x3D);
    ASSERT_FALSE(attribute->isMTextAttribute());
    RealInput oneLine;
    oneLine.type("BLUE");
    oneLine.press(Key::kEnter);
    EXPECT_EQ(run(oneLine), 0);
    EXPECT_EQ(attribute->textString(), L"blue");
    services_->attipe = 1;
    RealInput full;
    full.press(Key::kEnd, Held::kControl);
    full.type("X");
    full.press(Key::kEnter);
    full.type("Y");
    full.press(Key::kTab);  // past the width, which a single line has no use for
    full.press(Key::kTab);
    full.press(Key::kEnter);
    EXPECT_EQ(run(full), 0);
    EXPECT_EQ(attribute->textString(), L"bluex y");
    RealInput escape;
    escape.type("LOST");
    escape.press(Key::kEscape);
    EXPECT_EQ(run(escape), 0);
    EXPECT_EQ(attribute->textString(), L"bluex y");
}

// For docs/take_pictures.
class TextEditorPicture : public testing::TestWithParam<EditorDialog::Lines> {};
INSTANTIATE_TEST_SUITE_P(Lines, TextEditorPicture,
                         testing::Values(EditorDialog::Lines::kParagraphs, EditorDialog::Lines::kOne),
                         [](const auto& lines) {
                             return lines.param == EditorDialog::Lines::kParagraphs ? "Many" : "One";
                         });

TEST_P(TextEditorPicture, CanBePictured) {
    const LoadedServices services(L"rich");
    ScriptLines script;
    ASSERT_TRUE(dialogs::useWindows(&script));
    {
        const dialogs::ResourceScope resources(base::processImage());
        const bool isMany = GetParam() == EditorDialog::Lines::kParagraphs;
        EditorDialog dialog(GetParam(), {{isMany ? L"Fire door %<\\_FldIdx 0>%\\Pself-closing" : L"No. %<\\_FldIdx 0>%",
                                          {OdDbField::createObject()}},
                                         12.5});
        script.lines = {"picture shot.bmp", "press Cancel"};
        EXPECT_EQ(dialog.runModal(), dialogs::kCancelButton);
    }
    dialogs::useStandard();
    EXPECT_TRUE(base::readFile(L"shot.bmp").view().starts_with("BM"));
}

}  // namespace
