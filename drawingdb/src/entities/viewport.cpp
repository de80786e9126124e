#include "drawingdb/viewport.h"

#include "drawingdb/block.h"
#include "drawingdb/src/core/description.h"

using namespace drawingdb;

OD_DEFINE_CLASS(OdDbViewport, OdDbEntity)

void OdDbViewport::describe(Describer& d) {
    auto& self = d.self<OdDbViewport>();
    describeCommon(d);
    d.zone("AcDbViewport");
    d.required().point(10, self.center_);
    d.required().real(40, self.width_);
    d.required().real(41, self.height_);
    d.required().int16(68, self.status_);
    d.required().int16(69, self.number_);
    d.point2(12, self.viewCenter_);
    d.vector(16, self.viewDirection_);
    d.point(17, self.viewTarget_);
    d.real(45, self.viewHeight_);
    d.angle(51, self.twist_);
    d.int32(90, self.flags_);
}
int OdDbViewport::number() const {
    const auto layout = number_ == 0 ? blockId().openIf<OdDbBlockTableRecord>() : OdSmartPtr<OdDbBlockTableRecord>();
    if (!layout) return number_;
    // By its place, as long as no viewport of the layout has a number of its own.
    int count = 0, place = 0;
    for (const OdDbObjectId id : layout->entities()) {
        const auto viewport = id.openIf<OdDbViewport>();
        if (!viewport) continue;
        if (viewport->number_ != 0) return number_;
        ++count;
        if (id == objectId()) place = count;
    }
    return place;
}
// What has no number has no state either: it gets both when its layout is first shown.
bool OdDbViewport::isOn() const {
    constexpr std::int32_t kOff = 0x20000;
    return status_ > 0 || (status_ == 0 && number_ == 0 && !(flags_ & kOff));
}
const ClassDescription* OdDbViewport::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbViewport>("VIEWPORT", &OdDbViewport::describe);
    return &d;
}
void OdDbViewport::setView(const OdGePoint2d& center, double height) {
    assertWriteEnabled();
    viewCenter_ = OdGePoint3d(center.x, center.y, 0);
    viewHeight_ = height;
}
OdGeMatrix3d OdDbViewport::worldToView() const {
    return OdGeMatrix3d::rotation(twist_, OdGeVector3d::kZAxis) * OdGeMatrix3d::worldToPlane(viewDirection_) *
           OdGeMatrix3d::translation(OdGePoint3d() - viewTarget_);
}
bool OdDbViewport::geomExtents(OdGeExtents3d& extents) const {
    const OdGeVector3d half(width_ / 2, height_ / 2, 0);
    extents.addPoint(center_ - half);
    extents.addPoint(center_ + half);
    return true;
}
