// Text styles.
#pragma once

#include "drawingdb/symbol_table.h"

class DRAWINGDB_API OdDbTextStyleTableRecord : public OdDbSymbolTableRecord {
    OD_DECLARE_CONCRETE_CLASS(OdDbTextStyleTableRecord)
  public:
    double textSize() const { return textSize_; }  ///< 0: not fixed
    double xScale() const { return widthFactor_; }
    double obliquingAngle() const { return oblique_; }  ///< radians
    bool isShapeFile() const { return (flags_ & 1) != 0; }
    OdString fontFile() const;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    drawingdb::FileText font_;
    drawingdb::FileText bigFont_;
    double textSize_ = 0;
    double widthFactor_ = 1;
    double oblique_ = 0;
    double lastHeight_ = 0.2;
    std::int16_t generation_ = 0;
};
