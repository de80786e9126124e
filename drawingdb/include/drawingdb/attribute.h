// Attributes of block references, and their definitions in blocks.
#pragma once

#include "drawingdb/mtext.h"
#include "drawingdb/text.h"

/// What attributes and attribute definitions have in common.
///
/// A multi-line one holds a multi-line text. The two sides change together: the single-line side shows the first line,
/// and its position and alignment point are both the multi-line text's location; what is set there (place, height,
/// rotation, normal, style, justification) goes to the multi-line text too. Files before 2018 (AC1032) cannot hold the
/// multi-line text: making one in such a drawing throws OdError(notHeldByVersion).
class DRAWINGDB_API OdDbAttributeText : public OdDbText {
    OD_DECLARE_CLASS(OdDbAttributeText)
  public:
    OdString tag() const;
    void setTag(const OdString& tag);
    bool isInvisible() const { return (modes_ & 1) != 0; }
    bool isConstant() const { return (modes_ & 2) != 0; }
    bool isVerifiable() const { return (modes_ & 4) != 0; }
    bool isPreset() const { return (modes_ & 8) != 0; }
    bool lockPositionInBlock() const { return lockPosition_ != 0; }
    void setInvisible(bool on);
    void setConstant(bool on);
    void setVerifiable(bool on);
    void setPreset(bool on);
    void setLockPositionInBlock(bool on);
    int fieldLength() const { return fieldLength_; }
    /// Whether programs with annotation scales show it at the same size on paper at each of them. Here it has the
    /// height that it has.
    bool isAnnotative() const;
    void setAnnotative(bool on);

    /// The value: of a multi-line one the contents of the multi-line text, with their formatting codes.
    OdString textString() const override;
    bool isMultiLine() const { return mtext_ != nullptr; }
    /// Whether files of the drawing's version hold multi-line ones.
    static bool canBeMultiLine(const OdDbDatabase& database);
    /// A copy of the multi-line text, in no database but good only while the drawing lives; null for a single line.
    OdSmartPtr<OdDbMText> mtextCopy() const;
    /// Makes it a multi-line one with a copy of that text.
    void setMText(const OdDbMText& text);
    /// The text goes over; a multi-line text that becomes a single line is joined with blanks.
    void setMultiLine(bool on);
    /// Brings the single-line side (text, place, form) in line with the multi-line text; setting that does so already.
    void followMText();
    void setNormal(const OdGeVector3d& normal) override;
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    bool geomExtents(OdGeExtents3d& extents) const override;

  protected:
    static void describeAttribute(drawingdb::Describer& d, bool definition);
    static void describeLater(drawingdb::Describer& d);
    bool isInOldFile() const;
    bool locksByXData() const;
    void registerApplications();
    void beforeEncode() override;
    void afterDecode() override;
    void changed(Change what) override;
    bool hangs() const override { return !mtext_ && isJustified(); }
    void setTextFromField(const OdString& text) override;
    void copyAttributeFrom(const OdDbAttributeText& other);
    virtual std::int16_t multiLineFlag() const = 0;
    OdGePoint3d heldPoint() const;
    OdSmartPtr<OdDbMText> newMText() const;
    friend class drawingdb::Core;
    friend struct drawingdb::ObjectAccess;

    drawingdb::FileText tag_;
    drawingdb::FileText prompt_;   // definitions only
    OdSmartPtr<OdDbMText> mtext_;  // the embedded multi-line text; in no database
    std::int16_t modes_ = 0;
    std::int16_t fieldLength_ = 0;
    std::int16_t mtextFlag_ = 1;  // 1 single line, 2 multi-line attribute, 4 multi-line definition
    std::int16_t version_ = 0;
    std::int16_t lockPosition_ = 0;
    std::int16_t lockInFile_ = 0;
    std::int16_t constantMText_ = 0;  // a constant multi-line attribute, so says the file
    OdGePoint3d secondPoint_;         // the alignment point of multi-line ones once more, from 2018 on
};

class DRAWINGDB_API OdDbAttributeDefinition : public OdDbAttributeText {
    OD_DECLARE_CONCRETE_CLASS(OdDbAttributeDefinition)
  public:
    OdString prompt() const;
    void setPrompt(const OdString& prompt);
    bool isMTextAttributeDefinition() const { return isMultiLine(); }
    /// A copy of the multi-line text, in no database but good only while the drawing lives; null for a single-line
    /// definition.
    OdSmartPtr<OdDbMText> getMTextAttributeDefinition() const { return mtextCopy(); }
    void setMTextAttributeDefinition(const OdDbMText& text) { setMText(text); }
    void convertIntoMTextAttributeDefinition(bool multiLine) { setMultiLine(multiLine); }
    void updateMTextAttributeDefinition() { followMText(); }

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    static void describeOld(drawingdb::Describer& d);
    OdString shownText() const override { return tag(); }
    std::int16_t multiLineFlag() const override { return 4; }
};

class DRAWINGDB_API OdDbAttribute : public OdDbAttributeText {
    OD_DECLARE_CONCRETE_CLASS(OdDbAttribute)
  public:
    bool isMTextAttribute() const { return isMultiLine(); }
    /// A copy of the multi-line text, in no database but good only while the drawing lives; null for a single-line
    /// attribute.
    OdSmartPtr<OdDbMText> getMTextAttribute() const { return mtextCopy(); }
    void setMTextAttribute(const OdDbMText& text) { setMText(text); }
    void convertIntoMTextAttribute(bool multiLine) { setMultiLine(multiLine); }
    void updateMTextAttribute() { followMText(); }
    /// Takes everything from the definition: entity properties, text geometry, style, modes, tag, the default as value,
    /// multi-line text, being annotative; then places it by the reference's block transform. An extension dictionary of
    /// the attribute stays. A transform that squeezes the text to nothing places it without turning it. The attribute
    /// belongs to the definition's drawing then.
    void setAttributeFromBlock(const OdDbAttributeDefinition& definition, const OdGeMatrix3d& blockTransform);

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    static void describeOld(drawingdb::Describer& d);
    std::int16_t multiLineFlag() const override { return 2; }
};

namespace drawingdb {

/// Whether its text has formatting codes: a multi-line text, or an attribute or definition that holds one.
DRAWINGDB_API bool isMultiLine(const OdDbObject& text);

}  // namespace drawingdb
