// How far entities reach.
#pragma once

#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "drawingdb/block_reference.h"
#include "drawingdb/text.h"
#include "torvelhost/plot/shapes.h"

namespace host {

struct Bounds {
    OdGeExtents3d box;     // of all that ends
    bool endless = false;  // infinite lines are among it, or what is not there yet: a block that is missing
    bool marked = false;   // points are, whose marks reach as far however small a block is shown

    bool operator==(const Bounds&) const = default;
};

/// Blocks in blocks beyond that are not looked at: only faulty files have them.
inline constexpr int kDeepestNesting = 64;

/// How far blocks reach, and the entities in them: what they show, on whatever layers.
class BlockBounds {
  public:
    explicit BlockBounds(Styles& styles);

    /// In the block's coordinates. Kept until it is forgotten.
    const Bounds& of(OdDbObjectId block);
    /// In the coordinates that the reference stands in.
    Bounds of(const DisplayList::Reference& reference);
    /// Adds an entity of a space or a block. Returns the block that it shows, or null.
    OdDbObjectId add(const OdDbEntity& entity, Bounds& bounds);

    bool knows(OdDbObjectId block) const { return known_.count(block) != 0; }
    /// Whether one that an entity names was not there.
    bool missesBlock() const { return missesBlock_; }
    /// Measures these blocks anew, and those that show them, as far as they were known. Returns those that reach
    /// elsewhere now.
    std::unordered_set<OdDbObjectId> measureAnew(const std::unordered_set<OdDbObjectId>& changed);

  private:
    struct Known {
        Bounds bounds;
        std::vector<OdDbObjectId> shown;  // the blocks in it
    };
    OdDbObjectId addReference(const OdDbBlockReference& reference, Bounds& bounds);

    Styles& styles_;
    bool allAttributes_;
    std::unordered_map<OdDbObjectId, Known> known_;
    bool missesBlock_ = false;
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
