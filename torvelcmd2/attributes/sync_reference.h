// Brings the attributes of block references in line with the attribute definitions of their block.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "drawingdb/attribute.h"
#include "drawingdb/block_reference.h"

namespace torvel {

/// The attribute definitions of one block, made ready once for any number of its references.
///
/// Afterwards a reference has exactly one attribute for each non-constant definition, in the order of the definitions.
/// Of an old attribute with the same tag at the same occurrence the value stays, with its fields; everything else comes
/// from the definition. The definitions must not change while this object is in use.
class ReferenceSynchronizer {
  public:
    /// Throws OdError_NotThatKindOfClass when the id names no block record.
    explicit ReferenceSynchronizer(OdDbObjectId block);
    /// By these definitions of the block; the constant ones among them, and what is none, do not count.
    ReferenceSynchronizer(OdDbObjectId block, const OdDbObjectIdArray& definitions);

    /// Synchronises the references of the block that lie directly in `space`, any block record; nested ones stay as
    /// they are.
    void synchronizeReferencesIn(OdDbObjectId space);

    /// Synchronises one reference of the block, wherever it lies. The reference is upgraded to write for it and
    /// downgraded to read at the end.
    void synchronize(OdDbBlockReference& reference);

  private:
    void addDefinition(OdDbObjectId id);
    void matchOldAttributes(const OdDbBlockReference& reference);
    void appendNewAttribute(OdDbBlockReference& reference, std::size_t position, const OdGeMatrix3d& blockTransform);
    void eraseOldAttributes();

    OdDbObjectId block_;
    std::vector<OdSmartPtr<OdDbAttributeDefinition>> definitions_;
    /// The positions in definitions_ of the definitions with an upper-cased tag: the n-th holds occurrence n.
    struct Occurrences {
        std::vector<std::size_t> positions;
        std::size_t met = 0;  // old attributes of the current reference met so far
    };
    std::unordered_map<std::wstring, Occurrences> byTag_;

    /// Of the current reference; kept to spare allocations for each. The old attributes stay open while they are
    /// needed, so that each is read once.
    std::vector<OdSmartPtr<OdDbAttribute>> oldAttributes_;
    std::vector<OdDbAttribute*> matches_;  // for each definition the old attribute, or null
};

}  // namespace torvel
