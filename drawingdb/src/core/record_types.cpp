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
#include "drawingdb/symbol_table.h"
#include "drawingdb/text.h"
#include "drawingdb/text_style.h"
#include "drawingdb/viewport.h"
#include "drawingdb/wipeout.h"

namespace drawingdb {

namespace {

constexpr const char* kNames[] = {"",
                                  "SECTION",
                                  "ENDSEC",
                                  "TABLE",
                                  "ENDTAB",
                                  "BLOCK",
                                  "ENDBLK",
                                  "SEQEND",
                                  "EOF",
                                  "CLASS",
                                  "INSERT",
                                  "ATTRIB",
                                  "POLYLINE",
                                  "VERTEX",
                                  "ATTDEF",
                                  "BLOCK_RECORD",
                                  "LAYER",
                                  "STYLE",
                                  "LTYPE",
                                  "APPID",
                                  "DIMSTYLE",
                                  "UCS",
                                  "VIEW",
                                  "VPORT",
                                  "DICTIONARY",
                                  "ACDBDICTIONARYWDFLT",
                                  "FIELD",
                                  "FIELDLIST",
                                  "LAYOUT",
                                  "VIEWPORT",
                                  "GROUP",
                                  "SORTENTSTABLE",
                                  "LINE",
                                  "RAY",
                                  "XLINE",
                                  "POINT",
                                  "CIRCLE",
                                  "ARC",
                                  "LWPOLYLINE",
                                  "ELLIPSE",
                                  "SPLINE",
                                  "WIPEOUT",
                                  "WIPEOUTVARIABLES",
                                  "TEXT",
                                  "MTEXT"};
static_assert(std::size(kNames) == rtFirstCarried);

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

TypeTable::TypeTable() : slots_(256, kFree) {
    for (const char* name : kNames) add(name);
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
    switch (type) {
        case rtTable:
            return OdDbSymbolTable::desc();
        case rtBlockRecord:
            return OdDbBlockTableRecord::desc();
        case rtLayer:
            return OdDbLayerTableRecord::desc();
        case rtStyle:
            return OdDbTextStyleTableRecord::desc();
        case rtLtype:
        case rtAppid:
        case rtDimstyle:
        case rtUcs:
        case rtView:
        case rtVport:
            return OdDbSymbolTableRecord::desc();
        case rtInsert:
            return OdDbBlockReference::desc();
        case rtAttrib:
            return OdDbAttribute::desc();
        case rtAttdef:
            return OdDbAttributeDefinition::desc();
        case rtDictionary:
        case rtDictionaryWithDefault:
            return OdDbDictionary::desc();
        case rtField:
            return OdDbField::desc();
        case rtLayout:
            return OdDbLayout::desc();
        case rtViewport:
            return OdDbViewport::desc();
        case rtLine:
            return OdDbLine::desc();
        case rtRay:
            return OdDbRay::desc();
        case rtXline:
            return OdDbXline::desc();
        case rtPoint:
            return OdDbPoint::desc();
        case rtCircle:
            return OdDbCircle::desc();
        case rtArc:
            return OdDbArc::desc();
        case rtLwpolyline:
            return OdDbPolyline::desc();
        case rtEllipse:
            return OdDbEllipse::desc();
        case rtSpline:
            return OdDbSpline::desc();
        case rtWipeout:
            return OdDbWipeout::desc();
        case rtWipeoutVariables:
            return OdDbWipeoutVariables::desc();
        case rtText:
            return OdDbText::desc();
        case rtMtext:
            return OdDbMText::desc();
        default:
            return nullptr;
    }
}

}  // namespace drawingdb
