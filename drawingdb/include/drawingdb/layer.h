// Layers.
#pragma once

#include "drawingdb/color.h"
#include "drawingdb/symbol_table.h"

class DRAWINGDB_API OdDbLayerTableRecord : public OdDbSymbolTableRecord {
    OD_DECLARE_CONCRETE_CLASS(OdDbLayerTableRecord)
  public:
    bool isFrozen() const { return (flags_ & 1) != 0; }
    bool isLocked() const { return (flags_ & 4) != 0; }
    bool isOff() const { return colorIndex_ < 0; }
    bool isPlottable() const { return plottable_ != 0; }
    void setIsFrozen(bool on);
    void setIsLocked(bool on);
    void setIsOff(bool on);
    OdCmColor color() const;
    void setColor(const OdCmColor& color);
    OdString linetype() const;
    void setLinetype(const OdString& name);
    int lineweight() const { return lineweight_; }
    void setLineweight(int value);
    /// All but the name, from a layer of the same drawing.
    void setPropertiesFrom(const OdDbLayerTableRecord& other);

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    drawingdb::FileText linetype_;
    drawingdb::HandleRef plotStyle_;
    drawingdb::HandleRef material_;
    std::int32_t colorIndex_ = 7;
    std::int32_t trueColor_ = -1;
    std::int32_t lineweight_ = -3;
    std::int16_t plottable_ = 1;
};
