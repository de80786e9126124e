// Which glyphs show scripts that join or run to the left, and in which order. Built where the library that shapes is.
#include <gtest/gtest.h>

#include "base/text.h"
#include "torvelhost/fonts/fonts.h"

namespace host {
namespace {

// Which characters stand where, from left to right; those that run to the left in brackets.
std::string ordered(Shaper& shaper, std::u32string_view paragraph, std::vector<std::size_t> ends) {
    std::string text;
    std::size_t count = 0;
    for (const Shaper::Ordered& c : shaper.order(paragraph, ends)) {
        std::string shown;
        base::appendCharacter(shown, c.shown);
        EXPECT_TRUE(c.shown == paragraph[c.character] || c.shown < 0x80) << "only brackets are turned round";
        text += c.toLeft ? "<" + shown + ">" : shown;
        if (++count == ends.front()) text += "|";
    }
    return text;
}

TEST(Shaping, OrdersLinesOfParagraphsThatRunBothWays) {
    Shaper* const shaper = Shaper::installed();
    ASSERT_TRUE(shaper);
    EXPECT_EQ(ordered(*shaper, U"ab \u05D0\u05D1 1", {7}), "ab 1< ><ב><א>|");
    EXPECT_EQ(ordered(*shaper, U"\u05D0(\u05D1) ab", {7}), "ab< ><(><ב><)><א>|");
    // Where a line ends, its blanks are at the end of the paragraph's way.
    EXPECT_EQ(ordered(*shaper, U"\u05D0 ab \u05D1", {5, 6}), "< >ab< ><א>|<ב>");
    EXPECT_EQ(ordered(*shaper, U"ab", {2}), "ab|");
}

TEST(Shaping, JoinsLettersByThoseBesideThem) {
    Shaper* const shaper = Shaper::installed();
    Fonts fonts(std::vector<std::wstring>{L"/usr/share/fonts/truetype/dejavu"});
    Typeface* const sans = fonts.find(L"DejaVu Sans", false, false);
    ASSERT_TRUE(shaper);
    ASSERT_TRUE(sans) << "fonts-dejavu-core is not installed";
    const auto shaped = [&](std::u32string_view text, std::size_t start, std::size_t count, bool toLeft) {
        std::vector<ShapedGlyph> glyphs;
        sans->shape(*shaper, text, start, count, toLeft, glyphs);
        return glyphs;
    };
    const auto isForm = [&](const ShapedGlyph& glyph, char32_t form, std::size_t character) {
        const std::uint32_t expected = sans->glyphOf(form);
        EXPECT_EQ(glyph.glyph, expected);
        EXPECT_EQ(glyph.character, character);
        EXPECT_NEAR(glyph.advance, sans->advanceOf(expected), 1e-9);
    };
    constexpr char32_t kFinal = 0xFE90, kInitial = 0xFE91, kMedial = 0xFE92, kLamAlef = 0xFEFB;
    const std::u32string_view beh = U"\u0628\u0628\u0628";
    const std::vector<ShapedGlyph> word = shaped(beh, 0, 3, true);
    ASSERT_EQ(word.size(), 3u);
    isForm(word[0], kFinal, 2);
    isForm(word[1], kMedial, 1);
    isForm(word[2], kInitial, 0);
    const std::vector<ShapedGlyph> within = shaped(beh, 1, 1, true);
    ASSERT_EQ(within.size(), 1u);
    isForm(within[0], kMedial, 1);
    // Two alphabets that run the same way, and two letters that become one.
    const std::vector<ShapedGlyph> mixed = shaped(U"\u05D0\u0644\u0627", 0, 3, true);
    ASSERT_EQ(mixed.size(), 2u);
    isForm(mixed[0], kLamAlef, 1);
    isForm(mixed[1], U'\u05D0', 0);
    // A vowel stands over its letter and takes no room.
    const std::vector<ShapedGlyph> vowel = shaped(U"\u0628\u064E", 0, 2, true);
    ASSERT_EQ(vowel.size(), 2u);
    EXPECT_EQ(std::min(vowel[0].advance, vowel[1].advance), 0);
    // However many there are, or alphabets in turn.
    constexpr std::size_t kMany = 100000;
    EXPECT_EQ(shaped(U"\u0628" + std::u32string(kMany - 1, U'\u064E'), 0, kMany, true).size(), kMany);
    std::u32string turns;
    for (std::size_t i = 0; i < kMany / 2; ++i) turns += U"\u05D0\u0628";
    const std::vector<ShapedGlyph> inTurn = shaped(turns, 0, kMany, true);
    ASSERT_EQ(inTurn.size(), kMany);
    isForm(inTurn.back(), U'\u05D0', 0);
}

}  // namespace
}  // namespace host
