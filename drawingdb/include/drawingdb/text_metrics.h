// How text looks and how much room it takes: one built-in single-stroke font, the same on every platform.
//
// Text styles name fonts that this machine need not have. So that a drawing is laid out alike everywhere, all text is
// measured and drawn with this one font, whatever its style says. Lengths are drawing units unless a text height is
// named as the unit; angles are radians; points lie in the text's own plane. Nothing here fails: text that makes no
// sense (a broken formatting code) shows as it stands.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "drawingdb/color.h"
#include "drawingdb/ge.h"

namespace torvel {

using Polyline2d = std::vector<OdGePoint2d>;

// ---- The font

/// The drawing of one character in units of the text height: capitals reach from 0 to 1, descenders to -1/3.
struct StrokeGlyph {
    double advance = 0.0;  ///< to the next character
    std::vector<Polyline2d> strokes;
    double left = 0.0, right = 0.0, bottom = 0.0, top = 0.0;  ///< the box around the strokes; zero without strokes
};

/// Covers ASCII, the letters and most signs of Latin-1, the diameter sign and some punctuation; any other character is
/// a box. Control characters take no room, but a tab is a blank. The reference stays valid.
DRAWINGDB_API const StrokeGlyph& strokeGlyph(char32_t character);

// ---- Single-line text
//
// Control codes: %%d degree, %%p plus-minus, %%c diameter, %%% per cent, %%nnn (three decimal digits) the character of
// that number, where 127, 128 and 129 are the degree, plus-minus and diameter signs of old fonts; %%u %%o %%k switch an
// underline, overline and strike-through on and off.

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

/// What to draw, for an up-to-date geometry.
DRAWINGDB_API std::vector<Polyline2d> textStrokes(std::wstring_view text, const TextGeometry& geometry);
/// The corners of the upright box around the unslanted text, turned with it: lower left, lower right, upper right,
/// upper left as one reads it. From the text's start to its end and from its lowest to its highest stroke.
DRAWINGDB_API std::array<OdGePoint2d, 4> textBoundingPoints(std::wstring_view text, const TextGeometry& geometry);

// ---- Multi-line text
//
// Contents are paragraphs with formatting codes:
//     \P \N         next paragraph, next column
//     \~            blank that does not break         \\ \{ \}   the character itself
//     \L \O \K      underline, overline, strike-through on; \l \o \k off
//     \fNAME|b1|i1; font, bold, italic (also \F)
//     \H2.5; \H2x;  height, or a multiple of the present one; \W and \T likewise for width factor and tracking
//     \Q15;         oblique angle in degrees
//     \C1; \c255;   colour number, true colour (blue highest)
//     \A0;          smaller text stands at the bottom, middle (1) or top (2) of the line
//     \S1/2;        stacked: / a fraction, # a slanted one, ^ a tolerance
//     \pi1,l2,r3,qc,t4,8;  indents of the first line, the left and the right, justification, tab stops, in text heights
//     \U+XXXX \M+nXXXX     a character by its number, by its bytes in a double-byte code page
//     { }           formats set inside end here
// besides the %% codes of single-line text, tabs, and line feeds, which begin a paragraph; other control characters do
// not show. Carets are themselves: what ^I and the like mean in a file, the file's reader has undone.

enum class MTextLineAlignment : int { Bottom = 0, Middle = 1, Top = 2 };

struct MTextFormat {
    double height = 1.0;
    double widthFactor = 1.0;
    double oblique = 0.0;
    double tracking = 1.0;
    std::optional<OdCmColor> color;  ///< none: the text's own
    std::wstring font;               ///< empty: the style's
    bool bold = false;
    bool italic = false;
    bool underlined = false;
    bool overlined = false;
    bool struckThrough = false;
    MTextLineAlignment alignment = MTextLineAlignment::Bottom;

    bool operator==(const MTextFormat&) const = default;
};

enum class MTextRunKind { Text, Tab, Stack };

/// Characters in one format, a tab, or a stack.
struct MTextRun {
    MTextRunKind kind = MTextRunKind::Text;
    std::wstring text;         ///< of a stack: the upper part
    std::wstring lower;        ///< of a stack only
    wchar_t separator = L'/';  ///< of a stack: / # or ^
    MTextFormat format;
};

enum class MTextJustification { FromAttachment, Left, Center, Right, Justified, Distributed };

/// Lengths in units of the nominal text height.
struct MTextParagraphFormat {
    double firstIndent = 0.0;  ///< of the first line, added to the left indent
    double leftIndent = 0.0;
    double rightIndent = 0.0;
    std::vector<double> tabStops;
    MTextJustification justification = MTextJustification::FromAttachment;
};

struct MTextParagraph {
    MTextParagraphFormat format;
    std::vector<MTextRun> runs;
    MTextFormat endFormat;  ///< in force at its end; gives an empty paragraph its height
};

/// Always at least one paragraph. The initial format gives the nominal height, to which \H2x; relates.
DRAWINGDB_API std::vector<MTextParagraph> parseMText(std::wstring_view contents, const MTextFormat& initial = {});

/// What a reader sees: paragraphs end in a line feed (the last one does not), a stack reads "1/2" or "+1^-2".
DRAWINGDB_API std::wstring mtextPlainText(std::wstring_view contents);

/// What the text's style gives.
struct MTextStyle {
    double widthFactor = 1.0;
    double oblique = 0.0;
    /// Lines stand as far apart as the nominal height says; otherwise a line with higher text takes more room.
    bool exactLineSpacing = false;
};

/// A run in its place. The origin is the text's location, x runs along its direction.
struct MTextPlacedRun : MTextRun {
    OdGePoint2d position;  ///< the start of its baseline
    double width = 0.0;
};

struct MTextLine {
    std::vector<MTextPlacedRun> runs;
    OdGePoint2d position;  ///< the start of its baseline, behind the indent
    double width = 0.0;    ///< without the blanks at its end
    double height = 0.0;   ///< of its highest text above the baseline
    double descent = 0.0;  ///< of its strokes below the baseline
};

struct MTextLayout {
    std::vector<MTextLine> lines;
    double width = 0.0;   ///< of the longest line, which may be more or less than the width asked for
    double height = 0.0;  ///< from the top of the first line to the lowest stroke of the last
    /// Of the text itself: top left, top right, bottom left, bottom right.
    std::array<OdGePoint2d, 4> boundingPoints;
};

/// Breaks the contents into lines no wider than the width (0: only where paragraphs end; a longer word keeps its line
/// to itself) and places them about the location. The attachment is 1 to 9, top left to bottom right by rows; any other
/// counts as 1. Baselines are 5/3 of the text height apart, times the line spacing factor.
DRAWINGDB_API MTextLayout mtextLayout(std::wstring_view contents, double height, double width, int attachment,
                                      double lineSpacingFactor = 1.0, const MTextStyle& style = {});

/// What to draw for a run, in the same coordinates as its position.
DRAWINGDB_API std::vector<Polyline2d> mtextRunStrokes(const MTextPlacedRun& run);

}  // namespace torvel
