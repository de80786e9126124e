#include "drawingdb/src/entities/curve_pieces.h"

#include <algorithm>

#include "drawingdb/curves.h"
#include "drawingdb/ellipse.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/entities/filled_strip.h"

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

// Segments that are equally wide where they meet share the corners of the mitre there, unless it were too sharp. Others
// end square, and a wedge fills the gap between their outer corners.
void CurvePieces::addWide(const std::vector<WideSegment>& segments, bool closed) {
    const auto sideAt = [](const WideSegment& of, double fraction) {
        return of.segment.derivativeAt(fraction).normal().perpVector();
    };
    const auto meet = [&](const WideSegment& before, const WideSegment& after) {
        constexpr double kSharpest = -0.7;
        return std::fabs(before.endWidth - after.startWidth) <= 1e-9 * before.endWidth &&
               sideAt(before, 1).dotProduct(sideAt(after, 0)) >= kSharpest;
    };
    const auto mitre = [](const OdGeVector2d& own, const OdGeVector2d& other) {
        return (own + other) / (1 + own.dotProduct(other));
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
        const WideSegment& after = segments[(i + 1) % count];
        const bool follows = (closed || i > 0) && !before.isPoint(),
                   goesOn = (closed || i + 1 < count) && !after.isPoint();
        const OdGeVector2d start = sideAt(wide, 0), end = sideAt(wide, 1);
        addStrip(wide, follows && meet(before, wide) ? mitre(start, sideAt(before, 1)) : start,
                 goesOn && meet(wide, after) ? mitre(end, sideAt(after, 0)) : end);
        if (goesOn && !meet(wide, after)) addWedge(wide, after, end, sideAt(after, 0));
    }
}

void CurvePieces::addWedge(const WideSegment& before, const WideSegment& after, const OdGeVector2d& sideBefore,
                           const OdGeVector2d& sideAfter) {
    const double turn = sideBefore.crossProduct(sideAfter);
    if (turn == 0 || before.endWidth == 0 || after.startWidth == 0) return;
    const OdGePoint2d middle = before.segment.end;
    const OdGePoint2d own = middle - sideBefore * (std::copysign(before.endWidth, turn) / 2),
                      other = middle - sideAfter * (std::copysign(after.startWidth, turn) / 2);
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
