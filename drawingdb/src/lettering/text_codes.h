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

/// What the built-in font draws of a row, with its underlines and such.
void appendStrokes(const TextRow& row, std::vector<Polyline2d>& strokes);

}  // namespace drawingdb
