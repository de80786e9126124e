// A text with fields as the text editor offers it and takes it back.
#include "torvelhost/modules/text_editor/field_text.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/database.h"
#include "drawingdb/text.h"

using texteditor::contentsOf;

namespace {

class FieldTextTest : public testing::Test {
  protected:
    OdDbFieldPtr sum(const OdString& terms) {
        const OdDbFieldPtr field = OdDbField::createObject();
        field->setFieldCode(L"%<\\AcExpr (" + terms + L") \\f \"%lu2%pr0\">%");
        field->evaluate(OdDbField::kAutomatic, database_.get());
        return field;
    }
    // "a 3 b 7", where the numbers are fields.
    OdSmartPtr<OdDbText> text() {
        const auto made = OdDbText::createObject();
        made->setDatabaseDefaults(database_.get());
        database_->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(made.get());
        texteditor::setContents(*made, {L"a %<\\_FldIdx 0>% b %<\\_FldIdx 1>%", {sum(L"1+2"), sum(L"3+4")}});
        return made;
    }

    OdDbDatabasePtr database_ = OdDbDatabase::createNew();
};

}  // namespace

TEST_F(FieldTextTest, AnswersKeepDropCopyAndQuote) {
    static constexpr struct {
        const wchar_t* answer;
        const wchar_t* shown;
        std::size_t children;
    } kCases[] = {
        {L"a %<\\_FldIdx 0>% b %<\\_FldIdx 1>%", L"a 3 b 7", 2},
        {L"only %<\\_FldIdx 1>%", L"only 7", 1},
        {L"%<\\_FldIdx 1>%%<\\_FldIdx 0>%", L"73", 2},
        {L"%<\\_FldIdx 0>% and %<\\_FldIdx 0>%", L"3 and 3", 2},
        {L"no field 100%", L"no field 100%", 0},
        {L"", L"", 0},
        // What reads like a code but stands for no field is text, also when so many fields come to be in it.
        {L"%<\\_FldIdx 2>%", L"%<\\_FldIdx 2>%", 0},
        {L"%<\\_FldIdx 0>%%<\\_FldIdx 3>%%<\\_FldIdx 0>%%<\\_FldIdx 0>%%<\\_FldIdx 0>%", L"3%<\\_FldIdx 3>%333", 5},
        {L"%<\\_FldIdx 0>% %< \\AcVar Title>%", L"3 %< \\AcVar Title>%", 2},
        {L"%<\\_FldIdx 0>% 50% %<x", L"3 50% %<x", 1},
    };
    for (const auto& [answer, shown, children] : kCases) {
        const auto edited = text();
        texteditor::setContents(*edited, {answer, contentsOf(*edited).fields});
        EXPECT_EQ(base::toUtf8(edited->textString()), base::toUtf8(shown)) << base::toUtf8(answer);
        const OdDbFieldPtr field = edited->getField(L"TEXT");
        ASSERT_EQ(static_cast<bool>(field), children > 0) << base::toUtf8(answer);
        if (field) EXPECT_EQ(field->childCount(), children) << base::toUtf8(answer);
        // Offered again and accepted, it stays what it is.
        texteditor::setContents(*edited, contentsOf(*edited));
        EXPECT_EQ(base::toUtf8(edited->textString()), base::toUtf8(shown)) << base::toUtf8(answer);
    }
}

TEST_F(FieldTextTest, ATextThatIsOneFieldIsOneMarker) {
    const auto edited = text();
    const OdDbFieldPtr alone = OdDbField::createObject();
    edited->setField(L"TEXT", alone);
    alone->setFieldCode(L"%<\\AcExpr (20+1) \\f \"%lu2%pr0\">%");
    alone->evaluate(OdDbField::kAutomatic, database_.get());
    EXPECT_EQ(contentsOf(*edited).text, L"%<\\_FldIdx 0>%");
    texteditor::setContents(*edited, {L"no " + contentsOf(*edited).text, contentsOf(*edited).fields});
    EXPECT_EQ(edited->textString(), L"no 21");
}
