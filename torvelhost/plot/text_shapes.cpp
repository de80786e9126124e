// Single-line and multi-line text.
#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <utility>

#include "base/text.h"
#include "drawingdb/mtext.h"
#include "drawingdb/mtext_layout.h"
#include "drawingdb/stroke_font.h"
#include "drawingdb/text.h"
#include "drawingdb/text_metrics.h"
#include "torvelhost/plot/extents.h"
#include "torvelhost/plot/lettering.h"
#include "torvelhost/plot/shapes.h"

namespace host {
namespace {

bool isBlank(const drawingdb::MTextPlacedRun& run) {
    return run.kind == drawingdb::MTextRunKind::Text && run.text.find_first_not_of(L' ') == run.text.npos;
}

// How letters of a font are written in a format: those of an italic one lean by themselves.
drawingdb::MTextFormat formatIn(Lettering::Font font, drawingdb::MTextFormat format) {
    if (font && font->file().isItalic()) format.italic = false;
    return format;
}

drawingdb::TextRow rowOf(std::vector<drawingdb::TextCharacter> characters, std::span<const Lettering::Letter> letters,
                         const drawingdb::StrokePen& pen, double tracking) {
    drawingdb::TextRow row{std::move(characters), {0.0}, pen};
    row.starts.reserve(letters.size() + 1);
    for (const Lettering::Letter& letter : letters) row.starts.push_back(row.starts.back() + letter.advance * tracking);
    return row;
}

}  // namespace

drawingdb::TextGeometry geometryOf(const OdDbText& text, const OdString& shown) {
    const drawingdb::TextGeometry geometry = text.textGeometry();
    return text.isJustified() ? drawingdb::alignText(shown, geometry) : geometry;
}

std::vector<OdGePoint3d> cornersOf(const OdDbText& text, const OdString& shown) {
    const OdGeMatrix3d plane = OdGeMatrix3d::planeToWorld(text.normal());
    const double elevation = (OdGeMatrix3d::worldToPlane(text.normal()) * text.position()).z;
    std::vector<OdGePoint3d> corners;
    for (const OdGePoint2d& corner : drawingdb::textBoundingPoints(shown, geometryOf(text, shown)))
        corners.push_back(plane * OdGePoint3d(corner.x, corner.y, elevation));
    return corners;
}

bool Shapes::isBesideWindow(const OdDbText& text, const OdString& shown) const {
    if (!window_) return false;
    const double reach = reachOf(text, shown);
    const OdGePoint3d place = text.position();
    return place.x + reach < window_->minPoint().x || place.x - reach > window_->maxPoint().x ||
           place.y + reach < window_->minPoint().y || place.y - reach > window_->maxPoint().y;
}

void Shapes::addSaid(const OdString& shown, const OdGePoint3d& start, const OdGePoint3d& end, const OdGePoint3d& top) {
    DisplayList::Text said{{}, start, end, top};
    // Who looks for a diameter types the letter.
    constexpr char32_t kDiameterSign = U'\u2205', kDiameterLetter = U'\u00D8';
    for (const drawingdb::TextCharacter& c : drawingdb::decodeControlCodes(shown))
        said.characters += c.character == kDiameterSign ? kDiameterLetter : c.character;
    list_.addText(std::move(said));
}

void Shapes::addText(const OdDbText& text, const OdString& shown) {
    if (shown.empty() || isBesideWindow(text, shown)) return;
    if (lettering_ && !isTooSmall(text.height()) && addOutlineText(text, shown)) return;
    const drawingdb::TextGeometry geometry = geometryOf(text, shown);
    const OdGeMatrix3d plane = OdGeMatrix3d::planeToWorld(text.normal());
    const double elevation = (OdGeMatrix3d::worldToPlane(text.normal()) * text.position()).z;
    const auto at = [&](const OdGePoint2d& point) { return plane * OdGePoint3d(point.x, point.y, elevation); };
    const auto add = [&](const OdGePoint2d& point) { list_.addPoint(at(point)); };
    if (texts_) {
        const double width = drawingdb::textExtents(shown, geometry.height, geometry.widthFactor).width;
        const OdGeVector2d along(std::cos(geometry.rotation), std::sin(geometry.rotation)), up(-along.y, along.x);
        addSaid(shown, at(geometry.position), at(geometry.position + along * (geometry.mirroredInX ? -width : width)),
                at(geometry.position + up * (geometry.mirroredInY ? -geometry.height : geometry.height)));
    }
    list_.begin(DisplayList::Kind::kStrokes);
    if (isTooSmall(geometry.height)) {
        // A line where it stands; nobody could read it.
        const auto corners = drawingdb::textBoundingPoints(shown, geometry);
        add(corners[0] + (corners[3] - corners[0]) * 0.5);
        add(corners[1] + (corners[2] - corners[1]) * 0.5);
    } else {
        for (const drawingdb::Polyline2d& stroke : drawingdb::textStrokes(shown, geometry)) {
            for (const OdGePoint2d& point : stroke) add(point);
            list_.endContour();
        }
    }
    list_.end();
}

bool Shapes::addOutlineText(const OdDbText& text, const OdString& shown) {
    const Lettering::Font font = lettering_->fontOf(text);
    if (!font && lettering_->isInStrokes(shown)) return false;
    const std::vector<drawingdb::TextCharacter> characters = drawingdb::decodeControlCodes(shown);
    std::u32string said;
    for (const drawingdb::TextCharacter& c : characters) said += c.character;
    const std::vector<Lettering::Letter> letters = lettering_->lettersOf(font, said);
    double width = 0;
    for (const Lettering::Letter& letter : letters) width += letter.advance;

    drawingdb::TextGeometry geometry = text.textGeometry();
    if (text.isJustified()) {
        // It hangs as high as in the built-in font.
        drawingdb::TextExtents extents = drawingdb::textExtents(shown, geometry.height, geometry.widthFactor);
        extents.width = width * geometry.height * geometry.widthFactor;
        geometry = drawingdb::alignText(extents, geometry);
    }
    width *= geometry.height * geometry.widthFactor;
    const drawingdb::TextFrame frame(geometry, width);
    const OdGeMatrix3d plane = OdGeMatrix3d::planeToWorld(text.normal());
    const double elevation = (OdGeMatrix3d::worldToPlane(text.normal()) * text.position()).z;
    const auto place = [&](const OdGePoint2d& point) {
        const OdGePoint2d placed = frame(point);
        return plane * OdGePoint3d(placed.x, placed.y, elevation);
    };
    if (texts_) addSaid(shown, place({0, 0}), place({width, 0}), place({0, geometry.height}));
    const drawingdb::StrokePen pen{geometry.height, geometry.widthFactor, drawingdb::slantOf(geometry.oblique), {}};
    std::vector<drawingdb::TextCharacter> asTheyStand;
    asTheyStand.reserve(letters.size());
    for (const Lettering::Letter& letter : letters) asTheyStand.push_back(characters[letter.character]);
    addRow(rowOf(std::move(asTheyStand), letters, pen, 1.0), letters, place);
    return true;
}

template <class Place>
void Shapes::addRow(const drawingdb::TextRow& row, std::span<const Lettering::Letter> letters, const Place& place) {
    // No polygon is farther from a curve than a quarter of a pixel.
    constexpr int kFinest = 14;
    int fineness = kFinest;
    if (pixel_ > 0) std::frexp(4 * row.pen.height / pixel_, &fineness);
    fineness = std::clamp(fineness, 2, kFinest);

    bool hasOutlines = false;
    for (std::size_t i = 0; i < letters.size(); ++i) {
        if (!letters[i].typeface) continue;
        if (!std::exchange(hasOutlines, true)) list_.begin(DisplayList::Kind::kUnion);
        const double x = row.starts[i] + letters[i].offset.x, y = letters[i].offset.y;
        for (const auto& contour : letters[i].typeface->contoursOf(letters[i].glyph, fineness)) {
            for (const OdGePoint2d& p : contour) list_.addPoint(place(row.pen(x + p.x, y + p.y)));
            list_.endContour();
        }
    }
    if (hasOutlines) list_.end();
    list_.begin(DisplayList::Kind::kStrokes);
    const auto addStroke = [&](const drawingdb::Polyline2d& stroke) {
        for (const OdGePoint2d& point : stroke) list_.addPoint(place(point));
        list_.endContour();
    };
    for (std::size_t i = 0; i < letters.size(); ++i) {
        if (letters[i].typeface) continue;
        for (const drawingdb::Polyline2d& stroke : drawingdb::strokeGlyph(letters[i].glyph).strokes) {
            for (const OdGePoint2d& p : stroke) list_.addPoint(place(row.pen(row.starts[i] + p.x, p.y)));
            list_.endContour();
        }
    }
    for (const drawingdb::Polyline2d& rule : drawingdb::rulesOf(row)) addStroke(rule);
    list_.end();
}

void Shapes::addAttributeText(const OdDbAttributeText& text) {
    if (text.isKindOf(OdDbAttribute::desc())) {
        if (attributeMode_ == 0 || (attributeMode_ == 1 && text.isInvisible())) return;
    } else {
        // On its own a definition shows its tag.
        if (!inBlock_) return addText(text, text.tag());
        if (!text.isConstant() || text.isInvisible()) return;
    }
    if (const OdSmartPtr<OdDbMText> multiLine = text.mtextCopy())
        addMText(*multiLine);
    else
        addText(text, text.textString());
}

bool Shapes::isInStrokes(Lettering::Font font, const drawingdb::MTextLayout& layout) const {
    for (const drawingdb::MTextLine& line : layout.lines)
        for (const drawingdb::MTextPlacedRun& run : line.runs)
            if (lettering_->fontOf(font, run.format) || !lettering_->isInStrokes(run.text) ||
                !lettering_->isInStrokes(run.lower))
                return false;
    return true;
}

// Where lines break follows from the font that is drawn.
Shapes::SetText Shapes::set(const OdDbMText& text) {
    SetText set{text.layout(), lettering_ ? lettering_->fontOf(text) : nullptr};
    set.outlined = lettering_ && !isInStrokes(set.font, set.layout);
    if (set.outlined)
        set.layout = text.layout([&](std::wstring_view written, const drawingdb::MTextFormat& format) {
            return lettering_->widthOf(lettering_->fontOf(set.font, format), written);
        });
    return set;
}

// Row by row, what is above a line and below it each by itself.
Shapes::SetRun Shapes::setRun(const drawingdb::MTextPlacedRun& run, Lettering::Font font) {
    const Lettering::Font inFormat = lettering_->fontOf(font, run.format);
    drawingdb::MTextPlacedRun written = run;
    written.format = formatIn(inFormat, run.format);
    const auto width = [&](std::wstring_view text, const auto&) { return lettering_->widthOf(inFormat, text); };
    drawingdb::MTextRunRows parts = drawingdb::mtextRunRows(written, width);
    SetRun set{&run, {}, std::move(parts.lines)};
    for (drawingdb::TextRow& row : parts.rows) {
        std::u32string said;
        for (const drawingdb::TextCharacter& c : row.characters) said += c.character;
        std::vector<Lettering::Letter> letters = lettering_->lettersOf(inFormat, said);
        // All of a run's characters have the same lines about them.
        row.characters.resize(letters.size(), row.characters.empty() ? drawingdb::TextCharacter{} : row.characters[0]);
        set.rows.push_back(
            {rowOf(std::move(row.characters), letters, row.pen, run.format.tracking), std::move(letters)});
    }
    return set;
}

std::vector<std::vector<Shapes::SetRun>> Shapes::setParagraph(std::span<drawingdb::MTextLine> lines,
                                                              Lettering::Font font) {
    // Tabs and stacks stand among the letters as one character each, which no font is asked for. That of a stack runs
    // neither way.
    constexpr char32_t kTab = U'\t', kObject = U'|';
    std::u32string said;
    std::vector<Lettering::Font> fonts;
    std::vector<drawingdb::MTextPlacedRun*> runs;  // which each of the characters belongs to
    std::vector<std::size_t> ends;
    for (drawingdb::MTextLine& line : lines) {
        for (drawingdb::MTextPlacedRun& run : line.runs) {
            said += run.kind == drawingdb::MTextRunKind::Text  ? base::charactersOf(run.text)
                    : run.kind == drawingdb::MTextRunKind::Tab ? std::u32string(1, kTab)
                                                               : std::u32string(1, kObject);
            const bool isText = run.kind == drawingdb::MTextRunKind::Text;
            fonts.resize(said.size(), isText ? lettering_->fontOf(font, run.format) : nullptr);
            runs.resize(said.size(), &run);
        }
        ends.push_back(said.size());
    }
    std::vector<std::vector<SetRun>> setLines(lines.size());
    if (!lettering_->isShaped(said)) {
        for (std::size_t i = 0; i < lines.size(); ++i)
            for (const drawingdb::MTextPlacedRun& run : lines[i].runs) setLines[i].push_back(setRun(run, font));
        return setLines;
    }

    const std::vector<std::vector<Lettering::Letter>> shaped = lettering_->shapedLines(said, fonts, ends);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::size_t wordsEnd = ends[i] == 0 ? 0 : said.find_last_not_of(U' ', ends[i] - 1) + 1;
        setLines[i] = setShapedLine(lines[i], shaped[i], wordsEnd, runs, font);
    }
    return setLines;
}

std::vector<Shapes::SetRun> Shapes::setShapedLine(drawingdb::MTextLine& line,
                                                  std::span<const Lettering::Letter> letters, std::size_t wordsEnd,
                                                  std::span<drawingdb::MTextPlacedRun* const> runs,
                                                  Lettering::Font font) {
    std::vector<SetRun> set;
    double x = line.position.x;
    // The blanks that end a line have no room in it, on whatever side they are.
    for (const Lettering::Letter& blank : letters) {
        if (blank.character < wordsEnd) break;
        const drawingdb::MTextFormat& format = runs[blank.character]->format;
        x -= blank.advance * format.height * format.widthFactor * format.tracking;
    }
    constexpr double kNowhere = std::numeric_limits<double>::max();
    for (drawingdb::MTextPlacedRun& run : line.runs) run.position.x = kNowhere;
    for (std::size_t first = 0, last = 0; first < letters.size(); first = last) {
        drawingdb::MTextPlacedRun& run = *runs[letters[first].character];
        while (last < letters.size() && runs[letters[last].character] == &run) ++last;
        const double start = std::min(run.position.x, x), wide = run.width;
        if (run.kind == drawingdb::MTextRunKind::Text) {
            const auto part = letters.subspan(first, last - first);
            const drawingdb::MTextFormat f = formatIn(lettering_->fontOf(font, run.format), run.format);
            const drawingdb::TextCharacter ruled{0, f.underlined, f.overlined, f.struckThrough};
            const drawingdb::StrokePen pen = drawingdb::mtextPen(f, {x, run.position.y});
            SetRow row{rowOf(std::vector(part.size(), ruled), part, pen, f.tracking), {part.begin(), part.end()}};
            // Blanks may have been widened to fill the line.
            x = isBlank(run) ? x + wide : pen(row.row.starts.back(), 0).x;
            set.push_back({&run, {std::move(row)}, {}});
        } else {
            run.position.x = x;
            set.push_back(setRun(run, font));
            x += wide;
        }
        run.position.x = start;
        run.width = x - start;
    }
    for (drawingdb::MTextPlacedRun& run : line.runs)
        if (run.position.x == kNowhere) run.position.x = x;
    return set;
}

void Shapes::addMText(const OdDbMText& text) {
    const OdGeMatrix3d toWorld = text.layoutToWorld();
    auto [layout, font, outlined] = set(text);
    const auto inWorld = [&](const OdGePoint2d& point) { return toWorld * OdGePoint3d(point.x, point.y, 0); };
    const Style own = list_.style();

    if (text.backgroundFillOn() || text.hasFrame()) {
        Corners corners;
        for (const OdGePoint2d& corner : text.box()) corners.push_back(inWorld(corner));
        // One colour for all would hide the text.
        if (text.backgroundFillOn() && (text.useBackgroundColorOn() || styles_.inks().mono)) {
            list_.add(DisplayList::Kind::kMask, corners);
        } else if (text.backgroundFillOn()) {
            list_.setStyle(styles_.colored(own, text.backgroundFillColor()));
            list_.add(DisplayList::Kind::kArea, corners);
        }
        list_.setStyle(own);
        corners.push_back(corners.front());
        if (text.hasFrame()) list_.add(DisplayList::Kind::kStrokes, corners);
    }
    const auto setRunStyle = [&](const drawingdb::MTextPlacedRun& run) {
        list_.setStyle(run.format.color ? styles_.colored(own, *run.format.color) : own);
    };
    const auto addSaid = [&](const drawingdb::MTextPlacedRun& run) {
        std::wstring said = run.text;
        if (run.kind == drawingdb::MTextRunKind::Stack)
            said += run.lower.empty() ? run.lower : (run.separator == L'^' ? L' ' : L'/') + run.lower;
        const OdGePoint2d& start = run.position;
        list_.addText({base::charactersOf(said), inWorld(start), inWorld({start.x + run.width, start.y}),
                       inWorld({start.x, start.y + run.format.height})});
    };
    for (auto first = layout.lines.begin(); first != layout.lines.end();) {
        auto end = std::find_if(first, layout.lines.end(), [](const auto& line) { return line.endsParagraph; });
        if (end != layout.lines.end()) ++end;
        std::vector<std::vector<SetRun>> setLines;
        const bool isLegible = std::any_of(first, end, [this](const auto& line) { return !isTooSmall(line.height); });
        if (outlined && (isLegible || texts_)) setLines = setParagraph({first, end}, font);
        for (std::size_t i = 0; first != end; ++first, ++i) {
            const drawingdb::MTextLine& line = *first;
            if (texts_) {
                list_.setStyle(own);
                for (const drawingdb::MTextPlacedRun& run : line.runs)
                    if (run.kind != drawingdb::MTextRunKind::Tab) addSaid(run);
            }
            if (isTooSmall(line.height)) {
                const OdGePoint2d middle(line.position.x, line.position.y + line.height / 2);
                list_.setStyle(own);
                list_.add(DisplayList::Kind::kStrokes,
                          Corners{inWorld(middle), inWorld({middle.x + line.width, middle.y})});
                continue;
            }
            if (outlined) {
                for (const SetRun& set : setLines[i]) {
                    setRunStyle(*set.run);
                    for (const SetRow& row : set.rows) addRow(row.row, row.letters, inWorld);
                    for (const drawingdb::Polyline2d& stroke : set.lines)
                        list_.add(DisplayList::Kind::kStrokes,
                                  Corners{inWorld(stroke.front()), inWorld(stroke.back())});
                }
                continue;
            }
            for (const drawingdb::MTextPlacedRun& run : line.runs) {
                setRunStyle(run);
                list_.begin(DisplayList::Kind::kStrokes);
                for (const drawingdb::Polyline2d& stroke : drawingdb::mtextRunStrokes(run)) {
                    for (const OdGePoint2d& point : stroke) list_.addPoint(inWorld(point));
                    list_.endContour();
                }
                list_.end();
            }
        }
    }
    list_.setStyle(own);
}

}  // namespace host
