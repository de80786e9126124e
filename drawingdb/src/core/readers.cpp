#include "drawingdb/readers.h"

#include <array>

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/geometry/curve_math.h"

using drawingdb::AsciiGroupCursor;
using drawingdb::Core;
using drawingdb::Group;
using drawingdb::Stub;

namespace drawingdb {

void ReadText::setRaw(const Core& core, std::string_view raw) {
    core_ = &core;
    isRaw_ = true;
    raw_ = raw;
}

void ReadText::setWide(const Core& core, OdString text) {
    core_ = &core;
    isRaw_ = false;
    wide_ = std::move(text);
}

OdString ReadText::wide() const { return isRaw_ ? decodeText(raw_, core_->format) : wide_; }

std::string_view ReadText::narrow() {
    if (isRaw_ && isPlainText(raw_)) return raw_;
    narrow_.clear();
    if (isUtf8_)
        narrow_ = base::toUtf8(wide());
    else
        core_->database.appendNarrow(narrow_, wide());
    return narrow_;
}

OdDbObjectId blockStoodFor(OdDbObjectId block) {
    const auto record = block.openIf<OdDbBlockTableRecord>();
    if (!record || !record->isAnonymous()) return block;
    constexpr int kHandle = 1005;
    for (const OdDbGroup& group : record->xData(L"AcDbBlockRepBTag")) {
        if (group.code != kHandle) continue;
        const OdDbObjectId named =
            block.database()->getObjectId(base::parseHex(std::wstring_view(group.text)).value_or(0));
        if (named.isValid() && named.isKindOf(OdDbBlockTableRecord::desc())) return named;
    }
    return block;
}

}  // namespace drawingdb

namespace {

// Goes through a record that is written as nearly all are: ASCII, of no open object, with these subclasses in this
// order, nothing embedded, and application groups in none of the subclasses from `firstRead` on. `each(subclass,
// group)` gets the groups, with subclass 0 for those before the first marker. False for any other record, which its
// class's description is there for, and as soon as `each` is false.
template <std::size_t kCount, class Each>
bool walkUsualRecord(Core& core, Stub& stub, const std::array<std::string_view, kCount>& subclasses,
                     std::size_t firstRead, Each each) {
    if (stub.live() || core.format.binary) return false;
    std::size_t subclass = 0;
    AsciiGroupCursor cursor(core.bytesOf(stub));
    for (Group group; cursor.next(group) && group.code < 1000;) {
        switch (group.code) {
            case 100:
                if (subclass == kCount || group.value != subclasses[subclass]) return false;
                ++subclass;
                break;
            case 101:
                return false;
            case 102:
                if (subclass >= firstRead) return false;
                break;
            default:
                if (subclass >= firstRead && !each(subclass, group)) return false;
        }
    }
    return subclass == kCount;
}

// The first group of a code counts; an empty one is null no more.
void keepFirst(std::string_view& kept, const Group& group) {
    if (!kept.data()) kept = group.value;
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------------------
// Entities

bool OdDbEntityReader::read(OdDbObjectId entity) {
    if (!entity.isValid()) return false;
    Stub& stub = *entity.stub();
    Core& core = drawingdb::coreOf(&stub);
    if (!core.isEntity(stub)) return false;
    kind_ = core.typeName(stub);
    const std::string_view layer = core.groupText(stub, 8);
    layer_.setRaw(core, layer.empty() ? std::string_view("0") : layer);
    return true;
}

// ---------------------------------------------------------------------------------------------------------------------
// Attributes

bool OdDbAttributeReader::read(OdDbObjectId attribute) {
    if (attribute.isNull() || attribute.isErased()) return false;
    Stub& stub = *attribute.stub();
    if (stub.type != drawingdb::rtAttrib) return false;
    Core& core = drawingdb::coreOf(&stub);
    if (readRecord(core, stub)) return true;
    const auto opened = attribute.openIf<OdDbAttribute>();
    if (!opened) return false;
    tag_.setWide(core, opened->tag());
    text_.setWide(core, opened->textString());
    isConstant_ = opened->isConstant();
    isMultiLine_ = opened->isMultiLine();
    return true;
}

bool OdDbAttributeReader::readRecord(Core& core, Stub& stub) {
    static constexpr std::array<std::string_view, 3> kSubclasses = {"AcDbEntity", "AcDbText", "AcDbAttribute"};
    constexpr std::size_t kText = 2, kAttribute = 3;
    std::string_view tag, text, modes;
    const bool isUsual = walkUsualRecord(core, stub, kSubclasses, kText, [&](std::size_t subclass, const Group& group) {
        if (group.code == 1 && subclass == kText) keepFirst(text, group);
        if (group.code == 2 && subclass == kAttribute) keepFirst(tag, group);
        if (group.code == 70 && subclass == kAttribute) keepFirst(modes, group);
        return true;
    });
    if (!isUsual) return false;
    constexpr std::int64_t kConstant = 2;
    const bool hasModes = modes.find_first_not_of(" 0") != modes.npos;
    isConstant_ = hasModes && (base::parseInteger(modes).value_or(0) & kConstant) != 0;
    isMultiLine_ = false;  // such a record has an object embedded
    tag_.setRaw(core, tag);
    text_.setRaw(core, text);
    return true;
}

// ---------------------------------------------------------------------------------------------------------------------
// References

void OdDbBlockReferenceReader::read(OdDbObjectId reference) {
    id_ = reference;
    if (reference.isValid() && reference.stub()->type == drawingdb::rtInsert) {
        Stub& stub = *reference.stub();
        if (readRecord(drawingdb::coreOf(&stub), stub)) return;
    }
    const auto opened = reference.openAs<OdDbBlockReference>();
    const Core& core = drawingdb::coreOf(reference.stub());
    block_ = opened->blockTableRecord();
    blockName_.setWide(core, opened->blockName());
    layer_.setWide(core, opened->layer());
    position_ = opened->position();
    rotation_ = opened->rotation();
    scale_ = opened->scaleFactors();
    normal_ = opened->normal();
}

bool OdDbBlockReferenceReader::readRecord(Core& core, Stub& stub) {
    static constexpr std::array<std::string_view, 2> kSubclasses = {"AcDbEntity", "AcDbBlockReference"};
    constexpr std::size_t kEntity = 1;
    std::string_view name, layer;
    double numbers[] = {0, 0, 0, 0, 1, 1, 1, 0, 0, 1};
    enum { kPosition = 0, kRotation = 3, kScale = 4, kNormal = 7 };
    unsigned known = 0;
    // What is no number is told when the reference is opened.
    const auto keepNumber = [&](int index, const Group& group) {
        const unsigned bit = 1u << index;
        if ((known & bit) != 0) return true;
        known |= bit;
        const auto value = drawingdb::groupReal(group, false);
        if (value) numbers[index] = *value;
        return value.has_value();
    };
    const bool isUsual =
        walkUsualRecord(core, stub, kSubclasses, kEntity, [&](std::size_t subclass, const Group& group) {
            if (subclass == kEntity) {
                if (group.code == 8) keepFirst(layer, group);
                return true;
            }
            switch (group.code) {
                case 2:
                    keepFirst(name, group);
                    return true;
                case 10:
                case 20:
                case 30:
                    return keepNumber(kPosition + group.code / 10 - 1, group);
                case 41:
                case 42:
                case 43:
                    return keepNumber(kScale + group.code - 41, group);
                case 50:
                    return keepNumber(kRotation, group);
                case 210:
                case 220:
                case 230:
                    return keepNumber(kNormal + group.code / 10 - 21, group);
                default:
                    return true;
            }
        });
    if (!isUsual) return false;
    block_ = OdDbObjectId(core.blockByRawName(name));
    blockName_.setRaw(core, name);
    layer_.setRaw(core, layer.empty() ? std::string_view("0") : layer);
    normal_ = OdGeVector3d(numbers[kNormal], numbers[kNormal + 1], numbers[kNormal + 2]);
    position_ = OdGeMatrix3d::planeToWorld(normal_) *
                OdGePoint3d(numbers[kPosition], numbers[kPosition + 1], numbers[kPosition + 2]);
    rotation_ = numbers[kRotation] * drawingdb::kDegree;
    scale_ = OdGeScale3d(numbers[kScale], numbers[kScale + 1], numbers[kScale + 2]);
    return true;
}

OdDbObjectIdRange OdDbBlockReferenceReader::attributes() const {
    return OdDbObjectIdRange(id_.stub(), nullptr, nullptr, true);
}
