// A value with fields in the rich edit of a dialog: as a form, and on Windows as a window too.
#include "torvelcmd2/attributes/value_control.h"

#include <gmock/gmock.h>

#include "base/text.h"
#include "dialogs/boxes.h"
#include "dialogs/dialog.h"
#include "drawingdb/block.h"
#include "drawingdb/database.h"
#include "drawingdb/text.h"
#include "tests/dialogs/each_maker.h"
#include "value_control_test.h"

using torvel::CFEdCtrl;

namespace {

class ValueControl : public EachMaker {
  protected:
    void SetUp() override {
        EachMaker::SetUp();
        // "Sheet " and two fields, with " of " between.
        text_->setDatabaseDefaults(database_.get());
        database_->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(text_.get());
        const OdDbFieldPtr field = OdDbField::createObject();
        text_->setField(L"TEXT", field);
        field->setFieldCode(L"Sheet %<\\_FldIdx 0>% of %<\\_FldIdx 1>%", 384, {sum(L"100+20"), sum(L"3+4")});
        field->evaluate(OdDbField::kAutomatic, database_.get());
    }

    OdDbFieldPtr sum(const OdString& terms) {
        const OdDbFieldPtr field = OdDbField::createObject();
        field->setFieldCode(L"%<\\AcExpr (" + terms + L") \\f \"%lu2%pr0\">%");
        field->evaluate(OdDbField::kAutomatic, database_.get());
        return field;
    }
    // What the text shows after the lines and a save; "code" is what is stored then.
    std::string edited(std::deque<std::string> lines) {
        const dialogs::ResourceScope resources(base::processImage());
        CFEdCtrl value(database_.get());
        value.load(*text_);
        dialogs::Dialog dialog(IDD_VALUE);
        dialog.setRichText(IDC_VALUE, &value);
        script_.lines = std::move(lines);
        script_.lines.push_back("key Enter");
        dialog.runModal();
        const std::string shown = base::toUtf8(value.save(*text_));
        EXPECT_EQ(base::toUtf8(dialog.text(IDC_VALUE)), shown);
        const OdDbFieldPtr field = text_->getField(L"TEXT");
        code_ = field ? base::toUtf8(field->getFieldCode(OdDbField::kFieldCode)) : "";
        return shown;
    }

    OdDbDatabasePtr database_ = OdDbDatabase::createNew();
    OdSmartPtr<OdDbText> text_ = OdDbText::createObject();
    std::string code_;
};
INSTANTIATE_TEST_SUITE_P(Makers, ValueControl, EachMaker::all(), EachMaker::name);

TEST_P(ValueControl, IsShownAndTypedInto) {
    EXPECT_EQ(edited({"show", "caret Value 9", "type Value: !", "caret Value 0", "type Value: \"> \""}),
              "> Sheet 120! of 7");
    EXPECT_THAT(script_.printed, testing::HasSubstr("Value = \"Sheet {120} of {7}\""));
    EXPECT_EQ(code_, "> Sheet %<\\_FldIdx 0>%! of %<\\_FldIdx 1>%");
}

TEST_P(ValueControl, FieldsGoAndComeWhole) {
    EXPECT_EQ(edited({"caret Value 9", "key Backspace", "key Delete"}), "Sheet of 7");
    EXPECT_EQ(code_, "Sheet of %<\\_FldIdx 0>%");
}

// As rich edits do at the beginning and with nothing to paste.
TEST_P(ValueControl, NothingInPlaceOfNothingChangesNothing) {
    CFEdCtrl value(database_.get());
    value.load(*text_);
    value.replace(3, 3, L"");
    value.paste(0, 5, L"");
    EXPECT_EQ(value.text(), L"Sheet 120 of 7");
    dialogs::setClipboardText(L"kept");
    dialogs::TextSelection caret{3, 3};
    value.onMenu(torvel::FieldEdit::kCopy, caret);
    EXPECT_EQ(dialogs::clipboardText(), L"kept");
}

TEST_P(ValueControl, TheMenuWorksOnFields) {
    EXPECT_EQ(edited({"caret Value 7 8", "menu Value: Copy", "key End", "menu Value: Paste"}), "Sheet 120 of 7120");
    EXPECT_EQ(code_, "Sheet %<\\_FldIdx 0>% of %<\\_FldIdx 1>%%<\\_FldIdx 2>%");
    EXPECT_EQ(edited({"caret Value 7", "menu Value: Convert Field To Text", "menu Value: Select All"}),
              "Sheet 120 of 7120");
    EXPECT_EQ(code_, "Sheet 120 of %<\\_FldIdx 0>%%<\\_FldIdx 1>%");
    EXPECT_EQ(edited({"menu Value: Select All", "menu Value: Clear", "type Value: plain"}), "plain");
    EXPECT_EQ(code_, "");
}

}  // namespace
