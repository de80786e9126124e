// Appending, erasing with all that is owned, exchanging identities, copying, making blocks.
#include "drawingdb/src/core/edit.h"

#include <algorithm>

#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/field.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/core/object_access.h"
#include "drawingdb/src/core/record_walk.h"
#include "drawingdb/src/file/record_writer.h"

namespace drawingdb {

namespace {

// Whether a record can own nothing: looking for one word is quicker than reading the groups.
bool ownsNothing(std::uint16_t type, std::string_view bytes) {
    return ownsOnlyItsDictionary(type) && bytes.find("{ACAD_XDICTIONARY") == std::string_view::npos;
}

}  // namespace

std::uint64_t ownerHandle(std::string_view bytes, const FileFormat& format) {
    for (RecordWalk walk(GroupCursor(bytes, format)); walk.next() && walk.inHead();)
        if (walk.part() == RecordPart::field && walk.group().code == 330) return parseHandle(walk.group().value);
    return 0;
}

void Core::linkChild(Stub& container, Stub& child) {
    Stub* anchor = anchorOf(container, true);
    const std::uint32_t index = indexOf(&child);
    log(child, Step::append, anchor->close);
    if (anchor->close)
        stubs[anchor->close].next = index;
    else
        anchor->next = index;
    anchor->close = index;
    if (container.type == rtInsert) setFlags(container, container.flags | Stub::childrenChanged);
}

Stub& Core::addStub(std::uint16_t type, Stub& container) {
    Stub& stub = linkedStub(type, container);
    if (container.type == rtTable || type == rtBlock) forgetNames();
    return stub;
}

Stub& Core::linkedStub(std::uint16_t type, Stub& container) {
    anchorOf(container, true);  // before the child, so that its handle comes first as it does in files
    Stub& stub = stubs.add();
    stub.type = type;
    stub.owner = indexOf(&container);
    stub.flags = Stub::appended | Stub::unborn;
    giveHandle(stub, container);
    linkChild(container, stub);
    stub.flags = Stub::appended;
    return stub;
}

void Core::requireHeld(std::uint16_t type) const {
    if (type >= rtFirstCarried || format.version >= allKinds()[type].since) return;
    throw OdError(OdResult::notHeldByVersion, where(nullptr) + "no " + types.name(type) +
                                                  " fits into a drawing of version " + version() +
                                                  ". Remedy: open it with a program that can save newer versions");
}

void Core::appendObject(OdDbObject& object, Stub& container) {
    requireWritable();
    const std::uint16_t type = types.find(object.dxfName());
    requireHeld(type);
    if (object.isDatabaseResident()) throw OdError(OdResult::invalidInput, "the object is in a database already");
    Stub& stub = addStub(type, container);
    ObjectAccess::stub(object) = &stub;
    ObjectAccess::database(object) = &database;
    ObjectAccess::closedContent(object) = 0;
    ObjectAccess::source(object) = {};
    stub.content = reinterpret_cast<Content>(&object);
    ++liveObjects_;
    ObjectAccess::writable(object) = true;
    ObjectAccess::dirty(object) = true;
    becomeDirty(object);
}

void Core::setFlags(Stub& stub, std::uint32_t flags) {
    if (stub.flags == flags) return;
    log(stub, Step::flags, stub.flags);
    stub.flags = flags;
}

void Core::setContent(Stub& stub, Content content) {
    if (OdDbObject* object = stub.object()) {
        log(stub, Step::content, ObjectAccess::closedContent(*object));
        ObjectAccess::closedContent(*object) = content;
    } else {
        log(stub, Step::content, stub.content);
        stub.content = content;
    }
    if (content) stub.type = Arena::bodyOf(content)->type;
}

void Core::setBytes(Stub& stub, std::string_view bytes) {
    if (OdDbObject* object = stub.object()) flush(*object);
    setContent(stub, Arena::contentOf(arena_.add(bytes, stub.type)));
    if (OdDbObject* object = stub.object()) refresh(*object);
}

void Core::eraseOne(Stub& stub, bool erasing, std::vector<Stub*>& more) {
    const std::uint32_t before = stub.flags;
    if (((before & Stub::erased) != 0) == erasing) return;
    setFlags(stub, erasing ? before | Stub::erased : before & ~std::uint32_t{Stub::erased});
    erasedEver_ = true;
    // Attributes and vertices.
    if (stub.type == rtInsert || stub.type == rtPolyline) {
        for (Stub* child = nextChild(stub, nullptr); child; child = nextChild(stub, child)) more.push_back(child);
        if (Stub* anchor = anchorOf(stub, false); anchor && !anchor->has(Stub::appended)) more.push_back(anchor);
    }
    if (!erasing) return;
    // What it owns: objects that it names as its own and that name it as their owner.
    const auto own = [&](std::uint64_t handle) {
        Stub* owned = byHandle(handle);
        if (owned && owned != &stub && !owned->gone() && !isEntity(*owned) &&
            ownerHandle(bytesOf(*owned), format) == stub.handle)
            more.push_back(owned);
    };
    if (const std::string_view bytes = bytesOf(stub); !ownsNothing(stub.type, bytes)) {
        GroupCursor cursor(bytes, format);
        Group group;
        while (cursor.next(group))
            if (isOwnerCode(group.code)) own(parseHandle(group.value));
    }
    if (stub.type == rtLayer || stub.type == rtStyle || stub.type == rtBlockRecord) forgetNames();
}

// Nobody shall go on naming it: objects that it listens to.
void Core::stopListening(Stub& stub) {
    if (isEntity(stub) || stub.type == rtDictionary || stub.type == rtField) return;
    GroupCursor cursor(bytesOf(stub), format);
    for (Group group; cursor.next(group);) {
        if (!isPointerCode(group.code)) continue;
        Stub* target = byHandle(parseHandle(group.value));
        if (!target || target == &stub || target->gone()) continue;
        if (bytesOf(*target).find("{ACAD_REACTORS") == std::string_view::npos) continue;
        const OdDbObjectPtr heard = open(*target, OdDb::forRead, false);
        const auto reactors = heard->persistentReactors();
        if (std::find(reactors.begin(), reactors.end(), OdDbObjectId(&stub)) == reactors.end()) continue;
        heard->upgradeOpen();
        heard->removePersistentReactor(OdDbObjectId(&stub));
    }
}

void Core::erase(Stub& stub, bool erasing) {
    requireWritable();
    if (stub.has(Stub::unborn)) return;
    if (OdDbObject* object = stub.object()) flush(*object);
    // Nobody shall go on naming it: its owner's dictionary.
    if (erasing && !stub.gone() && !isEntity(stub))
        if (Stub* owner = byHandle(ownerHandle(bytesOf(stub), format));
            owner && !owner->gone() && classOf(*owner)->isDerivedFrom(OdDbDictionary::desc()))
            OdDbObjectId(owner).openAs<OdDbDictionary>(OdDb::forWrite)->removeId(OdDbObjectId(&stub));
    if (stub.owner && stubs[stub.owner].type == rtInsert) {
        Stub& reference = stubs[stub.owner];
        setFlags(reference, reference.flags | Stub::childrenChanged);
    }
    std::vector<Stub*> more{&stub};
    while (!more.empty()) {
        Stub* next = more.back();
        more.pop_back();
        if (OdDbObject* object = next->object()) flush(*object);
        if (erasing && !next->gone()) stopListening(*next);
        eraseOne(*next, erasing, more);
    }
}

// ---------------------------------------------------------------------------------------------------------------------

std::string Core::rewritten(std::string_view bytes, std::uint64_t handle, std::uint64_t owner, bool paperSpace,
                            const std::function<std::uint64_t(std::uint64_t, bool)>& map) {
    std::string out;
    out.reserve(bytes.size() + 32);
    GroupWriter writer(out, format);
    bool ownerDone = false, spaceDone = false;
    std::string list;  // of reactors: only written when something stays in it
    bool isListEmpty = true;
    for (RecordWalk walk(GroupCursor(bytes, format)); walk.next();) {
        const Group& group = walk.group();
        const bool isReactor = walk.control() == ControlString::reactors;
        const bool isField = walk.part() == RecordPart::field;
        if (walk.part() == RecordPart::handle) {
            parseHandle(group.value) == handle ? writer.raw(group.bytes()) : writer.handle(group.code, handle);
        } else if (walk.part() == RecordPart::controlBegin && isReactor) {
            list.assign(group.bytes());
            isListEmpty = true;
        } else if (walk.part() == RecordPart::controlEnd && isReactor) {
            if (!isListEmpty) out.append(list).append(group.bytes());
        } else if (isField && walk.inHead() && group.code == 330 && !ownerDone) {
            ownerDone = true;
            parseHandle(group.value) == owner || owner == 0 ? writer.raw(group.bytes()) : writer.handle(330, owner);
        } else if (isField && group.code == 67 && !spaceDone) {
            spaceDone = true;
            if (paperSpace) writer.integer(67, 1);
        } else {
            const bool isReference = isReferenceCode(group.code) || group.code == kHandleInData;
            const std::uint64_t old = isReference ? parseHandle(group.value) : 0;
            const std::uint64_t now = isReference ? map(old, isReactor) : 0;
            if (isReactor && isReference && now == 0) continue;
            GroupWriter place(isReactor ? list : out, format);
            now == 0 || now == old ? place.raw(group.bytes()) : place.handle(group.code, now);
            if (isReactor) isListEmpty = false;
            if (walk.part() == RecordPart::marker && group.value == "AcDbEntity" && paperSpace && !spaceDone) {
                spaceDone = true;
                writer.integer(67, 1);
            }
        }
    }
    return out;
}

namespace {

// The extended data at the end of a record, and what stands before it.
std::pair<std::string_view, std::string_view> splitXData(std::string_view bytes, const FileFormat& format) {
    for (RecordWalk walk(GroupCursor(bytes, format)); walk.next();)
        if (walk.part() == RecordPart::extendedData) {
            const auto head = static_cast<std::size_t>(walk.group().begin - bytes.data());
            return {bytes.substr(0, head), bytes.substr(head)};
        }
    return {bytes, {}};
}

// The control string of the extension dictionary, or nothing.
std::string_view dictionaryGroups(std::string_view bytes, const FileFormat& format) {
    const char* begin = nullptr;
    for (RecordWalk walk(GroupCursor(bytes, format)); walk.next();) {
        if (walk.control() != ControlString::dictionary) continue;
        if (walk.part() == RecordPart::controlBegin) begin = walk.group().begin;
        if (walk.part() == RecordPart::controlEnd) return {begin, static_cast<std::size_t>(walk.group().end - begin)};
    }
    return {};
}

}  // namespace

std::string withDictionary(std::string_view bytes, std::string_view dictionary, const FileFormat& format) {
    std::size_t begin = 0, end = 0;
    if (const std::string_view old = dictionaryGroups(bytes, format); !old.empty()) {
        begin = static_cast<std::size_t>(old.data() - bytes.data());
        end = begin + old.size();
    } else {
        for (RecordWalk walk(GroupCursor(bytes, format)); walk.next() && walk.inHead();)
            if (walk.part() == RecordPart::name || walk.part() == RecordPart::handle)
                begin = end = static_cast<std::size_t>(walk.group().end - bytes.data());
    }
    return std::string(bytes.substr(0, begin)).append(dictionary).append(bytes.substr(end));
}

void Core::swapIdentity(Stub& a, Stub& b, bool extendedData, bool extensionDictionaries) {
    requireWritable();
    if (&a == &b) return;
    for (Stub* stub : {&a, &b}) {
        if (stub->type == rtInsert || stub->type == rtPolyline || stub->type == rtBlock || stub->type == rtTable ||
            stub->type == rtSection)
            throw OdError(OdResult::invalidInput,
                          typeName(*stub) + " #" + OdDbHandle(stub->handle).ascii() +
                              " has parts of its own in the file; its identity cannot be exchanged");
    }
    std::string ofA(bytesOf(a)), ofB(bytesOf(b));
    const std::uint64_t ownerA = ownerHandle(ofA, format), ownerB = ownerHandle(ofB, format);
    if (!extendedData) {
        const std::string headA(splitXData(ofA, format).first), dataA(splitXData(ofA, format).second);
        const std::string headB(splitXData(ofB, format).first), dataB(splitXData(ofB, format).second);
        ofA = headA + dataB;
        ofB = headB + dataA;
    }
    if (!extensionDictionaries) {
        const std::string dictionaryA(dictionaryGroups(ofA, format)), dictionaryB(dictionaryGroups(ofB, format));
        ofA = withDictionary(ofA, dictionaryB, format);
        ofB = withDictionary(ofB, dictionaryA, format);
    }
    const auto same = [](std::uint64_t handle, bool) { return handle; };
    const std::string newA = rewritten(ofB, a.handle, ownerA, a.has(Stub::paperSpace), same);
    const std::string newB = rewritten(ofA, b.handle, ownerB, b.has(Stub::paperSpace), same);
    const std::uint16_t typeA = a.type, typeB = b.type;
    OdDbObject* objectA = a.object();
    OdDbObject* objectB = b.object();
    const Content contentA = Arena::contentOf(arena_.add(newA, typeB));
    const Content contentB = Arena::contentOf(arena_.add(newB, typeA));
    setContent(a, contentA);
    setContent(b, contentB);
    // The open objects go with their contents.
    const auto place = [&](OdDbObject* object, Stub& stub, Content content) {
        if (!object) {
            stub.content = content;
            return;
        }
        ObjectAccess::stub(*object) = &stub;
        ObjectAccess::closedContent(*object) = content;
        stub.content = reinterpret_cast<Content>(object);
        refresh(*object);
    };
    place(objectA, b, contentB);
    place(objectB, a, contentA);
    // Dictionaries and fields that went along belong to the other identity now.
    if (extensionDictionaries) {
        for (const auto& [stub, before] : {std::pair{&a, &b}, std::pair{&b, &a}}) {
            const OdDbObjectPtr object = open(*stub, OdDb::forRead, true);
            if (Stub* dictionary = byHandle(ObjectAccess::extensionDictionary(*object).handle);
                dictionary && !dictionary->gone()) {
                const std::string_view bytes = bytesOf(*dictionary);
                const std::string moved =
                    rewritten(bytes, dictionary->handle, stub->handle, false,
                              [from = before->handle, to = stub->handle](std::uint64_t handle, bool) {
                                  return handle == from ? to : handle;  // its reactor
                              });
                if (moved != bytes) setBytes(*dictionary, moved);
            }
        }
    }
    forgetNames();
}

void Core::deepClone(const OdDbObjectIdArray& objects, Stub& owner, OdDbIdMapping& mapping) {
    requireWritable();
    struct Job {
        Stub* source;
        Stub* copy;
        std::uint64_t owner;
        bool paper;
    };
    std::vector<Job> jobs;
    const bool toBlock = classOf(owner)->isDerivedFrom(OdDbBlockTableRecord::desc());
    const bool paper =
        toBlock && &owner != modelSpace() && base::startsWithNoCase(groupWide(owner, 2), L"*Paper_Space");
    Stub* container = section(Section::objects);
    if (toBlock) {
        const bool inEntities = &owner == modelSpace() || &owner == paperSpace();
        container = inEntities ? section(Section::entities) : blockBegin(owner);
    }
    if (!container)
        throw OdError(OdResult::invalidInput, where(nullptr) + "there is no place for the copies in this drawing");
    const auto add = [&](Stub& source, Stub& into, std::uint64_t ownerOfCopy, bool inPaper, bool primary) -> Stub& {
        Stub& copy = addStub(source.type, into);
        if (inPaper) copy.flags |= Stub::paperSpace;
        mapping.add(OdDbObjectId(&source), OdDbObjectId(&copy), primary);
        jobs.push_back({&source, &copy, ownerOfCopy, inPaper});
        return copy;
    };
    for (const OdDbObjectId id : objects) {
        if (!id.isValid() || !mapping.find(id).isNull()) continue;
        Stub& source = *id.stub();
        const std::size_t first = jobs.size();
        add(source, *container, owner.handle, paper, true);
        // What it owns comes along, breadth first.
        for (std::size_t i = first; i < jobs.size(); ++i) {
            const Job job = jobs[i];
            if (job.source->type == rtInsert || job.source->type == rtPolyline)
                for (Stub* child = nextChild(*job.source, nullptr); child; child = nextChild(*job.source, child))
                    if (!child->gone()) add(*child, *job.copy, job.copy->handle, paper, false);
            // Bytes stay where they are, whatever is added.
            const std::string_view bytes = bytesOf(*job.source);
            if (ownsNothing(job.source->type, bytes)) continue;
            GroupCursor cursor(bytes, format);
            Group group;
            while (cursor.next(group)) {
                if (!isOwnerCode(group.code)) continue;
                Stub* owned = byHandle(parseHandle(group.value));
                if (!owned || owned->gone() || isEntity(*owned) || !mapping.find(OdDbObjectId(owned)).isNull())
                    continue;
                if (ownerHandle(bytesOf(*owned), format) != job.source->handle) continue;
                if (Stub* place = section(Section::objects)) add(*owned, *place, job.copy->handle, false, false);
            }
        }
    }
    for (const Job& job : jobs) {
        // Whoever listens to the original does not listen to the copy, unless it was copied too.
        const auto map = [&](std::uint64_t handle, bool reactor) {
            Stub* target = byHandle(handle);
            const OdDbObjectId copy = target ? mapping.find(OdDbObjectId(target)) : OdDbObjectId();
            return !copy.isNull() ? copy.stub()->handle : reactor ? 0 : handle;
        };
        const std::string bytes = rewritten(bytesOf(*job.source), job.copy->handle, job.owner, job.paper, map);
        job.copy->content = Arena::contentOf(arena_.add(bytes, job.copy->type));
        if (job.copy->type == rtInsert) referenceAdded(*job.copy, blockByRawName(groupText(*job.copy, 2)));
    }
}

Content Core::ofAnonymousBlock(Stub& source, const Stub& copy, std::uint64_t owner, std::string_view blockName) {
    constexpr std::int64_t kAnonymous = 1;
    std::string bytes;
    GroupWriter writer(bytes, format);
    for (RecordWalk walk(GroupCursor(bytesOf(source), format)); walk.next();) {
        const Group& group = walk.group();
        // Lists of references, reactors, a dictionary: those of the source.
        if (walk.control() != ControlString::none) continue;
        const bool isField = walk.part() == RecordPart::field, ofBlock = source.type == rtBlock;
        if (walk.part() == RecordPart::handle)
            writer.handle(group.code, copy.handle);
        else if (isField && walk.inHead() && group.code == 330)
            writer.handle(330, owner);
        else if (isField && (group.code == 2 || (group.code == 3 && ofBlock)))
            writer.text(group.code, blockName);
        else if (isField && group.code == 70 && ofBlock)
            writer.integer(70, groupInteger(group, format.binary).value_or(0) | kAnonymous);
        else
            writer.raw(group.bytes());
    }
    return Arena::contentOf(arena_.add(bytes, source.type));
}

// An old drawing need not have one. It is no step of the log: saving leaves it out when it holds nothing.
Stub* Core::addBlocksSection() {
    const Stub* const entities = section(Section::entities);
    if (format.version >= version::r13 || tableNamed("BLOCK_RECORD") || !entities) return nullptr;
    const auto add = [this](std::uint16_t type, const auto& write) -> Stub& {
        Stub& stub = stubs.add();
        stub.type = type;
        stub.flags = Stub::appended;
        std::string bytes;
        GroupWriter writer(bytes, format);
        write(writer);
        stub.content = Arena::contentOf(arena_.add(bytes, type));
        return stub;
    };
    Stub& blocks = add(
        rtSection,
        [](GroupWriter& writer) {
            writer.text(0, "SECTION");
            writer.text(2, "BLOCKS");
        });
    Stub& closer = add(rtEndsec, [](GroupWriter& writer) { writer.text(0, "ENDSEC"); });
    closer.owner = indexOf(&blocks);
    blocks.close = indexOf(&closer);
    sections_.emplace("BLOCKS", &blocks);
    knownSections_[static_cast<std::size_t>(Section::blocks)] = &blocks;
    return &blocks;
}

std::optional<Core::NewBlock> Core::linkBlock() {
    Stub* const known = section(Section::blocks);
    Stub* const blocks = known ? known : addBlocksSection();
    Stub* const table = tableNamed("BLOCK_RECORD");
    if (!table && format.version >= version::r13) return {};  // a block without a record is none there
    if (!blocks || !(blocks->has(Stub::ownCloser) || blocks->has(Stub::appended)) ||
        (table && !table->has(Stub::ownCloser)))
        return {};
    Stub* const record = table ? &linkedStub(rtBlockRecord, *table) : nullptr;
    Stub& block = linkedStub(rtBlock, *blocks);
    Stub& closer = stubs.add();
    closer.type = rtEndblk;
    closer.owner = indexOf(&block);
    closer.flags = Stub::appended;
    giveHandle(closer, block);
    block.close = indexOf(&closer);
    return NewBlock{table, record ? record : &block, &block, &closer};
}

// The tables of names and blocks are added to, and not forgotten: a drawing may have very many pictures.
Stub* Core::addPicture(Stub& picture) {
    requireWritable();
    Stub* const begin = blockBegin(picture);
    Stub* const end = begin ? anchorOf(*begin, false) : nullptr;
    if (!end || end->type != rtEndblk || (tableNamed("BLOCK_RECORD") && begin == &picture)) return nullptr;
    const std::optional<NewBlock> made = linkBlock();
    if (!made) return nullptr;
    std::wstring newName;
    do newName = L"*D" + std::to_wstring(++lastPicture_);
    while (findRecord("BLOCK_RECORD", newName));
    const std::string raw = encodeText(newName, format);
    if (made->table) made->record->content = ofAnonymousBlock(picture, *made->record, made->table->handle, raw);
    made->block->content = ofAnonymousBlock(*begin, *made->block, made->record->handle, raw);
    made->end->content = ofAnonymousBlock(*end, *made->end, made->record->handle, raw);

    const std::uint32_t record = indexOf(made->record), block = indexOf(made->block);
    names_.find("BLOCK_RECORD")->second.insert_or_assign(newName, record);
    rawBlockNames_.erase(raw);
    blockOfRecord_.insert_or_assign(record, block);
    recordOfBlock_.insert_or_assign(block, record);
    return made->record;
}

Stub& Core::addBlock(std::wstring_view blockName) {
    requireWritable();
    const std::optional<NewBlock> made = linkBlock();
    if (!made) throw OdError(OdResult::badFile, where(nullptr) + std::string(kNoPlaceForBlocks));
    BlockHead head;
    head.units = database.headerInteger("$INSUNITS", 0);
    writeBlockRecords(*made, blockName, head);
    forgetNames();
    return *made->record;
}

void Core::writeBlockRecords(const NewBlock& made, std::wstring_view blockName, const BlockHead& head) {
    const auto fill = [&](Stub& stub, const char* kind, std::uint64_t owner, const auto& write) {
        std::string bytes;
        GroupWriter writer(bytes, format);
        writer.text(0, kind);
        if (stub.handle) writer.handle(5, stub.handle);
        if (format.version >= version::v2000 && owner) writer.handle(330, owner);
        write(writer);
        stub.content = Arena::contentOf(arena_.add(bytes, stub.type));
    };
    if (made.table)
        fill(*made.record, "BLOCK_RECORD", made.table->handle, [&](GroupWriter& writer) {
            writer.marker("AcDbSymbolTableRecord");
            writer.marker("AcDbBlockTableRecord");
            writer.wide(2, blockName);
            if (format.version >= version::v2000) writer.handle(340, 0);
            if (format.version < version::v2007) return;
            writer.integer(70, head.units);
            writer.integer(280, head.explodable);
            writer.integer(281, head.scalability);
        });
    const std::uint64_t owner = made.table ? made.record->handle : 0;
    fill(*made.block, "BLOCK", owner, [&](GroupWriter& writer) {
        writer.marker("AcDbEntity");
        writer.text(8, "0");
        writer.marker("AcDbBlockBegin");
        writer.wide(2, blockName);
        writer.integer(70, head.flags);
        writer.point(10, head.origin.x, head.origin.y, head.origin.z);
        writer.wide(3, blockName);
        writer.wide(1, head.path);
        if (!head.description.empty() && format.version >= version::v2000) writer.wide(4, head.description);
    });
    fill(*made.end, "ENDBLK", owner, [&](GroupWriter& writer) {
        writer.marker("AcDbEntity");
        writer.text(8, "0");
        writer.marker("AcDbBlockEnd");
    });
}

namespace {

// With `groups` behind all fields, in place of those with the codes.
std::string withFields(std::string_view record, std::initializer_list<int> codes, std::string_view groups,
                       const FileFormat& format) {
    std::string bytes;
    GroupWriter writer(bytes, format);
    bool isWritten = false;
    const auto write = [&] {
        if (!std::exchange(isWritten, true)) writer.raw(groups);
    };
    for (RecordWalk walk(GroupCursor(record, format)); walk.next();) {
        if (walk.part() == RecordPart::extendedData) write();
        const bool isReplaced =
            walk.part() == RecordPart::field && std::ranges::find(codes, walk.group().code) != codes.end();
        if (!isReplaced) writer.raw(walk.group().bytes());
    }
    write();
    return bytes;
}

}  // namespace

void Core::redefineBlock(Stub& record, const OdDbObjectIdArray& entities, OdDbIdMapping& copies) {
    requireWritable();
    OdDbObjectIdArray before;
    for (const OdDbObjectId id : entitiesOf(record, true)) before.push_back(id);
    deepClone(entities, record, copies);
    emptyBlock(record, before);
    const bool hasAttributes = std::ranges::any_of(copies.pairs(), [](const OdDbIdMapping::Pair& pair) {
        const auto definition = pair.copy.openIf<OdDbAttributeDefinition>();
        return pair.primary && definition && !definition->isConstant();
    });
    setBlockOrigin(record, {0, 0, 0}, hasAttributes);
    forgetNames();
}

void Core::emptyBlock(Stub& record, const OdDbObjectIdArray& entities) {
    for (const OdDbObjectId id : entities) erase(*id.stub(), true);
    // The order of drawing and whatever else was told of the old entities.
    if (const OdDbObjectId dictionary = open(record, OdDb::forRead, false)->extensionDictionary(); dictionary) {
        erase(*dictionary.stub(), true);
        setBytes(record, withDictionary(bytesOf(record), {}, format));
    }
    // Nor is the picture of it that lists of blocks show.
    if (record.type == rtBlockRecord) setBytes(record, withFields(bytesOf(record), {310}, {}, format));
}

void Core::setBlockOrigin(Stub& record, const OdGePoint3d& origin, bool hasAttributes) {
    constexpr std::int64_t kHasAttributes = 2;
    Stub& begin = *blockBegin(record);
    std::string bytes;
    GroupWriter writer(bytes, format);
    for (RecordWalk walk(GroupCursor(bytesOf(begin), format)); walk.next();) {
        const Group& group = walk.group();
        const bool isField = walk.part() == RecordPart::field;
        if (isField && (group.code == 10 || group.code == 20 || group.code == 30)) {
            writer.real(group.code, group.code == 10 ? origin.x : group.code == 20 ? origin.y : origin.z);
        } else if (isField && group.code == 70) {
            const std::int64_t flags = groupInteger(group, format.binary).value_or(0) & ~kHasAttributes;
            writer.integer(70, hasAttributes ? flags | kHasAttributes : flags);
        } else {
            writer.raw(group.bytes());
        }
    }
    setBytes(begin, bytes);
}

void Core::describeBlock(Stub& record, const BlockHead& head, bool hasAttributes) {
    setBlockOrigin(record, head.origin, hasAttributes);
    std::string groups;
    GroupWriter writer(groups, format);
    if (format.version >= version::v2000) {
        if (!head.description.empty()) writer.wide(4, head.description);
        Stub& begin = *blockBegin(record);
        setBytes(begin, withFields(bytesOf(begin), {4}, groups, format));
    }
    if (record.type != rtBlockRecord || format.version < version::v2007) return;
    groups.clear();
    writer.integer(70, head.units);
    writer.integer(280, head.explodable);
    writer.integer(281, head.scalability);
    setBytes(record, withFields(bytesOf(record), {70, 280, 281}, groups, format));
}

void Core::addEntry(std::string_view tableName, std::string_view entry) {
    Stub* const table = tableNamed(tableName);
    if (!table || !table->has(Stub::ownCloser) || findRecord(tableName, decodeText(entry, format))) return;
    Stub& record = addStub(types.find(std::string(tableName)), *table);
    std::string bytes;
    RecordWriter(bytes, format).plainEntry(tableName, record.handle, table->handle, entry);
    record.content = Arena::contentOf(arena_.add(bytes, record.type));
    forgetNames();
}

Stub* Core::fieldList(bool make) {
    const OdDbObjectId named = database.namedObjectsDictionaryId();
    if (named.isNull()) return nullptr;
    const OdDbDictionaryPtr dictionary = named.openIf<OdDbDictionary>();
    if (!dictionary) return nullptr;
    if (const OdDbObjectId found = dictionary->getAt(L"ACAD_FIELDLIST"); found.isValid()) return found.stub();
    if (!make || !section(Section::objects)) return nullptr;
    Stub& list = addStub(rtFieldList, *section(Section::objects));
    std::string bytes;
    GroupWriter writer(bytes, format);
    writer.text(0, "FIELDLIST");
    writer.handle(5, list.handle);
    writer.text(102, "{ACAD_REACTORS");
    writer.handle(330, named.stub()->handle);
    writer.text(102, "}");
    writer.handle(330, named.stub()->handle);
    writer.text(100, "AcDbIdSet");
    writer.integer(90, 0);
    writer.text(100, "AcDbFieldList");
    list.content = Arena::contentOf(arena_.add(bytes, rtFieldList));
    dictionary->upgradeOpen();
    dictionary->setAt(L"ACAD_FIELDLIST", open(list, OdDb::forRead, false));
    return &list;
}

}  // namespace drawingdb
