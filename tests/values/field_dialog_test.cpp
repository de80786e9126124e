// The field manager's dialog: the code follows what it is made of, and what it is made of follows the code.
#include "torvelhost/modules/field_manager/field_dialog.h"

#include <gmock/gmock.h>

#include "base/modules.h"
#include "tests/dialogs/each_maker.h"
#include "torvelhost/modules/field_manager/resource.h"

using fieldmanager::FieldDialog;
using testing::HasSubstr;

namespace {

class FieldDialogs : public EachMaker {
  protected:
    void SetUp() override {
        EachMaker::SetUp();
        database_->setHeaderText("$TITLE", 1, L"Plan");
        database_->setClock([] { return std::int64_t{1720537445}; });
    }

    OdDbDatabasePtr database_ = OdDbDatabase::createNew();
    dialogs::ResourceScope resources_{base::processImage()};
};
INSTANTIATE_TEST_SUITE_P(Makers, FieldDialogs, EachMaker::all(), EachMaker::name);

TEST_P(FieldDialogs, TheCodeIsMadeOfKindNameAndFormat) {
    const struct {
        std::deque<std::string> lines;
        OdString code;
        OdString shown;
    } kCases[] = {
        {{"Name = Title", "Format = %tc1"}, L"%<\\AcVar Title \\f \"%tc1\">%", L"PLAN"},
        {{"Name = Title", "Kind = Property"}, L"%<\\AcVar Title>%", L"Plan"},  // the same kind once more
        {{"Name = Client"}, L"%<\\AcVar CustomDP.Client>%", L"####"},
        {{"Kind = Date", "Name = Date", "Format = yyyy \"x\""},
         L"%<\\AcVar Date \\f \"yyyy \\\"x\\\"\">%",
         L"2024 \"x\""},
        {{"Kind = Variable", "Name = LUNITS"}, L"%<\\AcVar LUNITS>%", L"2"},
        {{"Kind = Formula", "Formula = 3*4", "Format = %lu2%pr1"}, L"%<\\AcExpr (3*4) \\f \"%lu2%pr1\">%", L"12.0"},
        {{"Name = Title", "Code = \\AcVar Author"}, L"%<\\AcVar Author>%", L"----"},
        {{"Code = of %<\\AcVar Title>%!", "Kind = Property", "Name = Title"}, L"%<\\AcVar Title>%", L"Plan"},
    };
    for (const auto& test : kCases) {
        script_.lines = test.lines;
        script_.lines.push_back("press OK");
        FieldDialog dialog({}, *database_);
        ASSERT_EQ(dialog.runModal(), dialogs::kOkButton) << test.lines.front();
        EXPECT_EQ(dialog.field()->getFieldCode(OdDbField::kRawCode), test.code);
        EXPECT_EQ(dialog.text(IDC_FIELD_PREVIEW), dialog.field()->getFieldCode(OdDbField::kEvaluatedText));
        EXPECT_EQ(dialog.text(IDC_FIELD_PREVIEW), test.shown);
    }
}

TEST_P(FieldDialogs, ACodeIsTakenApart) {
    const struct {
        const wchar_t* code;
        int kind;
        const wchar_t* name;
        const wchar_t* format;
    } kCases[] = {
        {L"%<\\AcVar Title \\f \"%tc1\">%", 0, L"Title", L"%tc1"},
        {L"%<\\AcVar CustomDP.Client>%", 0, L"Client", L""},
        {L"%<\\AcVar SaveDate \\f \"a \\\"b\\\" \\\\\">%", 1, L"SaveDate", L"a \"b\" \\"},
        {L"%<\\AcVar LUNITS>%", 2, L"LUNITS", L""},
        {L"%<\\AcObjProp Object(%<\\_ObjId 31>%).Area \\f \"%lu2\">%", 3, L"Area", L"%lu2"},
        {L"%<\\AcExpr (3*(1+2))>%", 4, L"3*(1+2)", L""},
        {L"%<\\AcVar CustomDP.Title>%", -1, L"", L""},  // would be made without CustomDP
        {L"%<\\NoSuch Title>%", -1, L"", L""},
        {L"of %<\\AcVar Title>%!", -1, L"", L""},
    };
    for (const auto& test : kCases) {
        const FieldDialog dialog(test.code, *database_);
        EXPECT_EQ(dialog.selected(IDC_FIELD_KIND), test.kind) << base::toUtf8(test.code);
        EXPECT_EQ(dialog.text(IDC_FIELD_NAME), test.name);
        EXPECT_EQ(dialog.text(IDC_FIELD_FORMAT), test.format);
        EXPECT_EQ(dialog.text(IDC_FIELD_CODE), test.code);
        EXPECT_EQ(dialog.isEnabled(IDC_FIELD_OBJECT), test.kind == 3);
        // One letter would make another code of parts that are not known.
        EXPECT_EQ(dialog.isEnabled(IDC_FIELD_NAME), test.kind >= 0);
        EXPECT_EQ(dialog.isEnabled(IDC_FIELD_FORMAT), test.kind >= 0);
    }
}

TEST_P(FieldDialogs, TheObjectIsPickedBetweenTwoRuns) {
    FieldDialog dialog({}, *database_);
    script_.lines = {"Kind = Object", "press Select Object"};
    ASSERT_EQ(dialog.runModal(), FieldDialog::kPickObject);
    dialog.setObject(database_->findLayer(L"0"));
    script_.lines = {"type Property: Name", "press OK"};  // the focus is there already
    ASSERT_EQ(dialog.runModal(), dialogs::kOkButton);
    EXPECT_EQ(dialog.text(IDC_FIELD_PREVIEW), L"0");
}

TEST_P(FieldDialogs, WhatIsNoCodeIsRefused) {
    FieldDialog dialog({}, *database_);
    script_.lines = {"Code = plain", "press OK", "type Code: ", "key Delete", "press OK", "press Cancel"};
    EXPECT_EQ(dialog.runModal(), dialogs::kCancelButton);
    EXPECT_THAT(script_.printed, HasSubstr("[warning] \"plain\" is no field code"));
    EXPECT_THAT(script_.printed, HasSubstr("[warning] \"\" is no field code"));
}

}  // namespace
