// Recovery, from records to trees.
//
//   section = SECTION { TABLE { entry } ENDTAB | BLOCK { entity } ENDBLK | entity | object } ENDSEC
//   entity  = INSERT { ATTRIB } SEQEND | POLYLINE { VERTEX } SEQEND | any other record
//
// A record that cannot stand where it does tells that ends and beginnings before it are lost; they are put in. A group
// that cannot be read is left out of its record, and the record stays as long as it has what its kind cannot do
// without.
#include "drawingdb/src/core/recovery.h"

#include <algorithm>
#include <array>

#include "base/paths.h"
#include "base/text.h"
#include "drawingdb/entity.h"
#include "drawingdb/src/core/salvage.h"
#include "drawingdb/src/file/spelling.h"
#include "drawingdb/symbol_table.h"

namespace drawingdb {

namespace {

// What the kinds cannot do without. Of one that is not named here the groups may count each other, so that it goes when
// one is lost. References stay for the sake of their attributes, wherever they come to lie.
struct Needs {
    std::string_view kind;
    std::array<int, 6> codes;
};
constexpr Needs kNeeds[] = {
    {"SECTION", {2}},
    {"ENDSEC", {}},
    {"TABLE", {2}},
    {"ENDTAB", {}},
    {"BLOCK", {2}},
    {"ENDBLK", {}},
    {"SEQEND", {}},
    {"EOF", {}},
    {"CLASS", {1, 2, 3}},
    {"LAYER", {2}},
    {"STYLE", {2}},
    {"APPID", {2}},
    {"DIMSTYLE", {2}},
    {"BLOCK_RECORD", {2}},
    {"VPORT", {2}},
    {"VIEW", {2}},
    {"UCS", {2}},
    {"DICTIONARY", {}},
    {"LAYOUT", {1}},
    {"INSERT", {2}},
    {"ATTRIB", {1, 2}},
    {"ATTDEF", {2, 10, 20}},
    {"TEXT", {1, 10, 20, 40}},
    {"MTEXT", {1, 10, 20, 40}},
    {"POLYLINE", {}},
    {"VERTEX", {10, 20}},
    {"LINE", {10, 20, 11, 21}},
    {"RAY", {10, 20, 11, 21}},
    {"XLINE", {10, 20, 11, 21}},
    {"POINT", {10, 20}},
    {"CIRCLE", {10, 20, 40}},
    {"ARC", {10, 20, 40, 50, 51}},
    {"ELLIPSE", {10, 20, 11, 21, 40}},
    {"VIEWPORT", {10, 20, 40, 41}},
    {"SOLID", {10, 20, 11, 21, 12, 22}},
    {"TRACE", {10, 20, 11, 21, 12, 22}},
    {"3DFACE", {10, 20, 11, 21, 12, 22}},
};

bool hasWhatItNeeds(const SalvagedRecord& record) {
    const auto* const needs = std::find_if(
        std::begin(kNeeds), std::end(kNeeds), [&](const Needs& row) { return row.kind == record.name; });
    return needs != std::end(kNeeds) && std::all_of(needs->codes.begin(), needs->codes.end(), [&](int code) {
               return code == 0 || record.find(code) != nullptr;
           });
}

// Where records of a kind stand.
enum class Home { anywhere, classes, tables, entities, objects };

Home homeOf(const SalvagedRecord& record) {
    switch (record.type) {
        case rtClass:
            return Home::classes;
        case rtPolyline:
            return Home::entities;
        case rtFieldList:
        case rtGroup:
        case rtSortents:
            return Home::objects;
        default:
            break;
    }
    if (const OdRxClass* const known = TypeTable::knownClass(record.type)) {
        if (known->isDerivedFrom(OdDbSymbolTableRecord::desc())) return Home::tables;
        return known->isDerivedFrom(OdDbEntity::desc()) ? Home::entities : Home::objects;
    }
    for (const Group& group : record.groups)
        if (group.code == 100 && trimmed(group.value) == "AcDbEntity") return Home::entities;
    return Home::anywhere;
}

std::string_view sectionOf(Home home, const SalvagedRecord& record) {
    switch (home) {
        case Home::classes:
            return "CLASSES";
        case Home::tables:
            return "TABLES";
        case Home::entities:
            return "ENTITIES";
        case Home::objects:
            return "OBJECTS";
        case Home::anywhere:
            break;
    }
    return record.find(100) ? "OBJECTS" : "ENTITIES";
}

class TreeBuilder {
  public:
    explicit TreeBuilder(Salvage& salvage) : salvage_(salvage) {}

    bool run() {
        salvage_.head = salvage_.file.substr(0, headSize());
        const std::string_view body = salvage_.file.substr(headSize());
        DamagedGroups groups(body, salvage_.format);
        for (Piece piece; !ended_ && groups.next(piece);) take(piece);
        if (!begun_) return false;
        const char* const end = salvage_.file.data() + salvage_.file.size();
        finishRecord(!ended_);
        if (ended_) {
            salvage_.tail = {groups.place(), static_cast<std::size_t>(end - groups.place())};
        } else {
            leaveSection(end);
            tell(end, "the end-of-file record is missing; it was added");
        }
        for (SalvagedNode& section : salvage_.sections)
            if (!section.closer) section.closer = salvage_.record(end, [](RecordWriter& writer) { writer.close(); });
        return !salvage_.sections.empty();
    }

  private:
    void tell(const char* place, std::string_view text) { salvage_.damages.tell(place, text); }

    // Byte-order mark, sign of a binary file.
    std::size_t headSize() const {
        if (salvage_.format.binary) return kBinaryHead;
        return salvage_.file.starts_with("\xEF\xBB\xBF") ? 3 : 0;
    }

    // ---- records

    void take(const Piece& piece) {
        const Group& group = piece.read;
        if (piece.kind == Piece::garbage) {
            tellGarbage(group.bytes());
            loseGroup();
            return;
        }
        if (piece.kind == Piece::badName) {
            beginRecord(group, group.begin);
            record_.name = "a record without a name";
            record_.isPartial = true;
            return;
        }
        if (piece.kind == Piece::bareName) {
            const std::string name(group.value);
            beginRecord(salvage_.group([&](RecordWriter& writer) { writer.text(0, name); }), group.begin);
            tell(group.begin, "the group 0 of a record " + name + " is damaged; it was put right");
            return;
        }
        if (group.code == 0) {
            beginRecord(group, group.begin);
            return;
        }
        if (!begun_) {
            if (group.code == 999 || headTold_) return;
            headTold_ = true;
            tell(group.begin, "what stands before the first record was left out");
            return;
        }
        if (piece.kind == Piece::badValue) {
            if (inLostVariable_) return;
            tellBadValue(group);
            if (isHandle(group) && !record_.handle)
                record_.lacksHandle = true;
            else
                loseGroup();
            return;
        }
        if (group.code == 9 && record_.type == rtSection) {
            inLostVariable_ = false;
            dropEmptyVariable();
            variable_ = record_.groups.size();
        }
        if (inLostVariable_) return;
        behindMarker_ = behindMarker_ || group.code == 100;
        // Without a handle the reader takes the next such group for one.
        const bool isOwn = isHandle(group) && !record_.handle;
        if (!isOwn || takeHandle(group)) record_.groups.push_back(withoutZeros(group));
    }

    // Before anything asks for a name: with its zero bytes it would be another one.
    Group withoutZeros(const Group& group) {
        if (valueKind(group.code) != ValueKind::text || group.value.find('\0') == group.value.npos) return group;
        tell(group.begin, record_.title() + ": the text of group " + std::to_string(group.code) +
                              " has zero bytes, which were left out");
        std::string text(group.value);
        std::erase(text, '\0');
        return salvage_.group([&](RecordWriter& writer) { writer.text(group.code, text); });
    }

    bool isHandle(const Group& group) const {
        if (record_.type == rtSection || record_.type == rtClass) return false;
        return group.code == (record_.type == rtDimstyle ? 105 : 5);
    }

    // False when the group says nothing. What stands behind a marker is no handle of the record's own.
    bool takeHandle(const Group& group) {
        if (behindMarker_) {
            record_.lacksHandle = true;
            const bool says = parseHandle(group.value) != 0;
            salvage_.hasHandles = salvage_.hasHandles || says;
            return says;
        }
        record_.handle = parseHandle(group.value);
        record_.lacksHandle = record_.handle == 0;
        salvage_.hasHandles = salvage_.hasHandles || record_.handle;
        return !record_.lacksHandle;
    }

    void beginRecord(const Group& group, const char* place) {
        finishRecord(false);
        if (!begun_ && !headTold_)
            salvage_.head = {salvage_.file.data(), static_cast<std::size_t>(place - salvage_.file.data())};
        begun_ = true;
        record_ = {};
        record_.name = trimmed(group.value);
        record_.type = salvage_.typeOf(record_.name);
        record_.place = place;
        record_.groups.push_back(group);
        inLostVariable_ = behindMarker_ = false;
        variable_ = 0;
        ended_ = record_.type == rtEof;
    }

    // A variable of the header that has nothing but its name.
    void dropEmptyVariable() {
        auto& groups = record_.groups;
        if (variable_ == 0 || groups.size() != variable_ + 1) return;
        tell(salvage_.placeOf(groups.back(), record_),
             record_.title() + ": " + quoted(groups.back().value) + " has no value; it was left out");
        groups.pop_back();
        variable_ = 0;
    }

    // A variable of the header goes whole.
    void loseGroup() {
        if (!begun_) {
            headTold_ = true;
            return;
        }
        if (record_.type != rtSection) {
            record_.isPartial = true;
            return;
        }
        if (variable_ == 0) return;
        record_.groups.resize(std::exchange(variable_, 0));
        inLostVariable_ = true;
    }

    void tellGarbage(std::string_view bytes) {
        std::string text;
        if (begun_) text = record_.title() + ": ";
        if (salvage_.format.binary) {
            tell(bytes.data(), text + std::to_string(bytes.size()) + " bytes that are no groups were left out");
            return;
        }
        const auto lines = std::max<std::ptrdiff_t>(1, std::count(bytes.begin(), bytes.end(), '\n'));
        text += lines == 1 ? "a line that belongs to no group was left out: "
                           : std::to_string(lines) + " lines that are no groups were left out: ";
        tell(bytes.data(), text + quoted(bytes.substr(0, bytes.find('\n'))));
    }

    void tellBadValue(const Group& group) {
        const ValueKind kind = valueKind(group.code);
        std::string text = record_.title() + ": the value of group " + std::to_string(group.code) + " is no ";
        text += kind == ValueKind::handle ? "handle" : kind == ValueKind::chunk ? "row of bytes" : "number";
        if (!salvage_.format.binary) text += ": " + quoted(group.value);
        tell(group.begin, text + "; the group was left out");
    }

    void finishRecord(bool isCutOff) {
        if (!begun_) return;
        if (isCutOff) loseGroup();
        dropEmptyVariable();
        closeControls();
        if (record_.isPartial && !record_.handle && record_.find(100)) record_.lacksHandle = true;
        const bool isEnd = record_.type == rtEndsec || record_.type == rtEndtab || record_.type == rtEndblk ||
                           record_.type == rtSeqend || record_.type == rtSection || record_.type == rtTable ||
                           record_.type == rtBlock;
        if (isCutOff && !isEnd) {
            tell(record_.place, record_.title() + " was left out: the file ends in it");
            return;
        }
        if (table_) mendKind(record_);
        if (record_.isPartial && !hasWhatItNeeds(record_)) {
            tell(record_.place, record_.title() + " was left out: without what is lost it says nothing");
            dropped();
            return;
        }
        place(std::move(record_));
    }

    // Everything behind a control string whose end is lost would count as in it. In extension records such groups may
    // be anything.
    void closeControls() {
        if (record_.name == "XRECORD") return;
        std::size_t open = 0;  // where one begins; 0: none is open
        for (std::size_t i = 1; i < record_.groups.size(); ++i) {
            const Group group = record_.groups[i];
            const bool begins = group.code == 102 && trimmed(group.value).starts_with('{');
            if (open != 0 && (begins || group.code == 100 || group.code >= 1000)) {
                closeControl(open, i++);
                open = 0;
            }
            if (group.code == 102) open = begins ? i : 0;
        }
        if (open != 0) closeControl(open, record_.groups.size());
    }

    // It ends before `end`: the owner, and what else is no reference to others, does not stand in it.
    void closeControl(std::size_t open, std::size_t end) {
        auto& groups = record_.groups;
        const std::string_view name = trimmed(groups[open].value);
        std::size_t place = end;
        if (name == "{ACAD_REACTORS" || name == "{ACAD_XDICTIONARY") {
            const int code = name == "{ACAD_REACTORS" ? 330 : 360;
            place = open + 1;
            while (place < end && groups[place].code == code) ++place;
            const bool isBeforeMarker = end < groups.size() && groups[end].code == 100;
            if (place == end && code == 330 && place > open + 1 && isBeforeMarker) --place;
        }
        tell(salvage_.placeOf(groups[open], record_),
             record_.title() + ": the end of the control string " + quoted(name) + " is missing; it was added");
        groups.insert(groups.begin() + static_cast<std::ptrdiff_t>(place),
                      salvage_.group([](RecordWriter& writer) { writer.text(102, "}"); }));
    }

    // What follows a record that was left out as a part of it goes with it.
    void dropped() {
        if (record_.type == rtBlock) {
            beginNamelessBlock(record_.place);
            block_->record.groups = std::move(record_.groups);
        }
        if (record_.type != rtInsert && record_.type != rtPolyline) return;
        endComplex(record_.place);
        complex_ = &lost_.emplace_back();
        complex_->record.type = record_.type;
    }

    // ---- trees

    void place(SalvagedRecord record) {
        switch (record.type) {
            case rtAttrib:
            case rtVertex:
            case rtSeqend:
                if (complex_)
                    part(std::move(record));
                else
                    tell(record.place, record.title() + " was left out: it belongs to nothing");
                return;
            default:
                endComplex(record.place);
        }
        switch (record.type) {
            case rtSection:
                beginSection(std::move(record));
                return;
            case rtEndsec:
                endSection(std::move(record));
                return;
            case rtTable:
                beginTable(std::move(record));
                return;
            case rtEndtab:
                end(table_, std::move(record));
                return;
            case rtBlock:
                beginBlock(std::move(record));
                return;
            case rtEndblk:
                end(block_, std::move(record));
                return;
            case rtEof:
                leaveSection(record.place);
                return;
            default:
                member(std::move(record));
        }
    }

    void part(SalvagedRecord record) {
        const bool fits = record.type == rtSeqend || (record.type == rtAttrib) == (complex_->record.type == rtInsert);
        if (!fits) {
            tell(record.place, record.title() + " was left out: it belongs to nothing");
        } else if (record.type == rtSeqend) {
            complex_->closer = std::move(record);
            complex_ = nullptr;
        } else {
            complex_->children.emplace_back().record = std::move(record);
        }
    }

    void endComplex(const char* place) {
        if (!complex_) return;
        SalvagedNode& whole = *std::exchange(complex_, nullptr);
        const bool wants = whole.record.type == rtPolyline || !whole.children.empty();
        if (!wants || !whole.record.place) return;
        tell(place, "the SEQEND of " + whole.record.title() + " is missing before this; it was added");
        closeWith(whole, place, "SEQEND");
    }

    // Handles are given out when all that are there are known.
    void closeWith(SalvagedNode& node, const char* place, std::string_view type) {
        node.closer = salvage_.record(place, [&](RecordWriter& writer) { writer.text(0, type); });
        node.closer->lacksHandle = type == "SEQEND" || type == "ENDBLK";
    }

    void end(SalvagedNode*& open, SalvagedRecord closer) {
        if (!open) {
            tell(closer.place, closer.title() + " was left out: there is nothing that it ends");
            return;
        }
        if (!open->closer) open->closer = std::move(closer);
        open = nullptr;
    }

    void leaveInner(const char* place) {
        endComplex(place);
        for (SalvagedNode** open : {&table_, &block_}) {
            SalvagedNode* const node = std::exchange(*open, nullptr);
            if (!node || node->closer) continue;
            const char* const closer = open == &table_ ? "ENDTAB" : "ENDBLK";
            if (node->record.place)
                tell(place, std::string("the ") + closer + " of " + node->record.title() +
                                " is missing before this; it was added");
            closeWith(*node, place, closer);
        }
    }

    void leaveSection(const char* place) {
        leaveInner(place);
        SalvagedNode* const node = std::exchange(section_, nullptr);
        if (!node || node->closer) return;
        if (node->record.place)
            tell(place, "the ENDSEC of " + node->record.title() + " is missing before this; it was added");
        closeWith(*node, place, "ENDSEC");
    }

    void beginSection(SalvagedRecord record) {
        leaveSection(record.place);
        const std::string_view name = sectionName(record);
        if (name.empty()) {
            tell(record.place, "a SECTION without a name; it is known by what stands in it");
            return;
        }
        SalvagedNode* const known = salvage_.section(name);
        // A drawing may have several sections of entities.
        if (known && name != "ENTITIES") {
            tell(record.place, "a second SECTION " + std::string(name) + "; what it holds went into the first");
            section_ = known;
            return;
        }
        section_ = &salvage_.addSection(std::move(record));
    }

    void endSection(SalvagedRecord record) {
        leaveInner(record.place);
        end(section_, std::move(record));
    }

    // The section that a record belongs to, where it does not stand in it.
    void enter(std::string_view name, const SalvagedRecord& record) {
        if (section_ && sectionName(*section_) == name) return;
        leaveSection(record.place);
        const bool isNew = !salvage_.section(name);
        section_ = &salvage_.madeSection(name);
        tell(record.place, record.title() + " stands outside of its section; it went into " + (isNew ? "a new " : "") +
                               "SECTION " + std::string(name));
    }

    void beginTable(SalvagedRecord record) {
        leaveInner(record.place);
        enter("TABLES", record);
        const std::string_view name = trimmed(record.text(2));
        if (name.empty()) {
            tell(record.place, "a TABLE without a name; it is known by what stands in it");
            return;
        }
        table_ = salvage_.table(name);
        if (table_) {
            tell(record.place, "a second " + record.title() + "; what it holds went into the first");
            return;
        }
        table_ = &salvage_.addTable(std::move(record));
    }

    void beginBlock(SalvagedRecord record) {
        leaveInner(record.place);
        enter("BLOCKS", record);
        if (trimmed(record.text(2)).empty()) {
            tell(record.place, "a BLOCK without a name; it is known by what stands in it");
            beginNamelessBlock(record.place);
            block_->record.groups = std::move(record.groups);
            return;
        }
        block_ = &section_->children.emplace_back();
        block_->record = std::move(record);
    }

    void beginNamelessBlock(const char* place) {
        leaveInner(place);
        block_ = &salvage_.namelessBlocks.emplace_back();
        block_->record.type = rtBlock;
        block_->record.name = "BLOCK";
    }

    // A table holds records of its own kind alone: where the kind of one is damaged, it is known all the same. One
    // without a name says too little, but a block's, whose name is known by its block.
    void mendKind(SalvagedRecord& record) {
        const bool isDamaged = record.type == rtNone || record.type >= rtFirstCarried;
        if (!isDamaged || homeOf(record) != Home::anywhere) return;
        const bool isTable = trimmed(record.text(100)) == "AcDbSymbolTable";
        const std::string_view kind = isTable ? "TABLE" : trimmed(table_->record.text(2));
        const std::uint16_t type = salvage_.typeOf(kind);
        if (!record.find(2) && type != rtBlockRecord) return;
        const OdRxClass* const known = TypeTable::knownClass(type);
        if (!isTable && !(known && known->isDerivedFrom(OdDbSymbolTableRecord::desc()))) return;
        const std::string before = record.title();
        record.groups[0] = salvage_.group([&](RecordWriter& writer) { writer.text(0, kind); });
        record.name = trimmed(record.groups[0].value);
        record.type = type;
        if (type == rtDimstyle) {
            const Group* const handle = record.find(105);
            record.handle = handle ? parseHandle(handle->value) : 0;
            record.lacksHandle = record.handle == 0;
        }
        tell(record.place, before + " stands in the TABLE " + std::string(trimmed(table_->record.text(2))) +
                               "; it was read as " + record.title());
    }

    void member(SalvagedRecord record) {
        const Home home = homeOf(record);
        const std::string_view section = section_ ? sectionName(*section_) : std::string_view();
        SalvagedNode* into = nullptr;
        if (section == "TABLES") {
            if (home == Home::tables)
                into = &tableOf(record);
            else if (home == Home::anywhere)
                into = table_;
        } else if (section == "BLOCKS") {
            if (home == Home::entities || home == Home::anywhere) {
                if (!block_) {
                    tell(record.place, record.title() + " stands in no block; it is known by its owner");
                    beginNamelessBlock(record.place);
                }
                into = block_;
            }
        } else if (section == "ENTITIES") {
            if (home == Home::entities || home == Home::anywhere) into = section_;
        } else if (section == "CLASSES") {
            if (home == Home::classes) into = section_;
        } else if (section != "HEADER") {
            into = section_;
        }
        if (!into) {
            enter(sectionOf(home, record), record);
            into = home == Home::tables ? &tableOf(record) : section_;
        }
        SalvagedNode& node = into->children.emplace_back();
        node.record = std::move(record);
        if (node.record.type == rtInsert || node.record.type == rtPolyline) complex_ = &node;
    }

    // The table of an entry: the open one, or the one of its kind.
    SalvagedNode& tableOf(const SalvagedRecord& record) {
        if (table_ && trimmed(table_->record.text(2)) == record.name) return *table_;
        leaveInner(record.place);
        table_ = salvage_.table(record.name);
        const bool isNew = !table_;
        if (isNew)
            table_ = &salvage_.addTable(salvage_.record(nullptr, [&](RecordWriter& writer) {
                writer.text(0, "TABLE");
                writer.text(2, record.name);
            }));
        tell(record.place, record.title() + " stands outside of its table; it went into " + (isNew ? "a new" : "the") +
                               " TABLE " + std::string(record.name));
        return *table_;
    }

    Salvage& salvage_;
    SalvagedRecord record_;  // as far as it is read
    bool begun_ = false, ended_ = false, headTold_ = false, inLostVariable_ = false, behindMarker_ = false;
    std::size_t variable_ = 0;  // where the variable that is read begins among the groups; 0: in none
    SalvagedNode *section_ = nullptr, *table_ = nullptr, *block_ = nullptr, *complex_ = nullptr;
    std::list<SalvagedNode> lost_;  // of what is left out with all that it holds
};

void append(std::string& out, const SalvagedRecord& record) {
    for (const Group& group : record.groups) out.append(group.bytes());
}

void append(std::string& out, const SalvagedNode& node) {
    append(out, node.record);
    for (const SalvagedNode& child : node.children) append(out, child);
    if (node.closer) append(out, *node.closer);
}

}  // namespace

bool buildTrees(Salvage& salvage) { return TreeBuilder(salvage).run(); }

Recovered recover(std::string_view file, const std::wstring& name) {
    Salvage salvage(file);
    salvage.format.binary = isBinary(file);
    if (salvage.format.binary)
        salvage.format.wideCodes = hasWideCodes(file);
    else if (const std::size_t feed = file.find('\n'); feed != file.npos)
        salvage.format.crlf = feed > 0 && file[feed - 1] == '\r';
    if (!buildTrees(salvage)) return {std::string(file), {}};
    mendLinks(salvage);
    const std::string fileName = base::toUtf8(name.empty() ? std::wstring(L"drawing") : base::fileNameOf(name));
    Recovered recovered{{}, salvage.damages.warnings(fileName)};
    if (recovered.damages.empty()) {
        recovered.bytes = file;
        return recovered;
    }
    recovered.bytes.reserve(file.size());
    recovered.bytes.append(salvage.head);
    for (const SalvagedNode& section : salvage.sections) append(recovered.bytes, section);
    RecordWriter(recovered.bytes, salvage.format).text(0, "EOF");
    recovered.bytes.append(salvage.tail);
    return recovered;
}

}  // namespace drawingdb
