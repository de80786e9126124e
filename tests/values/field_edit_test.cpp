#include "torvelcmd2/attributes/values/field_edit.h"

#include <gtest/gtest.h>
#include <iostream>
#include <random>

#include "base/modules.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/database.h"
#include "drawingdb/text.h"
#include "hostapi/host_names.h"
#include "torvelcmd2/attributes/values/text_transfer.h"

namespace {

using torvel::FieldEdit;

OdDbFieldPtr fieldOf(const OdString& code, OdDbDatabase* database) {
    const OdDbFieldPtr field = OdDbField::createObject();
    field->setFieldCode(code);
    field->evaluate(OdDbField::kAutomatic, database);
    return field;
}
OdString sumCode(const OdString& terms) { return L"%<\\AcExpr (" + terms + L") \\f \"%lu2%pr0\">%"; }

class FieldEditTest : public testing::Test {
  protected:
    template <class Entity>
    OdSmartPtr<Entity> append() {
        const OdSmartPtr<Entity> entity = Entity::createObject();
        entity->setDatabaseDefaults(database_.get());
        database_->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(entity.get());
        return entity;
    }
    OdDbFieldPtr sum(const OdString& terms) { return fieldOf(sumCode(terms), database_.get()); }
    // A text whose field has that code and those children.
    OdSmartPtr<OdDbText> textWith(const OdString& code, const std::vector<OdDbFieldPtr>& children) {
        const auto text = append<OdDbText>();
        const OdDbFieldPtr field = OdDbField::createObject();
        text->setField(L"TEXT", field);
        field->setFieldCode(code, 384, children);
        field->evaluate(OdDbField::kAutomatic, database_.get());
        return text;
    }
    static OdString storedCode(const OdDbEntity& entity) {
        return entity.getField(L"TEXT")->getFieldCode(OdDbField::kFieldCode);
    }
    FieldEdit loaded(const OdDbEntity& entity, bool enabled = true) {
        FieldEdit edit(database_.get());
        edit.load(entity, enabled);
        return edit;
    }
    // The owners as letters: "." plain, "a" the field with the number 0.
    static OdString owners(const FieldEdit& edit) {
        OdString result;
        for (const std::int32_t owner : edit.owners())
            result += owner == FieldEdit::kNoField ? L'.' : static_cast<wchar_t>(L'a' + owner);
        return result;
    }

    OdDbDatabasePtr database_ = OdDbDatabase::createNew();
};

TEST_F(FieldEditTest, LoadsAndSavesTextAndFields) {
    const auto text = textWith(L"Sheet %<\\_FldIdx 0>%", {sum(L"100+20")});
    const FieldEdit edit = loaded(*text);
    EXPECT_EQ(edit.text(), L"Sheet 120");
    EXPECT_EQ(owners(edit), L"......aaa");
    ASSERT_EQ(edit.entries().size(), 1u);
    EXPECT_EQ(edit.entries()[0].first, 6);
    EXPECT_EQ(edit.entries()[0].last, 8);

    OdString shown;
    edit.save(*text, shown);
    EXPECT_EQ(shown, L"Sheet 120");
    EXPECT_EQ(storedCode(*text), L"Sheet %<\\_FldIdx 0>%");
    const OdDbFieldPtr field = text->getField(L"TEXT");
    ASSERT_EQ(field->childCount(), 1u);
    EXPECT_EQ(field->getChild(0)->getFieldCode(OdDbField::kRawCode), sumCode(L"100+20"));
    EXPECT_EQ(field->evaluationOption(), 63);
    EXPECT_EQ(field->getChild(0)->evaluationOption(), 63);
    EXPECT_EQ(field->getData(L"ACFD_FIELDTEXT_ATTDEF").integer, 1);
}

TEST_F(FieldEditTest, ShowsWhatTheEntityHolds) {
    const auto equal = textWith(L"%<\\_FldIdx 1>%%<\\_FldIdx 0>%, %<\\_FldIdx 2>%", {sum(L"1"), sum(L"1"), sum(L"12")});
    EXPECT_EQ(owners(loaded(*equal)), L"ab..cc")
        << "each of equal code claims a place of its own; adjacent runs stay two";
    EXPECT_EQ(loaded(*equal).entries().size(), 3u);
    EXPECT_EQ(owners(loaded(*equal, false)), L"......");
    const auto path = textWith(L"C:\\Plans %<\\_FldIdx 0>%", {sum(L"1")});
    EXPECT_EQ(loaded(*path, false).text(), L"C:\nlans 1") << "a single line is shown without escapes too";

    const auto unnamed = textWith(L"only %<\\_FldIdx 1>%", {sum(L"1"), sum(L"2")});
    EXPECT_EQ(owners(loaded(*unnamed)), L".....b");

    const auto alone = textWith(L"", {});
    alone->getField(L"TEXT", OdDb::forWrite)->setFieldCode(L"%<\\AcExpr (%<\\AcExpr (1+1)>%*3) \\f \"%lu2%pr0\">%");
    alone->getField(L"TEXT", OdDb::forWrite)->evaluate(63, database_.get());
    FieldEdit edit = loaded(*alone);
    EXPECT_EQ(owners(edit), L"a") << "a field that is no text field is one run, whatever nests in it";
    OdString shown;
    edit.save(*alone, shown);
    edit.save(*alone, shown);
    EXPECT_EQ(shown, L"6");
    EXPECT_EQ(alone->getField(L"TEXT")->getFieldCode(OdDbField::kRawCode),
              L"%<\\AcExpr (%<\\AcExpr (1+1)>%*3) \\f \"%lu2%pr0\">%");

    const auto multiLine = append<OdDbAttributeDefinition>();
    multiLine->convertIntoMTextAttributeDefinition(true);
    multiLine->setTextString(L"one\\Ptwo");
    EXPECT_EQ(loaded(*multiLine).text(), L"one\\Ptwo");

    const auto unevaluated = textWith(L"", {});
    const OdDbFieldPtr never = OdDbField::createObject();
    never->setFieldCode(sumCode(L"1"));
    unevaluated->getField(L"TEXT", OdDb::forWrite)->setFieldCode(L"<%<\\_FldIdx 0>%>", 384, {never});
    EXPECT_EQ(loaded(*unevaluated).text(), L"<---->") << "a field without a value is still to be seen";
}

TEST_F(FieldEditTest, AnInsertedFieldIsStoredAndTheLastOneGone) {
    const auto text = textWith(L"", {});
    FieldEdit edit = loaded(*text);
    const OdDbFieldPtr known = sum(L"41+1");
    edit.insertField(known);
    edit.type(L"!");
    OdString shown;
    edit.save(*text, shown);
    EXPECT_EQ(shown, L"42!");
    edit.select(0, 2);
    edit.deleteForward();
    edit.save(*text, shown);
    EXPECT_EQ(shown, L"!");
    EXPECT_FALSE(text->getField(L"TEXT")) << "a value without fields is plain text";
    EXPECT_EQ(text->textString(), L"!");
}

TEST_F(FieldEditTest, RunsGoAsAWhole) {
    const auto text = textWith(L"ab%<\\_FldIdx 0>%cd%<\\_FldIdx 1>%", {sum(L"111"), sum(L"222")});
    const FieldEdit start = loaded(*text);  // ab111cd222
    const auto after = [&](auto&& action) {
        FieldEdit edit = start;
        action(edit);
        return edit.text() + L"|" + owners(edit) + L"|" + std::to_wstring(edit.anchor()) + L"-" +
               std::to_wstring(edit.caret());
    };
    EXPECT_EQ(after([](FieldEdit& e) { e.select(3, 3); }), L"ab111cd222|..aaa..bbb|2-2");
    EXPECT_EQ(after([](FieldEdit& e) { e.select(4, 4); }), L"ab111cd222|..aaa..bbb|5-5");
    EXPECT_EQ(after([](FieldEdit& e) { e.select(3, 8); }), L"ab111cd222|..aaa..bbb|2-10");
    EXPECT_EQ(after([](FieldEdit& e) { e.select(8, 3); }), L"ab111cd222|..aaa..bbb|10-2");
    EXPECT_EQ(after([](FieldEdit& e) { e.select(5, 5), e.deleteBack(); }), L"abcd222|....bbb|2-2");
    EXPECT_EQ(after([](FieldEdit& e) { e.select(2, 2), e.deleteForward(); }), L"abcd222|....bbb|2-2");
    EXPECT_EQ(after([](FieldEdit& e) { e.select(4, 99), e.type(L"x\r\ny"); }), L"abx y|.....|5-5");
    EXPECT_EQ(after([](FieldEdit& e) { e.select(2, 2), e.moveCaret(true, true); }), L"ab111cd222|..aaa..bbb|2-5");
    EXPECT_EQ(after([](FieldEdit& e) { e.select(1, 6), e.moveCaret(false, false); }), L"ab111cd222|..aaa..bbb|1-1");
    EXPECT_EQ(after([](FieldEdit& e) { e.select(0, 0), e.deleteBack(); }), L"ab111cd222|..aaa..bbb|0-0");

    // Copies of a field are fields of their own, in another value too; any other text is text.
    EXPECT_EQ(after([](FieldEdit& e) {
                  e.select(2, 5);
                  const OdString copied = e.copy();
                  e.select(10, 10);
                  e.paste(copied);
              }),
              L"ab111cd222111|..aaa..bbbccc|13-13");
    EXPECT_EQ(after([](FieldEdit& e) { e.select(0, 5), e.paste(L"111"); }), L"111cd222|ccc..bbb|3-3");
    EXPECT_EQ(after([](FieldEdit& e) { e.select(0, 5), e.paste(L"11"); }), L"11cd222|....bbb|2-2");
}

TEST_F(FieldEditTest, MenuCommandsDoWhatTheyAreCalled) {
    database_->setHeaderText("$TITLE", 1, L"old");
    const auto text = textWith(L"ab%<\\_FldIdx 0>%", {fieldOf(L"%<\\AcVar Title>%", database_.get())});
    FieldEdit edit = loaded(*text);
    OdString clipboard = L"from elsewhere";
    const auto run = [&](FieldEdit::Command command) { edit.run(command, clipboard); };

    edit.select(2, 2);
    EXPECT_FALSE(edit.isAvailable(FieldEdit::kCopy));
    EXPECT_TRUE(edit.isAvailable(FieldEdit::kEditField)) << "the field beside the caret";
    database_->setHeaderText("$TITLE", 1, L"renamed");
    run(FieldEdit::kUpdateField);
    EXPECT_EQ(edit.text(), L"abrenamed");
    EXPECT_EQ(edit.caret(), 2u);

    // The module is there, but there is no host for it to ask.
    run(FieldEdit::kInsertField);
    run(FieldEdit::kEditField);
    EXPECT_EQ(owners(edit), L"..aaaaaaa");

    run(FieldEdit::kSelectAll);
    run(FieldEdit::kCopy);
    EXPECT_EQ(clipboard, L"abrenamed");
    run(FieldEdit::kConvertFieldToText);
    EXPECT_EQ(owners(edit), L".........");
    EXPECT_FALSE(edit.isAvailable(FieldEdit::kUpdateField));
    run(FieldEdit::kSelectAll);
    run(FieldEdit::kClear);
    EXPECT_EQ(edit.text(), L"");
    EXPECT_FALSE(edit.isAvailable(FieldEdit::kSelectAll));
    run(FieldEdit::kPaste);
    EXPECT_EQ(edit.text(), L"abrenamed");
    EXPECT_EQ(edit.entries().size(), 1u) << "the field comes back with the paste";
    EXPECT_STREQ(FieldEdit::commandText(FieldEdit::kConvertFieldToText), L"Convert Field To Text");
}

TEST_F(FieldEditTest, TakenOutFieldsAreShownButNotSaved) {
    const auto text = textWith(L"%<\\_FldIdx 0>% and %<\\_FldIdx 1>%", {sum(L"1"), sum(L"2")});
    FieldEdit edit = loaded(*text);
    edit.takeOut(0, true);
    OdString shown;
    edit.save(*text, shown);
    EXPECT_EQ(shown, L" and 2");
    EXPECT_EQ(storedCode(*text), L" and %<\\_FldIdx 0>%") << "markers are counted anew";
    EXPECT_EQ(edit.text(), L"1 and 2");
}

// ---------------------------------------------------------------------------------------------------------------------
// Generated sequences of edits

// What must hold after every edit.
void check(const FieldEdit& edit) {
    ASSERT_EQ(edit.text().size(), edit.owners().size());
    std::vector<std::int32_t> expected(edit.text().size(), FieldEdit::kNoField);
    for (const FieldEdit::FieldEntry& entry : edit.entries()) {
        ASSERT_LE(0, entry.first);
        ASSERT_LE(entry.first, entry.last);
        ASSERT_LT(static_cast<std::size_t>(entry.last), edit.text().size());
        ASSERT_TRUE(entry.field);
        for (auto at = static_cast<std::size_t>(entry.first); at <= static_cast<std::size_t>(entry.last); ++at) {
            ASSERT_EQ(expected[at], FieldEdit::kNoField) << "two runs share a character";
            expected[at] = entry.number;
        }
        ASSERT_EQ(edit.text().substr(static_cast<std::size_t>(entry.first),
                                     static_cast<std::size_t>(entry.last - entry.first + 1)),
                  entry.field->getFieldCode(OdDbField::kEvaluatedText));
    }
    ASSERT_EQ(edit.owners(), expected);
    for (const std::size_t position : {edit.anchor(), edit.caret()}) {
        ASSERT_LE(position, edit.text().size());
        const bool inside = position > 0 && position < edit.text().size() &&
                            edit.owners()[position] != FieldEdit::kNoField &&
                            edit.owners()[position] == edit.owners()[position - 1];
        ASSERT_FALSE(inside) << "the caret stands inside a run";
    }
}

TEST_F(FieldEditTest, AnySequenceOfEditsKeepsTextOwnersAndEntriesTogether) {
    const unsigned seed = std::random_device{}();
    std::cout << "seed " << seed << '\n';
    std::mt19937 random(seed);
    const auto below = [&](std::size_t n) { return static_cast<std::size_t>(random() % n); };
    const std::vector<OdDbFieldPtr> fields = {sum(L"1"), sum(L"20"), sum(L"333"), sum(L"20")};
    // Letters that make up pieces of field codes too, and a character that is two units on Windows.
    const std::vector<OdString> texts = {L"a",  L"12",         L"%",          L"<\\", L">%",         L"%<\\_FldIdx 0>%",
                                         L"\n", L"",           L"\\P",        L"{}",  L"\U0001F600", L"20",
                                         L"%<", L"\\_FldIdx ", sumCode(L"20")};
    const auto text = append<OdDbText>(), copy = append<OdDbText>();
    // It is loaded for each use otherwise, which takes long under Wine.
    const base::ModuleReference fieldManager = base::loadModule(base::libraryFileName(hostapi::kFieldModule));
    for (int sequence = 0; sequence < 3000; ++sequence) {
        FieldEdit edit(database_.get());
        OdString clipboard;
        for (std::size_t step = below(12) + 1; step > 0; --step) {
            switch (below(10)) {
                case 0:
                    edit.select(below(edit.text().size() + 3), below(edit.text().size() + 3));
                    break;
                case 1:
                case 2:
                    edit.insertField(fields[below(fields.size())]);
                    break;
                case 3:
                case 4:
                    edit.type(texts[below(texts.size())]);
                    break;
                case 5:
                    edit.deleteBack();
                    break;
                case 6:
                    edit.moveCaret(below(2) == 0, below(2) == 0);
                    break;
                default:
                    edit.run(static_cast<FieldEdit::Command>(below(FieldEdit::kCommands)), clipboard);
            }
            ASSERT_NO_FATAL_FAILURE(check(edit)) << "in sequence " << sequence;
        }
        if (sequence % 3 != 0) continue;
        const OdString& plain = edit.text();
        OdString shown;
        edit.save(*text, shown);
        ASSERT_EQ(shown, plain) << "in sequence " << sequence;
        const FieldEdit again = loaded(*text);
        ASSERT_EQ(again.text(), plain) << "in sequence " << sequence;
        ASSERT_EQ(again.code().first, edit.code().first) << "in sequence " << sequence;
        ASSERT_EQ(again.entries().size(), edit.entries().size());
        for (std::size_t i = 0; i < plain.size(); ++i) {
            ASSERT_EQ(again.owners()[i] == FieldEdit::kNoField, edit.owners()[i] == FieldEdit::kNoField)
                << "in sequence " << sequence;
        }
        // What synchronising attributes does with it.
        torvel::applyText(torvel::captureText(*text), *copy);
        ASSERT_EQ(copy->textString(), plain) << "in sequence " << sequence;
        ASSERT_EQ(owners(loaded(*copy)), owners(again)) << "in sequence " << sequence;
    }
}

}  // namespace
