// Single-line and multi-line text.
#include <algorithm>
#include <cmath>
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

std::u32string charactersOf(std::wstring_view text) {
    std::u32string characters;
    for (std::size_t position = 0; position < text.size();) characters += base::nextCharacter(text, position);
    return characters;
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
    const auto advance = [&](char32_t c) { return lettering_->letterOf(font, c).advance; };
    std::vector<drawingdb::TextCharacter> characters = drawingdb::decodeControlCodes(shown);
    double width = 0;
    for (const drawingdb::TextCharacter& c : characters) width += advance(c.character);

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
    addRow(drawingdb::textRow(std::move(characters), pen, 1.0, advance), font, place);
    return true;
}

template <class Place>
void Shapes::addRow(const drawingdb::TextRow& row, Lettering::Font font, const Place& place) {
    // No polygon is farther from a curve than a quarter of a pixel.
    constexpr int kFinest = 14;
    int fineness = kFinest;
    if (pixel_ > 0) std::frexp(4 * row.pen.height / pixel_, &fineness);
    fineness = std::clamp(fineness, 2, kFinest);
    std::vector<Lettering::Letter> letters;
    letters.reserve(row.characters.size());
    for (const drawingdb::TextCharacter& c : row.characters) letters.push_back(lettering_->letterOf(font, c.character));

    bool hasOutlines = false;
    for (std::size_t i = 0; i < letters.size(); ++i) {
        if (!letters[i].typeface) continue;
        if (!std::exchange(hasOutlines, true)) list_.begin(DisplayList::Kind::kUnion);
        for (const auto& contour : letters[i].typeface->contoursOf(letters[i].glyph, fineness)) {
            for (const OdGePoint2d& p : contour) list_.addPoint(place(row.pen(row.starts[i] + p.x, p.y)));
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
        for (const drawingdb::Polyline2d& stroke : drawingdb::strokeGlyph(row.characters[i].character).strokes) {
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
        set.layout = text.layout([&](char32_t c, const drawingdb::MTextFormat& format) {
            return lettering_->letterOf(lettering_->fontOf(set.font, format), c).advance;
        });
    return set;
}

void Shapes::addMText(const OdDbMText& text) {
    const OdGeMatrix3d toWorld = text.layoutToWorld();
    const auto [layout, font, outlined] = set(text);
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
    const auto addSaid = [&](const drawingdb::MTextPlacedRun& run) {
        std::wstring said = run.text;
        if (run.kind == drawingdb::MTextRunKind::Stack)
            said += run.lower.empty() ? run.lower : (run.separator == L'^' ? L' ' : L'/') + run.lower;
        const OdGePoint2d& start = run.position;
        list_.addText({charactersOf(said), inWorld(start), inWorld({start.x + run.width, start.y}),
                       inWorld({start.x, start.y + run.format.height})});
    };
    for (const drawingdb::MTextLine& line : layout.lines) {
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
        for (const drawingdb::MTextPlacedRun& run : line.runs) {
            list_.setStyle(run.format.color ? styles_.colored(own, *run.format.color) : own);
            if (outlined) {
                const Lettering::Font inFormat = lettering_->fontOf(font, run.format);
                drawingdb::MTextPlacedRun upright = run;
                // Its letters lean by themselves.
                if (inFormat && inFormat->file().isItalic()) upright.format.italic = false;
                const drawingdb::MTextRunRows parts =
                    drawingdb::mtextRunRows(upright, [&](char32_t c, const drawingdb::MTextFormat&) {
                        return lettering_->letterOf(inFormat, c).advance;
                    });
                for (const drawingdb::TextRow& row : parts.rows) addRow(row, inFormat, inWorld);
                for (const drawingdb::Polyline2d& stroke : parts.lines)
                    list_.add(DisplayList::Kind::kStrokes, Corners{inWorld(stroke.front()), inWorld(stroke.back())});
                continue;
            }
            list_.begin(DisplayList::Kind::kStrokes);
            for (const drawingdb::Polyline2d& stroke : drawingdb::mtextRunStrokes(run)) {
                for (const OdGePoint2d& point : stroke) list_.addPoint(inWorld(point));
                list_.endContour();
            }
            list_.end();
        }
    }
    list_.setStyle(own);
}

}  // namespace host
