// The input is the contents of a text. It is read as single-line and as multi-line text, laid out and drawn; whatever
// it is, nothing comes out that is no number, and lines hold what the runs hold.
#include <cmath>

#include "base/text.h"
#include "drawingdb/mtext_layout.h"
#include "drawingdb/mtext_parser.h"
#include "drawingdb/stroke_font.h"
#include "drawingdb/text_metrics.h"
#include "fuzz/fuzz.h"
#include "torvelcmd2/attributes/values/text_escapes.h"

namespace {

using fuzz::require;

void checkPoint(const OdGePoint2d& point) {
    require(std::isfinite(point.x) && std::isfinite(point.y), "points are finite");
}

void checkStrokes(const std::vector<drawingdb::Polyline2d>& strokes) {
    for (const drawingdb::Polyline2d& stroke : strokes)
        for (const OdGePoint2d& point : stroke) checkPoint(point);
}

void checkSingleLine(const std::wstring& text, int mode) {
    require(drawingdb::decodeControlCodes(text).size() <= text.size(), "codes never become more than they were");
    drawingdb::TextGeometry geometry;
    geometry.height = 2.5;
    geometry.oblique = 0.2;
    geometry.alignmentPoint = {10, 5};
    geometry.horizontal = static_cast<drawingdb::TextHorizontal>(mode % 6);
    geometry.vertical = static_cast<drawingdb::TextVertical>(mode / 6 % 4);
    geometry = drawingdb::alignText(text, geometry);
    checkPoint(geometry.position);
    checkStrokes(drawingdb::textStrokes(text, geometry));
    for (const OdGePoint2d& corner : drawingdb::textBoundingPoints(text, geometry)) checkPoint(corner);
}

void checkMultiLine(const std::wstring& contents, int mode) {
    require(!drawingdb::parseMText(contents).empty(), "there is always a paragraph");
    // Codes may spell out what they leave out elsewhere, but text does not grow.
    require(drawingdb::mtextPlainText(contents).size() <= 2 * contents.size(),
            "plain text is no longer than its codes");
    require(torvel::withoutEscapes(contents).size() <= 2 * contents.size(), "nor is a text without its escapes");

    static constexpr double kWidths[] = {0, 1e-6, 4, 100, 1e9};
    const double width = kWidths[static_cast<std::size_t>(mode) % std::size(kWidths)];
    const drawingdb::MTextLayout layout = drawingdb::mtextLayout(contents, 2.5, width, 1 + mode % 9);
    require(!layout.lines.empty(), "there is always a line");
    require(std::isfinite(layout.width) && std::isfinite(layout.height), "sizes are finite");
    for (const OdGePoint2d& corner : layout.boundingPoints) checkPoint(corner);
    for (const drawingdb::MTextLine& line : layout.lines) {
        checkPoint(line.position);
        for (const drawingdb::MTextPlacedRun& run : line.runs) {
            checkPoint(run.position);
            checkStrokes(drawingdb::mtextRunStrokes(run));
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    // The last byte chooses justification and width, so that seeds begin as plain text.
    const int mode = data[size - 1];
    const std::wstring text = base::fromUtf8(fuzz::bytesOf(data, size - 1));
    checkSingleLine(text, mode);
    checkMultiLine(text, mode);
    return 0;
}
