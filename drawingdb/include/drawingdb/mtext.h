// Multi-line text.
#pragma once

#include <array>
#include <vector>

#include "drawingdb/entity.h"
#include "drawingdb/mtext_layout.h"

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
    /// The lines in their places and columns: x along the direction, y across it in the plane of the normal, from the
    /// location.
    /// In another font than the built-in one where its widths are given.
    drawingdb::MTextLayout layout(const drawingdb::MTextWidth& width = {}) const;
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
    drawingdb::MTextColumns columns() const;
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
    std::int16_t columnsKind_ = 0;  // 0 none, 1 as many as there are, 2 as many as it takes
    std::int16_t columnCount_ = 0;
    std::int16_t columnsAreEqual_ = 0;
    std::int16_t columnsAreReversed_ = 0;
    std::vector<double> columnHeights_;
};
