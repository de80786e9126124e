#include "torvelcmd2/attributes/values/text_transfer.h"

#include <gtest/gtest.h>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/curves.h"
#include "drawingdb/database.h"
#include "drawingdb/mtext.h"
#include "drawingdb/text.h"

namespace {

using torvel::applyText;
using torvel::CapturedText;
using torvel::captureText;

class TextTransfer : public testing::Test {
  protected:
    template <class Entity>
    OdSmartPtr<Entity> append() {
        const OdSmartPtr<Entity> entity = Entity::createObject();
        entity->setDatabaseDefaults(database_.get());
        database_->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(entity.get());
        return entity;
    }

    static OdString codeOfSum(const OdString& terms) { return L"%<\\AcExpr (" + terms + L") \\f \"%lu2%pr0\">%"; }
    static OdDbFieldPtr sum(const wchar_t* terms) {
        const OdDbFieldPtr field = OdDbField::createObject();
        field->setFieldCode(codeOfSum(terms));
        return field;
    }

    // A text whose field has that code and those children.
    OdSmartPtr<OdDbText> textWithFields(const OdString& code, const std::vector<OdDbFieldPtr>& children) {
        const auto text = append<OdDbText>();
        const OdDbFieldPtr field = OdDbField::createObject();
        text->setField(L"TEXT", field);
        field->setEvaluationOption(63);
        field->setFieldCode(code, 384, children);
        field->evaluate(63, database_.get());
        return text;
    }

    OdDbDatabasePtr database_ = OdDbDatabase::createNew();
};

TEST_F(TextTransfer, FieldsOfEqualCodeGetIndicesOfTheirOwn) {
    const auto source = textWithFields(L"%<\\_FldIdx 0>% and %<\\_FldIdx 1>%, not %<\\_FldIdx 2>%",
                                       {sum(L"3+4"), sum(L"3+4"), sum(L"1+1")});
    ASSERT_EQ(source->textString(), L"7 and 7, not 2");
    const CapturedText captured = captureText(*source);
    EXPECT_TRUE(captured.hasField);
    EXPECT_EQ(captured.text, L"%<\\_FldIdx 0>% and %<\\_FldIdx 1>%, not %<\\_FldIdx 2>%");
    ASSERT_EQ(captured.fields.size(), 3u);
    EXPECT_EQ(source->textString(), L"7 and 7, not 2") << "the source stays as it is";

    const auto target = append<OdDbAttributeDefinition>();
    target->downgradeOpen();
    applyText(captured, *target);
    EXPECT_EQ(target->textString(), L"7 and 7, not 2");
    const OdDbFieldPtr field = target->getField(L"TEXT");
    ASSERT_TRUE(field);
    EXPECT_EQ(field->getFieldCode(OdDbField::kFieldCode), captured.text);
    EXPECT_EQ(field->evaluationOption(), 63);
    EXPECT_EQ(field->getData(L"ACFD_FIELDTEXT_ATTDEF").integer, 1);
    ASSERT_EQ(field->childCount(), 3u);
    EXPECT_EQ(field->getChild(2)->getFieldCode(OdDbField::kRawCode), codeOfSum(L"1+1"));
    EXPECT_EQ(field->getChild(2)->evaluationOption(), 63);
}

TEST_F(TextTransfer, AFieldThatTheTextDoesNotNameTakesNoIndex) {
    const auto source = textWithFields(L"only %<\\_FldIdx 1>%", {sum(L"1+1"), sum(L"2+3")});
    const CapturedText captured = captureText(*source);
    EXPECT_EQ(captured.text, L"only %<\\_FldIdx 0>%");
    ASSERT_EQ(captured.fields.size(), 1u);
    EXPECT_EQ(captured.fields[0]->getFieldCode(OdDbField::kRawCode), codeOfSum(L"2+3"));
}

// Some programs store a single field as the text itself, without a text around it.
TEST_F(TextTransfer, ATextThatIsOneFieldBecomesATextThatHoldsIt) {
    const auto source = append<OdDbText>();
    const OdDbFieldPtr product = OdDbField::createObject();
    source->setField(L"TEXT", product);
    product->setFieldCode(L"\\AcExpr (2*%<\\_FldIdx 0>%)", 0, {sum(L"1+2")});
    product->evaluate(63, database_.get());
    ASSERT_EQ(source->textString(), L"6.0000");

    const CapturedText captured = captureText(*source);
    EXPECT_EQ(captured.text, L"%<\\_FldIdx 0>%");
    const auto target = append<OdDbText>();
    applyText(captured, *target);
    EXPECT_EQ(target->textString(), L"6.0000");
    EXPECT_EQ(target->getField(L"TEXT")->getChild(0)->childCount(), 1u);
}

TEST_F(TextTransfer, PlainValuesPassBetweenTheKindsOfText) {
    const auto singleLine = append<OdDbText>();
    singleLine->setTextString(L"5%% \\P {x} %<\\_FldIdx 0>%");
    const auto multiLine = append<OdDbMText>();
    multiLine->setContents(L"{\\C1;a}\\Pb");
    const auto definition = append<OdDbAttributeDefinition>();
    definition->convertIntoMTextAttributeDefinition(true);

    applyText(captureText(*multiLine), *definition);
    ASSERT_TRUE(definition->isMTextAttributeDefinition());
    EXPECT_EQ(definition->getMTextAttributeDefinition()->contents(), L"{\\C1;a}\\Pb");
    EXPECT_EQ(captureText(*definition).text, L"{\\C1;a}\\Pb");
    applyText(captureText(*singleLine), *multiLine);
    EXPECT_EQ(multiLine->contents(), L"5%% \\P {x} %<\\_FldIdx 0>%");
    EXPECT_FALSE(captureText(*multiLine).hasField);

    // A plain value takes the place of a value with fields.
    const auto fields = textWithFields(L"%<\\_FldIdx 0>%", {sum(L"1+1")});
    applyText(captureText(*singleLine), *fields);
    EXPECT_EQ(fields->textString(), L"5%% \\P {x} %<\\_FldIdx 0>%");
    EXPECT_FALSE(fields->getField(L"TEXT"));
}

TEST_F(TextTransfer, RefusesWhatHasNoText) {
    const auto line = append<OdDbLine>();
    EXPECT_THROW(captureText(*line), OdError_NotThatKindOfClass);
    EXPECT_THROW(applyText({false, L"x", {}}, *line), OdError_NotThatKindOfClass);
}

}  // namespace
