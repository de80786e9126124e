#include "drawingdb/attribute.h"

#include <algorithm>

#include "base/text.h"
#include "drawingdb/mtext.h"
#include "drawingdb/mtext_parser.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/geometry/angles.h"
#include "drawingdb/src/geometry/curve_math.h"
#include "drawingdb/src/lettering/text_codes.h"
#include "drawingdb/text.h"

using drawingdb::ClassDescription;
using drawingdb::Describer;

namespace {

constexpr std::int16_t kInvisible = 1;  // bits of the modes
constexpr std::int16_t kConstant = 2;
constexpr std::int16_t kVerifiable = 4;
constexpr std::int16_t kPreset = 8;
constexpr std::int16_t kSingleLine = 1;  // multi-line flag
constexpr int kEmbeddedSince = drawingdb::version::v2018;
constexpr const char* kEmbedded = "Embedded Object";

constexpr std::string_view kLockApplication = "AcDbAttr";
constexpr std::string_view kAnnotativeApplication = "AcadAnnotative";

bool holdsLock(const std::vector<OdDbGroup>& data) {
    return data.size() > 2 && data[1].code == 1070 && data[2].code == 1070;
}

OdDbGroup textGroup(int code, std::string_view text) {
    OdDbGroup group;
    group.code = code;
    group.text = base::widen(text);
    return group;
}

OdDbGroup integerGroup(int code, std::int64_t value) {
    OdDbGroup group;
    group.code = code;
    group.integer = value;
    return group;
}

// Mirrored lines are seen from behind, where their normal points against the text's, and run against its baseline.
bool isSeenFromBehind(const OdDbMText& lines, const OdDbText& text) {
    return text.isMirroredInX() && lines.normal().dotProduct(text.normal()) < 0;
}

std::int16_t withBit(std::int16_t bits, std::int16_t bit, bool on) {
    return static_cast<std::int16_t>(on ? bits | bit : bits & ~bit);
}

}  // namespace

OD_DEFINE_ABSTRACT_CLASS(OdDbAttributeText, OdDbText)
OD_DEFINE_CLASS(OdDbAttributeDefinition, OdDbAttributeText)
OD_DEFINE_CLASS(OdDbAttribute, OdDbAttributeText)

const ClassDescription* OdDbAttributeDefinition::description() const {
    static const ClassDescription d =
        drawingdb::describe<OdDbAttributeDefinition>("ATTDEF", &OdDbAttributeDefinition::describe);
    static const ClassDescription old =
        drawingdb::describe<OdDbAttributeDefinition>("ATTDEF", &OdDbAttributeDefinition::describeOld);
    return isInOldFile() ? &old : &d;
}
const ClassDescription* OdDbAttribute::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbAttribute>("ATTRIB", &OdDbAttribute::describe);
    static const ClassDescription old = drawingdb::describe<OdDbAttribute>("ATTRIB", &OdDbAttribute::describeOld);
    return isInOldFile() ? &old : &d;
}
bool OdDbAttributeText::isInOldFile() const { return database() && !database()->core().format.hasMarkers(); }

void OdDbAttributeDefinition::describe(Describer& d) {
    describeAttribute(d, true);
    describeLater(d);
}
void OdDbAttributeDefinition::describeOld(Describer& d) { describeAttribute(d, true); }
void OdDbAttribute::describe(Describer& d) {
    describeAttribute(d, false);
    describeLater(d);
}
void OdDbAttribute::describeOld(Describer& d) { describeAttribute(d, false); }

// Group 280 means the version before the tag and the lock behind it.
void OdDbAttributeText::describeAttribute(Describer& d, bool definition) {
    auto& self = d.self<OdDbAttributeText>();
    describeText(d, false);
    d.zone(definition ? "AcDbAttributeDefinition" : "AcDbAttribute");
    d.required().since(drawingdb::version::v2010).int16(280, self.version_);
    if (definition) d.required().text(3, self.prompt_);
    d.required().text(2, self.tag_);
    d.required().int16(70, self.modes_);
    d.int16(73, self.fieldLength_);
    d.int16(74, self.vertical_);
    d.since(drawingdb::version::v2007).int16(280, self.lockPosition_);
}

// Codes of the text come a second time here. Files without markers do not have these groups, and could not tell which
// of the two is meant.
void OdDbAttributeText::describeLater(Describer& d) {
    auto& self = d.self<OdDbAttributeText>();
    d.required().since(kEmbeddedSince).int16(71, self.mtextFlag_);
    d.required().since(kEmbeddedSince).int16(72, self.constantMText_);
    d.since(kEmbeddedSince).point(11, self.secondPoint_);
    self.mtext_ = OdDbMText::createObject();
    d.embeddedZone(kEmbedded, self.mtext_);
    OdDbMText::describeBody(d, *self.mtext_);
    self.mtext_.reset();
}

// Versions 2000 to 2006 keep the lock in extended data: the version and the lock, two whole numbers. Whatever else
// stands there stays.
bool OdDbAttributeText::locksByXData() const {
    const int version = database() ? database()->core().format.version : 0;
    return version >= drawingdb::version::v2000 && version < drawingdb::version::v2007;
}

void OdDbAttributeText::beforeEncode() {
    OdDbText::beforeEncode();
    if (lockPosition_ != lockInFile_ && locksByXData()) {
        lockInFile_ = lockPosition_;
        std::vector<OdDbGroup> data = xData(base::widen(kLockApplication));
        if (data.empty()) data.push_back(textGroup(1001, kLockApplication));
        if (!holdsLock(data)) data.insert(data.begin() + 1, 2, integerGroup(1070, version_));
        data[2].integer = lockPosition_;
        setXData(data);
    }
    registerApplications();
}

// Extended data stands behind the name of an application that the drawing knows.
void OdDbAttributeText::registerApplications() {
    if (!newXData_ || !database()) return;
    for (const std::string_view application : {kLockApplication, kAnnotativeApplication}) {
        const OdString name = base::widen(application);
        if (std::ranges::any_of(*newXData_, [&](const OdDbGroup& g) { return g.code == 1001 && g.text == name; }))
            database()->core().addEntry("APPID", application);
    }
}

// AnnotativeData, and in braces its version and whether it holds.
bool OdDbAttributeText::isAnnotative() const {
    if (!newXData_ && !hasFileXData_) return false;
    const std::vector<OdDbGroup> data = xData(base::widen(kAnnotativeApplication));
    return data.size() > 4 && data[4].integer != 0;
}

void OdDbAttributeText::setAnnotative(bool on) {
    assertWriteEnabled();
    if (on == isAnnotative()) return;
    std::vector<OdDbGroup> data{textGroup(1001, kAnnotativeApplication)};
    if (on)
        data.insert(data.end(), {textGroup(1000, "AnnotativeData"), textGroup(1002, "{"), integerGroup(1070, 1),
                                 integerGroup(1070, 1), textGroup(1002, "}")});
    setXData(data);
}

void OdDbAttributeText::afterDecode() {
    OdDbText::afterDecode();
    if (lockPosition_ == 0 && hasFileXData_ && locksByXData()) {
        const std::vector<OdDbGroup> data = xData(base::widen(kLockApplication));
        if (holdsLock(data) && data[2].integer != 0) lockPosition_ = 1;
    }
    lockInFile_ = lockPosition_;
    if (!mtext_) return;
    mtext_->database_ = database();
    mtext_->chooseDirection(source_, kEmbedded);
}

OdString OdDbAttributeText::tag() const { return decoded(tag_); }
void OdDbAttributeText::setTag(const OdString& tag) {
    assertWriteEnabled();
    assign(tag_, tag);
    changed(Change::text);
}
void OdDbAttributeText::setInvisible(bool on) {
    assertWriteEnabled();
    modes_ = withBit(modes_, kInvisible, on);
}
void OdDbAttributeText::setConstant(bool on) {
    assertWriteEnabled();
    modes_ = withBit(modes_, kConstant, on);
}
void OdDbAttributeText::setVerifiable(bool on) {
    assertWriteEnabled();
    modes_ = withBit(modes_, kVerifiable, on);
}
void OdDbAttributeText::setPreset(bool on) {
    assertWriteEnabled();
    modes_ = withBit(modes_, kPreset, on);
}
void OdDbAttributeText::setLockPositionInBlock(bool on) {
    assertWriteEnabled();
    lockPosition_ = on ? 1 : 0;
}

OdString OdDbAttributeDefinition::prompt() const { return decoded(prompt_); }
void OdDbAttributeDefinition::setPrompt(const OdString& prompt) {
    assertWriteEnabled();
    assign(prompt_, prompt);
}

// ---------------------------------------------------------------------------------------------------------------------
// Single and multiple lines

OdString OdDbAttributeText::textString() const { return mtext_ ? mtext_->contents() : OdDbText::textString(); }

void OdDbAttributeText::setTextFromField(const OdString& text) {
    assertWriteEnabled();
    if (!mtext_) {
        OdDbText::setTextFromField(text);
        return;
    }
    if (mtext_->contents() == text) return;
    mtext_->setContents(text);
    const OdString plain = mtext_->plainText();
    assign(text_, plain.substr(0, plain.find(L'\n')));
    changed(Change::text);
}

// Where the text is held: justified text by its alignment point.
OdGePoint3d OdDbAttributeText::heldPoint() const {
    return OdGeMatrix3d::planeToWorld(normal_) * (isJustified() && hasAlignment() ? alignmentInPlane() : position_);
}

OdSmartPtr<OdDbMText> OdDbAttributeText::newMText() const {
    OdSmartPtr<OdDbMText> text = OdDbMText::createObject();
    text->database_ = database();
    return text;
}

// What was set on the single-line side is told to the multi-line text.
void OdDbAttributeText::changed(Change what) {
    OdDbText::changed(what);
    if (!mtext_) return;
    switch (what) {
        case Change::text:
        case Change::shape:
            return;
        case Change::position:
            alignment_ = secondPoint_ = position_;
            mtext_->setLocation(heldPoint());
            return;
        case Change::alignmentPoint:
            position_ = secondPoint_ = alignment_;
            mtext_->setLocation(heldPoint());
            return;
        case Change::height:
            mtext_->setTextHeight(height_);
            return;
        case Change::rotation: {
            const OdGeVector2d baseline = drawingdb::directionOf(rotation_);
            const OdGeVector3d along = OdGeMatrix3d::planeToWorld(normal_) * OdGeVector3d(baseline.x, baseline.y, 0);
            mtext_->setDirection(isSeenFromBehind(*mtext_, *this) ? -along : along);
            return;
        }
        case Change::style:
            assign(mtext_->style_, textStyleName());
            mtext_->height_ = height_;
            return;
        case Change::justification:
            mtext_->setHorizontalMode(horizontal_);
            mtext_->setVerticalMode(vertical_);
            return;
    }
}

// Lines that are seen from behind stay so, however far the plane turns: the side is asked while both normals are old.
void OdDbAttributeText::setNormal(const OdGeVector3d& normal) {
    if (!mtext_ || normal == normal_) {
        OdDbText::setNormal(normal);
        return;
    }
    const bool behind = isSeenFromBehind(*mtext_, *this);
    OdDbText::setNormal(normal);
    mtext_->setNormal(behind ? -normal_ : normal_);
    changed(Change::rotation);
}

void OdDbAttributeText::followMText() {
    if (!mtext_) return;
    assertWriteEnabled();
    const double side = isSeenFromBehind(*mtext_, *this) ? -1 : 1;
    normal_ = mtext_->normal().normal() * side;
    const OdGeVector3d baseline = OdGeMatrix3d::worldToPlane(normal_) * mtext_->direction() * side;
    rotation_ = drawingdb::turnedTo(rotation_, baseline.xy());
    height_ = mtext_->textHeight();
    horizontal_ = static_cast<std::int16_t>(mtext_->horizontalMode());
    vertical_ = static_cast<std::int16_t>(mtext_->verticalMode());
    position_ = OdGeMatrix3d::worldToPlane(normal_) * mtext_->location();
    alignment_ = position_;
    secondPoint_ = position_;
    placeStale_ = false;
    assign(style_, mtext_->textStyleName());
    const OdString plain = mtext_->plainText();
    assign(text_, plain.substr(0, plain.find(L'\n')));
}

OdSmartPtr<OdDbMText> OdDbAttributeText::mtextCopy() const {
    if (!mtext_) return {};
    OdSmartPtr<OdDbMText> copy = newMText();
    copy->setPropertiesFrom(*this);
    copy->copyMTextFrom(*mtext_);
    return copy;
}

bool OdDbAttributeText::canBeMultiLine(const OdDbDatabase& database) {
    return database.core().format.version >= kEmbeddedSince;
}

void OdDbAttributeText::setMText(const OdDbMText& text) {
    assertWriteEnabled();
    if (database() && !canBeMultiLine(*database()))
        throw OdError(OdResult::notHeldByVersion,
                      "a multi-line attribute needs a drawing of version 2018; this one is older");
    OdSmartPtr<OdDbMText> copy = newMText();
    copy->copyMTextFrom(text);
    if (!mtext_) generation_ = 0;
    mtext_ = copy;
    mtextFlag_ = multiLineFlag();
    followMText();
}

void OdDbAttributeText::setMultiLine(bool on) {
    if (on == isMultiLine()) return;
    assertWriteEnabled();
    settle();
    if (on) {
        const OdSmartPtr<OdDbMText> text = newMText();
        text->setLocation(heldPoint());
        text->setNormal(normal_);
        text->setRotation(rotation_);
        text->setTextHeight(height_);
        text->setHorizontalMode(horizontal_);
        text->setVerticalMode(horizontal_ == OdDb::kTextMid ? static_cast<int>(OdDb::kTextVertMid) : vertical_);
        text->setContents(drawingdb::mtextEscaped(decoded(text_)));
        assign(text->style_, textStyleName());
        setMText(*text);
    } else {
        const OdString plain = mtext_->plainText();
        mtext_.reset();
        mtextFlag_ = kSingleLine;
        assign(text_, base::replaceAll(plain, L"\n", L" "));
        OdDbText::changed(Change::text);
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// Geometry

OdResult OdDbAttributeText::transformBy(const OdGeMatrix3d& matrix) {
    // Where there is nothing to repeat, files have the origin as the second point.
    std::optional<OdGePoint3d> secondImage;
    if (secondPoint_ != OdGePoint3d())
        if (const auto plane = drawingdb::mapPlane(matrix, normal_)) secondImage = plane->map * secondPoint_;
    if (const OdResult result = OdDbText::transformBy(matrix); result != OdResult::ok) return result;
    if (secondImage) secondPoint_ = *secondImage;
    if (mtext_) mtext_->transformBy(matrix);
    return OdResult::ok;
}

bool OdDbAttributeText::geomExtents(OdGeExtents3d& extents) const {
    return mtext_ ? mtext_->geomExtents(extents) : OdDbText::geomExtents(extents);
}

void OdDbAttributeText::copyAttributeFrom(const OdDbAttributeText& other) {
    mtext_.reset();
    copyTextFrom(other);
    copyFileText(tag_, other, other.tag_);
    modes_ = other.modes_;
    fieldLength_ = other.fieldLength_;
    version_ = other.version_;
    lockPosition_ = other.lockPosition_;
    constantMText_ = other.constantMText_;
    mtextFlag_ = other.mtext_ ? multiLineFlag() : kSingleLine;
    secondPoint_ = !other.mtext_ ? OdGePoint3d() : hasAlignment() ? alignmentInPlane() : position_;
    if (other.mtext_) {
        mtext_ = newMText();
        mtext_->copyMTextFrom(*other.mtext_);
    }
}

void OdDbAttribute::setAttributeFromBlock(const OdDbAttributeDefinition& definition,
                                          const OdGeMatrix3d& blockTransform) {
    assertWriteEnabled();
    belongTo(definition.database());
    setPropertiesFrom(definition);
    copyAttributeFrom(definition);
    setAnnotative(definition.isAnnotative());
    if (transformBy(blockTransform) != OdResult::ok)
        transformBy(OdGeMatrix3d::translation(blockTransform * heldPoint() - heldPoint()));
    // The definition is hung up by its tag, the attribute by its value.
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    OdDbText::changed(Change::text);
}

bool drawingdb::isMultiLine(const OdDbObject& text) {
    if (const auto* const attribute = as<OdDbAttributeText>(text)) return attribute->isMultiLine();
    return text.isKindOf(OdDbMText::desc());
}
