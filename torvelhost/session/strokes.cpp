// Whether an entity shows anything in a rectangle, kind by kind, also inside references.
#include "torvelhost/session/strokes.h"

#include <algorithm>
#include <cmath>
#include <functional>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/old_polyline.h"
#include "drawingdb/reference_cells.h"
#include "drawingdb/spline.h"
#include "drawingdb/text.h"
#include "drawingdb/text_metrics.h"
#include "drawingdb/wipeout.h"
#include "torvelhost/plot/cut.h"
#include "torvelhost/plot/shapes.h"

namespace host {
namespace {

using drawingdb::as;

constexpr int kStepsPerTurn = 96;
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

bool meetsCurve(const OdDbCurve& curve, const OdGeMatrix3d& toWorld, const Rectangle& rectangle, double from, double to,
                int steps) {
    OdGePoint2d last = (toWorld * curve.pointAtParam(from)).xy();
    for (int i = 1; i <= steps; ++i) {
        const OdGePoint2d next = (toWorld * curve.pointAtParam(from + (to - from) * i / steps)).xy();
        if (rectangle.meets(last, next)) return true;
        last = next;
    }
    return false;
}

bool meetsConstructionLine(const OdDbConstructionLine& line, const OdGeMatrix3d& toWorld, const Rectangle& rectangle) {
    const OdGePoint2d base = (toWorld * line.basePoint()).xy();
    const OdGeVector2d direction = (toWorld * line.unitDir()).xy();
    if (direction.isZeroLength()) return rectangle.contains(base);
    // Long enough to reach past the rectangle from wherever it begins.
    const double reach = base.distanceTo(rectangle.low) + rectangle.low.distanceTo(rectangle.high) + 1.0;
    const OdGeVector2d step = direction.normal() * reach;
    const bool bothWays = line.isKindOf(OdDbXline::desc());
    return rectangle.meets(bothWays ? base - step : base, base + step);
}

// How finely a smooth piece of a curve is looked at; pieces count from 0.
int stepsOfPiece(const OdDbCurve& curve, std::size_t piece) {
    constexpr int kStepsPerSpan = 24;
    const auto stepsOfBulge = [](double bulge) { return bulge == 0 ? 1 : kStepsPerTurn / 2; };
    if (const auto* const polyline = as<OdDbPolyline>(curve)) return stepsOfBulge(polyline->vertexAt(piece).bulge);
    if (const auto* const old = as<OdDbOldPolyline>(curve)) return stepsOfBulge(old->vertices()[piece].bulge);
    if (curve.isKindOf(OdDbLine::desc())) return 1;
    return curve.isKindOf(OdDbSpline::desc()) ? kStepsPerSpan : kStepsPerTurn;
}

bool meetsCurve(const OdDbCurve& curve, const OdGeMatrix3d& toWorld, const Rectangle& rectangle) {
    const std::vector<double> breaks = curve.breakParams();
    OdGeExtents3d box;
    if (breaks.size() < 3 && !curve.geomExtents(box)) return false;  // without vertices, or damaged
    if (rectangle.contains((toWorld * curve.pointAtParam(breaks.front())).xy())) return true;
    for (std::size_t i = 1; i < breaks.size(); ++i)
        if (meetsCurve(curve, toWorld, rectangle, breaks[i - 1], breaks[i], stepsOfPiece(curve, i - 1))) return true;
    return false;
}

// A wipeout is picked by its frame.
bool meetsFrame(const OdDbWipeout& wipeout, const OdGeMatrix3d& toWorld, const Rectangle& rectangle) {
    const std::vector<OdGePoint3d> corners = wipeout.boundary();
    for (std::size_t i = 1; i < corners.size(); ++i)
        if (rectangle.meets((toWorld * corners[i - 1]).xy(), (toWorld * corners[i]).xy())) return true;
    return false;
}

class Meeting {
  public:
    explicit Meeting(const Rectangle& rectangle) : rectangle_(rectangle) {}

    bool meets(const OdDbEntity& entity, const OdGeMatrix3d& toWorld, int depth) {
        if (--budget_ < 0) return false;
        if (const auto* const reference = as<OdDbBlockReference>(entity))
            return meetsReference(*reference, toWorld, depth);
        if (const auto* const line = as<OdDbConstructionLine>(entity))
            return meetsConstructionLine(*line, toWorld, rectangle_);
        if (const auto* const point = as<OdDbPoint>(entity))
            return rectangle_.contains((toWorld * point->position()).xy());
        if (const auto* const curve = as<OdDbCurve>(entity)) return meetsCurve(*curve, toWorld, rectangle_);
        if (const auto* const wipeout = as<OdDbWipeout>(entity)) return meetsFrame(*wipeout, toWorld, rectangle_);
        // A definition of several lines shows its tag too.
        if (const auto* const text = as<OdDbText>(entity);
            text && (!drawingdb::isMultiLine(entity) || as<OdDbAttributeDefinition>(entity)))
            return rectangle_.meetsArea(textCorners(*text, toWorld));
        OdGeExtents3d box;
        return entity.geomExtents(box) && rectangle_.meetsArea(boxCorners(box, toWorld));
    }

  private:
    bool meetsReference(const OdDbBlockReference& reference, const OdGeMatrix3d& toWorld, int depth) {
        if (depth >= kDeepestNesting) return false;
        // Those of the outermost one are the caller's: their layers count.
        if (depth > 0 && anyAttributeMeets(reference, toWorld, depth)) return true;
        const auto block = reference.blockTableRecord().openIf<OdDbBlockTableRecord>();
        if (!block) return false;
        return anyCell(reference, budget_, [&](const OdGeMatrix3d& cell) {
            for (OdDbObjectId id : block->entities()) {
                if (budget_ < 0) return false;
                const auto inner = id.openIf<OdDbEntity>();
                if (inner && showsInReference(*inner) && meets(*inner, toWorld * cell, depth + 1)) return true;
            }
            return false;
        });
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

    const Rectangle& rectangle_;
    int budget_ = kMostEntities;
};

void collectNested(OdDbObjectId referenceId, const OdGeMatrix3d& toWorld, const Rectangle& rectangle,
                   drawingdb::LayerStates& layers, std::vector<OdDbObjectId>& containers, int& budget,
                   std::vector<NestedHit>& hits) {
    const auto reference = referenceId.openIf<OdDbBlockReference>();
    if (!reference || containers.size() >= kDeepestNesting) return;
    containers.push_back(referenceId);
    std::vector<NestedHit> found;
    for (OdDbObjectId id : reference->attributes()) {
        const auto attribute = id.openIf<OdDbAttribute>();
        if (attribute && isShown(*attribute, layers) && Meeting(rectangle).meets(*attribute, toWorld, 0))
            found.push_back({id, containers});
    }
    hits.insert(hits.end(), found.rbegin(), found.rend());
    found.clear();
    if (const auto block = reference->blockTableRecord().openIf<OdDbBlockTableRecord>()) {
        anyCell(
            *reference, budget,
            [&](const OdGeMatrix3d& cell) {
                for (OdDbObjectId id : block->entities()) {
                    if (--budget < 0) return true;
                    const auto entity = id.openIf<OdDbEntity>();
                    if (!entity || !showsInReference(*entity)) continue;
                    if (entity->isKindOf(OdDbBlockReference::desc()))
                        collectNested(id, toWorld * cell, rectangle, layers, containers, budget, found);
                    else if (Meeting(rectangle).meets(*entity, toWorld * cell, 0))
                        found.push_back({id, containers});
                }
                return false;
            });
    }
    hits.insert(hits.end(), found.rbegin(), found.rend());
    containers.pop_back();
}

}  // namespace

bool meetsRectangle(const OdDbEntity& entity, const OdGeMatrix3d& toWorld, const Rectangle& rectangle) {
    return Meeting(rectangle).meets(entity, toWorld, 0);
}

bool isShown(const OdDbAttribute& attribute, drawingdb::LayerStates& layers) {
    return !attribute.isInvisible() && !attribute.isInvisibleEntity() && !layers.isHidden(attribute.layerId());
}

std::vector<NestedHit> nestedHits(OdDbObjectId reference, const Rectangle& rectangle, drawingdb::LayerStates& layers) {
    std::vector<NestedHit> hits;
    std::vector<OdDbObjectId> containers;
    int budget = kMostEntities;
    collectNested(reference, OdGeMatrix3d::kIdentity, rectangle, layers, containers, budget, hits);
    return hits;
}

}  // namespace host
