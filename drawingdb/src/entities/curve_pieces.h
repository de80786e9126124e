// What curves of circular arcs are exploded into: pieces that take any affine matrix.
#pragma once

#include <vector>

#include "drawingdb/entity.h"
#include "drawingdb/src/geometry/curve_math.h"

namespace drawingdb {

/// Makes pieces with the properties of `source`, in the plane of `normal` at `elevation`. Arcs become parts of
/// ellipses, which have no thickness; in drawings of versions that have none, short lines.
class CurvePieces {
  public:
    CurvePieces(const OdDbEntity& source, const OdGeVector3d& normal, double elevation, double thickness,
                std::vector<OdDbEntityPtr>& pieces);

    /// Counter-clockwise between two angles; the whole circle when they are 2 pi apart.
    void addArc(const OdGePoint2d& center, double radius, double start, double end);
    void addSegment(const BulgeSegment& segment);

    /// The areas that the segments of a polyline cover: what has a width of its own could not show how a matrix slants
    /// its ends. Segments without width become what addSegment makes of them.
    void addWide(const std::vector<WideSegment>& segments, bool closed);

  private:
    void addWedge(const OdGePoint2d& middle, const OdGePoint2d& own, const OdGePoint2d& other);
    void addStrip(const WideSegment& wide, const OdGeVector2d& startSide, const OdGeVector2d& endSide);
    void add(const OdDbEntityPtr& piece);
    void addLine(const OdGePoint2d& from, const OdGePoint2d& to);

    const OdDbEntity& source_;
    OdGeVector3d normal_;
    double elevation_;
    double thickness_;
    OdGeMatrix3d toWorld_;
    std::vector<OdDbEntityPtr>& pieces_;
    int version_;
};

}  // namespace drawingdb
