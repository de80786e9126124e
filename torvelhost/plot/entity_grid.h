// Where the entities of a space lie, seen from above: asked for the few at a place, by those who draw and those who
// pick.
//
// A grid is made in one pass over the space; afterwards it is told what changed.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

#include "torvelhost/plot/extents.h"
#include "torvelhost/plot/rectangle.h"

namespace host {

class EntityGrid {
  public:
    using Index = std::uint32_t;
    static constexpr Index kNone = ~Index{0};

    struct Entry {
        OdDbObjectId id;
        OdDbObjectId block;    // that it shows; null for none
        Rectangle box;         // of what it shows; not of one without a box
        bool hasBox = false;   // infinite lines have none
        bool endless = false;  // it shows something outside of the box
    };

    /// Those whose box shares a point with the rectangle, and those that may show anywhere, in the order of the space.
    /// Erased entities are not among them.
    std::vector<const Entry*> meeting(const Rectangle& rectangle) const;
    /// All of them.
    std::vector<const Entry*> all() const;
    /// From the order of the space into that in which its entities are drawn.
    void sortForDrawing(std::vector<const Entry*>& entries);

    /// Entries keep their numbers, those of erased entities too.
    Index indexOf(const Entry& entry) const { return static_cast<Index>(&entry - entries_.data()); }
    /// kNone for an entity that is not in the grid.
    Index indexOf(OdDbObjectId id);
    std::size_t size() const { return entries_.size(); }

  private:
    friend class EntityGrids;
    struct Span {
        int first, last;
    };

    EntityGrid(OdDbObjectId space, BlockBounds& blocks);
    /// The part that is made: 1 when the grid is whole.
    double makeUntil(std::chrono::steady_clock::time_point end);
    Entry entryOf(OdDbObjectId id) const;
    void touch(OdDbObjectId id);
    void blocksMoved(const std::unordered_set<OdDbObjectId>& blocks);
    void replace(Index index, const Entry& entry);
    void forgetDrawOrder() { drawOrderKnown_ = false; }

    Span columnsOf(const Rectangle& rectangle) const;
    Span rowsOf(const Rectangle& rectangle) const;
    std::size_t cellsOf(const Rectangle& box) const;
    void sortIntoCells();

    OdDbObjectId space_;
    BlockBounds& blocks_;
    std::size_t expected_ = 0;  // entities, while the grid is made
    OdDbObjectIdRange::Iterator next_;
    bool made_ = false;

    std::vector<Entry> entries_;
    std::unordered_map<OdDbObjectId, Index> indices_;  // once somebody asks
    Rectangle all_;
    int side_ = 1;                   // cells in a row, and rows
    std::vector<Index> cellBegins_;  // cell by cell, row by row: where its entries begin in `inCells_`
    std::vector<Index> inCells_;
    std::vector<Index> everywhere_;  // too large for single cells, or endless
    std::vector<Index> moved_;       // since the others were sorted into cells
    bool drawOrderKnown_ = false;
    std::unordered_map<OdDbObjectId, Index> drawOrder_;  // places; empty: the order of the space
};

/// The grids of a drawing, each made when it is first asked for.
class EntityGrids {
  public:
    /// The database is referenced.
    explicit EntityGrids(OdDbDatabase& database);
    EntityGrids(const EntityGrids&) = delete;
    EntityGrids& operator=(const EntityGrids&) = delete;

    OdDbDatabase& database() const { return database_; }
    /// Takes in what changed in the drawing since the last call. To be called with nothing open for write.
    void update();
    /// A whole grid; as the drawing was at the last update.
    EntityGrid& of(OdDbObjectId space);
    /// Makes a part of a grid; returns how much of it there is: 1 when it is whole.
    double makeUntil(OdDbObjectId space, std::chrono::steady_clock::time_point end);
    BlockBounds& blocks() { return *blocks_; }
    /// Those that the grids are made with; until the next update.
    Styles& styles() { return *styles_; }
    /// Another number whenever the entries of all grids have got others.
    std::uint64_t numbering() const { return numbering_; }

    /// Another number after every update that took something in: entries may have moved.
    std::uint64_t updates() const { return updates_; }

    /// What a change of something else than an entity can change in a picture.
    enum class Concern { kNothing, kOrder, kLooks, kBlock, kEverything };
    static Concern concernOf(OdDbObjectId object);

  private:
    void makeAnew();

    OdDbDatabase& database_;
    OdDbTouchMark mark_;
    std::unique_ptr<Styles> styles_;
    std::unique_ptr<BlockBounds> blocks_;
    std::map<OdDbObjectId, EntityGrid> grids_;
    std::int64_t attributeMode_ = 1;
    std::uint64_t numbering_ = 0, updates_ = 0;
};

}  // namespace host
