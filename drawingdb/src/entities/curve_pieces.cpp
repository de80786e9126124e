#include "drawingdb/src/entities/curve_pieces.h"

#include <algorithm>

#include "drawingdb/curves.h"
#include "drawingdb/ellipse.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/entities/filled_strip.h"
#include "drawingdb/wide_joint.h"

namespace drawingdb {
namespace {

constexpr int kFirstVersionWithEllipses = version::r13;
constexpr int kFirstVersionWithHatches = version::r14;
// Lines that stand for a whole circle; they leave it by 0.0003 of its radius.
constexpr int kLinesPerTurn = 128;

int linesFor(double angle) {
    const double lines = std::ceil(std::fabs(angle) / drawingdb::kTwoPi * kLinesPerTurn);
    return lines >= 1 ? static_cast<int>(std::min(lines, static_cast<double>(kLinesPerTurn))) : 1;
}

}  // namespace

CurvePieces::CurvePieces(const OdDbEntity& source, const OdGeVector3d& normal, double elevation, double thickness,
                         std::vector<OdDbEntityPtr>& pieces)
    : source_(source),
      normal_(OdGeMatrix3d::planeToWorld(normal).zAxis()),  // also of a damaged one without length
      elevation_(elevation),
      thickness_(thickness),
      toWorld_(OdGeMatrix3d::planeToWorld(normal)),
      pieces_(pieces),
      version_(source.database() ? source.database()->core().format.version : kFirstVersionWithHatches) {}

void CurvePieces::add(const OdDbEntityPtr& piece) {
    piece->setPropertiesFrom(source_);
    pieces_.push_back(piece);
}

void CurvePieces::addLine(const OdGePoint2d& from, const OdGePoint2d& to) {
    const OdSmartPtr<OdDbLine> line = OdDbLine::createObject();
    line->setStartPoint(toWorld_ * OdGePoint3d(from.x, from.y, elevation_));
    line->setEndPoint(toWorld_ * OdGePoint3d(to.x, to.y, elevation_));
    if (thickness_ != 0) line->setExtrusion(normal_, thickness_);
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
    const auto center = segment.center();
    if (!center) return addLine(segment.start, segment.end);
    const OdGeVector2d radius = segment.start - *center;
    const double start = segment.bulge > 0 ? radius.angle() : (segment.end - *center).angle();
    addArc(*center, radius.length(), start, start + std::fabs(segment.angle()));
}

void CurvePieces::addWide(const std::vector<WideSegment>& segments, bool closed) {
    const auto sideAt = [](const WideSegment& of, double fraction) {
        return of.segment.derivativeAt(fraction).normal().perpVector();
    };
    const auto jointOf = [&](const WideSegment& before, const WideSegment& behind) {
        return wideJoint(sideAt(before, 1), before.endWidth, sideAt(behind, 0), behind.startWidth);
    };
    const std::size_t count = segments.size();
    const bool showsMore =
        !std::all_of(segments.begin(), segments.end(), [](const WideSegment& s) { return s.isPoint(); });
    for (std::size_t i = 0; i < count; ++i) {
        const WideSegment& wide = segments[i];
        if (wide.isPoint() && showsMore) continue;  // a vertex that stands there twice
        if (!wide.isWide() || wide.isPoint()) {
            addSegment(wide.segment);
            continue;
        }
        const WideSegment& before = segments[(i + count - 1) % count];
        const WideSegment& behind = segments[(i + 1) % count];
        const bool follows = (closed || i > 0) && !before.isPoint(),
                   goesOn = (closed || i + 1 < count) && !behind.isPoint();
        const WideJoint joint = goesOn ? jointOf(wide, behind) : WideJoint{sideAt(wide, 1), {}, {}};
        addStrip(wide, follows ? jointOf(before, wide).start : sideAt(wide, 0), joint.end);
        if (joint.wedge)
            addWedge(wide.segment.end, wide.segment.end + joint.wedge->first, wide.segment.end + joint.wedge->second);
    }
}

void CurvePieces::addWedge(const OdGePoint2d& middle, const OdGePoint2d& own, const OdGePoint2d& other) {
    if (version_ >= kFirstVersionWithHatches && thickness_ == 0)
        return add(newSolidHatch({normal_, elevation_, {middle, own}, {other}}));
    const auto corner = [&](const OdGePoint2d& point) { return OdGePoint3d(point.x, point.y, elevation_); };
    add(newSolid(normal_, thickness_, {corner(middle), corner(own), corner(other), corner(other)}));
}

void CurvePieces::addStrip(const WideSegment& wide, const OdGeVector2d& startSide, const OdGeVector2d& endSide) {
    FilledStrip strip{normal_, elevation_, {}, {}};
    const int count = linesFor(wide.segment.angle());
    for (int i = 0; i <= count; ++i) {
        const double fraction = static_cast<double>(i) / count;
        const OdGeVector2d side = i == 0       ? startSide
                                  : i == count ? endSide
                                               : wide.segment.derivativeAt(fraction).normal().perpVector();
        const double width = wide.startWidth + (wide.endWidth - wide.startWidth) * fraction;
        const OdGePoint2d point = wide.segment.pointAt(fraction);
        strip.left.push_back(point + side * (width / 2));
        strip.right.push_back(point - side * (width / 2));
    }
    // Hatches have no thickness.
    if (version_ >= kFirstVersionWithHatches && thickness_ == 0) return add(newSolidHatch(strip));
    for (const OdDbEntityPtr& solid : newSolids(strip, thickness_)) add(solid);
}

}  // namespace drawingdb
