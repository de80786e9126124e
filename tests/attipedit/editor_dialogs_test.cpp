// The dialogs of the text editor, with each maker, and what comes of them; this program is the host of the field
// manager that they call.
#include "torvelhost/modules/text_editor/editor_dialogs.h"

#include <stdexcept>

#include "drawingdb/attribute.h"
#include "drawingdb/database.h"
#include "hostapi/input.h"
#include "tests/dialogs/each_maker.h"
#include "tests/module/loaded_services.h"
#include "torvelcmd2/attributes/multiline_editing.h"

using fake::host;
using texteditor::Sheet;

namespace {

class TextEditor : public EachMaker {
  protected:
    void SetUp() override {
        EachMaker::SetUp();
        host().database = OdDbDatabase::createNew();
    }
    void TearDown() override {
        host() = {};
        EachMaker::TearDown();
    }
    // What the contents are after the lines, or "(given up)".
    std::string edit(Sheet& sheet, std::deque<std::string> lines) {
        script_.lines = std::move(lines);
        return texteditor::editLines(sheet) ? base::toUtf8(sheet.contents.text) : "(given up)";
    }

    LoadedServices services_{L"rich"};
};
INSTANTIATE_TEST_SUITE_P(Makers, TextEditor, EachMaker::all(), EachMaker::name);

TEST_P(TextEditor, ParagraphsAreLines) {
    const struct {
        const wchar_t* contents;
        std::deque<std::string> lines;
        const char* after;
    } kCases[] = {
        {L"one\\Ptwo", {"caret Text 3", "key Enter", "type Text: and", "press OK"}, "one\\Pand\\Ptwo"},
        {L"a \\\\P is no end, \\P is", {"caret Text 0", "type Text: >", "press OK"}, ">a \\\\P is no end, \\P is"},
        {L"ends in \\", {"key End", "key Enter", "type Text: P", "press OK"}, "ends in \\\\\\PP"},
        {L"{\\C1;red}\\P", {"Text = plain", "press OK"}, "plain"},
        {L"a\nb", {"press OK"}, "a\nb"},
        {L"a\\Pb", {"Text = lost", "press Cancel"}, "(given up)"},
        {L"a\\Pb", {"Text = lost", "key Escape"}, "(given up)"},
    };
    for (const auto& test : kCases) {
        Sheet sheet{{test.contents, {}}, 0};
        EXPECT_EQ(edit(sheet, test.lines), test.after) << base::toUtf8(test.contents);
        if (std::string(test.after) == "(given up)") EXPECT_EQ(sheet.contents.text, test.contents);
    }
}

TEST_P(TextEditor, TheWidthIsALengthOrNone) {
    Sheet sheet{{L"text", {}}, 1.0 / 3};
    EXPECT_EQ(edit(sheet, {"Text = other", "press OK"}), "other");
    EXPECT_EQ(sheet.width, 1.0 / 3) << "shown with fewer digits";
    EXPECT_EQ(edit(sheet, {"Width = wide", "press OK", "Width = -1", "key Alt+T", "Width = 12.5", "press OK"}),
              "other");
    EXPECT_EQ(sheet.width, 12.5);
    EXPECT_NE(script_.printed.find("[warning] \"wide\" is no width"), std::string::npos) << script_.printed;
    EXPECT_NE(script_.printed.find("[warning] \"-1\" is no width"), std::string::npos);
    EXPECT_EQ(edit(sheet, {"Width = wide", "press Cancel"}), "(given up)");
    EXPECT_EQ(sheet.width, 12.5);
    EXPECT_EQ(edit(sheet, {"Width = 0", "press OK"}), "other");
    EXPECT_EQ(sheet.width, 0);
}

TEST_P(TextEditor, AFieldGoesInAsItsMarker) {
    const OdDbFieldPtr first = OdDbField::createObject();
    first->setFieldCode(L"%<\\AcVar Title>%");
    for (const bool isOneLine : {false, true}) {
        texteditor::FieldText contents{L"size %<\\_FldIdx 0>%!", {first}};
        host().keywords = {{hostapi::kValue, L"%<\\AcExpr (3+4)>%"}, {hostapi::kCancel, L""}};
        // The second time the field manager is given up.
        script_.lines = {"caret Text 0 4", "press Insert Field", "type Text: by", "key Alt+I", "press OK"};
        Sheet sheet{contents, 0};
        if (isOneLine) {
            EXPECT_TRUE(texteditor::editLine(contents, false));
            sheet.contents = contents;
        } else {
            EXPECT_TRUE(texteditor::editLines(sheet));
        }
        EXPECT_EQ(base::toUtf8(sheet.contents.text), "%<\\_FldIdx 1>%by %<\\_FldIdx 0>%!");
        ASSERT_EQ(sheet.contents.fields.size(), 2u);
        EXPECT_EQ(sheet.contents.fields[1]->getFieldCode(OdDbField::kEvaluatedText), L"7.0000");
        EXPECT_TRUE(host().keywords.empty());
    }
}

TEST_P(TextEditor, OneLineEndsWithEnter) {
    texteditor::FieldText contents{L"D\\P1", {}};
    script_.lines = {"key End", "type Text: !", "key Enter"};
    EXPECT_TRUE(texteditor::editLine(contents, false));
    EXPECT_EQ(contents.text, L"D\\P1!");
    script_.lines = {"Text =", "press Cancel"};
    EXPECT_FALSE(texteditor::editLine(contents, false));
    EXPECT_EQ(contents.text, L"D\\P1!");
}

// In the full editor a text of one line stays one: codes are characters there, and a line end is a blank.
TEST_P(TextEditor, OneLineInFullStaysOneLine) {
    texteditor::FieldText contents{L"C:\\Plans", {}};
    script_.lines = {"show", "press OK"};
    EXPECT_TRUE(texteditor::editLine(contents, true));
    EXPECT_EQ(contents.text, L"C:\\Plans");
    EXPECT_NE(script_.printed.find("C:\\Plans"), std::string::npos) << script_.printed;
    script_.lines = {"key End", "key Enter", "type Text: new", "press OK"};
    EXPECT_TRUE(texteditor::editLine(contents, true));
    EXPECT_EQ(contents.text, L"C:\\Plans new");
}

// A width that the editor changed, beside the text or alone, goes into the attribute and changes nothing else.
TEST(MultiLineValue, BringsItsWidth) {
    const OdDbDatabasePtr database =
        OdDbDatabase::readFile(base::fromUtf8(TORVEL_SOURCE_DIR) + L"/tests/burst/multi_line.dxf");
    const auto attribute = database->getObjectId(OdDbHandle(0x3C)).openAs<OdDbAttribute>();
    ASSERT_TRUE(attribute->isMTextAttribute());
    const double width = attribute->getMTextAttribute()->width();
    const OdString text = attribute->textString();
    for (const double wanted : {width + 2.5, 0.0, width}) {
        EXPECT_TRUE(torvel::applyMultiLine({torvel::captureText(*attribute), wanted, {}}, *attribute)) << "changed";
        EXPECT_EQ(attribute->getMTextAttribute()->width(), wanted);
        EXPECT_EQ(attribute->textString(), text);
    }
    EXPECT_FALSE(torvel::applyMultiLine({torvel::captureText(*attribute), width, {}}, *attribute)) << "left alone";
    torvel::applyMultiLine({{false, L"new\\Ptext", {}}, 8, {}}, *attribute);
    EXPECT_EQ(attribute->getMTextAttribute()->width(), 8);
    EXPECT_EQ(attribute->textString(), L"new\\Ptext");
}

}  // namespace
