#include "drawingdb/src/core/core.h"

#include <algorithm>

#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/old_polyline.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/core/object_access.h"
#include "drawingdb/src/core/unknown.h"
#include "drawingdb/symbol_table.h"

namespace drawingdb {

namespace {

std::wstring folded(std::wstring_view text) {
    bool plain = true;
    for (const wchar_t c : text) plain = plain && static_cast<char32_t>(c) < 0x80;
    std::wstring out(text);
    if (plain) {
        for (wchar_t& c : out)
            if (c >= L'a' && c <= L'z') c = static_cast<wchar_t>(c - L'a' + L'A');
        return out;
    }
    return base::toUpper(text);
}

}  // namespace

Core::Core(OdDbDatabase& db) : database(db) {}

Core::~Core() {
    if (!liveObjects_) return;
    // Somebody still holds objects: they live on, in no database.
    for (std::uint32_t i = 1; i < stubs.size(); ++i) {
        if (OdDbObject* object = stubs[i].object()) {
            ObjectAccess::stub(*object) = nullptr;
            ObjectAccess::database(*object) = nullptr;
        }
    }
}

// ---------------------------------------------------------------------------------------------------------------------
// Bytes

std::string_view Core::bytesOf(Stub& stub) {
    if (OdDbObject* object = stub.object()) {
        flush(*object);
        return ObjectAccess::source(*object);
    }
    if (stub.content) return Arena::bodyOf(stub.content)->view();
    if (stub.has(Stub::appended)) return {};
    const std::uint32_t index = indexOf(&stub);
    const std::size_t end = index + 1 < fileStubs ? stubs[index + 1].offset : file_.size();
    return file_.substr(stub.offset, end - stub.offset);
}

std::string_view Core::groupText(Stub& stub, int code) {
    const auto first = [code](auto cursor) {
        for (Group group; cursor.next(group);)
            if (group.code == code) return group.value;
        return std::string_view();
    };
    const std::string_view bytes = bytesOf(stub);
    return format.binary ? first(BinaryGroupCursor(bytes, format.wideCodes)) : first(AsciiGroupCursor(bytes));
}

// ---------------------------------------------------------------------------------------------------------------------
// Containers

Stub* Core::anchorOf(Stub& container, bool make) {
    if (container.has(Stub::entities) && container.next) return anchorOf(lastPart(container), make);
    const bool added = container.has(Stub::appended);
    if (!added && container.has(Stub::ownCloser)) return &stubs[container.close];
    std::uint32_t& link = added ? container.close : container.next;
    if (link) return &stubs[link];
    if (!make) return nullptr;
    if (container.type == rtSection || container.type == rtTable || container.type == rtBlock)
        throw OdError(OdResult::badFile,
                      where(nullptr) + typeName(container) + " is not closed in the file; nothing can be added to it");
    const std::uint32_t owner = indexOf(&container);
    Stub& anchor = stubs.add();
    anchor.type = rtSeqend;
    anchor.owner = owner;
    anchor.flags = Stub::appended | (container.flags & Stub::paperSpace);
    giveHandle(anchor, container);
    std::string bytes;
    GroupWriter writer(bytes, format);
    writer.text(0, "SEQEND");
    if (anchor.handle) writer.handle(5, anchor.handle);
    if (format.version >= version::v2000) writer.handle(330, container.handle);
    writer.marker("AcDbEntity");
    if (anchor.has(Stub::paperSpace)) writer.integer(67, 1);
    const std::string_view layer = container.live() ? std::string_view() : groupText(container, 8);
    writer.text(8, layer.empty() ? std::string_view("0") : layer);
    anchor.content = Arena::contentOf(arena_.add(bytes, rtSeqend));
    link = indexOf(&anchor);
    return &anchor;
}

Stub& Core::lastPart(Stub& entities) {
    Stub* part = &entities;
    while (part->next) part = &stubs[part->next];
    return *part;
}

Stub* Core::nextChild(Stub& container, Stub* stub) {
    if (stub && stub->has(Stub::appended)) return stub->next ? &stubs[stub->next] : nullptr;
    // Of several sections of entities the one that the child stands in.
    Stub* part = stub && stubs[stub->owner].has(Stub::entities) ? &stubs[stub->owner] : &container;
    while (!container.has(Stub::appended) && part->close) {
        std::uint32_t next;
        if (!stub)
            next = indexOf(part) + 1;
        else if ((stub->type == rtInsert || stub->type == rtPolyline || stub->type == rtBlock ||
                  stub->type == rtTable) &&
                 stub->close)
            next = stub->close + (stub->has(Stub::ownCloser) ? 1 : 0);
        else
            next = indexOf(stub) + 1;
        if (next < part->close) return &stubs[next];
        if (!part->has(Stub::entities) || !part->next) break;
        part = &stubs[part->next];
        stub = nullptr;
    }
    const Stub* anchor = anchorOf(container, false);
    return anchor && anchor->next ? &stubs[anchor->next] : nullptr;
}

Stub* Core::tableNamed(std::string_view tableName) const {
    const auto it = tables_.find(tableName);
    return it == tables_.end() ? nullptr : it->second;
}

void Core::linkBlocks() {
    if (blocksLinked_) return;
    blocksLinked_ = true;
    blockOfRecord_.clear();
    recordOfBlock_.clear();
    Stub* blocks = section(Section::blocks);
    Stub* table = tableNamed("BLOCK_RECORD");
    if (blocks) {
        for (Stub* block = nextChild(*blocks, nullptr); block; block = nextChild(*blocks, block)) {
            if (block->type != rtBlock || block->gone()) continue;
            const std::uint32_t index = indexOf(block);
            const std::wstring blockName = groupWide(*block, 2);
            Stub* const found = findRecord("BLOCK_RECORD", blockName);
            const std::uint32_t record = table && found ? indexOf(found) : index;
            recordOfBlock_[index] = record;
            const bool isFirst = blockOfRecord_.emplace(record, index).second && (table || found == block);
            // Anonymous ones are found by their handles, or not at all.
            if (!isFirst && !blockName.empty() && !blockName.starts_with(L'*')) tellTwin(*block);
        }
    }
    const auto space = [&](const wchar_t* now, const wchar_t* once) -> Stub* {
        if (Stub* record = findRecord("BLOCK_RECORD", now)) return record;
        return findRecord("BLOCK_RECORD", once);
    };
    Stub* model = space(L"*Model_Space", L"$MODEL_SPACE");
    if (!model) model = section(Section::entities);
    Stub* paper = space(L"*Paper_Space", L"$PAPER_SPACE");
    model_ = model ? indexOf(model) : 0;
    paper_ = paper ? indexOf(paper) : 0;
}

void Core::tellTwin(Stub& block) {
    const char* const place = file_.data() + block.offset;
    if (block.has(Stub::appended) || toldFaults_.size() >= kMostFaultsTold || !toldFaults_.insert(place).second) return;
    warnAt(place, "BLOCK " + base::toUtf8(groupWide(block, 2)) +
                      " has the name of an earlier one; references show the first one. Remedy: --recover gives it "
                      "another name");
}

Stub* Core::modelSpace() {
    linkBlocks();
    return model_ ? &stubs[model_] : nullptr;
}

Stub* Core::paperSpace() {
    linkBlocks();
    return paper_ ? &stubs[paper_] : nullptr;
}

Stub* Core::blockBegin(Stub& record) {
    linkBlocks();
    const auto it = blockOfRecord_.find(indexOf(&record));
    return it == blockOfRecord_.end() ? nullptr : &stubs[it->second];
}

Stub* Core::recordOfBlock(Stub& block) {
    linkBlocks();
    const auto it = recordOfBlock_.find(indexOf(&block));
    return it == recordOfBlock_.end() ? nullptr : &stubs[it->second];
}

Stub* Core::blockOf(Stub& stub) {
    Stub* inner = &stub;
    for (int depth = 0; depth < 4 && inner->owner; ++depth) {
        Stub& owner = stubs[inner->owner];
        if (owner.type == rtBlock) return recordOfBlock(owner);
        if (owner.type == rtSection) {
            if (!owner.has(Stub::entities)) return nullptr;
            return inner->has(Stub::paperSpace) ? paperSpace() : modelSpace();
        }
        inner = &owner;
    }
    return nullptr;
}

OdDbObjectIdRange Core::entitiesOf(Stub& record, bool skipErased) {
    Stub* block = record.type == rtSection ? nullptr : blockBegin(record);
    const bool space = &record == modelSpace() || &record == paperSpace();
    Stub* entities = space ? section(Section::entities) : nullptr;
    return block ? OdDbObjectIdRange(block, entities, &record, skipErased)
                 : OdDbObjectIdRange(entities, nullptr, &record, skipErased);
}

bool Core::isEntity(const Stub& stub) const {
    if (!stub.owner) return false;
    const Stub& owner = stubs[stub.owner];
    switch (owner.type) {
        case rtBlock:
        case rtInsert:
        case rtPolyline:
            return true;
        case rtSection:
            return owner.has(Stub::entities) ||
                   (&owner == section(Section::blocks) && stub.type != rtBlock && stub.type != rtEndblk);
        default:
            return false;
    }
}

// Meshes go by the same name in files; they are carried.
const OdRxClass* Core::classOfPolyline(const Stub& stub) {
    constexpr std::int64_t kSpatial = 8, kMeshes = 16 | 64;
    std::int64_t flags = 0;
    GroupCursor cursor(bytesOf(const_cast<Stub&>(stub)), format);
    for (Group group; cursor.next(group);)
        if (group.code == 70) {
            flags = groupInteger(group, format.binary).value_or(0);
            break;
        }
    if (flags & kMeshes) return nullptr;
    return flags & kSpatial ? OdDb3dPolyline::desc() : OdDb2dPolyline::desc();
}

bool Core::isObject(const Stub& stub) const {
    switch (stub.type) {
        case rtNone:
        case rtSection:
        case rtEndsec:
        case rtTable:
        case rtEndtab:
        case rtBlock:
        case rtEndblk:
        case rtSeqend:
        case rtEof:
        case rtClass:
        case rtVertex:
            return false;
        default:
            return true;
    }
}

const OdRxClass* Core::classOf(const Stub& stub) {
    if (stub.type == rtBlock || stub.type == rtSection) {
        linkBlocks();
        const std::uint32_t index = indexOf(&stub);
        if (index == model_) return OdDbBlockTableRecord::desc();
        // Before there were block records, the blocks themselves were their table.
        if (&stub == section(Section::blocks)) return OdDbSymbolTable::desc();
        const auto it = recordOfBlock_.find(index);
        if (it != recordOfBlock_.end() && it->second == index) return OdDbBlockTableRecord::desc();
        return OdDbUnknownObject::desc();
    }
    if (const OdDbObject* object = stub.object()) return object->isA();
    const bool entity = isEntity(stub);
    const OdRxClass* known = stub.type == rtPolyline ? classOfPolyline(stub) : TypeTable::knownClass(stub.type);
    if (known) {
        // A known name in the wrong place (a LINE among the objects) is carried.
        if (known->isDerivedFrom(OdDbEntity::desc()) == entity) return known;
    }
    if (entity) return OdDbUnknownEntity::desc();
    if (stub.owner && stubs[stub.owner].type == rtTable && stub.type != rtEndtab) return OdDbSymbolTableRecord::desc();
    return OdDbUnknownObject::desc();
}

// ---------------------------------------------------------------------------------------------------------------------
// Finding

Stub* Core::byHandle(std::uint64_t handle) {
    if (!handle) return nullptr;
    std::uint32_t index = 0;
    if (handle >= firstNewHandle_) {
        const std::uint64_t place = handle - firstNewHandle_;
        if (place < newHandles_.size()) index = newHandles_[static_cast<std::size_t>(place)];
    } else if (!handleIndex_.empty()) {
        if (handle < handleIndex_.size()) index = handleIndex_[static_cast<std::size_t>(handle)];
    } else {
        const auto it = std::lower_bound(handleList_.begin(), handleList_.end(),
                                         std::pair<std::uint64_t, std::uint32_t>(handle, 0));
        if (it != handleList_.end() && it->first == handle) index = it->second;
    }
    return index ? &stubs[index] : nullptr;
}

void Core::giveHandle(Stub& stub, const Stub& container) {
    // Objects get theirs all the same: their owners find them by it.
    if (!hasHandles_ && &container != section(Section::objects)) return;
    newHandles_.push_back(indexOf(&stub));
    stub.handle = nextHandle_++;
}

void Core::forgetNames() {
    names_.clear();
    rawBlockNames_.clear();
    origins_.clear();
    blocksLinked_ = false;
}

Stub* Core::findRecord(std::string_view table, const std::wstring& recordName) {
    auto it = names_.find(table);
    if (it == names_.end()) {
        // Reading a name may write a new record down first, which forgets all names: the list is made aside.
        decltype(names_)::mapped_type map;
        Stub* container = tableNamed(table);
        int wanted = -1;
        if (table == "BLOCK_RECORD") {  // nothing else can be opened as a block
            wanted = container ? rtBlockRecord : rtBlock;
            if (!container) container = section(Section::blocks);
        }
        if (container) {
            for (Stub* stub = nextChild(*container, nullptr); stub; stub = nextChild(*container, stub)) {
                if (stub->gone() || (wanted >= 0 && stub->type != wanted)) continue;
                map.emplace(folded(groupWide(*stub, 2)), indexOf(stub));
            }
        }
        it = names_.insert_or_assign(std::string(table), std::move(map)).first;
    }
    const auto found = it->second.find(folded(recordName));
    return found == it->second.end() ? nullptr : &stubs[found->second];
}

Stub* Core::blockByRawName(std::string_view raw) {
    const auto it = rawBlockNames_.find(raw);
    if (it != rawBlockNames_.end()) return it->second ? &stubs[it->second] : nullptr;
    Stub* found = findRecord("BLOCK_RECORD", decodeText(raw, format));
    rawBlockNames_.emplace(std::string(raw), found ? indexOf(found) : 0);
    return found;
}

OdGePoint3d Core::blockOrigin(Stub& record) {
    const auto [it, fresh] = origins_.try_emplace(indexOf(&record));
    if (!fresh) return it->second;
    OdGePoint3d origin(0, 0, 0);
    if (Stub* block = blockBegin(record)) {
        GroupCursor cursor(bytesOf(*block), format);
        Group group;
        while (cursor.next(group)) {
            if (group.code == 10) origin.x = groupReal(group, format.binary).value_or(0);
            if (group.code == 20) origin.y = groupReal(group, format.binary).value_or(0);
            if (group.code == 30) origin.z = groupReal(group, format.binary).value_or(0);
        }
    }
    origins_[indexOf(&record)] = origin;
    return origin;
}

const std::vector<std::uint32_t>& Core::referencesTo(Stub& record) {
    if (!referencesKnown_) {
        referencesKnown_ = true;
        references_.clear();
        try {
            for (std::uint32_t i = 1; i < stubs.size(); ++i)
                if (stubs[i].type == rtInsert) referenceAdded(stubs[i], blockByRawName(groupText(stubs[i], 2)));
        } catch (...) {
            referencesKnown_ = false;
            throw;
        }
    }
    return references_[indexOf(&record)];
}

void Core::referenceAdded(Stub& insert, Stub* block) {
    if (!referencesKnown_ || !block) return;
    std::vector<std::uint32_t>& known = references_[indexOf(block)];
    const std::uint32_t index = indexOf(&insert);
    // In the order of the records, each once; nearly always it is the last.
    const auto place =
        known.empty() || known.back() < index ? known.end() : std::lower_bound(known.begin(), known.end(), index);
    if (place == known.end() || *place != index) known.insert(place, index);
}

// ---------------------------------------------------------------------------------------------------------------------
// Objects

void Core::requireWritable() const {
    if (readOnly)
        throw OdError(OdResult::readOnly,
                      where(nullptr) + "the drawing is damaged and open read-only; it cannot be changed");
}

void Core::decode(OdDbObject& object, std::string_view bytes) {
    ObjectAccess::source(object) = bytes;
    ObjectAccess::hasFileXData(object) = false;
    const auto fault = [&](const Group& group, const char* expected) {
        if (toldFaults_.size() >= kMostFaultsTold || !toldFaults_.insert(group.begin).second) return;
        warnAt(group.begin, "group " + std::to_string(group.code) + " of " + object.dxfName() + " #" +
                                object.handle().ascii() + " is not " + expected + ": \"" +
                                (format.binary ? std::string("...") : std::string(group.value.substr(0, 60))) +
                                "\"; the default is shown, the file's text is kept");
    };
    decodeObject(object, *ObjectAccess::description(object), bytes, format, fault);
}

OdDbObjectPtr Core::open(Stub& stub, OdDb::OpenMode mode, bool erasedToo) {
    if (stub.gone() && !erasedToo) return {};
    if (mode == OdDb::forWrite) requireWritable();
    if (OdDbObject* object = stub.object()) {
        OdDbObjectPtr pointer(object);
        if (mode == OdDb::forWrite) ObjectAccess::writable(*object) = true;
        return pointer;
    }
    const std::string_view bytes = bytesOf(stub);
    auto pointer = OdDbObjectPtr(static_cast<OdDbObject*>(classOf(stub)->create().get()));
    OdDbObject& object = *pointer;
    ObjectAccess::stub(object) = &stub;
    ObjectAccess::database(object) = &database;
    ObjectAccess::closedContent(object) = stub.content;
    stub.content = reinterpret_cast<Content>(&object);
    ++liveObjects_;
    decode(object, bytes);
    ObjectAccess::writable(object) = mode == OdDb::forWrite;
    return pointer;
}

void Core::closed(OdDbObject& object) {
    // Encoding may look at the object through a pointer of its own.
    object.addRef();
    flush(object);
    Stub& stub = *ObjectAccess::stub(object);
    stub.content = ObjectAccess::closedContent(object);
    --liveObjects_;
    ObjectAccess::stub(object) = nullptr;
    delete &object;  // NOLINT(cppcoreguidelines-owning-memory): its last reference is gone
}

void Core::becomeDirty(OdDbObject& object) { dirty_.push_back(&object); }

Stub* Core::openForWrite() {
    std::size_t left = liveObjects_;
    for (std::uint32_t i = 0; left > 0 && i < stubs.size(); ++i) {
        const OdDbObject* const object = stubs[i].object();
        if (!object) continue;
        if (object->isWriteEnabled()) return &stubs[i];
        --left;
    }
    return nullptr;
}

void Core::flush(OdDbObject& object) {
    if (!ObjectAccess::dirty(object)) return;
    // Objects are closed by destructors, which throw nothing: what cannot be stored stays as it was, and the next to
    // ask for the undo position or the file is told.
    bool moved = false;
    try {
        moved = store(object);
    } catch (...) {
        if (!fault_) {
            fault_ = std::current_exception();
            faultPosition_ = log_.size();
        }
    }
    ObjectAccess::dirty(object) = false;
    ObjectAccess::runsChanged(object) = false;
    ObjectAccess::reactorsChanged(object) = false;
    ObjectAccess::forgetXData(object);
    for (std::size_t i = dirty_.size(); i-- > 0;) {
        if (dirty_[i] != &object) continue;
        dirty_[i] = dirty_.back();
        dirty_.pop_back();
        break;
    }
    if (!moved || !referencesKnown_) return;
    try {
        referenceAdded(*ObjectAccess::stub(object), blockByRawName(groupText(*ObjectAccess::stub(object), 2)));
    } catch (const std::bad_alloc&) {
        referencesKnown_ = false;  // gathered anew when somebody asks
    }
}

bool Core::store(OdDbObject& object) {
    ObjectAccess::beforeEncode(object);
    Stub& stub = *ObjectAccess::stub(object);
    std::string bytes;
    bytes.swap(scratch_);
    bytes.clear();
    bool moved = false;
    const std::string_view old = ObjectAccess::source(object);
    try {
        encodeObject(object, *ObjectAccess::description(object), old, format, bytes);
    } catch (const OdError& error) {
        throw OdError(error.code(),
                      where(nullptr) + object.dxfName() + " #" + object.handle().ascii() + ": " + error.what());
    }
    if (bytes != old) {
        const bool fresh = old.empty() && stub.has(Stub::appended) && ObjectAccess::closedContent(object) == 0;
        const Body* body = arena_.add(bytes, stub.type);
        // The creation of a new object is already in the log; its first bytes belong to it.
        if (!fresh) log(stub, Step::content, ObjectAccess::closedContent(object));
        ObjectAccess::closedContent(object) = Arena::contentOf(body);
        ObjectAccess::source(object) = body->view();
        if (ObjectAccess::newXData(object)) ObjectAccess::hasFileXData(object) = true;
        if (stub.owner && stubs[stub.owner].type == rtTable) forgetNames();
        moved = stub.type == rtInsert && !fresh;
    }
    bytes.swap(scratch_);
    return moved;
}

void Core::flushAll() {
    while (!dirty_.empty()) {
        OdDbObject* object = dirty_.back();
        const OdDbObjectPtr hold(object);
        flush(*object);
    }
}

void Core::requireStored() {
    flushAll();
    if (fault_) std::rethrow_exception(fault_);
}

void Core::refresh(OdDbObject& object) {
    Stub& stub = *ObjectAccess::stub(object);
    for (std::size_t i = dirty_.size(); i-- > 0;)
        if (dirty_[i] == &object) dirty_.erase(dirty_.begin() + static_cast<std::ptrdiff_t>(i));
    ObjectAccess::dirty(object) = false;
    const Content content = ObjectAccess::closedContent(object);
    stub.content = content;
    const std::string_view bytes = bytesOf(stub);
    stub.content = reinterpret_cast<Content>(&object);
    resetObject(object, *ObjectAccess::description(object));
    decode(object, bytes);
}

// ---------------------------------------------------------------------------------------------------------------------
// Header variables

std::optional<Core::HeaderVariable> Core::headerVariable(std::string_view variable) {
    if (!header_ && !(header_ = section(Section::header))) return {};
    // Bytes never change, so the table holds for as long as the header has the same ones.
    if (const std::string_view bytes = bytesOf(*header_); bytes.data() != headerBytes_) indexHeader(bytes);
    const auto found = headerVariables_.find(variable);
    return found == headerVariables_.end() ? std::nullopt : std::optional(found->second);
}

const Core::EntityDefaults& Core::entityDefaults() {
    const auto layer = headerVariable("$CLAYER");
    if (entityDefaultsOf_ && entityDefaultsOf_ == headerBytes_) return entityDefaults_;
    entityDefaultsOf_ = headerBytes_;
    const auto linetype = headerVariable("$CELTYPE");
    const bool named = linetype && !base::equalsNoCase(linetype->first, "BYLAYER");
    entityDefaults_.layer = layer ? layer->first : std::string_view();
    entityDefaults_.linetype = named ? linetype->first : std::string_view();
    entityDefaults_.colorIndex = static_cast<std::int32_t>(database.headerInteger("$CECOLOR", 256));
    entityDefaults_.linetypeScale = database.headerReal("$CELTSCALE", 1.0);
    entityDefaults_.lineweight = static_cast<std::int32_t>(database.headerInteger("$CELWEIGHT", -1));
    return entityDefaults_;
}

void Core::indexHeader(std::string_view bytes) {
    headerBytes_ = bytes.data();
    headerVariables_.clear();
    GroupCursor cursor(bytes, format);
    Group group;
    bool more = cursor.next(group);
    while (more) {
        if (group.code != 9) {
            more = cursor.next(group);
            continue;
        }
        const std::string_view variableName = group.value;
        HeaderVariable variable;
        const char* begin = group.end;
        const char* end = begin;
        while ((more = cursor.next(group)) && group.code != 9 && group.code != 0) {
            if (end == begin) {
                variable.first = group.value;
                variable.code = group.code;
            }
            end = group.end;
        }
        variable.groups = {begin, static_cast<std::size_t>(end - begin)};
        headerVariables_.emplace(variableName, variable);  // the first of a name counts
    }
}

void Core::setHeaderVariable(std::string_view variable, const std::function<void(GroupWriter&)>& write) {
    requireWritable();
    Stub* header = section(Section::header);
    if (!header)
        throw OdError(OdResult::badFile, where(nullptr) + "the file has no HEADER section; " + std::string(variable) +
                                             " cannot be stored");
    const std::string_view old = bytesOf(*header);
    std::string bytes;
    GroupWriter writer(bytes, format);
    if (const auto found = headerVariable(variable)) {
        bytes.append(old.substr(0, static_cast<std::size_t>(found->groups.data() - old.data())));
        write(writer);
        bytes.append(old.substr(static_cast<std::size_t>(found->groups.data() + found->groups.size() - old.data())));
    } else {
        bytes.append(old);
        writer.text(9, variable);
        write(writer);
    }
    if (bytes != old) setBytes(*header, bytes);
}

}  // namespace drawingdb
