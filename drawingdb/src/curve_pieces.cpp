#include "curve_pieces.h"

#include <algorithm>

#include "core.h"
#include "drawingdb/curves.h"
#include "drawingdb/ellipse.h"

namespace drawingdb {
namespace {

constexpr int kFirstVersionWithEllipses = 1012;
constexpr int kFirstVersionWithPolylines = 1014;
/// Lines that stand for a whole circle; they leave it by 0.0003 of its radius.
constexpr int kLinesPerTurn = 128;

int linesFor(double angle) {
    const double lines = std::ceil(std::fabs(angle) / torvel::kTwoPi * kLinesPerTurn);
    return lines >= 1 ? static_cast<int>(std::min(lines, static_cast<double>(kLinesPerTurn))) : 1;
}

}  // namespace

CurvePieces::CurvePieces(const OdDbEntity& source, const OdGeVector3d& normal, double elevation,
                         std::vector<OdDbEntityPtr>& pieces)
    : source_(source),
      normal_(OdGeMatrix3d::planeToWorld(normal).zAxis()),  // also of a damaged one without length
      elevation_(elevation),
      toWorld_(OdGeMatrix3d::planeToWorld(normal)),
      pieces_(pieces),
      version_(source.database() ? source.database()->core().format.version : kFirstVersionWithPolylines) {}

void CurvePieces::add(const OdDbEntityPtr& piece) {
    piece->setPropertiesFrom(source_);
    pieces_.push_back(piece);
}

void CurvePieces::addLine(const OdGePoint2d& from, const OdGePoint2d& to) {
    const OdSmartPtr<OdDbLine> line = OdDbLine::createObject();
    line->setStartPoint(toWorld_ * OdGePoint3d(from.x, from.y, elevation_));
    line->setEndPoint(toWorld_ * OdGePoint3d(to.x, to.y, elevation_));
    add(OdDbEntityPtr(line.get()));
}

void CurvePieces::addArc(const OdGePoint2d& center, double radius, double start, double end) {
    const OdGeVector3d axis = toWorld_.xAxis() * radius;
    // A radius of next to nothing makes no ellipse.
    if (version_ >= kFirstVersionWithEllipses && normal_.isPerpendicularTo(axis)) {
        const OdSmartPtr<OdDbEllipse> ellipse = OdDbEllipse::createObject();
        ellipse->set(toWorld_ * OdGePoint3d(center.x, center.y, elevation_), normal_, axis, 1, start, end);
        add(OdDbEntityPtr(ellipse.get()));
        return;
    }
    const int count = radius > 0 ? linesFor(end - start) : 1;
    const auto at = [&](int i) {
        const double angle = start + (end - start) * i / count;
        return center + OdGeVector2d(std::cos(angle), std::sin(angle)) * radius;
    };
    for (int i = 0; i < count; ++i) addLine(at(i), at(i + 1));
}

void CurvePieces::addSegment(const BulgeSegment& segment) {
    const OdGeVector2d chord = segment.end - segment.start;
    if (segment.bulge == 0 || !(chord.length() > 0)) return addLine(segment.start, segment.end);
    const OdGePoint2d center =
        segment.start + chord * 0.5 + chord.perpVector() * ((1 - segment.bulge * segment.bulge) / (4 * segment.bulge));
    const OdGeVector2d radius = segment.start - center;
    // Too flat an arc for its radius to be a number.
    if (!std::isfinite(radius.length())) return addLine(segment.start, segment.end);
    const double start = segment.bulge > 0 ? radius.angle() : (segment.end - center).angle();
    addArc(center, radius.length(), start, start + std::fabs(segment.angle()));
}

bool CurvePieces::addWide(const std::vector<WideSegment>& segments, bool closed) {
    if (version_ < kFirstVersionWithPolylines) return false;
    const OdSmartPtr<OdDbPolyline> polyline = OdDbPolyline::createObject();
    polyline->setNormal(normal_);
    polyline->setElevation(elevation_);
    polyline->setClosed(closed);
    for (const WideSegment& wide : segments) {
        const int count = linesFor(wide.segment.angle());
        const auto widthAt = [&](int i) { return wide.startWidth + (wide.endWidth - wide.startWidth) * i / count; };
        for (int i = 0; i < count; ++i) {
            OdDbPolyline::Vertex vertex;
            vertex.point = wide.segment.pointAt(static_cast<double>(i) / count);
            vertex.startWidth = widthAt(i);
            vertex.endWidth = widthAt(i + 1);
            polyline->addVertexAt(polyline->numVerts(), vertex);
        }
    }
    if (!closed && !segments.empty()) {
        OdDbPolyline::Vertex last;
        last.point = segments.back().segment.end;
        polyline->addVertexAt(polyline->numVerts(), last);
    }
    add(OdDbEntityPtr(polyline.get()));
    return true;
}

}  // namespace drawingdb
