// A block out of another drawing, in two steps: what comes along is planned, and refused while nothing has changed yet;
// then the new records are linked, so that all have their handles, and written.
#include "drawingdb/import.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <unordered_map>
#include <unordered_set>

#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/edit.h"
#include "drawingdb/src/core/record_walk.h"
#include "drawingdb/src/core/translate.h"
#include "drawingdb/src/file/record_writer.h"

namespace drawingdb {

namespace {

// What extended data names.
constexpr int kLayerInData = 1003, kApplication = 1001;

// What the texts of a kind's records name.
struct Names {
    bool layerAndLinetype = false, linetype = false, textStyle = false, dimensionStyle = false, block = false,
         arrows = false, shape = false;
};

Names namesIn(std::string_view kind, bool isEntity) {
    const auto isOneOf = [kind](std::initializer_list<std::string_view> kinds) {
        return std::ranges::find(kinds, kind) != kinds.end();
    };
    const bool isDimension = isOneOf({"DIMENSION", "ARC_DIMENSION", "LARGE_RADIAL_DIMENSION"});
    Names names;
    names.layerAndLinetype = isEntity;
    names.linetype = isOneOf({"LAYER", "MLINESTYLE"});
    names.textStyle = isOneOf({"TEXT", "MTEXT", "ATTRIB", "ATTDEF", "TABLESTYLE", "ACAD_TABLE"});
    names.dimensionStyle = isDimension || isOneOf({"LEADER", "TOLERANCE"});
    names.block = isDimension || isOneOf({"INSERT", "ACAD_TABLE"});
    names.arrows = kind == "DIMSTYLE";
    names.shape = kind == "SHAPE";
    return names;
}

std::string inQuotes(const std::wstring& name) {
    // A zero byte would end the message.
    return "\"" + base::toUtf8(base::replaceAll(name, std::wstring(1, L'\0'), L"^@")) + "\"";
}

bool isAnonymousName(std::wstring_view name) { return name.starts_with(L'*'); }

// Before 2000 names have up to 31 letters, digits and three signs.
bool isShortName(std::wstring_view name) {
    constexpr std::size_t kLongest = 31;
    if (isAnonymousName(name)) return true;
    return name.size() <= kLongest && std::ranges::all_of(name, [](wchar_t c) {
               const auto unit = static_cast<char32_t>(c);
               return unit >= 0x80 || (unit >= '0' && unit <= '9') || (unit >= 'A' && unit <= 'Z') ||
                      (unit >= 'a' && unit <= 'z') || c == L'$' || c == L'-' || c == L'_' || c == L'|';
           });
}

}  // namespace

class Importer {
  public:
    Importer(Core& target, Core& source, const OdString& name, Stub& top)
        : target_(target),
          source_(source),
          name_(name),
          top_(top),
          translator_(source.format, target.format),
          there_(source.stubs.size()),
          isPlanned_(source.stubs.size()) {}

    OdDbImportedBlock run() {
        plan();
        refuse();
        const std::size_t before = target_.undoPosition();
        try {
            link();
            write();
            finish();
        } catch (...) {
            target_.undoTo(before);
            throw;
        }
        result_.block = OdDbObjectId(blocks_.front().made);
        for (const auto& [kind, count] : leftOut_) result_.leftOut.emplace_back(kind, count);
        return std::move(result_);
    }

  private:
    static constexpr std::uint32_t kNone = ~std::uint32_t{0};

    enum class Place : std::uint8_t { block, part, table, object, named };
    struct Item {
        Stub* source;
        Stub* copy;
        std::uint32_t owner;  // of `blocks_`, or of the items for a part or an object; kNone: a block record's object
        Place place;
    };
    struct Block {
        Stub* source;
        std::wstring name;
        Stub* made = nullptr;   // its record
        Stub* begin = nullptr;  // its BLOCK
        std::optional<Core::NewBlock> records = {};
        bool hasAttributes = false;
    };
    struct Named {
        std::uint32_t item;
        std::vector<OdString> path;  // from the dictionary of the drawing on
    };

    // ---- planning

    void plan() {
        target_.requireWritable();
        target_.flushAll();
        source_.flushAll();
        if (const Stub* const old = target_.findRecord("BLOCK_RECORD", name_)) redefined_ = const_cast<Stub*>(old);
        requireName("BLOCK", name_);
        blocks_.push_back({&top_, name_});
        isPlanned_[source_.indexOf(&top_)] = true;
        for (std::size_t b = 0; b < blocks_.size(); ++b) {
            const bool isLayout = b == 0 && isSpace(top_);
            planEntities(static_cast<std::uint32_t>(b));
            if (!isLayout) planRecordOf(static_cast<std::uint32_t>(b));
            for (; looked_ < items_.size(); ++looked_) look(static_cast<std::uint32_t>(looked_));
        }
    }

    bool isSpace(Stub& record) { return &record == source_.modelSpace(); }

    // In the order of drawing, but attribute definitions in their own, which is the one they are asked in.
    void planEntities(std::uint32_t b) {
        const auto record = OdDbObjectId(blocks_[b].source).openAs<OdDbBlockTableRecord>();
        OdDbObjectIdArray entities;
        if (record->hasDrawOrder()) {
            entities = record->entitiesInDrawOrder();
            OdDbObjectIdArray definitions;
            for (const OdDbObjectId id : record->entities())
                if (id.stub()->type == rtAttdef) definitions.push_back(id);
            auto next = definitions.begin();
            for (OdDbObjectId& id : entities)
                if (id.stub()->type == rtAttdef) id = *next++;
        } else {
            for (const OdDbObjectId id : record->entities()) entities.push_back(id);
        }
        for (const OdDbObjectId id : entities) {
            Stub& stub = *id.stub();
            if (stub.type == rtViewport) continue;
            if (!source_.isObject(stub))
                throw OdError(OdResult::badFile, source_.where(nullptr) + "a " + source_.typeName(stub) +
                                                     " stands among entities; nothing was changed. Remedy: read the "
                                                     "file with --recover and save it under another name");
            add(stub, b, Place::block);
            if (stub.type == rtAttdef && !id.openAs<OdDbAttributeDefinition>()->isConstant())
                blocks_[b].hasAttributes = true;
        }
    }

    // What hangs on the block itself.
    void planRecordOf(std::uint32_t b) {
        Stub& record = *blocks_[b].source;
        if (record.type != rtBlockRecord || target_.format.version < version::r13) return;
        for (RecordWalk walk(GroupCursor(source_.bytesOf(record), source_.format)); walk.next();) {
            const Group& group = walk.group();
            if (walk.part() == RecordPart::inControl && walk.control() == ControlString::dictionary)
                planOwned(group, record, kNone, b);
            if (walk.part() == RecordPart::extendedData) lookAtData(group);
        }
    }

    std::uint32_t add(Stub& stub, std::uint32_t owner, Place place) {
        isPlanned_[source_.indexOf(&stub)] = true;
        const auto index = static_cast<std::uint32_t>(items_.size());
        items_.push_back({&stub, nullptr, owner, place});
        if (place == Place::block || place == Place::part) {
            const Facts& facts = factsOf(stub, true);
            if (facts.since > target_.format.version) ++notHeld_[source_.typeName(stub)];
            if (facts.standsApart) ++apart_[source_.typeName(stub)];
        }
        return index;
    }

    // From 2013 on the shape of solid bodies stands in a section of its own.
    bool wantsSection(const std::string& kind) const {
        static constexpr std::array<std::string_view, 4> kBodies = {"3DSOLID", "REGION", "BODY", "SURFACE"};
        if (source_.format.version < version::v2013) return false;
        return std::ranges::find(kBodies, kind) != kBodies.end() || kind.ends_with("SURFACE");
    }

    // What is asked of every record, worked out once for its kind.
    struct Facts {
        Names names;
        KindTraits traits;
        int since;
        bool standsApart;
        std::uint16_t type;  // in the target
    };
    const Facts& factsOf(const Stub& stub, bool isEntity) {
        const std::size_t place = stub.type * 2u + (isEntity ? 1u : 0u);
        if (place >= facts_.size()) facts_.resize(place + 1);
        if (!facts_[place]) {
            const std::string& kind = source_.typeName(stub);
            facts_[place] = Facts{namesIn(kind, isEntity), KindTraits(kind), heldSince(kind, source_.format.version),
                                  wantsSection(kind), target_.types.find(kind)};
        }
        return *facts_[place];
    }

    // What one record names, owns and points to.
    void look(std::uint32_t index) {
        const Item item = items_[index];
        Stub& stub = *item.source;
        const bool isEntity = item.place == Place::block || item.place == Place::part;
        if (isEntity && (stub.type == rtInsert || stub.type == rtPolyline))
            for (Stub* child = source_.nextChild(stub, nullptr); child; child = source_.nextChild(stub, child))
                if (!child->gone()) add(*child, index, Place::part);
        const Facts& facts = factsOf(stub, isEntity);
        const Names names = facts.names;
        const bool isHeld = facts.since <= target_.format.version;
        const bool toMarked = target_.format.hasMarkers();
        bool inEntityZone = true;  // before any marker: in the head there is no layer
        for (RecordWalk walk(GroupCursor(source_.bytesOf(stub), source_.format)); walk.next();) {
            const Group& group = walk.group();
            switch (walk.part()) {
                case RecordPart::marker:
                    if (group.code == 101 && stub.type != rtMtext && target_.format.version < version::v2018 && isHeld)
                        ++notHeld_["multi-line " + source_.typeName(stub)];
                    inEntityZone = group.value == "AcDbEntity";
                    break;
                case RecordPart::inControl:
                    if (toMarked && walk.control() != ControlString::reactors && isOwnerCode(group.code))
                        planOwned(group, stub, index);
                    break;
                case RecordPart::field:
                    if (group.code < 10)
                        lookAtName(group, names, inEntityZone);
                    else if (toMarked && isOwnerCode(group.code))
                        planOwned(group, stub, index);
                    else if (names.arrows && isLaterArrow(group.code))
                        planArrow(group);
                    else if (toMarked && isHardPointerCode(group.code))
                        planPointed(parseHandle(group.value));
                    else if (stub.type == rtLtype && group.code == 74 && !toMarked &&
                             groupInteger(group, source_.format.binary).value_or(0) != 0)
                        complexLinetypes_.insert(source_.groupWide(stub, 2));
                    break;
                case RecordPart::extendedData:
                    lookAtData(group);
                    break;
                default:
                    break;
            }
        }
        if (names.shape) planShapeFiles();
    }

    void lookAtName(const Group& group, const Names& names, bool inEntityZone) {
        if (names.layerAndLinetype && inEntityZone && group.code == 8) planName("LAYER", group.value);
        if (names.layerAndLinetype && inEntityZone && group.code == 6) planName("LTYPE", group.value);
        if (names.linetype && group.code == 6) planName("LTYPE", group.value);
        if (names.textStyle && group.code == 7) planName("STYLE", group.value);
        if (names.dimensionStyle && group.code == 3) planName("DIMSTYLE", group.value);
        const bool isArrow = names.arrows && isArrowName(group.code);
        if ((names.block && group.code == 2) || (isArrow && !group.value.empty())) planBlockName(group.value, isArrow);
    }

    void lookAtData(const Group& group) {
        if (group.code == kApplication) planName("APPID", group.value);
        if (group.code == kLayerInData) planName("LAYER", group.value);
        if (group.code == kHandleInData) planPointed(parseHandle(group.value));
    }

    void planName(std::string_view table, std::string_view raw) {
        if (raw.empty() || !seen_[table].add(raw)) return;
        const std::wstring name = decodeText(raw, source_.format);
        if (Stub* const record = source_.findRecord(table, name)) {
            planRecord(table, *record);
        } else if (!isBuiltInEntry(table, name) && !target_.findRecord(table, name)) {
            requireName(table, name);
            missing_.emplace_back(table, translator_.text(raw));
        }
    }

    void planRecord(std::string_view table, Stub& record) {
        const std::uint32_t index = source_.indexOf(&record);
        if (isPlanned_[index] || there_[index]) return;
        Stub* const into = target_.tableNamed(table);
        const std::wstring name = source_.groupWide(record, 2);
        if (Stub* const known = target_.findRecord(table, name)) {
            there_[index] = known;
            return;
        }
        if (!into || !into->has(Stub::ownCloser)) return;
        requireName(table, name);
        add(record, 0, Place::table);
    }

    void requireName(std::string_view table, const std::wstring& name) {
        if (target_.format.version < version::v2000 && !isShortName(name))
            names31_.insert(std::string(table == "BLOCK_RECORD" ? "BLOCK" : table) + " " + inQuotes(name));
    }

    // Shapes are in whichever of the shape files has one of that name.
    void planShapeFiles() {
        if (std::exchange(shapeFiles_, true)) return;
        constexpr std::int64_t kShapeFile = 1;
        Stub* const table = source_.tableNamed("STYLE");
        if (!table) return;
        for (Stub* style = source_.nextChild(*table, nullptr); style; style = source_.nextChild(*table, style)) {
            if (style->gone() || style->type != rtStyle) continue;
            const auto flags = OdDbObjectId(style).openAs<OdDbSymbolTableRecord>()->flags();
            if ((flags & kShapeFile) == 0) continue;
            if (source_.groupText(*style, 2).empty())
                planNamelessStyle(*style);
            else
                planRecord("STYLE", *style);
        }
    }

    // A shape file has no name but that of its file.
    void planNamelessStyle(Stub& style) {
        Stub* const into = target_.tableNamed("STYLE");
        const std::uint32_t index = source_.indexOf(&style);
        if (!into || isPlanned_[index] || there_[index]) return;
        const std::wstring file = source_.groupWide(style, 3);
        for (Stub* known = target_.nextChild(*into, nullptr); known; known = target_.nextChild(*into, known))
            if (!known->gone() && known->type == rtStyle && target_.groupText(*known, 2).empty() &&
                base::equalsNoCase(target_.groupWide(*known, 3), file))
                there_[index] = known;
        if (!there_[index]) add(style, 0, Place::table);
    }

    // References, dimensions and tables are nothing without the block that they show. Dimension styles go without an
    // arrowhead.
    void planBlockName(std::string_view raw, bool ofArrow) {
        if (raw.empty() || !seen_[ofArrow ? "DIMSTYLE_ARROW" : "BLOCK_RECORD"].add(raw)) return;
        const std::wstring name = decodeText(raw, source_.format);
        if (Stub* const record = source_.findRecord("BLOCK_RECORD", name)) {
            planBlock(*record);
            const auto known = renamed_.find(source_.groupText(*record, 2));
            if (known != renamed_.end())
                renamed_.emplace(raw, known->second);
            else if (std::string spelled = encodeText(name, target_.format); spelled != translator_.text(raw))
                renamed_.emplace(raw, std::move(spelled));  // as its block says it
        } else if (ofArrow) {
            renamed_.emplace(raw, std::string());  // nor may it be what the target calls so
        } else {
            missingBlocks_.insert(name);
        }
    }

    void planBlock(Stub& record) {
        const std::uint32_t index = source_.indexOf(&record);
        const auto opened = OdDbObjectId(&record).openAs<OdDbBlockTableRecord>();
        const std::wstring name = opened->name();
        if (&record == &top_ || base::equalsNoCase(name, name_)) holdsItself(name);
        if (isPlanned_[index] || there_[index] || opened->isLayout()) return;
        if (isAnonymousName(name)) {
            isPlanned_[index] = true;
            blocks_.push_back({&record, freeName(name)});
            renamed_[std::string(source_.groupText(record, 2))] = encodeText(blocks_.back().name, target_.format);
            return;
        }
        if (Stub* const known = target_.findRecord("BLOCK_RECORD", name)) {
            if (redefined_ && targetHolds(*known)) holdsItself(name);
            there_[index] = known;
            result_.kept.push_back(target_.groupWide(*known, 2));
            return;
        }
        requireName("BLOCK", name);
        isPlanned_[index] = true;
        blocks_.push_back({&record, name});
    }

    // A pointer that the target has by name, or, to the arrowhead of leaders, not at all.
    bool isLaterArrow(int code) const {
        constexpr int kLeaderArrow = 341;
        return (isArrowPointer(code) || code == kLeaderArrow) && target_.format.version < version::v2000;
    }

    // A style goes without an arrowhead that an old version cannot hold, rather than not at all.
    void planArrow(const Group& group) {
        Stub* const stub = isArrowPointer(group.code) ? source_.byHandle(parseHandle(group.value)) : nullptr;
        if (!stub || stub->gone() || stub->type != rtBlockRecord) return;
        const std::wstring name = source_.groupWide(*stub, 2);
        if (!target_.findRecord("BLOCK_RECORD", name)) {
            if (!isShortName(name)) return;
            for (const OdDbObjectId id : source_.entitiesOf(*stub, true))
                if (factsOf(*id.stub(), true).since > target_.format.version) return;
        }
        planBlock(*stub);
    }

    [[noreturn]] void holdsItself(const std::wstring& within) {
        std::string why = source_.where(nullptr) + "the block " + inQuotes(name_) + " would hold itself";
        if (!base::equalsNoCase(within, name_)) why += ", in the block " + inQuotes(within);
        throw OdError(OdResult::invalidInput, why + "; nothing was changed. Remedy: give it another name");
    }

    // Whether a block of the target shows the one that is made anew.
    bool targetHolds(Stub& block) {
        std::vector<Stub*> ahead{&block};
        while (!ahead.empty()) {
            Stub* const next = ahead.back();
            ahead.pop_back();
            if (next == redefined_) return true;
            if (!looked_in_.insert(next).second) continue;
            for (const OdDbObjectId id : target_.entitiesOf(*next, true))
                if (const OdDbObjectId held = OdDbBlockReference::blockTableRecordOf(id); held)
                    ahead.push_back(held.stub());
        }
        return false;
    }

    // "*U" and the first number that no block of the target has, nor one made here.
    std::wstring freeName(const std::wstring& name) {
        std::wstring stem = name;
        while (!stem.empty() && stem.back() >= L'0' && stem.back() <= L'9') stem.pop_back();
        std::size_t& number = lastNumber_[base::toUpper(stem)];
        std::wstring free;
        do free = stem + std::to_wstring(++number);
        while (target_.findRecord("BLOCK_RECORD", free));
        return free;
    }

    // Of an item, or of the record of block `b` when `index` is kNone.
    void planOwned(const Group& group, Stub& owner, std::uint32_t index, std::uint32_t b = 0) {
        Stub* const owned = source_.byHandle(parseHandle(group.value));
        if (!owned || owned->gone() || source_.isEntity(*owned) || isPlanned_[source_.indexOf(owned)]) return;
        if (!owned->owner || &source_.stubs[owned->owner] != source_.section(Section::objects)) return;
        const std::uint64_t named = ownerHandle(source_.bytesOf(*owned), source_.format);
        if (named && named != owner.handle) return;
        const std::string& kind = source_.typeName(*owned);
        if (owned->type == rtSortents || owned->type == rtGroup) return;
        if (!target_.section(Section::objects) || heldSince(kind, source_.format.version) > target_.format.version) {
            isPlanned_[source_.indexOf(owned)] = true;
            ++leftOut_[kind];
            return;
        }
        const std::uint32_t item = add(*owned, index, Place::object);
        if (index == kNone) recordObjects_[item] = b;
    }

    // Records of tables, and objects that the drawing has by a name.
    void planPointed(std::uint64_t handle) {
        Stub* const stub = source_.byHandle(handle);
        if (!stub || stub->gone() || !stub->owner) return;
        const std::uint32_t index = source_.indexOf(stub);
        if (isPlanned_[index] || there_[index]) return;
        Stub& container = source_.stubs[stub->owner];
        if (container.type == rtTable)
            if (stub->type == rtBlockRecord)
                planBlock(*stub);
            else
                planRecord(source_.groupText(container, 2), *stub);
        else if (&container == source_.section(Section::objects))
            planNamed(*stub);
    }

    void planNamed(Stub& stub) {
        constexpr std::size_t kDeepest = 8;
        if (isLookedUp_.empty()) isLookedUp_.resize(source_.stubs.size());
        if (isLookedUp_[source_.indexOf(&stub)]) return;
        isLookedUp_[source_.indexOf(&stub)] = true;
        const OdDbObjectId root = source_.database.namedObjectsDictionaryId();
        std::vector<OdString> path;
        for (Stub* inner = &stub; OdDbObjectId(inner) != root;) {
            Stub* const owner = source_.byHandle(ownerHandle(source_.bytesOf(*inner), source_.format));
            const auto dictionary = owner ? OdDbObjectId(owner).openIf<OdDbDictionary>() : OdDbDictionaryPtr();
            if (!dictionary || path.size() == kDeepest) return;
            const auto entries = dictionary->entries();
            const auto found = std::ranges::find(entries, OdDbObjectId(inner), &OdDbDictionary::Entry::id);
            if (found == entries.end()) return;
            path.insert(path.begin(), found->name);
            inner = owner;
        }
        const std::string& kind = source_.typeName(stub);
        OdDbObjectId known = target_.database.namedObjectsDictionaryId();
        if (known.isNull() || kind == "LAYOUT") return;
        const bool isScale = kind == "SCALE";
        for (std::size_t i = 0; i < path.size(); ++i) {
            const auto dictionary = known.openIf<OdDbDictionary>();
            if (!dictionary) break;
            known =
                isScale && i + 1 == path.size() ? scaleIn(*dictionary, stub, path.back()) : dictionary->getAt(path[i]);
        }
        if (known && target_.typeName(*known.stub()) == kind) {
            there_[source_.indexOf(&stub)] = known.stub();
            return;
        }
        // What the target has by that name is something else, and stays.
        if (known) {
            isPlanned_[source_.indexOf(&stub)] = true;
            ++leftOut_[kind];
            return;
        }
        static constexpr std::array<std::string_view, 3> kNeverBrought = {"MATERIAL", "VISUALSTYLE", "ACDBPLACEHOLDER"};
        if (std::ranges::find(kNeverBrought, kind) != kNeverBrought.end()) return;
        if (heldSince(kind, source_.format.version) > target_.format.version) {
            isPlanned_[source_.indexOf(&stub)] = true;
            ++leftOut_[kind];
            return;
        }
        named_.push_back({add(stub, kNone, Place::named), path});
    }

    // Scales go by what they are called, not by their keys.
    OdDbObjectId scaleIn(const OdDbDictionary& scales, Stub& scale, OdString& key) {
        const std::wstring name = source_.groupWide(scale, 300);
        for (const OdDbDictionary::Entry& entry : scales.entries())
            if (target_.typeName(*entry.id.stub()) == "SCALE" && target_.groupWide(*entry.id.stub(), 300) == name)
                return entry.id;
        for (std::size_t number = 0; scales.getAt(key) || !scaleKeys_.insert(key).second; ++number)
            key = L"B" + std::to_wstring(number);
        return {};
    }

    void refuse() {
        std::string what;
        const auto say = [&what](const std::string& text) { what += (what.empty() ? "" : ", ") + text; };
        for (const std::wstring& name : missingBlocks_) say(inQuotes(name));
        if (!what.empty())
            throw OdError(OdResult::badFile, source_.where(nullptr) + "entities within show what the file has no " +
                                                 "block for: " + what +
                                                 "; nothing was changed. Remedy: read the file with --recover and save "
                                                 "it under another name");
        for (const auto& [kind, count] : notHeld_) say(std::to_string(count) + " " + kind);
        for (const std::wstring& linetype : complexLinetypes_)
            say("the linetype " + inQuotes(linetype) + " with texts or shapes");
        for (const std::string& name : names31_) say("the name of the " + name);
        if (!what.empty())
            throw OdError(OdResult::notHeldByVersion, source_.where(nullptr) + "a drawing of version " +
                                                          target_.version() + " cannot hold " + what +
                                                          "; nothing was changed");
        for (const auto& [kind, count] : apart_) say(std::to_string(count) + " " + kind);
        if (!what.empty())
            throw OdError(OdResult::notHeldByVersion,
                          source_.where(nullptr) + what +
                              " cannot be taken into another drawing: their shapes stand apart from them in the file; "
                              "nothing was changed");
    }

    static bool isEntity(const Item& item) { return item.place == Place::block || item.place == Place::part; }

    // ---- linking

    void link() {
        if (redefined_) {
            Block& top = blocks_.front();
            OdDbObjectIdArray before;
            for (const OdDbObjectId id : target_.entitiesOf(*redefined_, true)) before.push_back(id);
            top.made = redefined_;
            top.begin = target_.blockBegin(*redefined_);
            if (!top.begin)
                throw OdError(OdResult::badFile,
                              target_.where(nullptr) + "the block " + inQuotes(name_) + " has no BLOCK in the file");
            target_.emptyBlock(*redefined_, before);
        }
        for (Block& block : blocks_) {
            if (!block.made) {
                block.records = target_.linkBlock();
                if (!block.records)
                    throw OdError(OdResult::badFile, target_.where(nullptr) + std::string(Core::kNoPlaceForBlocks));
                block.made = block.records->record;
                block.begin = block.records->block;
            }
            if (!isSpace(*block.source)) there_[source_.indexOf(block.source)] = block.made;
        }
        for (Item& item : items_) {
            item.copy = &target_.linkedStub(factsOf(*item.source, isEntity(item)).type, containerFor(item));
            there_[source_.indexOf(item.source)] = item.copy;
        }
        target_.forgetNames();
    }

    Stub& containerFor(const Item& item) {
        switch (item.place) {
            case Place::block:
                return *blocks_[item.owner].begin;
            case Place::part:
                return *items_[item.owner].copy;
            case Place::table:
                return *target_.tableNamed(source_.groupText(source_.stubs[item.source->owner], 2));
            default:
                return *target_.section(Section::objects);
        }
    }

    std::uint64_t ownerFor(std::uint32_t index) {
        const Item& item = items_[index];
        switch (item.place) {
            case Place::block:
                return blocks_[item.owner].made->handle;
            case Place::table:
                return containerFor(item).handle;
            case Place::part:
                return items_[item.owner].copy->handle;
            case Place::object:
                return item.owner == kNone ? blocks_[recordObjects_[index]].made->handle
                                           : items_[item.owner].copy->handle;
            case Place::named:
                break;
        }
        return 0;  // its dictionary, in the end
    }

    // ---- writing

    std::uint64_t newHandle(std::uint64_t old) {
        Stub* const stub = source_.byHandle(old);
        if (!stub) return 0;
        const Stub* const there = there_[source_.indexOf(stub)];
        return there ? there->handle : 0;
    }

    class Links final : public RecordLinks {
      public:
        explicit Links(Importer& importer) : importer_(importer) {}
        Names names;
        std::uint64_t object(std::uint64_t old) const override { return importer_.newHandle(old); }
        const std::string* renamed(int code, std::string_view raw) const override {
            const bool isBlock = (names.block && code == 2) || (names.arrows && isArrowName(code));
            if (!isBlock) return nullptr;
            const auto found = importer_.renamed_.find(raw);
            return found == importer_.renamed_.end() ? nullptr : &found->second;
        }
        std::uint64_t block(std::string_view raw) const override {
            Core& source = importer_.source_;
            const Stub* const block = source.findRecord("BLOCK_RECORD", decodeText(raw, source.format));
            const Stub* const there = block ? importer_.there_[source.indexOf(block)] : nullptr;
            return there ? there->handle : 0;
        }
        std::string blockName(std::uint64_t old) const override {
            Core& source = importer_.source_;
            Stub* const block = source.byHandle(old);
            if (!block || !importer_.there_[source.indexOf(block)]) return {};
            const std::string_view raw = source.groupText(*block, 2);
            const auto found = importer_.renamed_.find(raw);
            return found == importer_.renamed_.end()
                       ? encodeText(decodeText(raw, source.format), importer_.target_.format)
                       : found->second;
        }

      private:
        Importer& importer_;
    };

    void write() {
        for (const auto& [table, entry] : missing_) target_.addEntry(table, entry);
        Links links(*this);
        for (std::uint32_t i = 0; i < items_.size(); ++i) {
            const Item& item = items_[i];
            const Facts& facts = factsOf(*item.source, isEntity(item));
            links.names = facts.names;
            links.handle = item.copy->handle;
            links.owner = ownerFor(i);
            const std::string_view bytes =
                translator_.record(source_.bytesOf(*item.source), facts.traits, isEntity(item), links);
            item.copy->content = Arena::contentOf(target_.arena_.add(bytes, item.copy->type));
        }
        for (std::size_t b = 0; b < blocks_.size(); ++b) writeBlock(blocks_[b]);
        target_.forgetNames();
    }

    void writeBlock(Block& block) {
        constexpr std::int64_t kAnonymous = 1, kHasAttributes = 2, kKept = 4 | 8;
        const auto record = OdDbObjectId(block.source).openAs<OdDbBlockTableRecord>();
        Stub* const begin = isSpace(*block.source) ? nullptr : source_.blockBegin(*block.source);
        Core::BlockHead head;
        if (begin) {
            head.origin = source_.blockOrigin(*block.source);
            const std::string bytes(source_.bytesOf(*begin));
            for (RecordWalk walk(GroupCursor(bytes, source_.format)); walk.next();)
                if (walk.part() == RecordPart::field && walk.group().code == 70)
                    head.flags = groupInteger(walk.group(), source_.format.binary).value_or(0) & kKept;
            if (head.flags != 0) head.path = source_.groupWide(*begin, 1);
            head.description = source_.groupWide(*begin, 4);
        } else {
            head.origin = source_.database.headerPoint("$INSBASE", {});
        }
        head.units = source_.database.headerInteger("$INSUNITS", 0);
        if (begin && block.source->type == rtBlockRecord && source_.format.version >= version::v2007)
            for (RecordWalk walk(GroupCursor(source_.bytesOf(*block.source), source_.format)); walk.next();) {
                const Group& group = walk.group();
                if (walk.part() != RecordPart::field || (group.code != 70 && group.code != 281)) continue;
                (group.code == 70 ? head.units : head.scalability) =
                    groupInteger(group, source_.format.binary).value_or(0);
            }
        head.explodable = record->explodable() ? 1 : 0;
        if (block.hasAttributes) head.flags |= kHasAttributes;
        if (isAnonymousName(block.name)) head.flags |= kAnonymous;
        if (!block.records)
            target_.describeBlock(*block.made, head, block.hasAttributes);
        else
            target_.writeBlockRecords(*block.records, block.name, head);
        hangOn(block);
    }

    // The extension dictionary and the extended data of a block's record.
    void hangOn(Block& block) {
        if (block.source->type != rtBlockRecord || block.made->type != rtBlockRecord || isSpace(*block.source)) return;
        const Links links(*this);
        const std::string_view source = source_.bytesOf(*block.source);
        std::string bytes(target_.bytesOf(*block.made));
        for (RecordWalk walk(GroupCursor(source, source_.format)); walk.next();) {
            if (walk.part() != RecordPart::inControl || walk.control() != ControlString::dictionary) continue;
            const std::uint64_t dictionary = newHandle(parseHandle(walk.group().value));
            if (dictionary == 0) continue;
            std::string groups;
            GroupWriter writer(groups, target_.format);
            writer.text(102, "{ACAD_XDICTIONARY");
            writer.handle(360, dictionary);
            writer.text(102, "}");
            bytes = withDictionary(bytes, groups, target_.format);
        }
        if (block.records) bytes += translator_.extendedData(source, links);
        if (bytes != target_.bytesOf(*block.made)) target_.setBytes(*block.made, bytes);
    }

    // ---- what depends on all of it

    void finish() {
        OdDbDatabase& database = target_.database;
        for (const Named& named : named_) {
            OdDbObjectId place = database.namedObjectsDictionaryId();
            for (std::size_t i = 0; i + 1 < named.path.size(); ++i) {
                const auto dictionary = place.openAs<OdDbDictionary>();
                place = dictionary->getAt(named.path[i]);
                if (place) continue;
                dictionary->upgradeOpen();
                place = dictionary->setAt(named.path[i], OdDbDictionary::createObject());
            }
            const auto dictionary = place.openAs<OdDbDictionary>(OdDb::forWrite);
            Stub& copy = *items_[named.item].copy;
            target_.setBytes(copy, withOwner(target_.bytesOf(copy), place.handle().value()));
            dictionary->setAt(named.path.back(), target_.open(copy, OdDb::forRead, false));
        }
        bool hasFields = false;
        std::uint16_t lastType = rtNone;
        std::set<std::string> kinds;
        for (const Item& item : items_) {
            if (item.source->type != lastType) kinds.insert(source_.typeName(*item.source));
            lastType = item.source->type;
            hasFields = hasFields || item.copy->type == rtField;
            if (item.copy->type == rtInsert)
                target_.referenceAdded(*item.copy, target_.blockByRawName(target_.groupText(*item.copy, 2)));
            if (item.copy->type == rtAttrib || item.copy->type == rtAttdef) carryLock(item);
        }
        if (hasFields) target_.fieldList(true);
        bringKinds(kinds);
    }

    std::string withOwner(std::string_view bytes, std::uint64_t owner) {
        std::string out;
        GroupWriter writer(out, target_.format);
        bool isDone = false;
        const auto write = [&] {
            if (!std::exchange(isDone, true) && target_.format.version >= version::v2000) writer.handle(330, owner);
        };
        for (RecordWalk walk(GroupCursor(bytes, target_.format)); walk.next();) {
            if (walk.part() == RecordPart::marker) write();
            writer.raw(walk.group().bytes());
        }
        write();
        return out;
    }

    // Older versions keep the lock elsewhere.
    void carryLock(const Item& item) {
        const auto isOld = [](const Core& core) { return core.format.version < version::v2007; };
        if (isOld(source_) == isOld(target_)) return;
        const auto carry = [&]<class Kind>(Kind*) {
            const bool isLocked = OdDbObjectId(item.source).openAs<Kind>()->lockPositionInBlock();
            if (isLocked) OdDbObjectId(item.copy).openAs<Kind>(OdDb::forWrite)->setLockPositionInBlock(true);
        };
        item.copy->type == rtAttrib ? carry(static_cast<OdDbAttribute*>(nullptr))
                                    : carry(static_cast<OdDbAttributeDefinition*>(nullptr));
    }

    // Records of the CLASSES section for kinds that other programs only know by them.
    void bringKinds(const std::set<std::string>& kinds) {
        Stub* const from = source_.section(Section::classes);
        Stub* const to = target_.section(Section::classes);
        if (!from || !to || !to->has(Stub::ownCloser)) return;
        std::set<std::string, std::less<>> known;
        for (Stub* stub = target_.nextChild(*to, nullptr); stub; stub = target_.nextChild(*to, stub))
            if (!stub->gone()) known.emplace(target_.groupText(*stub, 1));
        for (Stub* stub = source_.nextChild(*from, nullptr); stub; stub = source_.nextChild(*from, stub)) {
            const std::string kind(source_.groupText(*stub, 1));
            if (stub->type != rtClass || !kinds.contains(kind) || !known.insert(kind).second) continue;
            // The saver makes those that it knows.
            const std::uint16_t type = target_.types.find(kind);
            if (type < rtFirstCarried && allKinds()[type].classRecord) continue;
            std::string bytes;
            GroupWriter writer(bytes, target_.format);
            writer.text(0, "CLASS");
            bool hasCount = false;
            for (RecordWalk walk(GroupCursor(source_.bytesOf(*stub), source_.format)); walk.next();) {
                const Group& group = walk.group();
                if (group.code == 0 || group.code == 91) continue;
                if (group.code == 280 && target_.format.version >= version::v2004 && !std::exchange(hasCount, true))
                    writer.integer(91, 1);
                if (valueKind(group.code) == ValueKind::text)
                    writer.text(group.code, translator_.text(group.value));
                else
                    writer.integer(group.code, groupInteger(group, source_.format.binary).value_or(0));
            }
            Stub& copy = target_.linkedStub(rtClass, *to);
            copy.content = Arena::contentOf(target_.arena_.add(bytes, rtClass));
        }
    }

    Core& target_;
    Core& source_;
    const std::wstring name_;
    Stub& top_;
    Stub* redefined_ = nullptr;
    RecordTranslator translator_;

    std::vector<Item> items_;
    std::size_t looked_ = 0;
    std::vector<Block> blocks_;
    std::vector<Named> named_;
    std::unordered_map<std::uint32_t, std::uint32_t> recordObjects_;  // items that hang on a block's record: the block
    std::vector<Stub*> there_;                 // what stands in the target for a stub of the source, by its index
    std::vector<bool> isPlanned_;              // whether it comes along, or is known to be left out
    std::vector<bool> isLookedUp_;             // whether it was looked for in the dictionaries of both drawings
    std::vector<std::optional<Facts>> facts_;  // by type in the source, twice: as object, as entity
    // Names as the source spells them, which nearly always are those of the record before.
    struct Seen {
        std::string_view last;
        std::unordered_set<std::string_view> all;
        bool add(std::string_view raw) {
            if (raw == last) return false;
            last = raw;
            return all.insert(raw).second;
        }
    };
    std::map<std::string_view, Seen> seen_;
    std::map<std::string, std::string, std::less<>> renamed_;  // blocks: from, to; empty: left out
    std::set<std::wstring> missingBlocks_;                     // that entities show
    std::map<std::wstring, std::size_t> lastNumber_;
    std::set<std::wstring> scaleKeys_;
    std::set<Stub*> looked_in_;  // blocks of the target that do not show the one made anew
    std::vector<std::pair<std::string_view, std::string>> missing_;  // what the source names and has no record of
    bool shapeFiles_ = false;
    std::map<std::string, std::size_t> notHeld_, apart_, leftOut_;
    std::set<std::wstring> complexLinetypes_;
    std::set<std::string> names31_;
    OdDbImportedBlock result_;
};

}  // namespace drawingdb

OdDbImportedBlock importBlock(OdDbDatabase& target, const OdString& name, OdDbObjectId block) {
    if (block.isNull()) throw OdError(OdResult::nullObjectId, "no block is named");
    drawingdb::Core& source = drawingdb::coreOf(block.stub());
    if (&source == &target.core()) throw OdError(OdResult::invalidInput, "the block is one of the same drawing");
    return drawingdb::Importer(target.core(), source, name, *block.stub()).run();
}
