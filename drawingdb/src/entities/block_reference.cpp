#include "drawingdb/block_reference.h"

#include <cmath>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/reference_cells.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/core/object_access.h"
#include "drawingdb/src/geometry/curve_math.h"

using namespace drawingdb;

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
    const auto [c, s] = directionOf(rotation_);
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

bool OdDbBlockReference::isClipped() const {
    const auto dictionary = extensionDictionary().openIf<OdDbDictionary>();
    const auto filters = dictionary ? dictionary->getAt(L"ACAD_FILTER").openIf<OdDbDictionary>() : OdDbDictionaryPtr();
    return filters && !filters->getAt(L"SPATIAL").isNull();
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
    const double stretchX = withoutNoise(lx / std::fabs(scale_.x)), stretchY = withoutNoise(ly / std::fabs(scale_.y)),
                 stretchZ = withoutNoise(lz / std::fabs(scale_.z));
    const double flipY = signY * scale_.y < 0 ? -1 : 1;
    columnSpacing_ *= stretchX;
    rowSpacing_ *= stretchY * flipY;
    normal_ = normal;
    rotation_ = turnedTo(rotation_, flat.xy());
    scale_ = OdGePoint3d(scale_.x * stretchX, scale_.y * stretchY * flipY, scale_.z * stretchZ);
    position_ = toPlane * OdGePoint3d(whole.entry[0][3], whole.entry[1][3], whole.entry[2][3]);
    for (const OdDbObjectId id : attributes())
        if (const auto attribute = id.openIf<OdDbAttribute>(OdDb::forWrite)) attribute->transformBy(matrix);
    for (const auto& attribute : pendingAttributes_) attribute->transformBy(matrix);
    return OdResult::ok;
}

// What stands in the first cell, its attributes too, stands in each.
bool OdDbBlockReference::geomExtents(OdGeExtents3d& extents) const {
    const OdDbObjectId block = blockTableRecord();
    const ReferenceCells cells(*this);
    OdGeExtents3d first = block ? coreOf(block.stub()).extentsOf(*block.stub()) : OdGeExtents3d();
    first.transformBy(cells.transform(0, 0));
    for (const OdDbObjectId id : attributes()) {
        OdGeExtents3d one;
        if (const auto attribute = id.openIf<OdDbAttribute>();
            attribute && !attribute->isInvisible() && attribute->geomExtents(one))
            first.addExtents(one);
    }
    extents.addExtents(inAllCells(first, cells.offset(0, columns() - 1), cells.offset(rows() - 1, 0)));
    return extents.isValid();
}
