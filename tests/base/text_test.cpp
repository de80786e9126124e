#include "base/text.h"

#include <gtest/gtest.h>
#include <map>

#include "base/exact_utf8.h"

namespace {

TEST(Text, Utf8RoundTripsEveryCharacter) {
    for (char32_t c = 1; c <= 0x10FFFF; ++c) {
        if (c == 0xD800) c = 0xE000;
        std::string utf8;
        base::appendCharacter(utf8, c);
        const std::wstring wide = base::fromUtf8(utf8);
        std::size_t position = 0;
        ASSERT_EQ(base::nextCharacter(wide, position), c);
        ASSERT_EQ(position, wide.size());
        ASSERT_EQ(wide.size(), sizeof(wchar_t) == 2 && c >= 0x10000 ? 2u : 1u);
        ASSERT_EQ(base::toUtf8(wide), utf8);
        ASSERT_TRUE(base::isUtf8(utf8));
    }
}

TEST(Text, IllFormedUtf8BecomesReplacementCharacters) {
    const struct {
        const char* bytes;
        const wchar_t* text;
    } cases[] = {
        {"a\x80z", L"a\uFFFDz"},                            // a tail without lead
        {"\xC0\xAF", L"\uFFFD\uFFFD"},                      // overlong
        {"\xE0\x80\x80", L"\uFFFD\uFFFD\uFFFD"},            // overlong
        {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},            // a surrogate
        {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond the last character
        {"\xE2\x82", L"\uFFFD"},                            // cut short at the end
        {"\xE2\x82(", L"\uFFFD("},                          // cut short inside
        {"\xF0\x9F\x98\xE2\x82\xAC", L"\uFFFD\u20AC"},
        {"\xFE\xFF", L"\uFFFD\uFFFD"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(base::fromUtf8(c.bytes), c.text) << testing::PrintToString(c.bytes);
        EXPECT_FALSE(base::isUtf8(c.bytes)) << testing::PrintToString(c.bytes);
    }
}

TEST(Text, ExactConversionGivesTheBytesBack) {
    for (const std::string bytes : {"a\x80z", "\xC0\xAF", "\xED\xB2\x80", "\xF4\x90\x80\x80", "\xE2\x82", "\xE2\x82(",
                                    "\xF0\x9F\x98\xE2\x82\xAC", "\xFE\xFF", "\xF0\x9F\x98\x80\x80", "M\xC3\xBCller"}) {
        EXPECT_EQ(base::toUtf8Exact(base::fromUtf8Exact(bytes)), bytes) << testing::PrintToString(bytes);
        if (base::isUtf8(bytes))
            EXPECT_EQ(base::fromUtf8Exact(bytes), base::fromUtf8(bytes));
        else
            EXPECT_TRUE(base::isUtf8(base::toUtf8(base::fromUtf8Exact(bytes)))) << "shown with replacement characters";
    }
}

TEST(Text, SurrogatesAreJoinedOrReplacedOnBothPlatforms) {
    const wchar_t pair[] = {wchar_t(0xD83D), wchar_t(0xDE00), 0};
    EXPECT_EQ(base::toUtf8(pair), "\xF0\x9F\x98\x80");
    const wchar_t alone[] = {L'a', wchar_t(0xD83D), L'b', wchar_t(0xDE00), 0};
    EXPECT_EQ(base::toUtf8(alone),
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD");
}

TEST(Text, WalksAndCutsBetweenCharacters) {
    const wchar_t text[] = {L'a', wchar_t(0xD83D), wchar_t(0xDE00), L'b', 0};
    EXPECT_EQ(base::positionAfter(text, 0), 1u);
    EXPECT_EQ(base::positionAfter(text, 1), 3u);
    EXPECT_EQ(base::positionAfter(text, 4), 4u);
    EXPECT_EQ(base::positionBefore(text, 3), 1u);
    EXPECT_EQ(base::positionBefore(text, 1), 0u);
    EXPECT_EQ(base::positionBefore(text, 0), 0u);
    EXPECT_EQ(base::prefix(text, 2), L"a");
    EXPECT_EQ(base::prefix(text, 3).size(), 3u);
    EXPECT_EQ(base::prefix(text, 99).size(), 4u);
    EXPECT_EQ(base::prefix(text, 0), L"");
}

TEST(Text, CaseMapsLettersOfManyScripts) {
    EXPECT_EQ(base::toUpper(L"door 12_äöü\u0101\u03B1\u03C9\u0434\u044F\u0451\u00FF\u0561\U00010428"),
              L"DOOR 12_ÄÖÜ\u0100\u0391\u03A9\u0414\u042F\u0401\u0178\u0531\U00010400");
    EXPECT_EQ(base::toLower(L"DOOR \u00C4\u0391\u0414\u0178\U00010400"), L"door \u00E4\u03B1\u0434\u00FF\U00010428");
    // One character stays one character: what has no one-character form stays as it is.
    EXPECT_EQ(base::toUpper(L"stra\u00DFe"), L"STRA\u00DFE");
    EXPECT_EQ(base::toUpper(L"\u01C6"), L"\u01C4");  // a digraph of which three forms exist
    EXPECT_EQ(base::toUpper(U'\u00F7'), U'\u00F7');  // the division sign among the letters
    EXPECT_EQ(base::toLower(U'\u00D7'), U'\u00D7');
    // Neighbours in runs of every second character.
    EXPECT_EQ(base::toUpper(U'\u0101'), U'\u0100');
    EXPECT_EQ(base::toUpper(U'\u0100'), U'\u0100');
    EXPECT_EQ(base::toLower(U'\u0102'), U'\u0103');
}

TEST(Text, ComparesWithoutCase) {
    const struct {
        const wchar_t* a;
        const wchar_t* b;
        int order;
    } cases[] = {
        {L"", L"", 0},
        {L"Door", L"dOOR", 0},
        {L"\u03A3\u03C3\u03C2", L"\u03C3\u03C3\u03C3", 0},  // the final sigma folds to the other
        {L"\u0130", L"i", 1},                               // the dotted capital has no language here
        {L"DOOR", L"door1", -1},
        {L"door_", L"DOORA", -1},
        {L"\u00C4", L"z", 1},
        {L"\U00010400", L"\U00010428", 0},
        {L"\uFFFF", L"\U00010000", -1},  // by character, also where units are 16 bits
    };
    for (const auto& c : cases) {
        EXPECT_EQ(base::compareNoCase(c.a, c.b), c.order) << base::toUtf8(c.a) << " " << base::toUtf8(c.b);
        EXPECT_EQ(base::compareNoCase(c.b, c.a), -c.order) << base::toUtf8(c.a) << " " << base::toUtf8(c.b);
        EXPECT_EQ(base::equalsNoCase(c.a, c.b), c.order == 0);
    }
    EXPECT_TRUE(base::startsWithNoCase(L"Horizontal", L"hOR"));
    EXPECT_FALSE(base::startsWithNoCase(L"Hor", L"Horizontal"));
    EXPECT_EQ(base::findNoCase(L"xx\u00C4bc", L"\u00E4B"), 2u);
    EXPECT_EQ(base::findNoCase(L"abcabc", L"ABC", 1), 3u);
    EXPECT_EQ(base::findNoCase(L"ab", L"abc"), std::wstring::npos);
    EXPECT_EQ(base::findNoCase(L"", L""), 0u);
    EXPECT_TRUE(base::equalsNoCase(std::string_view("ANSI_1252"), "ansi_1252"));
    EXPECT_FALSE(base::equalsNoCase(std::string_view("dos"), "dos8"));

    std::map<std::wstring, int, base::LessNoCase> names{{L"Door", 1}};
    names[L"DOOR"] = 2;
    EXPECT_EQ(names.size(), 1u);
}

TEST(Text, Pieces) {
    EXPECT_EQ(base::trimmed(L" \t a b\r\n"), L"a b");
    EXPECT_EQ(base::trimmed(std::string_view(" \t ")), "");
    EXPECT_EQ(base::split(L"a;;b;", L';'), (std::vector<std::wstring>{L"a", L"", L"b", L""}));
    EXPECT_EQ(base::split(L"", L';'), std::vector<std::wstring>{L""});
    EXPECT_EQ(base::replaceAll(L"aXXbXXX", L"XX", L"X"), L"aXbXX");
    EXPECT_EQ(base::replaceAll(L"ab", L"", L"x"), L"ab");
}

}  // namespace
