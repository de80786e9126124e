#include "drawingdb/mtext.h"

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/database.h"
#include "drawingdb/mtext_layout.h"
#include "drawingdb/mtext_parser.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/entities/current_text_style.h"
#include "drawingdb/src/geometry/curve_math.h"
#include "drawingdb/text.h"
#include "drawingdb/text_style.h"

using drawingdb::ClassDescription;
using drawingdb::Describer;

namespace {

constexpr std::int32_t kFill = 1;         // bits of the background: it is filled,
constexpr std::int32_t kWindowColor = 2;  // with the colour of the drawing's window
constexpr std::int16_t kExactSpacing = 2;
constexpr std::int16_t kDynamicColumns = 2;  // as many as the text takes
constexpr int kMostColumns = 1000;

// The contents with the heights that stand in them (\H2.5;) multiplied. Relative ones (\H2x;) stay.
OdString withScaledHeights(const OdString& contents, double factor) {
    OdString result;
    for (std::size_t i = 0; i < contents.size(); ++i) {
        result += contents[i];
        if (contents[i] != L'\\' || i + 1 == contents.size()) continue;
        result += contents[++i];
        if (contents[i] != L'H') continue;
        const std::size_t end = contents.find(L';', i);
        if (end == OdString::npos) continue;
        const auto height = base::parseReal(std::wstring_view(contents).substr(i + 1, end - i - 1));
        if (!height) continue;
        const std::string digits = base::realToText(*height * factor);
        result.append(digits.begin(), digits.end());
        i = end - 1;
    }
    return result;
}

OdGeVector3d inPlane(double angle) {
    const OdGeVector2d direction = drawingdb::directionOf(angle);
    return {direction.x, direction.y, 0};
}

}  // namespace

OD_DEFINE_CLASS(OdDbMText, OdDbEntity)

const ClassDescription* OdDbMText::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbMText>("MTEXT", &OdDbMText::describe);
    return &d;
}

void OdDbMText::describeBody(Describer& d, OdDbMText& text) {
    d.required().point(10, text.location_);
    d.required().real(40, text.height_);
    d.required().real(41, text.width_);
    d.since(drawingdb::version::v2007).real(46, text.definedHeight_);
    d.required().int16(71, text.attachment_);
    d.required().int16(72, text.flow_);
    d.required().chunkedText(3, 1, text.contents_);
    d.text(7, text.style_, "STANDARD");
    d.vector(210, text.normal_);
    d.vector(11, text.direction_);
    d.angle(50, text.rotation_);
    d.since(drawingdb::version::v2000).int16(73, text.lineSpacingStyle_);
    d.since(drawingdb::version::v2000).real(44, text.lineSpacingFactor_);
    d.since(drawingdb::version::v2004).int32(90, text.background_);
    d.since(drawingdb::version::v2004).int32(63, text.backgroundColor_);
    d.since(drawingdb::version::v2004).int32(421, text.backgroundTrueColor_);
    d.since(drawingdb::version::v2004).text(431, text.backgroundBook_);
    d.since(drawingdb::version::v2004).real(45, text.backgroundScale_);
    d.since(drawingdb::version::v2004).int32(441, text.backgroundTransparency_);
}

void OdDbMText::describe(Describer& d) {
    auto& self = d.self<OdDbMText>();
    describeCommon(d);
    d.zone("AcDbMText");
    describeBody(d, self);
    // The columns. Their first figures repeat the direction, location, width and height of the text.
    self.columns_ = createObject();
    OdDbMText& columns = *self.columns_;
    d.embeddedZone("Embedded Object", self.columns_);
    d.required().vector(10, columns.direction_);
    d.required().point(11, columns.location_);
    d.required().real(40, columns.width_);
    d.required().real(41, columns.definedHeight_);
    d.required().real(42, columns.columnsWidth_);
    d.required().real(43, columns.columnsHeight_);
    d.real(44, columns.columnWidth_);
    d.real(45, columns.columnGutter_);
    d.int16(71, columns.columnsKind_);
    d.int16(72, columns.columnCount_);
    d.int16(73, columns.columnsAreEqual_);
    d.int16(74, columns.columnsAreReversed_);
    d.run({46});
    self.columns_.reset();
}

void OdDbMText::readRunGroup(const drawingdb::Group& group, int) {
    columnHeights_.push_back(groupReal(group, database()->core().format.binary).value_or(0));
}
void OdDbMText::writeRun(drawingdb::GroupWriter& writer, int) const {
    for (const double height : columnHeights_) writer.real(46, height);
}
void OdDbMText::clearRuns() { columnHeights_.clear(); }

void OdDbMText::afterDecode() { chooseDirection(source_, "AcDbMText"); }

void OdDbMText::chooseDirection(std::string_view record, const char* marker) {
    byRotation_ = rotation_ != 0;
    if (!byRotation_ || record.empty()) return;
    drawingdb::GroupCursor cursor(record, database_->core().format);
    drawingdb::Group group;
    bool inside = false;
    while (cursor.next(group))
        if (group.code == 100 || group.code == 101)
            inside = group.value == marker;
        else if (inside && (group.code == 11 || group.code == 50))
            byRotation_ = group.code == 50;
}

// ---------------------------------------------------------------------------------------------------------------------
// Place

void OdDbMText::setLocation(const OdGePoint3d& point) {
    assertWriteEnabled();
    location_ = point;
    if (columns_) columns_->location_ = point;
}

OdGeVector3d OdDbMText::direction() const {
    const OdGeMatrix3d toWorld = OdGeMatrix3d::planeToWorld(normal_);
    if (byRotation_) return toWorld * inPlane(rotation_);
    return direction_.isZeroLength() ? toWorld.xAxis() : direction_.normal();
}
void OdDbMText::setDirection(const OdGeVector3d& direction) {
    if (direction.isZeroLength()) throw OdError(OdResult::invalidInput, "the direction of a text has no length");
    assertWriteEnabled();
    // A file has one of the two, or both; what it has is kept in step.
    if (byRotation_ || rotation_ != 0)
        rotation_ = drawingdb::angleOf((OdGeMatrix3d::worldToPlane(normal_) * direction).xy());
    if (!byRotation_) direction_ = direction.normal();
    if (columns_) columns_->direction_ = direction.normal();
}
double OdDbMText::rotation() const {
    if (byRotation_) return rotation_;
    return drawingdb::angleOf((OdGeMatrix3d::worldToPlane(normal_) * direction()).xy());
}
void OdDbMText::setRotation(double radians) {
    assertWriteEnabled();
    setDirection(OdGeMatrix3d::planeToWorld(normal_) * inPlane(radians));
}
void OdDbMText::setNormal(const OdGeVector3d& normal) {
    if (normal.isZeroLength()) throw OdError(OdResult::invalidInput, "a normal without length");
    assertWriteEnabled();
    const double angle = rotation();
    normal_ = normal.normal();
    setRotation(angle);
}
void OdDbMText::setWidth(double value) {
    assertWriteEnabled();
    width_ = value;
    if (columns_) columns_->width_ = value;
}
void OdDbMText::setTextHeight(double value) {
    assertWriteEnabled();
    height_ = value;
}

void OdDbMText::setAttachment(int value) {
    if (value < 1 || value > 9) throw OdError(OdResult::invalidInput, "an attachment is a number from 1 to 9");
    assertWriteEnabled();
    attachment_ = static_cast<std::int16_t>(value);
}
void OdDbMText::setFlowDirection(int value) {
    assertWriteEnabled();
    flow_ = static_cast<std::int16_t>(value);
}

// Attachments run 1 2 3 along the top, 4 5 6 in the middle, 7 8 9 along the bottom.
int OdDbMText::horizontalMode() const {
    constexpr int kModes[] = {OdDb::kTextLeft, OdDb::kTextCenter, OdDb::kTextRight};
    return kModes[(std::clamp<int>(attachment_, 1, 9) - 1) % 3];
}
int OdDbMText::verticalMode() const {
    constexpr int kModes[] = {OdDb::kTextTop, OdDb::kTextVertMid, OdDb::kTextBottom};
    return kModes[(std::clamp<int>(attachment_, 1, 9) - 1) / 3];
}
void OdDbMText::setHorizontalMode(int mode) {
    const int column = mode == OdDb::kTextCenter || mode == OdDb::kTextMid ? 1 : mode == OdDb::kTextRight ? 2 : 0;
    setAttachment((std::clamp<int>(attachment_, 1, 9) - 1) / 3 * 3 + column + 1);
}
void OdDbMText::setVerticalMode(int mode) {
    const int row = mode == OdDb::kTextTop ? 0 : mode == OdDb::kTextVertMid ? 1 : 2;
    setAttachment(row * 3 + (std::clamp<int>(attachment_, 1, 9) - 1) % 3 + 1);
}

// ---------------------------------------------------------------------------------------------------------------------
// Text and looks

OdString OdDbMText::contents() const { return decoded(contents_); }
void OdDbMText::setContents(const OdString& contents) {
    assertWriteEnabled();
    if (isDatabaseResident() && !extensionDictionary().isNull()) removeField(L"TEXT");
    setTextFromField(contents);
}
void OdDbMText::setTextFromField(const OdString& text) {
    assertWriteEnabled();
    assign(contents_, text);
}
OdString OdDbMText::plainText() const { return drawingdb::mtextPlainText(contents()); }

OdString OdDbMText::textStyleName() const {
    const OdString name = decoded(style_);
    return name.empty() ? OdString(drawingdb::kStandardStyle) : name;
}
OdDbObjectId OdDbMText::textStyle() const {
    return database() ? database()->findTextStyle(textStyleName()) : OdDbObjectId();
}
void OdDbMText::setTextStyle(OdDbObjectId style) {
    assertWriteEnabled();
    if (!isDatabaseResident() && !database_) database_ = style.database();
    const OdString name = drawingdb::textStyleName(style);
    if (!base::equalsNoCase(name, textStyleName())) assign(style_, name);
}

void OdDbMText::setLineSpacingStyle(int style) {
    assertWriteEnabled();
    lineSpacingStyle_ = static_cast<std::int16_t>(style);
}
void OdDbMText::setLineSpacingFactor(double factor) {
    assertWriteEnabled();
    lineSpacingFactor_ = factor;
}

void OdDbMText::setBackgroundFill(bool on) {
    assertWriteEnabled();
    background_ = on ? background_ | kFill : background_ & ~(kFill | kWindowColor);
}
void OdDbMText::setUseBackgroundColor(bool on) {
    assertWriteEnabled();
    if (on)
        background_ |= kFill | kWindowColor;
    else if (useBackgroundColorOn())
        background_ = (background_ | kFill) & ~kWindowColor;
}
OdCmColor OdDbMText::backgroundFillColor() const {
    return OdCmColor::fromDxf(backgroundColor_, backgroundTrueColor_, decoded(backgroundBook_));
}
void OdDbMText::setBackgroundFillColor(const OdCmColor& color) {
    assertWriteEnabled();
    backgroundColor_ = color.colorIndex();
    backgroundTrueColor_ = color.dxfTrueColor();
    assign(backgroundBook_, color.bookName());
}
void OdDbMText::setBackgroundScaleFactor(double factor) {
    assertWriteEnabled();
    backgroundScale_ = factor;
}
void OdDbMText::setBackgroundTransparency(std::int32_t value) {
    assertWriteEnabled();
    backgroundTransparency_ = value;
}

void OdDbMText::setDatabaseDefaults(OdDbDatabase* database) {
    OdDbEntity::setDatabaseDefaults(database);
    if (!database) return;
    if (!isDatabaseResident() && !database_) database_ = database;
    const drawingdb::CurrentTextStyle style = drawingdb::currentTextStyle(*database);
    assign(style_, style.name);
    height_ = style.height;
}

void OdDbMText::setTextFrom(const OdDbMText& source) {
    assertWriteEnabled();
    copyMTextFrom(source);
}

void OdDbMText::copyMTextFrom(const OdDbMText& other) {
    const bool sameFile = database_ && other.database_ == database_;
    const auto take = [&](drawingdb::FileText& to, const drawingdb::FileText& from) {
        if (!sameFile || from.text) {
            assign(to, other.decoded(from));
        } else {
            to.raw = from.raw;
            to.text.reset();
        }
    };
    take(contents_, other.contents_);
    take(style_, other.style_);
    take(backgroundBook_, other.backgroundBook_);
    location_ = other.location_;
    normal_ = other.normal_;
    direction_ = other.direction_;
    height_ = other.height_;
    width_ = other.width_;
    definedHeight_ = other.definedHeight_;
    rotation_ = other.rotation_;
    lineSpacingFactor_ = other.lineSpacingFactor_;
    backgroundScale_ = other.backgroundScale_;
    backgroundColor_ = other.backgroundColor_;
    backgroundTrueColor_ = other.backgroundTrueColor_;
    backgroundTransparency_ = other.backgroundTransparency_;
    background_ = other.background_;
    attachment_ = other.attachment_;
    flow_ = other.flow_;
    lineSpacingStyle_ = other.lineSpacingStyle_;
    byRotation_ = other.byRotation_;
}

// ---------------------------------------------------------------------------------------------------------------------
// Geometry

// In files before 2018 each column is a text of its own.
drawingdb::MTextColumns OdDbMText::columns() const {
    drawingdb::MTextColumns columns;
    if (!columns_ || columns_->columnsKind_ == 0) return columns;
    columns.width = columns_->columnWidth_;
    columns.gutter = columns_->columnGutter_;
    columns.most = std::clamp<int>(columns_->columnCount_, 0, kMostColumns);
    columns.rightToLeft = columns_->columnsAreReversed_ != 0;
    const bool haveTheirOwn = columns_->columnsKind_ == kDynamicColumns && columns_->columnsAreEqual_ == 0;
    columns.heights = haveTheirOwn ? columnHeights_ : std::vector{columns_->definedHeight_};
    return columns;
}

drawingdb::MTextLayout OdDbMText::layout(const drawingdb::MTextWidth& width) const {
    drawingdb::MTextStyle style;
    if (const auto record = textStyle().openIf<OdDbTextStyleTableRecord>()) {
        style.widthFactor = record->xScale();
        style.oblique = record->obliquingAngle();
    }
    style.width = width;
    style.exactLineSpacing = lineSpacingStyle_ == kExactSpacing;
    style.columns = columns();
    return drawingdb::mtextLayout(contents(), height_, width_, attachment_, lineSpacingFactor_, style);
}
OdGeMatrix3d OdDbMText::layoutToWorld() const {
    const OdGeVector3d along = direction(), normal = normal_.normal();
    return OdGeMatrix3d::coordSystem(location_, along, normal.crossProduct(along), normal);
}
double OdDbMText::actualHeight() const { return layout().height; }
double OdDbMText::actualWidth() const { return layout().width; }

OdResult OdDbMText::transformBy(const OdGeMatrix3d& matrix) {
    const OdGeMatrix3d from = layoutToWorld();
    const OdGeVector3d along = matrix * from.xAxis();
    const OdGeVector3d cross = along.crossProduct(matrix * from.yAxis());
    const double area = cross.length();
    if (!(area > 1e-14 * along.length() * (matrix * from.yAxis()).length()) || !std::isfinite(area))
        return OdResult::transformRefused;
    assertWriteEnabled();
    const double widthScale = drawingdb::withoutNoise(along.length());
    const double heightScale = drawingdb::withoutNoise(area / along.length());

    const OdGeVector3d newNormal = OdGeVector3d::kIdentity + cross / area;  // without minus zeros
    const OdGeVector3d newDirection = OdGeVector3d::kIdentity + along.normal();
    const bool turned =
        !newNormal.isEqualTo(from.zAxis(), {1e-12, 1e-12}) || !newDirection.isEqualTo(from.xAxis(), {1e-12, 1e-12});
    setLocation(matrix * location_);
    if (turned) {
        normal_ = newNormal;
        setDirection(newDirection);
    }
    height_ *= heightScale;
    width_ *= widthScale;
    definedHeight_ *= heightScale;
    if (heightScale != 1) {
        const OdString old = contents();
        if (OdString scaled = withScaledHeights(old, heightScale); scaled != old) assign(contents_, scaled);
    }
    if (columns_) {
        columns_->width_ *= widthScale;
        columns_->columnsWidth_ *= widthScale;
        columns_->columnWidth_ *= widthScale;
        columns_->columnGutter_ *= widthScale;
        columns_->definedHeight_ *= heightScale;
        columns_->columnsHeight_ *= heightScale;
    }
    if (heightScale != 1 && !columnHeights_.empty()) {
        for (double& height : columnHeights_) height *= heightScale;
        runsChanged();
    }
    return OdResult::ok;
}

bool OdDbMText::geomExtents(OdGeExtents3d& extents) const {
    const drawingdb::MTextLayout lines = layout();
    if (!(lines.width > 0)) return false;
    const OdGeMatrix3d toWorld = layoutToWorld();
    extents = OdGeExtents3d();
    for (const OdGePoint2d& corner : lines.boundingPoints)
        extents.addPoint(toWorld * OdGePoint3d(corner.x, corner.y, 0));
    return true;
}
