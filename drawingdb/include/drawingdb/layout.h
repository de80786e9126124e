// Layouts.
#pragma once

#include "drawingdb/ge.h"
#include "drawingdb/object.h"

class DRAWINGDB_API OdDbLayout : public OdDbObject {
    OD_DECLARE_CONCRETE_CLASS(OdDbLayout)
  public:
    OdString layoutName() const;
    int tabOrder() const { return tabOrder_; }
    OdDbObjectId blockTableRecordId() const;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    drawingdb::FileText name_;
    drawingdb::HandleRef block_;
    drawingdb::HandleRef lastViewport_;
    std::int16_t tabOrder_ = 0;
    std::int16_t flags_ = 0;
    OdGePoint3d limitsMin_, limitsMax_, extentsMin_, extentsMax_;
};
