// Block records, block references and the other symbol tables.
#pragma once

#include "drawingdb/entity.h"

class OdDbAttribute;
class OdDbSymbolTableRecord;

class DRAWINGDB_API OdDbSymbolTable : public OdDbObject {
    OD_DECLARE_CONCRETE_CLASS(OdDbSymbolTable)
  public:
    /// In file order, without erased ones unless asked for.
    OdDbObjectIdRange records(bool skipErased = true) const;
    /// Without case; null when there is none.
    OdDbObjectId getAt(const OdString& name) const;
    bool has(const OdString& name) const { return !getAt(name).isNull(); }
    /// Adds a new record (no block record, which needs a block too). The table must be open for write; throws
    /// OdError(duplicateName) when it has a record of that name.
    OdDbObjectId add(const OdSmartPtr<OdDbSymbolTableRecord>& record);

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
};

class DRAWINGDB_API OdDbSymbolTableRecord : public OdDbObject {
    OD_DECLARE_CONCRETE_CLASS(OdDbSymbolTableRecord)
  public:
    OdString name() const;
    void setName(const OdString& name);
    int flags() const { return flags_; }

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    static void describeRecord(drawingdb::Describer& d);
    friend class OdDbSymbolTable;
    friend struct drawingdb::ObjectAccess;
    drawingdb::FileText name_;
    std::int16_t flags_ = 0;
};

class DRAWINGDB_API OdDbLayerTableRecord : public OdDbSymbolTableRecord {
    OD_DECLARE_CONCRETE_CLASS(OdDbLayerTableRecord)
  public:
    bool isFrozen() const { return (flags_ & 1) != 0; }
    bool isLocked() const { return (flags_ & 4) != 0; }
    bool isOff() const { return colorIndex_ < 0; }
    bool isPlottable() const { return plottable_ != 0; }
    void setIsFrozen(bool on);
    void setIsLocked(bool on);
    void setIsOff(bool on);
    OdCmColor color() const;
    void setColor(const OdCmColor& color);
    OdString linetype() const;
    void setLinetype(const OdString& name);
    int lineweight() const { return lineweight_; }
    void setLineweight(int value);
    /// All but the name, from a layer of the same drawing.
    void setPropertiesFrom(const OdDbLayerTableRecord& other);

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    drawingdb::FileText linetype_;
    drawingdb::HandleRef plotStyle_;
    drawingdb::HandleRef material_;
    std::int32_t colorIndex_ = 7;
    std::int32_t trueColor_ = -1;
    std::int32_t lineweight_ = -3;
    std::int16_t plottable_ = 1;
};

class DRAWINGDB_API OdDbTextStyleTableRecord : public OdDbSymbolTableRecord {
    OD_DECLARE_CONCRETE_CLASS(OdDbTextStyleTableRecord)
  public:
    double textSize() const { return textSize_; }  ///< 0: not fixed
    double xScale() const { return widthFactor_; }
    double obliquingAngle() const { return oblique_; }  ///< radians
    bool isShapeFile() const { return (flags_ & 1) != 0; }
    OdString fontFile() const;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    drawingdb::FileText font_;
    drawingdb::FileText bigFont_;
    double textSize_ = 0;
    double widthFactor_ = 1;
    double oblique_ = 0;
    double lastHeight_ = 0.2;
    std::int16_t generation_ = 0;
};

/// A block: its record and its entities.
class DRAWINGDB_API OdDbBlockTableRecord : public OdDbSymbolTableRecord {
    OD_DECLARE_CONCRETE_CLASS(OdDbBlockTableRecord)
  public:
    /// The entities in order. Attributes, vertices and end marks belong to their entity and do not appear.
    OdDbObjectIdRange entities(bool skipErased = true) const;
    /// The same in the order in which they are drawn, one over the other: that of the file, unless the block has a
    /// table that says otherwise.
    OdDbObjectIdArray entitiesInDrawOrder() const;
    /// Adds a new entity (with the attributes that were appended to it). The record must be open for write. Throws
    /// OdError(notHeldByVersion) for a kind that the file's version does not know.
    OdDbObjectId appendOdDbEntity(OdDbEntity* entity);
    OdGePoint3d origin() const;
    bool isLayout() const;     ///< model space or a paper space
    bool isAnonymous() const;  ///< the name begins with "*"
    bool isFromExternalReference() const;
    bool explodable() const { return explodable_ != 0; }
    OdDbObjectId layoutId() const;
    bool hasAttributeDefinitions() const;
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

/// A reference of a block, single or multiple.
class DRAWINGDB_API OdDbBlockReference : public OdDbEntity {
    OD_DECLARE_CONCRETE_CLASS(OdDbBlockReference)
  public:
    OdDbObjectId blockTableRecord() const;
    /// The same for the reference of that id, which is not opened for it; null when the id names none.
    static OdDbObjectId blockTableRecordOf(OdDbObjectId reference);
    OdString blockName() const;
    void setBlockTableRecord(OdDbObjectId block);
    OdGePoint3d position() const;  ///< world coordinates
    void setPosition(const OdGePoint3d& point);
    OdGeVector3d normal() const { return normal_; }
    void setNormal(const OdGeVector3d& normal);
    double rotation() const { return rotation_; }
    void setRotation(double radians);
    OdGeScale3d scaleFactors() const { return OdGeScale3d(scale_.x, scale_.y, scale_.z); }
    void setScaleFactors(const OdGeScale3d& scale);
    int rows() const { return rows_ > 0 ? rows_ : 1; }
    int columns() const { return columns_ > 0 ? columns_ : 1; }
    double rowSpacing() const { return rowSpacing_; }
    double columnSpacing() const { return columnSpacing_; }
    /// From the block's coordinates (its origin taken off) to the world's.
    OdGeMatrix3d blockTransform() const;
    /// The placement without the block's origin.
    OdGeMatrix3d placement() const;

    OdDbObjectIdRange attributes(bool skipErased = true) const;
    /// Adds a new attribute. The reference must be open for write; when it is in no database yet the attributes are
    /// kept and go into it together with the reference, and the id returned is null.
    OdDbObjectId appendAttribute(OdDbAttribute* attribute);

    /// Moves the attributes along. Refuses (transformRefused) a matrix that would shear.
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    bool geomExtents(OdGeExtents3d& extents) const override;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    void beforeEncode() override;
    friend class drawingdb::Core;
    friend struct drawingdb::ObjectAccess;
    friend class OdDbBlockTableRecord;

    drawingdb::FileText blockName_;
    std::vector<OdSmartPtr<OdDbAttribute>> pendingAttributes_;
    OdGePoint3d position_;  // in the plane of the normal
    OdGeVector3d normal_{0, 0, 1};
    OdGePoint3d scale_{1, 1, 1};
    double rotation_ = 0;
    double columnSpacing_ = 0;
    double rowSpacing_ = 0;
    std::int16_t columns_ = 1;
    std::int16_t rows_ = 1;
    std::int16_t attributesFollow_ = 0;
};
