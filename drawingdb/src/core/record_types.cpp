#include "drawingdb/src/core/record_types.h"

#include <cstring>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/ellipse.h"
#include "drawingdb/error.h"
#include "drawingdb/field.h"
#include "drawingdb/layer.h"
#include "drawingdb/layout.h"
#include "drawingdb/mtext.h"
#include "drawingdb/spline.h"
#include "drawingdb/src/file/file_format.h"
#include "drawingdb/symbol_table.h"
#include "drawingdb/text.h"
#include "drawingdb/text_style.h"
#include "drawingdb/viewport.h"
#include "drawingdb/wipeout.h"

namespace drawingdb {

namespace {

constexpr ClassRecord kFieldRecord = {"AcDbField", "ObjectDBX Classes", 1152, false};
constexpr ClassRecord kFieldListRecord = {"AcDbFieldList", "ObjectDBX Classes", 1152, false};
constexpr ClassRecord kWipeoutRecord = {"AcDbWipeout", "WipeOut", 127, true};
constexpr ClassRecord kWipeoutVariablesRecord = {"AcDbWipeoutVariables", "WipeOut", 0, false};

constexpr bool kOwnsOnlyItsDictionary = true;

// In the order of RecordType. An old polyline's class depends on its flags.
// clang-format off
constexpr Kind kKinds[] = {
    {rtNone, ""},
    {rtSection, "SECTION"},
    {rtEndsec, "ENDSEC"},
    {rtTable, "TABLE", &OdDbSymbolTable::desc},
    {rtEndtab, "ENDTAB"},
    {rtBlock, "BLOCK"},
    {rtEndblk, "ENDBLK"},
    {rtSeqend, "SEQEND"},
    {rtEof, "EOF"},
    {rtClass, "CLASS"},
    {rtInsert, "INSERT", &OdDbBlockReference::desc, 0, kOwnsOnlyItsDictionary},
    {rtAttrib, "ATTRIB", &OdDbAttribute::desc, 0, kOwnsOnlyItsDictionary},
    {rtPolyline, "POLYLINE"},
    {rtVertex, "VERTEX"},
    {rtAttdef, "ATTDEF", &OdDbAttributeDefinition::desc, 0, kOwnsOnlyItsDictionary},
    {rtBlockRecord, "BLOCK_RECORD", &OdDbBlockTableRecord::desc},
    {rtLayer, "LAYER", &OdDbLayerTableRecord::desc},
    {rtStyle, "STYLE", &OdDbTextStyleTableRecord::desc},
    {rtLtype, "LTYPE", &OdDbSymbolTableRecord::desc},
    {rtAppid, "APPID", &OdDbSymbolTableRecord::desc},
    {rtDimstyle, "DIMSTYLE", &OdDbSymbolTableRecord::desc},
    {rtUcs, "UCS", &OdDbSymbolTableRecord::desc},
    {rtView, "VIEW", &OdDbSymbolTableRecord::desc},
    {rtVport, "VPORT", &OdDbSymbolTableRecord::desc},
    {rtDictionary, "DICTIONARY", &OdDbDictionary::desc, version::r13},
    {rtDictionaryWithDefault, "ACDBDICTIONARYWDFLT", &OdDbDictionary::desc},
    {rtField, "FIELD", &OdDbField::desc, version::v2000, false, &kFieldRecord},
    {rtFieldList, "FIELDLIST", nullptr, version::v2000, false, &kFieldListRecord},
    {rtLayout, "LAYOUT", &OdDbLayout::desc},
    {rtViewport, "VIEWPORT", &OdDbViewport::desc},
    {rtGroup, "GROUP"},
    {rtSortents, "SORTENTSTABLE"},
    {rtLine, "LINE", &OdDbLine::desc, 0, kOwnsOnlyItsDictionary},
    {rtRay, "RAY", &OdDbRay::desc, version::r13},
    {rtXline, "XLINE", &OdDbXline::desc, version::r13},
    {rtPoint, "POINT", &OdDbPoint::desc, 0, kOwnsOnlyItsDictionary},
    {rtCircle, "CIRCLE", &OdDbCircle::desc, 0, kOwnsOnlyItsDictionary},
    {rtArc, "ARC", &OdDbArc::desc, 0, kOwnsOnlyItsDictionary},
    {rtLwpolyline, "LWPOLYLINE", &OdDbPolyline::desc, version::r14, kOwnsOnlyItsDictionary},
    {rtEllipse, "ELLIPSE", &OdDbEllipse::desc, version::r13},
    {rtSpline, "SPLINE", &OdDbSpline::desc, version::r13},
    {rtWipeout, "WIPEOUT", &OdDbWipeout::desc, version::v2000, false, &kWipeoutRecord},
    {rtWipeoutVariables, "WIPEOUTVARIABLES", &OdDbWipeoutVariables::desc, version::v2000, false, &kWipeoutVariablesRecord},
    {rtText, "TEXT", &OdDbText::desc, 0, kOwnsOnlyItsDictionary},
    {rtMtext, "MTEXT", &OdDbMText::desc, version::r13},
};
// clang-format on
static_assert(std::size(kKinds) == rtFirstCarried);
static_assert([] {
    for (std::size_t i = 0; i < std::size(kKinds); ++i)
        if (kKinds[i].type != i) return false;
    return true;
}());

constexpr std::uint16_t kFree = 0xFFFF;
// A file with more kinds of record than this is no drawing.
constexpr std::size_t kMostKinds = 32768;

std::uint32_t hashOf(std::string_view name) {
    std::uint64_t head = 0;
    std::memcpy(&head, name.data(), name.size() < 8 ? name.size() : 8);
    head ^= static_cast<std::uint64_t>(name.size()) << 56;
    if (name.size() > 8) {
        std::uint64_t tail = 0;
        const std::size_t rest = name.size() - 8 < 8 ? name.size() - 8 : 8;
        std::memcpy(&tail, name.data() + name.size() - rest, rest);
        head ^= tail * 0x9E3779B97F4A7C15u;
    }
    head *= 0xD6E8FEB86659FD93u;
    return static_cast<std::uint32_t>(head >> 32);
}

}  // namespace

std::span<const Kind> allKinds() { return kKinds; }

TypeTable::TypeTable() : slots_(256, kFree) {
    for (const Kind& kind : kKinds) add(kind.name);
}

std::uint16_t TypeTable::add(std::string_view name) {
    if (names_.size() >= kMostKinds)
        throw OdError(OdResult::badFile, "more than 32768 kinds of record: this is no drawing");
    if ((names_.size() + 1) * 2 > slots_.size()) {
        slots_.assign(slots_.size() * 2, kFree);
        for (std::size_t i = 0; i < names_.size(); ++i) {
            std::size_t slot = hashOf(names_[i]) & (slots_.size() - 1);
            while (slots_[slot] != kFree) slot = (slot + 1) & (slots_.size() - 1);
            slots_[slot] = static_cast<std::uint16_t>(i);
        }
    }
    std::size_t slot = hashOf(name) & (slots_.size() - 1);
    while (slots_[slot] != kFree) slot = (slot + 1) & (slots_.size() - 1);
    slots_[slot] = static_cast<std::uint16_t>(names_.size());
    names_.emplace_back(name);
    return slots_[slot];
}

std::uint16_t TypeTable::find(std::string_view name) {
    std::size_t slot = hashOf(name) & (slots_.size() - 1);
    for (; slots_[slot] != kFree; slot = (slot + 1) & (slots_.size() - 1))
        if (names_[slots_[slot]] == name) return slots_[slot];
    return add(name);
}

const OdRxClass* TypeTable::knownClass(std::uint16_t type) {
    return type < rtFirstCarried && kKinds[type].desc ? kKinds[type].desc() : nullptr;
}

}  // namespace drawingdb
