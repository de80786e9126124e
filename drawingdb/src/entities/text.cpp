#include "drawingdb/text.h"

#include "base/text.h"
#include "drawingdb/database.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/entities/current_text_style.h"
#include "drawingdb/src/geometry/curve_math.h"
#include "drawingdb/src/lettering/text_codes.h"
#include "drawingdb/text_metrics.h"
#include "drawingdb/text_style.h"

using drawingdb::ClassDescription;
using drawingdb::Describer;
using drawingdb::FileText;

namespace drawingdb {

CurrentTextStyle currentTextStyle(OdDbDatabase& database) {
    CurrentTextStyle style;
    style.name = database.headerText("$TEXTSTYLE", kStandardStyle);
    style.height = database.headerReal("$TEXTSIZE", style.height);
    if (const auto record = database.findTextStyle(style.name).openIf<OdDbTextStyleTableRecord>()) {
        if (record->textSize() > 0) style.height = record->textSize();
        style.widthFactor = record->xScale();
        style.oblique = record->obliquingAngle();
    }
    return style;
}

OdString textStyleName(OdDbObjectId style) { return style.openAs<OdDbTextStyleTableRecord>()->name(); }

}  // namespace drawingdb

OD_DEFINE_CLASS(OdDbText, OdDbEntity)

const ClassDescription* OdDbText::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbText>("TEXT", &OdDbText::describe);
    return &d;
}

void OdDbText::describe(Describer& d) { describeText(d, true); }

void OdDbText::describeText(Describer& d, bool secondMarker) {
    auto& self = d.self<OdDbText>();
    describeCommon(d);
    d.zone("AcDbText");
    d.real(39, self.thickness_);
    d.required().point(10, self.position_);
    d.required().real(40, self.height_);
    d.required().text(1, self.text_);
    d.angle(50, self.rotation_);
    d.real(41, self.widthFactor_);
    d.angle(51, self.oblique_);
    d.text(7, self.style_, "STANDARD");
    d.int16(71, self.generation_);
    d.int16(72, self.horizontal_);
    d.point(11, self.alignment_);
    d.vector(210, self.normal_);
    if (!secondMarker) return;  // attributes keep the vertical mode elsewhere
    d.zone("AcDbText");
    d.int16(73, self.vertical_);
}

void OdDbText::afterDecode() {
    placeStale_ = false;
    alignmentInFile_ = alignment_ != kNoPoint;
}

void OdDbText::beforeEncode() {
    settle();
    if (!isJustified() && !alignmentInFile_) alignment_ = kNoPoint;
    // A damaged file may have the rest of the point without its x; a new record does not take that over.
    if (source_.empty() && !hasAlignment()) alignment_ = kNoPoint;
    alignmentInFile_ = alignment_ != kNoPoint;
}

// ---------------------------------------------------------------------------------------------------------------------
// Alignment

drawingdb::TextGeometry OdDbText::storedGeometry() const {
    drawingdb::TextGeometry g;
    g.position = position_.xy();
    g.alignmentPoint = alignmentInPlane().xy();
    g.height = height_;
    g.rotation = rotation_;
    g.widthFactor = widthFactor_;
    g.oblique = oblique_;
    g.horizontal = static_cast<drawingdb::TextHorizontal>(horizontal_);
    g.vertical = static_cast<drawingdb::TextVertical>(vertical_);
    g.mirroredInX = isMirroredInX();
    g.mirroredInY = isMirroredInY();
    return g;
}

drawingdb::TextGeometry OdDbText::textGeometry() const {
    settle();
    return storedGeometry();
}

void OdDbText::hang() {
    placeStale_ = false;
    if (!hasAlignment()) alignment_ = position_;
    const drawingdb::TextGeometry g = drawingdb::alignText(shownText(), storedGeometry());
    const bool betweenPoints = horizontal_ == OdDb::kTextAlign || horizontal_ == OdDb::kTextFit;
    position_ = {g.position.x, g.position.y, betweenPoints ? position_.z : alignmentInPlane().z};
    height_ = g.height;
    rotation_ = g.rotation;
    widthFactor_ = g.widthFactor;
}

void OdDbText::adjustAlignment() {
    assertWriteEnabled();
    placeStale_ = hangs();
    settle();
}

void OdDbText::changed(Change) { placeStale_ = hangs(); }

// Setting what is there already changes nothing, not even a place that another program's font has given.
template <class T>
void OdDbText::set(T& member, T value, Change what) {
    assertWriteEnabled();
    if (member == value) return;
    member = value;
    changed(what);
}

// ---------------------------------------------------------------------------------------------------------------------
// Properties

OdGePoint3d OdDbText::position() const {
    settle();
    return OdGeMatrix3d::planeToWorld(normal_) * position_;
}
void OdDbText::setPosition(const OdGePoint3d& point) {
    set(position_, OdGeMatrix3d::worldToPlane(normal_) * point, Change::position);
}
OdGePoint3d OdDbText::alignmentPoint() const {
    return hasAlignment() ? OdGeMatrix3d::planeToWorld(normal_) * alignmentInPlane() : OdGePoint3d();
}
void OdDbText::setAlignmentPoint(const OdGePoint3d& point) {
    set(alignment_, OdGeMatrix3d::worldToPlane(normal_) * point, Change::alignmentPoint);
}
void OdDbText::setNormal(const OdGeVector3d& normal) {
    if (normal.isZeroLength()) throw OdError(OdResult::invalidInput, "a normal without length");
    assertWriteEnabled();
    if (normal == normal_) return;
    settle();
    const OdGeMatrix3d toNewPlane = OdGeMatrix3d::worldToPlane(normal) * OdGeMatrix3d::planeToWorld(normal_);
    position_.transformBy(toNewPlane);
    if (hasAlignment()) alignment_ = toNewPlane * alignmentInPlane();
    normal_ = normal.normal();
    changed(Change::shape);
}
void OdDbText::setThickness(double value) {
    assertWriteEnabled();
    thickness_ = value;
}
void OdDbText::setOblique(double radians) { set(oblique_, radians, Change::shape); }
double OdDbText::rotation() const {
    settle();
    return rotation_;
}
void OdDbText::setRotation(double radians) {
    settle();
    set(rotation_, radians, Change::rotation);
}
double OdDbText::height() const {
    settle();
    return height_;
}
void OdDbText::setHeight(double value) {
    settle();
    set(height_, value, Change::height);
}
double OdDbText::widthFactor() const {
    settle();
    return widthFactor_;
}
void OdDbText::setWidthFactor(double value) {
    settle();
    set(widthFactor_, value, Change::shape);
}
void OdDbText::mirrorInX(bool on) {
    set(generation_, static_cast<std::int16_t>(on ? generation_ | 2 : generation_ & ~2), Change::shape);
}
void OdDbText::mirrorInY(bool on) {
    set(generation_, static_cast<std::int16_t>(on ? generation_ | 4 : generation_ & ~4), Change::shape);
}

OdString OdDbText::textString() const { return decoded(text_); }
void OdDbText::setTextString(const OdString& text) {
    assertWriteEnabled();
    if (isDatabaseResident() && !extensionDictionary().isNull()) removeField(L"TEXT");
    setTextFromField(text);
}
void OdDbText::setTextFromField(const OdString& text) {
    assertWriteEnabled();
    if (decoded(text_) == text) return;
    assign(text_, text);
    changed(Change::text);
}

void OdDbText::belongTo(OdDbDatabase* database) {
    if (!isDatabaseResident() && !database_) database_ = database;
}
OdString OdDbText::textStyleName() const {
    const OdString name = decoded(style_);
    return name.empty() ? OdString(drawingdb::kStandardStyle) : name;
}
OdDbObjectId OdDbText::textStyle() const {
    return database() ? database()->findTextStyle(textStyleName()) : OdDbObjectId();
}
void OdDbText::setTextStyle(OdDbObjectId style) {
    assertWriteEnabled();
    belongTo(style.database());
    const OdString name = drawingdb::textStyleName(style);
    if (base::equalsNoCase(name, textStyleName())) return;
    assign(style_, name);
    changed(Change::style);
}

void OdDbText::setHorizontalMode(int mode) {
    if (mode < OdDb::kTextLeft || mode > OdDb::kTextFit)
        throw OdError(OdResult::invalidInput, "no horizontal text mode");
    settle();
    set(horizontal_, static_cast<std::int16_t>(mode), Change::justification);
}
void OdDbText::setVerticalMode(int mode) {
    if (mode < OdDb::kTextBase || mode > OdDb::kTextTop) throw OdError(OdResult::invalidInput, "no vertical text mode");
    settle();
    set(vertical_, static_cast<std::int16_t>(mode), Change::justification);
}

void OdDbText::setDatabaseDefaults(OdDbDatabase* database) {
    OdDbEntity::setDatabaseDefaults(database);
    if (!database) return;
    belongTo(database);
    const drawingdb::CurrentTextStyle style = drawingdb::currentTextStyle(*database);
    assign(style_, style.name);
    height_ = style.height;
    widthFactor_ = style.widthFactor;
    oblique_ = style.oblique;
    changed(Change::style);
}

void OdDbText::copyFileText(FileText& to, const OdDbText& source, const FileText& from) {
    const bool sameFile = database_ && source.database_ == database_;
    if (!sameFile || from.text) {
        assign(to, source.decoded(from));
        return;
    }
    to.raw = from.raw;
    to.text.reset();
}

void OdDbText::copyTextFrom(const OdDbText& other) {
    other.settle();
    position_ = other.position_;
    alignment_ = other.alignment_;
    normal_ = other.normal_;
    copyFileText(text_, other, other.text_);
    copyFileText(style_, other, other.style_);
    height_ = other.height_;
    rotation_ = other.rotation_;
    widthFactor_ = other.widthFactor_;
    oblique_ = other.oblique_;
    thickness_ = other.thickness_;
    generation_ = other.generation_;
    horizontal_ = other.horizontal_;
    vertical_ = other.vertical_;
    placeStale_ = false;
}

void OdDbText::setTextFrom(const OdDbText& source) {
    assertWriteEnabled();
    copyTextFrom(source);
    // A definition is hung up by its tag.
    if (source.isJustified() && source.shownText() != decoded(text_)) changed(Change::text);
}

// ---------------------------------------------------------------------------------------------------------------------
// Geometry

// A character of the text lies at   position + along * x * width factor * height + up * y * height   and is slanted by
// adding along * y * slant * height, where `along` and `up` are the unit vectors of the writing, each turned round
// where the text is mirrored. The images of the two vectors give the new rotation, height, width factor and slant.
OdResult OdDbText::transformBy(const OdGeMatrix3d& matrix) {
    const auto plane = drawingdb::mapPlane(matrix, normal_);
    if (!plane) return OdResult::transformRefused;
    assertWriteEnabled();
    settle();

    const OdGeVector2d baseline = drawingdb::directionOf(rotation_);
    const double slant = drawingdb::slantOf(oblique_);
    const OdGeVector2d along = isMirroredInX() ? -baseline : baseline;
    const OdGeVector2d up = isMirroredInY() ? -baseline.perpVector() : baseline.perpVector();
    const OdGeVector2d rise = up + along * slant;
    const OdGeVector2d alongImage = (plane->map * OdGeVector3d(along.x, along.y, 0)).xy();
    const OdGeVector2d riseImage = (plane->map * OdGeVector3d(rise.x, rise.y, 0)).xy();

    if (plane->reversed) generation_ ^= 2;
    const OdGeVector2d newAlong = alongImage.normal();
    const OdGeVector2d newBaseline = isMirroredInX() ? -newAlong : newAlong;
    const OdGeVector2d newUp = isMirroredInY() ? -newBaseline.perpVector() : newBaseline.perpVector();
    const double heightScale = riseImage.dotProduct(newUp);
    const double newSlant = riseImage.dotProduct(newAlong) / heightScale;
    const bool sheared = std::fabs(newSlant - slant) > 1e-12 * (1 + std::fabs(slant));

    height_ *= drawingdb::withoutNoise(heightScale);
    widthFactor_ *= drawingdb::withoutNoise(alongImage.length() / heightScale);
    if (sheared) oblique_ = drawingdb::normalizedAngle(std::atan(newSlant));
    rotation_ = drawingdb::turnedTo(rotation_, newBaseline);

    position_.transformBy(plane->map);
    if (hasAlignment()) alignment_ = plane->map * alignmentInPlane();
    const bool betweenPoints = horizontal_ == OdDb::kTextAlign || horizontal_ == OdDb::kTextFit;
    // Mirrored text still begins at its position: the two ends change places.
    if (plane->reversed && betweenPoints && hasAlignment()) std::swap(position_, alignment_);
    thickness_ = drawingdb::mapThickness(matrix, normal_, thickness_, plane->normal);
    normal_ = plane->normal;
    // Justified text hangs upright over its alignment point, however slanted: after a shear it has to be hung anew.
    if (sheared && hangs()) placeStale_ = true;
    return OdResult::ok;
}

bool OdDbText::geomExtents(OdGeExtents3d& extents) const {
    const OdString text = shownText();
    if (text.empty()) return false;
    const drawingdb::TextGeometry g = textGeometry();
    std::array<OdGePoint2d, 4> corners = drawingdb::textBoundingPoints(text, g);
    if (g.oblique != 0) {
        // Slanted strokes lean out of the upright box.
        const drawingdb::TextExtents reach = drawingdb::textExtents(text, g.height, g.widthFactor, g.oblique);
        const OdGeVector2d along = (corners[1] - corners[0]).normal();
        const OdGeVector2d left = along * std::min(reach.left, 0.0);
        const OdGeVector2d right = along * std::max(reach.right - reach.width, 0.0);
        corners = {corners[0] + left, corners[1] + right, corners[2] + right, corners[3] + left};
    }
    const OdGeMatrix3d toWorld = OdGeMatrix3d::planeToWorld(normal_);
    extents = OdGeExtents3d();
    for (const OdGePoint2d& corner : corners) extents.addPoint(toWorld * OdGePoint3d(corner.x, corner.y, position_.z));
    drawingdb::addThickness(extents, normal_, thickness_);
    return true;
}
