// Which font texts are drawn in: the built-in strokes, or outlines of the fonts that are installed.
//
// A style whose font is an outline font, by its file or by the family that it names, is drawn in outlines; where that
// font is not installed in those of one that resembles it. Every other is drawn in strokes. A character that the font
// does not have is taken from any that has it. Scripts whose letters join or run to the left are shaped where the
// shaper is installed; all others are letters side by side.
#pragma once

#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "base/text.h"
#include "drawingdb/database.h"
#include "drawingdb/mtext_layout.h"
#include "torvelhost/fonts/fonts.h"

namespace host {

/// The characters that cannot be drawn, or not as they are written.
struct OddLetters {
    std::set<char32_t> missing;   // no font has them
    std::set<char32_t> unjoined;  // they would join with those beside them, or run to the left, had we a shaper

    void add(const OddLetters& others) {
        missing.insert(others.missing.begin(), others.missing.end());
        unjoined.insert(others.unjoined.begin(), others.unjoined.end());
    }
    /// "no font has 3 of the characters: ..." and the like.
    std::vector<std::wstring> told() const;
};

class Lettering {
  public:
    /// Null: the built-in strokes.
    using Font = Typeface*;
    struct Letter {
        Typeface* typeface = nullptr;  // null: the built-in strokes
        std::uint32_t glyph = 0;       // of the typeface; the character in the built-in strokes
        double advance = 0;
        std::size_t character = 0;  // the first of the text's characters that it shows
        OdGeVector2d offset;        // where it is drawn, from where it stands
    };

    /// The database is referenced. It is on unless its host says of the variable PLOTFONTS that it is off, or does not
    /// know it.
    explicit Lettering(OdDbDatabase& database);

    /// Reads the variable anew. True when texts look different.
    bool update();
    void forgetStyles();

    /// Whether any style is drawn in outlines.
    bool hasOutlineStyles();
    /// What a text with the style is drawn in.
    template <class Text>
    Font fontOf(const Text& text) {
        return hasOutlineStyles() ? fontOfStyle(text.textStyleName()) : nullptr;
    }
    /// Within a multi-line text in that font.
    Font fontOf(Font ofStyle, const drawingdb::MTextFormat& format);
    /// Whether the built-in font has all of it, or everything is drawn in it.
    bool isInStrokes(std::wstring_view text) const;
    /// What a line of text in one font shows, from left to right.
    std::vector<Letter> lettersOf(Font font, std::u32string_view text);
    /// How wide that is, in text heights.
    double widthOf(Font font, std::wstring_view text);

    /// Whether letters of the text join or run to the left, and can be drawn so.
    bool isShaped(std::u32string_view text) const;
    /// The same for a paragraph with a font for each character: line by line, where `ends` says where the lines end.
    std::vector<std::vector<Letter>> shapedLines(std::u32string_view paragraph, std::span<const Font> fonts,
                                                 std::span<const std::size_t> ends);

    const OddLetters& odd() const { return odd_; }

  private:
    struct Family {
        std::wstring name;
        bool bold = false, italic = false;
        bool operator<(const Family& other) const {
            return std::tie(name, bold, italic) < std::tie(other.name, other.bold, other.italic);
        }
    };
    void readStyles();
    Font fontOfStyle(const OdString& style);
    Font fontOfFamily(const Family& family);
    Letter letterOf(Font font, char32_t character, std::size_t place = 0);

    OdDbDatabase& database_;
    bool on_ = false, styled_ = false;
    std::map<std::wstring, Family, base::LessNoCase> styles_;  // those that are drawn in outlines
    std::map<Family, Font> families_;
    OddLetters odd_;
};

}  // namespace host
