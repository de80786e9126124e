#include "drawingdb/dictionary.h"

#include <algorithm>

#include "base/text.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/core/object_access.h"

using namespace drawingdb;

OD_DEFINE_CLASS(OdDbDictionary, OdDbObject)

void OdDbDictionary::describe(Describer& d) {
    auto& self = d.self<OdDbDictionary>();
    describeHead(d);
    d.zone("AcDbDictionary");
    d.since(version::v2000).int16(280, self.hardOwner_);
    d.since(version::v2000).required().int16(281, self.cloning_);
    d.run({3, 350, 360, 340});
}
const ClassDescription* OdDbDictionary::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbDictionary>("DICTIONARY", &OdDbDictionary::describe);
    return &d;
}

void OdDbDictionary::clearRuns() { entries_.clear(); }
void OdDbDictionary::readRunGroup(const Group& group, int) {
    if (group.code == 3) {
        entries_.emplace_back().name.raw = group.value;
    } else if (!entries_.empty() && entries_.back().object.handle == 0) {
        entries_.back().object.handle = parseHandle(group.value);
        entries_.back().code = static_cast<std::int16_t>(group.code);
    }
}
void OdDbDictionary::writeRun(GroupWriter& writer, int) const {
    for (const Stored& entry : entries_) {
        if (entry.name.text)
            writer.wide(3, *entry.name.text);
        else
            writer.text(3, entry.name.raw);
        writer.handle(entry.code, entry.object.handle);
    }
}

std::vector<OdDbDictionary::Entry> OdDbDictionary::entries() const {
    std::vector<Entry> all;
    all.reserve(entries_.size());
    for (const Stored& entry : entries_)
        if (const OdDbObjectId id = resolve(entry.object); id.isValid()) all.push_back({decoded(entry.name), id});
    return all;
}
OdDbObjectId OdDbDictionary::getAt(const OdString& name) const {
    for (const Stored& entry : entries_) {
        if (!base::equalsNoCase(decoded(entry.name), name)) continue;
        const OdDbObjectId id = resolve(entry.object);
        return id.isValid() ? id : OdDbObjectId();
    }
    return {};
}

OdDbObjectId OdDbDictionary::setAt(const OdString& name, const OdDbObjectPtr& object) {
    if (!object) throw OdError(OdResult::invalidInput, "nothing was given to be stored in the dictionary");
    if (!stub_) throw OdError(OdResult::notInDatabase, "the dictionary is in no database");
    assertWriteEnabled();
    if (const OdDbObjectId old = getAt(name); old.isValid() && old != object->objectId()) {
        const OdDbObjectPtr replaced = old.open(OdDb::forWrite);
        if (replaced->ownerId() == objectId())
            replaced->erase();  // takes its entry out
        else
            remove(name);
    }
    const bool fresh = !object->isDatabaseResident();
    const OdDbObjectId id = fresh ? database_->addObject(object, objectId()) : object->objectId();
    if (fresh) object->addPersistentReactor(objectId());
    assertWriteEnabled();
    std::erase_if(entries_, [&](const Stored& entry) { return base::equalsNoCase(decoded(entry.name), name); });
    Stored& entry = entries_.emplace_back();
    assign(entry.name, name);
    entry.object.handle = id.handle().value();
    entry.code = hardOwner_ ? 360 : 350;
    runsChanged();
    return id;
}

OdDbObjectId OdDbDictionary::remove(const OdString& name) {
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (!base::equalsNoCase(decoded(entries_[i].name), name)) continue;
        assertWriteEnabled();
        const OdDbObjectId id = resolve(entries_[i].object);
        entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(i));
        runsChanged();
        return id;
    }
    return {};
}
void OdDbDictionary::removeId(OdDbObjectId id) {
    const std::uint64_t handle = id.handle().value();
    if (std::none_of(entries_.begin(), entries_.end(), [&](const Stored& e) { return e.object.handle == handle; }))
        return;
    assertWriteEnabled();
    std::erase_if(entries_, [&](const Stored& e) { return e.object.handle == handle; });
    runsChanged();
}
void OdDbDictionary::setTreatElementsAsHard(bool on) {
    assertWriteEnabled();
    hardOwner_ = on ? 1 : 0;
    for (Stored& entry : entries_)
        if (entry.code == 350 || entry.code == 360) entry.code = on ? 360 : 350;
    if (!entries_.empty()) runsChanged();
}
