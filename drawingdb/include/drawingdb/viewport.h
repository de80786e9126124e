// Viewports of layouts.
#pragma once

#include "drawingdb/entity.h"

class DRAWINGDB_API OdDbViewport : public OdDbEntity {
    OD_DECLARE_CONCRETE_CLASS(OdDbViewport)
  public:
    /// 1 is the layout's own viewport; floating ones have greater numbers. On layouts that nobody has visited yet the
    /// file gives none: there it is the viewport's place among those of the layout.
    int number() const;
    OdGePoint3d centerPoint() const { return center_; }
    double width() const { return width_; }
    double height() const { return height_; }
    bool isOn() const;
    OdGePoint2d viewCenter() const { return OdGePoint2d(viewCenter_.x, viewCenter_.y); }
    OdGePoint3d viewTarget() const { return viewTarget_; }
    OdGeVector3d viewDirection() const { return viewDirection_; }
    double viewHeight() const { return viewHeight_; }
    double twistAngle() const { return twist_; }
    /// What the viewport shows: the point in its middle, in coordinates of the view, and the height in model units.
    void setView(const OdGePoint2d& center, double height);
    /// From the world to the coordinates of the view: seen along its direction, twisted, the target at the origin.
    OdGeMatrix3d worldToView() const;
    /// Paper units per model unit.
    double customScale() const { return viewHeight_ > 0 ? height_ / viewHeight_ : 1.0; }

    bool geomExtents(OdGeExtents3d& extents) const override;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    OdGePoint3d center_;
    OdGePoint3d viewCenter_;
    OdGePoint3d viewTarget_;
    OdGeVector3d viewDirection_{0, 0, 1};
    double width_ = 0;
    double height_ = 0;
    double viewHeight_ = 1;
    double twist_ = 0;
    std::int16_t status_ = 1;
    std::int16_t number_ = 0;
    std::int32_t flags_ = 0;
};
