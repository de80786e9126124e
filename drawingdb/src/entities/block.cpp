#include "drawingdb/block.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/core/object_access.h"
#include "drawingdb/src/geometry/curve_math.h"

using namespace drawingdb;

// ---------------------------------------------------------------------------------------------------------------------
// Tables and plain records

OD_DEFINE_CLASS(OdDbSymbolTable, OdDbObject)
OD_DEFINE_CLASS(OdDbSymbolTableRecord, OdDbObject)
OD_DEFINE_CLASS(OdDbLayerTableRecord, OdDbSymbolTableRecord)
OD_DEFINE_CLASS(OdDbTextStyleTableRecord, OdDbSymbolTableRecord)

void OdDbSymbolTable::describe(Describer& d) { describeHead(d); }
const ClassDescription* OdDbSymbolTable::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbSymbolTable>("TABLE", &OdDbSymbolTable::describe);
    return &d;
}
OdDbObjectIdRange OdDbSymbolTable::records(bool skipErased) const {
    return stub_ ? OdDbObjectIdRange(stub_, nullptr, nullptr, skipErased) : OdDbObjectIdRange();
}
OdDbObjectId OdDbSymbolTable::getAt(const OdString& name) const {
    if (!stub_) return {};
    Core& core = coreOf(stub_);
    const std::string_view table =
        stub_->type == rtSection ? std::string_view("BLOCK_RECORD") : core.groupText(*stub_, 2);
    return OdDbObjectId(core.findRecord(table, name));
}

OdDbObjectId OdDbSymbolTable::add(const OdSmartPtr<OdDbSymbolTableRecord>& record) {
    if (!stub_) throw OdError(OdResult::notInDatabase, "the table is in no database");
    if (!record || record->isKindOf(OdDbBlockTableRecord::desc()))
        throw OdError(OdResult::invalidInput, "such a record cannot be added to a table");
    assertWriteEnabled();
    if (has(record->name()))
        throw OdError(OdResult::duplicateName, "there is a " + record->dxfName() + " of that name already");
    coreOf(stub_).appendObject(*record, *stub_);
    record->owner_.handle = stub_->handle;
    return record->objectId();
}

void OdDbSymbolTableRecord::describeRecord(Describer& d) {
    auto& self = d.self<OdDbSymbolTableRecord>();
    describeHead(d);
    d.zone("AcDbSymbolTableRecord");
    // Every kind of record goes on in a zone of its own, whose name this class need not know.
    d.required().text(2, self.name_);
    d.required().int16(70, self.flags_);
}
void OdDbSymbolTableRecord::describe(Describer& d) { describeRecord(d); }
const ClassDescription* OdDbSymbolTableRecord::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbSymbolTableRecord>("", &OdDbSymbolTableRecord::describe);
    return &d;
}
OdString OdDbSymbolTableRecord::name() const {
    if (!name_.raw.empty() || name_.text || !stub_) return decoded(name_);
    return coreOf(stub_).groupWide(*stub_, 2);
}
void OdDbSymbolTableRecord::setName(const OdString& name) {
    assertWriteEnabled();
    assign(name_, name);
}

void OdDbLayerTableRecord::describe(Describer& d) {
    auto& self = d.self<OdDbLayerTableRecord>();
    describeHead(d);
    d.zone("AcDbSymbolTableRecord");
    d.zone("AcDbLayerTableRecord");
    d.required().text(2, self.name_);
    d.required().int16(70, self.flags_);
    d.required().int32(62, self.colorIndex_);
    d.since(1018).int32(420, self.trueColor_);
    d.required().text(6, self.linetype_, "CONTINUOUS");
    d.since(1015).int16(290, self.plottable_);
    d.since(1015).int32(370, self.lineweight_);
    d.since(1015).handle(390, self.plotStyle_);
    d.since(1021).handle(347, self.material_);
}
const ClassDescription* OdDbLayerTableRecord::description() const {
    static const ClassDescription d =
        drawingdb::describe<OdDbLayerTableRecord>("LAYER", &OdDbLayerTableRecord::describe);
    return &d;
}
namespace {
std::int16_t withBit(std::int16_t flags, int bit, bool on) {
    return static_cast<std::int16_t>(on ? flags | bit : flags & ~bit);
}
}  // namespace
void OdDbLayerTableRecord::setIsFrozen(bool on) {
    assertWriteEnabled();
    flags_ = withBit(flags_, 1, on);
}
void OdDbLayerTableRecord::setIsLocked(bool on) {
    assertWriteEnabled();
    flags_ = withBit(flags_, 4, on);
}
void OdDbLayerTableRecord::setIsOff(bool on) {
    assertWriteEnabled();
    colorIndex_ = on ? -std::abs(colorIndex_) : std::abs(colorIndex_);
}
OdCmColor OdDbLayerTableRecord::color() const { return OdCmColor::fromDxf(std::abs(colorIndex_), trueColor_); }
void OdDbLayerTableRecord::setColor(const OdCmColor& color) {
    assertWriteEnabled();
    const bool off = isOff();
    colorIndex_ = off ? -color.colorIndex() : color.colorIndex();
    trueColor_ = color.dxfTrueColor();
}
OdString OdDbLayerTableRecord::linetype() const { return decoded(linetype_); }
void OdDbLayerTableRecord::setLinetype(const OdString& name) {
    assertWriteEnabled();
    assign(linetype_, name);
}
void OdDbLayerTableRecord::setLineweight(int value) {
    assertWriteEnabled();
    lineweight_ = value;
}

void OdDbLayerTableRecord::setPropertiesFrom(const OdDbLayerTableRecord& other) {
    assertWriteEnabled();
    setLinetype(other.linetype());
    flags_ = other.flags_;
    colorIndex_ = other.colorIndex_;
    trueColor_ = other.trueColor_;
    lineweight_ = other.lineweight_;
    plottable_ = other.plottable_;
    plotStyle_ = other.plotStyle_;
    material_ = other.material_;
}

void OdDbTextStyleTableRecord::describe(Describer& d) {
    auto& self = d.self<OdDbTextStyleTableRecord>();
    describeHead(d);
    d.zone("AcDbSymbolTableRecord");
    d.zone("AcDbTextStyleTableRecord");
    d.required().text(2, self.name_);
    d.required().int16(70, self.flags_);
    d.required().real(40, self.textSize_);
    d.required().real(41, self.widthFactor_);
    d.required().angle(50, self.oblique_);
    d.required().int16(71, self.generation_);
    d.required().real(42, self.lastHeight_);
    d.required().text(3, self.font_, "txt");
    d.required().text(4, self.bigFont_);
}
const ClassDescription* OdDbTextStyleTableRecord::description() const {
    static const ClassDescription d =
        drawingdb::describe<OdDbTextStyleTableRecord>("STYLE", &OdDbTextStyleTableRecord::describe);
    return &d;
}
OdString OdDbTextStyleTableRecord::fontFile() const { return decoded(font_); }

// ---------------------------------------------------------------------------------------------------------------------
// Blocks

OD_DEFINE_CLASS(OdDbBlockTableRecord, OdDbSymbolTableRecord)

void OdDbBlockTableRecord::describe(Describer& d) {
    auto& self = d.self<OdDbBlockTableRecord>();
    describeHead(d);
    d.zone("AcDbSymbolTableRecord");
    d.zone("AcDbBlockTableRecord");
    d.required().text(2, self.name_);
    d.since(1015).handle(340, self.layout_);
    d.since(1021).int16(70, self.insertUnits_);
    d.since(1021).int16(280, self.explodable_);
    d.since(1021).int16(281, self.scalability_);
}
const ClassDescription* OdDbBlockTableRecord::description() const {
    static const ClassDescription d =
        drawingdb::describe<OdDbBlockTableRecord>("BLOCK_RECORD", &OdDbBlockTableRecord::describe);
    return &d;
}
OdDbObjectIdRange OdDbBlockTableRecord::entities(bool skipErased) const {
    return stub_ ? coreOf(stub_).entitiesOf(*stub_, skipErased) : OdDbObjectIdRange();
}
OdDbObjectIdArray OdDbBlockTableRecord::entitiesInDrawOrder() const {
    OdDbObjectIdArray ids;
    for (const OdDbObjectId id : entities()) ids.push_back(id);
    const auto dictionary = extensionDictionary().openIf<OdDbDictionary>();
    const auto table = dictionary ? dictionary->getAt(L"ACAD_SORTENTS").open() : OdDbObjectPtr();
    if (!table) return ids;

    // Pairs of an entity (331) and the handle that stands in for its own (5).
    std::unordered_map<std::uint64_t, std::uint64_t> places;
    Core& core = coreOf(stub_);
    core.flushAll();
    std::uint64_t entity = 0;
    GroupCursor cursor(core.bytesOf(*table->objectId().stub()), core.format);
    for (Group group; cursor.next(group);) {
        if (group.code == 331) entity = parseHandle(group.value);
        if (group.code == 5 && entity != 0) {
            places[entity] = parseHandle(group.value);
            entity = 0;
        }
    }
    std::ranges::stable_sort(ids, {}, [&](OdDbObjectId id) {
        const std::uint64_t own = id.handle().value();
        const auto found = places.find(own);
        return found != places.end() ? found->second : own;
    });
    return ids;
}
OdGePoint3d OdDbBlockTableRecord::origin() const { return stub_ ? coreOf(stub_).blockOrigin(*stub_) : OdGePoint3d(); }
bool OdDbBlockTableRecord::isLayout() const {
    if (!stub_) return false;
    Core& core = coreOf(stub_);
    return stub_ == core.modelSpace() || stub_ == core.paperSpace() || base::startsWithNoCase(name(), L"*Paper_Space");
}
bool OdDbBlockTableRecord::isAnonymous() const { return name().starts_with(L"*"); }
bool OdDbBlockTableRecord::isFromExternalReference() const {
    if (!stub_) return false;
    Core& core = coreOf(stub_);
    Stub* begin = core.blockBegin(*stub_);
    if (!begin) return false;
    GroupCursor cursor(core.bytesOf(*begin), core.format);
    Group group;
    while (cursor.next(group))
        if (group.code == 70) return (groupInteger(group, core.format.binary).value_or(0) & 12) != 0;
    return false;
}
OdDbObjectId OdDbBlockTableRecord::layoutId() const { return resolve(layout_); }
bool OdDbBlockTableRecord::hasAttributeDefinitions() const {
    for (const OdDbObjectId id : entities())
        if (id.isKindOf(OdDbAttributeDefinition::desc())) return true;
    return false;
}

OdDbObjectIdArray OdDbBlockTableRecord::blockReferenceIds(bool directOnly) const {
    OdDbObjectIdArray ids;
    if (!stub_) return ids;
    Core& core = coreOf(stub_);
    core.flushAll();  // the index follows what is part of the drawing
    for (const std::uint32_t index : core.referencesTo(*stub_)) {
        Stub& reference = core.at(index);
        if (reference.gone()) continue;
        if (core.blockByRawName(core.groupText(reference, 2)) != stub_) continue;  // it was given another block since
        if (directOnly) {
            const auto block = OdDbObjectId(core.blockOf(reference)).openIf<OdDbBlockTableRecord>();
            if (!block || !block->isLayout()) continue;
        }
        ids.push_back(OdDbObjectId(&reference));
    }
    return ids;
}

OdDbObjectId OdDbBlockTableRecord::appendOdDbEntity(OdDbEntity* entity) {
    if (!entity) return {};
    if (!stub_) throw OdError(OdResult::notInDatabase, "the block is in no database");
    if (!writable_)
        throw OdError(OdResult::notOpenForWrite,
                      dxfName() + " #" + handle().ascii() + " is open for read; nothing can be added to it");
    Core& core = coreOf(stub_);
    Stub* const model = core.modelSpace();
    Stub* const paper = core.paperSpace();
    const bool inEntities = stub_ == model || stub_ == paper;
    Stub* container = inEntities ? core.section(drawingdb::Section::entities) : core.blockBegin(*stub_);
    if (!container)
        throw OdError(OdResult::badFile, core.where(nullptr) + "the file has no place for the entities of this block");
    core.appendObject(*entity, *container);
    const bool inPaper = stub_ != model && isLayout();
    if (inPaper) entity->stub_->flags |= Stub::paperSpace;
    entity->paperSpace_ = inPaper ? 1 : 0;
    entity->owner_.handle = stub_->handle;
    if (auto* reference =
            entity->isKindOf(OdDbBlockReference::desc()) ? static_cast<OdDbBlockReference*>(entity) : nullptr) {
        core.referenceAdded(*entity->stub_, reference->blockTableRecord().stub());
        auto pending = std::move(reference->pendingAttributes_);
        reference->pendingAttributes_.clear();
        for (const auto& attribute : pending) reference->appendAttribute(attribute.get());
    }
    return entity->objectId();
}

// ---------------------------------------------------------------------------------------------------------------------
// References

OD_DEFINE_CLASS(OdDbBlockReference, OdDbEntity)

void OdDbBlockReference::describe(Describer& d) {
    auto& self = d.self<OdDbBlockReference>();
    describeCommon(d);
    d.zone("AcDbBlockReference", "AcDbMInsertBlock");
    d.int16(66, self.attributesFollow_);
    d.required().text(2, self.blockName_);
    d.required().point(10, self.position_);
    d.real(41, self.scale_.x);
    d.real(42, self.scale_.y);
    d.real(43, self.scale_.z);
    d.angle(50, self.rotation_);
    d.int16(70, self.columns_);
    d.int16(71, self.rows_);
    d.real(44, self.columnSpacing_);
    d.real(45, self.rowSpacing_);
    d.vector(210, self.normal_);
}
const ClassDescription* OdDbBlockReference::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbBlockReference>("INSERT", &OdDbBlockReference::describe);
    return &d;
}
void OdDbBlockReference::beforeEncode() {}

OdString OdDbBlockReference::blockName() const { return decoded(blockName_); }
OdDbObjectId OdDbBlockReference::blockTableRecord() const {
    if (blockName_.text) {
        const OdString name = *blockName_.text;
        if (database_) return database_->findBlock(name);
        return {};
    }
    return database_ ? OdDbObjectId(database_->core().blockByRawName(blockName_.raw)) : OdDbObjectId();
}
OdDbObjectId OdDbBlockReference::blockTableRecordOf(OdDbObjectId reference) {
    if (!reference.isValid() || !reference.isKindOf(desc())) return {};
    Stub& stub = *reference.stub();
    if (stub.live()) return static_cast<const OdDbBlockReference*>(stub.object())->blockTableRecord();
    Core& core = coreOf(&stub);
    return OdDbObjectId(core.blockByRawName(core.groupText(stub, 2)));
}
void OdDbBlockReference::setBlockTableRecord(OdDbObjectId block) {
    assertWriteEnabled();
    assign(blockName_, block.openAs<OdDbBlockTableRecord>()->name());
}
OdGePoint3d OdDbBlockReference::position() const { return OdGeMatrix3d::planeToWorld(normal_) * position_; }
void OdDbBlockReference::setPosition(const OdGePoint3d& point) {
    assertWriteEnabled();
    position_ = OdGeMatrix3d::worldToPlane(normal_) * point;
}
void OdDbBlockReference::setNormal(const OdGeVector3d& normal) {
    assertWriteEnabled();
    const OdGePoint3d world = position();
    normal_ = normal.normal();
    position_ = OdGeMatrix3d::worldToPlane(normal_) * world;
}
void OdDbBlockReference::setRotation(double radians) {
    assertWriteEnabled();
    rotation_ = radians;
}
void OdDbBlockReference::setScaleFactors(const OdGeScale3d& scale) {
    assertWriteEnabled();
    scale_ = OdGePoint3d(scale.sx, scale.sy, scale.sz);
}

OdGeMatrix3d OdDbBlockReference::placement() const {
    OdGeMatrix3d m;
    const double c = rotation_ == 0 ? 1.0 : std::cos(rotation_);
    const double s = rotation_ == 0 ? 0.0 : std::sin(rotation_);
    m.entry[0][0] = c * scale_.x;
    m.entry[0][1] = -s * scale_.y;
    m.entry[1][0] = s * scale_.x;
    m.entry[1][1] = c * scale_.y;
    m.entry[2][2] = scale_.z;
    m.entry[0][3] = position_.x;
    m.entry[1][3] = position_.y;
    m.entry[2][3] = position_.z;
    if (normal_ == OdGeVector3d(0, 0, 1)) return m;
    return OdGeMatrix3d::planeToWorld(normal_) * m;
}
OdGeMatrix3d OdDbBlockReference::blockTransform() const {
    const OdDbObjectId block = blockTableRecord();
    OdGePoint3d origin;
    if (!block.isNull()) origin = coreOf(block.stub()).blockOrigin(*block.stub());
    return placement() * OdGeMatrix3d::translation(OdGeVector3d(-origin.x, -origin.y, -origin.z));
}

OdDbObjectIdRange OdDbBlockReference::attributes(bool skipErased) const {
    return stub_ ? OdDbObjectIdRange(stub_, nullptr, nullptr, skipErased) : OdDbObjectIdRange();
}
OdDbObjectId OdDbBlockReference::appendAttribute(OdDbAttribute* attribute) {
    if (!attribute) return {};
    if (!writable_)
        throw OdError(OdResult::notOpenForWrite,
                      dxfName() + " #" + handle().ascii() + " is open for read; nothing can be added to it");
    if (!stub_) {
        pendingAttributes_.push_back(attribute);
        return {};
    }
    Core& core = coreOf(stub_);
    core.appendObject(*attribute, *stub_);
    auto& entity = static_cast<OdDbEntity&>(*attribute);
    ObjectAccess::owner(entity).handle = stub_->handle;
    if (stub_->has(Stub::paperSpace)) {
        ObjectAccess::stub(entity)->flags |= Stub::paperSpace;
        ObjectAccess::setPaperSpace(entity, true);
    }
    return attribute->objectId();
}

OdResult OdDbBlockReference::transformBy(const OdGeMatrix3d& matrix) {
    assertWriteEnabled();
    const OdGeMatrix3d whole = matrix * placement();
    const auto column = [&](int i) { return OdGeVector3d(whole.entry[0][i], whole.entry[1][i], whole.entry[2][i]); };
    const OdGeVector3d x = column(0), y = column(1), z = column(2);
    const double lx = x.length(), ly = y.length(), lz = z.length();
    if (!(lx > 0) || !(ly > 0) || !(lz > 0)) return OdResult::transformRefused;
    constexpr double kShear = 1e-9;
    if (std::fabs(x.dotProduct(y)) > kShear * lx * ly || std::fabs(x.dotProduct(z)) > kShear * lx * lz ||
        std::fabs(y.dotProduct(z)) > kShear * ly * lz)
        return OdResult::transformRefused;
    // The signs of the X and Z scales stay, so that what was mirrored still reads as mirrored; Y takes what is left.
    const double signX = scale_.x < 0 ? -1 : 1, signZ = scale_.z < 0 ? -1 : 1;
    const OdGeVector3d axisX = x * (signX / lx), normal = z * (signZ / lz);
    const double signY = normal.crossProduct(axisX).dotProduct(y) < 0 ? -1 : 1;
    const OdGeMatrix3d toPlane = OdGeMatrix3d::worldToPlane(normal);
    const OdGeVector3d flat = toPlane * axisX;
    // Rows and columns lie apart along the reference's own directions, whose images are the new ones or their
    // opposites.
    const double stretchX = lx / std::fabs(scale_.x), stretchY = ly / std::fabs(scale_.y);
    columnSpacing_ *= withoutNoise(stretchX);
    rowSpacing_ *= withoutNoise(stretchY) * (signY * scale_.y < 0 ? -1 : 1);
    normal_ = normal;
    rotation_ = torvel::normalizedAngle(std::atan2(flat.y, flat.x));
    scale_ = OdGePoint3d(signX * lx, signY * ly, signZ * lz);
    position_ = toPlane * OdGePoint3d(whole.entry[0][3], whole.entry[1][3], whole.entry[2][3]);
    for (const OdDbObjectId id : attributes())
        if (const auto attribute = id.openIf<OdDbAttribute>(OdDb::forWrite)) attribute->transformBy(matrix);
    for (const auto& attribute : pendingAttributes_) attribute->transformBy(matrix);
    return OdResult::ok;
}

const OdGeExtents3d& Core::extentsOf(Stub& record) {
    flushAll();
    if (extentsState_ != state_ && extentsDepth_ == 0) {
        extents_.clear();
        extentsState_ = state_;
    }
    const auto [place, isNew] = extents_.try_emplace(indexOf(&record));
    // Blocks that contain each other find the box still empty. So do blocks that are nested as no sane drawing has
    // them.
    constexpr int kDeepestNesting = 64;
    if (!isNew || extentsDepth_ >= kDeepestNesting) return place->second;
    ++extentsDepth_;
    OdGeExtents3d& extents = place->second;
    for (const OdDbObjectId id : entitiesOf(record, true)) {
        OdGeExtents3d one;
        if (const auto entity = id.openIf<OdDbEntity>();
            entity && !entity->isKindOf(OdDbAttributeDefinition::desc()) && entity->geomExtents(one))
            extents.addExtents(one);
    }
    --extentsDepth_;
    return extents;
}

bool OdDbBlockReference::geomExtents(OdGeExtents3d& extents) const {
    const OdDbObjectId block = blockTableRecord();
    const OdGeExtents3d local = block ? coreOf(block.stub()).extentsOf(*block.stub()) : OdGeExtents3d();
    if (local.isValid()) {
        OdGeExtents3d cells = local;
        if (columns() > 1 || rows() > 1) {
            // Rows and columns are counted in the reference's own directions, unscaled.
            const double dx = (columns() - 1) * columnSpacing_ / (scale_.x != 0 ? scale_.x : 1);
            const double dy = (rows() - 1) * rowSpacing_ / (scale_.y != 0 ? scale_.y : 1);
            cells.addPoint(local.minPoint() + OdGeVector3d(dx, dy, 0));
            cells.addPoint(local.maxPoint() + OdGeVector3d(dx, dy, 0));
        }
        cells.transformBy(blockTransform());
        extents.addExtents(cells);
    }
    for (const OdDbObjectId id : attributes()) {
        OdGeExtents3d one;
        if (const auto attribute = id.openIf<OdDbAttribute>();
            attribute && !attribute->isInvisible() && attribute->geomExtents(one))
            extents.addExtents(one);
    }
    return extents.isValid();
}
