// Single-line and multi-line text.
#include <cmath>

#include "base/text.h"
#include "drawingdb/mtext.h"
#include "drawingdb/mtext_layout.h"
#include "drawingdb/stroke_font.h"
#include "drawingdb/text.h"
#include "drawingdb/text_metrics.h"
#include "torvelhost/plot/extents.h"
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

void Shapes::addText(const OdDbText& text, const OdString& shown) {
    if (shown.empty() || isBesideWindow(text, shown)) return;
    const drawingdb::TextGeometry geometry = geometryOf(text, shown);
    const OdGeMatrix3d plane = OdGeMatrix3d::planeToWorld(text.normal());
    const double elevation = (OdGeMatrix3d::worldToPlane(text.normal()) * text.position()).z;
    const auto add = [&](const OdGePoint2d& point) {
        list_.addPoint(plane * OdGePoint3d(point.x, point.y, elevation));
    };
    if (texts_) {
        DisplayList::Text said;
        // Who looks for a diameter types the letter.
        constexpr char32_t kDiameterSign = U'\u2205', kDiameterLetter = U'\u00D8';
        for (const drawingdb::TextCharacter& c : drawingdb::decodeControlCodes(shown))
            said.characters += c.character == kDiameterSign ? kDiameterLetter : c.character;
        const double width = drawingdb::textExtents(shown, geometry.height, geometry.widthFactor).width;
        const OdGeVector2d along(std::cos(geometry.rotation), std::sin(geometry.rotation)), up(-along.y, along.x);
        const auto at = [&](const OdGePoint2d& point) { return plane * OdGePoint3d(point.x, point.y, elevation); };
        said.start = at(geometry.position);
        said.end = at(geometry.position + along * (geometry.mirroredInX ? -width : width));
        said.top = at(geometry.position + up * (geometry.mirroredInY ? -geometry.height : geometry.height));
        list_.addText(std::move(said));
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

void Shapes::addMText(const OdDbMText& text) {
    const OdGeMatrix3d toWorld = text.layoutToWorld();
    const drawingdb::MTextLayout layout = text.layout();
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
