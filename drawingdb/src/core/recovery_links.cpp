// Recovery, what records say of each other: the version and its texts, handles, the tables that every drawing has,
// blocks and their records, names, owners and references.
//
// A name that nothing is called by gets a record, so that no object loses what it says; a handle that nothing has is
// taken out.
#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

#include "base/exact_utf8.h"
#include "base/text.h"
#include "drawingdb/object_id.h"
#include "drawingdb/src/core/record_walk.h"
#include "drawingdb/src/core/salvage.h"
#include "drawingdb/src/file/spelling.h"

namespace drawingdb {

namespace {

std::string handleText(std::uint64_t handle) { return "#" + OdDbHandle(handle).ascii(); }

// Codes of handles of other records, where the class of a record says no more.
bool refersToOthers(int code) {
    return (code >= 330 && code < 370) || (code >= 390 && code < 400) || code == 480 || code == 481;
}

bool isOfSpace(std::wstring_view name, bool paper) {
    return base::equalsNoCase(name, paper ? L"*Paper_Space" : L"*Model_Space") ||
           base::equalsNoCase(name, paper ? L"$PAPER_SPACE" : L"$MODEL_SPACE");
}

// The groups of a record for a walk.
class GroupsCursor {
  public:
    explicit GroupsCursor(const std::vector<Group>& groups) : next_(groups.data()), end_(next_ + groups.size()) {}
    bool next(Group& group) {
        if (next_ == end_) return false;
        group = *next_++;
        group.value = trimmed(group.value);
        return true;
    }

  private:
    const Group* next_;
    const Group* end_;
};

class LinkMender {
  public:
    explicit LinkMender(Salvage& salvage) : salvage_(salvage), format_(salvage.format) {}

    void run() {
        mendVersion();
        mendTexts();
        mendHandles();
        addMissing();
        mendTwins();
        nameBlocks();
        pairBlocks();
        finishClosers();
        mendNames();
        mendReferences();
        raiseSeed();
    }

  private:
    void tell(const char* place, std::string_view text) {
        const char* const end = salvage_.file.data() + salvage_.file.size();
        salvage_.damages.tell(place ? place : end, text);
    }
    std::wstring decoded(std::string_view raw) const { return decodeText(trimmed(raw), format_); }
    std::wstring folded(std::string_view raw) const { return base::toUpper(decoded(raw)); }

    // ---- the header

    // Where the value of a variable stands.
    const char* placeOf(const Group& value) { return salvage_.placeOf(value, salvage_.section("HEADER")->record); }

    // The first group of a variable.
    Group* variable(std::string_view name) {
        SalvagedNode* const header = salvage_.section("HEADER");
        if (!header) return nullptr;
        auto& groups = header->record.groups;
        for (std::size_t i = 0; i + 1 < groups.size(); ++i)
            if (groups[i].code == 9 && trimmed(groups[i].value) == name) return &groups[i + 1];
        return nullptr;
    }

    void setVariable(std::string_view name, int code, std::string_view value) {
        const Group group = salvage_.group([&](RecordWriter& writer) { writer.text(code, value); });
        if (Group* const found = variable(name)) {
            *found = group;
            return;
        }
        auto& groups = madeSection("HEADER").record.groups;
        // Behind the section's name.
        const auto behind = groups.begin() + std::min<std::ptrdiff_t>(2, static_cast<std::ptrdiff_t>(groups.size()));
        groups.insert(behind, {salvage_.group([&](RecordWriter& writer) { writer.text(9, name); }), group});
    }

    SalvagedNode& madeSection(std::string_view name) {
        SalvagedNode& made = salvage_.madeSection(name);
        if (!made.closer) made.closer = salvage_.record(nullptr, [](RecordWriter& writer) { writer.close(); });
        return made;
    }

    void mendVersion() {
        const Group* const named = variable("$ACADVER");
        if (named && versionNumber(named->value)) {
            format_.version = *versionNumber(named->value);
        } else if (named || hasMarkers()) {
            format_.version = hasOldTexts() ? version::v2004 : version::newest;
            const std::string name = "AC" + std::to_string(format_.version);
            tell(named ? placeOf(*named) : nullptr,
                 (named ? "unknown version " + quoted(named->value) : std::string("$ACADVER is missing")) +
                     "; read as " + name);
            setVariable("$ACADVER", 1, name);
        } else {
            format_.version = version::r12;
        }
        const Group* const page = variable("$DWGCODEPAGE");
        if (!page) return;
        if (const base::CodePage* const known = base::CodePage::byName(std::string(trimmed(page->value)))) {
            format_.codePage = known;
        } else if (!format_.utf8()) {
            tell(placeOf(*page), "unknown code page " + quoted(page->value) + "; texts are read as ANSI_1252");
            setVariable("$DWGCODEPAGE", 3, "ANSI_1252");
        }
    }

    bool hasMarkers() {
        bool found = false;
        salvage_.forEach([&](SalvagedNode&, const SalvagedRecord& record, SalvagedNode*) {
            found = found || record.text(100).starts_with("AcDb");
        });
        return found;
    }

    bool hasOldTexts() {
        bool found = false;
        salvage_.forEach([&](SalvagedNode&, const SalvagedRecord& record, SalvagedNode*) {
            for (const Group& group : record.groups)
                found = found || (valueKind(group.code) == ValueKind::text && !base::isUtf8(group.value));
        });
        return found;
    }

    void mendTexts() {
        if (!format_.utf8()) return;
        salvage_.forEach([&](SalvagedNode&, SalvagedRecord& record, SalvagedNode*) {
            for (Group& group : record.groups)
                if (valueKind(group.code) == ValueKind::text) mendText(record, group);
        });
    }

    void mendText(const SalvagedRecord& record, Group& group) {
        if (base::isUtf8(group.value)) return;
        tell(salvage_.placeOf(group, record), record.title() + ": the text of group " + std::to_string(group.code) +
                                                  " is not UTF-8; it was read in the drawing's code page");
        const std::string text = base::toUtf8Exact(format_.codePage->decode(group.value));
        const int code = group.code;
        group = salvage_.group([&](RecordWriter& writer) { writer.text(code, text); });
    }

    // ---- handles

    void mendHandles() {
        std::uint64_t largest = 0;
        const auto note = [&largest](std::uint64_t handle) {
            if (handle < kHandleLimit - kSpareHandles) largest = std::max(largest, handle);
        };
        salvage_.forEach([&](SalvagedNode&, const SalvagedRecord& record, SalvagedNode*) {
            note(record.handle);
            if (record.type == rtDimstyle) return;
            for (const Group& group : record.groups)
                if (valueKind(group.code) == ValueKind::handle) note(parseHandle(group.value));
        });
        salvage_.nextHandle = largest + 1;
        // Objects are found by them.
        salvage_.hasHandles = salvage_.hasHandles || format_.hasMarkers();
        salvage_.forEach([&](SalvagedNode&, SalvagedRecord& record, SalvagedNode*) {
            if (record.handle && !known_.insert(record.handle).second) {
                const std::string before = record.title();
                doubled_.insert(record.handle);
                giveHandle(record);
                tell(record.place,
                     before + " has the handle of an earlier record; it is " + handleText(record.handle) + " now");
            } else if (record.lacksHandle && salvage_.hasHandles && record.place && record.groups.size() > 1) {
                giveHandle(record);
                tell(record.place, record.title() + " got that handle: its own is empty or lost");
            }
        });
    }

    void giveHandle(SalvagedRecord& record) {
        const int code = record.type == rtDimstyle ? 105 : 5;
        const std::uint64_t old = std::exchange(record.handle, salvage_.newHandle());
        known_.insert(record.handle);
        record.lacksHandle = false;
        const Group group = salvage_.group([&](RecordWriter& writer) { writer.handle(code, record.handle); });
        for (Group& place : record.groups)
            if (old && place.code == code && parseHandle(place.value) == old) {
                place = group;
                return;
            }
        record.groups.insert(record.groups.begin() + 1, group);
    }

    std::uint64_t newHandle() {
        const std::uint64_t handle = salvage_.newHandle();
        known_.insert(handle);
        return handle;
    }

    void raiseSeed() {
        const Group* const seed = variable("$HANDSEED");
        if (!seed || parseHandle(seed->value) >= salvage_.nextHandle) return;
        setVariable("$HANDSEED", 5, OdDbHandle(salvage_.nextHandle).ascii());
    }

    // ---- sections and tables

    void missingSection(std::string_view name) {
        if (salvage_.section(name)) return;
        madeSection(name);
        tell(nullptr, "the SECTION " + std::string(name) + " is missing; an empty one was added");
    }

    void addMissing() {
        missingSection("ENTITIES");
        if (!format_.hasMarkers()) return;
        for (const char* const name : {"HEADER", "TABLES", "BLOCKS", "OBJECTS"}) missingSection(name);
        for (const char* const name : {"LTYPE", "LAYER", "STYLE", "BLOCK_RECORD"}) addTable(name);
        finishTables();
        mendRoot();
    }

    void addTable(std::string_view name) {
        if (salvage_.table(name)) return;
        salvage_.addTable(salvage_.record(nullptr, [&](RecordWriter& writer) {
            writer.text(0, "TABLE");
            writer.text(2, name);
        }));
        tell(salvage_.section("TABLES")->closer->place,
             "the TABLE " + std::string(name) + " is missing; an empty one was added");
    }

    // Those that were put in.
    void finishTables() {
        for (SalvagedNode& table : salvage_.section("TABLES")->children)
            if (table.record.type == rtTable && !table.record.place) finish(table);
    }

    void finish(SalvagedNode& table) {
        const std::string name(table.record.text(2));
        const auto count = static_cast<int>(table.children.size());
        table.record = salvage_.record(nullptr, [&](RecordWriter& writer) { writer.table(name, newHandle(), count); });
        if (!table.closer) table.closer = salvage_.record(nullptr, [](RecordWriter& writer) { writer.tableEnd(); });
    }

    // The dictionary that all others hang on is the first of the objects.
    void mendRoot() {
        SalvagedNode& objects = *salvage_.section("OBJECTS");
        if (!objects.children.empty() && objects.children.front().record.type == rtDictionary) {
            root_ = objects.children.front().record.handle;
            return;
        }
        root_ = newHandle();
        std::unordered_set<std::uint64_t> dictionaries;
        for (const SalvagedNode& object : objects.children)
            if (object.record.type == rtDictionary) dictionaries.insert(object.record.handle);
        SalvagedNode& root = objects.children.emplace_front();
        root.record = salvage_.record(nullptr, [&](RecordWriter& writer) {
            writer.dictionary(root_, 0);
            if (const std::uint64_t layouts = dictionaryOf(rtLayout, objects, dictionaries))
                writer.dictionaryEntry("ACAD_LAYOUT", layouts);
            if (const std::uint64_t groups = dictionaryOf(rtGroup, objects, dictionaries))
                writer.dictionaryEntry("ACAD_GROUP", groups);
        });
        tell(objects.record.place, "the dictionary that all objects hang on is missing; one was added");
    }

    // The one that lists objects of a kind: their owner.
    static std::uint64_t dictionaryOf(RecordType kind, const SalvagedNode& objects,
                                      const std::unordered_set<std::uint64_t>& dictionaries) {
        for (const SalvagedNode& object : objects.children) {
            if (object.record.type != kind) continue;
            const std::uint64_t owner = parseHandle(object.record.text(330));
            if (owner && dictionaries.contains(owner)) return owner;
        }
        return 0;
    }

    // ---- twins

    // A name leads to the first that has it. Those behind it get another one, so that they can be found, too.
    void mendTwins() {
        for (const char* const name : {"LTYPE", "LAYER", "STYLE", "DIMSTYLE"})
            if (SalvagedNode* const table = salvage_.table(name)) {
                // Where nothing points to records, one without a name is of no use; that of a shape file has none.
                if (!format_.hasMarkers() && table->record.text(2) != "STYLE") dropNameless(*table);
                renameTwins(table->children);
            }
        SalvagedNode* const blocks = salvage_.section("BLOCKS");
        SalvagedNode* const records = salvage_.table("BLOCK_RECORD");
        // From 2000 on blocks say which record is theirs. Before that records follow each other as blocks do.
        if (records) {
            nameRecords(records->children, blocks ? blocks->children : std::list<SalvagedNode>());
            const std::unordered_map<std::uint64_t, std::string> renamed = renameTwins(records->children);
            if (blocks && format_.version >= version::v2000)
                for (SalvagedNode& block : blocks->children)
                    if (const auto found = renamed.find(ownerOf(block.record)); found != renamed.end())
                        rename(block.record, found->second);
        }
        if (!blocks) return;
        for (const auto& [handle, name] : renameTwins(blocks->children)) renamedBlocks_.insert(folded(name));
    }

    void dropNameless(SalvagedNode& table) {
        std::erase_if(
            table.children,
            [&](const SalvagedNode& entry) {
                if (!trimmed(entry.record.text(2)).empty()) return false;
                tell(entry.record.place, entry.record.title() + " has no name; it was left out");
                return true;
            });
    }

    // What a record is called says its block. One without a block is of no use then.
    void nameRecords(std::list<SalvagedNode>& records, const std::list<SalvagedNode>& blocks) {
        std::erase_if(
            records,
            [&](SalvagedNode& node) {
                SalvagedRecord& record = node.record;
                if (!trimmed(record.text(2)).empty()) return false;
                const auto block = std::ranges::find_if(
                    blocks,
                    [&](const SalvagedNode& any) { return record.handle && ownerOf(any.record) == record.handle; });
                const std::string name(block == blocks.end() ? std::string_view() : trimmed(block->record.text(2)));
                if (name.empty()) {
                    tell(record.place, record.title() + " has no name; it was left out");
                    known_.erase(record.handle);
                    return true;
                }
                tell(record.place, record.title() + " has no name; it is that of its block now, " + quoted(name));
                if (record.find(2))
                    rename(record, name);
                else
                    record.groups.insert(record.groups.begin() + static_cast<std::ptrdiff_t>(placeOfFields(record)),
                                         salvage_.group([&](RecordWriter& writer) { writer.text(2, name); }));
                return false;
            });
    }

    // Behind the last marker.
    static std::size_t placeOfFields(const SalvagedRecord& record) {
        std::size_t place = 1;
        for (std::size_t i = 1; i < record.groups.size() && record.groups[i].code < 1000; ++i)
            if (record.groups[i].code == 100) place = i + 1;
        return place;
    }

    // The new names by handles.
    std::unordered_map<std::uint64_t, std::string> renameTwins(std::list<SalvagedNode>& entries) {
        std::unordered_map<std::uint64_t, std::string> renamed;
        std::unordered_set<std::wstring> all;
        for (const SalvagedNode& entry : entries) all.insert(folded(entry.record.text(2)));
        if (all.size() == entries.size()) return renamed;
        std::unordered_map<std::wstring, int> met;
        for (SalvagedNode& entry : entries) {
            SalvagedRecord& record = entry.record;
            const std::wstring name = decoded(record.text(2));
            if (name.empty() || isAnonymous(name)) continue;
            int& count = met[base::toUpper(name)];
            if (++count == 1) continue;
            std::wstring free = withNumber(name, count);
            while (!all.insert(base::toUpper(free)).second) free = withNumber(name, ++count);
            const std::string text = encodeText(free, format_);
            tell(record.place, record.title() + " has the name of an earlier one; it is " + quoted(text) + " now");
            rename(record, text);
            renamed.emplace(record.handle, text);
        }
        return renamed;
    }

    // References find those by their handles, or not at all.
    static bool isAnonymous(std::wstring_view name) { return name.starts_with(L'*'); }

    // "DOOR$2", as long as names may be.
    std::wstring withNumber(const std::wstring& name, int number) const {
        const std::wstring end = L"$" + std::to_wstring(number);
        const std::size_t longest = format_.version < version::v2000 ? 31 : 255;
        return name.substr(0, longest - end.size()) + end;
    }

    // A block says its name twice.
    void rename(SalvagedRecord& record, const std::string& name) {
        for (Group& group : record.groups) {
            if (group.code >= 1000) break;
            if (group.code != 2 && !(group.code == 3 && record.type == rtBlock)) continue;
            const int code = group.code;
            group = salvage_.group([&](RecordWriter& writer) { writer.text(code, name); });
        }
    }

    // ---- blocks

    // Those of which the beginning is lost: the owner of what stands in one is its record.
    void nameBlocks() {
        if (SalvagedNode* const blocks = salvage_.section("BLOCKS"))
            for (SalvagedNode& block : blocks->children)
                if (block.record.type == rtBlock) blocks_.emplace(folded(block.record.text(2)), &block);
        if (salvage_.namelessBlocks.empty()) return;
        std::unordered_map<std::uint64_t, const SalvagedRecord*> records;
        if (const SalvagedNode* const table = salvage_.table("BLOCK_RECORD"))
            for (const SalvagedNode& record : table->children) records.emplace(record.record.handle, &record.record);
        for (SalvagedNode& nameless : salvage_.namelessBlocks) {
            if (nameless.children.empty()) continue;
            const std::uint64_t owner = ownerOf(nameless.children.front().record);
            const char* const place = nameless.children.front().record.place;
            const auto found = owner ? records.find(owner) : records.end();
            const SalvagedRecord* const record = found == records.end() ? nullptr : found->second;
            const bool isNamed = record && !trimmed(record->text(2)).empty();
            if (isNamed && isOfSpace(decoded(record->text(2)), false)) {
                SalvagedNode& entities = *salvage_.section("ENTITIES");
                entities.children.splice(entities.children.end(), nameless.children);
            } else if (isNamed) {
                SalvagedNode*& into = blocks_[folded(record->text(2))];
                if (!into) into = &madeBlock(record->text(2), owner);
                tell(place, "what stands from here on went into BLOCK " + std::string(record->text(2)));
                into->children.splice(into->children.end(), nameless.children);
            } else {
                const std::string name = nameFor(nameless.record);
                SalvagedNode& block = madeBlock(name, 0);
                for (Group& group : block.record.groups)
                    if (const Group* const old = nameless.record.find(group.code);
                        old && group.code >= 10 && group.code <= 30)
                        group = *old;
                blocks_.emplace(folded(name), &block);
                tell(place, "the name of the block is lost that stands from here on; it is BLOCK " + name + " now");
                block.children.splice(block.children.end(), nameless.children);
            }
        }
        salvage_.namelessBlocks.clear();
        known_.clear();
        salvage_.forEach(
            [&](SalvagedNode&, const SalvagedRecord& record, SalvagedNode*) { known_.insert(record.handle); });
    }

    // A block says its name twice; else it is "BLOCK$1" or so.
    std::string nameFor(const SalvagedRecord& nameless) const {
        std::string name(trimmed(nameless.text(3)));
        for (int number = 1; name.empty() || blocks_.contains(folded(name)); ++number)
            name = "BLOCK$" + std::to_string(number);
        return name;
    }

    static std::uint64_t ownerOf(const SalvagedRecord& record) {
        for (RecordWalk walk(GroupsCursor(record.groups)); walk.next();)
            if (walk.part() == RecordPart::field && walk.group().code == 330 && walk.inHead())
                return parseHandle(walk.group().value);
        return 0;
    }

    SalvagedNode& madeBlock(std::string_view rawName, std::uint64_t record) {
        const std::string name(trimmed(rawName));
        const bool paper = isOfSpace(decoded(name), true);
        SalvagedNode& block = madeSection("BLOCKS").children.emplace_back();
        block.record = salvage_.record(
            nullptr, [&](RecordWriter& writer) { writer.block(newHandle(), record, name, paper); });
        block.closer =
            salvage_.record(nullptr, [&](RecordWriter& writer) { writer.blockEnd(newHandle(), record, paper); });
        return block;
    }

    std::uint64_t madeBlockRecord(SalvagedNode& table, std::string_view name) {
        SalvagedNode& made = table.children.emplace_back();
        made.record = salvage_.record(nullptr, [&](RecordWriter& writer) {
            writer.blockRecord(newHandle(), table.record.handle, trimmed(name));
        });
        return made.record.handle;
    }

    // A block has a record and a record a block; from R13 on, the two spaces too.
    void pairBlocks() {
        SalvagedNode* const table = salvage_.table("BLOCK_RECORD");
        if (!table) return;
        for (SalvagedNode& record : table->children)
            if (!trimmed(record.record.text(2)).empty())
                addRecordOfBlock(folded(record.record.text(2)), record.record.handle);
        for (const auto& [name, block] : blocks_) {
            if (recordOfBlock_.contains(name)) continue;
            addRecordOfBlock(name, madeBlockRecord(*table, block->record.text(2)));
            tell(block->record.place,
                 block->record.title() + " has no record in the TABLE BLOCK_RECORD; one was added");
        }
        for (SalvagedNode& record : table->children) {
            const std::string_view name = record.record.text(2);
            if (trimmed(name).empty() || blocks_.contains(folded(name))) continue;
            blocks_.emplace(folded(name), &madeBlock(name, record.record.handle));
            tell(record.record.place,
                 "the BLOCK " + std::string(trimmed(name)) + " is missing; an empty one was added");
        }
        if (!format_.hasMarkers()) return;
        for (const bool paper : {false, true}) {
            const bool found = std::any_of(blocks_.begin(), blocks_.end(),
                                           [&](const auto& row) { return isOfSpace(row.first, paper); });
            if (found) continue;
            const char* const name = paper ? "*Paper_Space" : "*Model_Space";
            addBlock(name);
            tell(nullptr, "the BLOCK " + std::string(name) + " is missing; it was added");
        }
    }

    void addBlock(std::string_view name) {
        SalvagedNode* const table = salvage_.table("BLOCK_RECORD");
        const std::wstring key = folded(name);
        std::uint64_t record = 0;
        if (table) addRecordOfBlock(key, record = madeBlockRecord(*table, name));
        blocks_.emplace(key, &madeBlock(name, record));
    }

    void addRecordOfBlock(const std::wstring& name, std::uint64_t record) {
        if (!recordOfBlock_.emplace(name, record).second) return;
        for (const bool paper : {false, true})
            if (!spaceRecords_[paper] && isOfSpace(name, paper)) spaceRecords_[paper] = record;
    }

    // Whom a record belongs to, by where it stands.
    std::uint64_t trueOwner(const SalvagedRecord& record, const SalvagedNode* owner) {
        const auto recordOf = [this](const SalvagedRecord& block) {
            const auto found = recordOfBlock_.find(folded(block.text(2)));
            return found == recordOfBlock_.end() ? 0 : found->second;
        };
        if (record.type == rtBlock) return recordOf(record);
        if (!owner) return 0;
        switch (owner->record.type) {
            case rtBlock:
                return recordOf(owner->record);
            case rtSection:
                if (sectionName(*owner) == "ENTITIES") return spaceRecords_[trimmed(record.text(67)) == "1"];
                return sectionName(*owner) == "OBJECTS" && record.handle != root_ ? root_ : 0;
            default:
                return owner->record.handle;
        }
    }

    // The ends that were put in.
    void finishClosers() {
        salvage_.forEach([&](SalvagedNode& node, const SalvagedRecord& record, SalvagedNode*) {
            if (!node.closer || &record != &*node.closer || !record.lacksHandle) return;
            const char* const place = record.place;
            if (record.type == rtEndblk)
                node.closer = salvage_.record(
                    place,
                    [&](RecordWriter& writer) {
                        writer.blockEnd(newHandle(), trueOwner(record, &node), node.record.find(67) != nullptr);
                    });
            else if (record.type == rtSeqend)
                node.closer = salvage_.record(
                    place,
                    [&](RecordWriter& writer) {
                        writer.record("SEQEND", newHandle(), node.record.handle);
                        writer.marker("AcDbEntity");
                        if (node.record.find(67)) writer.integer(67, 1);
                        const std::string_view layer = trimmed(node.record.text(8));
                        writer.text(8, layer.empty() ? std::string_view("0") : layer);
                    });
        });
    }

    // ---- names

    void mendNames() {
        for (const char* const table : {"LAYER", "LTYPE", "STYLE", "DIMSTYLE"}) names(table);
        std::vector<std::pair<const SalvagedRecord*, std::string_view>> missing;
        salvage_.forEach([&](SalvagedNode&, SalvagedRecord& record, SalvagedNode*) {
            if (record.type == rtInsert && trimmed(record.text(2)).empty()) nameBlockOf(record);
            const std::string_view name = record.text(2);
            if (showsBlock(record) && !trimmed(name).empty() && !blocks_.contains(folded(name))) {
                missing.emplace_back(&record, name);
                blocks_.emplace(folded(name), nullptr);
            }
        });
        for (const auto& [record, name] : missing) {
            blocks_.erase(folded(name));
            addBlock(trimmed(name));
            tell(record->place,
                 record->title() + " shows the block " + quoted(name) + ", which is missing; an empty one was added");
        }
    }

    // A reference is there for its attributes, too.
    void nameBlockOf(SalvagedRecord& reference) {
        const std::string name = nameFor({});
        tell(reference.place, reference.title() + " does not say which block it shows; that is " + name + " now");
        const Group group = salvage_.group([&](RecordWriter& writer) { writer.text(2, name); });
        const auto at = std::ranges::find_if(
            reference.groups, [&](const Group& old) { return old.code == 2 || old.code == 10 || old.code >= 1000; });
        if (at != reference.groups.end() && at->code == 2)
            *at = group;
        else
            reference.groups.insert(at, group);
    }

    // A dimension and a table have their picture in a block.
    static bool showsBlock(const SalvagedRecord& record) {
        static constexpr std::array<std::string_view, 4> kShown = {"DIMENSION", "ARC_DIMENSION",
                                                                   "LARGE_RADIAL_DIMENSION", "ACAD_TABLE"};
        return record.type == rtInsert || std::ranges::find(kShown, record.name) != kShown.end();
    }

    // The code that a record names one of a table by; 0 for none.
    static int codeOf(std::string_view table, const SalvagedRecord& record, bool isEntity) {
        if (table == "LAYER") return isEntity ? 8 : 0;
        if (table == "LTYPE") return isEntity || record.type == rtLayer ? 6 : 0;
        if (table == "STYLE") {
            const bool isText =
                record.type == rtText || record.type == rtMtext || record.type == rtAttrib || record.type == rtAttdef;
            return isEntity && isText ? 7 : 0;
        }
        return isEntity && (record.name == "DIMENSION" || record.name == "LEADER") ? 3 : 0;
    }

    // An old drawing without the table does without its records.
    void names(std::string_view tableName) {
        SalvagedNode* table = salvage_.table(tableName);
        if (!table && !format_.hasMarkers()) return;
        std::unordered_set<std::wstring> there;
        if (table)
            for (const SalvagedNode& entry : table->children) there.insert(folded(entry.record.text(2)));
        std::unordered_set<std::string_view> seen;  // as files spell them, which spares most of the folding
        std::vector<std::pair<const SalvagedRecord*, std::string_view>> missing;
        salvage_.forEach([&](SalvagedNode&, const SalvagedRecord& record, SalvagedNode* owner) {
            if (!owner || record.type == rtSection || record.type == rtEndsec) return;
            const bool isEntity = owner->record.type == rtBlock || owner->record.type == rtInsert ||
                                  owner->record.type == rtPolyline || record.type == rtBlock ||
                                  (owner->record.type == rtSection && sectionName(*owner) == "ENTITIES");
            const int code = codeOf(tableName, record, isEntity);
            if (!code) return;
            const std::string_view name = trimmed(record.text(code));
            if (name.empty() || !seen.insert(name).second || isBuiltInEntry(tableName, decoded(name))) return;
            if (!there.insert(folded(name)).second) return;
            missing.emplace_back(&record, name);
        });
        if (!table && !missing.empty()) {
            addTable(tableName);
            table = salvage_.table(tableName);
            finish(*table);
        }
        for (const auto& [record, name] : missing) {
            tell(record->place, record->title() + " names the " + std::string(tableName) + " " + quoted(name) +
                                    ", which is missing; it was added");
            SalvagedNode& made = table->children.emplace_back();
            const std::string_view text = name;
            made.record = salvage_.record(nullptr, [&](RecordWriter& writer) {
                writer.plainEntry(tableName, newHandle(), table->record.handle, text);
            });
        }
    }

    // ---- owners and references

    void mendReferences() {
        if (!format_.hasMarkers()) return;
        bool isKnown = false;  // the section; handles in others mean what they like
        salvage_.forEach([&](SalvagedNode&, SalvagedRecord& record, SalvagedNode* owner) {
            if (record.type == rtSection) {
                const std::string_view name = sectionName(record);
                isKnown = name == "TABLES" || name == "BLOCKS" || name == "ENTITIES" || name == "OBJECTS";
            } else if (isKnown && record.type != rtEndsec) {
                mendReferences(record, owner);
            }
        });
    }

    bool isLost(const Group& group) const {
        const std::uint64_t handle = parseHandle(group.value);
        return handle != 0 && !known_.contains(handle);
    }

    // Whether an owner is meant that had its handle from another record, and has one of its own now. Among objects
    // nothing but the handle says who owns whom.
    bool isDoubled(const Group& group, const SalvagedRecord& record, const SalvagedNode* owner) {
        const std::uint64_t handle = parseHandle(group.value);
        if (!doubled_.contains(handle)) return false;
        if (owner && owner->record.type == rtSection && sectionName(*owner) == "OBJECTS") return false;
        const std::uint64_t meant = trueOwner(record, owner);
        return meant != 0 && meant != handle;
    }

    // Whether it belongs to a block that has a record of its own only now. That it has one was told.
    bool isOfRenamed(const SalvagedRecord& record, const SalvagedNode* owner) const {
        const SalvagedRecord* const block = record.type == rtBlock                   ? &record
                                            : owner && owner->record.type == rtBlock ? &owner->record
                                                                                     : nullptr;
        return block && !renamedBlocks_.empty() && renamedBlocks_.contains(folded(block->text(2)));
    }

    void mendReferences(SalvagedRecord& record, const SalvagedNode* owner) {
        std::vector<Group>& kept = kept_;
        kept.clear();
        bool changed = false;
        std::vector<std::uint64_t> lost;
        const char* place = nullptr;
        const auto lose = [&](const Group& group) {
            if (!place) place = salvage_.placeOf(group, record);
            lost.push_back(parseHandle(group.value));
            changed = true;
        };
        std::size_t control = 0;  // where the open control string begins among the kept
        bool dropPartner = false;
        bool ownerSeen = false;
        std::size_t i = 0;
        RecordWalk walk(GroupsCursor(record.groups));
        for (; walk.next(); ++i) {
            const Group& group = record.groups[i];
            if (std::exchange(dropPartner, false)) continue;
            switch (walk.part()) {
                case RecordPart::controlBegin:
                    control = kept.size();
                    break;
                case RecordPart::inControl:
                    if (walk.control() != ControlString::other || record.type == rtBlockRecord)
                        if (refersToOthers(group.code) && isLost(group)) {
                            lose(group);
                            continue;
                        }
                    break;
                case RecordPart::controlEnd:
                    // What refers to nothing any more need not be there.
                    if (changed && kept.size() == control + 1) {
                        kept.pop_back();
                        continue;
                    }
                    break;
                case RecordPart::field:
                    if (group.code == 330 && walk.inHead() && !ownerSeen) {
                        ownerSeen = true;
                        const bool isNone = isLost(group);
                        const std::uint64_t handle = trueOwner(record, owner);
                        if (isOfRenamed(record, owner)) {
                            kept.push_back(salvage_.group([&](RecordWriter& writer) { writer.handle(330, handle); }));
                            changed = true;
                            continue;
                        }
                        if (!isNone && !isDoubled(group, record, owner)) break;
                        tell(salvage_.placeOf(group, record),
                             record.title() + ": its owner, " + handleText(parseHandle(group.value)) +
                                 (isNone ? ", is not there; it is " : ", has another handle; it is ") +
                                 handleText(handle) + " now");
                        kept.push_back(salvage_.group([&](RecordWriter& writer) { writer.handle(330, handle); }));
                        changed = true;
                        continue;
                    }
                    if (!isLost(group) || !refersToOthers(group.code) || record.name == "XRECORD") break;
                    lose(group);
                    if (record.type == rtDictionary || record.type == rtDictionaryWithDefault) {
                        if (!kept.empty() && kept.back().code == 3) kept.pop_back();
                    } else if (record.type == rtSortents) {
                        dropPartner = true;
                    } else if (record.type != rtGroup) {
                        const int code = group.code;
                        kept.push_back(salvage_.group([&](RecordWriter& writer) { writer.handle(code, 0); }));
                    }
                    continue;
                default:
                    break;
            }
            kept.push_back(group);
        }
        if (!changed) return;
        if (!lost.empty()) {
            std::string text = record.title() + ": " + handleText(lost.front());
            if (lost.size() > 1) text += " and " + std::to_string(lost.size() - 1) + " more";
            tell(place,
                 text + (lost.size() == 1 ? ", which it refers to, is not there; the reference was taken out"
                                          : ", which it refers to, are not there; the references were taken out"));
        }
        record.groups = kept;
    }

    Salvage& salvage_;
    FileFormat& format_;
    std::unordered_set<std::uint64_t> known_;
    std::unordered_set<std::uint64_t> doubled_;                      // handles that later records had too
    std::vector<Group> kept_;                                        // of the record whose references are looked at
    std::unordered_map<std::wstring, SalvagedNode*> blocks_;         // by folded name
    std::unordered_map<std::wstring, std::uint64_t> recordOfBlock_;  // its handle
    std::unordered_set<std::wstring> renamedBlocks_;                 // that share a record with another
    std::array<std::uint64_t, 2> spaceRecords_{};                    // of the model, of the paper
    std::uint64_t root_ = 0;
};

}  // namespace

void mendLinks(Salvage& salvage) { LinkMender(salvage).run(); }

}  // namespace drawingdb
