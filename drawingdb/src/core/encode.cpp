#include "drawingdb/src/core/encode.h"

#include <algorithm>

#include "base/text.h"
#include "drawingdb/src/core/members.h"
#include "drawingdb/src/geometry/curve_math.h"

namespace drawingdb {

namespace {

constexpr std::size_t kChunk = 250;

bool isFirstOfTwo(char byte, const FileFormat& format) {
    constexpr wchar_t kUnknown = 0xFFFD;
    return static_cast<unsigned char>(byte) >= 0x80 && format.codePage->decode({&byte, 1}).front() == kUnknown;
}

// Where a text of bytes may be cut at the latest, `limit` at most: not inside a character or an escape sequence.
std::size_t cutPlace(std::string_view text, std::size_t limit, const FileFormat& format) {
    if (text.size() <= limit) return text.size();
    std::size_t cut = limit, escape = std::string_view::npos;
    if (format.utf8()) {
        cut = std::max<std::size_t>(1, base::utf8Prefix(text, limit));
        escape = text.find_last_of("\\^", cut - 1);
    } else {
        // A second byte may look like anything, so characters are told apart from the beginning on only.
        for (std::size_t next = 0; next <= limit; next += isFirstOfTwo(text[next], format) ? 2 : 1) {
            cut = next;
            if (next < limit && (text[next] == '\\' || text[next] == '^')) escape = next;
        }
    }
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

// Whether a field has to stand in a record that is written anew; a point stands there whole or not at all. `field` is
// its first part.
bool wanted(char* base, const FieldSpec& field, const FileFormat& format) {
    if (!knownTo(field, format)) return false;
    if (field.required || field.kind == FieldKind::run) return true;
    const auto* const first = &field;
    return std::any_of(first, first + field.parts, [base](const FieldSpec& part) { return !isDefault(base, part); });
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

}  // namespace

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
            writer.real(field.code, degreesOf(member<double>(base, field)));
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

void writeZoneAnew(const OdDbObject& object, const ClassDescription& description, const Zone& zone, GroupWriter& writer,
                   bool markers) {
    char* base = holder(object, zone);
    if (!base || writer.format().version < zone.since) return;
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

void writeXData(const OdDbObject& object, GroupWriter& writer) {
    const auto* groups = ObjectAccess::newXData(object);
    if (!groups) return;
    for (std::size_t i = 0; i < groups->size(); ++i) {
        const bool head = (*groups)[i].code == 1001;
        const bool alone = head && (i + 1 == groups->size() || (*groups)[i + 1].code == 1001);
        if (!alone) writeGroup((*groups)[i], writer);
    }
}

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

}  // namespace drawingdb
