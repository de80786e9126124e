// How single-line text looks and how much room it takes in the built-in font.
//
// Lengths are drawing units; angles are radians; points lie in the text's own plane. Nothing here fails: a code that
// makes no sense shows as it stands.
//
// Control codes: %%d degree, %%p plus-minus, %%c diameter, %%% per cent, %%nnn (three decimal digits) the character of
// that number, where 127, 128 and 129 are the degree, plus-minus and diameter signs of old fonts; %%u %%o %%k switch an
// underline, overline and strike-through on and off.
#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "drawingdb/stroke_font.h"

namespace drawingdb {

struct TextCharacter {
    char32_t character = 0;
    bool underlined = false;
    bool overlined = false;
    bool struckThrough = false;

    bool operator==(const TextCharacter&) const = default;
};

DRAWINGDB_API std::vector<TextCharacter> decodeControlCodes(std::wstring_view text);

/// Measured from the insertion point, the start of the baseline.
struct TextExtents {
    double width = 0.0;              ///< to where the next character would begin
    double ascent = 0.0;             ///< of the strokes above the baseline
    double descent = 0.0;            ///< of the strokes below the baseline; not negative
    double left = 0.0, right = 0.0;  ///< of the strokes, slanted by the oblique angle
};

DRAWINGDB_API TextExtents textExtents(std::wstring_view text, double height, double widthFactor = 1.0,
                                      double oblique = 0.0);

enum class TextHorizontal : int { Left = 0, Center = 1, Right = 2, Aligned = 3, Middle = 4, Fit = 5 };
enum class TextVertical : int { Baseline = 0, Bottom = 1, Middle = 2, Top = 3 };

/// Where and how a single-line text stands in its plane.
struct TextGeometry {
    OdGePoint2d position;        ///< the insertion point: the start of the baseline
    OdGePoint2d alignmentPoint;  ///< what justified text hangs on; the end of the baseline of aligned and fitted text
    double height = 1.0;
    double rotation = 0.0;
    double widthFactor = 1.0;
    double oblique = 0.0;
    TextHorizontal horizontal = TextHorizontal::Left;
    TextVertical vertical = TextVertical::Baseline;
    bool mirroredInX = false;  ///< backwards
    bool mirroredInY = false;  ///< upside down
};

/// The geometry with what follows from the alignment brought up to date.
///
/// Left and baseline: nothing. Aligned and fit: the rotation is the direction from the position to the alignment point,
/// and the height (aligned) or the width factor (fit) makes the text end there; when the points coincide or the text
/// has no width, nothing changes. Every other: the position, so that the text hangs on the alignment point. Middle is
/// the middle of the strokes, descenders included, whereas the vertical middle is half the height of capitals; bottom
/// is where descenders end.
DRAWINGDB_API TextGeometry alignText(std::wstring_view text, const TextGeometry& geometry);

/// The same for text that is as large as that at the geometry's height and width factor, in whatever font.
DRAWINGDB_API TextGeometry alignText(const TextExtents& extents, const TextGeometry& geometry);

/// From the unturned text, whose baseline begins at the origin, to its place.
class DRAWINGDB_API TextFrame {
  public:
    /// `width` is that of the text.
    TextFrame(const TextGeometry& geometry, double width);
    OdGeVector2d turned(const OdGeVector2d& v) const;
    OdGePoint2d operator()(const OdGePoint2d& p) const { return position_ + turned(p.asVector()); }

  private:
    OdGePoint2d position_;
    double cosine_, sine_, xSign_, ySign_, shift_;
};

/// What to draw, for an up-to-date geometry.
DRAWINGDB_API std::vector<Polyline2d> textStrokes(std::wstring_view text, const TextGeometry& geometry);
/// The corners of the upright box around the unslanted text, turned with it: lower left, lower right, upper right,
/// upper left as one reads it. From the text's start to its end and from its lowest to its highest stroke.
DRAWINGDB_API std::array<OdGePoint2d, 4> textBoundingPoints(std::wstring_view text, const TextGeometry& geometry);

// ---- rows of characters, for those who draw them in another font

/// Where what is drawn goes: from units of the text height to the text's plane, with the origin at the start of the
/// baseline.
struct StrokePen {
    double height = 1.0;
    double widthFactor = 1.0;
    double slant = 0.0;  // x per y: the tangent of the oblique angle
    OdGePoint2d origin;

    OdGePoint2d operator()(double x, double y) const {
        return {origin.x + (x * widthFactor + y * slant) * height, origin.y + y * height};
    }
};

/// The tangent of an oblique angle; one that would lay the text flat is limited to 85 degrees.
DRAWINGDB_API double slantOf(double oblique);

struct TextRow {
    std::vector<TextCharacter> characters;
    std::vector<double> starts;  ///< of each character, and where the last one ends; in text heights
    StrokePen pen;
};

/// In the built-in font. Tracking widens the room of each character.
DRAWINGDB_API TextRow textRow(std::vector<TextCharacter> characters, const StrokePen& pen, double tracking = 1.0);
/// Lines under, over and through it: one for each stretch of characters.
DRAWINGDB_API std::vector<Polyline2d> rulesOf(const TextRow& row);

}  // namespace drawingdb
