// What a damaged file is taken apart into before it is put together again (recovery.h).
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "drawingdb/database.h"
#include "drawingdb/src/core/record_types.h"
#include "drawingdb/src/file/record_writer.h"

namespace drawingdb {

/// What was left out or put right, by place in the file.
class Damages {
  public:
    Damages(std::string_view file, const FileFormat& format) : file_(file), format_(format) {}
    void tell(const char* place, std::string_view text) { all_.emplace_back(place, text); }
    /// In the order of the file, with its name and the lines, ready to print.
    std::vector<OdDbWarning> warnings(const std::string& fileName);

  private:
    std::string_view file_;
    const FileFormat& format_;
    std::vector<std::pair<const char*, std::string>> all_;
};

/// A handle from there on is none. The handles below it that are kept free let there be room for new ones.
constexpr std::uint64_t kHandleLimit = std::uint64_t{1} << 62, kSpareHandles = std::uint64_t{1} << 32;

/// A stretch of a damaged file: a group, perhaps with a value that its code cannot have, or what is no group.
struct Piece {
    enum Kind : std::uint8_t {
        group,
        badValue,
        badName,   // a record begins, but which
        bareName,  // a record begins with its name; what should stand before it is damaged
        garbage
    };
    Kind kind = group;
    Group read;  // of garbage and bad names only where they begin and end
};

/// Goes through a damaged file group after group, and finds the next one behind what is none.
class DamagedGroups {
  public:
    /// Without the head of a binary file.
    DamagedGroups(std::string_view bytes, const FileFormat& format);
    bool next(Piece& piece);
    const char* place() const { return at_; }

  private:
    /// The group at a place; nothing where there is none, or where it ends with the file in the middle.
    std::optional<Group> groupAt(const char* place) const;
    std::optional<Group> asciiGroupAt(const char* place) const;
    std::optional<Group> binaryGroupAt(const char* place) const;
    bool fits(const Group& group) const;
    /// Whether groups go on from there: some of them, or all up to a record or the end.
    bool isSound(const char* place) const;
    /// Whether what is no group is one that begins a record, but for its name.
    bool isBadName(std::string_view bytes) const;
    /// Takes the lines up to the name of a record that stands near by without a sound 0 before it; false when none
    /// does.
    bool takeBareName(Piece& piece);
    /// Whether the next group is a handle, with which records begin.
    bool isHandleAt(const char* place) const;
    void enterRecord(std::string_view name);
    /// Nothing but blank lines is left.
    bool isBlankFrom(const char* place) const { return place >= blanks_; }
    /// A kind of record that everybody knows, or that was met before.
    bool isKnownName(std::string_view name) const { return names_.contains(name); }

    const char* at_;
    const char* end_;
    const char* blanks_;  // what is left from there on is blank
    std::unordered_set<std::string_view> names_;
    const FileFormat& format_;
    bool fiveIsHandle_ = true;  // not in a DIMSTYLE, nor behind a marker
    bool behindName_ = false;   // the group before began a record
};

struct SalvagedRecord {
    std::uint16_t type = rtNone;  // rtFirstCarried: any kind without a number
    std::string_view name;
    const char* place = nullptr;  // in the damaged file
    std::vector<Group> groups;    // group 0 first
    bool isPartial = false;       // groups of it are lost
    bool lacksHandle = false;     // it lost it
    std::uint64_t handle = 0;

    const Group* find(int code) const {
        for (const Group& group : groups) {
            if (group.code == code) return &group;
            if (group.code >= 1000) break;
        }
        return nullptr;
    }
    std::string_view text(int code) const {
        const Group* const group = find(code);
        return group ? group->value : std::string_view();
    }
    /// "LINE #2F"
    std::string title() const;
};

/// A record with what it holds: the sections, tables, blocks, references and old polylines of a file are such trees.
struct SalvagedNode {
    SalvagedRecord record;
    std::list<SalvagedNode> children;
    std::optional<SalvagedRecord> closer;
};

/// In capitals, as far as it is a known one.
std::string_view sectionName(const SalvagedRecord& section);
inline std::string_view sectionName(const SalvagedNode& section) { return sectionName(section.record); }

/// A file that is being put together again.
struct Salvage {
    explicit Salvage(std::string_view bytes) : file(bytes), damages(bytes, format) {}
    Salvage(const Salvage&) = delete;
    Salvage& operator=(const Salvage&) = delete;

    std::string_view file;
    FileFormat format;
    Damages damages;
    std::string_view head, tail;  // what stands before the first record and behind the last
    std::list<SalvagedNode> sections;
    std::list<SalvagedNode> namelessBlocks;  // of blocks whose beginning is lost
    std::deque<std::string> written;         // groups that the file did not have
    bool hasHandles = false;
    std::uint64_t nextHandle = 1;

    SalvagedNode* section(std::string_view name);
    /// Behind the others; of several of a name the first is found by it.
    SalvagedNode& addSection(SalvagedRecord record);
    /// The section, made at its place in the order of sections when there is none. A made one has no end yet.
    SalvagedNode& madeSection(std::string_view name);
    SalvagedNode* table(std::string_view name);
    /// The same for tables; the section of tables is there.
    SalvagedNode& addTable(SalvagedRecord record);
    /// A number for the kind of record; kinds that only this file has are all one.
    std::uint16_t typeOf(std::string_view name);
    /// Of a drawing without handles 0.
    std::uint64_t newHandle() { return hasHandles ? nextHandle++ : 0; }
    /// A record of groups that `write` writes; it counts as standing at `place`.
    SalvagedRecord record(const char* place, const std::function<void(RecordWriter&)>& write);
    /// The same for a single group.
    Group group(const std::function<void(RecordWriter&)>& write);
    /// Where a group stands in the file, or its record does when the group was put in.
    const char* placeOf(const Group& group, const SalvagedRecord& record) const;
    /// All records in the order of the file.
    void forEach(const std::function<void(SalvagedNode& node, SalvagedRecord& record, SalvagedNode* owner)>& visit);

  private:
    std::unordered_map<std::string, SalvagedNode*> sectionOf_;     // by name as the reader compares them
    std::unordered_map<std::string_view, SalvagedNode*> tableOf_;  // by name
};

/// The trees of sections out of the groups of a damaged file: what stands in the wrong place is put into the right one,
/// what is not closed is closed. False when there is no record at all.
bool buildTrees(Salvage& salvage);
/// What records say of each other: names, handles, owners; and what every drawing has.
void mendLinks(Salvage& salvage);

/// Quoted for a message: short, and without bytes that no terminal likes.
std::string quoted(std::string_view text);

}  // namespace drawingdb
