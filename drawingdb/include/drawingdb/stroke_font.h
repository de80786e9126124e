// The built-in font: one of single strokes, the same on every platform.
//
// Text styles name fonts that this machine need not have. So that a drawing is laid out alike everywhere, all text is
// measured with this one font, whatever its style says, and drawn with it unless a plot has a better one.
#pragma once

#include <vector>

#include "drawingdb/ge.h"

namespace drawingdb {

using Polyline2d = std::vector<OdGePoint2d>;

/// The drawing of one character in units of the text height: capitals reach from 0 to 1, descenders to -1/3.
struct StrokeGlyph {
    double advance = 0.0;  ///< to the next character
    std::vector<Polyline2d> strokes;
    double left = 0.0, right = 0.0, bottom = 0.0, top = 0.0;  ///< the box around the strokes; zero without strokes
};

/// Covers ASCII, the letters and most signs of Latin-1, the diameter sign and some punctuation; any other character is
/// a box. Control characters take no room, but a tab is a blank. The reference stays valid.
DRAWINGDB_API const StrokeGlyph& strokeGlyph(char32_t character);
/// Whether it is more than a box; so are control characters and blanks.
DRAWINGDB_API bool hasStrokeGlyph(char32_t character);

}  // namespace drawingdb
