// Single-line text.
#pragma once

#include <limits>

#include "drawingdb/entity.h"
#include "drawingdb/text_metrics.h"

namespace OdDb {
enum TextHorzMode { kTextLeft = 0, kTextCenter = 1, kTextRight = 2, kTextAlign = 3, kTextMid = 4, kTextFit = 5 };
enum TextVertMode { kTextBase = 0, kTextBottom = 1, kTextVertMid = 2, kTextTop = 3 };
}  // namespace OdDb

/// Single-line text. Points are in world coordinates here; files keep them in the plane of the normal.
///
/// Text that is justified other than left and baseline hangs on its alignment point; position() follows from it by the
/// text metrics and is brought up to date when the text, style or geometry has changed. Aligned and fitted text stands
/// between its position and its alignment point, from which rotation() and height() or widthFactor() follow. What a
/// file says of a text that was not changed stands as it is.
///
/// Transforms. Any matrix that leaves the text's plane a plane is taken exactly: unequal scales change the width
/// factor, shears the oblique angle. A matrix that does not mirror takes the normal along. One that does leaves the
/// normal on its side of the plane; where that turns the writing round (a mirroring in the plane), the text becomes
/// mirrored in X, or ceases to be, so it looks mirrored and its normal still faces the reader. Mirroring above and
/// below changes nothing within the plane.
class DRAWINGDB_API OdDbText : public OdDbEntity {
    OD_DECLARE_CONCRETE_CLASS(OdDbText)
  public:
    OdGePoint3d position() const;
    void setPosition(const OdGePoint3d& point);
    /// The origin when there is none, as with most text that is not justified.
    OdGePoint3d alignmentPoint() const;
    void setAlignmentPoint(const OdGePoint3d& point);
    OdGeVector3d normal() const { return normal_; }
    virtual void setNormal(const OdGeVector3d& normal);  ///< keeps the points' world places
    double thickness() const { return thickness_; }
    void setThickness(double value);
    double oblique() const { return oblique_; }
    void setOblique(double radians);
    double rotation() const;
    void setRotation(double radians);
    double height() const;
    void setHeight(double value);
    double widthFactor() const;
    void setWidthFactor(double value);
    bool isMirroredInX() const { return (generation_ & 2) != 0; }
    bool isMirroredInY() const { return (generation_ & 4) != 0; }
    void mirrorInX(bool on);
    void mirrorInY(bool on);
    virtual OdString textString() const;
    /// A new text; a field under "TEXT" is removed, since it would bring the old text back.
    virtual void setTextString(const OdString& text);
    /// Takes over what makes the text look as it does: string, style, place, form and justification, to the last digit,
    /// also a place that another program's font has given. A definition gives its default. Fields and what all entities
    /// have (layer, colour, ...) stay.
    void setTextFrom(const OdDbText& source);
    /// Null when the drawing has no style of that name, and for a text that knows no drawing yet (setDatabaseDefaults
    /// and setTextStyle tell it).
    OdDbObjectId textStyle() const;
    OdString textStyleName() const;
    void setTextStyle(OdDbObjectId style);
    int horizontalMode() const { return horizontal_; }
    int verticalMode() const { return vertical_; }
    /// Modes of OdDb::TextHorzMode and OdDb::TextVertMode; others throw OdError(invalidInput). Text that becomes
    /// justified and has no alignment point hangs on its position.
    void setHorizontalMode(int mode);
    void setVerticalMode(int mode);
    bool isJustified() const { return horizontal_ != 0 || vertical_ != 0; }
    /// Sets the place of a justified text from its alignment point now; happens by itself before the text is read or
    /// closed.
    void adjustAlignment();
    /// Place and form in the plane of the normal (see OdGeMatrix3d::planeToWorld), up to date: what the text metrics
    /// draw from.
    drawingdb::TextGeometry textGeometry() const;

    /// Also the current text style with its fixed height, width factor and oblique angle, or else the current text
    /// height.
    void setDatabaseDefaults(OdDbDatabase* database) override;
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    bool geomExtents(OdGeExtents3d& extents) const override;

  protected:
    /// What a setter has changed.
    enum class Change { text, position, alignmentPoint, height, rotation, style, justification, shape };
    /// Stands for a point that is not there.
    static constexpr OdGePoint3d kNoPoint{std::numeric_limits<double>::max(), 0, 0};

    const drawingdb::ClassDescription* description() const override;
    static void describeText(drawingdb::Describer& d, bool secondMarker);
    static void describe(drawingdb::Describer& d);
    void beforeEncode() override;
    void afterDecode() override;
    /// Every setter ends here: what follows from the change is derived or noted.
    virtual void changed(Change what);
    /// Whether the place follows from the alignment point.
    virtual bool hangs() const { return isJustified(); }
    /// What is drawn: of a definition that is its tag.
    virtual OdString shownText() const { return decoded(text_); }
    void copyTextFrom(const OdDbText& other);
    /// As file texts are copied: bytes of the same drawing stay bytes, of another one they are read.
    void copyFileText(drawingdb::FileText& to, const OdDbText& source, const drawingdb::FileText& from);
    /// A text that is made for a drawing and not in it yet reads names and bytes by that drawing.
    void belongTo(OdDbDatabase* database);
    friend class OdDbField;
    virtual void setTextFromField(const OdString& text);
    bool hasAlignment() const { return alignment_.x != kNoPoint.x; }
    OdGePoint3d alignmentInPlane() const { return hasAlignment() ? alignment_ : OdGePoint3d(); }
    drawingdb::TextGeometry storedGeometry() const;
    /// Brings the place up to date where it is stale; the text is the same before and after for whoever looks at it.
    void settle() const {
        if (placeStale_) const_cast<OdDbText*>(this)->hang();
    }
    void hang();
    template <class T>
    void set(T& member, T value, Change what);

    OdGePoint3d position_;              // in the plane of the normal
    OdGePoint3d alignment_ = kNoPoint;  // in the plane of the normal
    OdGeVector3d normal_{0, 0, 1};
    drawingdb::FileText text_;
    drawingdb::FileText style_;
    double height_ = 0.2;
    double rotation_ = 0;
    double widthFactor_ = 1;
    double oblique_ = 0;
    double thickness_ = 0;
    std::int16_t generation_ = 0;
    std::int16_t horizontal_ = 0;
    std::int16_t vertical_ = 0;
    bool placeStale_ = false;  // the place no longer follows from the alignment point
    bool alignmentInFile_ = false;
};
