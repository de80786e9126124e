// What single-line and multi-line text share: the %% codes, and drawing a row of characters.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "drawingdb/stroke_font.h"
#include "drawingdb/text_metrics.h"

namespace drawingdb {

/// Where the old fonts and the %% codes put the diameter sign.
inline constexpr char32_t kDiameterSign = 0x2205;

struct ControlCode {
    enum Kind { None, Character, Underline, Overline, StrikeThrough };
    Kind kind = None;
    char32_t character = 0;
    std::size_t length = 0;  // in units of the text
};

/// The %% code that begins at the position; kind None when there is none.
ControlCode controlCodeAt(std::wstring_view text, std::size_t position);

/// Where strokes go: from units of the text height to the text's plane, with the origin at the start of the baseline.
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
double slantOf(double oblique);

/// A row of characters at the pen's origin, with their underlines and such.
void appendStrokes(const std::vector<TextCharacter>& row, double tracking, const StrokePen& pen,
                   std::vector<Polyline2d>& strokes);

}  // namespace drawingdb
