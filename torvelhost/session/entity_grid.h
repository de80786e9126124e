// Where the entities of a space lie, seen from above: made in one pass over them, then asked for the few at a place.
#pragma once

#include <cstdint>
#include <vector>

#include "torvelhost/session/strokes.h"

namespace host {

class EntityGrid {
  public:
    struct Entry {
        OdDbObjectId id;
        Rectangle box;        // not of one without a box
        bool hasBox = false;  // infinite lines have none
    };

    /// Takes the entities as they are now; erased ones are not among them.
    explicit EntityGrid(OdDbObjectId space);

    /// Those whose box shares a point with the rectangle, and those without a box, in the order of the space.
    std::vector<const Entry*> meeting(const Rectangle& rectangle) const;

  private:
    using Index = std::uint32_t;
    struct Span {
        int first, last;
    };
    Span columnsOf(const Rectangle& rectangle) const;
    Span rowsOf(const Rectangle& rectangle) const;
    std::size_t cellsOf(const Rectangle& box) const;
    void sortIntoCells();

    std::vector<Entry> entries_;
    Rectangle all_;
    int side_ = 1;                   // cells in a row, and rows
    std::vector<Index> cellBegins_;  // cell by cell, row by row: where its entries begin in `inCells_`
    std::vector<Index> inCells_;
    std::vector<Index> everywhere_;  // too large for single cells, or without a box
};

}  // namespace host
