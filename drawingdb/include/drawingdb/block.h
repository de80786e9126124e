// Blocks.
#pragma once

#include "drawingdb/entity.h"
#include "drawingdb/symbol_table.h"

class OdDbIdMapping;

/// A block: its record and its entities.
class DRAWINGDB_API OdDbBlockTableRecord : public OdDbSymbolTableRecord {
    OD_DECLARE_CONCRETE_CLASS(OdDbBlockTableRecord)
  public:
    /// Adds a block without entities to the drawing. Throws OdError(duplicateName) when there is one of that name (in
    /// any case), OdError(badFile) where the file has no section of blocks.
    static OdDbObjectId addNew(OdDbDatabase& database, const OdString& name);
    /// Makes the block anew, of copies of these entities in their order and with 0,0,0 as its base point; what it held
    /// is erased. References go on showing it, and keep their attributes. The record must be open for write. None of
    /// the entities may hold a reference to the block, also not through others.
    void redefine(const OdDbObjectIdArray& entities, OdDbIdMapping& copies);
    /// The entities in order. Attributes, vertices and end marks belong to their entity and do not appear.
    OdDbObjectIdRange entities(bool skipErased = true) const;
    /// The same in the order in which they are drawn, one over the other: that of the file, unless the block has a
    /// table that says otherwise.
    OdDbObjectIdArray entitiesInDrawOrder() const;
    bool hasDrawOrder() const;  ///< whether there is such a table
    /// Adds a new entity (with the attributes that were appended to it). The record must be open for write. Throws
    /// OdError(notHeldByVersion) for a kind that the file's version does not know.
    OdDbObjectId appendOdDbEntity(OdDbEntity* entity);
    OdGePoint3d origin() const;
    bool isLayout() const;     ///< model space or a paper space
    bool isAnonymous() const;  ///< the name begins with "*"
    bool isFromExternalReference() const;
    bool explodable() const { return explodable_ != 0; }
    OdDbObjectId layoutId() const;
    /// `editableOnly`: constant ones do not count.
    bool hasAttributeDefinitions(bool editableOnly = false) const;
    /// References to this block: those in spaces and blocks, wherever they lie; with `directOnly` those that lie
    /// directly in a layout's space. Erased ones are left out. The index behind it is kept, not searched for.
    OdDbObjectIdArray blockReferenceIds(bool directOnly) const;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    drawingdb::HandleRef layout_;
    std::int16_t insertUnits_ = 0;
    std::int16_t explodable_ = 1;
    std::int16_t scalability_ = 0;
};
