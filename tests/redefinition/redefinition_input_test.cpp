// The redefinition dialogs under real mouse and keys, and the picture of the plain one, which no script of the
// program's can show.
#include "base/files.h"
#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/database.h"
#include "tests/dialogs/real_input.h"
#include "tests/dialogs/script_lines.h"
#include "torvelcmd2/extract/redefinition/redefinition_dialog.h"
#include "torvelcmd2/extract/redefinition/redefinition_dialog_ex.h"

namespace {

class RedefinitionWindow : public testing::Test {
  protected:
    void SetUp() override {
        definition_->setDatabaseDefaults(database_.get());
        definition_->setTag(L"COLOR");
        definition_->setPrompt(L"Which colour?");
        definition_->setTextString(L"white");
        database_->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(definition_.get());
    }
    std::string values() const {
        return base::toUtf8(definition_->tag() + L"|" + definition_->prompt() + L"|" + definition_->textString());
    }

    OdDbDatabasePtr database_ = OdDbDatabase::createNew();
    OdSmartPtr<OdDbAttributeDefinition> definition_ = OdDbAttributeDefinition::createObject();
};

TEST_F(RedefinitionWindow, Plain) {
    const OwnDesktop desktop;
    const dialogs::ResourceScope resources(base::processImage());
    torvel::CAttReDefDlg dialog(definition_);
    RealInput input;
    input.pressWith(Held::kControl, 'A');
    input.type("HUE");
    input.pressWith(Held::kAlt, 'M');
    input.type("TWO WORDS");
    input.click(dialog, IDC_ATTREDEF_DEFAULT);
    input.press(Key::kEnd);
    input.type("ISH");
    input.click(dialog, IDC_ATTREDEF_FIELD);  // there is no host that the field manager could ask
    input.click(dialog, IDC_ATTREDEF_EDITOR);
    input.press(Key::kEnd, Held::kControl);
    input.type("X");
    input.pressWith(Held::kAlt, 'W');  // where Enter is the editor's OK
    input.press(Key::kEnter);
    input.pressWith(Held::kAlt, 'L');
    input.press(Key::kEnter);
    int code = 0;
    input.during([&] { code = dialog.runModal(); });
    EXPECT_EQ(code, dialogs::kOkButton);
    EXPECT_EQ(values(), "HUE|two words|whiteishx");
}

TEST_F(RedefinitionWindow, ATagThatIsRefusedKeepsTheFocusButForCancel) {
    const OwnDesktop desktop;
    const dialogs::ResourceScope resources(base::processImage());
    torvel::CAttReDefDlgEx dialog(definition_);
    std::vector<int> focused;
    const auto look = [&] { focused.push_back(dialog.focused()); };
    RealInput input;
    input.type("A B");
    input.press(Key::kTab);
    input.then(look);
    input.click(dialog, IDC_ATTREDEFEX_DEFAULT);
    input.then(look);
    input.click(dialog, dialogs::kOkButton);
    input.then(look);
    input.press(Key::kEnter);
    input.then(look);
    input.type("AB");  // over the whole tag
    input.press(Key::kTab);
    input.then(look);
    input.type("ONE");
    input.pressWith(Held::kAlt, 'L');
    input.then(look);
    input.press(Key::kEnd);
    input.type("ISH");
    input.click(dialog, dialogs::kOkButton);
    int code = 0;
    input.during([&] { code = dialog.runModal(); });
    EXPECT_EQ(code, dialogs::kOkButton);
    constexpr int kTag = IDC_ATTREDEFEX_TAG;
    EXPECT_EQ(focused, (std::vector<int>{kTag, kTag, kTag, kTag, IDC_ATTREDEFEX_PROMPT, IDC_ATTREDEFEX_DEFAULT}));
    EXPECT_EQ(values(), "AB|one|whiteish");

    torvel::CAttReDefDlgEx again(definition_);
    RealInput cancel;
    cancel.press(Key::kDelete);
    cancel.click(again, dialogs::kCancelButton);
    cancel.during([&] { code = again.runModal(); });
    EXPECT_EQ(code, dialogs::kCancelButton);
    EXPECT_EQ(values(), "AB|one|whiteish");
}

// For docs/take_pictures.
TEST_F(RedefinitionWindow, PlainCanBePictured) {
    ScriptLines script;
    ASSERT_TRUE(dialogs::useWindows(&script));
    {
        const dialogs::ResourceScope resources(base::processImage());
        torvel::CAttReDefDlg dialog(definition_);
        script.lines = {"picture shot.bmp", "press Cancel"};
        EXPECT_EQ(dialog.runModal(), dialogs::kCancelButton);
    }
    dialogs::useStandard();
    EXPECT_TRUE(base::readFile(L"shot.bmp").view().starts_with("BM"));
}

}  // namespace
