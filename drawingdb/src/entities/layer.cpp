#include "drawingdb/layer.h"

#include <cmath>

#include "drawingdb/src/core/description.h"

using namespace drawingdb;

OD_DEFINE_CLASS(OdDbLayerTableRecord, OdDbSymbolTableRecord)

void OdDbLayerTableRecord::describe(Describer& d) {
    auto& self = d.self<OdDbLayerTableRecord>();
    describeHead(d);
    d.zone("AcDbSymbolTableRecord");
    d.zone("AcDbLayerTableRecord");
    d.required().text(2, self.name_);
    d.required().int16(70, self.flags_);
    d.required().int32(62, self.colorIndex_);
    d.since(version::v2004).int32(420, self.trueColor_);
    d.required().text(6, self.linetype_, "CONTINUOUS");
    d.since(version::v2000).int16(290, self.plottable_);
    d.since(version::v2000).int32(370, self.lineweight_);
    d.since(version::v2000).handle(390, self.plotStyle_);
    d.since(version::v2007).handle(347, self.material_);
}
const ClassDescription* OdDbLayerTableRecord::description() const {
    static const ClassDescription d =
        drawingdb::describe<OdDbLayerTableRecord>("LAYER", &OdDbLayerTableRecord::describe);
    return &d;
}
namespace {
std::int16_t withBit(std::int16_t flags, int bit, bool on) {
    return static_cast<std::int16_t>(on ? flags | bit : flags & ~bit);
}
}  // namespace
void OdDbLayerTableRecord::setIsFrozen(bool on) {
    assertWriteEnabled();
    flags_ = withBit(flags_, 1, on);
}
void OdDbLayerTableRecord::setIsLocked(bool on) {
    assertWriteEnabled();
    flags_ = withBit(flags_, 4, on);
}
void OdDbLayerTableRecord::setIsOff(bool on) {
    assertWriteEnabled();
    colorIndex_ = on ? -std::abs(colorIndex_) : std::abs(colorIndex_);
}
OdCmColor OdDbLayerTableRecord::color() const { return OdCmColor::fromDxf(std::abs(colorIndex_), trueColor_); }
void OdDbLayerTableRecord::setColor(const OdCmColor& color) {
    assertWriteEnabled();
    const bool off = isOff();
    colorIndex_ = off ? -color.colorIndex() : color.colorIndex();
    trueColor_ = color.dxfTrueColor();
}
OdString OdDbLayerTableRecord::linetype() const { return decoded(linetype_); }
void OdDbLayerTableRecord::setLinetype(const OdString& name) {
    assertWriteEnabled();
    assign(linetype_, name);
}
void OdDbLayerTableRecord::setLineweight(int value) {
    assertWriteEnabled();
    lineweight_ = value;
}

void OdDbLayerTableRecord::setPropertiesFrom(const OdDbLayerTableRecord& other) {
    assertWriteEnabled();
    setLinetype(other.linetype());
    flags_ = other.flags_;
    colorIndex_ = other.colorIndex_;
    trueColor_ = other.trueColor_;
    lineweight_ = other.lineweight_;
    plottable_ = other.plottable_;
    plotStyle_ = other.plotStyle_;
    material_ = other.material_;
}
