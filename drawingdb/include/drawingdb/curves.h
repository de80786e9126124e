// Lines, rays, infinite lines, points, circles, arcs and light polylines.
#pragma once

#include <memory>

#include "drawingdb/entity.h"

namespace drawingdb {
class SegmentLengths;
struct BulgeSegment;
struct WideSegment;
}  // namespace drawingdb

class DRAWINGDB_API OdDbLine : public OdDbCurve {
    OD_DECLARE_CONCRETE_CLASS(OdDbLine)
  public:
    OdGePoint3d startPoint() const { return start_; }
    OdGePoint3d endPoint() const { return end_; }
    void setStartPoint(const OdGePoint3d& point);
    void setEndPoint(const OdGePoint3d& point);
    double thickness() const { return thickness_; }
    OdGeVector3d normal() const { return normal_; }
    void setExtrusion(const OdGeVector3d& normal, double thickness);

    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    bool geomExtents(OdGeExtents3d& extents) const override;
    OdGePoint3d pointAtParam(double parameter) const override;
    OdGeVector3d firstDerivAtParam(double parameter) const override;
    double distAtParam(double parameter) const override;
    double paramAtDist(double distance) const override;
    double endParam() const override;  ///< the length
    OdResult getOffsetCurves(double distance, const OdGeVector3d& normal,
                             std::vector<OdSmartPtr<OdDbCurve>>& curves) const override;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    OdGePoint3d start_, end_;
    OdGeVector3d normal_{0, 0, 1};
    double thickness_ = 0;
};

/// What rays and infinite lines have in common: a base point and a unit direction. The parameter is the distance from
/// the base point, negative behind it, and so are distances along the line; its ends are infinite.
class DRAWINGDB_API OdDbConstructionLine : public OdDbCurve {
    OD_DECLARE_CLASS(OdDbConstructionLine)
  public:
    OdGePoint3d basePoint() const { return base_; }
    OdGeVector3d unitDir() const { return direction_; }
    void setBasePoint(const OdGePoint3d& point);
    /// Normalised here; a direction of zero length throws OdError(invalidInput).
    void setUnitDir(const OdGeVector3d& direction);

    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    bool geomExtents(OdGeExtents3d& extents) const override;
    OdGePoint3d pointAtParam(double parameter) const override;
    OdGeVector3d firstDerivAtParam(double parameter) const override;
    double distAtParam(double parameter) const override;
    double paramAtDist(double distance) const override;
    double startParam() const override;
    double endParam() const override;
    OdResult getOffsetCurves(double distance, const OdGeVector3d& normal,
                             std::vector<OdSmartPtr<OdDbCurve>>& curves) const override;

  protected:
    OdGePoint3d base_;
    OdGeVector3d direction_{1, 0, 0};
};

class DRAWINGDB_API OdDbRay : public OdDbConstructionLine {
    OD_DECLARE_CONCRETE_CLASS(OdDbRay)
  public:
    double startParam() const override;  ///< 0: the base point

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
};

class DRAWINGDB_API OdDbXline : public OdDbConstructionLine {
    OD_DECLARE_CONCRETE_CLASS(OdDbXline)
  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
};

class DRAWINGDB_API OdDbPoint : public OdDbEntity {
    OD_DECLARE_CONCRETE_CLASS(OdDbPoint)
  public:
    OdGePoint3d position() const { return position_; }
    void setPosition(const OdGePoint3d& point);
    OdGeVector3d normal() const { return normal_; }

    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    bool geomExtents(OdGeExtents3d& extents) const override;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    OdGePoint3d position_;
    OdGeVector3d normal_{0, 0, 1};
    double thickness_ = 0;
    double rotation_ = 0;
};

/// A circle. The centre is in world coordinates. Angles run counter-clockwise about the normal, from the X axis that
/// OdGeMatrix3d::planeToWorld gives it.
///
/// Mirroring: the normal stays on its side of the plane (see OdDbText, which goes by the same rule), so a flat drawing
/// stays flat; arcs exchange their ends then, and bulges of polylines their signs.
class DRAWINGDB_API OdDbCircle : public OdDbCurve {
    OD_DECLARE_CONCRETE_CLASS(OdDbCircle)
  public:
    OdGePoint3d center() const;
    double radius() const { return radius_; }
    OdGeVector3d normal() const { return normal_; }
    void setCenter(const OdGePoint3d& point);
    void setRadius(double radius);  ///< throws OdError(invalidInput) for a negative one
    void setNormal(const OdGeVector3d& normal);

    bool isClosed() const override { return true; }
    /// Refuses (transformRefused) anything but a uniform scale, rotation, mirroring and move.
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    /// An ellipse or a part of one, which takes any matrix; in drawings of versions without ellipses, short lines.
    OdResult explode(std::vector<OdDbEntityPtr>& pieces) const override;
    bool geomExtents(OdGeExtents3d& extents) const override;
    double endParam() const override;  ///< 2 pi; the parameter is the angle
    OdResult getOffsetCurves(double distance, const OdGeVector3d& normal,
                             std::vector<OdSmartPtr<OdDbCurve>>& curves) const override;
    OdGePoint3d pointAtParam(double parameter) const override;
    OdGeVector3d firstDerivAtParam(double parameter) const override;
    double distAtParam(double parameter) const override;
    double paramAtDist(double distance) const override;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    static void describeCircle(drawingdb::Describer& d);
    OdGePoint3d center_;  // in the plane of the normal, as files have it
    OdGeVector3d normal_{0, 0, 1};
    double radius_ = 1;
    double thickness_ = 0;
};

/// An arc, counter-clockwise from the start angle to the end angle; the whole circle when they are the same direction.
/// The parameter is the angle, counted on from the start angle.
class DRAWINGDB_API OdDbArc : public OdDbCircle {
    OD_DECLARE_CONCRETE_CLASS(OdDbArc)
  public:
    double startAngle() const { return startAngle_; }
    double endAngle() const { return endAngle_; }
    void setAngles(double start, double end);

    bool isClosed() const override { return false; }
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    bool geomExtents(OdGeExtents3d& extents) const override;
    double startParam() const override;
    double endParam() const override;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    double startAngle_ = 0;
    double endAngle_ = 0;
};

/// A light polyline: vertices in the plane of the normal at the elevation, each with a bulge (tangent of a quarter of
/// the included angle of the segment that follows it) and a start and end width (-1: unset). The parameter counts
/// segments and runs along each in proportion to its length; parameters outside the polyline mean its ends.
class DRAWINGDB_API OdDbPolyline : public OdDbCurve {
    OD_DECLARE_CONCRETE_CLASS(OdDbPolyline)
  public:
    struct Vertex {
        OdGePoint2d point;
        double bulge = 0;
        double startWidth = -1;
        double endWidth = -1;
        std::int32_t identifier = 0;
    };
    std::size_t numVerts() const { return vertices_.size(); }
    const Vertex& vertexAt(std::size_t index) const { return vertices_.at(index); }
    /// An index that is too large throws OdError(invalidInput); addVertexAt takes numVerts() too.
    void setVertexAt(std::size_t index, const Vertex& vertex);
    void addVertexAt(std::size_t index, const Vertex& vertex);
    void removeVertexAt(std::size_t index);
    /// World coordinates.
    OdGePoint3d pointAt(std::size_t index) const;
    bool isClosed() const override { return (flags_ & 1) != 0; }
    void setClosed(bool closed);
    /// Of vertices whose own widths are unset.
    double constantWidth() const { return constantWidth_; }
    /// The linetype runs on round the vertices instead of beginning anew at each.
    bool isLinetypeGenerated() const { return (flags_ & 128) != 0; }
    double elevation() const { return elevation_; }
    void setElevation(double elevation);
    OdGeVector3d normal() const { return normal_; }
    void setNormal(const OdGeVector3d& normal);
    void setThickness(double thickness);

    /// With bulges: refuses anything but a uniform scale, rotation, mirroring and move; with widths too, unless all of
    /// it runs along one line to which its ends stay square. Otherwise takes any matrix that leaves the plane a plane.
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    /// What takes any matrix: lines and parts of ellipses, and for each segment with a width the area that it covers.
    OdResult explode(std::vector<OdDbEntityPtr>& pieces) const override;
    bool geomExtents(OdGeExtents3d& extents) const override;
    double endParam() const override;  ///< number of segments; whole numbers are the vertices
    std::vector<double> breakParams() const override;
    OdGePoint3d pointAtParam(double parameter) const override;
    OdGeVector3d firstDerivAtParam(double parameter) const override;
    double distAtParam(double parameter) const override;
    double paramAtDist(double distance) const override;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    void readRunGroup(const drawingdb::Group& group, int zone) override;
    void writeRun(drawingdb::GroupWriter& writer, int zone) const override;
    void clearRuns() override;
    void beforeEncode() override;
    void verticesChanged();
    std::size_t numSegments() const;
    const drawingdb::SegmentLengths& lengths() const;
    std::vector<drawingdb::WideSegment> wideSegments() const;
    /// The segment that begins at a vertex; `index` must be below numSegments().
    drawingdb::BulgeSegment segment(std::size_t index) const;
    /// The segment that a parameter lies in, and the fraction of it. There must be a segment.
    std::pair<std::size_t, double> segmentAt(double parameter) const;
    OdGePoint3d inWorld(const OdGePoint2d& point) const;
    friend struct drawingdb::ObjectAccess;

    std::vector<Vertex> vertices_;
    OdGeVector3d normal_{0, 0, 1};
    double elevation_ = 0;
    double thickness_ = 0;
    double constantWidth_ = 0;
    std::int32_t vertexCount_ = 0;
    std::int16_t flags_ = 0;
    mutable std::shared_ptr<const drawingdb::SegmentLengths> lengths_;  // none until asked for; none after a change
};
