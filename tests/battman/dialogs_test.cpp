// The dialogs of the manager by themselves: what a preview leaves, what a cell shows that cannot be read, and the way
// of mouse and keys to the definitions.
#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/database.h"
#include "tests/dialogs/each_maker.h"
#include "torvelcmd2/attmanager/batt_man_dialog.h"
#include "torvelcmd2/attmanager/definition_columns.h"
#include "torvelcmd2/attmanager/edit_definition_dialog.h"

#if defined(TORVEL_REAL_INPUT)
#include "tests/dialogs/real_input.h"
#endif

namespace {

class ManagerDialogs : public testing::Test {
  protected:
    OdDbObjectId object(std::uint64_t handle) const { return database_->getObjectId(handle); }
    std::vector<OdString> tagsOf(std::uint64_t reference) const {
        std::vector<OdString> tags;
        for (OdDbObjectId id : object(reference).openAs<OdDbBlockReference>()->attributes())
            tags.push_back(id.openAs<OdDbAttribute>()->tag());
        return tags;
    }
    std::vector<OdString> definedTags() const {
        std::vector<OdString> tags;
        for (OdDbObjectId id : door_.openAs<OdDbBlockTableRecord>()->entities())
            if (const auto definition = id.openIf<OdDbAttributeDefinition>()) tags.push_back(definition->tag());
        return tags;
    }

    OdDbDatabasePtr database_ = OdDbDatabase::readFile(base::fromUtf8(TORVEL_SOURCE_DIR) + L"/tests/battman/doors.dxf");
    OdDbObjectId door_ = database_->findBlock(L"DOOR");
    const std::string bytes_ = database_->writeBytes();
    dialogs::ResourceScope resources_{base::processImage()};
};

// Each preview is taken back before the next, so that the references always show all of what was changed, and no more.
TEST_F(ManagerDialogs, APreviewIsAStepOfItsOwn) {
    torvel::EditedBlock block(database_);
    block.open(door_);
    const auto levelBefore = block.undo().level();
    {
        torvel::CBMEADlg editor(block, object(0x44));
        const auto write = [&](const wchar_t* tag) {
            editor.beforeWrite();
            object(0x44).openAs<OdDbAttributeDefinition>(OdDb::forWrite)->setTag(tag);
            editor.attributeChanged();
        };
        write(L"TAG");
        EXPECT_EQ(tagsOf(0x90), (std::vector<OdString>{L"TAG", L"TAG", L"TAG", L"NOTE", L"color", L"COST"}));
        write(L"SIZE");
        const auto size = object(0x90).openAs<OdDbBlockReference>()->attributes();
        EXPECT_EQ((*size.begin()).openAs<OdDbAttribute>()->textString(), L"big")
            << "the value that the preview before had no place for";
        editor.beforeWrite();
        EXPECT_EQ(tagsOf(0x90), (std::vector<OdString>{L"COLOR", L"SIZE"}));
    }
    while (block.undo().level() > levelBefore) block.undo().undo();
    EXPECT_EQ(database_->writeBytes(), bytes_);
}

TEST_F(ManagerDialogs, ADefinitionThatCannotBeReadShowsSo) {
    std::vector<OdString> texts;
    for (const torvel::DefinitionColumn& column : torvel::definitionColumns())
        texts.push_back(torvel::cellText(column, nullptr));
    EXPECT_EQ(texts,
              (std::vector<OdString>{L"tag:?", L"prompt:?", L"defVal:?", L"modes:?", L"style:?", L"justification:?",
                                     L"height:?", L"rotation:?", L"widthfactor:?", L"oblique:?", L"bwidth:?",
                                     L"layer:?", L"ltype:?", L"color:?", L"lweight:?", L"pltstyle:?"}));
}

// An anonymous block is not offered, but a reference of it can be picked.
TEST_F(ManagerDialogs, ABlockThatIsNotOfferedCanBeChosen) {
    const OdDbObjectId anonymous = OdDbBlockTableRecord::addNew(*database_, L"*U7");
    torvel::CBAttManDlg dialog(database_, {{door_, L"DOOR"}});
    dialog.chooseBlock(anonymous);
    EXPECT_EQ(dialog.text(IDC_BATTMAN_BLOCK), L"*U7");
    EXPECT_EQ(dialog.rowCount(IDC_BATTMAN_LIST), 0);
    EXPECT_FALSE(dialog.isEnabled(IDC_BATTMAN_EDIT));
    dialog.chooseBlock(door_);
    EXPECT_EQ(dialog.text(IDC_BATTMAN_BLOCK), L"DOOR");
    EXPECT_EQ(dialog.rowCount(IDC_BATTMAN_LIST), 7);
    EXPECT_EQ(dialog.choiceCount(IDC_BATTMAN_BLOCK), 2);
}

#if defined(TORVEL_REAL_INPUT)
TEST_F(ManagerDialogs, AreWorkedByMouseAndKeys) {
    const OwnDesktop desktop;
    torvel::CBAttManDlg dialog(database_, {{door_, L"DOOR"}, {database_->findBlock(L"BADGE"), L"BADGE"}});
    // There are no settings here that would have columns.
    dialog.setColumns(IDC_BATTMAN_LIST, {{L"Tag", 90}});
    std::vector<int> rows;
    const auto look = [&] { rows.push_back(hand::selectedRow(dialog, IDC_BATTMAN_LIST)); };
    RealInput input;
    input.press(Key::kDown);
    input.then(look);
    input.pressWith(Held::kAlt, 'D');
    input.then(look);
    input.click(dialog, IDC_BATTMAN_MOVE_DOWN);
    input.then(look);
    input.pressWith(Held::kAlt, 'U');
    input.then(look);
    input.pressWith(Held::kAlt, 'R');
    input.then(look);
    input.clickItem(dialog, IDC_BATTMAN_LIST, 4);
    input.then(look);
    input.clickItem(dialog, IDC_BATTMAN_LIST, 0, 2);
    int code = 0;
    input.during([&] { code = dialog.runModal(); });
    EXPECT_EQ(code, torvel::CBAttManDlg::kEdit);
    EXPECT_EQ(rows, (std::vector<int>{1, 2, 3, 2, 2, 4}));
    EXPECT_EQ(definedTags(), (std::vector<OdString>{L"SIZE", L"TAG", L"BRAND", L"NOTE", L"color", L"COST"}));

    torvel::EditedBlock edited(database_);
    edited.open(door_);
    torvel::CBMEADlg editor(edited, object(0x44));
    RealInput edit;
    edit.press(Key::kTab);
    for (int box = 0; box < 4; ++box) edit.press(Key::kTab);
    edit.press(Key::kDelete);
    edit.press(Key::kTab);  // refused: the box wants an answer
    edit.press(Key::kEnter);
    edit.type("WIDE");
    edit.press(Key::kTab);
    edit.then([&] { EXPECT_EQ(tagsOf(0x98).front(), L"wide"); });
    edit.pressWith(Held::kAlt, 'A');
    edit.then([&] { EXPECT_TRUE(tagsOf(0x98).empty()) << "no preview is wanted any more"; });
    edit.pressWith(Held::kAlt, 'P');
    edit.press(Key::kEnter);
    bool accepted = false;
    edit.during([&] { accepted = editor.edit(); });
    EXPECT_TRUE(accepted);
    const auto definition = object(0x44).openAs<OdDbAttributeDefinition>();
    EXPECT_EQ(definition->tag(), L"wide");
    EXPECT_TRUE(definition->isPreset());

    RealInput cancel;
    cancel.press(Key::kEscape);
    cancel.during([&] { code = dialog.runModal(); });
    EXPECT_EQ(code, dialogs::kCancelButton);
}
#endif

}  // namespace
