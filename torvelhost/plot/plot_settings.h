// What a plot is asked for beyond the name of its file: paper, scale, layout, colours.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "torvelhost/plot/style.h"

namespace host {

/// What readers of PDF take, in millimetres.
constexpr double kLargestPaperSide = 5000;

/// Lengths are millimetres.
struct Paper {
    double width = 0, height = 0;
    bool isTurned = true;  // it lies as was said, else as suits what is on it

    /// Turned as a box of this shape lies.
    Paper suiting(double boxWidth, double boxHeight) const;
};

struct PlotSettings {
    std::optional<Paper> paper;
    double scale = 0;  // the length on paper of a length in the drawing; 0: as fits
    bool hasScale = false;
    std::optional<std::wstring> layout;
    Inks inks;
    bool hasColors = false;  // said, whatever they are

    bool hasAllLayouts() const;
};

/// "A3", "A3-portrait", "ansi-b landscape", "420x297". Nothing for what is no paper.
std::optional<Paper> parsePaper(std::wstring_view text);
/// "1:50", "2:1", "fit" (0). Nothing for what is no scale.
std::optional<double> parsePlotScale(std::wstring_view text);
/// "color", "mono", "dark".
std::optional<Inks> parseInks(std::wstring_view text);

}  // namespace host
