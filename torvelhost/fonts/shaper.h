// Scripts whose letters join, stand over each other or run to the left: which of a font's glyphs show a text, and in
// which order they stand.
//
// What knows the scripts is in a library of its own, which is loaded when a text needs it and may be missing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace host {

/// Lengths are in the font's own units.
struct ShapedGlyph {
    std::uint32_t glyph = 0;
    std::size_t character = 0;  ///< the first in the paragraph of those that it shows
    double advance = 0;
    double x = 0, y = 0;  ///< where it is drawn, from where it stands
};

/// A font as the shaper knows it.
class ShapedFont {
  public:
    virtual ~ShapedFont() = default;
    /// Adds the glyphs of `count` characters of the paragraph that run one way, from left to right; those beside them
    /// decide how they join.
    virtual void shape(std::u32string_view paragraph, std::size_t start, std::size_t count, bool toLeft,
                       std::vector<ShapedGlyph>& glyphs) = 0;
};

class Shaper {
  public:
    virtual ~Shaper() = default;

    /// Null where the library, or one that it needs, is not installed. It stays loaded.
    static Shaper* installed();

    /// The file's bytes are referenced.
    virtual std::unique_ptr<ShapedFont> open(std::string_view fontFile, int number) = 0;

    struct Ordered {
        std::size_t character = 0;  ///< its place in the paragraph
        char32_t shown = 0;         ///< what is drawn of it: brackets that run to the left are turned round
        bool toLeft = false;
    };
    /// A paragraph's characters line by line, each line from left to right. `ends` says where the lines end. The
    /// paragraph runs the way of its first letter.
    virtual std::vector<Ordered> order(std::u32string_view paragraph, std::span<const std::size_t> ends) = 0;
};

}  // namespace host
