// Single-line and multi-line text.
#pragma once

#include <array>
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
    void setNormal(const OdGeVector3d& normal);  ///< keeps the points' world places
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
    torvel::TextGeometry textGeometry() const;

    /// Also the current text style with its fixed height, width factor and oblique angle, or else the current text
    /// height.
    void setDatabaseDefaults(OdDbDatabase* database) override;
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    bool geomExtents(OdGeExtents3d& extents) const override;

  protected:
    /// What a setter has changed.
    enum class Change { text, position, alignmentPoint, height, rotation, normal, style, justification, shape };
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
    torvel::TextGeometry storedGeometry() const;
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

/// Multi-line text. All points and the direction are in world coordinates, also in files.
///
/// Transforms. The text's height follows the scale across its lines, its width the scale along them, heights within the
/// contents follow too. The normal turns so that the text looks as the matrix makes it: mirrored text faces away.
class DRAWINGDB_API OdDbMText : public OdDbEntity {
    OD_DECLARE_CONCRETE_CLASS(OdDbMText)
  public:
    OdGePoint3d location() const { return location_; }
    void setLocation(const OdGePoint3d& point);
    OdGeVector3d normal() const { return normal_; }
    void setNormal(const OdGeVector3d& normal);
    OdGeVector3d direction() const;
    void setDirection(const OdGeVector3d& direction);
    double rotation() const;
    void setRotation(double radians);
    double width() const { return width_; }
    void setWidth(double value);
    double textHeight() const { return height_; }
    void setTextHeight(double value);
    int attachment() const { return attachment_; }  ///< 1 top left .. 9 bottom right
    /// The location stays. Another number throws OdError(invalidInput).
    void setAttachment(int value);
    int flowDirection() const { return flow_; }
    void setFlowDirection(int value);
    /// With its formatting codes.
    OdString contents() const;
    virtual void setContents(const OdString& contents);
    /// Takes over contents, style, place, form and background, to the last digit. Fields, columns and what all entities
    /// have (layer, colour, ...) stay.
    void setTextFrom(const OdDbMText& source);
    /// Without formatting codes; paragraphs end in a line feed.
    OdString plainText() const;
    OdDbObjectId textStyle() const;
    OdString textStyleName() const;
    void setTextStyle(OdDbObjectId style);
    int lineSpacingStyle() const { return lineSpacingStyle_; }
    double lineSpacingFactor() const { return lineSpacingFactor_; }
    void setLineSpacingStyle(int style);
    void setLineSpacingFactor(double factor);
    /// The justification as the modes of single-line text, from the attachment.
    int horizontalMode() const;
    int verticalMode() const;
    void setHorizontalMode(int mode);
    void setVerticalMode(int mode);
    bool backgroundFillOn() const { return (background_ & 3) != 0; }
    void setBackgroundFill(bool on);
    bool hasFrame() const { return (background_ & 16) != 0; }  ///< a rectangle around it is drawn
    bool useBackgroundColorOn() const { return (background_ & 2) != 0; }
    void setUseBackgroundColor(bool on);
    OdCmColor backgroundFillColor() const;
    void setBackgroundFillColor(const OdCmColor& color);
    double backgroundScaleFactor() const { return backgroundScale_; }
    void setBackgroundScaleFactor(double factor);
    std::int32_t backgroundTransparency() const { return backgroundTransparency_; }
    void setBackgroundTransparency(std::int32_t value);
    double actualHeight() const;
    double actualWidth() const;
    /// The lines in their places: x along the direction, y across it in the plane of the normal, from the location.
    torvel::MTextLayout layout() const;
    /// From the coordinates of layout() to the world's.
    OdGeMatrix3d layoutToWorld() const;
    /// What a fill or a frame goes round, in the coordinates of layout(), from the upper left corner on clockwise:
    /// wider than the text on all sides by a part of the text height.
    std::array<OdGePoint2d, 4> box() const;

    void setDatabaseDefaults(OdDbDatabase* database) override;
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    /// Each line a text of its own; a fill and a frame as a solid and lines. Refuses (transformRefused) a text that
    /// masks what lies behind it, and a single line.
    OdResult explode(std::vector<OdDbEntityPtr>& pieces) const override;
    bool geomExtents(OdGeExtents3d& extents) const override;

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    /// The groups that a multi-line text and one that is embedded in an attribute share.
    static void describeBody(drawingdb::Describer& d, OdDbMText& text);
    void afterDecode() override;
    void readRunGroup(const drawingdb::Group& group, int zone) override;
    void writeRun(drawingdb::GroupWriter& writer, int zone) const override;
    void clearRuns() override;
    /// Which of direction and rotation holds: the one that stands later behind that marker.
    void chooseDirection(std::string_view record, const char* marker);
    void copyMTextFrom(const OdDbMText& other);
    friend class OdDbField;
    friend class OdDbAttributeText;
    virtual void setTextFromField(const OdString& text);

    OdGePoint3d location_;
    OdGeVector3d normal_{0, 0, 1};
    OdGeVector3d direction_{1, 0, 0};
    drawingdb::FileText contents_;
    drawingdb::FileText style_;
    drawingdb::FileText backgroundBook_;
    double height_ = 0.2;
    double width_ = 0;
    double definedHeight_ = 0;
    double rotation_ = 0;
    double lineSpacingFactor_ = 1;
    double backgroundScale_ = 1.5;
    std::int32_t backgroundColor_ = 0;
    std::int32_t backgroundTrueColor_ = -1;
    std::int32_t backgroundTransparency_ = 0;
    std::int32_t background_ = 0;
    std::int16_t attachment_ = 1;
    std::int16_t flow_ = 1;
    std::int16_t lineSpacingStyle_ = 1;
    bool byRotation_ = false;  // the direction stands in rotation_, not in direction_

    /// What files from 2018 on repeat of a text's place for its columns, in an embedded object; there, these are its
    /// figures.
    OdSmartPtr<OdDbMText> columns_;
    double columnsWidth_ = 0;
    double columnsHeight_ = 0;
    double columnWidth_ = 0;
    double columnGutter_ = 0;
    std::vector<double> columnHeights_;
};
