// Entities: what can be drawn, and curves among them.
#pragma once

#include <vector>

#include "drawingdb/color.h"
#include "drawingdb/ge.h"
#include "drawingdb/object.h"

namespace drawingdb {
class Describer;
}

/// An entity. Angles are radians, lengths drawing units, points world coordinates unless a class says otherwise.
class DRAWINGDB_API OdDbEntity : public OdDbObject {
    OD_DECLARE_CLASS(OdDbEntity)
  public:
    OdDbEntity();
    ~OdDbEntity() override;

    /// Layer, colour, linetype, linetype scale and lineweight as the database's current settings give them.
    virtual void setDatabaseDefaults(OdDbDatabase* database);
    /// Copies layer, colour, linetype, linetype scale, lineweight, visibility, transparency, plot style, material.
    void setPropertiesFrom(const OdDbEntity& other);

    OdString layer() const;
    void setLayer(const OdString& name);
    OdDbObjectId layerId() const;
    OdString linetype() const;  ///< "BYLAYER" when nothing is stored
    void setLinetype(const OdString& name);
    OdCmColor color() const;
    void setColor(const OdCmColor& color);
    int lineweight() const {
        return lineweight_;
    }  ///< hundredths of a millimetre; -1 by layer, -2 by block, -3 default
    void setLineweight(int value);
    double linetypeScale() const { return linetypeScale_; }
    void setLinetypeScale(double value);
    bool isInvisibleEntity() const { return invisible_ != 0; }
    void setVisibility(bool visible);
    /// The block record that the entity lies in; of an attribute, that of its reference.
    OdDbObjectId blockId() const;

    /// Transforms the entity. transformRefused when its kind cannot take the matrix; it is unchanged then.
    virtual OdResult transformBy(const OdGeMatrix3d& matrix);
    /// New entities, in no database, that together look like this one. transformRefused when the kind cannot be
    /// exploded.
    virtual OdResult explode(std::vector<OdSmartPtr<OdDbEntity>>& pieces) const;
    /// False for what has no finite extent or is not understood.
    virtual bool geomExtents(OdGeExtents3d& extents) const;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describeCommon(drawingdb::Describer& d);
    friend class drawingdb::Core;
    friend struct drawingdb::ObjectAccess;
    friend class OdDbBlockTableRecord;
    friend class OdDbBlockReference;

    drawingdb::FileText layer_;
    drawingdb::FileText linetype_;
    drawingdb::FileText colorBook_;
    drawingdb::FileText layoutName_;
    drawingdb::HandleRef plotStyle_;
    drawingdb::HandleRef material_;
    double linetypeScale_ = 1.0;
    std::int32_t colorIndex_ = 256;
    std::int32_t trueColor_ = -1;
    std::int32_t lineweight_ = -1;
    std::int32_t transparency_ = 0;
    std::int32_t plotStyleKind_ = 0;
    std::int16_t invisible_ = 0;
    std::int16_t paperSpace_ = 0;
};
using OdDbEntityPtr = OdSmartPtr<OdDbEntity>;

/// An entity with a length and a parameter along it. Distances are measured along the curve from its start parameter.
class DRAWINGDB_API OdDbCurve : public OdDbEntity {
    OD_DECLARE_CLASS(OdDbCurve)
  public:
    virtual bool isClosed() const { return false; }
    virtual double startParam() const { return 0; }
    virtual double endParam() const { return 1; }
    virtual OdGePoint3d pointAtParam(double parameter) const = 0;
    /// By the parameter; its length is the speed there, which may be 0.
    virtual OdGeVector3d firstDerivAtParam(double parameter) const = 0;
    virtual double distAtParam(double parameter) const = 0;
    /// The reverse of distAtParam. Where there is no closed form for it, the first call of either measures the whole
    /// curve, and calls after it are quick; both are exact to 1e-12 of the curve's length.
    virtual double paramAtDist(double distance) const = 0;
    OdGePoint3d pointAtDist(double distance) const { return pointAtParam(paramAtDist(distance)); }
    /// The parameters between which the curve is smooth, ascending; the start and the end stand among them.
    virtual std::vector<double> breakParams() const { return {startParam(), endParam()}; }
    /// Appends new curves, in no database, with this one's properties that run beside it at a distance: to its left
    /// for a positive one, seen against `normal` (circles and arcs: against their own). Lines, rays, infinite lines,
    /// circles and arcs can do it; invalidInput, and nothing appended, for other kinds and where nothing is left or no
    /// side is defined.
    virtual OdResult getOffsetCurves(double distance, const OdGeVector3d& normal,
                                     std::vector<OdSmartPtr<OdDbCurve>>& curves) const;
};
using OdDbCurvePtr = OdSmartPtr<OdDbCurve>;
