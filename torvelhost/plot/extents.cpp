#include "torvelhost/plot/extents.h"

#include <algorithm>
#include <cmath>

#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/reference_cells.h"
#include "drawingdb/text.h"
#include "drawingdb/text_metrics.h"
#include "drawingdb/viewport.h"
#include "torvelhost/fonts/fonts.h"

namespace host {
namespace {

// Adds text only when it might reach out of the box.
void addText(const OdDbText& text, const OdString& shown, OdGeExtents3d& box) {
    const double reach = reachOf(text, shown);
    const OdGeVector3d around(reach, reach, 0);
    const OdGePoint3d position = text.position();
    if (box.isValid() && box.contains(position - around) && box.contains(position + around)) return;
    for (const OdGePoint3d& corner : cornersOf(text, shown)) box.addPoint(corner);
}

// From above: what a clip leaves of a box.
void cutAt(const std::vector<OdGePoint3d>& clip, OdGeExtents3d& box) {
    OdGeExtents3d around;
    for (const OdGePoint3d& corner : clip) around.addPoint(corner);
    if (!box.isValid()) return;
    const OdGePoint3d low(std::max(box.minPoint().x, around.minPoint().x),
                          std::max(box.minPoint().y, around.minPoint().y), box.minPoint().z);
    const OdGePoint3d high(std::min(box.maxPoint().x, around.maxPoint().x),
                           std::min(box.maxPoint().y, around.maxPoint().y), box.maxPoint().z);
    box = OdGeExtents3d();
    if (low.x <= high.x && low.y <= high.y) box.addPoint(low).addPoint(high);
}

}  // namespace

void addShownText(const OdDbText& text, OdGeExtents3d& box) {
    OdGeExtents3d own;
    const auto* const definition = drawingdb::as<OdDbAttributeDefinition>(text);
    if (definition && !definition->isConstant()) {
        addText(text, definition->tag(), box);
    } else if (!definition && drawingdb::isMultiLine(text)) {
        if (text.geomExtents(own)) box.addExtents(own);
    } else {
        addText(text, text.textString(), box);
    }
}

double reachOf(const OdDbText& text, const OdString& shown) {
    // Fitted text reaches from one of its points to the other.
    const double width = std::max(1.0, std::fabs(text.widthFactor()));
    double reach = kWidestGlyph * text.height() * (static_cast<double>(shown.size()) * width + 2);
    if (text.isJustified()) reach += text.position().distanceTo(text.alignmentPoint());
    return reach;
}

BlockBounds::BlockBounds(Styles& styles)
    : styles_(styles), allAttributes_(styles.database().headerInteger("$ATTMODE", 1) == 2) {}

const Bounds& BlockBounds::of(OdDbObjectId block) {
    const auto [entry, isNew] = known_.try_emplace(block);
    // Of a block that holds itself there is nothing so far.
    if (!isNew || depth_ == kDeepestNesting) return entry->second.bounds;
    ++depth_;
    Known known;
    if (const auto record = block.openIf<OdDbBlockTableRecord>()) {
        for (OdDbObjectId id : record->entities()) {
            const auto entity = id.openIf<OdDbEntity>();
            if (!entity || entity->isInvisibleEntity()) continue;
            const auto* const definition = drawingdb::as<OdDbAttributeDefinition>(*entity);
            if (definition && !definition->isConstant()) continue;
            if (const OdDbObjectId shown = add(*entity, known.bounds))
                if (known.shown.empty() || known.shown.back() != shown) known.shown.push_back(shown);
        }
    }
    --depth_;
    return (known_[block] = std::move(known)).bounds;
}

std::unordered_set<OdDbObjectId> BlockBounds::measureAnew(const std::unordered_set<OdDbObjectId>& changed) {
    std::unordered_map<OdDbObjectId, Known> before;
    const auto take = [&](OdDbObjectId block) {
        if (auto node = known_.extract(block)) before.insert(std::move(node));
    };
    for (const OdDbObjectId block : changed) take(block);
    for (std::size_t count = 0; count != before.size();) {
        count = before.size();
        std::vector<OdDbObjectId> around;
        for (const auto& [block, known] : known_)
            if (std::ranges::any_of(known.shown, [&](OdDbObjectId shown) { return before.count(shown) != 0; }))
                around.push_back(block);
        for (const OdDbObjectId block : around) take(block);
    }
    std::unordered_set<OdDbObjectId> moved;
    for (const auto& [block, known] : before)
        if (!(of(block) == known.bounds)) moved.insert(block);
    return moved;
}

OdGeExtents3d inAllCells(const OdGeExtents3d& box, const DisplayList::Reference& reference) {
    return drawingdb::inAllCells(box, reference.columnStep * (reference.columns - 1),
                                 reference.rowStep * (reference.rows - 1));
}

Bounds BlockBounds::of(const DisplayList::Reference& reference) {
    Bounds bounds = of(reference.block);
    if (reference.clip) cutAt(*reference.clip, bounds.box);
    bounds.box.transformBy(reference.transform);
    bounds.box = inAllCells(bounds.box, reference);
    return bounds;
}

OdDbObjectId BlockBounds::addReference(const OdDbBlockReference& reference, Bounds& bounds) {
    const DisplayList::Reference item = referenceOf(reference);
    const Bounds block = of(item);
    bounds.box.addExtents(block.box);
    bounds.endless |= block.endless || !item.block;
    bounds.marked |= block.marked;
    const bool isArray = item.columns > 1 || item.rows > 1;
    OdGeExtents3d attributes;
    for (OdDbObjectId id : reference.attributes()) {
        const auto attribute = id.openIf<OdDbAttribute>();
        if (attribute && (allAttributes_ || !attribute->isInvisible()) && !attribute->isInvisibleEntity())
            addShownText(*attribute, isArray ? attributes : bounds.box);
    }
    bounds.box.addExtents(inAllCells(attributes, item));
    return item.block;
}

OdDbObjectId BlockBounds::add(const OdDbEntity& entity, Bounds& bounds) {
    if (const auto* const reference = drawingdb::as<OdDbBlockReference>(entity))
        return addReference(*reference, bounds);
    if (const auto* const text = drawingdb::as<OdDbText>(entity)) {
        addShownText(*text, bounds.box);
        return {};
    }
    if (entity.isKindOf(OdDbConstructionLine::desc())) {
        bounds.endless = true;
        return {};
    }
    bounds.marked |= entity.isKindOf(OdDbPoint::desc());
    OdGeExtents3d box;
    if (boxOf(entity, box)) {
        bounds.box.addExtents(box);
        return {};
    }
    DisplayList list;
    Shapes shapes(styles_, list, 0);
    shapes.setHiddenToo(true);
    shapes.add(entity);
    if (shapes.missesBlock()) bounds.endless = missesBlock_ = true;
    bounds.box.addExtents(list.box());
    OdDbObjectId shown;
    for (const DisplayList::Item& item : list.items()) {
        if (item.kind != DisplayList::Kind::kReference) continue;
        shown = list.reference(item).block;
        const Bounds block = of(list.reference(item));
        bounds.box.addExtents(block.box);
        bounds.endless |= block.endless;
        bounds.marked |= block.marked;
    }
    return shown;
}

std::optional<OdGeExtents3d> extentsOfSpace(OdDbObjectId space) {
    const auto record = space.openAs<OdDbBlockTableRecord>();
    Styles styles(*record->database());
    BlockBounds blocks(styles);
    Bounds bounds;
    OdGeExtents3d basePoints;
    for (OdDbObjectId id : record->entities()) {
        const auto entity = id.openIf<OdDbEntity>();
        if (!entity || entity->isInvisibleEntity() || styles.isHidden(styles.styleOf(*entity))) continue;
        if (const auto* const viewport = drawingdb::as<OdDbViewport>(*entity)) {
            // The layout's own viewport is the paper.
            OdGeExtents3d frame;
            if (viewport->number() > 1 && viewport->geomExtents(frame)) bounds.box.addExtents(frame);
            continue;
        }
        if (const auto* const line = drawingdb::as<OdDbConstructionLine>(*entity))
            basePoints.addPoint(line->basePoint());
        blocks.add(*entity, bounds);
    }
    if (bounds.box.isValid()) return bounds.box;
    if (basePoints.isValid()) return basePoints;
    return std::nullopt;
}

}  // namespace host
