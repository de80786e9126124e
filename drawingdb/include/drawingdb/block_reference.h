// References of blocks.
#pragma once

#include "drawingdb/entity.h"

class OdDbAttribute;

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

    /// Whether it shows only what lies inside a boundary of its own.
    bool isClipped() const;

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
