#include "drawingdb/entity.h"

#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/core/unknown.h"

using namespace drawingdb;

OD_DEFINE_ABSTRACT_CLASS(OdDbEntity, OdDbObject)
OD_DEFINE_CLASS(OdDbUnknownEntity, OdDbEntity)

OdDbEntity::OdDbEntity() = default;
OdDbEntity::~OdDbEntity() = default;

const ClassDescription* OdDbEntity::description() const { return OdDbObject::description(); }

void OdDbEntity::describeCommon(Describer& d) {
    auto& self = d.self<OdDbEntity>();
    describeHead(d);
    d.zone("AcDbEntity");
    d.int16(67, self.paperSpace_);
    d.text(410, self.layoutName_);
    d.required().text(8, self.layer_, "0");
    d.text(6, self.linetype_, "BYLAYER");
    d.since(version::v2007).handle(347, self.material_);
    d.int32(62, self.colorIndex_);
    d.since(version::v2000).int32(370, self.lineweight_);
    d.real(48, self.linetypeScale_);
    d.int16(60, self.invisible_);
    d.since(version::v2004).int32(420, self.trueColor_);
    d.since(version::v2004).text(430, self.colorBook_);
    d.since(version::v2004).int32(440, self.transparency_);
    d.since(version::v2000).int32(380, self.plotStyleKind_);
    d.since(version::v2000).handle(390, self.plotStyle_);
}

void OdDbUnknownEntity::describe(Describer& d) { describeCommon(d); }
const ClassDescription* OdDbUnknownEntity::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbUnknownEntity>("", &OdDbUnknownEntity::describe);
    return &d;
}

void OdDbEntity::setDatabaseDefaults(OdDbDatabase* database) {
    assertWriteEnabled();
    if (!database) return;
    if (!isDatabaseResident() && !database_) database_ = database;
    Core& core = database->core();
    const Core::EntityDefaults& defaults = core.entityDefaults();
    const auto take = [&](FileText& to, std::string_view raw) {
        if (database == database_) {
            to.raw = raw;  // bytes of the same file
            to.text.reset();
        } else {
            assign(to, decodeText(raw, core.format));
        }
    };
    take(layer_, defaults.layer);
    take(linetype_, defaults.linetype);
    colorIndex_ = defaults.colorIndex;
    linetypeScale_ = defaults.linetypeScale;
    lineweight_ = defaults.lineweight;
}

namespace {
void copyText(FileText& to, const FileText& from) {
    to.raw = from.raw;
    to.text = from.text ? std::make_unique<std::wstring>(*from.text) : nullptr;
}
}  // namespace

void OdDbEntity::setPropertiesFrom(const OdDbEntity& other) {
    assertWriteEnabled();
    const bool sameFile = other.database_ && other.database_ == database_;
    const auto take = [&](FileText& to, const FileText& from) {
        // Bytes of the same file stay bytes; of another one they are read.
        if (sameFile || from.text || from.raw.empty())
            copyText(to, from);
        else
            assign(to, other.decoded(from));
    };
    take(layer_, other.layer_);
    take(linetype_, other.linetype_);
    take(colorBook_, other.colorBook_);
    colorIndex_ = other.colorIndex_;
    trueColor_ = other.trueColor_;
    lineweight_ = other.lineweight_;
    linetypeScale_ = other.linetypeScale_;
    invisible_ = other.invisible_;
    transparency_ = other.transparency_;
    plotStyleKind_ = other.plotStyleKind_;
    plotStyle_ = other.plotStyle_;
    material_ = other.material_;
}

OdString OdDbEntity::layer() const {
    OdString name = decoded(layer_);
    return name.empty() ? OdString(L"0") : name;
}
void OdDbEntity::setLayer(const OdString& name) {
    assertWriteEnabled();
    assign(layer_, name);
}
OdDbObjectId OdDbEntity::layerId() const { return database_ ? database_->findLayer(layer()) : OdDbObjectId(); }
OdString OdDbEntity::linetype() const {
    OdString name = decoded(linetype_);
    return name.empty() ? OdString(L"BYLAYER") : name;
}
void OdDbEntity::setLinetype(const OdString& name) {
    assertWriteEnabled();
    assign(linetype_, name);
}
OdCmColor OdDbEntity::color() const { return OdCmColor::fromDxf(colorIndex_, trueColor_, decoded(colorBook_)); }
void OdDbEntity::setColor(const OdCmColor& color) {
    assertWriteEnabled();
    colorIndex_ = color.colorIndex();
    trueColor_ = color.dxfTrueColor();
    assign(colorBook_, color.bookName());
}
void OdDbEntity::setLineweight(int value) {
    assertWriteEnabled();
    lineweight_ = value;
}
void OdDbEntity::setLinetypeScale(double value) {
    assertWriteEnabled();
    linetypeScale_ = value;
}
void OdDbEntity::setVisibility(bool visible) {
    assertWriteEnabled();
    invisible_ = visible ? 0 : 1;
}
OdDbObjectId OdDbEntity::blockId() const {
    return stub_ ? OdDbObjectId(coreOf(stub_).blockOf(*stub_)) : OdDbObjectId();
}

OdResult OdDbEntity::transformBy(const OdGeMatrix3d&) { return OdResult::transformRefused; }
OdResult OdDbEntity::explode(std::vector<OdDbEntityPtr>&) const { return OdResult::transformRefused; }
bool OdDbEntity::geomExtents(OdGeExtents3d&) const { return false; }
