// Objects of kinds that the database carries without understanding them. Their owner, reactors, extension dictionary
// and extended data can be worked with, of entities also the common properties; the rest stays as it is.
#pragma once

#include "drawingdb/entity.h"

class OdDbUnknownObject : public OdDbObject {
    OD_DECLARE_CONCRETE_CLASS(OdDbUnknownObject)
  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
};

class OdDbUnknownEntity : public OdDbEntity {
    OD_DECLARE_CONCRETE_CLASS(OdDbUnknownEntity)
  public:
    /// Kinds that transformedCarried knows, and dimensions (see transformDimension); all others refuse, and leaders
    /// whose arrowhead would have another size.
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    /// Dimensions and tables: a reference of the block that draws them. Leaders: lines and a solid.
    OdResult explode(std::vector<OdDbEntityPtr>& pieces) const override;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
};
