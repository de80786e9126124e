#include "drawingdb/src/core/translate.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "base/number.h"
#include "drawingdb/src/core/edit.h"
#include "drawingdb/src/core/record_walk.h"

namespace drawingdb {

namespace {

using namespace std::literals;

struct Since {
    std::string_view kind;
    int version;
};

// Kinds whose records are alike in all versions that have them. Whatever is not here goes into its own version or a
// newer one.
constexpr Since kKinds[] = {
    {"3DFACE", 0},
    {"ARC", 0},
    {"ATTDEF", 0},
    {"ATTRIB", 0},
    {"CIRCLE", 0},
    {"DIMENSION", 0},
    {"INSERT", 0},
    {"LINE", 0},
    {"POINT", 0},
    {"POLYLINE", 0},
    {"SHAPE", 0},
    {"SOLID", 0},
    {"TEXT", 0},
    {"TRACE", 0},
    {"VERTEX", 0},
    {"LAYER", 0},
    {"LTYPE", 0},
    {"STYLE", 0},
    {"DIMSTYLE", 0},
    {"APPID", 0},
    {"BLOCK_RECORD", 0},
    {"ELLIPSE", version::r13},
    {"LEADER", version::r13},
    {"MLINE", version::r13},
    {"MTEXT", version::r13},
    {"RAY", version::r13},
    {"SPLINE", version::r13},
    {"TOLERANCE", version::r13},
    {"XLINE", version::r13},
    {"DICTIONARY", version::r13},
    {"MLINESTYLE", version::r13},
    {"HATCH", version::r14},
    {"IMAGE", version::r14},
    {"LWPOLYLINE", version::r14},
    {"IMAGEDEF", version::r14},
    {"IMAGEDEF_REACTOR", version::r14},
    {"SPATIAL_FILTER", version::r14},
    {"ACDBDICTIONARYWDFLT", version::v2000},
    {"ACDBPLACEHOLDER", version::v2000},
    {"FIELD", version::v2000},
    {"WIPEOUT", version::v2000},
    {"XRECORD", version::v2000},
    {"SCALE", version::v2007},
};

struct GroupSince {
    std::string_view kind;  // a kind, or the zone of all entities
    int code;
    int version;
};

constexpr auto kEntityZone = "AcDbEntity"sv;

// Groups that came later than their kind.
constexpr GroupSince kGroups[] = {
    {kEntityZone, 48, version::r13},
    {kEntityZone, 60, version::r13},
    {kEntityZone, 370, version::v2000},
    {kEntityZone, 380, version::v2000},
    {kEntityZone, 390, version::v2000},
    {kEntityZone, 420, version::v2004},
    {kEntityZone, 430, version::v2004},
    {kEntityZone, 440, version::v2004},
    {kEntityZone, 284, version::v2007},
    {kEntityZone, 347, version::v2007},
    {kEntityZone, 348, version::v2010},
    // Pictures for programs that do not know the kind.
    {kEntityZone, 160, version::v2010},
    {kEntityZone, 92, version::r13},
    {"LAYER", 290, version::v2000},
    {"LAYER", 370, version::v2000},
    {"LAYER", 390, version::v2000},
    {"LAYER", 420, version::v2004},
    {"LAYER", 430, version::v2004},
    {"LAYER", 440, version::v2004},
    {"LAYER", 347, version::v2007},
    {"LAYER", 348, version::v2010},
    {"MTEXT", 73, version::v2000},
    {"MTEXT", 44, version::v2000},
    {"MTEXT", 90, version::v2004},
    {"MTEXT", 63, version::v2004},
    {"MTEXT", 420, version::v2004},
    {"MTEXT", 421, version::v2004},
    {"MTEXT", 430, version::v2004},
    {"MTEXT", 431, version::v2004},
    {"MTEXT", 441, version::v2004},
    {"MTEXT", 45, version::v2004},
    {"MTEXT", 46, version::v2007},
    {"LWPOLYLINE", 91, version::v2010},
    {"VERTEX", 91, version::v2010},
    {"DIMENSION", 41, version::v2000},
    {"DIMENSION", 42, version::v2000},
    {"DIMENSION", 71, version::v2000},
    {"DIMENSION", 72, version::v2000},
    {"DIMENSION", 73, version::v2007},
    {"DIMENSION", 74, version::v2007},
    {"DIMENSION", 75, version::v2007},
    {"DIMENSION", 280, version::v2010},
    {"ATTRIB", 280, version::v2007},
    {"ATTDEF", 280, version::v2007},
    {"HATCH", 450, version::v2004},
    {"HATCH", 451, version::v2004},
    {"HATCH", 452, version::v2004},
    {"HATCH", 453, version::v2004},
    {"HATCH", 460, version::v2004},
    {"HATCH", 461, version::v2004},
    {"HATCH", 462, version::v2004},
    {"HATCH", 463, version::v2004},
    {"HATCH", 470, version::v2004},
    {"DIMSTYLE", 148, version::v2000},
    {"DIMSTYLE", 149, version::v2000},
    {"DIMSTYLE", 179, version::v2000},
    {"DIMSTYLE", 276, version::v2000},
    {"DIMSTYLE", 277, version::v2000},
    {"DIMSTYLE", 278, version::v2000},
    {"DIMSTYLE", 279, version::v2000},
    {"DIMSTYLE", 289, version::v2000},
    {"DIMSTYLE", 341, version::v2000},
    {"DIMSTYLE", 342, version::v2000},
    {"DIMSTYLE", 343, version::v2000},
    {"DIMSTYLE", 344, version::v2000},
    {"DIMSTYLE", 371, version::v2000},
    {"DIMSTYLE", 372, version::v2000},
    {"DIMSTYLE", 49, version::v2007},
    {"DIMSTYLE", 90, version::v2007},
    {"DIMSTYLE", 290, version::v2007},
    {"DIMSTYLE", 295, version::v2007},
    {"DIMSTYLE", 345, version::v2007},
    {"DIMSTYLE", 346, version::v2007},
    {"DIMSTYLE", 347, version::v2007},
    {"LTYPE", 74, version::r13},
    {"DICTIONARY", 280, version::v2000},
    {"DICTIONARY", 281, version::v2000},
    {"APPID", 71, version::r13},
};

// R12 knows no codes but these, and extended data.
constexpr bool isOfR12(int code) {
    return code < 80 || (code >= 140 && code <= 147) || (code >= 170 && code <= 178) || (code >= 210 && code <= 230) ||
           code >= 999;
}

// How the groups of a record without markers are spread over zones: each group goes into the first that lists its
// code; the last one, which lists none, takes the rest.
struct OldZone {
    std::string_view marker;
    std::vector<int> codes;
};

std::vector<OldZone> zonesOf(std::string_view kind, std::int64_t flags, bool inRows) {
    const std::vector<int> textCodes = {1, 7, 10, 20, 30, 11, 21, 31, 39, 40, 41, 50, 51, 71, 72, 210, 220, 230};
    if (kind == "LAYER") return {{"AcDbSymbolTableRecord", {-1}}, {"AcDbLayerTableRecord", {}}};
    if (kind == "LTYPE") return {{"AcDbSymbolTableRecord", {-1}}, {"AcDbLinetypeTableRecord", {}}};
    if (kind == "STYLE") return {{"AcDbSymbolTableRecord", {-1}}, {"AcDbTextStyleTableRecord", {}}};
    if (kind == "DIMSTYLE") return {{"AcDbSymbolTableRecord", {-1}}, {"AcDbDimStyleTableRecord", {}}};
    if (kind == "APPID") return {{"AcDbSymbolTableRecord", {-1}}, {"AcDbRegAppTableRecord", {}}};
    std::vector<OldZone> zones{{kEntityZone, {8, 6, 62, 48, 60}}};
    const auto add = [&](std::string_view marker, std::vector<int> codes = {}) {
        zones.push_back({marker, std::move(codes)});
    };
    if (kind == "LINE") {
        add("AcDbLine");
    } else if (kind == "POINT") {
        add("AcDbPoint");
    } else if (kind == "CIRCLE") {
        add("AcDbCircle");
    } else if (kind == "ARC") {
        add("AcDbCircle", {39, 10, 20, 30, 40, 210, 220, 230});
        add("AcDbArc");
    } else if (kind == "SOLID" || kind == "TRACE") {
        add("AcDbTrace");
    } else if (kind == "3DFACE") {
        add("AcDbFace");
    } else if (kind == "SHAPE") {
        add("AcDbShape");
    } else if (kind == "TEXT") {
        add("AcDbText", textCodes);
        add("AcDbText");
    } else if (kind == "ATTRIB") {
        add("AcDbText", textCodes);
        add("AcDbAttribute");
    } else if (kind == "ATTDEF") {
        add("AcDbText", textCodes);
        add("AcDbAttributeDefinition");
    } else if (kind == "INSERT") {
        add(inRows ? "AcDbMInsertBlock"sv : "AcDbBlockReference"sv);
    } else if (kind == "POLYLINE") {
        constexpr std::int64_t kSpatial = 8, kMesh = 16, kFaces = 64;
        add(flags & kFaces     ? "AcDbPolyFaceMesh"sv
            : flags & kMesh    ? "AcDbPolygonMesh"sv
            : flags & kSpatial ? "AcDb3dPolyline"sv
                               : "AcDb2dPolyline"sv);
    } else if (kind == "VERTEX") {
        constexpr std::int64_t kSpatial = 32, kMesh = 64, kFaces = 128;
        if ((flags & kFaces) && !(flags & kMesh)) {
            add("AcDbFaceRecord");
        } else {
            add("AcDbVertex", {-1});
            add(flags & kFaces     ? "AcDbPolyFaceMeshVertex"sv
                : flags & kMesh    ? "AcDbPolygonMeshVertex"sv
                : flags & kSpatial ? "AcDb3dPolylineVertex"sv
                                   : "AcDb2dVertex"sv);
        }
    } else if (kind == "DIMENSION") {
        add("AcDbDimension", {1, 2, 3, 10, 20, 30, 11, 21, 31, 70, 51, 53, 210, 220, 230});
        switch (flags & 7) {
            case 0:
                add("AcDbAlignedDimension", {12, 22, 32, 13, 23, 33, 14, 24, 34, 40, 50, 52});
                add("AcDbRotatedDimension");
                break;
            case 1:
                add("AcDbAlignedDimension");
                break;
            case 2:
                add("AcDb2LineAngularDimension");
                break;
            case 3:
                add("AcDbDiametricDimension");
                break;
            case 4:
                add("AcDbRadialDimension");
                break;
            case 5:
                add("AcDb3PointAngularDimension");
                break;
            default:
                add("AcDbOrdinateDimension");
                break;
        }
    } else {
        zones.front().codes = {};
    }
    return zones;
}

// Whether a text is the same in every version and code page. What one code page writes as "\U+0434" is a letter of
// another.
bool isSameEverywhere(std::string_view text) {
    return std::ranges::all_of(
               text, [](char c) { return static_cast<unsigned char>(c) < 0x80; }) &&
           text.find("\\U+") == text.npos && text.find("\\M+") == text.npos;
}

}  // namespace

int heldSince(std::string_view kind, int from) {
    for (const Since& row : kKinds)
        if (row.kind == kind) return row.version;
    return from;
}

KindTraits::KindTraits(std::string_view kind)
    : attribute(kind == "ATTRIB" || kind == "ATTDEF"),
      dictionary(kind == "DICTIONARY" || kind == "ACDBDICTIONARYWDFLT"),
      dimension(kind == "DIMENSION"),
      dimensionStyle(kind == "DIMSTYLE"),
      layer(kind == "LAYER"),
      linetype(kind == "LTYPE") {}

std::string RecordTranslator::text(std::string_view raw) const {
    return sameText_ || isSameEverywhere(raw) ? std::string(raw) : encodeText(decodeText(raw, from_), to_);
}

void RecordTranslator::value(GroupWriter& writer, const Group& group) const {
    const ValueKind kind = valueKind(group.code);
    if (kind == ValueKind::text) {
        sameText_ || isSameEverywhere(group.value) ? writer.text(group.code, group.value)
                                                   : writer.text(group.code, text(group.value));
        return;
    }
    if (!from_.binary && !to_.binary) {
        writer.text(group.code, group.value);  // to the last digit
        return;
    }
    switch (kind) {
        case ValueKind::real:
            writer.real(group.code, groupReal(group, from_.binary).value_or(0));
            return;
        case ValueKind::handle:
            writer.text(group.code, group.value);
            return;
        case ValueKind::chunk: {
            std::string bytes;
            if (from_.binary) bytes = group.value;
            for (std::size_t i = 0; !from_.binary && i + 1 < group.value.size(); i += 2)
                bytes.push_back(
                    static_cast<char>(base::hexValue(group.value[i]) << 4 | base::hexValue(group.value[i + 1])));
            if (to_.binary) {
                std::string head;
                GroupWriter(head, to_).text(group.code, "");
                head.back() = static_cast<char>(bytes.size());  // the count stands where a text would end
                writer.raw(head);
                writer.raw(bytes);
                return;
            }
            std::string digits;
            for (const char c : bytes) {
                digits.push_back(base::kHexDigits[static_cast<unsigned char>(c) >> 4]);
                digits.push_back(base::kHexDigits[c & 15]);
            }
            writer.text(group.code, digits);
            return;
        }
        default:
            writer.integer(group.code, groupInteger(group, from_.binary).value_or(0));
            return;
    }
}

bool RecordTranslator::isHeld(std::string_view kind, bool inEntityZone, const Group& group) const {
    if (to_.version < version::r13 && !isOfR12(group.code)) return false;
    if (to_.version >= from_.version) return true;
    for (const GroupSince& row : kGroups)
        if (row.code == group.code && row.version > to_.version && row.kind == (inEntityZone ? kEntityZone : kind))
            return false;
    return true;
}

void RecordTranslator::extended(GroupWriter& writer, const Group& group, const RecordLinks& links) const {
    if (group.code == kHandleInData)
        writer.handle(1005, links.object(parseHandle(group.value)));
    else
        value(writer, group);
}

std::string RecordTranslator::extendedData(std::string_view bytes, const RecordLinks& links) const {
    std::string out;
    GroupWriter writer(out, to_);
    for (RecordWalk walk(GroupCursor(bytes, from_)); walk.next();)
        if (walk.part() == RecordPart::extendedData) extended(writer, walk.group(), links);
    return out;
}

// One record on its way: its parts are put together in the order in which files have them.
class RecordTranslator::Run {
  public:
    explicit Run(const RecordTranslator& translator) : t_(translator) {}

    std::string_view translate(std::string_view bytes, const KindTraits& kind, bool isEntity,
                               const RecordLinks& links) {
        traits_ = &kind;
        links_ = &links;
        isEntity_ = isEntity;
        addsMarkers_ = !t_.from_.hasMarkers() && t_.to_.hasMarkers();
        cutOff_.clear();
        inEntityZone_ = isMarked_ = hasContent_ = isCut_ = isPictureCut_ = inRows_ = isTagSeen_ = false;
        flags_ = 0;
        pieces_.clear();
        for (std::string* const text : {&controls_, &control_, &body_, &name_, &extended_, &out_}) text->clear();
        for (RecordWalk walk(GroupCursor(bytes, t_.from_)); walk.next();) part(walk);
        GroupWriter writer(out_, t_.to_);
        writer.text(0, kind_);
        if (links_->handle) writer.handle(traits_->dimensionStyle ? 105 : 5, links_->handle);
        out_ += controls_;
        if (links_->owner && t_.to_.version >= version::v2000) writer.handle(330, links_->owner);
        if (addsMarkers_ && !isMarked_)
            spread(writer);
        else
            out_ += body_;
        return out_ += extended_;
    }

  private:
    template <class Walk>
    void part(const Walk& walk) {
        const Group& group = walk.group();
        switch (walk.part()) {
            case RecordPart::name:
                kind_ = group.value;
                break;
            case RecordPart::handle:
                break;
            case RecordPart::marker:
                flushName();
                isMarked_ = true;
                isCut_ = group.code == 101 && t_.to_.version < version::v2018;
                inEntityZone_ = group.value == kEntityZone;
                if (t_.to_.hasMarkers() && !isCut_) GroupWriter(body_, t_.to_).text(group.code, group.value);
                break;
            case RecordPart::controlBegin:
                control_.clear();
                hasContent_ = false;
                GroupWriter(control_, t_.to_).text(102, group.value);
                break;
            case RecordPart::inControl:
                inControl(walk.control(), group);
                break;
            case RecordPart::controlEnd:
                GroupWriter(control_, t_.to_).text(102, group.value);
                if (hasContent_ && t_.to_.hasMarkers()) (walk.inHead() ? controls_ : body_) += control_;
                break;
            case RecordPart::field:
                if (!isCut_) field(walk.inHead(), group);
                break;
            case RecordPart::comment:
                break;
            case RecordPart::extendedData: {
                flushName();
                GroupWriter writer(extended_, t_.to_);
                t_.extended(writer, group, *links_);
                break;
            }
        }
    }

    void inControl(ControlString control, const Group& group) {
        GroupWriter writer(control_, t_.to_);
        if (isReferenceCode(group.code)) {
            const std::uint64_t handle = links_->object(parseHandle(group.value));
            if (handle == 0) return;
            writer.handle(group.code, handle);
        } else if (control == ControlString::other) {
            t_.value(writer, group);
        } else {
            return;
        }
        hasContent_ = true;
    }

    // A long text is several groups, 3 and then 1, and cut anywhere, also within a character of two bytes: its first
    // one goes with the next group then.
    std::string piece(const Group& group) {
        std::string raw = group.code == 1 || group.code == 3 ? std::exchange(cutOff_, {}) : std::string();
        raw += group.value;
        if (group.code == 1 || t_.sameText_ || t_.from_.utf8() || isSameEverywhere(raw)) return t_.text(raw);
        constexpr wchar_t kUnknown = 0xFFFD;
        const auto endsInUnknown = [&](std::string_view bytes) {
            return t_.from_.codePage->decode(bytes).ends_with(kUnknown);
        };
        if (endsInUnknown(raw) && !endsInUnknown(std::string_view(raw).substr(0, raw.size() - 1))) {
            cutOff_ = raw.back();
            raw.pop_back();
        }
        return t_.text(raw);
    }

    void field(bool inHead, const Group& group) {
        const bool marked = t_.from_.hasMarkers() || isMarked_;
        // Blocks say themselves where they are.
        if (isEntity_ && (group.code == 67 || group.code == 410) && (!marked || inEntityZone_)) return;
        if (inHead && group.code == 330) return;
        // The version of an attribute's own record stands before its tag, its lock behind that.
        if (traits_->attribute) {
            isTagSeen_ = isTagSeen_ || group.code == 2;
            if (group.code == 280 && !isTagSeen_ && t_.to_.version < version::v2010) return;
        }
        if (traits_->dimensionStyle && arrow(group)) return;
        if (!t_.isHeld(kind_, inEntityZone_, group)) {
            isPictureCut_ = isPictureCut_ || group.code == 160;
            return;
        }
        if (isPictureCut_ && inEntityZone_ && group.code == 310) return;
        GroupWriter writer(body_, t_.to_);
        if (traits_->linetype && group.code == 74 && t_.to_.version < version::r13) return;
        if (traits_->dictionary && group.code == 3) {
            flushName();
            GroupWriter name(name_, t_.to_);
            t_.value(name, group);
            return;
        }
        if (isReferenceCode(group.code)) {
            const std::uint64_t old = parseHandle(group.value);
            const std::uint64_t now = links_->object(old);
            const bool isEntry = !name_.empty();
            if (now == 0 && (isEntry || inEntityZone_ || traits_->layer)) {
                name_.clear();
                return;
            }
            flushName();
            writer.handle(group.code, now);
            return;
        }
        if (traits_->dimension && group.code == 70 && t_.to_.version < version::r13) {
            constexpr std::int64_t kOwnBlock = 32;
            writer.integer(70, groupInteger(group, t_.from_.binary).value_or(0) & ~kOwnBlock);
            return;
        }
        if (valueKind(group.code) == ValueKind::text || (traits_->dimensionStyle && group.code == 5))
            if (const std::string* const renamed = links_->renamed(group.code, group.value)) {
                if (!renamed->empty()) writer.text(group.code, *renamed);
                noteForSpread(group);
                return;
            }
        if (valueKind(group.code) == ValueKind::text && group.code <= 3)
            writer.text(group.code, piece(group));
        else if (traits_->dimensionStyle && group.code == 5)
            writer.text(group.code, t_.text(group.value));  // an arrow's name, where other kinds have their handle
        else
            t_.value(writer, group);
        noteForSpread(group);
        if (traits_->linetype && group.code == 49 && addsMarkers_) writer.integer(74, 0), noteForSpread(group);
    }

    // False for other groups, and where both versions have them alike.
    bool arrow(const Group& group) {
        const bool intoNew = t_.to_.version >= version::v2000;
        if (!(intoNew ? isArrowName(group.code) : isArrowPointer(group.code))) return false;
        GroupWriter writer(body_, t_.to_);
        if (intoNew) {
            if (const std::uint64_t block = links_->block(group.value))
                writer.handle(group.code - kArrowName + kArrowPointer, block);
        } else if (const std::string name = links_->blockName(parseHandle(group.value)); !name.empty()) {
            writer.text(group.code - kArrowPointer + kArrowName, name);
        }
        noteForSpread(group);
        return true;
    }

    // The name of an entry waits for its object.
    void flushName() {
        body_ += name_;
        name_.clear();
    }

    struct Piece {
        int code;
        std::size_t begin, end;
    };
    void noteForSpread(const Group& group) {
        if (!addsMarkers_) return;
        const std::size_t begin = pieces_.empty() ? 0 : pieces_.back().end;
        pieces_.push_back({group.code, begin, body_.size()});
        if (group.code == 70 && kind_ != "INSERT") flags_ = groupInteger(group, t_.from_.binary).value_or(0);
        if (kind_ == "INSERT" && (group.code == 70 || group.code == 71))
            inRows_ = inRows_ || groupInteger(group, t_.from_.binary).value_or(1) > 1;
    }

    void spread(GroupWriter& writer) {
        const std::vector<OldZone> zones = zonesOf(kind_, flags_, inRows_);
        const auto zoneOf = [&](int code) {
            for (std::size_t i = 0; i + 1 < zones.size(); ++i)
                if (std::ranges::find(zones[i].codes, code) != zones[i].codes.end()) return i;
            return zones.size() - 1;
        };
        for (std::size_t i = 0; i < zones.size(); ++i) {
            writer.text(100, zones[i].marker);
            for (const Piece& piece : pieces_)
                if (zoneOf(piece.code) == i)
                    writer.raw(std::string_view(body_).substr(piece.begin, piece.end - piece.begin));
        }
    }

    const RecordTranslator& t_;
    const KindTraits* traits_ = nullptr;
    const RecordLinks* links_ = nullptr;
    std::string cutOff_;  // of the piece of a text before: the first byte of a character
    bool isEntity_ = false, addsMarkers_ = false, inEntityZone_ = false;
    std::string_view kind_;
    std::string controls_, control_, body_, name_, extended_, out_;
    std::vector<Piece> pieces_;
    std::int64_t flags_ = 0;
    bool isMarked_ = false;  // files of R12 may have markers too
    bool hasContent_ = false, isCut_ = false, isPictureCut_ = false, inRows_ = false, isTagSeen_ = false;
};

RecordTranslator::RecordTranslator(const FileFormat& from, const FileFormat& to)
    : from_(from),
      to_(to),
      sameText_(from.utf8() == to.utf8() && (from.utf8() || from.codePage == to.codePage)),
      run_(std::make_unique<Run>(*this)) {}
RecordTranslator::~RecordTranslator() = default;

std::string_view RecordTranslator::record(std::string_view bytes, const KindTraits& kind, bool isEntity,
                                          const RecordLinks& links) {
    return run_->translate(bytes, kind, isEntity, links);
}

}  // namespace drawingdb
