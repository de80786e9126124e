#include "drawingdb/wipeout.h"

#include "drawingdb/dictionary.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/geometry/curve_math.h"

using drawingdb::ClassDescription;
using drawingdb::Describer;

OD_DEFINE_CLASS(OdDbWipeout, OdDbEntity)
OD_DEFINE_CLASS(OdDbWipeoutVariables, OdDbObject)

namespace {

constexpr int kRectangle = 1;
constexpr int kPolygon = 2;
constexpr wchar_t kVariablesKey[] = L"ACAD_WIPEOUT_VARS";

// The side of the plane that faces up, or else back, or else right: flat drawings keep the world's axes.
OdGeVector3d facing(const OdGeVector3d& normal) {
    const double tolerance = OdGeContext::gTol.equalVector;
    const double tells = std::fabs(normal.z) > tolerance   ? normal.z
                         : std::fabs(normal.y) > tolerance ? -normal.y
                                                           : normal.x;
    return tells < 0 ? OdGeVector3d::kIdentity - normal : normal;
}

// The normal of the plane that points lie in: the sum of the areas between the sides and the first point. Points on
// one line lie in many planes; the flattest is taken.
OdGeVector3d planeOf(const std::vector<OdGePoint3d>& points) {
    OdGeVector3d area, along;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const OdGeVector3d reach = points[i] - points.front();
        area += (points[i - 1] - points.front()).crossProduct(reach);
        if (reach.lengthSquared() > along.lengthSquared()) along = reach;
    }
    if (area.length() > 1e-12 * along.lengthSquared()) return facing(area.normal());
    const OdGeVector3d direction = along.normal();
    const OdGeVector3d flattest = OdGeVector3d::kZAxis - direction * direction.z;
    return flattest.isZeroLength() ? OdGeVector3d::kXAxis : flattest.normal();
}

}  // namespace

const ClassDescription* OdDbWipeout::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbWipeout>("WIPEOUT", &OdDbWipeout::describe);
    return &d;
}

void OdDbWipeout::describe(Describer& d) {
    auto& self = d.self<OdDbWipeout>();
    describeCommon(d);
    d.zone("AcDbWipeout", "AcDbRasterImage");
    d.required().int32(90, self.classVersion_);
    d.required().point(10, self.corner_);
    d.required().vector(11, self.u_);
    d.required().vector(12, self.v_);
    d.required().point2(13, self.pixels_);
    d.required().handle(340, self.image_);
    d.required().int16(70, self.display_);
    d.required().int16(280, self.clipping_);
    d.required().int16(281, self.brightness_);
    d.required().int16(282, self.contrast_);
    d.required().int16(283, self.fade_);
    d.since(drawingdb::version::v2010).required().int16(290, self.clipInside_);
    d.required().handle(360, self.reactor_);
    d.required().int16(71, self.clipType_);
    d.required().int32(91, self.clipCount_);
    d.run({14, 24});
}

void OdDbWipeout::readRunGroup(const drawingdb::Group& group, int) {
    const double value = groupReal(group, database()->core().format.binary).value_or(0);
    if (group.code == 14)
        clip_.emplace_back(value, 0);
    else if (!clip_.empty())
        clip_.back().y = value;
}
void OdDbWipeout::writeRun(drawingdb::GroupWriter& writer, int) const {
    for (const OdGePoint2d& point : clip_) {
        writer.real(14, point.x);
        writer.real(24, point.y);
    }
}
void OdDbWipeout::clearRuns() { clip_.clear(); }
void OdDbWipeout::beforeEncode() {
    if (runsChanged_ || source_.empty()) clipCount_ = static_cast<std::int32_t>(clip_.size());
}

// The image is the square that just holds the points.
void OdDbWipeout::setBoundary(const std::vector<OdGePoint3d>& points) {
    bool differ = false;
    for (const OdGePoint3d& point : points) differ = differ || !point.isEqualTo(points.front());
    if (!differ) throw OdError(OdResult::invalidInput, "the boundary of a wipeout has no size");
    assertWriteEnabled();
    const OdGeVector3d normal = planeOf(points);
    const OdGeMatrix3d toPlane = OdGeMatrix3d::worldToPlane(normal), toWorld = OdGeMatrix3d::planeToWorld(normal);
    OdGeExtents3d box;
    for (const OdGePoint3d& point : points) box.addPoint(toPlane * point);
    const double height = (toPlane * points.front()).z;
    const double side = std::max(box.diagonal().x, box.diagonal().y);
    const OdGePoint3d corner(box.minPoint().x, box.minPoint().y, height);
    corner_ = toWorld * corner;
    u_ = toWorld.xAxis() * side;
    v_ = toWorld.yAxis() * side;
    pixels_ = OdGePoint3d(1, 1, 0);
    clipping_ = 1;
    clipType_ = kPolygon;
    clip_.clear();
    for (const OdGePoint3d& point : points) {
        const OdGeVector3d offset = toPlane * point - corner;
        clip_.emplace_back(offset.x / side - 0.5, 0.5 - offset.y / side);
    }
    runsChanged();
}

std::vector<OdGePoint3d> OdDbWipeout::boundary() const {
    const double right = pixels_.x - 0.5, bottom = pixels_.y - 0.5;
    std::vector<OdGePoint2d> corners = clip_;
    bool rectangle = clipType_ == kRectangle;
    if (!clipping_ || corners.size() < 2) {
        corners = {{-0.5, -0.5}, {right, bottom}};
        rectangle = true;
    }
    if (rectangle) {
        const OdGePoint2d a = corners[0], b = corners[1];
        corners = {a, {b.x, a.y}, b, {a.x, b.y}};
    }
    if (!(corners.back() == corners.front())) corners.push_back(corners.front());
    std::vector<OdGePoint3d> points;
    points.reserve(corners.size());
    for (const OdGePoint2d& pixel : corners) points.push_back(corner_ + u_ * (pixel.x + 0.5) + v_ * (bottom - pixel.y));
    return points;
}

OdGeVector3d OdDbWipeout::normal() const { return u_.crossProduct(v_).normal(); }

OdResult OdDbWipeout::transformBy(const OdGeMatrix3d& matrix) {
    if (!drawingdb::mapPlane(matrix, normal())) return OdResult::transformRefused;
    assertWriteEnabled();
    corner_.transformBy(matrix);
    u_.transformBy(matrix);
    v_.transformBy(matrix);
    return OdResult::ok;
}

bool OdDbWipeout::geomExtents(OdGeExtents3d& extents) const {
    extents = OdGeExtents3d();
    for (const OdGePoint3d& point : boundary()) extents.addPoint(point);
    return true;
}

// ---------------------------------------------------------------------------------------------------------------------

const ClassDescription* OdDbWipeoutVariables::description() const {
    static const ClassDescription d =
        drawingdb::describe<OdDbWipeoutVariables>("WIPEOUTVARIABLES", &OdDbWipeoutVariables::describe);
    return &d;
}
void OdDbWipeoutVariables::describe(Describer& d) {
    auto& self = d.self<OdDbWipeoutVariables>();
    describeHead(d);
    d.zone("AcDbWipeoutVariables", "AcDbRasterVariables");
    d.required().int16(70, self.showFrame_);
}
void OdDbWipeoutVariables::setShowFrame(bool on) {
    assertWriteEnabled();
    showFrame_ = on ? 1 : 0;
}

OdSmartPtr<OdDbWipeoutVariables> OdDbWipeoutVariables::openForWrite(OdDbDatabase& database) {
    const auto named = database.namedObjectsDictionaryId().openIf<OdDbDictionary>(OdDb::forWrite);
    if (!named)
        throw OdError(OdResult::notHeldByVersion, database.core().where(nullptr) + "a drawing of version " +
                                                      database.version() +
                                                      " has no place for the frames of wipeouts. Remedy: open it with "
                                                      "a program that can save newer versions");
    if (auto found = named->getAt(kVariablesKey).openIf<OdDbWipeoutVariables>(OdDb::forWrite)) return found;
    auto fresh = createObject();
    named->setAt(kVariablesKey, fresh);
    return fresh;
}

bool OdDbWipeoutVariables::showsFrames(const OdDbDatabase& database) {
    const auto named = database.namedObjectsDictionaryId().openIf<OdDbDictionary>();
    const auto found =
        named ? named->getAt(kVariablesKey).openIf<OdDbWipeoutVariables>() : OdSmartPtr<OdDbWipeoutVariables>();
    return !found || found->showFrame();
}
