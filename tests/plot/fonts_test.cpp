// Fonts by name and by character, and what their files hold.
#include "torvelhost/fonts/fonts.h"

#include <algorithm>

#include "base/files.h"
#include "base/text.h"
#include "gtest/gtest.h"

namespace host {
namespace {

std::string seed(const char* name) {
    return std::string(base::readFile(base::fromUtf8(std::string(TORVEL_SEED_FONTS "/") + name)).view());
}

Fonts seeds() { return Fonts(std::vector<std::wstring>{base::fromUtf8(TORVEL_SEED_FONTS)}); }

struct Box {
    double left = 1e9, bottom = 1e9, right = -1e9, top = -1e9;
};
Box boxOf(const Typeface::Contours& contours) {
    Box box;
    for (const auto& contour : contours) {
        for (const OdGePoint2d& p : contour) {
            box.left = std::min(box.left, p.x);
            box.right = std::max(box.right, p.x);
            box.bottom = std::min(box.bottom, p.y);
            box.top = std::max(box.top, p.y);
        }
    }
    return box;
}

TEST(Fonts, AreFoundByFamilyFileAndWeight) {
    Fonts fonts = seeds();
    Typeface* const regular = fonts.find(L"Seed", false, false);
    Typeface* const bold = fonts.find(L"SEED", true, false);
    ASSERT_TRUE(regular && bold);
    EXPECT_NE(regular, bold);
    EXPECT_EQ(bold->file().weight(), 700);
    EXPECT_EQ(fonts.find(L"seed.ttf", false, false), regular);
    EXPECT_EQ(fonts.find(L"fonts\\Seed_Bold.TTF", false, false), bold) << "a file is what it is";
    EXPECT_EQ(fonts.find(L"@seed", false, false), regular) << "text that runs down is drawn along";
    ASSERT_TRUE(fonts.find(L"Seed Two", false, false));
    EXPECT_NE(fonts.find(L"Seed Two", false, false), fonts.find(L"seed one", false, false));
    EXPECT_TRUE(fonts.find(L"Nowhere", false, false)) << "any is better than none";
    EXPECT_FALSE(Fonts(std::vector<std::wstring>{L"/nowhere"}).find(L"Seed", false, false));
    EXPECT_TRUE(fonts.withCharacter(U'\u0416'));
    EXPECT_FALSE(fonts.withCharacter(U'\u4E00'));
}

TEST(Fonts, DrawInHeightsOfCapitals) {
    Fonts fonts = seeds();
    for (const wchar_t* const name : {L"Seed", L"Seed Compact"}) {
        Typeface& font = *fonts.find(name, false, false);
        const std::uint32_t triangle = font.glyphOf(U'A');
        EXPECT_DOUBLE_EQ(font.advanceOf(triangle), 1.0);
        const Typeface::Contours& contours = font.contoursOf(triangle, 8);
        ASSERT_EQ(contours.size(), 2u) << "one is the hole";
        const Box box = boxOf(contours);
        EXPECT_NEAR(box.top, 1, 1e-12);
        EXPECT_NEAR(box.right, 600.0 / 700, 1e-12);
        EXPECT_EQ(font.glyphOf(U'Z'), 0u);
    }
    Typeface& font = *fonts.find(L"Seed", false, false);
    const Box parts = boxOf(font.contoursOf(font.glyphOf(U'C'), 8));
    EXPECT_EQ(font.contoursOf(font.glyphOf(U'C'), 8).size(), 3u);
    EXPECT_NEAR(parts.left, 0, 1e-12);
    EXPECT_NEAR(parts.bottom, 0, 1e-12) << "the box, at half its size";
    EXPECT_NEAR(parts.top, 800.0 / 700, 1e-12) << "the triangle, higher up";
    // Finer polygons come nearer to the curve, and have more corners.
    const std::uint32_t round = font.glyphOf(U'\u0416');
    EXPECT_LT(font.contoursOf(round, 3)[0].size(), font.contoursOf(round, 12)[0].size());
    EXPECT_NEAR(boxOf(font.contoursOf(round, 12)).top, 1, 1e-3);
}

// Fonts of alphabets without capitals say anything of their height, and some of their letters are wide.
TEST(Fonts, WithoutCapitalsHaveTheUsualHeight) {
    std::string bytes = seed("seed.ttf");
    const auto at = [&](const char* table) {
        const std::size_t entry = bytes.find(table);
        const auto byte = [&](std::size_t i) { return std::size_t{static_cast<std::uint8_t>(bytes[entry + i])}; };
        return byte(8) << 24 | byte(9) << 16 | byte(10) << 8 | byte(11);
    };
    const std::uint32_t triangle = FontFile(bytes, 0).glyphOf(U'A');
    bytes.replace(at("OS/2") + 88, 2, "\x01\xA4");                         // capitals of 420 thousandths
    bytes.replace(at("hmtx") + std::size_t{4} * triangle, 2, "\x08\x34");  // 2100
    Typeface font(std::make_unique<FontFile>(bytes, 0));
    EXPECT_DOUBLE_EQ(font.advanceOf(triangle), 3);
}

// Whatever is cut off or changed: it is refused, or something is drawn.
TEST(Fonts, SurviveDamage) {
    for (const char* const name : {"seed.ttf", "compact.otf", "two.ttc"}) {
        const std::string whole = seed(name);
        const auto use = [](const std::string& text) {
            const std::vector<char> bytes(text.begin(), text.end());
            const std::string_view view(bytes.data(), bytes.size());
            for (int i = 0; i < std::min(FontFile::count(view), 3); ++i) {
                try {
                    const FontFile file(view, i);
                    for (const char32_t c : {U'A', U'B', U'C', U'\u0416'}) file.outlineOf(file.glyphOf(c));
                    for (std::uint32_t glyph = 0; glyph < 8; ++glyph) file.outlineOf(glyph);
                } catch (const BadFont&) {
                    continue;
                }
            }
        };
        for (std::size_t size = 0; size < whole.size(); size += 3) use(whole.substr(0, size));
        for (std::size_t at = 0; at < whole.size(); ++at) {
            for (const char value : {'\0', '\x7F', '\xFF'}) {
                std::string changed = whole;
                changed[at] = value;
                use(changed);
            }
        }
    }
}

TEST(Fonts, EndAtAGlyphMadeOfItself) {
    std::string bytes = seed("seed.ttf");
    // The part of C that is the box becomes C.
    const std::string part("\x00\x2B\x00\x02\x00\x64", 6);
    const std::size_t at = bytes.find(part);
    ASSERT_NE(at, bytes.npos);
    bytes[at + 3] = 3;
    const FontFile file(bytes);
    EXPECT_TRUE(file.outlineOf(file.glyphOf(U'C')).empty());
    EXPECT_FALSE(file.outlineOf(file.glyphOf(U'A')).empty());
}

}  // namespace
}  // namespace host
