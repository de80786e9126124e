// Polylines of the old kind, whose vertices are records of their own behind theirs.
#pragma once

#include <memory>
#include <optional>

#include "drawingdb/entity.h"

namespace drawingdb {
class SegmentLengths;
struct BulgeSegment;
struct WideSegment;
}  // namespace drawingdb

/// What the two kinds have in common. They are read as curves; their vertices change by transformBy alone. Of splined
/// ones the vertices of the smoothed line count, not those of its frame. The parameter counts segments and runs along
/// each in proportion to its length; parameters outside mean the ends.
class DRAWINGDB_API OdDbOldPolyline : public OdDbCurve {
    OD_DECLARE_CLASS(OdDbOldPolyline)
  public:
    struct Vertex {
        OdGePoint3d point;  ///< as the file has it: 2D vertices in the plane of the polyline's normal
        double bulge = 0;
        double startWidth = 0;
        double endWidth = 0;
    };
    const std::vector<Vertex>& vertices() const { return vertices_; }
    bool isClosed() const override { return (flags_ & 1) != 0; }
    /// The linetype runs on round the vertices instead of beginning anew at each.
    bool isLinetypeGenerated() const { return (flags_ & 128) != 0; }
    double endParam() const override;
    double distAtParam(double parameter) const override;
    double paramAtDist(double distance) const override;
    std::vector<double> breakParams() const override;

  protected:
    void afterDecode() override;
    /// Maps the vertices' points, multiplies their widths, and turns their bulges over where the map reverses. An
    /// elevation stands for the points' own z.
    void mapVertices(const OdGeMatrix3d& map, std::optional<double> elevation, double widthScale, bool reversed);
    std::size_t numSegments() const;
    const Vertex& next(std::size_t index) const { return vertices_[(index + 1) % vertices_.size()]; }
    /// The segment that a parameter lies in, and the fraction of it. There must be a segment.
    std::pair<std::size_t, double> segmentAt(double parameter) const;
    virtual double segmentLength(std::size_t index) const = 0;
    const drawingdb::SegmentLengths& lengths() const;

    std::vector<Vertex> vertices_;
    double startWidth_ = 0;
    double endWidth_ = 0;
    std::int16_t flags_ = 0;
    mutable std::shared_ptr<const drawingdb::SegmentLengths> lengths_;
};

/// In a plane, with bulges and widths.
class DRAWINGDB_API OdDb2dPolyline : public OdDbOldPolyline {
    OD_DECLARE_CONCRETE_CLASS(OdDb2dPolyline)
  public:
    OdGeVector3d normal() const { return normal_; }
    double elevation() const { return elevation_.z; }
    /// As OdDbPolyline::transformBy.
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    /// As OdDbPolyline::explode.
    OdResult explode(std::vector<OdDbEntityPtr>& pieces) const override;
    bool geomExtents(OdGeExtents3d& extents) const override;
    OdGePoint3d pointAtParam(double parameter) const override;
    OdGeVector3d firstDerivAtParam(double parameter) const override;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    double segmentLength(std::size_t index) const override;
    drawingdb::BulgeSegment segment(std::size_t index) const;
    std::vector<drawingdb::WideSegment> wideSegments() const;
    OdGePoint3d inWorld(const OdGePoint2d& point) const;

    OdGePoint3d elevation_;
    OdGeVector3d normal_{0, 0, 1};
    double thickness_ = 0;
};

/// Straight segments anywhere in space.
class DRAWINGDB_API OdDb3dPolyline : public OdDbOldPolyline {
    OD_DECLARE_CONCRETE_CLASS(OdDb3dPolyline)
  public:
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    bool geomExtents(OdGeExtents3d& extents) const override;
    OdGePoint3d pointAtParam(double parameter) const override;
    OdGeVector3d firstDerivAtParam(double parameter) const override;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    double segmentLength(std::size_t index) const override;
    OdGePoint3d origin_;
};
