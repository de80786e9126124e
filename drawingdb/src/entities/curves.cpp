#include "drawingdb/curves.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/entities/curve_pieces.h"
#include "drawingdb/src/geometry/arc_length.h"
#include "drawingdb/src/geometry/curve_math.h"

using drawingdb::addThickness;
using drawingdb::BulgeSegment;
using drawingdb::ClassDescription;
using drawingdb::Describer;
using drawingdb::mapPlane;
using drawingdb::mapThickness;
using drawingdb::SegmentLengths;

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The extrusion of something without a plane of its own: where the normal goes, and the thickness.
void transformExtrusion(const OdGeMatrix3d& matrix, OdGeVector3d& normal, double& thickness) {
    const OdGeVector3d image = matrix * normal;
    if (image.isZeroLength()) {
        thickness = 0;
        return;
    }
    thickness *= drawingdb::withoutNoise(image.length() / normal.length());
    if (!image.normal().isEqualTo(normal, {1e-12, 1e-12})) normal = image.normal();
}

// The way to the left of a direction, as long as the distance; none along the normal, where no side is the left one.
std::optional<OdGeVector3d> leftOf(const OdGeVector3d& direction, const OdGeVector3d& normal, double distance) {
    const OdGeVector3d left = normal.normal().crossProduct(direction.normal());
    if (left.isZeroLength() || !std::isfinite(distance)) return std::nullopt;
    return left.normal() * distance;
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------------------

OD_DEFINE_ABSTRACT_CLASS(OdDbCurve, OdDbEntity)

OdResult OdDbCurve::getOffsetCurves(double, const OdGeVector3d&, std::vector<OdDbCurvePtr>&) const {
    return OdResult::invalidInput;
}

// ---------------------------------------------------------------------------------------------------------------------
// Lines

OD_DEFINE_CLASS(OdDbLine, OdDbCurve)

const ClassDescription* OdDbLine::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbLine>("LINE", &OdDbLine::describe);
    return &d;
}

void OdDbLine::describe(Describer& d) {
    auto& self = d.self<OdDbLine>();
    describeCommon(d);
    d.zone("AcDbLine");
    d.real(39, self.thickness_);
    d.required().point(10, self.start_);
    d.required().point(11, self.end_);
    d.vector(210, self.normal_);
}

void OdDbLine::setStartPoint(const OdGePoint3d& point) {
    assertWriteEnabled();
    start_ = point;
}
void OdDbLine::setEndPoint(const OdGePoint3d& point) {
    assertWriteEnabled();
    end_ = point;
}
void OdDbLine::setExtrusion(const OdGeVector3d& normal, double thickness) {
    if (normal.isZeroLength()) throw OdError(OdResult::invalidInput, "a normal without length");
    assertWriteEnabled();
    normal_ = normal.normal();
    thickness_ = thickness;
}

OdResult OdDbLine::transformBy(const OdGeMatrix3d& matrix) {
    assertWriteEnabled();
    start_.transformBy(matrix);
    end_.transformBy(matrix);
    transformExtrusion(matrix, normal_, thickness_);
    return OdResult::ok;
}

bool OdDbLine::geomExtents(OdGeExtents3d& extents) const {
    extents = OdGeExtents3d(start_, end_);
    addThickness(extents, normal_, thickness_);
    return true;
}

double OdDbLine::endParam() const { return (end_ - start_).length(); }
OdGePoint3d OdDbLine::pointAtParam(double parameter) const {
    const double length = endParam();
    // By the fraction, so that the end of the parameter is the end point to the last digit.
    return length > 0 ? start_ + (end_ - start_) * (parameter / length) : start_;
}
OdGeVector3d OdDbLine::firstDerivAtParam(double) const { return (end_ - start_).normal(); }
double OdDbLine::distAtParam(double parameter) const { return parameter; }
double OdDbLine::paramAtDist(double distance) const { return distance; }

OdResult OdDbLine::getOffsetCurves(double distance, const OdGeVector3d& normal,
                                   std::vector<OdDbCurvePtr>& curves) const {
    const auto aside = leftOf(end_ - start_, normal, distance);
    if (!aside) return OdResult::invalidInput;
    const auto line = createObject();
    line->setPropertiesFrom(*this);
    line->thickness_ = thickness_;
    line->normal_ = normal_;
    line->start_ = start_ + *aside;
    line->end_ = end_ + *aside;
    curves.emplace_back(line);
    return OdResult::ok;
}

// ---------------------------------------------------------------------------------------------------------------------
// Rays and infinite lines

OD_DEFINE_ABSTRACT_CLASS(OdDbConstructionLine, OdDbCurve)
OD_DEFINE_CLASS(OdDbRay, OdDbConstructionLine)
OD_DEFINE_CLASS(OdDbXline, OdDbConstructionLine)

const ClassDescription* OdDbRay::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbRay>("RAY", &OdDbRay::describe);
    return &d;
}
const ClassDescription* OdDbXline::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbXline>("XLINE", &OdDbXline::describe);
    return &d;
}

void OdDbRay::describe(Describer& d) {
    auto& self = d.self<OdDbRay>();
    describeCommon(d);
    d.zone("AcDbRay");
    d.required().point(10, self.base_);
    d.required().vector(11, self.direction_);
}
void OdDbXline::describe(Describer& d) {
    auto& self = d.self<OdDbXline>();
    describeCommon(d);
    d.zone("AcDbXline");
    d.required().point(10, self.base_);
    d.required().vector(11, self.direction_);
}

void OdDbConstructionLine::setBasePoint(const OdGePoint3d& point) {
    assertWriteEnabled();
    base_ = point;
}
void OdDbConstructionLine::setUnitDir(const OdGeVector3d& direction) {
    if (direction.isZeroLength())
        throw OdError(OdResult::invalidInput, "the direction of an infinite line has no length");
    assertWriteEnabled();
    direction_ = direction.normal();
}

OdResult OdDbConstructionLine::transformBy(const OdGeMatrix3d& matrix) {
    const OdGeVector3d image = matrix * direction_;
    if (!(image.length() > 0)) return OdResult::transformRefused;
    assertWriteEnabled();
    base_.transformBy(matrix);
    if (image != direction_) direction_ = image.normal();
    return OdResult::ok;
}

bool OdDbConstructionLine::geomExtents(OdGeExtents3d&) const { return false; }
double OdDbConstructionLine::startParam() const { return -kInfinity; }
double OdDbConstructionLine::endParam() const { return kInfinity; }
double OdDbRay::startParam() const { return 0; }
OdGePoint3d OdDbConstructionLine::pointAtParam(double parameter) const {
    return base_ + direction_.normal() * parameter;
}
OdGeVector3d OdDbConstructionLine::firstDerivAtParam(double) const { return direction_.normal(); }
double OdDbConstructionLine::distAtParam(double parameter) const { return parameter; }
double OdDbConstructionLine::paramAtDist(double distance) const { return distance; }

OdResult OdDbConstructionLine::getOffsetCurves(double distance, const OdGeVector3d& normal,
                                               std::vector<OdDbCurvePtr>& curves) const {
    const auto aside = leftOf(direction_, normal, distance);
    if (!aside) return OdResult::invalidInput;
    const auto line = OdSmartPtr<OdDbConstructionLine>(static_cast<OdDbConstructionLine*>(isA()->create().get()));
    line->setPropertiesFrom(*this);
    line->base_ = base_ + *aside;
    line->direction_ = direction_;
    curves.emplace_back(line);
    return OdResult::ok;
}

// ---------------------------------------------------------------------------------------------------------------------
// Points

OD_DEFINE_CLASS(OdDbPoint, OdDbEntity)

const ClassDescription* OdDbPoint::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbPoint>("POINT", &OdDbPoint::describe);
    return &d;
}

void OdDbPoint::describe(Describer& d) {
    auto& self = d.self<OdDbPoint>();
    describeCommon(d);
    d.zone("AcDbPoint");
    d.required().point(10, self.position_);
    d.real(39, self.thickness_);
    d.vector(210, self.normal_);
    d.angle(50, self.rotation_);
}

void OdDbPoint::setPosition(const OdGePoint3d& point) {
    assertWriteEnabled();
    position_ = point;
}

OdResult OdDbPoint::transformBy(const OdGeMatrix3d& matrix) {
    assertWriteEnabled();
    position_.transformBy(matrix);
    if (rotation_ != 0) {
        // The direction of the mark that point styles draw.
        if (const auto plane = mapPlane(matrix, normal_)) {
            const OdGeVector2d along = drawingdb::directionOf(rotation_);
            const OdGeVector3d mark = plane->map * OdGeVector3d(along.x, along.y, 0);
            rotation_ = drawingdb::turnedTo(rotation_, mark.xy());
        }
    }
    transformExtrusion(matrix, normal_, thickness_);
    return OdResult::ok;
}

bool OdDbPoint::geomExtents(OdGeExtents3d& extents) const {
    extents = OdGeExtents3d(position_, position_);
    addThickness(extents, normal_, thickness_);
    return true;
}

// ---------------------------------------------------------------------------------------------------------------------
// Circles and arcs

OD_DEFINE_CLASS(OdDbCircle, OdDbCurve)
OD_DEFINE_CLASS(OdDbArc, OdDbCircle)

const ClassDescription* OdDbCircle::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbCircle>("CIRCLE", &OdDbCircle::describe);
    return &d;
}
const ClassDescription* OdDbArc::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbArc>("ARC", &OdDbArc::describe);
    return &d;
}

void OdDbCircle::describeCircle(Describer& d) {
    auto& self = d.self<OdDbCircle>();
    describeCommon(d);
    d.zone("AcDbCircle");
    d.real(39, self.thickness_);
    d.required().point(10, self.center_);
    d.required().real(40, self.radius_);
    d.vector(210, self.normal_);
}
void OdDbCircle::describe(Describer& d) { describeCircle(d); }

void OdDbArc::describe(Describer& d) {
    auto& self = d.self<OdDbArc>();
    describeCircle(d);
    d.zone("AcDbArc");
    d.required().angle(50, self.startAngle_);
    d.required().angle(51, self.endAngle_);
}

OdGePoint3d OdDbCircle::center() const { return OdGeMatrix3d::planeToWorld(normal_) * center_; }
void OdDbCircle::setCenter(const OdGePoint3d& point) {
    assertWriteEnabled();
    center_ = OdGeMatrix3d::worldToPlane(normal_) * point;
}
void OdDbCircle::setRadius(double radius) {
    if (!(radius >= 0) || !std::isfinite(radius))
        throw OdError(OdResult::invalidInput, "a radius is a number of 0 or more");
    assertWriteEnabled();
    radius_ = radius;
}
void OdDbCircle::setNormal(const OdGeVector3d& normal) {
    if (normal.isZeroLength()) throw OdError(OdResult::invalidInput, "a normal without length");
    assertWriteEnabled();
    const OdGePoint3d place = center();
    normal_ = normal.normal();
    center_ = OdGeMatrix3d::worldToPlane(normal_) * place;
}

OdResult OdDbCircle::transformBy(const OdGeMatrix3d& matrix) {
    const auto plane = mapPlane(matrix, normal_);
    const auto scale = plane ? drawingdb::planarScale(*plane, thickness_) : std::nullopt;
    if (!scale) return OdResult::transformRefused;
    assertWriteEnabled();
    center_.transformBy(plane->map);
    radius_ *= *scale;
    thickness_ = mapThickness(matrix, normal_, thickness_, plane->normal);
    normal_ = plane->normal;
    return OdResult::ok;
}

OdResult OdDbCircle::explode(std::vector<OdDbEntityPtr>& pieces) const {
    drawingdb::CurvePieces(*this, normal_, center_.z, thickness_, pieces)
        .addArc(center_.xy(), radius_, startParam(), endParam());
    return OdResult::ok;
}

OdResult OdDbArc::transformBy(const OdGeMatrix3d& matrix) {
    const auto plane = mapPlane(matrix, normal_);
    if (const OdResult result = OdDbCircle::transformBy(matrix); result != OdResult::ok) return result;
    for (double* const angle : {&startAngle_, &endAngle_}) {
        const OdGeVector2d along = drawingdb::directionOf(*angle);
        *angle = drawingdb::turnedTo(*angle, (plane->map * OdGeVector3d(along.x, along.y, 0)).xy());
    }
    if (plane->reversed) std::swap(startAngle_, endAngle_);
    return OdResult::ok;
}

void OdDbArc::setAngles(double start, double end) {
    if (!std::isfinite(start) || !std::isfinite(end)) throw OdError(OdResult::invalidInput, "an angle is no number");
    assertWriteEnabled();
    startAngle_ = start;
    endAngle_ = end;
}

bool OdDbCircle::geomExtents(OdGeExtents3d& extents) const {
    const OdGeMatrix3d toWorld = OdGeMatrix3d::planeToWorld(normal_);
    const OdGeVector3d x = toWorld.xAxis(), y = toWorld.yAxis();
    const OdGeVector3d reach(drawingdb::euclideanLength(x.x, y.x) * radius_,
                             drawingdb::euclideanLength(x.y, y.y) * radius_,
                             drawingdb::euclideanLength(x.z, y.z) * radius_);
    const OdGePoint3d middle = toWorld * center_;
    extents = OdGeExtents3d(middle - reach, middle + reach);
    addThickness(extents, normal_, thickness_);
    return true;
}

bool OdDbArc::geomExtents(OdGeExtents3d& extents) const {
    const OdGeMatrix3d toWorld = OdGeMatrix3d::planeToWorld(normal_);
    const OdGeVector3d x = toWorld.xAxis(), y = toWorld.yAxis();
    const double start = startParam(), sweep = endParam() - start;
    extents = OdGeExtents3d(pointAtParam(start), pointAtParam(endParam()));
    // Where the arc turns back along one of the world's axes.
    for (const double angle : {std::atan2(y.x, x.x), std::atan2(y.y, x.y), std::atan2(y.z, x.z)})
        for (const double turning : {angle, angle + drawingdb::kPi})
            if (drawingdb::normalizedAngle(turning - start) < sweep) extents.addPoint(pointAtParam(turning));
    addThickness(extents, normal_, thickness_);
    return true;
}

double OdDbCircle::endParam() const { return drawingdb::kTwoPi; }
double OdDbArc::startParam() const { return startAngle_; }
double OdDbArc::endParam() const {
    const double sweep = drawingdb::normalizedAngle(endAngle_ - startAngle_);
    return startAngle_ + (sweep > 0 ? sweep : drawingdb::kTwoPi);
}
OdGePoint3d OdDbCircle::pointAtParam(double parameter) const {
    const OdGeVector3d radius(radius_ * std::cos(parameter), radius_ * std::sin(parameter), 0);
    return OdGeMatrix3d::planeToWorld(normal_) * (center_ + radius);
}
OdGeVector3d OdDbCircle::firstDerivAtParam(double parameter) const {
    return OdGeMatrix3d::planeToWorld(normal_) *
           OdGeVector3d(-radius_ * std::sin(parameter), radius_ * std::cos(parameter), 0);
}
double OdDbCircle::distAtParam(double parameter) const { return radius_ * (parameter - startParam()); }
double OdDbCircle::paramAtDist(double distance) const {
    return radius_ > 0 ? startParam() + distance / radius_ : startParam();
}

// They run counter-clockwise: the left is the inside.
OdResult OdDbCircle::getOffsetCurves(double distance, const OdGeVector3d&, std::vector<OdDbCurvePtr>& curves) const {
    const double radius = radius_ - distance;
    if (!(radius > 0) || !std::isfinite(radius)) return OdResult::invalidInput;
    const auto round = OdSmartPtr<OdDbCircle>(static_cast<OdDbCircle*>(isA()->create().get()));
    round->setPropertiesFrom(*this);
    round->center_ = center_;
    round->normal_ = normal_;
    round->radius_ = radius;
    round->thickness_ = thickness_;
    if (const auto* const arc = drawingdb::as<OdDbArc>(*this))
        static_cast<OdDbArc&>(*round).setAngles(arc->startAngle(), arc->endAngle());
    curves.emplace_back(round);
    return OdResult::ok;
}

// ---------------------------------------------------------------------------------------------------------------------
// Light polylines

OD_DEFINE_CLASS(OdDbPolyline, OdDbCurve)

const ClassDescription* OdDbPolyline::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbPolyline>("LWPOLYLINE", &OdDbPolyline::describe);
    return &d;
}

void OdDbPolyline::describe(Describer& d) {
    auto& self = d.self<OdDbPolyline>();
    describeCommon(d);
    d.zone("AcDbPolyline");
    d.required().int32(90, self.vertexCount_);
    d.required().int16(70, self.flags_);
    d.real(43, self.constantWidth_);
    d.real(38, self.elevation_);
    d.real(39, self.thickness_);
    d.run({10, 20, 40, 41, 42, 91});
    d.vector(210, self.normal_);
}

// A vertex begins with its group 10; what follows up to the next one is its own.
void OdDbPolyline::readRunGroup(const drawingdb::Group& group, int) {
    const bool binary = database()->core().format.binary;
    const double value = group.code == 91 ? 0 : groupReal(group, binary).value_or(0);
    if (group.code == 10) {
        vertices_.emplace_back().point.x = value;
        return;
    }
    if (vertices_.empty()) return;
    Vertex& vertex = vertices_.back();
    switch (group.code) {
        case 20:
            vertex.point.y = value;
            break;
        case 40:
            vertex.startWidth = value;
            break;
        case 41:
            vertex.endWidth = value;
            break;
        case 42:
            vertex.bulge = value;
            break;
        case 91:
            vertex.identifier = static_cast<std::int32_t>(groupInteger(group, binary).value_or(0));
            break;
        default:
            break;
    }
}

void OdDbPolyline::writeRun(drawingdb::GroupWriter& writer, int) const {
    for (const Vertex& vertex : vertices_) {
        writer.real(10, vertex.point.x);
        writer.real(20, vertex.point.y);
        if (vertex.startWidth >= 0) writer.real(40, vertex.startWidth);
        if (vertex.endWidth >= 0) writer.real(41, vertex.endWidth);
        if (vertex.bulge != 0) writer.real(42, vertex.bulge);
        if (vertex.identifier != 0 && writer.format().version >= drawingdb::version::v2010)
            writer.integer(91, vertex.identifier);
    }
}

void OdDbPolyline::clearRuns() {
    vertices_.clear();
    lengths_.reset();
}

void OdDbPolyline::verticesChanged() {
    lengths_.reset();
    runsChanged();
}

void OdDbPolyline::beforeEncode() {
    // A wrong count in a file stays as it is until the vertices change.
    if (runsChanged_ || source_.empty()) vertexCount_ = static_cast<std::int32_t>(vertices_.size());
}

void OdDbPolyline::setVertexAt(std::size_t index, const Vertex& vertex) {
    if (index >= vertices_.size()) throw OdError(OdResult::invalidInput, "the polyline has no such vertex");
    assertWriteEnabled();
    vertices_[index] = vertex;
    verticesChanged();
}
void OdDbPolyline::addVertexAt(std::size_t index, const Vertex& vertex) {
    if (index > vertices_.size()) throw OdError(OdResult::invalidInput, "the polyline has no such vertex");
    assertWriteEnabled();
    vertices_.insert(vertices_.begin() + static_cast<std::ptrdiff_t>(index), vertex);
    verticesChanged();
}
void OdDbPolyline::removeVertexAt(std::size_t index) {
    if (index >= vertices_.size()) throw OdError(OdResult::invalidInput, "the polyline has no such vertex");
    assertWriteEnabled();
    vertices_.erase(vertices_.begin() + static_cast<std::ptrdiff_t>(index));
    verticesChanged();
}
void OdDbPolyline::setClosed(bool closed) {
    assertWriteEnabled();
    flags_ = static_cast<std::int16_t>(closed ? flags_ | 1 : flags_ & ~1);
}
void OdDbPolyline::setElevation(double elevation) {
    assertWriteEnabled();
    elevation_ = elevation;
}
void OdDbPolyline::setThickness(double thickness) {
    assertWriteEnabled();
    thickness_ = thickness;
}
void OdDbPolyline::setNormal(const OdGeVector3d& normal) {
    if (normal.isZeroLength()) throw OdError(OdResult::invalidInput, "a normal without length");
    assertWriteEnabled();
    normal_ = normal.normal();
}

OdGePoint3d OdDbPolyline::inWorld(const OdGePoint2d& point) const {
    return OdGeMatrix3d::planeToWorld(normal_) * OdGePoint3d(point.x, point.y, elevation_);
}
OdGePoint3d OdDbPolyline::pointAt(std::size_t index) const { return inWorld(vertices_.at(index).point); }

std::size_t OdDbPolyline::numSegments() const {
    if (vertices_.empty()) return 0;
    return isClosed() ? vertices_.size() : vertices_.size() - 1;
}
BulgeSegment OdDbPolyline::segment(std::size_t index) const {
    const Vertex& from = vertices_[index];
    return {from.point, vertices_[index + 1 == vertices_.size() ? 0 : index + 1].point, from.bulge};
}

std::vector<drawingdb::WideSegment> OdDbPolyline::wideSegments() const {
    std::vector<drawingdb::WideSegment> segments;
    const auto width = [this](double own) { return own >= 0 ? own : constantWidth_; };
    for (std::size_t i = 0; i < numSegments(); ++i)
        segments.push_back({segment(i), width(vertices_[i].startWidth), width(vertices_[i].endWidth)});
    return segments;
}

OdResult OdDbPolyline::transformBy(const OdGeMatrix3d& matrix) {
    const auto plane = mapPlane(matrix, normal_);
    const auto scale = plane ? drawingdb::widthScale(*plane, wideSegments(), thickness_) : std::nullopt;
    if (!scale) return OdResult::transformRefused;
    assertWriteEnabled();
    const double elevation = (plane->map * OdGePoint3d(0, 0, elevation_)).z;
    for (Vertex& vertex : vertices_) {
        const OdGePoint3d image = plane->map * OdGePoint3d(vertex.point.x, vertex.point.y, elevation_);
        vertex.point.set(image.x, image.y);
        if (plane->reversed) vertex.bulge = vertex.bulge == 0 ? 0 : -vertex.bulge;
        if (vertex.startWidth > 0) vertex.startWidth *= *scale;
        if (vertex.endWidth > 0) vertex.endWidth *= *scale;
    }
    elevation_ = elevation;
    constantWidth_ *= *scale;
    thickness_ = mapThickness(matrix, normal_, thickness_, plane->normal);
    normal_ = plane->normal;
    verticesChanged();
    return OdResult::ok;
}

OdResult OdDbPolyline::explode(std::vector<OdDbEntityPtr>& pieces) const {
    drawingdb::CurvePieces(*this, normal_, elevation_, thickness_, pieces).addWide(wideSegments(), isClosed());
    return OdResult::ok;
}

bool OdDbPolyline::geomExtents(OdGeExtents3d& extents) const {
    if (vertices_.empty()) return false;
    extents = OdGeExtents3d();
    const OdGeMatrix3d toWorld = OdGeMatrix3d::planeToWorld(normal_);
    const OdGeVector3d x = toWorld.xAxis(), y = toWorld.yAxis();
    const auto add = [&](const OdGePoint2d& p) { extents.addPoint(toWorld * OdGePoint3d(p.x, p.y, elevation_)); };
    for (const Vertex& vertex : vertices_) add(vertex.point);
    for (std::size_t i = 0; i < numSegments(); ++i)
        if (vertices_[i].bulge != 0)
            segment(i).extremes({std::atan2(y.x, x.x), std::atan2(y.y, x.y), std::atan2(y.z, x.z)}, add);
    addThickness(extents, normal_, thickness_);
    return true;
}

double OdDbPolyline::endParam() const { return static_cast<double>(numSegments()); }

std::vector<double> OdDbPolyline::breakParams() const {
    std::vector<double> breaks(numSegments() + 1);
    std::iota(breaks.begin(), breaks.end(), 0.0);
    return breaks;
}

std::pair<std::size_t, double> OdDbPolyline::segmentAt(double parameter) const {
    return drawingdb::segmentAt(parameter, numSegments());
}

OdGePoint3d OdDbPolyline::pointAtParam(double parameter) const {
    if (numSegments() == 0) return vertices_.empty() ? OdGePoint3d() : pointAt(0);
    const auto [index, fraction] = segmentAt(parameter);
    return inWorld(segment(index).pointAt(fraction));
}

OdGeVector3d OdDbPolyline::firstDerivAtParam(double parameter) const {
    if (numSegments() == 0) return OdGeVector3d();
    const auto [index, fraction] = segmentAt(parameter);
    const OdGeVector2d direction = segment(index).derivativeAt(fraction);
    return OdGeMatrix3d::planeToWorld(normal_) * OdGeVector3d(direction.x, direction.y, 0);
}

const SegmentLengths& OdDbPolyline::lengths() const {
    if (!lengths_) {
        const auto measured = std::make_shared<SegmentLengths>();
        for (std::size_t i = 0; i < numSegments(); ++i) measured->add(segment(i).length());
        lengths_ = measured;
    }
    return *lengths_;
}
double OdDbPolyline::distAtParam(double parameter) const { return lengths().lengthAt(parameter); }
double OdDbPolyline::paramAtDist(double distance) const { return lengths().parameterAt(distance); }
