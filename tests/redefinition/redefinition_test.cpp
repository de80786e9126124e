// The plain redefinition dialog, which no command shows, with each maker; and what the one with fields does for hosts.
#include "base/text.h"
#include "dialogs/boxes.h"
#include "drawingdb/block.h"
#include "drawingdb/database.h"
#include "tests/dialogs/each_maker.h"
#include "torvelcmd2/attributes/values/text_transfer.h"
#include "torvelcmd2/extract/redefinition/redefinition_dialog.h"
#include "torvelcmd2/extract/redefinition/redefinition_dialog_ex.h"

namespace {

class Redefinition : public EachMaker {
  protected:
    void SetUp() override {
        EachMaker::SetUp();
        definition_->setDatabaseDefaults(database_.get());
        definition_->setTag(L"color");
        definition_->setPrompt(L"Which colour?");
        definition_->setTextString(L"white");
        database_->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(definition_.get());
    }
    int plain(std::deque<std::string> lines) {
        const dialogs::ResourceScope resources(base::processImage());
        torvel::CAttReDefDlg dialog(definition_);
        script_.lines = std::move(lines);
        return dialog.runModal();
    }
    std::string values() const {
        return base::toUtf8(definition_->tag() + L"|" + definition_->prompt() + L"|" + definition_->textString());
    }

    OdDbDatabasePtr database_ = OdDbDatabase::createNew();
    OdSmartPtr<OdDbAttributeDefinition> definition_ = OdDbAttributeDefinition::createObject();
};
INSTANTIATE_TEST_SUITE_P(Makers, Redefinition, EachMaker::all(), EachMaker::name);

}  // namespace

TEST_P(Redefinition, PlainWritesWhatWasTyped) {
    EXPECT_EQ(plain({"Tag = hue", "Prompt = Two words?", "Default = pale red", "press OK"}), dialogs::kOkButton);
    EXPECT_EQ(values(), "HUE|Two words?|pale red");
    EXPECT_EQ(plain({"Prompt =", "press Cancel"}), dialogs::kCancelButton);
    EXPECT_EQ(values(), "HUE|Two words?|pale red");
}

// A tab is no blank here, though it is one for the other dialog.
TEST_P(Redefinition, PlainRefusesEmptyTagsAndBlanks) {
    EXPECT_EQ(plain({"Tag =", "press OK", "Tag = A B", "press OK", "Tag = \"A\tB\"", "press OK"}), dialogs::kOkButton);
    EXPECT_EQ(values(), "A\tB|Which colour?|white");
}

TEST_P(Redefinition, PlainKeepsFieldsOfADefaultThatWasNotChanged) {
    const OdDbFieldPtr field = OdDbField::createObject();
    field->setFieldCode(L"%<\\AcExpr (3+4) \\f \"%lu2%pr0\">%");
    field->evaluate(OdDbField::kAutomatic, database_.get());
    torvel::applyText({true, L"no %<\\_FldIdx 0>%", {field}}, *definition_);
    EXPECT_EQ(plain({"Tag = NO", "press OK"}), dialogs::kOkButton);
    EXPECT_EQ(values(), "NO|Which colour?|no 7");
    EXPECT_TRUE(definition_->getField(L"TEXT"));
    EXPECT_EQ(plain({"type Default: a", "press OK"}), dialogs::kOkButton);
    EXPECT_FALSE(definition_->getField(L"TEXT"));
}

// Without a host there are no field manager and no editor: the buttons do nothing.
TEST_P(Redefinition, PlainButtonsWithoutModules) {
    EXPECT_EQ(plain({"press Default", "press []", "press OK"}), dialogs::kOkButton);
    EXPECT_EQ(values(), "color|Which colour?|white");
}

TEST_P(Redefinition, TheExportTakesDefinitionsAlone) {
    EXPECT_EQ(ShowAttDDEIT(OdDbObjectId()), 0);
    EXPECT_EQ(ShowAttDDEIT(database_->modelSpaceId()), 0);
}
