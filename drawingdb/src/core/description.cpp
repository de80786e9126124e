#include "drawingdb/src/core/description.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstring>

#include "drawingdb/mtext.h"
#include "drawingdb/src/core/object_access.h"
#include "drawingdb/src/geometry/curve_math.h"

namespace drawingdb {

// ---------------------------------------------------------------------------------------------------------------------
// Building

Describer::Describer(ClassDescription& out, OdDbObject& prototype)
    : out_(out), prototype_(prototype), base_(reinterpret_cast<const char*>(&prototype)) {
    out_.zones.emplace_back();
}

void Describer::zone(const char* marker, const char* alias) {
    out_.zones.back().last = static_cast<std::uint16_t>(out_.fields.size());
    Zone& zone = out_.zones.emplace_back();
    zone.marker = marker;
    zone.alias = alias;
    zone.first = static_cast<std::uint16_t>(out_.fields.size());
    base_ = reinterpret_cast<const char*>(&prototype_);
    if (std::strcmp(marker, "AcDbEntity") == 0) out_.entity = true;
}

void Describer::optionalZone(const char* marker) {
    zone(marker);
    out_.zones.back().optional = true;
}

void Describer::embeddedZone(const char* name, OdSmartPtr<OdDbMText>& pointer) {
    zone(name);
    Zone& zone = out_.zones.back();
    zone.embedded = true;
    zone.since = 1032;
    zone.pointer = reinterpret_cast<const char*>(&pointer) - base_;
    base_ = reinterpret_cast<const char*>(static_cast<const OdDbObject*>(pointer.get()));
}

FieldSpec& Describer::add(int code, FieldKind kind, const void* member) {
    FieldSpec& field = out_.fields.emplace_back();
    field.code = static_cast<std::int16_t>(code);
    field.kind = kind;
    field.zone = static_cast<std::uint8_t>(out_.zones.size() - 1);
    if (member) field.offset = static_cast<std::uint16_t>(static_cast<const char*>(member) - base_);
    field.required = std::exchange(required_, false);
    field.since = std::exchange(since_, std::uint16_t{0});
    return field;
}

void Describer::text(int code, FileText& member, const char* fallback) {
    add(code, FieldKind::text, &member).defaultText = fallback;
}
void Describer::chunkedText(int chunkCode, int lastCode, FileText& member) {
    add(lastCode, FieldKind::chunkedText, &member).chunkCode = static_cast<std::int16_t>(chunkCode);
}
void Describer::real(int code, double& member) { add(code, FieldKind::real, &member).defaultReal = member; }
void Describer::angle(int code, double& member) { add(code, FieldKind::angle, &member).defaultReal = member; }
void Describer::int16(int code, std::int16_t& member) { add(code, FieldKind::int16, &member).defaultInteger = member; }
void Describer::int32(int code, std::int32_t& member) { add(code, FieldKind::int32, &member).defaultInteger = member; }
void Describer::handle(int code, HandleRef& member) { add(code, FieldKind::handle, &member); }

void Describer::reals(int code, const double* member, int count) {
    const bool needed = required_;
    const std::uint16_t since = since_;
    for (int part = 0; part < count; ++part) {
        required_ = needed;
        since_ = since;
        FieldSpec& field = add(code + 10 * part, FieldKind::real, member + part);
        field.defaultReal = member[part];
        field.part = static_cast<std::uint8_t>(part);
        field.parts = static_cast<std::uint8_t>(count);
    }
}
void Describer::point(int code, OdGePoint3d& member) { reals(code, &member.x, 3); }
void Describer::vector(int code, OdGeVector3d& member) { reals(code, &member.x, 3); }
void Describer::point2(int code, OdGePoint3d& member) { reals(code, &member.x, 2); }

void Describer::run(std::vector<int> codes) {
    add(codes.empty() ? -1 : codes.front(), FieldKind::run, nullptr);
    if (codes.empty()) codes.push_back(-1);
    out_.zones.back().runCodes = std::move(codes);
}

int ClassDescription::findZone(std::string_view marker, int from, bool embedded) const {
    for (std::size_t i = static_cast<std::size_t>(std::max(from, 1)); i < zones.size(); ++i)
        if (zones[i].embedded == embedded &&
            (marker == zones[i].marker || (!zones[i].alias.empty() && marker == zones[i].alias)))
            return static_cast<int>(i);
    return -1;
}

void ClassDescription::finish() {
    zones.back().last = static_cast<std::uint16_t>(fields.size());
    std::bitset<kCodes> occurring;
    const auto note = [&](int code) {
        if (code >= 0 && code < kCodes) occurring.set(static_cast<std::size_t>(code));
    };
    for (const FieldSpec& field : fields) {
        note(field.code);
        note(field.chunkCode);
    }
    for (const Zone& zone : zones)
        for (const int code : zone.runCodes) code == -1 ? (void)occurring.set() : note(code);
    const int count = static_cast<int>(zones.size());
    meanings_.assign(static_cast<std::size_t>(count + 1) * kCodes, kNoField);
    for (int zone = -1; zone < count; ++zone) {
        for (int code = 0; code < kCodes; ++code) {
            if (!occurring[static_cast<std::size_t>(code)]) continue;
            const int first = findMeaning(zone, code, -1);
            const bool several = first >= 0 && findMeaning(zone, code, first) != first;
            meanings_[static_cast<std::size_t>(zone + 1) * kCodes + static_cast<std::size_t>(code)] =
                static_cast<std::int16_t>(several ? kSeveral : first);
        }
    }
}

int ClassDescription::findMeaning(int zone, int code, int after) const {
    if (inRun(zone, code)) return kRun;
    const auto matches = [&](int i) {
        const FieldSpec& field = fields[static_cast<std::size_t>(i)];
        if (field.kind == FieldKind::run) return false;
        if (zone < 0 && zones[field.zone].embedded) return false;
        return field.code == code || (field.kind == FieldKind::chunkedText && field.chunkCode == code);
    };
    const int first = zone < 0 ? 0 : zones[static_cast<std::size_t>(zone)].first;
    const int last = zone < 0 ? static_cast<int>(fields.size()) : zones[static_cast<std::size_t>(zone)].last;
    const int start = std::clamp(after + 1, first, last);
    for (int i = start; i < last; ++i)
        if (matches(i)) return i;
    // A chunked text goes on with the code it has begun with.
    for (int i = first; i < start; ++i)
        if (matches(i)) return i;
    return kNoField;
}

bool ClassDescription::inRun(int zone, int code) const {
    const auto holds = [code](const Zone& z) {
        for (const int c : z.runCodes)
            if (c == -1 || c == code) return true;
        return false;
    };
    if (zone >= 0) return holds(zones[static_cast<std::size_t>(zone)]);
    return std::any_of(zones.begin(), zones.end(), holds);
}

// ---------------------------------------------------------------------------------------------------------------------
// Members

namespace {

constexpr std::size_t kMaxFields = 192;
constexpr int kUnknownZone = -2;
constexpr int kNoMarkers = -1;

// Whether a chunked text goes on with a group.
bool goesOn(const FieldSpec& field, const Group& group) {
    return group.code == field.code || group.code == field.chunkCode || group.code == 999;
}

// The object that holds a zone's fields: the object itself, or the embedded one (null when there is none).
char* holder(const OdDbObject& object, const Zone& zone) {
    char* base = reinterpret_cast<char*>(const_cast<OdDbObject*>(&object));
    if (!zone.embedded) return base;
    auto& pointer = *reinterpret_cast<OdSmartPtr<OdDbMText>*>(base + zone.pointer);
    return reinterpret_cast<char*>(static_cast<OdDbObject*>(pointer.get()));
}
char* makeHolder(OdDbObject& object, const Zone& zone) {
    auto& pointer = *reinterpret_cast<OdSmartPtr<OdDbMText>*>(reinterpret_cast<char*>(&object) + zone.pointer);
    if (!pointer) pointer = OdDbMText::createObject();
    return reinterpret_cast<char*>(static_cast<OdDbObject*>(pointer.get()));
}

template <class T>
T& member(char* base, const FieldSpec& field) {
    return *reinterpret_cast<T*>(base + field.offset);
}

bool isEmpty(const FileText& text) { return text.text ? text.text->empty() : text.raw.empty(); }

bool isDefault(char* base, const FieldSpec& field) {
    switch (field.kind) {
        case FieldKind::text: {
            const FileText& text = member<FileText>(base, field);
            if (isEmpty(text)) return true;
            if (text.text)
                return std::equal(text.text->begin(), text.text->end(), field.defaultText.begin(),
                                  field.defaultText.end(),
                                  [](wchar_t a, char b) { return a == static_cast<wchar_t>(b); });
            return text.raw == field.defaultText;
        }
        case FieldKind::chunkedText:
            return isEmpty(member<FileText>(base, field));
        case FieldKind::real:
        case FieldKind::angle:
            return member<double>(base, field) == field.defaultReal;
        case FieldKind::int16:
            return member<std::int16_t>(base, field) == field.defaultInteger;
        case FieldKind::int32:
            return member<std::int32_t>(base, field) == field.defaultInteger;
        case FieldKind::handle:
            return member<HandleRef>(base, field).handle == 0;
        case FieldKind::run:
            return true;
    }
    return true;
}

// Whether the member is what `group` says.
bool sameValue(char* base, const FieldSpec& field, const Group& group, const FileFormat& format) {
    switch (field.kind) {
        case FieldKind::text: {
            const FileText& text = member<FileText>(base, field);
            if (!text.text) return text.raw == group.value;
            return *text.text == decodeText(group.value, format);
        }
        case FieldKind::real:
            return groupReal(group, format.binary).value_or(field.defaultReal) == member<double>(base, field);
        case FieldKind::angle: {
            const auto value = groupReal(group, format.binary);
            return (value ? *value * kDegree : field.defaultReal) == member<double>(base, field);
        }
        case FieldKind::int16:
            return static_cast<std::int16_t>(groupInteger(group, format.binary).value_or(field.defaultInteger)) ==
                   member<std::int16_t>(base, field);
        case FieldKind::int32:
            return static_cast<std::int32_t>(groupInteger(group, format.binary).value_or(field.defaultInteger)) ==
                   member<std::int32_t>(base, field);
        case FieldKind::handle:
            return parseHandle(group.value) == member<HandleRef>(base, field).handle;
        case FieldKind::chunkedText:
        case FieldKind::run:
            break;
    }
    return true;
}

constexpr std::size_t kChunk = 250;

// Where a text of bytes may be cut at the latest, `limit` at most: not inside a character or an escape sequence.
std::size_t cutPlace(std::string_view text, std::size_t limit, const FileFormat& format) {
    if (text.size() <= limit) return text.size();
    std::size_t cut = limit;
    if (format.utf8())
        while (cut > 1 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) --cut;
    const std::size_t escape = text.find_last_of("\\^", cut - 1);
    if (escape != std::string_view::npos && escape > 0 && cut - escape < 8) cut = escape;
    return cut;
}

void writeChunks(GroupWriter& writer, const FieldSpec& field, const FileText& text) {
    std::string encoded = text.text ? encodeText(*text.text, writer.format()) : std::string(text.raw);
    std::string_view rest = encoded;
    while (rest.size() > kChunk) {
        const std::size_t cut = cutPlace(rest, kChunk, writer.format());
        writer.text(field.chunkCode, rest.substr(0, cut));
        rest.remove_prefix(cut);
    }
    writer.text(field.code, rest);
}

void writeField(const OdDbObject& object, char* base, const FieldSpec& field, GroupWriter& writer) {
    switch (field.kind) {
        case FieldKind::text: {
            const FileText& text = member<FileText>(base, field);
            if (isEmpty(text))
                writer.text(field.code, field.defaultText);
            else if (text.text)
                writer.wide(field.code, *text.text);
            else
                writer.text(field.code, text.raw);
            return;
        }
        case FieldKind::chunkedText:
            writeChunks(writer, field, member<FileText>(base, field));
            return;
        case FieldKind::real:
            writer.real(field.code, member<double>(base, field));
            return;
        case FieldKind::angle:
            writer.real(field.code, member<double>(base, field) / kDegree);
            return;
        case FieldKind::int16:
            writer.integer(field.code, member<std::int16_t>(base, field));
            return;
        case FieldKind::int32:
            writer.integer(field.code, member<std::int32_t>(base, field));
            return;
        case FieldKind::handle:
            writer.handle(field.code, member<HandleRef>(base, field).handle);
            return;
        case FieldKind::run:
            ObjectAccess::writeRun(object, writer, field.zone);
            return;
    }
}

bool knownTo(const FieldSpec& field, const FileFormat& format) { return format.version >= field.since; }

// Whether a field has to stand in a record that is written anew; a point stands there whole or not at all. `field` is
// its first part.
bool wanted(char* base, const FieldSpec& field, const FileFormat& format) {
    if (!knownTo(field, format)) return false;
    if (field.required || field.kind == FieldKind::run) return true;
    const auto* const first = &field;
    return std::any_of(first, first + field.parts, [base](const FieldSpec& part) { return !isDefault(base, part); });
}

void writeZoneAnew(const OdDbObject& object, const ClassDescription& description, const Zone& zone, GroupWriter& writer,
                   bool markers) {
    char* base = holder(object, zone);
    if (!base || writer.format().version < zone.since) return;
    if (zone.optional) {
        bool any = false;
        for (int i = zone.first; i < zone.last; ++i)
            any = any || !isDefault(base, description.fields[static_cast<std::size_t>(i)]);
        if (!any && markers) return;
    }
    if (zone.embedded)
        writer.text(101, zone.marker);
    else if (!zone.marker.empty() && markers)
        writer.text(100, zone.marker);
    bool isWanted = false;
    for (int i = zone.first; i < zone.last; ++i) {
        const FieldSpec& field = description.fields[static_cast<std::size_t>(i)];
        if (field.part == 0) isWanted = wanted(base, field, writer.format());
        if (isWanted) writeField(object, base, field, writer);
    }
}

void writeReactors(const OdDbObject& object, GroupWriter& writer) {
    const auto& reactors = ObjectAccess::reactors(object);
    if (reactors.empty()) return;
    writer.text(102, "{ACAD_REACTORS");
    for (const HandleRef& reactor : reactors) writer.handle(330, reactor.handle);
    writer.text(102, "}");
}

void writeExtensionDictionary(const OdDbObject& object, GroupWriter& writer) {
    const std::uint64_t handle = ObjectAccess::extensionDictionary(object).handle;
    if (!handle) return;
    writer.text(102, "{ACAD_XDICTIONARY");
    writer.handle(360, handle);
    writer.text(102, "}");
}

void writeGroup(const OdDbGroup& group, GroupWriter& writer) {
    switch (valueKind(group.code)) {
        case ValueKind::real:
            if ((group.code >= 1010 && group.code <= 1013) || (group.code >= 10 && group.code <= 18) ||
                (group.code >= 110 && group.code <= 112) || group.code == 210)
                writer.point(group.code, group.point[0], group.point[1], group.point[2]);
            else
                writer.real(group.code, group.real);
            return;
        case ValueKind::int8:
        case ValueKind::int16:
        case ValueKind::int32:
        case ValueKind::int64:
            writer.integer(group.code, group.integer);
            return;
        case ValueKind::text:
        case ValueKind::chunk:
        case ValueKind::handle:
            writer.wide(group.code, group.text);
            return;
    }
}

// Writes the applications of changed extended data that are not merely removed.
void writeXData(const OdDbObject& object, GroupWriter& writer) {
    const auto* groups = ObjectAccess::newXData(object);
    if (!groups) return;
    for (std::size_t i = 0; i < groups->size(); ++i) {
        const bool head = (*groups)[i].code == 1001;
        const bool alone = head && (i + 1 == groups->size() || (*groups)[i + 1].code == 1001);
        if (!alone) writeGroup((*groups)[i], writer);
    }
}

bool isHandleCode(int code, std::string_view recordType) { return code == (recordType == "DIMSTYLE" ? 105 : 5); }

// Skips from behind a "{..." group 102 to behind its "}"; gives what `each` wants to see in between.
template <class Cursor, class Each>
void walkControlString(Cursor& cursor, Each each) {
    Group group;
    while (cursor.next(group)) {
        if (group.code == 102) return;
        each(group);
    }
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------------------
// Reading

namespace {

// Reads the fields, beginning in `zone`. True when the record has markers; the reading without zones stops there.
template <class Cursor>
bool decodeFrom(Cursor cursor, int zone, OdDbObject& object, const ClassDescription& description,
                const FileFormat& format, const std::function<void(const Group&, const char*)>& fault) {
    Group group;
    std::bitset<kMaxFields> seen;
    bool markers = false;
    int after = -1;
    int chunkField = -1;
    std::string chunks;
    if (!cursor.next(group)) return true;
    const std::string_view recordType = group.value;
    bool handleSeen = false;
    const auto endChunks = [&] {
        if (chunkField < 0) return;
        const FieldSpec& field = description.fields[static_cast<std::size_t>(chunkField)];
        char* base = holder(object, description.zones[field.zone]);
        FileText& text = member<FileText>(base, field);
        if (!chunks.empty() && chunks.size() != text.raw.size())
            text.text = std::make_unique<std::wstring>(decodeText(chunks, format));
        chunkField = -1;
        chunks.clear();
    };

    while (cursor.next(group)) {
        if (chunkField >= 0 && !goesOn(description.fields[static_cast<std::size_t>(chunkField)], group)) endChunks();
        if (group.code == 100 || group.code == 101) {
            markers = true;
            if (zone == kNoMarkers) return true;
            const int found = description.findZone(group.value, std::max(zone, 0) + 1, group.code == 101);
            if (found < 0) {
                zone = kUnknownZone;
                continue;
            }
            zone = found;
            after = description.zones[static_cast<std::size_t>(zone)].first - 1;
            if (description.zones[static_cast<std::size_t>(zone)].embedded)
                makeHolder(object, description.zones[static_cast<std::size_t>(zone)]);
            continue;
        }
        if (group.code == 102) {
            if (group.value == "{ACAD_REACTORS") {
                walkControlString(
                    cursor,
                    [&](const Group& g) {
                        if (g.code == 330) ObjectAccess::reactors(object).push_back({parseHandle(g.value)});
                    });
            } else if (group.value == "{ACAD_XDICTIONARY") {
                walkControlString(
                    cursor,
                    [&](const Group& g) {
                        if (g.code == 360) ObjectAccess::extensionDictionary(object).handle = parseHandle(g.value);
                    });
            } else if (!group.value.empty() && group.value.front() == '{') {
                walkControlString(
                    cursor, [](const Group&) {});
            } else if (zone != kUnknownZone && description.meaningOf(zone, 102, after) == ClassDescription::kRun) {
                ObjectAccess::readRunGroup(object, group, zone);
            }
            continue;
        }
        if (group.code >= 1000) break;
        if (group.code == 999) continue;
        if (zone == kUnknownZone) continue;
        if (!handleSeen && isHandleCode(group.code, recordType) && zone <= 0) {
            handleSeen = true;
            continue;
        }
        const int found = description.meaningOf(zone, group.code, after);
        if (found == ClassDescription::kRun) ObjectAccess::readRunGroup(object, group, zone);
        if (found < 0) continue;
        const FieldSpec& field = description.fields[static_cast<std::size_t>(found)];
        char* base = holder(object, description.zones[field.zone]);
        if (field.kind == FieldKind::chunkedText) {
            if (chunkField != found) {
                endChunks();
                if (seen[static_cast<std::size_t>(found)]) continue;
                seen.set(static_cast<std::size_t>(found));
                chunkField = found;
                member<FileText>(base, field).raw = group.value;
                member<FileText>(base, field).text.reset();
            }
            chunks.append(group.value);
            continue;
        }
        if (seen[static_cast<std::size_t>(found)]) continue;
        seen.set(static_cast<std::size_t>(found));
        after = found;
        switch (field.kind) {
            case FieldKind::text:
                member<FileText>(base, field).raw = group.value;
                member<FileText>(base, field).text.reset();
                break;
            case FieldKind::real:
            case FieldKind::angle:
                if (const auto value = groupReal(group, format.binary))
                    member<double>(base, field) = field.kind == FieldKind::angle ? *value * kDegree : *value;
                else if (fault)
                    fault(group, "a number");
                break;
            case FieldKind::int16:
            case FieldKind::int32: {
                const auto value = groupInteger(group, format.binary);
                if (!value) {
                    if (fault) fault(group, "a whole number");
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
    endChunks();
    return markers;
}

}  // namespace

void decodeObject(OdDbObject& object, const ClassDescription& description, std::string_view bytes,
                  const FileFormat& format, const std::function<void(const Group&, const char*)>& fault) {
    // Nearly every record of a file with markers has some, and one of an old file has none. What turns out otherwise
    // (drawings without a header have markers too) is read again.
    bool& without = ObjectAccess::withoutMarkers(object);
    const int likely = format.hasMarkers() ? 0 : kNoMarkers;
    const auto decode = [&](int zone) {
        if (format.binary)
            return decodeFrom(BinaryGroupCursor(bytes, format.wideCodes), zone, object, description, format, fault);
        return decodeFrom(AsciiGroupCursor(bytes), zone, object, description, format, fault);
    };
    without = !decode(likely);
    if (without != (likely == kNoMarkers)) {
        resetObject(object, description);
        decode(without ? kNoMarkers : 0);
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

// ---------------------------------------------------------------------------------------------------------------------
// Writing

namespace {

void encodeAnew(const OdDbObject& object, const ClassDescription& description, const FileFormat& format,
                std::string& out) {
    GroupWriter writer(out, format);
    const std::string name = object.dxfName();
    writer.text(0, name);
    if (const auto handle = object.handle(); !handle.isNull())
        writer.handle(name == "DIMSTYLE" ? 105 : 5, handle.value());
    if (format.hasMarkers()) {
        writeExtensionDictionary(object, writer);
        writeReactors(object, writer);
    }
    for (const Zone& zone : description.zones) writeZoneAnew(object, description, zone, writer, format.hasMarkers());
    writeXData(object, writer);
}

// One old record being patched.
class Patch {
  public:
    Patch(const OdDbObject& object, const ClassDescription& description, std::string_view old, const FileFormat& format,
          std::string& out)
        : object_(object), description_(description), format_(format), writer_(out, format), old_(old) {
        place_.fill(-1);
        zoneEnd_.assign(description.zones.size(), -1);
    }

    void run() {
        classify();
        findMissing();
        emit();
    }

  private:
    enum class Do : std::uint8_t { keep, drop, field, chunks, run, handle, reactors, dictionary };
    struct Item {
        Group group;
        Do action = Do::keep;
        std::int16_t field = -1;
    };
    struct Insert {
        int after;
        int field;  // or -1 - zone for a whole zone, or one of the specials
    };
    static constexpr int kReactors = 10000, kDictionary = 10001;

    void classify() {
        GroupCursor cursor(old_, format_);
        Group group;
        items_.reserve(64);
        int zone = ObjectAccess::withoutMarkers(object_) ? kNoMarkers : 0;
        int after = -1;
        bool handleSeen = false;
        int control = 0;  // 1 in reactors, 2 in the extension dictionary, 3 in another control string
        const std::vector<OdDbGroup>* xData = ObjectAccess::newXData(object_);
        bool dropApplication = false;
        bool xDataBegun = false;
        int chunkField = -1;
        while (cursor.next(group)) {
            const int index = static_cast<int>(items_.size());
            Item& item = items_.emplace_back();
            item.group = group;
            if (index == 0) {
                recordType_ = group.value;
                lastHead_ = 0;
                lastPlain_ = 0;
                continue;
            }
            if (control) {
                lastPlain_ = index;
                if (control == 1 && ObjectAccess::reactorsChanged(object_)) item.action = Do::drop;
                if (control == 2 && group.code == 360) patchDictionary(item);
                if (group.code == 102) {
                    if (control == 2 && dictionaryGone_) item.action = Do::drop;
                    control = 0;
                }
                if (zone < 1) lastHead_ = index;
                continue;
            }
            if (group.code >= 1000 || xDataBegun) {  // what follows extended data belongs to nothing known
                xDataBegun = true;
                if (group.code == 1001) dropApplication = xData && changesApplication(*xData, group.value);
                if (dropApplication) item.action = Do::drop;
                continue;
            }
            lastPlain_ = index;
            if (chunkField >= 0 && !goesOn(description_.fields[static_cast<std::size_t>(chunkField)], group))
                chunkField = -1;
            if (group.code == 102 && !group.value.empty() && group.value.front() == '{') {
                if (group.value == "{ACAD_REACTORS") {
                    control = 1;
                    reactorsAt_ = index;
                    if (ObjectAccess::reactorsChanged(object_)) item.action = Do::reactors;
                } else if (group.value == "{ACAD_XDICTIONARY" && namesDictionary(cursor)) {
                    control = 2;
                    dictionaryAt_ = index;
                    dictionaryGone_ = ObjectAccess::extensionDictionary(object_).handle == 0;
                    if (dictionaryGone_) item.action = Do::drop;
                } else {
                    control = 3;
                }
                continue;
            }
            if (group.code == 100 || group.code == 101) {
                const int found = description_.findZone(group.value, std::max(zone, 0) + 1, group.code == 101);
                if (found < 0) {
                    zone = kUnknownZone;
                    continue;
                }
                zone = found;
                markers_ = true;
                after = description_.zones[zoneIndex(zone)].first - 1;
                zoneEnd_[zoneIndex(zone)] = index;
                if (!holder(object_, description_.zones[zoneIndex(zone)])) item.action = Do::drop;
                continue;
            }
            if (zone == kUnknownZone || group.code == 999) continue;
            if (zone >= 0) {
                zoneEnd_[zoneIndex(zone)] = index;
                if (!holder(object_, description_.zones[zoneIndex(zone)])) {
                    item.action = Do::drop;
                    continue;
                }
            }
            if (zone <= 0) lastHead_ = index;
            if (!handleSeen && isHandleCode(group.code, recordType_) && zone <= 0) {
                handleSeen = true;
                handleAt_ = index;
                if (parseHandle(group.value) != object_.handle().value()) item.action = Do::handle;
                continue;
            }
            const int found = description_.meaningOf(zone, group.code, after);
            if (found == ClassDescription::kRun) {
                if (!ObjectAccess::runsChanged(object_)) continue;
                const int field = runField(zone);
                item.action = place_[static_cast<std::size_t>(field)] < 0 ? Do::run : Do::drop;
                item.field = static_cast<std::int16_t>(field);
                if (item.action == Do::run) place_[static_cast<std::size_t>(field)] = index;
                continue;
            }
            if (found < 0) continue;
            const FieldSpec& field = description_.fields[static_cast<std::size_t>(found)];
            if (field.kind == FieldKind::chunkedText) {
                int& place = place_[static_cast<std::size_t>(found)];
                if (chunkField != found && place >= 0) continue;  // a second text: not ours
                if (chunkField != found) {
                    chunkField = found;
                    if (!chunksSame(found, index, cursor)) {
                        item.action = Do::chunks;
                        item.field = static_cast<std::int16_t>(found);
                        dropChunks_ = true;
                    } else {
                        dropChunks_ = false;
                    }
                    place = index;
                } else {
                    place = index;
                    if (dropChunks_) item.action = Do::drop;
                }
                continue;
            }
            if (place_[static_cast<std::size_t>(found)] >= 0) continue;
            place_[static_cast<std::size_t>(found)] = index;
            after = found;
            if (!sameValue(holder(object_, description_.zones[field.zone]), field, group, format_)) {
                item.action = Do::field;
                item.field = static_cast<std::int16_t>(found);
            }
        }
    }

    // Whether the control string that begins here names a dictionary; a damaged one is left alone.
    static bool namesDictionary(GroupCursor ahead) {
        bool names = false;
        walkControlString(ahead,
                          [&names](const Group& g) { names = names || (g.code == 360 && parseHandle(g.value) != 0); });
        return names;
    }

    void patchDictionary(Item& item) {
        const std::uint64_t now = ObjectAccess::extensionDictionary(object_).handle;
        if (now == 0)
            item.action = Do::drop;
        else if (now != parseHandle(item.group.value))
            item.action = Do::dictionary;
    }

    bool changesApplication(const std::vector<OdDbGroup>& xData, std::string_view rawName) const {
        const std::wstring name = decodeText(rawName, format_);
        return std::any_of(xData.begin(), xData.end(),
                           [&](const OdDbGroup& g) { return g.code == 1001 && g.text == name; });
    }

    int runField(int zone) const {
        for (std::size_t i = 0; i < description_.fields.size(); ++i)
            if (description_.fields[i].kind == FieldKind::run && (zone < 0 || description_.fields[i].zone == zone))
                return static_cast<int>(i);
        return -1;
    }

    // Whether the chunks that begin at the group just read hold the text that the object has.
    bool chunksSame(int fieldIndex, int index, GroupCursor ahead) const {
        const FieldSpec& field = description_.fields[static_cast<std::size_t>(fieldIndex)];
        const FileText& text = member<FileText>(holder(object_, description_.zones[field.zone]), field);
        std::string all(items_[static_cast<std::size_t>(index)].group.value);
        Group group;
        while (ahead.next(group) && goesOn(field, group))
            if (group.code != 999) all.append(group.value);
        if (!text.text) return text.raw == all;
        return *text.text == decodeText(all, format_);
    }

    void findMissing() {
        if (reactorsAt_ < 0 && ObjectAccess::reactorsChanged(object_) && hasMarkers())
            inserts_.push_back({headPlace(), kReactors});
        if (dictionaryAt_ < 0 && ObjectAccess::extensionDictionary(object_).handle && hasMarkers())
            inserts_.push_back({std::max(handleAt_, 0), kDictionary});
        for (std::size_t z = 0; z < description_.zones.size(); ++z) {
            const Zone& zone = description_.zones[z];
            char* base = holder(object_, zone);
            if (!base || format_.version < zone.since) continue;
            const bool present = z == 0 || !markers_ || zoneEnd_[z] >= 0;
            if (!present) {
                bool any = zone.embedded;
                for (int i = zone.first; i < zone.last && !any; ++i)
                    any = !isDefault(base, description_.fields[static_cast<std::size_t>(i)]);
                if (any) inserts_.push_back({endOfZonesUpTo(z), -1 - static_cast<int>(z)});
                continue;
            }
            if (zone.embedded && !markers_) continue;
            int predecessor = z == 0 ? headPlaceForFields() : (markers_ ? markerPlace(z) : -1);
            for (int i = zone.first; i < zone.last; ++i) {
                const auto f = static_cast<std::size_t>(i);
                const FieldSpec& field = description_.fields[f];
                if (place_[f] >= 0) {
                    predecessor = place_[f];
                    continue;
                }
                if (!knownTo(field, format_)) continue;
                const bool missing =
                    field.kind == FieldKind::run ? ObjectAccess::runsChanged(object_) : isMissing(base, f);
                if (missing) inserts_.push_back({predecessor >= 0 ? predecessor : lastPlain_, i});
            }
        }
        std::stable_sort(inserts_.begin(), inserts_.end(),
                         [](const Insert& a, const Insert& b) { return a.after < b.after; });
    }

    // Whether a field that does not stand in the record has to. A point of which some groups stand there gets only
    // those that are not the default: a flat point stays flat.
    bool isMissing(char* base, std::size_t f) const {
        const FieldSpec& field = description_.fields[f];
        const std::size_t first = f - field.part;
        bool changed = false;
        for (std::size_t part = first; part < first + field.parts; ++part) {
            if (place_[part] >= 0) return !isDefault(base, field);
            changed = changed || !isDefault(base, description_.fields[part]);
        }
        return changed;
    }

    static std::size_t zoneIndex(int zone) { return static_cast<std::size_t>(zone); }
    int headPlace() const { return dictionaryAt_ >= 0 ? dictionaryAt_ + 2 : std::max(handleAt_, 0); }
    bool hasMarkers() const { return markers_ || format_.hasMarkers(); }
    int headPlaceForFields() const { return markers_ ? lastHead_ : -1; }
    int markerPlace(std::size_t z) const {
        for (std::size_t i = 0; i < items_.size(); ++i) {
            const Group& g = items_[i].group;
            if (g.code == (description_.zones[z].embedded ? 101 : 100) && static_cast<int>(i) <= zoneEnd_[z] &&
                (g.value == description_.zones[z].marker ||
                 (!description_.zones[z].alias.empty() && g.value == description_.zones[z].alias))) {
                // The last such marker at or before the zone's end.
                std::size_t best = i;
                for (std::size_t k = i + 1; k < items_.size() && static_cast<int>(k) <= zoneEnd_[z]; ++k)
                    if (items_[k].group.code == g.code && items_[k].group.value == g.value) best = k;
                return static_cast<int>(best);
            }
        }
        return lastPlain_;
    }
    int endOfZonesUpTo(std::size_t z) const {
        while (z-- > 1)
            if (zoneEnd_[z] >= 0) return zoneEnd_[z];
        return lastPlain_;
    }

    void emit() {
        std::size_t next = 0;
        const char* runBegin = nullptr;
        const char* runEnd = nullptr;
        const auto flush = [&] {
            if (runBegin) writer_.raw({runBegin, static_cast<std::size_t>(runEnd - runBegin)});
            runBegin = nullptr;
        };
        for (std::size_t i = 0; i < items_.size(); ++i) {
            const Item& item = items_[i];
            if (item.action == Do::keep) {
                if (!runBegin) runBegin = item.group.begin;
                runEnd = item.group.end;
            } else {
                flush();
                emitChanged(item);
            }
            for (; next < inserts_.size() && inserts_[next].after <= static_cast<int>(i); ++next) {
                flush();
                emitInsert(inserts_[next]);
            }
        }
        flush();
        writeXData(object_, writer_);
    }

    void emitChanged(const Item& item) {
        switch (item.action) {
            case Do::keep:
            case Do::drop:
                return;
            case Do::field:
            case Do::chunks:
            case Do::run: {
                const FieldSpec& field = description_.fields[static_cast<std::size_t>(item.field)];
                writeField(object_, holder(object_, description_.zones[field.zone]), field, writer_);
                return;
            }
            case Do::handle:
                writer_.handle(item.group.code, object_.handle().value());
                return;
            case Do::reactors:
                writeReactors(object_, writer_);
                return;
            case Do::dictionary:
                writer_.handle(360, ObjectAccess::extensionDictionary(object_).handle);
                return;
        }
    }

    void emitInsert(const Insert& insert) {
        if (insert.field == kReactors) {
            writeReactors(object_, writer_);
        } else if (insert.field == kDictionary) {
            writeExtensionDictionary(object_, writer_);
        } else if (insert.field < 0) {
            writeZoneAnew(object_, description_, description_.zones[static_cast<std::size_t>(-1 - insert.field)],
                          writer_, markers_);
        } else {
            const FieldSpec& field = description_.fields[static_cast<std::size_t>(insert.field)];
            writeField(object_, holder(object_, description_.zones[field.zone]), field, writer_);
        }
    }

    const OdDbObject& object_;
    const ClassDescription& description_;
    const FileFormat& format_;
    GroupWriter writer_;
    std::string_view old_;
    std::vector<Item> items_;
    std::vector<Insert> inserts_;
    std::array<int, kMaxFields> place_;
    std::vector<int> zoneEnd_;
    std::string_view recordType_;
    int handleAt_ = -1;
    int reactorsAt_ = -1;
    int dictionaryAt_ = -1;
    int lastHead_ = 0;
    int lastPlain_ = 0;
    bool markers_ = false;
    bool dictionaryGone_ = false;
    bool dropChunks_ = false;
};

}  // namespace

void encodeObject(const OdDbObject& object, const ClassDescription& description, std::string_view oldBytes,
                  const FileFormat& format, std::string& out) {
    if (oldBytes.empty())
        encodeAnew(object, description, format, out);
    else
        Patch(object, description, oldBytes, format, out).run();
}

}  // namespace drawingdb
