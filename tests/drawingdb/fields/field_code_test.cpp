#include "drawingdb/src/fields/field_code.h"

#include <gmock/gmock.h>
#include <random>

using drawingdb::FieldCode;
using drawingdb::FieldSpan;
using drawingdb::findFields;
using drawingdb::parseFieldCode;

namespace {

// What findFields sees, written down: F(code) a field, c3 o3 h3 markers; text between them as it is.
std::wstring seen(std::wstring_view text) {
    std::wstring result;
    std::size_t at = 0;
    for (const FieldSpan& span : findFields(text)) {
        result += text.substr(at, span.begin - at);
        if (span.kind == FieldSpan::field)
            result.append(L"F(").append(span.code(text)).append(L")");
        else
            result += L"?coh"[span.kind] + std::to_wstring(span.number);
        at = span.end;
    }
    return result.append(text.substr(at));
}

TEST(FieldCode, FindsFieldsAndMarkersInText) {
    const struct {
        const wchar_t* text;
        const wchar_t* seen;
    } kRows[] = {
        {L"plain", L"plain"},
        {L"", L""},
        {L"%<\\AcVar Title>%", L"F(\\AcVar Title)"},
        {L"Sheet %<\\AcVar A>% of %<\\AcVar B>%!", L"Sheet F(\\AcVar A) of F(\\AcVar B)!"},
        {L"%<\\AcVar A>%%<\\AcVar B>%", L"F(\\AcVar A)F(\\AcVar B)"},
        {L"%<\\AcExpr (%<\\AcVar A>%+1)>%", L"F(\\AcExpr (%<\\AcVar A>%+1))"},
        {L"%<\\_FldIdx 0>%, %<\\_ObjIdx 12>%, %<\\_ObjId 4711>%", L"c0, o12, h4711"},
        {L"%<\\_FldIdx  7 >%", L"c7"},
        // What is no marker after all is a field.
        {L"%<\\_FldIdx>%%<\\_FldIdx x>%%<\\_FldIdx -1>%", L"F(\\_FldIdx)F(\\_FldIdx x)F(\\_FldIdx -1)"},
        {L"%<\\_FldIdx 99999999999999999999>%", L"F(\\_FldIdx 99999999999999999999)"},
        // Percent signs and brackets that are text.
        {L"100%<5 and 5>%3", L"100%<5 and 5>%3"},
        {L"100%<5 %<\\AcVar A>% >%", L"100%<5 F(\\AcVar A) >%"},
        {L"%<\\AcVar A", L"%<\\AcVar A"},
        {L"%<\\AcVar A %<\\AcVar B>%", L"%<\\AcVar A F(\\AcVar B)"},
        {L">%%<\\AcVar A>%>%", L">%F(\\AcVar A)>%"},
        {L"%", L"%"},
        {L"%<", L"%<"},
        {L"%<\\", L"%<\\"},
        {L"%<>%", L"%<>%"},
    };
    for (const auto& row : kRows) EXPECT_EQ(seen(row.text), row.seen);
}

TEST(FieldCode, TakesACodeApart) {
    const FieldCode simple = parseFieldCode(L"\\AcVar Title \\f \"%tc1\"");
    EXPECT_EQ(simple.evaluator, L"AcVar");
    EXPECT_EQ(simple.body, L"Title");
    EXPECT_EQ(simple.option(L"f"), L"%tc1");
    EXPECT_EQ(simple.option(L"F"), L"");

    const FieldCode rich = parseFieldCode(
        L" \\AcObjProp.16.2 Object(%<\\_ObjIdx 0>%,1).Area \\f \"%ps[\\\"A\\\" = ,\\\\ m2]\" \\href \"x y\" \\k plain "
        L"\\f late");
    EXPECT_EQ(rich.evaluator, L"AcObjProp.16.2");
    EXPECT_EQ(drawingdb::withoutVersion(rich.evaluator), L"AcObjProp");
    EXPECT_EQ(rich.body, L"Object(%<\\_ObjIdx 0>%,1).Area");
    EXPECT_EQ(rich.option(L"f"), L"%ps[\"A\" = ,\\ m2]");
    EXPECT_EQ(rich.option(L"href"), L"x y");
    EXPECT_EQ(rich.option(L"k"), L"plain");

    // An option of a field inside, or in quotes, is not one of the field itself; neither is a backslash inside a word.
    const FieldCode nested = parseFieldCode(L"\\AcExpr(%<\\AcVar A \\f \"%lu1\">%*2)");
    EXPECT_EQ(nested.evaluator, L"AcExpr");
    EXPECT_EQ(nested.body, L"(%<\\AcVar A \\f \"%lu1\">%*2)");
    EXPECT_TRUE(nested.options.empty());
    EXPECT_EQ(parseFieldCode(L"\\AcVar \"a \\f b\" \\f x").option(L"f"), L"x");
    EXPECT_EQ(parseFieldCode(L"\\AcVar C:\\folder\\file").body, L"C:\\folder\\file");
    EXPECT_EQ(parseFieldCode(L"\\AcVar x \\f \"open").option(L"f"), L"open");

    EXPECT_EQ(parseFieldCode(L"no code").evaluator, L"");
    EXPECT_EQ(parseFieldCode(L"no code").body, L"no code");
    EXPECT_EQ(parseFieldCode(L"").body, L"");
    EXPECT_EQ(drawingdb::withoutVersion(L"Own.Evaluator"), L"Own.Evaluator");
    EXPECT_EQ(drawingdb::unquoted(L" \"two words\" "), L"two words");
}

TEST(FieldCode, StandsHostileText) {
    std::wstring deep;
    for (int i = 0; i < 10000; ++i) deep += L"%<\\AcExpr ";
    EXPECT_TRUE(findFields(deep).empty());
    for (int i = 0; i < 10000; ++i) deep += L">%";
    const auto spans = findFields(deep);
    ASSERT_EQ(spans.size(), 1u);
    EXPECT_EQ(spans[0].end, deep.size());
    EXPECT_EQ(parseFieldCode(spans[0].code(deep)).evaluator, L"AcExpr");

    std::wstring many = L"\\AcExpr ";
    for (int i = 0; i < 50000; ++i) many += L"%<\\_FldIdx 1>% \\f \"x\" ";
    EXPECT_EQ(parseFieldCode(many).options.size(), 50000u);

    // Whatever the text: spans lie in order, inside of it, and between their brackets.
    std::mt19937 random(7);
    const std::wstring_view kPieces[] = {L"%<", L">%", L"\\", L"_FldIdx 1", L"AcVar ", L"\"", L" ", L"x", L"%", L"<"};
    for (int run = 0; run < 3000; ++run) {
        std::wstring text;
        for (int i = 0; i < 24; ++i) text += kPieces[random() % std::size(kPieces)];
        std::size_t end = 0;
        for (const FieldSpan& span : findFields(text)) {
            ASSERT_GE(span.begin, end);
            ASSERT_LE(span.end, text.size());
            ASSERT_EQ(text.substr(span.begin, 2), L"%<");
            ASSERT_EQ(text.substr(span.end - 2, 2), L">%");
            end = span.end;
        }
        parseFieldCode(text);
    }
}

}  // namespace
