// Multi-line text: paragraphs and runs to lines in their places.

#include "drawingdb/mtext_layout.h"

#include <algorithm>
#include <cmath>

#include "base/text.h"
#include "drawingdb/mtext_parser.h"
#include "drawingdb/src/lettering/text_codes.h"
#include "drawingdb/stroke_font.h"
#include "drawingdb/text_metrics.h"

namespace drawingdb {

namespace {

constexpr double kLineSpacing = 5.0 / 3.0;  // from baseline to baseline, in text heights
constexpr double kDefaultTabWidth = 4.0;    // in nominal text heights
constexpr double kStackLowerToUpper = 1.3;  // from the lower part's baseline to the upper's, in text heights
constexpr double kFractionLine = 1.15;      // above the lower part's baseline, in text heights
constexpr double kDiagonalLine = 0.5;       // the room between the parts of a slanted fraction, in text heights
// There is one font; its italic is the upright one leaning.
constexpr double kItalicLean = kPi / 12;
constexpr double kSlackInWidth = 1e-9;  // relative: a line may be that much too long, by rounding

template <typename Visit>
void visitCharacters(std::wstring_view text, Visit visit) {
    for (std::size_t i = 0; i < text.size();) visit(base::nextCharacter(text, i));
}

double textWidth(std::wstring_view text, const MTextFormat& format, const MTextWidth& widthInFont) {
    double width = 0.0;
    if (widthInFont)
        width = widthInFont(text, format);
    else
        visitCharacters(text, [&](char32_t c) { width += strokeGlyph(c).advance; });
    return width * format.height * format.widthFactor * format.tracking;
}

double textDescent(std::wstring_view text, const MTextFormat& format) {
    double bottom = 0.0;
    visitCharacters(text, [&](char32_t c) { bottom = std::min(bottom, strokeGlyph(c).bottom); });
    return -bottom * format.height;
}

double runWidth(const MTextRun& run, const MTextWidth& width) {
    const double upper = textWidth(run.text, run.format, width);
    if (run.kind != MTextRunKind::Stack) return upper;
    const double lower = textWidth(run.lower, run.format, width);
    return run.separator == L'#' ? upper + lower + kDiagonalLine * run.format.height : std::max(upper, lower);
}

double runHeight(const MTextRun& run) {
    return run.format.height * (run.kind == MTextRunKind::Stack ? 1.0 + kStackLowerToUpper : 1.0);
}

double runDescent(const MTextRun& run) {
    return textDescent(run.kind == MTextRunKind::Stack ? run.lower : run.text, run.format);
}

bool isBlank(char32_t c) { return c == U' '; }

// Scripts without blanks between words break between any two characters.
bool breaksAnywhere(char32_t c) { return c >= 0x2E80 && c < 0xD7B0; }

// What stays in one piece when lines are broken: blanks, or characters that are no blanks, of one run.
struct Piece {
    std::size_t run = 0;
    std::wstring_view text;  // of a text run
    double width = 0.0;      // of a tab: found when it is placed
    bool blank = false;      // blanks or a tab
    bool breakBefore = false;
};

std::vector<Piece> cutIntoPieces(const MTextParagraph& paragraph, const MTextWidth& width) {
    std::vector<Piece> pieces;
    for (std::size_t r = 0; r < paragraph.runs.size(); ++r) {
        const MTextRun& run = paragraph.runs[r];
        if (run.kind != MTextRunKind::Text) {
            pieces.push_back({r, {}, runWidth(run, width), run.kind == MTextRunKind::Tab, false});
            continue;
        }
        const std::wstring_view text = run.text;
        for (std::size_t i = 0; i < text.size();) {
            const std::size_t start = i;
            const char32_t first = base::nextCharacter(text, i);
            Piece piece{r, {}, 0.0, isBlank(first), breaksAnywhere(first)};
            while (i < text.size() && !piece.breakBefore) {
                std::size_t next = i;
                const char32_t c = base::nextCharacter(text, next);
                if (isBlank(c) != piece.blank || breaksAnywhere(c)) break;
                i = next;
            }
            piece.text = text.substr(start, i - start);
            piece.width = textWidth(piece.text, run.format, width);
            pieces.push_back(piece);
        }
    }
    return pieces;
}

class MTextLayouter {
  public:
    MTextLayouter(double height, double width, int attachment, double lineSpacingFactor, const MTextStyle& style)
        : nominalHeight_(height),
          boxWidth_(width > 0.0 && std::isfinite(width) ? width : 0.0),
          column_(attachment >= 1 && attachment <= 9 ? (attachment - 1) % 3 : 0),
          row_(attachment >= 1 && attachment <= 9 ? (attachment - 1) / 3 : 0),
          lineSpacing_(kLineSpacing * (lineSpacingFactor > 0.0 ? lineSpacingFactor : 1.0)),
          exact_(style.exactLineSpacing),
          width_(style.width),
          columns_(style.columns) {}

    MTextLayout layOut(const std::vector<MTextParagraph>& paragraphs) {
        for (const MTextParagraph& paragraph : paragraphs) breakIntoLines(paragraph);
        justifyLines();
        stackLines();
        placeAboutLocation();
        return std::move(layout_);
    }

  private:
    // What a line needs to know of its paragraph once all lines are there.
    struct LineRoom {
        double indent = 0.0;
        double rightIndent = 0.0;
        MTextJustification justification = MTextJustification::Left;
        bool beginsColumn = false;
        int column = 0;
    };

    void breakIntoLines(const MTextParagraph& paragraph) {
        const std::vector<Piece> pieces = cutIntoPieces(paragraph, width_);
        bool firstLine = true;
        std::size_t next = 0;
        do {
            LineRoom room;
            room.indent =
                (paragraph.format.leftIndent + (firstLine ? paragraph.format.firstIndent : 0.0)) * nominalHeight_;
            room.rightIndent = paragraph.format.rightIndent * nominalHeight_;
            room.justification = justificationOf(paragraph.format);
            room.beginsColumn = firstLine && paragraph.beginsColumn;
            next = fillLine(paragraph, pieces, next, room);
            firstLine = false;
        } while (next < pieces.size());
        layout_.lines.back().endsParagraph = true;
    }

    // Pieces up to where the line is full; the next line begins at the piece returned. Blanks at a break stay on the
    // line that they end, where they have no width.
    std::size_t fillLine(const MTextParagraph& paragraph, const std::vector<Piece>& pieces, std::size_t next,
                         const LineRoom& room) {
        const double limit = boxWidth_ > 0.0 ? (boxWidth_ - room.rightIndent) * (1.0 + kSlackInWidth)
                                             : std::numeric_limits<double>::max();
        MTextLine& line = layout_.lines.emplace_back();
        rooms_.push_back(room);
        double x = room.indent, end = room.indent;
        const auto place = [&](const Piece& piece) {
            const MTextRun& run = paragraph.runs[piece.run];
            const double width = run.kind == MTextRunKind::Tab ? tabWidth(paragraph.format, x) : piece.width;
            addToLine(line, run, piece, x, width);
            x += width;
            if (!piece.blank) end = x;
        };
        const std::size_t first = next;
        while (next < pieces.size()) {
            if (pieces[next].blank) {
                place(pieces[next++]);
                continue;
            }
            // A word can go on over several runs.
            std::size_t wordEnd = next;
            double wordWidth = 0.0;
            do wordWidth += pieces[wordEnd++].width;
            while (wordEnd < pieces.size() && !pieces[wordEnd].blank && !pieces[wordEnd].breakBefore &&
                   !pieces[wordEnd - 1].breakBefore);
            if (next > first && x + wordWidth > limit) break;
            while (next < wordEnd) place(pieces[next++]);
        }
        line.position.x = room.indent;
        line.width = end - room.indent;
        line.height = 0.0;
        for (const MTextPlacedRun& run : line.runs) line.height = std::max(line.height, runHeight(run));
        if (line.runs.empty()) line.height = paragraph.endFormat.height;
        return next;
    }

    double tabWidth(const MTextParagraphFormat& format, double x) const {
        for (const double stop : format.tabStops)
            if (stop * nominalHeight_ > x) return stop * nominalHeight_ - x;
        const double step = kDefaultTabWidth * nominalHeight_;
        const double width = (std::floor(x / step) + 1.0) * step - x;
        return width > 0.0 && std::isfinite(width) ? width : 0.0;
    }

    // Pieces of one run that follow each other become one again, except where they will be moved apart.
    void addToLine(MTextLine& line, const MTextRun& run, const Piece& piece, double x, double width) {
        const bool spread = isSpread(rooms_.back());
        if (!spread && run.kind == MTextRunKind::Text && lastRun_ == &run && !line.runs.empty()) {
            line.runs.back().text += piece.text;
            line.runs.back().width += width;
            return;
        }
        MTextPlacedRun placed;
        placed.kind = run.kind;
        placed.text = run.kind == MTextRunKind::Text ? std::wstring(piece.text) : run.text;
        placed.lower = run.lower;
        placed.separator = run.separator;
        placed.format = run.format;
        placed.position.x = x;
        placed.width = width;
        line.runs.push_back(std::move(placed));
        lastRun_ = &run;
    }

    bool isSpread(const LineRoom& room) const {
        return boxWidth_ > 0.0 && (room.justification == MTextJustification::Justified ||
                                   room.justification == MTextJustification::Distributed);
    }

    MTextJustification justificationOf(const MTextParagraphFormat& format) const {
        if (format.justification != MTextJustification::FromAttachment) return format.justification;
        return column_ == 0   ? MTextJustification::Left
               : column_ == 1 ? MTextJustification::Center
                              : MTextJustification::Right;
    }

    void justifyLines() {
        if (boxWidth_ == 0.0)
            for (std::size_t i = 0; i < rooms_.size(); ++i)
                naturalWidth_ =
                    std::max(naturalWidth_, rooms_[i].indent + layout_.lines[i].width + rooms_[i].rightIndent);
        for (std::size_t i = 0; i < rooms_.size(); ++i) {
            MTextLine& line = layout_.lines[i];
            const LineRoom& room = rooms_[i];
            const double spare =
                (boxWidth_ > 0.0 ? boxWidth_ : naturalWidth_) - room.rightIndent - room.indent - line.width;
            if (room.justification == MTextJustification::Center)
                moveLine(line, spare / 2.0);
            else if (room.justification == MTextJustification::Right)
                moveLine(line, spare);
            else if (isSpread(room) && spare > 0.0 &&
                     (!line.endsParagraph || room.justification == MTextJustification::Distributed))
                spreadLine(line, spare);
        }
    }

    static void moveLine(MTextLine& line, double dx) {
        line.position.x += dx;
        for (MTextPlacedRun& run : line.runs) run.position.x += dx;
    }

    // Gives the spare room to the blanks between words. Those before the last tab stay, as the tab fixes what it
    // precedes.
    static void spreadLine(MTextLine& line, double spare) {
        const double end = line.position.x + line.width;
        std::size_t first = 0;
        std::vector<std::size_t> gaps;
        for (std::size_t i = 0; i < line.runs.size(); ++i) {
            if (line.runs[i].kind == MTextRunKind::Tab) {
                first = i + 1;
                gaps.clear();
            } else if (i > first && line.runs[i].kind == MTextRunKind::Text && line.runs[i].text.front() == L' ' &&
                       line.runs[i].position.x + line.runs[i].width < end) {
                gaps.push_back(i);
            }
        }
        if (gaps.empty()) return;
        const double share = spare / static_cast<double>(gaps.size());
        double dx = 0.0;
        std::size_t gap = 0;
        for (std::size_t i = first; i < line.runs.size(); ++i) {
            line.runs[i].position.x += dx;
            if (gap < gaps.size() && gaps[gap] == i) {
                line.runs[i].width += share;
                dx += share;
                ++gap;
            }
        }
        line.width += spare;
    }

    double columnHeight(int column) const {
        if (columns_.heights.empty()) return 0.0;
        return columns_.heights[std::min(static_cast<std::size_t>(column), columns_.heights.size() - 1)];
    }

    // Whether a line that would stand there belongs to the next column, where there may be another.
    bool endsColumn(const LineRoom& room, int column, double baseline) const {
        if (!(columns_.width > 0.0) || (columns_.most > 0 && column + 1 >= columns_.most)) return false;
        const double height = columnHeight(column);
        return room.beginsColumn || (height > 0.0 && -baseline > height * (1.0 + kSlackInWidth));
    }

    // Baselines from the top down, with y = 0 at the top of each column.
    void stackLines() {
        double baseline = 0.0;
        bool firstOfColumn = true;
        for (std::size_t i = 0; i < layout_.lines.size(); ++i) {
            MTextLine& line = layout_.lines[i];
            const double lineStep = lineSpacing_ * (exact_ ? nominalHeight_ : line.height);
            baseline -= firstOfColumn ? line.height : lineStep;
            if (!firstOfColumn && endsColumn(rooms_[i], lastColumn_, baseline)) {
                layout_.height = std::max(layout_.height, layout_.lines[i - 1].descent - baseline - lineStep);
                ++lastColumn_;
                baseline = -line.height;
            }
            firstOfColumn = false;
            rooms_[i].column = lastColumn_;
            line.position.y = baseline;
            for (MTextPlacedRun& run : line.runs) {
                const double spare = line.height - runHeight(run);
                const double raise = run.format.alignment == MTextLineAlignment::Top      ? spare
                                     : run.format.alignment == MTextLineAlignment::Middle ? spare / 2.0
                                                                                          : 0.0;
                run.position.y = baseline + raise;
                line.descent = std::max(line.descent, runDescent(run) - raise);
            }
        }
        layout_.height = std::max(layout_.height, layout_.lines.back().descent - baseline);
    }

    void placeAboutLocation() {
        const int columns = columns_.width > 0.0 ? std::max(lastColumn_ + 1, columns_.most) : 1;
        const double step = boxWidth_ + columns_.gutter;
        const double boxWidth = (boxWidth_ > 0.0 ? boxWidth_ : naturalWidth_) + (columns - 1) * step;
        const OdGeVector2d shift(-boxWidth * column_ / 2.0, layout_.height * row_ / 2.0);
        double left = std::numeric_limits<double>::max(), right = -left;
        for (std::size_t i = 0; i < layout_.lines.size(); ++i) {
            MTextLine& line = layout_.lines[i];
            const int column = columns_.rightToLeft ? columns - 1 - rooms_[i].column : rooms_[i].column;
            const OdGeVector2d inColumn = shift + OdGeVector2d(column * step, 0.0);
            line.position += inColumn;
            for (MTextPlacedRun& run : line.runs) run.position += inColumn;
            left = std::min(left, line.position.x);
            right = std::max(right, line.position.x + line.width);
        }
        layout_.width = right - left;
        const double top = shift.y, bottom = shift.y - layout_.height;
        layout_.boundingPoints = {OdGePoint2d(left, top), OdGePoint2d(right, top), OdGePoint2d(left, bottom),
                                  OdGePoint2d(right, bottom)};
    }

    double nominalHeight_;
    double boxWidth_;  // 0: as wide as the longest line
    int column_, row_;
    double lineSpacing_;
    bool exact_;
    const MTextWidth& width_;
    const MTextColumns& columns_;
    int lastColumn_ = 0;
    double naturalWidth_ = 0.0;
    MTextLayout layout_;
    std::vector<LineRoom> rooms_;  // one for each line
    const MTextRun* lastRun_ = nullptr;
};

std::vector<TextCharacter> rowOf(std::wstring_view text, const MTextFormat& format) {
    std::vector<TextCharacter> row;
    visitCharacters(text, [&](char32_t c) {
        row.push_back({c, format.underlined, format.overlined, format.struckThrough});
    });
    return row;
}

}  // namespace

MTextLayout mtextLayout(std::wstring_view contents, double height, double width, int attachment,
                        double lineSpacingFactor, const MTextStyle& style) {
    MTextFormat initial;
    initial.height = height > 0.0 && std::isfinite(height) ? height : 1.0;
    initial.widthFactor = style.widthFactor > 0.0 && std::isfinite(style.widthFactor) ? style.widthFactor : 1.0;
    initial.oblique = style.oblique;
    const double lineWidth = style.columns.width > 0.0 ? style.columns.width : width;
    return MTextLayouter(initial.height, lineWidth, attachment, lineSpacingFactor, style)
        .layOut(parseMText(contents, initial));
}

std::vector<Polyline2d> mtextRunStrokes(const MTextPlacedRun& run) {
    const MTextRunRows parts = mtextRunRows(run);
    std::vector<Polyline2d> strokes;
    for (const TextRow& row : parts.rows) appendStrokes(row, strokes);
    strokes.insert(strokes.end(), parts.lines.begin(), parts.lines.end());
    return strokes;
}

StrokePen mtextPen(const MTextFormat& format, const OdGePoint2d& origin) {
    const double lean = format.oblique + (format.italic ? kItalicLean : 0.0);
    return {format.height, format.widthFactor, slantOf(lean), origin};
}

MTextRunRows mtextRunRows(const MTextPlacedRun& run, const MTextWidth& width) {
    MTextRunRows parts;
    const MTextFormat& f = run.format;
    if (run.kind == MTextRunKind::Tab) return parts;
    const StrokePen pen = mtextPen(f, run.position);
    const auto add = [&](std::wstring_view text, double dx, double dy) {
        StrokePen moved = pen;
        moved.origin += OdGeVector2d(dx + dy * pen.slant, dy);
        parts.rows.push_back(textRow(rowOf(text, f), moved, f.tracking));
    };
    if (run.kind == MTextRunKind::Text) {
        add(run.text, 0.0, 0.0);
        return parts;
    }

    const double upperWidth = textWidth(run.text, f, width), lowerWidth = textWidth(run.lower, f, width);
    const double upperHeight = kStackLowerToUpper * f.height;
    if (run.separator == L'#') {
        const double lowerStart = upperWidth + kDiagonalLine * f.height;
        add(run.text, 0.0, upperHeight);
        add(run.lower, lowerStart, 0.0);
        const double top = upperHeight + f.height;
        const OdGePoint2d& origin = run.position;
        parts.lines.push_back(
            {origin + OdGeVector2d(upperWidth, 0.0), origin + OdGeVector2d(lowerStart + top * pen.slant, top)});
        return parts;
    }
    // A fraction's parts are centred on its line; a tolerance's begin together.
    const bool fraction = run.separator == L'/';
    const double room = std::max(upperWidth, lowerWidth);
    add(run.text, fraction ? (room - upperWidth) / 2.0 : 0.0, upperHeight);
    add(run.lower, fraction ? (room - lowerWidth) / 2.0 : 0.0, 0.0);
    if (fraction) {
        const double line = kFractionLine * f.height;
        const OdGePoint2d start = run.position + OdGeVector2d(line * pen.slant, line);
        parts.lines.push_back({start, start + OdGeVector2d(room, 0.0)});
    }
    return parts;
}

}  // namespace drawingdb
