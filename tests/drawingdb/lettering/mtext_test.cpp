#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

#include "base/text.h"
#include "drawingdb/mtext_layout.h"
#include "drawingdb/mtext_parser.h"
#include "drawingdb/stroke_font.h"
#include "drawingdb/text_metrics.h"

namespace {

using namespace drawingdb;

// All that the layout placed, with a bar between lines.
std::wstring placedText(const MTextLayout& layout) {
    std::wstring text;
    for (const MTextLine& line : layout.lines) {
        if (&line != &layout.lines.front()) text += L'|';
        for (const MTextPlacedRun& run : line.runs)
            text += run.kind == MTextRunKind::Tab ? L"\t" : run.text + run.lower;
    }
    return text;
}

const MTextFormat& lastFormat(const std::vector<MTextParagraph>& paragraphs) {
    return paragraphs.back().runs.back().format;
}

TEST(MText, PlainText) {
    const struct {
        const wchar_t* contents;
        const wchar_t* plain;
    } cases[] = {
        {L"", L""},
        {L"one\\Ptwo\\Nthree", L"one\ntwo\nthree"},
        {L"one\\N", L"one"},
        {L"one\\P", L"one\n"},
        {L"{\\fArial|b1|i0|c0|p34;\\H2x;Bold} \\C1;\\Lred\\l", L"Bold red"},
        {L"a\\~b \\\\ \\{c\\}", L"a b \\ {c}"},
        {L"\\A1;{\\H0.7x;\\S1/2;} \\S1#2; 10\\S+0.1^ -0.2; \\S2^; m", L"1/2 1/2 10+0.1^-0.2 2 m"},
        {L"\\S1\\/2\\;/3; \\S12;", L"1/2;/3 12"},
        {L"\\pxi-3,l4t4;\u2022\tfirst\nsecond\r\x07 end", L"\u2022\tfirst\nsecond end"},
        {L"x^2^ ^I^J", L"x^2^ ^I^J"},
        {L"90%%d %%%%p%%c %%u5%%u", L"90\u00B0 %\u0025p\u2205 5"},
        {L"\\U+00B0 \\U+D83D\\U+DE00 \\u+0041", L"\u00B0 \U0001F600 \\u+0041"},
        {L"\\M+18268 \\M+5C3C5", L"\uFF29 \u95E8"},
        {L"\\T1.5;\\W.8;\\Q-15;\\c255;\\K\\k\\O\\ox", L"x"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(mtextPlainText(c.contents), c.plain) << testing::PrintToString(std::wstring(c.contents));
}

// A broken code stands as text; what follows it is read on.
TEST(MText, BrokenCodesShow) {
    const struct {
        const wchar_t* contents;
        const wchar_t* plain;
    } cases[] = {
        {L"end\\", L"end\\"},
        {L"\\H", L"\\H"},
        {L"\\Hx;\\Pb", L"\\Hx;\nb"},
        {L"\\H-;a", L"\\H-;a"},
        {L"\\Hnan;a", L"\\Hnan;a"},
        {L"\\H2", L""},
        {L"\\H1.2.3;", L".3;"},
        {L"\\fArial", L"\\fArial"},
        {L"\\pi1", L"\\pi1"},
        {L"\\S1/2", L"\\S1/2"},
        {L"\\S1/2\\;\\Pb", L"\\S1/2\\;\nb"},
        {L"\\U+12G4", L"\\U+12G4"},
        {L"\\U+D800 ", L"\uFFFD "},
        {L"\\U+123", L"\\U+123"},
        {L"\\M+98268", L"\\M+98268"},
        {L"\\M+1", L"\\M+1"},
        {L"\\Z\\5", L"\\Z\\5"},
        {L"}}a{{b}", L"ab"},
        {L"^", L"^"},
        {L"\\C999;a\\A7;\\c-1;b", L"ab"},
        {L"\\p;\\pq;\\pt,;\\pixyz;c", L"c"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(mtextPlainText(c.contents), c.plain) << testing::PrintToString(std::wstring(c.contents));
}

TEST(MText, Formats) {
    MTextFormat initial;
    initial.height = 2.5;
    const auto format = [&](const wchar_t* contents) { return lastFormat(parseMText(contents, initial)); };
    EXPECT_EQ(format(L"\\H2x;\\H3x;a").height, 15.0);
    EXPECT_EQ(format(L"\\H4;a").height, 4.0);
    EXPECT_EQ(format(L"{\\H4;a}b").height, 2.5);
    EXPECT_EQ(format(L"\\H0;\\H-1;a").height, 2.5);
    EXPECT_EQ(format(L"\\W0.8;a").widthFactor, 0.8);
    EXPECT_EQ(format(L"\\T2;a").tracking, 2.0);
    EXPECT_NEAR(format(L"\\Q-15;a").oblique, -kPi / 12.0, 1e-15);
    EXPECT_EQ(format(L"\\C3;a").color, OdCmColor::fromIndex(3));
    EXPECT_EQ(format(L"\\c255;a").color, OdCmColor::fromRgb(255, 0, 0));
    EXPECT_EQ(format(L"\\C3;{\\C4;a}b").color, OdCmColor::fromIndex(3));
    EXPECT_EQ(format(L"a").color, std::nullopt);
    EXPECT_EQ(format(L"\\A2;a").alignment, MTextLineAlignment::Top);
    EXPECT_TRUE(format(L"\\Fromans|c0|B1|I1;a").bold && format(L"\\Fromans|c0|B1|I1;a").italic);
    EXPECT_EQ(format(L"\\fTimes New Roman|b0|i0;a").font, L"Times New Roman");
    EXPECT_TRUE(format(L"\\L\\O\\Ka").underlined && format(L"\\O\\l\\Ka").overlined && format(L"\\Ka").struckThrough);
    EXPECT_FALSE(format(L"\\L\\la").underlined);

    const auto paragraphs = parseMText(L"\\pi1.5,l2,r3,qj,t8,4,c12;a\\Pb\\P\\pi*,l*,r*,q*,t;c", initial);
    ASSERT_EQ(paragraphs.size(), 3U);
    for (const std::size_t i : {0U, 1U}) {
        const MTextParagraphFormat& p = paragraphs[i].format;
        EXPECT_EQ(p.firstIndent, 1.5);
        EXPECT_EQ(p.leftIndent, 2.0);
        EXPECT_EQ(p.rightIndent, 3.0);
        EXPECT_EQ(p.justification, MTextJustification::Justified);
        EXPECT_EQ(p.tabStops, (std::vector<double>{4, 8, 12}));
    }
    EXPECT_EQ(paragraphs[2].format.firstIndent, 0.0);
    EXPECT_EQ(paragraphs[2].format.justification, MTextJustification::FromAttachment);
    EXPECT_TRUE(paragraphs[2].format.tabStops.empty());
}

TEST(MText, RunsAreCutOnlyWhereTheFormatChanges) {
    EXPECT_EQ(parseMText(L"a{b}c\\C256;d%%de").front().runs.size(), 2U);
    EXPECT_EQ(parseMText(L"a{\\C1;b}c").front().runs.size(), 3U);
    EXPECT_EQ(parseMText(L"a{\\C1;}b\\L\\lc").front().runs.size(), 1U + 2U)
        << "parted where something was set, even if empty";
}

// Heights as drawings of other programs store them: the first line's text, 5/3 a line, the last line's descenders.
TEST(MTextLayout, Heights) {
    const struct {
        const wchar_t* contents;
        double height;
        double spacing;
        double total;
    } cases[] = {
        {L"X", 100, 1, 100},
        {L"x", 100, 1, 100},
        {L"p", 100, 1, 400.0 / 3.0},
        {L"Xxp\nabc", 100, 1, 800.0 / 3.0},
        {L"a\\Pab\\PXpc\\Pabcdef", 20, 1, 120},
        {L"Xxp\\Pab\\PXpc", 20, 1, 280.0 / 3.0},
        {L"\\Pabc  \\Pabcabcabc\\Pa\\P\\Pb", 100, 1, 2800.0 / 3.0},
        {L"X\\PX", 100, 1.5, 350},
        {L"X\\P\\H2x;X", 100, 1, 100 + 2000.0 / 6.0},
        {L"X{\\H0.5x;\\A2;p}", 100, 1, 100},
        {L"", 100, 1, 100},
    };
    for (const auto& c : cases)
        EXPECT_NEAR(mtextLayout(c.contents, c.height, 0, 1, c.spacing).height, c.total, 1e-9)
            << testing::PrintToString(std::wstring(c.contents));
    MTextStyle exact;
    exact.exactLineSpacing = true;
    EXPECT_NEAR(mtextLayout(L"X\\P\\H2x;X", 100, 0, 1, 1, exact).height, 100 + 500.0 / 3.0, 1e-9);
}

TEST(MTextLayout, BreaksLines) {
    const double three = textExtents(L"abc abc abc", 1.0).width;
    const struct {
        const wchar_t* contents;
        double width;
        const wchar_t* lines;
    } cases[] = {
        {L"abc abc abc abc", three, L"abc abc abc |abc"},
        {L"abc abc abc abc", three * 0.999, L"abc abc |abc abc"},
        {L"abc abc", 0, L"abc abc"},
        {L"abcabcabcabcabc abc", 1, L"abcabcabcabcabc |abc"},
        {L"abc\\~abc abc", 1, L"abc\u00A0abc |abc"},
        {L"abc {\\C1;a}bc abc", 1, L"abc |abc |abc"},
        {L"abc   abc", 1, L"abc   |abc"},
        {L"a\\P\\Pb", 0.1, L"a||b"},
        {L"\u6F22\u5B57\u6F22", 1, L"\u6F22|\u5B57|\u6F22"},
        {L"a \\S1/2; b", 0.1, L"a |12 |b"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(placedText(mtextLayout(c.contents, 1.0, c.width, 1)), c.lines)
            << testing::PrintToString(std::wstring(c.contents)) << " in " << c.width;
}

TEST(MTextLayout, HangsOnItsAttachment) {
    for (int attachment = 1; attachment <= 9; ++attachment)
        for (const double width : {0.0, 8.0}) {
            const MTextLayout layout = mtextLayout(L"Long line\\Pshort gap\\Plonger than that", 1.0, width, attachment);
            const double dx = (attachment - 1) % 3 / 2.0, dy = (attachment - 1) / 3 / 2.0;
            const auto& [topLeft, topRight, bottomLeft, bottomRight] = layout.boundingPoints;
            EXPECT_NEAR(topLeft.x + (topRight.x - topLeft.x) * dx, 0.0, 1e-9) << attachment;
            EXPECT_NEAR(topLeft.y + (bottomLeft.y - topLeft.y) * dy, 0.0, 1e-9) << attachment;
            EXPECT_NEAR(bottomRight.x - bottomLeft.x, layout.width, 1e-9);
            EXPECT_NEAR(topRight.y - bottomRight.y, layout.height, 1e-9);
            for (const MTextLine& line : layout.lines)
                EXPECT_NEAR(line.position.x + line.width * dx, 0.0, 1e-9) << attachment;
        }
}

TEST(MTextLayout, FillsColumns) {
    // Lines of height 1 stand 5/3 apart: two in a column of 3, three in one of 5. Where each line begins:
    const struct {
        const char* what;
        MTextColumns columns;
        const wchar_t* contents;
        int attachment;
        std::vector<OdGePoint2d> starts;
    } cases[] = {
        {"equal ones",
         {4, 1, {3}, 0, false},
         L"a\\Pb\\Pc\\Pd\\Pe",
         1,
         {{0, -1}, {0, -8 / 3.0}, {5, -1}, {5, -8 / 3.0}, {10, -1}}},
        {"of their own heights",
         {4, 1, {3, 5, 0}, 3, false},
         L"a\\Pb\\Pc\\Pd\\Pe\\Pf",
         1,
         {{0, -1}, {0, -8 / 3.0}, {5, -1}, {5, -8 / 3.0}, {5, -13 / 3.0}, {10, -1}}},
        {"the last one runs over", {4, 1, {1}, 2, false}, L"a\\Pb\\Pc", 1, {{0, -1}, {5, -1}, {5, -8 / 3.0}}},
        {"by a code", {4, 1, {0}, 3, false}, L"a\\Nb\\Pc\\N", 1, {{0, -1}, {5, -1}, {5, -8 / 3.0}}},
        {"from the right", {4, 1, {1}, 3, true}, L"a\\Pb", 1, {{10, -1}, {5, -1}}},
        {"a line higher than its column", {4, 1, {0.5}, 0, false}, L"a\\Pb", 1, {{0, -1}, {5, -1}}},
        {"hung at its lower right",
         {4, 1, {3}, 2, false},
         L"\\pql;a\\Pb\\Pc",
         9,
         {{-9, 5 / 3.0}, {-9, 0}, {-4, 5 / 3.0}}},
        {"none", {0, 1, {1}, 3, true}, L"a\\Nb", 1, {{0, -1}, {0, -8 / 3.0}}},
    };
    for (const auto& c : cases) {
        MTextStyle style;
        style.columns = c.columns;
        const MTextLayout layout = mtextLayout(c.contents, 1.0, 50.0, c.attachment, 1.0, style);
        ASSERT_EQ(layout.lines.size(), c.starts.size()) << c.what;
        for (std::size_t i = 0; i < c.starts.size(); ++i)
            EXPECT_LT(layout.lines[i].position.distanceTo(c.starts[i]), 1e-9)
                << c.what << ", line " << i << ": " << layout.lines[i].position.x << ',' << layout.lines[i].position.y;
        EXPECT_NEAR(layout.boundingPoints[0].y - layout.boundingPoints[2].y, layout.height, 1e-9) << c.what;
    }
    // As long as its longest column, and lines are as wide as a column.
    MTextStyle style;
    style.columns = {4, 1, {3}, 0, false};
    EXPECT_NEAR(mtextLayout(L"a\\Pb\\Pc", 1.0, 0, 1, 1.0, style).height, 8 / 3.0, 1e-9);
    EXPECT_EQ(mtextLayout(L"word word word", 1.0, 50, 1, 1.0, style).lines.size(), 3U);
}

TEST(MTextLayout, PlacesRunsInALine) {
    // Tabs lead to the next stop; runs follow each other.
    const MTextLayout tabs = mtextLayout(L"\\pl1,t6,10;a\tb\t{\\C1;c}d\te", 2.0, 0, 1);
    const auto& runs = tabs.lines.front().runs;
    ASSERT_EQ(runs.size(), 8U);
    EXPECT_NEAR(runs[0].position.x, 2.0, 1e-12);
    EXPECT_NEAR(runs[2].position.x, 12.0, 1e-12);
    EXPECT_NEAR(runs[4].position.x, 20.0, 1e-12);
    EXPECT_NEAR(runs[5].position.x, runs[4].position.x + runs[4].width, 1e-12);
    EXPECT_NEAR(runs[7].position.x, 24.0, 1e-12) << "behind the last stop, every four text heights";

    // Smaller text at the bottom, middle and top of its line.
    const MTextLayout mixed = mtextLayout(L"X{\\H0.5x;\\A0;X\\A1;X\\A2;X}", 1.0, 0, 1);
    const double rises[] = {0.0, 0.0, 0.25, 0.5};
    for (std::size_t i = 0; i < std::size(rises); ++i)
        EXPECT_NEAR(mixed.lines[0].runs[i].position.y, -1.0 + rises[i], 1e-12);
}

TEST(MTextLayout, Justifies) {
    const double width = 12.0;
    const std::wstring text = L"some words that fill more than just two lines";
    for (const bool distributed : {false, true}) {
        const MTextLayout layout = mtextLayout((distributed ? L"\\pqd;" : L"\\pqj;") + text, 1.0, width, 1);
        ASSERT_GE(layout.lines.size(), 3U);
        for (const MTextLine& line : layout.lines) {
            const bool last = &line == &layout.lines.back();
            if (last && !distributed) {
                EXPECT_LT(line.width, width);
                continue;
            }
            EXPECT_NEAR(line.width, width, 1e-9);
            double end = 0.0;
            for (const MTextPlacedRun& run : line.runs) {
                EXPECT_GE(run.position.x, end - 1e-9);
                if (run.text.front() != L' ') end = run.position.x + run.width;
            }
            EXPECT_NEAR(end, width, 1e-9);
        }
    }
    const MTextLayout mixed = mtextLayout(L"\\pql;a\\P\\pqc;a\\P\\pqr;a", 1.0, width, 1);
    const double a = textExtents(L"a", 1.0).width;
    EXPECT_NEAR(mixed.lines[0].position.x, 0.0, 1e-12);
    EXPECT_NEAR(mixed.lines[1].position.x, (width - a) / 2, 1e-12);
    EXPECT_NEAR(mixed.lines[2].position.x, width - a, 1e-12);
    EXPECT_EQ(mtextLayout(L"\\pi1,l2,r3;aa aa aa", 1.0, 9.0, 1).lines[1].position.x, 2.0);
}

TEST(MTextLayout, ItalicsLeanWhereTheyStand) {
    const auto stem = [](const wchar_t* contents) {  // of an l
        const MTextLayout layout = mtextLayout(contents, 1.0, 0, 1);
        const Polyline2d stroke = mtextRunStrokes(layout.lines[0].runs[0])[0];
        const auto [low, high] =
            std::minmax_element(stroke.begin(), stroke.end(), [](const auto& a, const auto& b) { return a.y < b.y; });
        return std::atan2(high->x - low->x, high->y - low->y);
    };
    EXPECT_NEAR(stem(L"\\fArial|i0;I"), 0.0, 1e-9);
    EXPECT_NEAR(stem(L"\\fArial|i1;I"), kPi / 12, 1e-9);
    EXPECT_NEAR(stem(L"\\Q15;\\fArial|i1;I"), kPi / 6, 1e-9);
}

TEST(MTextLayout, StrokesStayInTheirRun) {
    for (const wchar_t* contents : {L"Text", L"\\S1/22;", L"\\S11#2;", L"\\S+0.1^ -0.25;", L"\\W2;\\T1.5;wide"}) {
        const MTextLayout layout = mtextLayout(contents, 2.5, 0, 1);
        for (const MTextPlacedRun& run : layout.lines[0].runs) {
            const auto strokes = mtextRunStrokes(run);
            ASSERT_FALSE(strokes.empty());
            for (const Polyline2d& stroke : strokes)
                for (const OdGePoint2d& p : stroke) {
                    EXPECT_GE(p.x, run.position.x);
                    EXPECT_LE(p.x, run.position.x + run.width + 1e-9);
                    EXPECT_LE(p.y, 1e-9) << "the line's top is at zero";
                    EXPECT_GE(p.y, -layout.height - 1e-9);
                }
        }
    }
}

// Whatever the contents, every character that a reader sees is placed once, and on a line no wider than it must be.
TEST(MTextLayout, LosesNothingOfRandomContents) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 engine(seed);
    const std::vector<std::wstring> pieces = {
        L"word ",   L"x",          L" ",    L"\\",       L"{",     L"}",    L";",      L"\\P", L"\\H2x;",
        L"\\H.4x;", L"\\S1/2;",    L"\\S",  L"/",        L"\\f",   L"\\pi", L"\\pqj;", L"\t",  L"^",
        L"%%",      L"%%d",        L"\\U+", L"D83D",     L"\\M+1", L"-",    L"1e9x;",  L"|",   L"\\A1;",
        L"\u6F22",  L"\U0001F600", L"\\C",  L"\\pt1,2;", L"\\~",   L"\n"};
    for (int i = 0; i < 2000; ++i) {
        std::wstring contents;
        for (std::size_t n = engine() % 40; n > 0; --n) contents += pieces[engine() % pieces.size()];
        SCOPED_TRACE(testing::PrintToString(contents));
        const double width = static_cast<double>(engine() % 3) * 7.0;
        const MTextLayout layout = mtextLayout(contents, 1.0, width, static_cast<int>(engine() % 11));

        // What parts lines, and the parts of a stack, is told apart differently.
        const auto compared = [](std::wstring text) {
            std::erase_if(text,
                          [](wchar_t c) { return std::wstring_view(L"|/^\n").find(c) != std::wstring_view::npos; });
            return base::replaceAll(text, L"\u00A0", L" ");
        };
        ASSERT_EQ(compared(placedText(layout)), compared(mtextPlainText(contents)));
        ASSERT_TRUE(std::isfinite(layout.width) && std::isfinite(layout.height));
        for (const MTextLine& line : layout.lines)
            for (const MTextPlacedRun& run : line.runs) mtextRunStrokes(run);
    }
}

// Codes that look for their end must not each search all that follows: that would take hours here.
TEST(MText, LongBrokenContentsAreReadInLinearTime) {
    for (const wchar_t* piece :
         {L"\\f", L"\\p", L"\\S", L"\\S\\;", L"{", L"}", L"\\", L"{\\L", L"\\S1/2;", L"a ", L"\\H2x;", L"%%"}) {
        std::wstring contents;
        while (contents.size() < 1000000) contents += piece;
        EXPECT_EQ(mtextPlainText(contents), mtextPlainText(contents + L"{}"));
    }
    EXPECT_EQ(mtextLayout(std::wstring(300000, L'{') + L"a b c" + std::wstring(300000, L'}'), 1.0, 0.1, 1).lines.size(),
              3U);
}

}  // namespace
