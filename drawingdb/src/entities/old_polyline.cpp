#include "drawingdb/old_polyline.h"

#include <algorithm>
#include <numeric>

#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/entities/curve_pieces.h"
#include "drawingdb/src/geometry/angles.h"
#include "drawingdb/src/geometry/arc_length.h"
#include "drawingdb/src/geometry/curve_math.h"

using drawingdb::BulgeSegment;
using drawingdb::ClassDescription;
using drawingdb::Describer;
using drawingdb::Group;
using drawingdb::SegmentLengths;

OD_DEFINE_ABSTRACT_CLASS(OdDbOldPolyline, OdDbCurve)
OD_DEFINE_CLASS(OdDb2dPolyline, OdDbOldPolyline)
OD_DEFINE_CLASS(OdDb3dPolyline, OdDbOldPolyline)

namespace {

enum PolylineFlag { kClosed = 1, kSplined = 4 };
enum VertexFlag { kFrameVertex = 16 };

}  // namespace

void OdDbOldPolyline::afterDecode() {
    vertices_.clear();
    lengths_.reset();
    if (!stub_) return;
    drawingdb::Core& core = database()->core();
    const bool binary = core.format.binary;
    for (drawingdb::Stub* child = core.nextChild(*stub_, nullptr); child; child = core.nextChild(*stub_, child)) {
        if (child->gone() || child->type != drawingdb::rtVertex) continue;
        Vertex vertex;
        vertex.startWidth = startWidth_;
        vertex.endWidth = endWidth_;
        std::int64_t flags = 0;
        drawingdb::GroupCursor cursor(core.bytesOf(*child), core.format);
        for (Group group; cursor.next(group) && group.code < 1000;) {
            switch (group.code) {
                case 10:
                    vertex.point.x = groupReal(group, binary).value_or(0);
                    break;
                case 20:
                    vertex.point.y = groupReal(group, binary).value_or(0);
                    break;
                case 30:
                    vertex.point.z = groupReal(group, binary).value_or(0);
                    break;
                case 40:
                    vertex.startWidth = groupReal(group, binary).value_or(0);
                    break;
                case 41:
                    vertex.endWidth = groupReal(group, binary).value_or(0);
                    break;
                case 42:
                    vertex.bulge = groupReal(group, binary).value_or(0);
                    break;
                case 70:
                    flags = groupInteger(group, binary).value_or(0);
                    break;
                default:
                    break;
            }
        }
        if ((flags_ & kSplined) && (flags & kFrameVertex)) continue;
        vertices_.push_back(vertex);
    }
}

void OdDbOldPolyline::mapVertices(const OdGeMatrix3d& map, std::optional<double> elevation, double widthScale,
                                  bool reversed) {
    if (!stub_) return;
    drawingdb::Core& core = database()->core();
    for (drawingdb::Stub* child = core.nextChild(*stub_, nullptr); child; child = core.nextChild(*stub_, child)) {
        if (child->gone() || child->type != drawingdb::rtVertex) continue;
        const std::string_view old = core.bytesOf(*child);
        const auto real = [&](const Group& group) { return groupReal(group, core.format.binary).value_or(0); };
        OdGePoint3d point;
        drawingdb::GroupCursor reader(old, core.format);
        for (Group group; reader.next(group) && group.code < 1000;) {
            if (group.code == 10) point.x = real(group);
            if (group.code == 20) point.y = real(group);
            if (group.code == 30) point.z = real(group);
        }
        if (elevation) point.z = *elevation;
        point.transformBy(map);
        std::string bytes;
        drawingdb::GroupWriter writer(bytes, core.format);
        drawingdb::GroupCursor cursor(old, core.format);
        for (Group group; cursor.next(group);) {
            switch (group.code) {
                case 10:
                    writer.real(10, point.x);
                    break;
                case 20:
                    writer.real(20, point.y);
                    break;
                case 30:
                    writer.real(30, point.z);
                    break;
                case 40:
                case 41:
                    writer.real(group.code, real(group) * widthScale);
                    break;
                case 42:
                    reversed&& real(group) != 0 ? writer.real(42, -real(group)) : writer.raw(group.bytes());
                    break;
                case 50: {
                    // The direction of the smoothed line.
                    const double angle = real(group) * drawingdb::kDegree;
                    const OdGeVector2d along = drawingdb::directionOf(angle);
                    const double turned = drawingdb::turnedTo(angle, (map * OdGeVector3d(along.x, along.y, 0)).xy());
                    turned != angle ? writer.real(50, drawingdb::degreesOf(turned)) : writer.raw(group.bytes());
                    break;
                }
                default:
                    writer.raw(group.bytes());
            }
        }
        core.setBytes(*child, bytes);
    }
    for (Vertex& vertex : vertices_) {
        if (elevation) vertex.point.z = *elevation;
        vertex.point.transformBy(map);
        vertex.startWidth *= widthScale;
        vertex.endWidth *= widthScale;
        if (reversed && vertex.bulge != 0) vertex.bulge = -vertex.bulge;
    }
    lengths_.reset();
}

std::size_t OdDbOldPolyline::numSegments() const {
    if (vertices_.size() < 2) return 0;
    return isClosed() ? vertices_.size() : vertices_.size() - 1;
}
double OdDbOldPolyline::endParam() const { return static_cast<double>(numSegments()); }
std::vector<double> OdDbOldPolyline::breakParams() const {
    std::vector<double> breaks(numSegments() + 1);
    std::iota(breaks.begin(), breaks.end(), 0.0);
    return breaks;
}
std::pair<std::size_t, double> OdDbOldPolyline::segmentAt(double parameter) const {
    return drawingdb::segmentAt(parameter, numSegments());
}
const SegmentLengths& OdDbOldPolyline::lengths() const {
    if (!lengths_) {
        const auto measured = std::make_shared<SegmentLengths>();
        for (std::size_t i = 0; i < numSegments(); ++i) measured->add(segmentLength(i));
        lengths_ = measured;
    }
    return *lengths_;
}
double OdDbOldPolyline::distAtParam(double parameter) const { return lengths().lengthAt(parameter); }
double OdDbOldPolyline::paramAtDist(double distance) const { return lengths().parameterAt(distance); }

// ---------------------------------------------------------------------------------------------------------------------

const ClassDescription* OdDb2dPolyline::description() const {
    static const ClassDescription d = drawingdb::describe<OdDb2dPolyline>("POLYLINE", &OdDb2dPolyline::describe);
    return &d;
}
void OdDb2dPolyline::describe(Describer& d) {
    auto& self = d.self<OdDb2dPolyline>();
    describeCommon(d);
    d.zone("AcDb2dPolyline");
    d.required().point(10, self.elevation_);
    d.real(39, self.thickness_);
    d.int16(70, self.flags_);
    d.real(40, self.startWidth_);
    d.real(41, self.endWidth_);
    d.vector(210, self.normal_);
}

BulgeSegment OdDb2dPolyline::segment(std::size_t index) const {
    return {vertices_[index].point.xy(), next(index).point.xy(), vertices_[index].bulge};
}
OdGePoint3d OdDb2dPolyline::inWorld(const OdGePoint2d& point) const {
    return OdGeMatrix3d::planeToWorld(normal_) * OdGePoint3d(point.x, point.y, elevation_.z);
}
std::vector<drawingdb::WideSegment> OdDb2dPolyline::wideSegments() const {
    std::vector<drawingdb::WideSegment> segments;
    for (std::size_t i = 0; i < numSegments(); ++i)
        segments.push_back({segment(i), vertices_[i].startWidth, vertices_[i].endWidth});
    return segments;
}
double OdDb2dPolyline::segmentLength(std::size_t index) const { return segment(index).length(); }

OdGePoint3d OdDb2dPolyline::pointAtParam(double parameter) const {
    if (numSegments() == 0) return vertices_.empty() ? OdGePoint3d() : inWorld(vertices_.front().point.xy());
    const auto [index, fraction] = segmentAt(parameter);
    return inWorld(segment(index).pointAt(fraction));
}
OdGeVector3d OdDb2dPolyline::firstDerivAtParam(double parameter) const {
    if (numSegments() == 0) return {};
    const auto [index, fraction] = segmentAt(parameter);
    const OdGeVector2d direction = segment(index).derivativeAt(fraction);
    return OdGeMatrix3d::planeToWorld(normal_) * OdGeVector3d(direction.x, direction.y, 0);
}
OdResult OdDb2dPolyline::transformBy(const OdGeMatrix3d& matrix) {
    const auto plane = drawingdb::mapPlane(matrix, normal_);
    const auto scale = plane ? drawingdb::widthScale(*plane, wideSegments(), thickness_) : std::nullopt;
    if (!scale) return OdResult::transformRefused;
    assertWriteEnabled();
    mapVertices(plane->map, elevation_.z, *scale, plane->reversed);
    elevation_.set(0, 0, (plane->map * OdGePoint3d(0, 0, elevation_.z)).z);
    startWidth_ *= *scale;
    endWidth_ *= *scale;
    thickness_ = drawingdb::mapThickness(matrix, normal_, thickness_, plane->normal);
    normal_ = plane->normal;
    return OdResult::ok;
}

OdResult OdDb2dPolyline::explode(std::vector<OdDbEntityPtr>& pieces) const {
    drawingdb::CurvePieces(*this, normal_, elevation_.z, thickness_, pieces).addWide(wideSegments(), isClosed());
    return OdResult::ok;
}

bool OdDb2dPolyline::geomExtents(OdGeExtents3d& extents) const {
    if (vertices_.empty()) return false;
    extents = OdGeExtents3d();
    const OdGeMatrix3d toWorld = OdGeMatrix3d::planeToWorld(normal_);
    const OdGeVector3d x = toWorld.xAxis(), y = toWorld.yAxis();
    const auto add = [&](const OdGePoint2d& p) { extents.addPoint(inWorld(p)); };
    for (const Vertex& vertex : vertices_) add(vertex.point.xy());
    for (std::size_t i = 0; i < numSegments(); ++i)
        segment(i).extremes({std::atan2(y.x, x.x), std::atan2(y.y, x.y), std::atan2(y.z, x.z)}, add);
    drawingdb::addThickness(extents, normal_, thickness_);
    return true;
}

// ---------------------------------------------------------------------------------------------------------------------

const ClassDescription* OdDb3dPolyline::description() const {
    static const ClassDescription d = drawingdb::describe<OdDb3dPolyline>("POLYLINE", &OdDb3dPolyline::describe);
    return &d;
}
void OdDb3dPolyline::describe(Describer& d) {
    auto& self = d.self<OdDb3dPolyline>();
    describeCommon(d);
    d.zone("AcDb3dPolyline");
    d.required().point(10, self.origin_);
    d.int16(70, self.flags_);
}
double OdDb3dPolyline::segmentLength(std::size_t index) const {
    return vertices_[index].point.distanceTo(next(index).point);
}
OdGePoint3d OdDb3dPolyline::pointAtParam(double parameter) const {
    if (numSegments() == 0) return vertices_.empty() ? OdGePoint3d() : vertices_.front().point;
    const auto [index, fraction] = segmentAt(parameter);
    const OdGePoint3d &from = vertices_[index].point, &to = next(index).point;
    return fraction == 1 ? to : from + (to - from) * fraction;
}
OdGeVector3d OdDb3dPolyline::firstDerivAtParam(double parameter) const {
    if (numSegments() == 0) return {};
    const auto [index, fraction] = segmentAt(parameter);
    return next(index).point - vertices_[index].point;
}
OdResult OdDb3dPolyline::transformBy(const OdGeMatrix3d& matrix) {
    assertWriteEnabled();
    mapVertices(matrix, std::nullopt, 1, false);
    return OdResult::ok;
}

bool OdDb3dPolyline::geomExtents(OdGeExtents3d& extents) const {
    if (vertices_.empty()) return false;
    extents = OdGeExtents3d();
    for (const Vertex& vertex : vertices_) extents.addPoint(vertex.point);
    return true;
}
