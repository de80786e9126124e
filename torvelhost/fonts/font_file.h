// A font file: what its characters look like.
//
// Fonts come from anywhere, so every number in one is doubted: no table, glyph or name reaches beyond the file.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "drawingdb/ge.h"

namespace host {

struct BadFont : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Of an outline: from where it is to `to`, straight or along a cubic curve. A move begins a contour; contours are
/// closed, and what they turn round is filled unless they turn the other way round it.
struct OutlineStep {
    enum class Kind : std::uint8_t { kMove, kLine, kCurve };
    Kind kind = Kind::kMove;
    OdGePoint2d control1, control2, to;
};

/// One font of a file. Lengths are in heights of its capitals; y runs up from the baseline.
class FontFile {
  public:
    /// How many fonts there are in the bytes; 0: it is no font file.
    static int count(std::string_view bytes);

    /// Throws BadFont. The bytes are referenced.
    explicit FontFile(std::string_view bytes, int number = 0);
    ~FontFile();
    FontFile(const FontFile&) = delete;
    FontFile& operator=(const FontFile&) = delete;

    /// Its family, and its full name, in all languages.
    const std::vector<std::wstring>& names() const { return names_; }
    std::string_view bytes() const { return bytes_; }  ///< of the whole file
    int number() const { return number_; }             ///< of the font in the file
    /// The height of its capitals in its own units.
    double capitalHeight() const;
    int weight() const { return weight_; }  ///< 400: regular, 700: bold
    int width() const { return width_; }    ///< 5: regular, below: condensed
    bool isItalic() const { return italic_; }

    /// 0: it does not have the character.
    std::uint32_t glyphOf(char32_t character) const;
    double advanceOf(std::uint32_t glyph) const;
    /// Empty for a blank, and for a glyph that is damaged.
    std::vector<OutlineStep> outlineOf(std::uint32_t glyph) const;

  private:
    class Tables;
    class Outlines;

    void readNames();
    void readWeight();
    void readMetrics();
    void findCharacters() const;

    std::string_view bytes_;
    int number_;
    std::unique_ptr<Tables> tables_;
    mutable std::unique_ptr<Outlines> outlines_;  // once one is asked for
    std::vector<std::wstring> names_;
    int weight_ = 400, width_ = 5;
    bool italic_ = false;
    double unitsPerEm_ = 1000;
    std::uint32_t advances_ = 0;        // that the file tells; all other glyphs are as wide as the last of them
    mutable double capitalHeight_ = 0;  // in the file's units; 0: not asked for so far
    // Of the table that tells which character is which glyph; empty: not looked for so far.
    mutable std::string_view characters_;
    mutable int charactersFormat_ = -1;
    mutable bool symbols_ = false;
};

}  // namespace host
