// How far entities reach.
#pragma once

#include <optional>
#include <unordered_map>

#include "drawingdb/block_reference.h"
#include "drawingdb/text.h"
#include "torvelhost/plot/shapes.h"

namespace host {

struct Bounds {
    OdGeExtents3d box;     // of all that ends
    bool endless = false;  // infinite lines are among it
    bool marked = false;   // points are, whose marks reach as far however small a block is shown
};

/// Blocks in blocks beyond that are not looked at: only faulty files have them.
inline constexpr int kDeepestNesting = 64;

class BlockBounds {
  public:
    explicit BlockBounds(Styles& styles) : styles_(styles) {}

    /// In the block's coordinates. Kept, for blocks do not change while they are plotted.
    const Bounds& of(OdDbObjectId block);
    /// In the coordinates that the reference stands in.
    Bounds of(const DisplayList::Reference& reference);
    /// Adds an entity of a space or a block.
    void add(const OdDbEntity& entity, Bounds& bounds);

  private:
    void addReference(const OdDbBlockReference& reference, Bounds& bounds);

    Styles& styles_;
    std::unordered_map<OdDbObjectId, Bounds> known_;
    int depth_ = 0;
};

/// The box in all cells of a reference, given in the first.
OdGeExtents3d inAllCells(const OdGeExtents3d& box, const DisplayList::Reference& reference);

/// No stroke of the text reaches farther than this from its position or its alignment point, by a generous estimate
/// that costs little.
double reachOf(const OdDbText& text, const OdString& shown);

/// The box around what can be seen of a space: nothing on layers that are off or frozen. The viewports of a layout
/// count with their frames. Infinite lines count with their base points where there is nothing else. Nothing for an
/// empty space.
std::optional<OdGeExtents3d> extentsOfSpace(OdDbObjectId space);

}  // namespace host
