// Turns block references into the geometry and the texts that they show.
#pragma once

#include <unordered_map>
#include <vector>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/layer_states.h"
#include "drawingdb/mtext.h"

namespace torvel {

/// Bursts any number of references of one drawing; what it learns of a block serves all its references. While the
/// object is in use the blocks must not change, but for those owners whose references it has burst and the caller
/// erases then.
class ReferenceBurster {
  public:
    /// Adds to `owner`, the block record that the reference lies in, what the reference shows: copies of the entities
    /// of its block, its constant attributes and its own visible attributes as texts. A multiple reference gives all
    /// that for each of its places. Both must be open for write; the reference itself stays, for the caller to erase.
    ///
    /// False, and nothing changed, for a reference whose block may not be exploded or is missing, for one on a frozen
    /// layer, for a clipped one, for one with an entity that can be neither placed nor exploded, and for one of more
    /// than a million pieces.
    bool burst(const OdDbBlockReference& reference, OdDbBlockTableRecord& owner);
    /// What kept burst() when it returned false, as "block DOOR has a MULTILEADER"; empty when the reference itself,
    /// its layer or its block asked for it.
    const OdString& obstacle() const { return obstacle_; }

  private:
    /// What is taken from a block. Definitions of other than constant attributes are left out: the references'
    /// attributes stand for them.
    struct Definition {
        bool explodable = false;
        OdDbObjectIdArray entities;
        std::vector<OdSmartPtr<OdDbAttributeDefinition>> constants;
    };
    const Definition& definitionOf(OdDbObjectId block);

    bool burstContents(const OdDbBlockReference& reference, const OdGeMatrix3d& outer);
    bool copyEntities(const Definition& definition, const OdGeMatrix3d& transform);
    OdString inBlock(const OdString& what) const;
    void noteObstacle(const OdDbEntity& entity);
    bool place(OdDbEntity& entity, const OdGeMatrix3d& transform);
    bool explodeAndPlace(OdDbEntity& entity, const OdGeMatrix3d& transform);
    void addConstants(const Definition& definition, const OdGeMatrix3d& transform);
    void addAttributes(const OdDbBlockReference& reference, const OdGeMatrix3d& transform);
    void addText(const OdDbAttributeText& source, const OdSmartPtr<OdDbMText>& lines, const OdGeMatrix3d& transform);
    void append(OdDbEntity& entity);

    std::unordered_map<OdDbObjectId, Definition> definitions_;
    drawingdb::LayerStates layers_;

    /// Of the reference at work.
    OdString obstacle_;
    OdDbBlockTableRecord* owner_ = nullptr;
    std::size_t pieces_ = 0;            // added so far
    std::vector<OdDbObjectId> within_;  // the blocks that hold the contents at work, outermost first
};

}  // namespace torvel

/// Exported. As ReferenceBurster::burst, for one reference.
extern "C" bool burstBlockReference(OdDbBlockReference& reference, OdDbBlockTableRecord& owner);
