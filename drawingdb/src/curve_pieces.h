#pragma once
// What curves of circular arcs are exploded into: pieces that take any affine matrix.
#include <vector>

#include "curve_math.h"
#include "drawingdb/entity.h"

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

    struct WideSegment {
        BulgeSegment segment;
        double startWidth, endWidth;
    };
    /// One polyline whose arcs are short straight segments, for what has no width by itself could not show it. False
    /// when the drawing's version knows no such polyline.
    bool addWide(const std::vector<WideSegment>& segments, bool closed);

  private:
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
