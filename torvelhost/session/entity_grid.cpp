#include "torvelhost/session/entity_grid.h"

#include <algorithm>
#include <cmath>

#include "drawingdb/block.h"
#include "drawingdb/text.h"
#include "torvelhost/plot/shapes.h"

namespace host {
namespace {

constexpr int kMostCells = 512;              // in a row
constexpr std::size_t kMostCellsOfOne = 64;  // an entity in more of them is asked about at every place

bool meet(const Rectangle& a, const Rectangle& b) {
    return a.low.x <= b.high.x && b.low.x <= a.high.x && a.low.y <= b.high.y && b.low.y <= a.high.y;
}

}  // namespace

EntityGrid::EntityGrid(OdDbObjectId space) {
    OdGeExtents3d all;
    const auto record = space.openAs<OdDbBlockTableRecord>();
    for (OdDbObjectId id : record->entities()) {
        const auto entity = id.openIf<OdDbEntity>();
        if (!entity) continue;
        OdGeExtents3d box;
        if (const auto* const text = drawingdb::as<OdDbText>(*entity))
            addShownText(*text, box);
        else
            entity->geomExtents(box);
        Entry entry{id, {}, box.isValid()};
        if (entry.hasBox) {
            entry.box = {box.minPoint().xy(), box.maxPoint().xy()};
            all.addExtents(box);
        }
        entries_.push_back(entry);
    }
    if (all.isValid()) all_ = {all.minPoint().xy(), all.maxPoint().xy()};
    side_ = std::clamp(static_cast<int>(std::sqrt(static_cast<double>(entries_.size()) / 2)), 1, kMostCells);
    sortIntoCells();
}

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
    const auto forEachCell = [this](const auto& visit) {
        for (Index i = 0; i < entries_.size(); ++i) {
            const Rectangle& box = entries_[i].box;
            if (!entries_[i].hasBox || cellsOf(box) > kMostCellsOfOne) continue;
            const Span columns = columnsOf(box), rows = rowsOf(box);
            for (int row = rows.first; row <= rows.last; ++row)
                for (int column = columns.first; column <= columns.last; ++column)
                    visit(static_cast<std::size_t>(row) * static_cast<std::size_t>(side_) +
                              static_cast<std::size_t>(column),
                          i);
        }
    };
    for (Index i = 0; i < entries_.size(); ++i)
        if (!entries_[i].hasBox || cellsOf(entries_[i].box) > kMostCellsOfOne) everywhere_.push_back(i);
    cellBegins_.assign(static_cast<std::size_t>(side_) * static_cast<std::size_t>(side_) + 1, 0);
    forEachCell([this](std::size_t cell, Index) { ++cellBegins_[cell + 1]; });
    for (std::size_t cell = 1; cell < cellBegins_.size(); ++cell) cellBegins_[cell] += cellBegins_[cell - 1];
    inCells_.resize(cellBegins_.back());
    std::vector<Index> next(cellBegins_.begin(), cellBegins_.end() - 1);
    forEachCell([&](std::size_t cell, Index entry) { inCells_[next[cell]++] = entry; });
}

std::vector<const EntityGrid::Entry*> EntityGrid::meeting(const Rectangle& rectangle) const {
    std::vector<Index> found;
    const auto add = [&](Index entry) {
        if (!entries_[entry].hasBox || meet(entries_[entry].box, rectangle)) found.push_back(entry);
    };
    for (Index entry : everywhere_) add(entry);
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
    std::vector<const Entry*> entries;
    entries.reserve(found.size());
    for (Index entry : found) entries.push_back(&entries_[entry]);
    return entries;
}

}  // namespace host
