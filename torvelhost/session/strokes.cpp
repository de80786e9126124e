// Whether an entity shows anything in a rectangle, kind by kind, also inside references.
#include "torvelhost/session/strokes.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/reference_cells.h"
#include "drawingdb/text.h"
#include "drawingdb/text_metrics.h"
#include "drawingdb/wipeout.h"
#include "torvelhost/plot/clip.h"
#include "torvelhost/plot/shapes.h"

namespace host {
namespace {

using drawingdb::as;

constexpr int kDeepestNesting = 32;
// Blocks that hold blocks many times over show more than anyone can pick from.
constexpr int kMostEntities = 200000;

// Visits each cell of a reference (one, unless it is a multiple one) until `visit` returns true.
bool anyCell(const OdDbBlockReference& reference, int& budget, const std::function<bool(const OdGeMatrix3d&)>& visit) {
    const drawingdb::ReferenceCells cells(reference);
    for (int row = 0; row < cells.rows(); ++row) {
        for (int column = 0; column < cells.columns(); ++column) {
            if (--budget < 0) return false;
            if (visit(cells.transform(row, column))) return true;
        }
    }
    return false;
}

// Whether nothing of a cell is left there by the reference's clip. What lies beside the clip's edge is not looked at: a
// pick is hardly larger than the line that it is at.
bool isCutOff(const OdDbBlockReference& reference, const OdGeMatrix3d& toWorld, const Rectangle& rectangle) {
    if (!reference.isClipped()) return false;
    const auto clip = clipOf(reference);
    if (!clip || clip->empty()) return false;
    std::vector<OdGePoint2d> corners;
    for (const OdGePoint3d& corner : *clip) corners.push_back((toWorld * corner).xy());
    return !rectangle.meetsArea(corners);
}

// Attribute definitions show only in their references, and there only constant ones.
bool showsInReference(const OdDbEntity& entity) {
    if (entity.isInvisibleEntity()) return false;
    const auto* const definition = as<OdDbAttributeDefinition>(entity);
    return !definition || (definition->isConstant() && !definition->isInvisible());
}

std::vector<OdGePoint2d> textCorners(const OdDbText& text, const OdGeMatrix3d& toWorld) {
    // A definition shows its tag on its own; in references only constant ones are met.
    const auto* const definition = as<OdDbAttributeDefinition>(text);
    std::vector<OdGePoint2d> corners;
    for (const OdGePoint3d& corner :
         cornersOf(text, definition && !definition->isConstant() ? definition->tag() : text.textString()))
        corners.push_back((toWorld * corner).xy());
    return corners;
}

// The corners of a box, as a polygon around their shadow on the ground.
std::vector<OdGePoint2d> boxCorners(const OdGeExtents3d& box, const OdGeMatrix3d& toWorld) {
    const OdGePoint3d &a = box.minPoint(), &b = box.maxPoint();
    return {(toWorld * a).xy(), (toWorld * OdGePoint3d(b.x, a.y, a.z)).xy(),
            (toWorld * OdGePoint3d(b.x, b.y, a.z)).xy(), (toWorld * OdGePoint3d(a.x, b.y, a.z)).xy()};
}

// From the first point through the second, far enough to reach past the rectangle from wherever it begins.
bool meetsEndless(const OdGePoint2d& base, const OdGeVector2d& along, bool bothWays, const Rectangle& rectangle) {
    if (along.isZeroLength()) return rectangle.contains(base);
    const double reach = base.distanceTo(rectangle.low) + rectangle.low.distanceTo(rectangle.high) + 1.0;
    const OdGeVector2d step = along.normal() * reach;
    return rectangle.meets(bothWays ? base - step : base, base + step);
}

bool meetsContour(DisplayList::Kind kind, const std::vector<OdGePoint2d>& points, const Rectangle& rectangle) {
    using enum DisplayList::Kind;
    switch (kind) {
        case kMask:  // a wipeout is picked by its frame
            return false;
        case kUnion:
            return rectangle.meetsArea(points);
        case kRay:
        case kInfiniteLine:
            return meetsEndless(points[0], points[1] - points[0], kind == kInfiniteLine, rectangle);
        default:
            for (std::size_t i = 1; i < points.size(); ++i)
                if (rectangle.meets(points[i - 1], points[i])) return true;
            return points.size() == 1 && rectangle.contains(points[0]);
    }
}

bool meetsEdge(const std::vector<OdGePoint2d>& corners, const Rectangle& rectangle) {
    for (std::size_t i = 0; i < corners.size(); ++i)
        if (rectangle.meets(corners[i], corners[(i + 1) % corners.size()])) return true;
    return false;
}

class Meeting {
  public:
    Meeting(const Rectangle& rectangle, Styles& styles) : rectangle_(rectangle), styles_(styles) {}

    bool meets(const OdDbEntity& entity, const OdGeMatrix3d& toWorld, int depth) {
        if (--budget_ < 0) return false;
        if (const auto* const reference = as<OdDbBlockReference>(entity))
            return meetsReference(*reference, toWorld, depth);
        if (entity.isKindOf(OdDbCurve::desc()) || entity.isKindOf(OdDbPoint::desc()) ||
            entity.isKindOf(OdDbWipeout::desc()))
            return meetsShapes(entity, toWorld, depth);
        // A definition of several lines shows its tag too.
        if (const auto* const text = as<OdDbText>(entity);
            text && (!drawingdb::isMultiLine(entity) || as<OdDbAttributeDefinition>(entity)))
            return rectangle_.meetsArea(textCorners(*text, toWorld));
        OdGeExtents3d box;
        if (entity.geomExtents(box)) return rectangle_.meetsArea(boxCorners(box, toWorld));
        return meetsShapes(entity, toWorld, depth);
    }

  private:
    bool meetsReference(const OdDbBlockReference& reference, const OdGeMatrix3d& toWorld, int depth) {
        if (depth >= kDeepestNesting) return false;
        // Those of the outermost one are the caller's: their layers count.
        if (depth > 0 && anyAttributeMeets(reference, toWorld, depth)) return true;
        const auto block = reference.blockTableRecord().openIf<OdDbBlockTableRecord>();
        if (!block) return false;
        return anyCell(reference, budget_, [&](const OdGeMatrix3d& cell) {
            return !isCutOff(reference, toWorld * cell, rectangle_) && meetsBlock(*block, toWorld * cell, depth);
        });
    }

    bool meetsBlock(const OdDbBlockTableRecord& block, const OdGeMatrix3d& toWorld, int depth) {
        for (OdDbObjectId id : block.entities()) {
            if (budget_ < 0) return false;
            const auto inner = id.openIf<OdDbEntity>();
            if (inner && showsInReference(*inner) && meets(*inner, toWorld, depth + 1)) return true;
        }
        return false;
    }

    bool anyAttributeMeets(const OdDbBlockReference& reference, const OdGeMatrix3d& toWorld, int depth) {
        for (OdDbObjectId id : reference.attributes()) {
            const auto attribute = id.openIf<OdDbAttribute>();
            if (attribute && !attribute->isInvisible() && !attribute->isInvisibleEntity() &&
                meets(*attribute, toWorld, depth + 1))
                return true;
        }
        return false;
    }

    // As a plot shows it in which the rectangle is many pixels wide; a dimension shows a block.
    bool meetsShapes(const OdDbEntity& entity, const OdGeMatrix3d& toWorld, int depth) {
        OdGeExtents3d box;
        if (boxOf(entity, box) && !rectangle_.box().intersects(box.transformBy(toWorld))) return false;
        constexpr double kPixels = 1000;
        const OdGeVector2d size = rectangle_.high - rectangle_.low;
        const double scale = std::max({toWorld.xAxis().length(), toWorld.yAxis().length(), toWorld.zAxis().length()});
        list_.clear();
        Shapes shapes(styles_, list_, std::max(size.x, size.y) / kPixels / scale);
        shapes.setHiddenToo(true);
        shapes.add(entity);
        std::vector<DisplayList::Reference> shown;
        for (const DisplayList::Item& item : list_.items()) {
            if (item.kind == DisplayList::Kind::kReference) {
                shown.push_back(list_.reference(item));
                continue;
            }
            if (meetsItem(item, toWorld)) return true;
        }
        for (const DisplayList::Reference& reference : shown) {
            const auto block = reference.block.openIf<OdDbBlockTableRecord>();
            if (block && depth < kDeepestNesting && meetsBlock(*block, toWorld * reference.transform, depth))
                return true;
        }
        return false;
    }

    bool meetsItem(const DisplayList::Item& item, const OdGeMatrix3d& toWorld) {
        const bool isEvenOdd = item.kind == DisplayList::Kind::kArea || item.kind == DisplayList::Kind::kTint;
        bool isInside = false;  // an odd number of contours
        for (std::size_t i = 0; i < item.count; ++i) {
            points_.clear();
            for (const OdGePoint3d& point : list_.contour(item.first + i)) points_.push_back((toWorld * point).xy());
            if (isEvenOdd ? meetsEdge(points_, rectangle_) : meetsContour(item.kind, points_, rectangle_)) return true;
            isInside ^= isEvenOdd && rectangle_.meetsArea(points_);
        }
        return isInside;
    }

    const Rectangle& rectangle_;
    Styles& styles_;
    DisplayList list_;
    std::vector<OdGePoint2d> points_;
    int budget_ = kMostEntities;
};

void collectNested(OdDbObjectId referenceId, const OdGeMatrix3d& toWorld, const Rectangle& rectangle, Styles& styles,
                   drawingdb::LayerStates& layers, std::vector<OdDbObjectId>& containers, int& budget,
                   std::vector<NestedHit>& hits) {
    const auto reference = referenceId.openIf<OdDbBlockReference>();
    if (!reference || containers.size() >= kDeepestNesting) return;
    containers.push_back(referenceId);
    std::vector<NestedHit> found;
    for (OdDbObjectId id : reference->attributes()) {
        const auto attribute = id.openIf<OdDbAttribute>();
        if (attribute && isShown(*attribute, layers) && Meeting(rectangle, styles).meets(*attribute, toWorld, 0))
            found.push_back({id, containers});
    }
    hits.insert(hits.end(), found.rbegin(), found.rend());
    found.clear();
    if (const auto block = reference->blockTableRecord().openIf<OdDbBlockTableRecord>()) {
        anyCell(
            *reference, budget,
            [&](const OdGeMatrix3d& cell) {
                if (isCutOff(*reference, toWorld * cell, rectangle)) return false;
                for (OdDbObjectId id : block->entities()) {
                    if (--budget < 0) return true;
                    const auto entity = id.openIf<OdDbEntity>();
                    if (!entity || !showsInReference(*entity)) continue;
                    if (entity->isKindOf(OdDbBlockReference::desc()))
                        collectNested(id, toWorld * cell, rectangle, styles, layers, containers, budget, found);
                    else if (Meeting(rectangle, styles).meets(*entity, toWorld * cell, 0))
                        found.push_back({id, containers});
                }
                return false;
            });
    }
    hits.insert(hits.end(), found.rbegin(), found.rend());
    containers.pop_back();
}

}  // namespace

bool meetsRectangle(const OdDbEntity& entity, const Rectangle& rectangle, Styles& styles) {
    return Meeting(rectangle, styles).meets(entity, OdGeMatrix3d::kIdentity, 0);
}

bool isShown(const OdDbAttribute& attribute, drawingdb::LayerStates& layers) {
    return !attribute.isInvisible() && !attribute.isInvisibleEntity() && !layers.isHidden(attribute.layerId());
}

std::vector<NestedHit> nestedHits(OdDbObjectId reference, const Rectangle& rectangle, Styles& styles,
                                  drawingdb::LayerStates& layers) {
    std::vector<NestedHit> hits;
    std::vector<OdDbObjectId> containers;
    int budget = kMostEntities;
    collectNested(reference, OdGeMatrix3d::kIdentity, rectangle, styles, layers, containers, budget, hits);
    return hits;
}

}  // namespace host
