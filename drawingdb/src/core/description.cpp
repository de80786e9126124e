#include "drawingdb/src/core/description.h"

#include <algorithm>
#include <bitset>
#include <cstring>
#include <utility>

#include "drawingdb/mtext.h"

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

void Describer::embeddedZone(const char* name, OdSmartPtr<OdDbMText>& pointer) {
    zone(name);
    Zone& zone = out_.zones.back();
    zone.embedded = true;
    zone.since = version::v2018;
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

int ClassDescription::meaningBeyond(int& zone, int code, int after, ZoneSet marked) const {
    if (const int meaning = meaningOf(zone, code, after); meaning != kNoField || zone < 0) return meaning;
    const int count = static_cast<int>(zones.size());
    for (int next = zone + 1; next < count && (marked & zoneBit(next)) == 0; ++next) {
        if (zones[static_cast<std::size_t>(next)].embedded) continue;
        if (const int meaning = meaningOf(next, code, after); meaning != kNoField) {
            zone = next;
            return meaning;
        }
    }
    return kNoField;
}

ZoneSet ClassDescription::expectedZones() const {
    ZoneSet expected = 0;
    for (int zone = 1; zone < static_cast<int>(zones.size()); ++zone)
        if (!zones[static_cast<std::size_t>(zone)].embedded) expected |= zoneBit(zone);
    return expected;
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

}  // namespace drawingdb
