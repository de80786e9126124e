// The machinery of one database: its file, stubs, open objects, undo log and indexes.
//
//   index.cpp      file bytes -> stubs, faults of the file
//   core.cpp       finding, opening and closing objects; names, handles, spaces
//   edit.cpp       appending, erasing with all that is owned, exchanging identities
//   undo.cpp       the log
//   touched.cpp    what changed, out of the log
//   import.cpp     blocks out of other drawings
//   save.cpp       stubs -> file bytes
//   recovery.cpp   damaged file bytes -> sound ones, before any of this sees them (recovery.h)
#pragma once

#include <array>
#include <deque>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "base/files.h"
#include "drawingdb/database.h"
#include "drawingdb/entity.h"
#include "drawingdb/src/core/arena.h"
#include "drawingdb/src/core/record_types.h"
#include "drawingdb/src/core/stub.h"
#include "drawingdb/src/file/groups.h"

namespace drawingdb {

class ClassDescription;
class Importer;
class Indexer;
class Saver;

/// The sections that are looked for.
enum class Section : std::uint8_t { header, classes, blocks, entities, objects };
inline constexpr std::array<std::string_view, 5> kSectionNames = {"HEADER", "CLASSES", "BLOCKS", "ENTITIES", "OBJECTS"};

class Core {
  public:
    explicit Core(OdDbDatabase& database);
    ~Core();

    OdDbDatabase& database;
    std::wstring name;  // of the file, for messages
    FileFormat format;
    bool readOnly = false;
    bool recovered = false;  // the file is a damaged one that was put right
    std::vector<OdDbWarning> warnings;
    std::string version() const;  // as the header has it: "AC1032"

    /// ---- the file ----
    /// Throws OdError(badFile) for what is no drawing, and base::FileError.
    void readIndex(base::FileReading& reading);
    void write(const std::function<void(std::string_view)>& sink);
    void addWarning(std::uint64_t line, const std::string& text);
    /// A warning about a place in the file's bytes, with file name and line.
    void warnAt(const char* place, const std::string& text);
    [[noreturn]] void failAt(const char* place, const std::string& text);
    std::string where(const char* place) const;

    /// ---- stubs ----
    StubTable stubs{this};
    TypeTable types;
    std::uint32_t fileStubs = 0;
    Stub& at(std::uint32_t index) { return stubs[index]; }
    std::uint32_t indexOf(const Stub* stub) const { return StubTable::indexOf(stub); }
    /// The bytes of a record as they stand; an open changed object is encoded first.
    std::string_view bytesOf(Stub& stub);
    /// The record's name in files.
    const std::string& typeName(const Stub& stub) const { return types.name(stub.type); }
    /// First value with that group code; empty when there is none.
    std::string_view groupText(Stub& stub, int code);
    OdString groupWide(Stub& stub, int code) { return decodeText(groupText(stub, code), format); }

    /// ---- containers ----
    /// The stub that anchors the chain of appended children; made when `make` and there is none.
    Stub* anchorOf(Stub& container, bool make);
    /// Of sections of entities that go on with each other, the last.
    Stub& lastPart(Stub& entities);
    /// The record behind `stub` among the children of its container, or null.
    Stub* nextChild(Stub& container, Stub* stub);
    /// The block record that an entity lies in.
    Stub* blockOf(Stub& stub);
    /// The first section of that name; that of the entities may go on in others.
    Stub* section(Section known) const { return knownSections_[static_cast<std::size_t>(known)]; }
    Stub* tableNamed(std::string_view tableName) const;
    /// BLOCK of a block record (for files without block records they are the same).
    Stub* blockBegin(Stub& record);
    /// Block record of a BLOCK.
    Stub* recordOfBlock(Stub& block);
    OdDbObjectIdRange entitiesOf(Stub& record, bool skipErased);
    bool isEntity(const Stub& stub) const;
    /// Whether it is something of its own, no part of the file's or of another object's structure.
    bool isObject(const Stub& stub) const;
    const OdRxClass* classOf(const Stub& stub);
    const OdRxClass* classOfPolyline(const Stub& stub);

    /// The box around what a block holds, in the block's own coordinates; not valid when there is nothing. It is kept
    /// until something changes, so that a block is measured once for all its references.
    const OdGeExtents3d& extentsOf(Stub& record);

    /// ---- finding ----
    Stub* byHandle(std::uint64_t handle);
    /// Gives a new stub its handle; in a drawing without handles only an object of the OBJECTS section gets one.
    void giveHandle(Stub& stub, const Stub& container);
    Stub* findRecord(std::string_view table, const std::wstring& recordName);
    /// Block of a name as a file spells it, remembered by its bytes.
    Stub* blockByRawName(std::string_view raw);
    void forgetNames();
    Stub* modelSpace();
    Stub* paperSpace();
    OdGePoint3d blockOrigin(Stub& record);
    const std::vector<std::uint32_t>& referencesTo(Stub& record);
    void referenceAdded(Stub& insert, Stub* block);

    /// ---- objects ----
    OdDbObjectPtr open(Stub& stub, OdDb::OpenMode mode, bool erasedToo);
    void closed(OdDbObject& object);  // the last pointer is gone
    void becomeDirty(OdDbObject& object);
    Stub* openForWrite();
    /// Makes the object's changes part of the drawing; it stays open.
    void flush(OdDbObject& object);
    void flushAll();
    /// Throws what a change could not be stored for, until it is taken back.
    void requireStored();
    /// Reads an open object again from what its stub says.
    void refresh(OdDbObject& object);

    /// ---- editing ----
    Stub& addStub(std::uint16_t type, Stub& container);
    /// A new block without entities for what a dimension shows, by a name of its own, otherwise like the block
    /// `picture`. Its record; null where the file has no place for one.
    Stub* addPicture(Stub& picture);
    /// A new block without entities. The name must not be there. Throws badFile where the file has no place for one.
    Stub& addBlock(std::wstring_view blockName);
    /// Copies of these entities become what the block holds, around 0,0,0.
    void redefineBlock(Stub& record, const OdDbObjectIdArray& entities, OdDbIdMapping& copies);
    void appendObject(OdDbObject& object, Stub& container);
    void erase(Stub& stub, bool erasing);
    void setFlags(Stub& stub, std::uint32_t flags);
    void setContent(Stub& stub, Content content);
    void setBytes(Stub& stub, std::string_view bytes);
    void swapIdentity(Stub& a, Stub& b, bool extendedData, bool extensionDictionaries);
    void deepClone(const OdDbObjectIdArray& objects, Stub& owner, OdDbIdMapping& mapping);
    void requireWritable() const;
    /// Throws notHeldByVersion when the file's version does not know the kind.
    void requireHeld(std::uint16_t type) const;
    Stub* fieldList(bool make);
    /// An entry that says nothing but its name, as it stands in the file, unless the table has one of that name.
    void addEntry(std::string_view table, std::string_view entry);

    /// ---- header variables ----
    struct HeaderVariable {
        std::string_view first;   // value of the first group
        std::string_view groups;  // all its groups behind the name
        int code = 0;
    };
    std::optional<HeaderVariable> headerVariable(std::string_view variable);
    /// What new entities get, by the header.
    struct EntityDefaults {
        std::string_view layer, linetype;  // bytes of the file; empty: layer "0", linetype by layer
        std::int32_t colorIndex = 256;
        std::int32_t lineweight = -1;
        double linetypeScale = 1;
    };
    const EntityDefaults& entityDefaults();
    void setHeaderVariable(std::string_view variable, const std::function<void(GroupWriter&)>& write);

    /// ---- undo ----
    void startRecord();
    std::uint64_t setMark();
    void dropMark(std::uint64_t mark);
    void undoBack();
    /// Whether the innermost open group has that mark, or any.
    bool hasMark(std::optional<std::uint64_t> mark = {}) const;
    bool undoLastRecord();
    void groupBegin();
    void groupEnd();
    void groupRollBack();
    int groupDepth() const { return static_cast<int>(groups_.size()); }
    std::size_t undoPosition();
    bool isChangedSince(std::size_t position);
    std::size_t objectsChangedSince(std::size_t position);
    void undoTo(std::size_t position) { undoTo(position, nullptr); }
    void undoForRedo(std::size_t position);
    bool redo();
    bool modified() const { return changes_ != 0; }
    std::uint64_t revision() {
        flushAll();
        return state_;
    }

    /// ---- what changed (touched.cpp) ----
    void addMark(OdDbTouchMark& mark);
    void removeMark(OdDbTouchMark& mark);
    OdDbTouched takeTouched(OdDbTouchMark& mark);

    /// ---- the current space ----
    std::string currentLayout;  // UTF-8; empty: as the file says
    std::uint32_t activeViewport = 0;

    OdDbDatabase::SystemVariables systemVariables;
    OdDbDatabase::Clock clock;
    int utcOffset = 0;

  private:
    struct Step {
        enum Kind : std::uint32_t { content, flags, append, handle, record, mark, groupStart, groupStop };
        std::uint32_t stub;
        Kind kind;
        std::uint64_t old;
    };
    bool isComplete();
    void log(Stub& stub, Step::Kind kind, std::uint64_t old);
    /// Steps that were undone, in that order, each with the word that was there before.
    using Undone = std::deque<std::pair<Step, std::uint64_t>>;
    void undoTo(std::size_t position, Undone* undone);
    /// Takes the last step off the log.
    Step takeStep();
    std::uint64_t undoStep(const Step& step);
    std::uint64_t exchange(const Step& step, std::uint64_t word);
    void setLinked(const Step& step, bool linked);
    Stub& linkedStub(std::uint16_t type, Stub& container);
    void linkChild(Stub& container, Stub& child);
    void stopListening(Stub& stub);
    void eraseOne(Stub& stub, bool erasing, std::vector<Stub*>& more);
    void decode(OdDbObject& object, std::string_view bytes);
    /// Encodes a changed object. True for a reference that may name another block now. Nothing has changed when it
    /// throws.
    bool store(OdDbObject& object);
    /// The bytes of a record with another handle, owner and references: `map` gives the new handle for an old one, and
    /// is told whether it stands in the list of reactors, from where 0 removes it.
    std::string rewritten(std::string_view bytes, std::uint64_t handle, std::uint64_t owner, bool paperSpace,
                          const std::function<std::uint64_t(std::uint64_t, bool)>& map);
    /// The records of a new block, in the file but still without bytes; nothing where it has no place for them. In a
    /// file without block records (`table` is null then) BLOCK is the block's record.
    struct NewBlock {
        Stub *table, *record, *block, *end;
    };
    std::optional<NewBlock> linkBlock();
    static constexpr std::string_view kNoPlaceForBlocks =
        "the file has no place for blocks. Remedy: read it with --recover, which puts one in, "
        "and save it under another name";
    /// A section for blocks in a file without one; null in a version whose blocks need more.
    Stub* addBlocksSection();
    /// What the records of a block say beside its contents.
    struct BlockHead {
        OdGePoint3d origin;
        std::int64_t flags = 0;
        std::wstring path;  // of an external reference
        std::wstring description;
        std::int64_t units = 0;
        std::int64_t explodable = 1, scalability = 0;
    };
    void writeBlockRecords(const NewBlock& block, std::wstring_view blockName, const BlockHead& head);
    /// Erases what a block holds, and what was told of that: the order of drawing, its picture.
    void emptyBlock(Stub& record, const OdDbObjectIdArray& entities);
    void setBlockOrigin(Stub& record, const OdGePoint3d& origin, bool hasAttributes);
    /// The same, with the units, the description and the like of a block that is made anew.
    void describeBlock(Stub& record, const BlockHead& head, bool hasAttributes);
    /// The bytes of a record of a block, its BLOCK or its ENDBLK for an anonymous block of another name.
    Content ofAnonymousBlock(Stub& source, const Stub& copy, std::uint64_t owner, std::string_view name);
    friend class Importer;
    friend class Indexer;
    friend class Saver;

    base::FileBuffer buffer_;
    std::string_view file_;
    struct StringHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view s) const { return std::hash<std::string_view>()(s); }
    };
    template <class Value>
    using ByName = std::unordered_map<std::string, Value, StringHash, std::equal_to<>>;
    ByName<Stub*> sections_;
    std::array<Stub*, kSectionNames.size()> knownSections_{};
    ByName<Stub*> tables_;
    std::uint64_t largestHandle_ = 0;
    std::uint64_t firstNewHandle_ = 0;
    std::uint64_t nextHandle_ = 0;
    std::vector<std::uint32_t> handleIndex_;                           // dense: by handle
    std::vector<std::pair<std::uint64_t, std::uint32_t>> handleList_;  // sparse: sorted
    std::vector<std::uint32_t> newHandles_;                            // from firstNewHandle_ on

    ByName<std::unordered_map<std::wstring, std::uint32_t>> names_;  // table -> folded name -> stub
    ByName<std::uint32_t> rawBlockNames_;
    std::unordered_map<std::uint32_t, OdGePoint3d> origins_;
    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> references_;
    bool referencesKnown_ = false;
    bool blocksLinked_ = false;
    std::uint32_t lastPicture_ = 0;  // its number
    std::unordered_map<std::uint32_t, std::uint32_t> blockOfRecord_, recordOfBlock_;
    void indexHeader(std::string_view bytes);
    Stub* header_ = nullptr;             // the section, once it was found
    const char* headerBytes_ = nullptr;  // of which the table is
    std::unordered_map<std::string_view, HeaderVariable> headerVariables_;
    EntityDefaults entityDefaults_;
    const char* entityDefaultsOf_ = nullptr;  // the header's bytes that they were read from
    static constexpr std::size_t kMostFaultsTold = 100;
    std::unordered_set<const char*> toldFaults_;
    std::size_t liveObjects_ = 0;
    bool erasedEver_ = false;
    std::uint32_t model_ = 0, paper_ = 0;
    void linkBlocks();
    void tellTwin(Stub& block);

    std::vector<OdDbObject*> dirty_;
    std::deque<Step> log_;      // grows by the million: nothing is copied for that
    std::vector<Undone> redo_;  // the last is the next to be redone; a change makes them void
    std::vector<OdDbTouchMark*> touchMarks_;
    std::uint64_t lastMark_ = 0;
    bool endsWithoutEof_ = false;
    std::string firstVersion_;  // of a drawing older than AC1001
    std::vector<std::size_t> groups_;
    std::size_t changes_ = 0;
    std::uint64_t state_ = 0;  // another number after every step, forward or back
    std::unordered_map<std::uint32_t, OdGeExtents3d> extents_;
    std::uint64_t extentsState_ = 0;
    int extentsDepth_ = 0;
    bool undoing_ = false;
    Arena arena_;
    std::string scratch_;
    /// What a change could not be stored for, and where the undo log ended then.
    std::exception_ptr fault_;
    std::size_t faultPosition_ = 0;
    bool hasHandles_ = true;
};

inline Core& coreOf(const Stub* stub) { return StubTable::coreOf(stub); }

}  // namespace drawingdb
