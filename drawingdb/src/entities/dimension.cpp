// The groups of a dimension that a transform concerns; what is said of a plane lies in that of the normal:
//
//   AcDbDimension             2 its picture, a block   3 style   70 type
//                             10 point   11 middle of the text, in the plane   12 the picture was moved by, in the
//                             plane 42 length measured   53 angle of the text, 0 none of its own 51 direction of
//                             "horizontal", counted clockwise   210 normal
//   AcDbAlignedDimension      13 14 points   50 angle of the line   52 angle between it and what leads to it
//   AcDb2LineAngularDimension 13 14 15 points   16 point of the arc, in the plane
//   and the like              40 length of the leader of radii and diameters
//
// Old files have no markers, and the same codes.
#include "drawingdb/src/entities/dimension.h"

#include "drawingdb/block.h"
#include "drawingdb/database.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/entities/dimension_style.h"
#include "drawingdb/src/entities/group_list.h"
#include "drawingdb/src/geometry/curve_math.h"

namespace drawingdb {
namespace {

// Types, in the lowest bits of 70.
constexpr std::int64_t kRotated = 0, kAngular = 2, kDiameter = 3, kRadius = 4, kAngularByThreePoints = 5;
constexpr std::int64_t kTypes = 7, kOwnPicture = 32;

class DimensionGroups {
  public:
    DimensionGroups(Core& core, Stub& dimension)
        : core_(core),
          groups_(core.bytesOf(dimension), core.format),
          plain_(core.typeName(dimension) == "DIMENSION"),
          byArc_(core.typeName(dimension) == "ARC_DIMENSION"),
          picture_(groups_.find(2)),
          type_(groups_.find(70)) {}

    /// Null when there is none: other programs draw such dimensions themselves.
    Stub* picture() const { return picture_ < groups_.end() ? core_.blockByRawName(groups_.value(picture_)) : nullptr; }
    /// How far it was moved from where its block draws it.
    OdGeVector3d moved() const {
        const std::size_t i = groups_.find(12);
        if (i >= groups_.end()) return {};
        return OdGeMatrix3d::planeToWorld(groups_.normal()) * groups_.point(i).asVector();
    }
    bool measuresAngle() const { return plain_ && (type() == kAngular || type() == kAngularByThreePoints); }

    void setPicture(std::string_view name) {
        groups_.setText(picture_, std::string(name));
        if (type_ < groups_.end()) groups_.setInteger(type_, groups_.integer(type_) | kOwnPicture);
        if (const std::size_t i = groups_.find(12); i < groups_.end()) groups_.setPoint(i, {});
    }

    bool transform(const OdGeMatrix3d& matrix, double scale) {
        const auto plane = mapPlane(matrix, groups_.normal());
        if (!plane) return false;
        const bool turned = mapAngle(*plane, 0) != 0;
        // The angles of a part of an arc are not told apart from those of the whole.
        if (byArc_ && turned && (groups_.realOr(40, 0) != 0 || groups_.realOr(41, 0) != 0)) return false;
        for (std::size_t i = 0; i < groups_.end(); ++i) {
            const int code = groups_.code(i);
            if (code == 11 || (code == 16 && plain_))
                groups_.setPoint(i, plane->map * groups_.point(i));
            else if (code == 10 || (code >= 13 && code <= 17))
                groups_.setPoint(i, matrix * groups_.point(i));
            else if ((code == 42 && !measuresAngle()) || (code == 40 && hasLeader()))
                groups_.setReal(i, groups_.real(i) * scale);
        }
        if (turned) turn(*plane);
        groups_.setNormal(plane->normal, groups_.endOfZone(kCommon));
        return true;
    }
    std::string bytes() const { return groups_.bytes(); }

  private:
    static constexpr std::string_view kCommon = "AcDbDimension";

    std::int64_t type() const { return type_ < groups_.end() ? groups_.integer(type_) & kTypes : kRotated; }
    bool hasLeader() const { return plain_ && (type() == kDiameter || type() == kRadius); }

    void turn(const PlaneMap& plane) {
        const std::size_t common = groups_.endOfZone(kCommon);
        const auto clockwise = [](double degrees) { return degrees == 0 ? 0 : 360 - degrees; };
        groups_.setOrAdd(51, clockwise(mapAngle(plane, -groups_.realOr(51, 0))), 0, common);
        if (plain_ && type() == kRotated)
            groups_.setOrAdd(50, mapAngle(plane, groups_.realOr(50, 0)), 0, groups_.endOfZone("AcDbAlignedDimension"));
        if (const double text = groups_.realOr(53, 0); text != 0) {
            const double angle = mapAngle(plane, text);
            groups_.setOrAdd(53, angle != 0 ? angle : 360, 0, common);
        }
    }

    Core& core_;
    GroupList groups_;
    bool plain_, byArc_;
    std::size_t picture_, type_;
};

// A new block with what `picture` holds, transformed. Null, and nothing changed, when some of it cannot be.
Stub* transformedPicture(Core& core, Stub& picture, const OdGeMatrix3d& matrix) {
    const OdDbObjectIdArray entities = OdDbObjectId(&picture).openAs<OdDbBlockTableRecord>()->entitiesInDrawOrder();
    for (const OdDbObjectId id : entities)
        if (isDimension(core.typeName(*id.stub()))) return nullptr;
    const std::size_t before = core.undoPosition();
    Stub* const copy = core.addPicture(picture);
    if (!copy) return nullptr;
    OdDbIdMapping mapping;
    core.deepClone(entities, *copy, mapping);
    // As the block's own coordinates have it.
    const OdGeVector3d origin = core.blockOrigin(picture).asVector();
    const OdGeMatrix3d inside = OdGeMatrix3d::translation(origin) * matrix * OdGeMatrix3d::translation(-origin);
    for (const OdDbIdMapping::Pair& pair : mapping.pairs())
        if (pair.primary && pair.copy.openAs<OdDbEntity>(OdDb::forWrite)->transformBy(inside) != OdResult::ok) {
            core.undoTo(before);
            return nullptr;
        }
    return copy;
}

OdDbObjectId inExtensionDictionary(const OdDbEntity& entity, const wchar_t* name) {
    const auto dictionary = entity.extensionDictionary().openIf<OdDbDictionary>();
    return dictionary ? dictionary->getAt(name) : OdDbObjectId();
}

// So that what it shows is what it showed, drawn anew too: as large, and the same length.
void overrideStyle(OdDbEntity& dimension, double scale, bool measuresAngle) {
    double overall = 1, factor = 1;
    readDimensionStyle(dimension, [&](int code, const Group& value) {
        const auto real = [&] { return groupReal(value, dimension.database()->core().format.binary).value_or(1); };
        if (code == dimension_style::overallScale) overall = real();
        if (code == dimension_style::measurementFactor) factor = real();
    });
    overrideDimensionStyle(dimension, dimension_style::overallScale, (overall > 0 ? overall : 1) * scale);
    if (measuresAngle || factor == 0) return;
    // One below zero is for paper spaces only.
    const bool inPaper = dimension.objectId().stub()->has(Stub::paperSpace);
    if (factor < 0) factor = inPaper ? -factor : 1;
    overrideDimensionStyle(dimension, dimension_style::measurementFactor, factor / scale);
}

}  // namespace

bool isDimension(std::string_view kind) {
    return kind == "DIMENSION" || kind == "ARC_DIMENSION" || kind == "LARGE_RADIAL_DIMENSION";
}

OdResult transformDimension(OdDbEntity& dimension, const OdGeMatrix3d& matrix) {
    const auto scale = equalScale(matrix);
    if (!scale || inExtensionDictionary(dimension, L"AcDbContextDataManager").isValid())
        return OdResult::transformRefused;
    dimension.assertWriteEnabled();
    Stub& stub = *dimension.objectId().stub();
    Core& core = coreOf(&stub);
    DimensionGroups groups(core, stub);
    const bool measuresAngle = groups.measuresAngle();
    Stub* const picture = groups.picture();
    const OdGeVector3d moved = groups.moved();
    if (!groups.transform(matrix, *scale)) return OdResult::transformRefused;
    if (picture) {
        Stub* const own = transformedPicture(core, *picture, matrix * OdGeMatrix3d::translation(moved));
        if (!own) return OdResult::transformRefused;
        groups.setPicture(core.groupText(*own, 2));
    }
    core.setBytes(stub, groups.bytes());
    if (*scale != 1) overrideStyle(dimension, *scale, measuresAngle);
    if (const auto association = inExtensionDictionary(dimension, L"ACAD_DIMASSOC").openIf<OdDbObject>(OdDb::forWrite))
        association->erase();
    return OdResult::ok;
}

}  // namespace drawingdb
