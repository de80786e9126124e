
#include "drawingdb/text_metrics.h"

#include <gtest/gtest.h>

#include "drawingdb/stroke_font.h"

namespace {

using namespace drawingdb;

constexpr TextHorizontal kHorizontals[] = {TextHorizontal::Left,    TextHorizontal::Center, TextHorizontal::Right,
                                           TextHorizontal::Aligned, TextHorizontal::Middle, TextHorizontal::Fit};
constexpr TextVertical kVerticals[] = {TextVertical::Baseline, TextVertical::Bottom, TextVertical::Middle,
                                       TextVertical::Top};

void expectNear(const OdGePoint2d& a, const OdGePoint2d& b, const std::string& what) {
    EXPECT_NEAR(a.x, b.x, 1e-9) << what;
    EXPECT_NEAR(a.y, b.y, 1e-9) << what;
}

std::u32string charactersOf(std::wstring_view text) {
    std::u32string characters;
    for (const TextCharacter& c : decodeControlCodes(text)) characters += c.character;
    return characters;
}

TEST(StrokeFont, GlyphsKeepToTheirRoom) {
    std::u32string characters = U"∠⟂⏥⌓○∥⌭↗⌯⌖⌒ⓁⓂⓅ◎Ⓢ⌰⏤";
    for (const char32_t c : characters) EXPECT_TRUE(hasStrokeGlyph(c)) << static_cast<unsigned>(c);
    for (char32_t c = U'!'; c <= 0x17F; ++c) characters += c;
    for (const char32_t c : characters) {
        const StrokeGlyph& glyph = strokeGlyph(c);
        if (c >= 0x7F && c <= 0xA0) {
            EXPECT_TRUE(glyph.strokes.empty()) << static_cast<unsigned>(c);
            continue;
        }
        ASSERT_FALSE(glyph.strokes.empty()) << static_cast<unsigned>(c);
        for (const Polyline2d& stroke : glyph.strokes) {
            EXPECT_GE(stroke.size(), 2U) << static_cast<unsigned>(c);
            for (const OdGePoint2d& p : stroke) {
                EXPECT_GT(p.x, 0.0) << static_cast<unsigned>(c);
                EXPECT_LT(p.x, glyph.advance) << static_cast<unsigned>(c);
                EXPECT_GE(p.y, -1.0 / 3.0) << static_cast<unsigned>(c);
                EXPECT_LT(p.y, 1.4) << static_cast<unsigned>(c);
            }
        }
    }
}

TEST(StrokeFont, SectionSignIsDrawn) { EXPECT_NE(strokeGlyph(U'§').strokes, strokeGlyph(U'\u6F22').strokes); }

TEST(StrokeFont, HeightsOfLetters) {
    for (const char32_t c : std::u32string_view(U"ABCDEFGHIJKLMNOPRSTUVWXYZ0123456789bdfhkl")) {
        EXPECT_DOUBLE_EQ(strokeGlyph(c).top, 1.0) << static_cast<char>(c);
        EXPECT_DOUBLE_EQ(strokeGlyph(c).bottom, 0.0) << static_cast<char>(c);
    }
    for (const char32_t c : std::u32string_view(U"gjpqy"))
        EXPECT_DOUBLE_EQ(strokeGlyph(c).bottom, -1.0 / 3.0) << static_cast<char>(c);
}

TEST(StrokeFont, ComposedAndUnknownCharacters) {
    EXPECT_EQ(strokeGlyph(U'ä').advance, strokeGlyph(U'a').advance);
    EXPECT_EQ(strokeGlyph(U'Ñ').advance, strokeGlyph(U'N').advance);
    EXPECT_GT(strokeGlyph(U'Ä').top, 1.0);
    EXPECT_LT(strokeGlyph(U'Ç').bottom, 0.0);
    EXPECT_EQ(strokeGlyph(U'\u2300').strokes, strokeGlyph(U'\u2205').strokes);
    EXPECT_EQ(strokeGlyph(U'\u6F22').strokes, strokeGlyph(U'\U0001F600').strokes) << "one box for all";
    EXPECT_EQ(strokeGlyph(U'\n').advance, 0.0);
    EXPECT_EQ(strokeGlyph(0x110000).strokes.size(), 1U);
}

TEST(SingleLineText, ControlCodes) {
    const struct {
        const wchar_t* text;
        const char32_t* characters;
    } cases[] = {
        {L"45%%d", U"45°"},     {L"%%P0.1 %%C20", U"±0.1 \u220520"},     {L"50%%%", U"50%"},
        {L"%%065%%066", U"AB"}, {L"%%127%%128%%129%%176", U"°±\u2205°"}, {L"100%", U"100%"},
        {L"%%", U"%%"},         {L"%%x %%12 %%1x3", U"%%x %%12 %%1x3"},  {L"%%%%d", U"%%d"},
        {L"%%uab%%u", U"ab"},   {L"\U0001F600%%d", U"\U0001F600°"},      {L"", U""},
    };
    for (const auto& c : cases)
        EXPECT_TRUE(charactersOf(c.text) == c.characters) << testing::PrintToString(std::wstring(c.text));

    const auto row = decodeControlCodes(L"a%%ub%%oc%%ud%%k");
    EXPECT_EQ(row, (std::vector<TextCharacter>{{U'a', false, false, false},
                                               {U'b', true, false, false},
                                               {U'c', true, true, false},
                                               {U'd', false, true, false}}));
    // An underline is one line however many characters it runs under.
    EXPECT_EQ(textStrokes(L"%%uII%%uI%%uI", {}).size(), 4U + 2U);
}

TEST(SingleLineText, Extents) {
    const TextExtents one = textExtents(L"Type", 1.0);
    EXPECT_DOUBLE_EQ(one.ascent, 1.0);
    EXPECT_DOUBLE_EQ(one.descent, 1.0 / 3.0);
    EXPECT_GT(one.left, 0.0);
    EXPECT_LT(one.right, one.width);
    const TextExtents wide = textExtents(L"Type", 2.5, 0.8);
    EXPECT_NEAR(wide.width, one.width * 2.0, 1e-12);
    EXPECT_NEAR(wide.ascent, 2.5, 1e-12);
    EXPECT_EQ(textExtents(L"%%uType%%u", 1.0).width, one.width);
    EXPECT_EQ(textExtents(L"ace", 1.0).descent, 0.0);
    EXPECT_EQ(textExtents(L"   ", 1.0).ascent, 0.0);
    EXPECT_EQ(textExtents(L"", 1.0).width, 0.0);
    // Slanting moves the top, not the end.
    const TextExtents slanted = textExtents(L"H", 1.0, 1.0, kPi / 4.0);
    EXPECT_EQ(slanted.width, textExtents(L"H", 1.0).width);
    EXPECT_NEAR(slanted.right, textExtents(L"H", 1.0).right + 1.0, 1e-12);
    EXPECT_NEAR(textExtents(L"H", 1.0, 1.0, -kPi / 4.0).left, textExtents(L"H", 1.0, 1.0, kTwoPi - kPi / 4.0).left,
                1e-9)
        << "files give a slant to the left as an angle near the whole turn";
}

// The offsets from the insertion point to the alignment point, as drawings of other programs have them.
TEST(SingleLineText, VerticalOffsets) {
    const struct {
        TextHorizontal horizontal;
        TextVertical vertical;
        double dy;  // in text heights
    } cases[] = {
        {TextHorizontal::Right, TextVertical::Top, 1.0},
        {TextHorizontal::Left, TextVertical::Middle, 0.5},
        {TextHorizontal::Center, TextVertical::Bottom, -1.0 / 3.0},
        {TextHorizontal::Center, TextVertical::Baseline, 0.0},
        {TextHorizontal::Middle, TextVertical::Baseline, 1.0 / 3.0},
    };
    for (const auto& c : cases) {
        TextGeometry g;
        g.height = 25.0;
        g.horizontal = c.horizontal;
        g.vertical = c.vertical;
        g.alignmentPoint.set(1000, 2000);
        EXPECT_NEAR((2000 - alignText(L"Xxp middle", g).position.y) / g.height, c.dy, 1e-9)
            << static_cast<int>(c.horizontal) << ' ' << static_cast<int>(c.vertical);
    }
}

TEST(SingleLineText, HangsOnItsAlignmentPoint) {
    const std::wstring text = L"Door 2.10";
    for (const TextHorizontal horizontal : kHorizontals)
        for (const TextVertical vertical : kVerticals)
            for (const bool backwards : {false, true})
                for (const bool upsideDown : {false, true}) {
                    TextGeometry g;
                    g.position.set(-7, 3);
                    g.alignmentPoint.set(20, 31);
                    g.height = 2.5;
                    g.rotation = 0.7;
                    g.widthFactor = 0.8;
                    g.horizontal = horizontal;
                    g.vertical = vertical;
                    g.mirroredInX = backwards;
                    g.mirroredInY = upsideDown;
                    const std::string what = "mode " + std::to_string(static_cast<int>(horizontal)) + ' ' +
                                             std::to_string(static_cast<int>(vertical)) +
                                             (backwards ? " backwards" : "") + (upsideDown ? " upside down" : "");
                    const TextGeometry aligned = alignText(text, g);
                    const auto corners =
                        textBoundingPoints(text, aligned);  // nothing of this text is below the baseline
                    const auto along = [&](double t) { return corners[0] + (corners[1] - corners[0]) * t; };
                    const OdGeVector2d up = corners[3] - corners[0];
                    const OdGeVector2d baseline(std::cos(aligned.rotation), std::sin(aligned.rotation));
                    EXPECT_EQ((corners[1] - corners[0]).dotProduct(baseline) > 0.0, !backwards) << what;
                    EXPECT_EQ(up.dotProduct(baseline.perpVector()) > 0.0, !upsideDown) << what;

                    if (horizontal == TextHorizontal::Aligned || horizontal == TextHorizontal::Fit) {
                        EXPECT_EQ(aligned.position, g.position);
                        expectNear(corners[backwards ? 1 : 0], g.position, what);
                        expectNear(corners[backwards ? 0 : 1], g.alignmentPoint, what);
                        EXPECT_EQ(aligned.height == g.height, horizontal == TextHorizontal::Fit);
                        EXPECT_EQ(aligned.widthFactor == g.widthFactor, horizontal == TextHorizontal::Aligned);
                        continue;
                    }
                    if (horizontal == TextHorizontal::Left && vertical == TextVertical::Baseline) {
                        EXPECT_EQ(aligned.position, g.position);
                        continue;
                    }
                    const double share = horizontal == TextHorizontal::Left    ? 0.0
                                         : horizontal == TextHorizontal::Right ? 1.0
                                                                               : 0.5;
                    const double raise = horizontal == TextHorizontal::Middle ? 0.5
                                         : vertical == TextVertical::Bottom   ? -1.0 / 3.0
                                         : vertical == TextVertical::Middle   ? 0.5
                                         : vertical == TextVertical::Top      ? 1.0
                                                                              : 0.0;
                    expectNear(along(share) + up * raise, g.alignmentPoint, what);
                    EXPECT_EQ(aligned.rotation, g.rotation);
                }
}

TEST(SingleLineText, WhatCannotBeFittedStays) {
    TextGeometry g;
    g.horizontal = TextHorizontal::Fit;
    g.rotation = 1.0;
    g.alignmentPoint = g.position = {4, 4};
    EXPECT_EQ(alignText(L"abc", g).widthFactor, 1.0) << "no room";
    EXPECT_EQ(alignText(L"abc", g).rotation, 1.0);
    g.alignmentPoint = {8, 4};
    EXPECT_EQ(alignText(L"", g).widthFactor, 1.0) << "no text";
    EXPECT_EQ(alignText(L"abc", g).rotation, 0.0);
    g.horizontal = TextHorizontal::Middle;
    g.rotation = 0.0;
    expectNear(alignText(L"", g).position, {8, 3.5}, "an empty text still has a height");
}

}  // namespace
