// Replies as users and scripts type them.

#include "torvelhost/lines/reply.h"

#include <gtest/gtest.h>

#include "base/text.h"

using namespace host;

namespace {

OdGeVector3d pointValue(const wchar_t* text) {
    const auto point = parsePoint(text);
    EXPECT_TRUE(point);
    return point ? point->value : OdGeVector3d(-99, -99, -99);
}

}  // namespace

TEST(Reply, KindsOfLines) {
    EXPECT_EQ(parseReply(L"").kind, Reply::kEnter);
    EXPECT_EQ(parseReply(L" \t").kind, Reply::kEnter);
    EXPECT_EQ(parseReply(L"^C").kind, Reply::kCancel);
    EXPECT_EQ(parseReply(L" ^c ").kind, Reply::kCancel);
    EXPECT_EQ(parseReply(L"  abc ").text, L"abc");
    EXPECT_FALSE(parseReply(L"abc").quoted);

    for (const auto& [line, text] : {std::pair{L"\"^C\"", L"^C"},
                                     {L"\"\"", L""},
                                     {L"\" a \"", L" a "},
                                     {L"\";\"", L";"},
                                     {L"\"say \"hi\"\"", L"say \"hi\""}}) {
        const Reply reply = parseReply(line);
        EXPECT_EQ(reply.kind, Reply::kText) << line;
        EXPECT_TRUE(reply.quoted) << line;
        EXPECT_EQ(reply.text, text) << line;
    }
    EXPECT_EQ(parseReply(L"\"").text, L"\"");

    EXPECT_TRUE(isComment(L"; anything"));
    EXPECT_TRUE(isComment(L"  ;"));
    EXPECT_FALSE(isComment(L"\";\""));
    EXPECT_FALSE(isComment(L"a;b"));
}

TEST(Reply, KeywordsByUniqueAbbreviation) {
    const Keywords keywords(L"Hor Ver Ang Bisect Offset ON OFF");
    const auto index = [&](const wchar_t* text) {
        const auto match = keywords.find(text);
        return match.kind == Keywords::Match::kNone ? -1 : match.kind == Keywords::Match::kAmbiguous ? -2 : match.index;
    };
    EXPECT_EQ(index(L"H"), 0);
    EXPECT_EQ(index(L"hor"), 0);
    EXPECT_EQ(index(L"BIS"), 3);
    EXPECT_EQ(index(L"horx"), -1);
    EXPECT_EQ(index(L"O"), -2);
    EXPECT_EQ(index(L"on"), 5);
    EXPECT_EQ(index(L"of"), -2);
    EXPECT_EQ(index(L"off"), 6);  // exact, although "Offset" begins so too
    EXPECT_EQ(index(L"offs"), 4);
    EXPECT_EQ(index(L""), -1);
    EXPECT_EQ(keywords.joined(), L"Hor/Ver/Ang/Bisect/Offset/ON/OFF");

    const Keywords german(L"Ja Nein _ Yes No");
    EXPECT_EQ(german.joined(), L"Ja/Nein");
    EXPECT_EQ(german.find(L"j").index, 0);
    EXPECT_EQ(german.find(L"n").index, 1);  // Nein and No are the same keyword
    EXPECT_EQ(german.find(L"n").kind, Keywords::Match::kAbbreviated);
    EXPECT_EQ(german.find(L"_y").index, 0);
    EXPECT_EQ(german.find(L"_j").kind, Keywords::Match::kNone);
    EXPECT_EQ(Keywords(L"Undo _ Undo").find(L"undo").kind, Keywords::Match::kExact);
    EXPECT_EQ(Keywords(L"? Name").find(L"?").kind, Keywords::Match::kExact);
    EXPECT_TRUE(Keywords(nullptr).empty());
}

TEST(Reply, PromptsShowTheirKeywords) {
    const Keywords yesNo(L"Yes No");
    EXPECT_EQ(promptText(L"Erase polyline? [%s] <No>", yesNo), L"Erase polyline? [Yes/No] <No>:");
    EXPECT_EQ(promptText(L"Select a block:", Keywords()), L"Select a block:");
    // Only the last place is filled, and nothing else is formatted.
    EXPECT_EQ(promptText(L"BLOCK [%s] 100%d %s? [%s]", yesNo), L"BLOCK [%s] 100%d %s? [Yes/No]:");
    EXPECT_EQ(promptText(L"Enter text <a [%s]>", Keywords()), L"Enter text <a [%s]>:") << "a value, as it stands";
    EXPECT_EQ(promptText(nullptr, Keywords()), L":");
}

TEST(Reply, Points) {
    EXPECT_EQ(pointValue(L"3,4"), OdGeVector3d(3, 4, 0));
    EXPECT_EQ(pointValue(L" -3.5, 1e2 ,+7"), OdGeVector3d(-3.5, 100, 7));
    EXPECT_FALSE(parsePoint(L"3,4")->relative);
    EXPECT_TRUE(parsePoint(L"@1,0")->relative);
    EXPECT_EQ(pointValue(L"@"), OdGeVector3d(0, 0, 0));
    // Polar ones hit the axes exactly.
    EXPECT_EQ(pointValue(L"@2<90"), OdGeVector3d(0, 2, 0));
    EXPECT_EQ(pointValue(L"@2<-90"), OdGeVector3d(0, -2, 0));
    EXPECT_EQ(pointValue(L"3<540"), OdGeVector3d(-3, 0, 0));
    EXPECT_NEAR(pointValue(L"@2<45").x, std::sqrt(2.0), 1e-15);
    for (const wchar_t* bad :
         {L"", L"3", L"3,", L",4", L"3,4,5,6", L"3;4", L"a,b", L"1e999,0", L"nan,0", L"@x", L"2<", L"<4"})
        EXPECT_FALSE(parsePoint(bad)) << bad;
}

TEST(Reply, PicksAndSets) {
    EXPECT_EQ(parsePick(L"#1f")->path, (std::vector<TypedObject>{{0x1F}}));
    EXPECT_FALSE(parsePick(L"#1F")->point);
    const auto deep = parsePick(L"#1F/#2A 3,4");
    EXPECT_EQ(deep->path, (std::vector<TypedObject>{{0x1F}, {0x2A}}));
    EXPECT_EQ(deep->point->value, OdGeVector3d(3, 4, 0));
    EXPECT_EQ(parsePick(L"#?12/#?3")->path, (std::vector<TypedObject>{{0, 12}, {0, 3}}));
    EXPECT_EQ(parsePick(L"#?12")->path.front().text(), L"#?12");
    EXPECT_TRUE(parsePick(L"#1F/. 3,4")->isItself);
    EXPECT_EQ(parsePick(L"#1F/#?2/.")->path, (std::vector<TypedObject>{{0x1F}, {0, 2}}));
    EXPECT_FALSE(deep->isItself);
    EXPECT_TRUE(parsePick(L"None")->isNone);
    EXPECT_TRUE(parsePick(L"3,4")->path.empty());
    for (const wchar_t* bad : {L"#", L"#0", L"#G1", L"1F", L"#1F/2A", L"#1F/", L"#1F/./#2", L"#/.", L"#?0", L"#?",
                               L"#?-1", L"#1F x", L"#1 #2", L"#11111111111111111"})
        EXPECT_FALSE(parsePick(bad)) << bad;

    EXPECT_EQ(parseObjects(L"#1F  #20 #33")->size(), 3u);
    for (const wchar_t* bad : {L"", L"#1F 20", L"#1F/#2A", L"#1F/.", L"all"}) EXPECT_FALSE(parseObjects(bad)) << bad;

    EXPECT_FALSE(parseWindow(L"W 0,0 9,9")->crossing);
    EXPECT_TRUE(parseWindow(L"c 0,0 9,9")->crossing);
    EXPECT_EQ(parseWindow(L"C 0,0 9,8")->corners[1]->value, OdGeVector3d(9, 8, 0));
    EXPECT_FALSE(parseWindow(L"w")->corners[0]);
    for (const wchar_t* bad : {L"", L"W 0,0", L"W 0,0 9", L"Q 0,0 9,9"}) EXPECT_FALSE(parseWindow(bad)) << bad;
}

TEST(Filters, TakeQuotesAroundEitherOrBoth) {
    const struct {
        const wchar_t *line, *pattern, *value;
    } rows[] = {
        {L"tag NO", L"NO", L"*"},
        {L"tag NO= 1", L"NO", L"1"},
        {L"tag NO=\" 1 \"", L"NO", L" 1 "},
        {L"tag \"A=B\"=\" 1\"", L"A=B", L" 1"},
        {L"tag \"NO\"=q\"q", L"NO", L"q\"q"},
        {L"tag \"NO=1\"", L"NO", L"1"},
    };
    for (const auto& row : rows) {
        const auto filter = parseFilter(row.line);
        ASSERT_TRUE(filter);
        EXPECT_EQ(filter->pattern, row.pattern) << base::toUtf8(row.line);
        EXPECT_EQ(filter->value, row.value) << base::toUtf8(row.line);
    }
}
