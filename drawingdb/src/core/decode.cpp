// Reading a record into an object, as its class's description says.
#include <bitset>

#include "drawingdb/src/core/members.h"
#include "drawingdb/src/core/record_walk.h"
#include "drawingdb/src/geometry/curve_math.h"

namespace drawingdb {

namespace {

using Fault = std::function<void(const Group&, const char*)>;

// What a reading was like.
struct Findings {
    bool hasMarkers = false;  // the reading of a record without zones stops at the first
    bool hasStrays = false;   // groups that mean nothing in their zone
    ZoneSet marked = 0;       // zones of which a marker stands there
};

template <class Cursor>
class Reading {
  public:
    Reading(Cursor cursor, OdDbObject& object, const ClassDescription& description, const FileFormat& format,
            const Fault& fault)
        : walk_(cursor), object_(object), description_(description), format_(format), fault_(fault) {}

    // Begins in the head, or in kNoMarkers. `lacking`: the zones whose markers do stand in a record that lacks others.
    Findings run(int zone, const ZoneSet* lacking) {
        zone_ = zone;
        while (walk_.next()) {
            if (chunkField_ >= 0 && !goesOn(fieldOf(chunkField_), walk_.group())) endChunks();
            switch (walk_.part()) {
                case RecordPart::field:
                    if (zone_ != kUnknownZone) take(walk_.group(), lacking);
                    break;
                case RecordPart::marker:
                    findings_.hasMarkers = true;
                    if (zone_ == kNoMarkers) return findings_;
                    enterZone(walk_.group());
                    break;
                case RecordPart::inControl:
                    takeControl(walk_.group());
                    break;
                case RecordPart::extendedData:
                    ObjectAccess::hasFileXData(object_) = true;
                    endChunks();
                    return findings_;
                default:
                    break;
            }
        }
        endChunks();
        return findings_;
    }

  private:
    const FieldSpec& fieldOf(int field) const { return description_.fields[static_cast<std::size_t>(field)]; }
    const Zone& zoneOf(int zone) const { return description_.zones[static_cast<std::size_t>(zone)]; }

    void enterZone(const Group& group) {
        zone_ = description_.findZone(group.value, std::max(zone_, 0) + 1, group.code == 101);
        if (zone_ < 0) {
            zone_ = kUnknownZone;
            return;
        }
        findings_.marked |= zoneBit(zone_);
        after_ = zoneOf(zone_).first - 1;
        if (zoneOf(zone_).embedded) makeHolder(object_, zoneOf(zone_));
    }

    void takeControl(const Group& group) {
        if (walk_.control() == ControlString::reactors && group.code == 330)
            ObjectAccess::reactors(object_).push_back({parseHandle(group.value)});
        else if (walk_.control() == ControlString::dictionary && group.code == 360)
            ObjectAccess::extensionDictionary(object_).handle = parseHandle(group.value);
    }

    void take(const Group& group, const ZoneSet* lacking) {
        int zone = zone_;
        const int found = lacking ? description_.meaningBeyond(zone, group.code, after_, *lacking)
                                  : description_.meaningOf(zone, group.code, after_);
        if (found < 0) {
            if (found == ClassDescription::kRun)
                ObjectAccess::readRunGroup(object_, group, zone);
            else
                findings_.hasStrays = true;
            return;
        }
        const FieldSpec& field = fieldOf(found);
        char* base = holder(object_, description_.zones[field.zone]);
        const bool isFirst = !seen_[static_cast<std::size_t>(found)];
        seen_.set(static_cast<std::size_t>(found));
        if (field.kind == FieldKind::chunkedText) {
            takeChunk(found, isFirst, group, member<FileText>(base, field));
        } else if (isFirst) {
            after_ = found;
            read(field, group, base);
        }
    }

    void takeChunk(int found, bool isFirst, const Group& group, FileText& text) {
        if (chunkField_ != found) {
            endChunks();
            if (!isFirst) return;
            chunkField_ = found;
            text.raw = group.value;
            text.text.reset();
        }
        chunks_.append(group.value);
    }

    void endChunks() {
        if (chunkField_ < 0) return;
        const FieldSpec& field = fieldOf(chunkField_);
        FileText& text = member<FileText>(holder(object_, description_.zones[field.zone]), field);
        if (!chunks_.empty() && chunks_.size() != text.raw.size())
            text.text = std::make_unique<std::wstring>(decodeText(chunks_, format_));
        chunkField_ = -1;
        chunks_.clear();
    }

    void read(const FieldSpec& field, const Group& group, char* base) {
        switch (field.kind) {
            case FieldKind::text:
                member<FileText>(base, field).raw = group.value;
                member<FileText>(base, field).text.reset();
                break;
            case FieldKind::real:
            case FieldKind::angle:
                if (const auto value = groupReal(group, format_.binary))
                    member<double>(base, field) = field.kind == FieldKind::angle ? *value * kDegree : *value;
                else if (fault_)
                    fault_(group, "a number");
                break;
            case FieldKind::int16:
            case FieldKind::int32: {
                const auto value = groupInteger(group, format_.binary);
                if (!value) {
                    if (fault_) fault_(group, "a whole number");
                } else if (field.kind == FieldKind::int16) {
                    member<std::int16_t>(base, field) = static_cast<std::int16_t>(*value);
                } else {
                    member<std::int32_t>(base, field) = static_cast<std::int32_t>(*value);
                }
                break;
            }
            case FieldKind::handle:
                member<HandleRef>(base, field).handle = parseHandle(group.value);
                break;
            case FieldKind::chunkedText:
            case FieldKind::run:
                break;
        }
    }

    RecordWalk<Cursor> walk_;
    OdDbObject& object_;
    const ClassDescription& description_;
    const FileFormat& format_;
    const Fault& fault_;
    std::bitset<kMaxFields> seen_;
    Findings findings_;
    std::string chunks_;
    int zone_ = 0;
    int after_ = -1;
    int chunkField_ = -1;
};

}  // namespace

void decodeObject(OdDbObject& object, const ClassDescription& description, std::string_view bytes,
                  const FileFormat& format, const Fault& fault) {
    const auto decode = [&](int zone, const ZoneSet* lacking) {
        if (format.binary)
            return Reading(BinaryGroupCursor(bytes, format.wideCodes), object, description, format, fault)
                .run(zone, lacking);
        return Reading(AsciiGroupCursor(bytes), object, description, format, fault).run(zone, lacking);
    };
    // Nearly every record of a file with markers has some, and one of an old file has none. What turns out otherwise
    // (drawings without a header have markers too) is read again.
    bool& without = ObjectAccess::withoutMarkers(object);
    const int likely = format.hasMarkers() ? 0 : kNoMarkers;
    Findings findings = decode(likely, nullptr);
    without = !findings.hasMarkers;
    if (without != (likely == kNoMarkers)) {
        resetObject(object, description);
        findings = decode(without ? kNoMarkers : 0, nullptr);
    }
    if (findings.hasMarkers && findings.hasStrays && (description.expectedZones() & ~findings.marked) != 0) {
        resetObject(object, description);
        decode(0, &findings.marked);
    }
    ObjectAccess::afterDecode(object);
}

void resetObject(OdDbObject& object, const ClassDescription& description) {
    ObjectAccess::clearRuns(object);
    ObjectAccess::reactors(object).clear();
    ObjectAccess::extensionDictionary(object) = {};
    ObjectAccess::forgetXData(object);
    ObjectAccess::runsChanged(object) = false;
    ObjectAccess::reactorsChanged(object) = false;
    for (const Zone& zone : description.zones)
        if (zone.embedded)
            reinterpret_cast<OdSmartPtr<OdDbMText>*>(reinterpret_cast<char*>(&object) + zone.pointer)->reset();
    for (const FieldSpec& field : description.fields) {
        char* base = holder(object, description.zones[field.zone]);
        if (!base) continue;
        switch (field.kind) {
            case FieldKind::text:
            case FieldKind::chunkedText:
                member<FileText>(base, field) = {};
                break;
            case FieldKind::real:
            case FieldKind::angle:
                member<double>(base, field) = field.defaultReal;
                break;
            case FieldKind::int16:
                member<std::int16_t>(base, field) = static_cast<std::int16_t>(field.defaultInteger);
                break;
            case FieldKind::int32:
                member<std::int32_t>(base, field) = static_cast<std::int32_t>(field.defaultInteger);
                break;
            case FieldKind::handle:
                member<HandleRef>(base, field) = {};
                break;
            case FieldKind::run:
                break;
        }
    }
}

}  // namespace drawingdb
