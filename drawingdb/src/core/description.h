// Class descriptions: each class lists its fields once; reading, patching and writing anew all go by that list.
//
// A description is built from a prototype, a fresh object of the class: a field is a member of the prototype, its
// default the prototype's value. Fields stand in zones. A zone begins at a subclass marker (group 100) or is an
// embedded object (group 101); zone 0 is what stands before the first marker. Files without markers (R12) have one
// zone: the first field with the code is meant there. A record that has some markers and lacks others is read by what
// its groups can mean. Within a zone fields stand in the order in which they are written.
//
//   description.cpp   building one, and what a group means by it
//   members.h         the members that it speaks of
//   decode.cpp        record -> object
//   encode.cpp        object -> new record
//   patch.cpp         object -> record, where there was one before
//
// Example:
//   void OdDbLine::describe(Describer& d) {
//       auto& self = d.self<OdDbLine>();
//       d.zone("AcDbLine");
//       d.real(39, self.thickness_);              // left out while it is the default
//       d.required().point(10, self.start_);      // always written; groups 10, 20, 30
//       d.required().point(11, self.end_);
//       d.point(210, self.normal_);
//   }
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "drawingdb/ge.h"
#include "drawingdb/object.h"
#include "drawingdb/src/file/groups.h"

class OdDbMText;

namespace drawingdb {

enum class FieldKind : std::uint8_t {
    text,         // FileText
    chunkedText,  // FileText in groups 3 (or another) and a last group 1
    real,         // double
    angle,        // double, radians here, degrees in the file
    int16,        // std::int16_t
    int32,        // std::int32_t
    handle,       // HandleRef
    run,          // groups that the class reads and writes itself (readRunGroup, writeRuns); no member
};

struct FieldSpec {
    std::int16_t code = 0;
    std::int16_t chunkCode = 0;  // chunkedText: code of all groups but the last
    std::uint16_t offset = 0;    // of the member in the object (or in the embedded object)
    std::uint8_t zone = 0;
    FieldKind kind = FieldKind::text;
    std::uint8_t part = 0;   // component of a point: 0, 1, 2
    std::uint8_t parts = 1;  // groups that are written together
    bool required = false;
    std::uint16_t since = 0;  // first version that knows the field
    double defaultReal = 0;
    std::int64_t defaultInteger = 0;
    std::string defaultText;  // file spelling, ASCII
};

struct Zone {
    std::string_view marker;
    std::string_view alias;       // another marker that means the same
    bool embedded = false;        // opens with group 101; the fields lie in the object behind `pointer`
    std::ptrdiff_t pointer = -1;  // offset of the OdSmartPtr<OdDbMText>
    std::uint16_t since = 0;
    std::vector<int> runCodes;          // codes that belong to the zone's run; {-1}: every code of the zone
    std::uint16_t first = 0, last = 0;  // its fields
};

/// Zones of a description, a bit each.
using ZoneSet = std::uint32_t;
constexpr ZoneSet zoneBit(int zone) { return ZoneSet{1} << zone; }

class ClassDescription {
  public:
    std::string dxfName;
    std::vector<Zone> zones;
    std::vector<FieldSpec> fields;
    bool entity = false;

    /// The zone that a marker opens, at or behind `from`; -1 when the class does not know it.
    int findZone(std::string_view marker, int from, bool embedded) const;
    static constexpr int kNoField = -1;
    static constexpr int kRun = -2;
    /// What a group with that code is in a zone: a field, the zone's run, or nothing known. Of several fields with one
    /// code it is the first behind `after`, else the first before. Zone -1 is a file without markers: all zones
    /// (embedded ones left out).
    int meaningOf(int zone, int code, int after) const {
        if (code < 0 || code >= kCodes) return findMeaning(zone, code, after);
        const int meaning = meanings_[static_cast<std::size_t>(zone + 1) * kCodes + static_cast<std::size_t>(code)];
        return meaning == kSeveral ? findMeaning(zone, code, after) : meaning;
    }
    /// As meaningOf in a record that lacks markers: what a zone does not know is meant for the zones behind it of which
    /// no marker stands in the record. `zone` becomes the one that is meant.
    int meaningBeyond(int& zone, int code, int after, ZoneSet marked) const;
    /// The zones of which a marker is to be expected, the head and embedded objects left out.
    ZoneSet expectedZones() const;
    /// To be called when zones and fields are complete.
    void finish();

  private:
    static constexpr int kSeveral = -3;
    static constexpr int kCodes = 512;  // larger ones are extended data, with few exceptions

    int findMeaning(int zone, int code, int after) const;
    bool inRun(int zone, int code) const;

    std::vector<std::int16_t> meanings_;  // by zone + 1 and code
};

/// Builds a description.
class Describer {
  public:
    Describer(ClassDescription& out, OdDbObject& prototype);
    template <class T>
    T& self() const {
        return static_cast<T&>(prototype_);
    }

    void zone(const char* marker, const char* alias = "");
    /// An embedded object behind group 101. The prototype's pointer must be set while it is described; the fields
    /// described next are members of the pointed-to object.
    void embeddedZone(const char* name, OdSmartPtr<OdDbMText>& pointer);

    /// Apply to the next field only.
    Describer& required() {
        required_ = true;
        return *this;
    }
    Describer& since(int version) {
        since_ = static_cast<std::uint16_t>(version);
        return *this;
    }

    void text(int code, FileText& member, const char* fallback = "");
    void chunkedText(int chunkCode, int lastCode, FileText& member);
    void real(int code, double& member);
    void angle(int code, double& member);
    void int16(int code, std::int16_t& member);
    void int32(int code, std::int32_t& member);
    void handle(int code, HandleRef& member);
    void point(int code, OdGePoint3d& member);
    void vector(int code, OdGeVector3d& member);
    void point2(int code, OdGePoint3d& member);  // x and y only
    /// The place of the class's own groups in the zone, and their codes; none: every code of the zone.
    void run(std::vector<int> codes = {});

  private:
    FieldSpec& add(int code, FieldKind kind, const void* member);
    void reals(int code, const double* member, int count);

    ClassDescription& out_;
    OdDbObject& prototype_;
    const char* base_;
    bool required_ = false;
    std::uint16_t since_ = 0;
};

/// For the description() of a class: built at the first use. `fill` is called with the describer of a fresh object.
///   const ClassDescription* OdDbLine::description() const { static const auto d = describe<OdDbLine>("LINE",
///   &OdDbLine::describe); return &d; }
template <class T>
ClassDescription describe(const char* dxfName, void (*fill)(Describer&)) {
    ClassDescription result;
    result.dxfName = dxfName;
    OdSmartPtr<T> prototype = T::createObject();
    Describer describer(result, *prototype);
    fill(describer);
    result.finish();
    return result;
}

/// Reads the fields of `object` out of `bytes` (a whole record). Faults are told to `fault` (code, value, what was
/// expected).
void decodeObject(OdDbObject& object, const ClassDescription& description, std::string_view bytes,
                  const FileFormat& format, const std::function<void(const Group&, const char*)>& fault);
/// Sets every field to its default, as in a fresh object.
void resetObject(OdDbObject& object, const ClassDescription& description);
/// Appends the record's bytes to `out`: the old groups patched, or written anew when there are none.
void encodeObject(const OdDbObject& object, const ClassDescription& description, std::string_view oldBytes,
                  const FileFormat& format, std::string& out);

}  // namespace drawingdb
