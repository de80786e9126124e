// The input is a font file. What its fonts are, have and look like is asked for, and what texts look like in them.
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "fuzz/fuzz.h"
#include "torvelhost/fonts/fonts.h"

namespace {

using fuzz::require;

void look(const std::string_view bytes, int number) {
    host::Typeface typeface(std::make_unique<host::FontFile>(bytes, number));
    const auto look = [&](std::uint32_t glyph) {
        const double advance = typeface.advanceOf(glyph);
        require(advance >= 0 && advance <= host::kWidestGlyph, "an advance is moderate");
        for (const auto& contour : typeface.contoursOf(glyph, 4)) {
            require(!contour.empty(), "a contour has points");
            for (const OdGePoint2d& point : contour)
                require(std::isfinite(point.x) && std::isfinite(point.y), "points are somewhere");
        }
    };
    for (std::uint32_t glyph = 0; glyph < 24; ++glyph) look(glyph);
    look(0xFFFF);
    for (const char32_t character : {U'A', U'g', U'\u00E4', U'\u0416', U'\u4E00', U'\U0001F600'})
        if (const std::uint32_t glyph = typeface.glyphOf(character)) look(glyph);

    host::Shaper* const shaper = host::Shaper::installed();
    if (!shaper) return;
    constexpr std::u32string_view kText = U"\u05D0\u0628\u064E\u0644\u0627\u0915\u094D\u0937\u093F\u0E01\u0E33AV";
    std::vector<host::ShapedGlyph> glyphs;
    for (const bool toLeft : {false, true}) typeface.shape(*shaper, kText, 1, kText.size() - 1, toLeft, glyphs);
    for (const host::ShapedGlyph& glyph : glyphs) {
        require(glyph.advance >= 0 && glyph.advance <= host::kWidestGlyph, "an advance is moderate");
        require(std::fabs(glyph.x) <= host::kWidestGlyph && std::fabs(glyph.y) <= host::kWidestGlyph,
                "a glyph is drawn where it stands");
        require(glyph.character >= 1 && glyph.character < kText.size(), "a glyph shows one of the characters");
        look(glyph.glyph);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // What lies behind the bytes is not theirs.
    const std::vector<char> copy(data, data + size);
    const std::string_view bytes(copy.data(), copy.size());
    for (int i = 0; i < std::min(host::FontFile::count(bytes), 4); ++i) {
        try {
            look(bytes, i);
        } catch (const host::BadFont&) {
            continue;
        }
    }
    return 0;
}
