// The fonts that are installed: found by name, or by what they can write.
#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/mapped_file.h"
#include "torvelhost/fonts/font_file.h"
#include "torvelhost/fonts/shaper.h"

namespace host {

/// No glyph is wider, in heights of capitals: who looks for what may reach into a picture goes by it.
inline constexpr double kWidestGlyph = 4;

/// A font in use: what was worked out of it is kept. Lengths are in heights of its capitals.
class Typeface {
  public:
    using Contours = std::vector<std::vector<OdGePoint2d>>;

    explicit Typeface(std::unique_ptr<FontFile> file) : file_(std::move(file)) {}

    const FontFile& file() const { return *file_; }
    std::uint32_t glyphOf(char32_t character);
    /// At most kWidestGlyph.
    double advanceOf(std::uint32_t glyph);
    /// Closed polygons, no farther from the curves than a half to the power of `fineness`. They hold until others are
    /// asked for.
    const Contours& contoursOf(std::uint32_t glyph, int fineness);
    /// As ShapedFont::shape has them, but in heights of capitals, and none wider than kWidestGlyph.
    void shape(Shaper& shaper, std::u32string_view paragraph, std::size_t start, std::size_t count, bool toLeft,
               std::vector<ShapedGlyph>& glyphs);

  private:
    std::unique_ptr<FontFile> file_;
    std::unique_ptr<ShapedFont> shaped_;  // once something is shaped
    std::unordered_map<char32_t, std::uint32_t> glyphs_;
    std::unordered_map<std::uint32_t, double> advances_;
    std::unordered_map<std::uint64_t, Contours> contours_;  // forgotten when there are many
    std::size_t points_ = 0;                                // in them
};

class Fonts {
  public:
    /// Nothing is looked for before it is needed. Files that are no fonts, or damaged, are left out.
    explicit Fonts(std::vector<std::wstring> folders) : folders_(std::move(folders)) {}
    /// Those of the folders in the environment's TORVEL_FONTS, or else of the system. They are shared by all plots.
    static Fonts& installed();

    /// By a family's name, a full name, or the name of a file: the one that comes closest to being bold and italic as
    /// wanted; when there is none of that name, one that resembles it. Null when nothing is installed.
    Typeface* find(std::wstring_view name, bool bold, bool italic);
    /// Any that has the character; null when none has.
    Typeface* withCharacter(char32_t character);

  private:
    struct Wanted {
        bool bold = false, italic = false;
    };

    void look();
    void lookInto(const std::wstring& folder);
    void add(const std::wstring& path);
    Typeface* named(const std::wstring& plainName, Wanted wanted);
    Typeface* first(std::span<const wchar_t* const> names, Wanted wanted);

    std::vector<std::wstring> folders_;
    bool looked_ = false;
    std::deque<base::MappedFile> files_;
    std::deque<Typeface> typefaces_;
    std::unordered_multimap<std::wstring, std::size_t> byName_;  // which of the typefaces
    std::unordered_map<char32_t, Typeface*> byCharacter_;
};

}  // namespace host
