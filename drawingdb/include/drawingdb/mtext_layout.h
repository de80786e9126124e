// How multi-line text breaks into lines, and where they stand, in the built-in font.
//
// Lengths are drawing units unless a text height is named as the unit; angles are radians; points lie in the text's own
// plane.
#pragma once

#include <array>
#include <functional>
#include <string_view>
#include <vector>

#include "drawingdb/mtext_parser.h"
#include "drawingdb/stroke_font.h"
#include "drawingdb/text_metrics.h"

namespace drawingdb {

/// How wide text is in a format, in text heights, before its width factor and tracking.
using MTextWidth = std::function<double(std::wstring_view, const MTextFormat&)>;

/// Columns side by side that lines fill one after the other.
struct MTextColumns {
    double width = 0.0;  ///< of each; 0: there are none
    double gutter = 0.0;
    /// Of each; the last one counts for all that follow. 0: as high as it takes.
    std::vector<double> heights;
    /// What the last one does not hold goes on below it. 0: as many as it takes.
    int most = 0;
    bool rightToLeft = false;
};

/// What the text's style and form give.
struct MTextStyle {
    double widthFactor = 1.0;
    double oblique = 0.0;
    /// Lines stand as far apart as the nominal height says; otherwise a line with higher text takes more room.
    bool exactLineSpacing = false;
    /// None: the built-in font.
    MTextWidth width;
    /// Where there are some, their width counts for lines.
    MTextColumns columns;
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
    bool endsParagraph = false;
};

struct MTextLayout {
    std::vector<MTextLine> lines;
    double width = 0.0;   ///< of the longest line, which may be more or less than the width asked for
    double height = 0.0;  ///< from the top of the first line to the lowest stroke of the last, of the longest column
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

/// Where what is written in a format goes, from the start of its baseline.
DRAWINGDB_API StrokePen mtextPen(const MTextFormat& format, const OdGePoint2d& origin);

/// The same for who draws it in another font: what is written, two rows of a stack, and the line between them. Where
/// characters begin is that of the built-in font.
struct MTextRunRows {
    std::vector<TextRow> rows;
    std::vector<Polyline2d> lines;
};
DRAWINGDB_API MTextRunRows mtextRunRows(const MTextPlacedRun& run, const MTextWidth& width = {});

}  // namespace drawingdb
