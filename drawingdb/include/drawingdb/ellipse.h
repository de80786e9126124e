#pragma once
#include <memory>

#include "drawingdb/entity.h"

namespace drawingdb {
class ArcLengths;
}

/// An ellipse or a part of one: centre + cos(t) major axis + sin(t) minor axis, for t from the start to the end
/// parameter, which is the curve's parameter. All vectors are world coordinates; the minor axis is the normal's cross
/// product with the major axis, scaled by the ratio.
class DRAWINGDB_API OdDbEllipse : public OdDbCurve {
    OD_DECLARE_CONCRETE_CLASS(OdDbEllipse)
  public:
    OdGePoint3d center() const { return center_; }
    OdGeVector3d normal() const { return normal_; }
    OdGeVector3d majorAxis() const { return majorAxis_; }
    OdGeVector3d minorAxis() const;
    double radiusRatio() const { return ratio_; }
    /// Throws OdError(invalidInput) for an axis without length, a ratio outside (0, 1], or a normal that is not at
    /// right angles to the major axis. The whole ellipse is 0 to 2 pi.
    void set(const OdGePoint3d& center, const OdGeVector3d& normal, const OdGeVector3d& majorAxis, double radiusRatio,
             double start = 0, double end = drawingdb::kTwoPi);

    bool isClosed() const override;
    /// Takes every matrix that does not squeeze the plane to a line.
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    bool geomExtents(OdGeExtents3d& extents) const override;
    double startParam() const override;
    double endParam() const override;
    OdGePoint3d pointAtParam(double parameter) const override;
    OdGeVector3d firstDerivAtParam(double parameter) const override;
    double distAtParam(double parameter) const override;
    double paramAtDist(double distance) const override;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    void afterDecode() override;
    const drawingdb::ArcLengths& lengths() const;
    double speedAt(double parameter) const { return firstDerivAtParam(parameter).length(); }

    OdGePoint3d center_;
    OdGeVector3d majorAxis_{1, 0, 0};
    OdGeVector3d normal_{0, 0, 1};
    double ratio_ = 1;
    double start_ = 0;
    double end_ = drawingdb::kTwoPi;
    mutable std::shared_ptr<const drawingdb::ArcLengths> lengths_;  // none until asked for; none after a change
};
