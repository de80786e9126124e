#pragma once
#include "drawingdb/entity.h"

/// An area that hides what is drawn under it. Files have it as an image of one pixel without a picture: a lower left
/// corner, two sides, and a boundary in pixels, from -0.5 to 0.5 with y downwards, to which the image is clipped.
class DRAWINGDB_API OdDbWipeout : public OdDbEntity {
    OD_DECLARE_CONCRETE_CLASS(OdDbWipeout)
  public:
    /// A polygon of world points, the first one repeated at the end, in one plane (points outside it are brought into
    /// it). Points on one line hide nothing but may be set; throws OdError(invalidInput) for fewer than two different
    /// points.
    void setBoundary(const std::vector<OdGePoint3d>& points);
    /// The area's polygon in the world, the first point repeated at the end; of an unclipped one the whole image.
    std::vector<OdGePoint3d> boundary() const;
    OdGeVector3d normal() const;

    /// Refuses a matrix that squeezes the area to a line.
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    bool geomExtents(OdGeExtents3d& extents) const override;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    void readRunGroup(const drawingdb::Group& group, int zone) override;
    void writeRun(drawingdb::GroupWriter& writer, int zone) const override;
    void clearRuns() override;
    void beforeEncode() override;

    std::vector<OdGePoint2d> clip_;         // pixels; two opposite corners of a rectangle, or a polygon
    OdGePoint3d corner_;                    // lower left
    OdGeVector3d u_{1, 0, 0}, v_{0, 1, 0};  // along a pixel's sides
    OdGePoint3d pixels_{1, 1, 0};           // width and height
    drawingdb::HandleRef image_, reactor_;  // of pictures; none here
    std::int32_t classVersion_ = 0;
    std::int32_t clipCount_ = 0;
    std::int16_t display_ = 7;  // shown, also at an angle to the screen, and clipped
    std::int16_t clipping_ = 1;
    std::int16_t brightness_ = 50, contrast_ = 50, fade_ = 0;
    std::int16_t clipType_ = 2;
    std::int16_t clipInside_ = 0;
};

/// Whether the drawing shows the frames of its wipeouts.
class DRAWINGDB_API OdDbWipeoutVariables : public OdDbObject {
    OD_DECLARE_CONCRETE_CLASS(OdDbWipeoutVariables)
  public:
    bool showFrame() const { return showFrame_ != 0; }
    void setShowFrame(bool on);

    /// The drawing's own, made when there is none; that needs a drawing that can hold it (version 2000 and later).
    static OdSmartPtr<OdDbWipeoutVariables> openForWrite(OdDbDatabase& database);
    /// What the drawing says; frames are shown where it says nothing.
    static bool showsFrames(const OdDbDatabase& database);

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    std::int16_t showFrame_ = 1;
};
