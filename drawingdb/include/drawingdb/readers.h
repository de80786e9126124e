// Reading many references and attributes, one after the other. What is not open is not made an object for that: its
// record is looked through instead. Texts come wide or in the drawing's code page, or in UTF-8; narrow ones are good
// until the next call for the same text, and as long as the drawing is not changed.
#pragma once

#include <string_view>

#include "drawingdb/attribute.h"

namespace drawingdb {

/// A text of a record that is looked through, or of an object that had to be opened after all.
class DRAWINGDB_API ReadText {
  public:
    void setRaw(const Core& core, std::string_view raw);  ///< as the file has it
    void setWide(const Core& core, OdString text);
    OdString wide() const;
    std::string_view narrow();
    /// The narrow text is UTF-8, whatever the drawing's code page is.
    void setUtf8(bool on) { isUtf8_ = on; }

  private:
    const Core* core_ = nullptr;
    bool isRaw_ = false;
    bool isUtf8_ = false;
    std::string_view raw_;
    OdString wide_;
    std::string narrow_;  // where it is not the raw text
};

/// The block that an anonymous one is a form of: a dynamic block whose parameters were changed is shown by a block
/// without a name of its own, which says whose form it is. Any other block itself.
DRAWINGDB_API OdDbObjectId blockStoodFor(OdDbObjectId block);

}  // namespace drawingdb

/// What entities of all kinds have.
class DRAWINGDB_API OdDbEntityReader {
  public:
    /// False, and the rest of no meaning, when the id names no entity, or an erased one.
    bool read(OdDbObjectId entity);
    std::string_view kind() const { return kind_; }  ///< the name of the record in files: "INSERT"
    OdString layer() const { return layer_.wide(); }
    std::string_view narrowLayer() { return layer_.narrow(); }

  private:
    std::string_view kind_;
    drawingdb::ReadText layer_;
};

class DRAWINGDB_API OdDbAttributeReader {
  public:
    /// Narrow texts are UTF-8 from now on, or in the code page again.
    void setUtf8(bool on) {
        tag_.setUtf8(on);
        text_.setUtf8(on);
    }
    /// False, and both texts of no meaning, when the id names no attribute, or an erased one.
    bool read(OdDbObjectId attribute);
    OdString tag() const { return tag_.wide(); }
    std::string_view narrowTag() { return tag_.narrow(); }
    /// As OdDbAttribute::textString.
    OdString textString() const { return text_.wide(); }
    std::string_view narrowTextString() { return text_.narrow(); }
    bool isConstant() const { return isConstant_; }
    bool isMultiLine() const { return isMultiLine_; }

  private:
    bool readRecord(drawingdb::Core& core, drawingdb::Stub& stub);

    drawingdb::ReadText tag_;
    drawingdb::ReadText text_;
    bool isConstant_ = false;
    bool isMultiLine_ = false;
};

/// Its values are those of an OdDbBlockReference.
class DRAWINGDB_API OdDbBlockReferenceReader {
  public:
    /// As of attributes.
    void setUtf8(bool on) {
        blockName_.setUtf8(on);
        layer_.setUtf8(on);
    }
    /// Throws as OdDbObjectId::openAs does when the id names no reference, or an erased one.
    void read(OdDbObjectId reference);
    OdDbHandle handle() const { return id_.handle(); }
    OdDbObjectId blockTableRecord() const { return block_; }
    std::string_view narrowBlockName() { return blockName_.narrow(); }  ///< as the reference spells it
    std::string_view narrowLayer() { return layer_.narrow(); }
    OdGePoint3d position() const { return position_; }  ///< world coordinates
    double rotation() const { return rotation_; }       ///< radians
    OdGeScale3d scaleFactors() const { return scale_; }
    OdGeVector3d normal() const { return normal_; }
    OdDbObjectIdRange attributes() const;

  private:
    bool readRecord(drawingdb::Core& core, drawingdb::Stub& stub);

    OdDbObjectId id_;
    OdDbObjectId block_;
    drawingdb::ReadText blockName_;
    drawingdb::ReadText layer_;
    OdGePoint3d position_;
    double rotation_ = 0;
    OdGeScale3d scale_;
    OdGeVector3d normal_;
};
