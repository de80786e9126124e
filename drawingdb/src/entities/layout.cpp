#include "drawingdb/layout.h"

#include "drawingdb/src/core/description.h"

using namespace drawingdb;

OD_DEFINE_CLASS(OdDbLayout, OdDbObject)

void OdDbLayout::describe(Describer& d) {
    auto& self = d.self<OdDbLayout>();
    describeHead(d);
    d.zone("AcDbLayout");
    d.required().text(1, self.name_);
    d.required().int16(70, self.flags_);
    d.required().int16(71, self.tabOrder_);
    d.point2(10, self.limitsMin_);
    d.point2(11, self.limitsMax_);
    d.point(14, self.extentsMin_);
    d.point(15, self.extentsMax_);
    d.handle(330, self.block_);
    d.handle(331, self.lastViewport_);
}
const ClassDescription* OdDbLayout::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbLayout>("LAYOUT", &OdDbLayout::describe);
    return &d;
}
OdString OdDbLayout::layoutName() const { return decoded(name_); }
OdDbObjectId OdDbLayout::blockTableRecordId() const { return resolve(block_); }
