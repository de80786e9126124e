#include "torvelhost/plot/entity_grid.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "drawingdb/block.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/field.h"
#include "drawingdb/layer.h"
#include "drawingdb/layout.h"
#include "drawingdb/viewport.h"

namespace host {
namespace {

constexpr int kMostCells = 512;              // in a row
constexpr std::size_t kMostCellsOfOne = 64;  // an entity in more of them is asked about at every place

}  // namespace

// ---- making

EntityGrid::EntityGrid(OdDbObjectId space, BlockBounds& blocks) : space_(space), blocks_(blocks) {
    if (const auto record = space.openIf<OdDbBlockTableRecord>()) {
        // Erased ones too: they may come back.
        const OdDbObjectIdRange all = record->entities(false);
        for (auto place = all.begin(); place != all.end(); ++place) ++expected_;
        next_ = all.begin();
    }
    entries_.reserve(expected_);
}

double EntityGrid::makeUntil(std::chrono::steady_clock::time_point end) {
    if (made_) return 1;
    while (next_ != OdDbObjectIdRange::Iterator()) {
        entries_.push_back(entryOf(*next_));
        ++next_;
        if (entries_.size() % 16 == 0 && std::chrono::steady_clock::now() >= end)
            return 0.99 * static_cast<double>(entries_.size()) /
                   static_cast<double>(std::max<std::size_t>(expected_, 1));
    }
    sortIntoCells();
    made_ = true;
    return 1;
}

EntityGrid::Entry EntityGrid::entryOf(OdDbObjectId id) const {
    Entry entry{id, {}, {}};
    const auto entity = id.isErased() ? OdSmartPtr<OdDbEntity>() : id.openIf<OdDbEntity>();
    if (!entity) return entry;
    Bounds bounds;
    if (entity->isKindOf(OdDbViewport::desc()))
        entity->geomExtents(bounds.box);  // its frame
    else
        entry.block = blocks_.add(*entity, bounds);
    entry.hasBox = bounds.box.isValid();
    entry.endless = bounds.endless || !entry.hasBox;
    if (entry.hasBox) entry.box = {bounds.box.minPoint().xy(), bounds.box.maxPoint().xy()};
    return entry;
}

EntityGrid::Index EntityGrid::indexOf(OdDbObjectId id) {
    if (indices_.empty()) {
        indices_.reserve(entries_.size());
        for (Index i = 0; i < entries_.size(); ++i) indices_.emplace(entries_[i].id, i);
    }
    const auto found = indices_.find(id);
    return found == indices_.end() ? kNone : found->second;
}

// ---- what changed

void EntityGrid::touch(OdDbObjectId id) {
    const Index index = indexOf(id);
    if (index != kNone) return replace(index, entryOf(id));
    if (id.isErased()) return;
    if (!drawOrder_.empty()) forgetDrawOrder();
    // What is new stands behind all others of its space.
    entries_.push_back({id, {}, {}});
    indices_.emplace(id, static_cast<Index>(entries_.size() - 1));
    replace(static_cast<Index>(entries_.size() - 1), entryOf(id));
}

void EntityGrid::blocksMoved(const std::unordered_set<OdDbObjectId>& blocks) {
    for (Index i = 0; i < entries_.size(); ++i)
        if (entries_[i].block && blocks.count(entries_[i].block) != 0) replace(i, entryOf(entries_[i].id));
}

// Where it was it stays in its cells; where it is, it is asked about at every place until all are sorted again.
void EntityGrid::replace(Index index, const Entry& entry) {
    Entry& old = entries_[index];
    const bool stays = old.hasBox && old.hasBox == entry.hasBox && old.endless == entry.endless &&
                       old.box.contains(entry.box) && entry.box.contains(old.box);
    old = entry;
    if (stays) return;
    moved_.push_back(index);
    if (moved_.size() > 256 + entries_.size() / 16) sortIntoCells();
}

// ---- cells

EntityGrid::Span EntityGrid::columnsOf(const Rectangle& rectangle) const {
    const double width = (all_.high.x - all_.low.x) / side_;
    const auto column = [&](double x) {
        return width > 0 ? static_cast<int>(std::clamp((x - all_.low.x) / width, 0.0, side_ - 1.0)) : 0;
    };
    return {column(rectangle.low.x), column(rectangle.high.x)};
}

EntityGrid::Span EntityGrid::rowsOf(const Rectangle& rectangle) const {
    const double height = (all_.high.y - all_.low.y) / side_;
    const auto row = [&](double y) {
        return height > 0 ? static_cast<int>(std::clamp((y - all_.low.y) / height, 0.0, side_ - 1.0)) : 0;
    };
    return {row(rectangle.low.y), row(rectangle.high.y)};
}

std::size_t EntityGrid::cellsOf(const Rectangle& box) const {
    const Span columns = columnsOf(box), rows = rowsOf(box);
    return static_cast<std::size_t>(columns.last - columns.first + 1) *
           static_cast<std::size_t>(rows.last - rows.first + 1);
}

// Counts what each cell holds, then puts it there.
void EntityGrid::sortIntoCells() {
    constexpr double kFar = std::numeric_limits<double>::infinity();
    all_ = {{kFar, kFar}, {-kFar, -kFar}};
    for (const Entry& entry : entries_) {
        if (!entry.hasBox) continue;
        all_.low.set(std::min(all_.low.x, entry.box.low.x), std::min(all_.low.y, entry.box.low.y));
        all_.high.set(std::max(all_.high.x, entry.box.high.x), std::max(all_.high.y, entry.box.high.y));
    }
    if (!(all_.low.x <= all_.high.x)) all_ = {};
    side_ = std::clamp(static_cast<int>(std::sqrt(static_cast<double>(entries_.size()) / 2)), 1, kMostCells);
    moved_.clear();
    everywhere_.clear();

    const auto isInCells = [this](const Entry& entry) {
        return entry.hasBox && !entry.endless && cellsOf(entry.box) <= kMostCellsOfOne;
    };
    const auto forEachCell = [&](const auto& visit) {
        for (Index i = 0; i < entries_.size(); ++i) {
            if (!isInCells(entries_[i])) continue;
            const Span columns = columnsOf(entries_[i].box), rows = rowsOf(entries_[i].box);
            for (int row = rows.first; row <= rows.last; ++row)
                for (int column = columns.first; column <= columns.last; ++column)
                    visit(static_cast<std::size_t>(row) * static_cast<std::size_t>(side_) +
                              static_cast<std::size_t>(column),
                          i);
        }
    };
    for (Index i = 0; i < entries_.size(); ++i)
        if (!isInCells(entries_[i])) everywhere_.push_back(i);
    cellBegins_.assign(static_cast<std::size_t>(side_) * static_cast<std::size_t>(side_) + 1, 0);
    forEachCell([this](std::size_t cell, Index) { ++cellBegins_[cell + 1]; });
    for (std::size_t cell = 1; cell < cellBegins_.size(); ++cell) cellBegins_[cell] += cellBegins_[cell - 1];
    inCells_.resize(cellBegins_.back());
    std::vector<Index> next(cellBegins_.begin(), cellBegins_.end() - 1);
    forEachCell([&](std::size_t cell, Index entry) { inCells_[next[cell]++] = entry; });
}

// ---- asking

std::vector<const EntityGrid::Entry*> EntityGrid::meeting(const Rectangle& rectangle) const {
    std::vector<const Entry*> found;
    const auto add = [&](Index index) {
        const Entry& entry = entries_[index];
        if ((entry.endless || entry.box.meets(rectangle)) && !entry.id.isErased()) found.push_back(&entry);
    };
    if (rectangle.contains(all_)) {
        for (Index i = 0; i < entries_.size(); ++i) add(i);
        return found;
    }
    for (Index entry : everywhere_) add(entry);
    for (Index entry : moved_) add(entry);
    const Span columns = columnsOf(rectangle), rows = rowsOf(rectangle);
    for (int row = rows.first; row <= rows.last; ++row) {
        for (int column = columns.first; column <= columns.last; ++column) {
            const std::size_t cell =
                static_cast<std::size_t>(row) * static_cast<std::size_t>(side_) + static_cast<std::size_t>(column);
            for (Index i = cellBegins_[cell]; i < cellBegins_[cell + 1]; ++i) add(inCells_[i]);
        }
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

std::vector<const EntityGrid::Entry*> EntityGrid::all() const {
    std::vector<const Entry*> found;
    for (const Entry& entry : entries_)
        if (!entry.id.isErased()) found.push_back(&entry);
    return found;
}

void EntityGrid::sortForDrawing(std::vector<const Entry*>& entries) {
    if (!drawOrderKnown_) {
        drawOrderKnown_ = true;
        drawOrder_.clear();
        const auto record = space_.openIf<OdDbBlockTableRecord>();
        if (record && record->hasDrawOrder()) {
            Index place = 0;
            for (const OdDbObjectId id : record->entitiesInDrawOrder()) drawOrder_.emplace(id, place++);
        }
    }
    if (drawOrder_.empty()) return;
    const auto placeOf = [this](const Entry* entry) {
        const auto found = drawOrder_.find(entry->id);
        return found == drawOrder_.end() ? kNone : found->second;
    };
    std::ranges::stable_sort(entries, {}, placeOf);
}

// ---- the grids of a drawing

EntityGrids::EntityGrids(OdDbDatabase& database) : database_(database), mark_(database) { makeAnew(); }

void EntityGrids::makeAnew() {
    grids_.clear();
    styles_ = std::make_unique<Styles>(database_);
    blocks_ = std::make_unique<BlockBounds>(*styles_);
    attributeMode_ = database_.headerInteger("$ATTMODE", 1);
    ++numbering_;
}

EntityGrids::Concern EntityGrids::concernOf(OdDbObjectId object) {
    if (object.isKindOf(OdDbBlockTableRecord::desc())) return Concern::kBlock;
    if (object.isKindOf(OdDbDictionary::desc())) return Concern::kOrder;
    if (object.isKindOf(OdDbField::desc()) || object.isKindOf(OdDbLayout::desc())) return Concern::kNothing;
    const OdDbDatabase& database = *object.database();
    const OdDbObjectId table = object.containerId();
    if (table && (table == database.layerTableId() || table == database.linetypeTableId())) return Concern::kLooks;
    for (const char* const name : {"APPID", "UCS", "VIEW", "VPORT"})
        if (table && table == database.tableId(name)) return Concern::kNothing;
    // What carried objects say is not known: one of them may be the order of drawing, or the style of a line.
    return Concern::kEverything;
}

void EntityGrids::update() {
    const OdDbTouched touched = database_.takeTouched(mark_);
    if (touched.empty()) return;
    const auto concerns = [](OdDbObjectId id) { return concernOf(id) != Concern::kNothing; };
    if (touched.header || !touched.entities.empty() || std::ranges::any_of(touched.others, concerns)) ++updates_;
    if (touched.header && database_.headerInteger("$ATTMODE", 1) != attributeMode_) return makeAnew();
    bool order = false;
    std::unordered_set<OdDbObjectId> changed;
    for (const OdDbObjectId id : touched.others) {
        const Concern concern = concernOf(id);
        // A block that was missing may be there now.
        const bool isKnown = blocks_->knows(id) || blocks_->missesBlock() || grids_.count(id) != 0;
        if (concern == Concern::kEverything || (concern == Concern::kBlock && isKnown)) return makeAnew();
        order |= concern == Concern::kOrder;
    }
    for (const OdDbObjectId id : touched.entities)
        if (const OdDbObjectId block = id.containerId(); blocks_->knows(block)) changed.insert(block);
    const std::unordered_set<OdDbObjectId> moved =
        changed.empty() ? std::unordered_set<OdDbObjectId>() : blocks_->measureAnew(changed);
    for (auto& [space, grid] : grids_) {
        // One that is still being made has begun with what was there then.
        if (!grid.made_) return makeAnew();
        if (order) grid.forgetDrawOrder();
        if (!moved.empty()) grid.blocksMoved(moved);
    }
    for (const OdDbObjectId id : touched.entities)
        if (const auto grid = grids_.find(id.containerId()); grid != grids_.end()) grid->second.touch(id);
}

EntityGrid& EntityGrids::of(OdDbObjectId space) {
    makeUntil(space, std::chrono::steady_clock::time_point::max());
    return grids_.at(space);
}

double EntityGrids::makeUntil(OdDbObjectId space, std::chrono::steady_clock::time_point end) {
    const auto found = grids_.find(space);
    EntityGrid& grid =
        found != grids_.end() ? found->second : grids_.emplace(space, EntityGrid(space, *blocks_)).first->second;
    return grid.makeUntil(end);
}

}  // namespace host
