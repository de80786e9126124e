#include "drawingdb/text_style.h"

#include "drawingdb/src/core/description.h"

using namespace drawingdb;

OD_DEFINE_CLASS(OdDbTextStyleTableRecord, OdDbSymbolTableRecord)

void OdDbTextStyleTableRecord::describe(Describer& d) {
    auto& self = d.self<OdDbTextStyleTableRecord>();
    describeHead(d);
    d.zone("AcDbSymbolTableRecord");
    d.zone("AcDbTextStyleTableRecord");
    d.required().text(2, self.name_);
    d.required().int16(70, self.flags_);
    d.required().real(40, self.textSize_);
    d.required().real(41, self.widthFactor_);
    d.required().angle(50, self.oblique_);
    d.required().int16(71, self.generation_);
    d.required().real(42, self.lastHeight_);
    d.required().text(3, self.font_, "txt");
    d.required().text(4, self.bigFont_);
}
const ClassDescription* OdDbTextStyleTableRecord::description() const {
    static const ClassDescription d =
        drawingdb::describe<OdDbTextStyleTableRecord>("STYLE", &OdDbTextStyleTableRecord::describe);
    return &d;
}
OdString OdDbTextStyleTableRecord::fontFile() const { return decoded(font_); }
