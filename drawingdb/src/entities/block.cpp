#include "drawingdb/block.h"

#include <algorithm>
#include <unordered_map>

#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"

using namespace drawingdb;

OD_DEFINE_CLASS(OdDbBlockTableRecord, OdDbSymbolTableRecord)

void OdDbBlockTableRecord::describe(Describer& d) {
    auto& self = d.self<OdDbBlockTableRecord>();
    describeHead(d);
    d.zone("AcDbSymbolTableRecord");
    d.zone("AcDbBlockTableRecord");
    d.required().text(2, self.name_);
    d.since(version::v2000).handle(340, self.layout_);
    d.since(version::v2007).int16(70, self.insertUnits_);
    d.since(version::v2007).int16(280, self.explodable_);
    d.since(version::v2007).int16(281, self.scalability_);
}
const ClassDescription* OdDbBlockTableRecord::description() const {
    static const ClassDescription d =
        drawingdb::describe<OdDbBlockTableRecord>("BLOCK_RECORD", &OdDbBlockTableRecord::describe);
    return &d;
}
OdDbObjectId OdDbBlockTableRecord::addNew(OdDbDatabase& database, const OdString& name) {
    if (database.core().findRecord("BLOCK_RECORD", name))
        throw OdError(OdResult::duplicateName, "there is a block of that name already");
    return OdDbObjectId(&database.core().addBlock(name));
}
void OdDbBlockTableRecord::redefine(const OdDbObjectIdArray& entities, OdDbIdMapping& copies) {
    assertWriteEnabled();
    if (!stub_) throw OdError(OdResult::notInDatabase, "the block is in no database");
    coreOf(stub_).flushAll();
    coreOf(stub_).redefineBlock(*stub_, entities, copies);
}
OdDbObjectIdRange OdDbBlockTableRecord::entities(bool skipErased) const {
    return stub_ ? coreOf(stub_).entitiesOf(*stub_, skipErased) : OdDbObjectIdRange();
}
static OdDbObjectPtr drawOrderTable(const OdDbBlockTableRecord& record) {
    const auto dictionary = record.extensionDictionary().openIf<OdDbDictionary>();
    return dictionary ? dictionary->getAt(L"ACAD_SORTENTS").open() : OdDbObjectPtr();
}
bool OdDbBlockTableRecord::hasDrawOrder() const { return bool(drawOrderTable(*this)); }
OdDbObjectIdArray OdDbBlockTableRecord::entitiesInDrawOrder() const {
    OdDbObjectIdArray ids;
    for (const OdDbObjectId id : entities()) ids.push_back(id);
    const OdDbObjectPtr table = drawOrderTable(*this);
    if (!table) return ids;

    // Pairs of an entity (331) and the handle that stands in for its own (5).
    std::unordered_map<std::uint64_t, std::uint64_t> places;
    Core& core = coreOf(stub_);
    core.flushAll();
    std::uint64_t entity = 0;
    GroupCursor cursor(core.bytesOf(*table->objectId().stub()), core.format);
    for (Group group; cursor.next(group);) {
        if (group.code == 331) entity = parseHandle(group.value);
        if (group.code == 5 && entity != 0) {
            places[entity] = parseHandle(group.value);
            entity = 0;
        }
    }
    std::ranges::stable_sort(ids, {}, [&](OdDbObjectId id) {
        const std::uint64_t own = id.handle().value();
        const auto found = places.find(own);
        return found != places.end() ? found->second : own;
    });
    return ids;
}
OdGePoint3d OdDbBlockTableRecord::origin() const { return stub_ ? coreOf(stub_).blockOrigin(*stub_) : OdGePoint3d(); }
bool OdDbBlockTableRecord::isLayout() const {
    if (!stub_) return false;
    Core& core = coreOf(stub_);
    return stub_ == core.modelSpace() || stub_ == core.paperSpace() || base::startsWithNoCase(name(), L"*Paper_Space");
}
bool OdDbBlockTableRecord::isAnonymous() const { return name().starts_with(L"*"); }
bool OdDbBlockTableRecord::isFromExternalReference() const {
    if (!stub_) return false;
    Core& core = coreOf(stub_);
    Stub* begin = core.blockBegin(*stub_);
    if (!begin) return false;
    GroupCursor cursor(core.bytesOf(*begin), core.format);
    Group group;
    while (cursor.next(group))
        if (group.code == 70) return (groupInteger(group, core.format.binary).value_or(0) & 12) != 0;
    return false;
}
OdDbObjectId OdDbBlockTableRecord::layoutId() const { return resolve(layout_); }
bool OdDbBlockTableRecord::hasAttributeDefinitions(bool editableOnly) const {
    for (const OdDbObjectId id : entities())
        if (id.isKindOf(OdDbAttributeDefinition::desc()) &&
            (!editableOnly || !id.openAs<OdDbAttributeDefinition>()->isConstant()))
            return true;
    return false;
}

OdDbObjectIdArray OdDbBlockTableRecord::blockReferenceIds(bool directOnly) const {
    OdDbObjectIdArray ids;
    if (!stub_) return ids;
    Core& core = coreOf(stub_);
    core.flushAll();  // the index follows what is part of the drawing
    for (const std::uint32_t index : core.referencesTo(*stub_)) {
        Stub& reference = core.at(index);
        if (reference.gone()) continue;
        if (core.blockByRawName(core.groupText(reference, 2)) != stub_) continue;  // it was given another block since
        if (directOnly) {
            const auto block = OdDbObjectId(core.blockOf(reference)).openIf<OdDbBlockTableRecord>();
            if (!block || !block->isLayout()) continue;
        }
        ids.push_back(OdDbObjectId(&reference));
    }
    return ids;
}

OdDbObjectId OdDbBlockTableRecord::appendOdDbEntity(OdDbEntity* entity) {
    if (!entity) return {};
    if (!stub_) throw OdError(OdResult::notInDatabase, "the block is in no database");
    if (!writable_)
        throw OdError(OdResult::notOpenForWrite,
                      dxfName() + " #" + handle().ascii() + " is open for read; nothing can be added to it");
    Core& core = coreOf(stub_);
    Stub* const model = core.modelSpace();
    Stub* const paper = core.paperSpace();
    const bool inEntities = stub_ == model || stub_ == paper;
    Stub* container = inEntities ? core.section(drawingdb::Section::entities) : core.blockBegin(*stub_);
    if (!container)
        throw OdError(OdResult::badFile, core.where(nullptr) + "the file has no place for the entities of this block");
    core.appendObject(*entity, *container);
    const bool inPaper = stub_ != model && isLayout();
    if (inPaper) entity->stub_->flags |= Stub::paperSpace;
    entity->paperSpace_ = inPaper ? 1 : 0;
    entity->owner_.handle = stub_->handle;
    if (auto* const reference = drawingdb::as<OdDbBlockReference>(*entity)) {
        core.referenceAdded(*entity->stub_, reference->blockTableRecord().stub());
        auto pending = std::move(reference->pendingAttributes_);
        reference->pendingAttributes_.clear();
        for (const auto& attribute : pending) reference->appendAttribute(attribute.get());
    }
    return entity->objectId();
}

const OdGeExtents3d& Core::extentsOf(Stub& record) {
    flushAll();
    if (extentsState_ != state_ && extentsDepth_ == 0) {
        extents_.clear();
        extentsState_ = state_;
    }
    const auto [place, isNew] = extents_.try_emplace(indexOf(&record));
    // Blocks that contain each other find the box still empty. So do blocks that are nested as no sane drawing has
    // them.
    constexpr int kDeepestNesting = 64;
    if (!isNew || extentsDepth_ >= kDeepestNesting) return place->second;
    ++extentsDepth_;
    OdGeExtents3d& extents = place->second;
    for (const OdDbObjectId id : entitiesOf(record, true)) {
        OdGeExtents3d one;
        if (const auto entity = id.openIf<OdDbEntity>();
            entity && !entity->isKindOf(OdDbAttributeDefinition::desc()) && entity->geomExtents(one))
            extents.addExtents(one);
    }
    --extentsDepth_;
    return extents;
}
