#include "drawingdb/object.h"

#include <algorithm>

#include "drawingdb/dictionary.h"
#include "drawingdb/field.h"
#include "drawingdb/filer.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/core/object_access.h"
#include "drawingdb/src/core/unknown.h"

using namespace drawingdb;

OD_DEFINE_ABSTRACT_CLASS(OdDbObject, OdRxObject)
OD_DEFINE_CLASS(OdDbUnknownObject, OdDbObject)

OdDbObject::OdDbObject() = default;
OdDbObject::~OdDbObject() = default;

const ClassDescription* OdDbObject::description() const {
    static const ClassDescription none = [] {
        ClassDescription d;
        d.zones.emplace_back();
        d.finish();
        return d;
    }();
    return &none;
}
void OdDbObject::describeHead(Describer& d) {
    auto& self = d.self<OdDbObject>();
    d.required().since(version::v2000).handle(330, self.owner_);
}
void OdDbObject::beforeEncode() {}
void OdDbObject::afterDecode() {}
void OdDbObject::readRunGroup(const Group&, int) {}
void OdDbObject::writeRun(GroupWriter&, int) const {}
void OdDbObject::clearRuns() {}

void OdDbUnknownObject::describe(Describer& d) { describeHead(d); }
const ClassDescription* OdDbUnknownObject::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbUnknownObject>("", &OdDbUnknownObject::describe);
    return &d;
}

OdDbHandle OdDbObject::handle() const { return stub_ ? stub_->handle : 0; }
std::string OdDbObject::dxfName() const {
    if (stub_) return coreOf(stub_).typeName(*stub_);
    return description()->dxfName;
}
OdDbObjectId OdDbObject::ownerId() const {
    const OdDbObjectId container = objectId().containerId();
    return container.isNull() ? resolve(owner_) : container;
}
OdDbObjectId OdDbObject::resolve(const HandleRef& reference) const {
    return database_ ? OdDbObjectId(database_->core().byHandle(reference.handle)) : OdDbObjectId();
}

void OdDbObject::lastReferenceGone() {
    if (stub_)
        coreOf(stub_).closed(*this);
    else
        delete this;
}

void OdDbObject::upgradeOpen() {
    if (stub_) coreOf(stub_).requireWritable();
    writable_ = true;
}
void OdDbObject::downgradeOpen() {
    if (!stub_) return;
    coreOf(stub_).flush(*this);
    writable_ = false;
}
void OdDbObject::assertWriteEnabled() {
    if (!writable_)
        throw OdError(OdResult::notOpenForWrite,
                      dxfName() + " #" + handle().ascii() + " is open for read; it cannot be changed");
    if (stub_ && !dirty_) {
        dirty_ = true;
        coreOf(stub_).becomeDirty(*this);
    }
}

void OdDbObject::erase(bool erasing) {
    if (!stub_) throw OdError(OdResult::notInDatabase, "the object is in no database; it cannot be erased");
    if (!writable_)
        throw OdError(OdResult::notOpenForWrite,
                      dxfName() + " #" + handle().ascii() + " is open for read; it cannot be erased");
    coreOf(stub_).erase(*stub_, erasing);
}

void OdDbObject::swapIdWith(OdDbObjectId other, bool swapExtendedData, bool swapExtensionDictionaries) {
    if (!stub_) throw OdError(OdResult::notInDatabase, "the object is in no database; it has no identity to exchange");
    if (other.isNull() || other.database() != database_)
        throw OdError(OdResult::invalidInput, "identities are exchanged within one drawing only");
    if (!writable_)
        throw OdError(OdResult::notOpenForWrite,
                      dxfName() + " #" + handle().ascii() + " is open for read; it cannot be changed");
    coreOf(stub_).swapIdentity(*stub_, *other.stub(), swapExtendedData, swapExtensionDictionaries);
}

OdString OdDbObject::decoded(const FileText& text) const {
    if (text.text) return *text.text;
    if (text.raw.empty()) return {};
    static const FileFormat standard;
    return decodeText(text.raw, database_ ? database_->core().format : standard);
}
void OdDbObject::assign(FileText& field, const OdString& value) {
    field.raw = {};
    field.text = std::make_unique<std::wstring>(value);
}

// ---------------------------------------------------------------------------------------------------------------------

OdDbObjectId OdDbObject::extensionDictionary() const {
    if (!extensionDictionary_.handle) return {};
    const OdDbObjectId id = resolve(extensionDictionary_);
    return id.isValid() ? id : OdDbObjectId();
}

OdDbObjectId OdDbObject::createExtensionDictionary() {
    if (const OdDbObjectId id = extensionDictionary(); !id.isNull()) return id;
    if (!stub_)
        throw OdError(OdResult::notInDatabase,
                      "the object is in no database; it cannot have an extension dictionary yet");
    assertWriteEnabled();
    OdDbDictionaryPtr dictionary = OdDbDictionary::createObject();
    dictionary->setTreatElementsAsHard(true);
    const OdDbObjectId id = database_->addObject(dictionary, objectId());
    extensionDictionary_.handle = id.handle().value();
    return id;
}

std::vector<OdDbObjectId> OdDbObject::persistentReactors() const {
    std::vector<OdDbObjectId> ids;
    for (const HandleRef& reactor : reactors_)
        if (const OdDbObjectId id = resolve(reactor); !id.isNull()) ids.push_back(id);
    return ids;
}
void OdDbObject::addPersistentReactor(OdDbObjectId reactor) {
    assertWriteEnabled();
    for (const HandleRef& known : reactors_)
        if (known.handle == reactor.handle().value()) return;
    reactors_.push_back({reactor.handle().value()});
    reactorsChanged_ = true;
}
void OdDbObject::removePersistentReactor(OdDbObjectId reactor) {
    assertWriteEnabled();
    if (std::erase_if(reactors_, [&](const HandleRef& known) { return known.handle == reactor.handle().value(); }))
        reactorsChanged_ = true;
}

namespace {
OdDbGroup readGroup(const Group& group, GroupCursor& cursor, const FileFormat& format) {
    OdDbGroup result;
    result.code = group.code;
    switch (valueKind(group.code)) {
        case ValueKind::real:
            if (group.code >= 1010 && group.code <= 1013) {
                result.point[0] = groupReal(group, format.binary).value_or(0);
                for (int i = 1; i < 3; ++i) {
                    GroupCursor ahead = cursor;
                    Group next;
                    if (!ahead.next(next) || next.code != group.code + 10 * i) break;
                    result.point[i] = groupReal(next, format.binary).value_or(0);
                    cursor = ahead;
                }
            } else {
                result.real = groupReal(group, format.binary).value_or(0);
            }
            break;
        case ValueKind::int8:
        case ValueKind::int16:
        case ValueKind::int32:
        case ValueKind::int64:
            result.integer = groupInteger(group, format.binary).value_or(0);
            break;
        case ValueKind::text:
        case ValueKind::chunk:
        case ValueKind::handle:
            result.text = decodeText(group.value, format);
            break;
    }
    return result;
}
}  // namespace

std::vector<OdDbGroup> OdDbObject::xData(const OdString& application) const {
    std::vector<OdDbGroup> all;
    OdString current;
    const auto changed = [&](const OdString& name) {
        return newXData_ && std::any_of(
                                newXData_->begin(), newXData_->end(),
                                [&](const OdDbGroup& g) { return g.code == 1001 && g.text == name; });
    };
    const auto wanted = [&] { return application.empty() || current == application; };
    if (hasFileXData_) {
        const FileFormat& format = database_->core().format;
        GroupCursor cursor(source_, format);
        Group group;
        bool skip = false;
        while (cursor.next(group)) {
            if (group.code < 1000) continue;
            const OdDbGroup read = readGroup(group, cursor, format);
            if (read.code == 1001) {
                current = read.text;
                skip = changed(current);
            }
            if (!skip && wanted()) all.push_back(read);
        }
    }
    if (newXData_) {
        current.clear();
        for (std::size_t i = 0; i < newXData_->size(); ++i) {
            const OdDbGroup& group = (*newXData_)[i];
            if (group.code == 1001) {
                current = group.text;
                if (i + 1 == newXData_->size() || (*newXData_)[i + 1].code == 1001) continue;  // removed
            }
            if (wanted()) all.push_back(group);
        }
    }
    return all;
}

void OdDbObject::setXData(const std::vector<OdDbGroup>& groups) {
    if (groups.empty() || groups.front().code != 1001)
        throw OdError(OdResult::invalidInput, "extended data begins with the name of its application (group 1001)");
    assertWriteEnabled();
    if (!newXData_) newXData_ = std::make_unique<std::vector<OdDbGroup>>();
    auto& data = *newXData_;
    for (auto it = data.begin(); it != data.end();) {
        if (it->code != 1001 || it->text != groups.front().text) {
            ++it;
            continue;
        }
        auto end = it + 1;
        while (end != data.end() && end->code != 1001) ++end;
        it = data.erase(it, end);
    }
    data.insert(data.end(), groups.begin(), groups.end());
}

// ---------------------------------------------------------------------------------------------------------------------
// Fields: extension dictionary -> "ACAD_FIELD" -> key -> field

namespace {
OdDbDictionaryPtr fieldDictionary(const OdDbObject& object) {
    const OdDbDictionaryPtr dictionary = object.extensionDictionary().openIf<OdDbDictionary>();
    if (!dictionary) return {};
    const OdDbObjectId fields = dictionary->getAt(L"ACAD_FIELD");
    return fields.isValid() ? fields.openIf<OdDbDictionary>() : OdDbDictionaryPtr();
}
}  // namespace

OdSmartPtr<OdDbField> OdDbObject::getField(const OdString& key, OdDb::OpenMode mode) const {
    if (!extensionDictionary_.handle) return {};
    const OdDbDictionaryPtr fields = fieldDictionary(*this);
    return fields ? fields->getAt(key).openIf<OdDbField>(mode) : OdSmartPtr<OdDbField>();
}

OdDbObjectId OdDbObject::setField(const OdString& key, const OdSmartPtr<OdDbField>& field) {
    if (!stub_) throw OdError(OdResult::notInDatabase, "the object is in no database; it cannot have a field yet");
    assertWriteEnabled();
    const OdDbDictionaryPtr extension = createExtensionDictionary().openAs<OdDbDictionary>(OdDb::forWrite);
    OdDbObjectId fieldsId = extension->getAt(L"ACAD_FIELD");
    if (!fieldsId.isValid()) {
        const OdDbDictionaryPtr fresh = OdDbDictionary::createObject();
        fresh->setTreatElementsAsHard(true);
        fieldsId = extension->setAt(L"ACAD_FIELD", fresh);
    }
    database_->core().fieldList(true);
    return fieldsId.openAs<OdDbDictionary>(OdDb::forWrite)->setAt(key, field);
}

OdDbObjectId OdDbObject::removeField(const OdString& key) {
    const OdDbDictionaryPtr fields = fieldDictionary(*this);
    if (!fields) return {};
    const OdDbObjectId id = fields->getAt(key);
    if (id.isNull()) return {};
    assertWriteEnabled();
    id.openAs<OdDbObject>(OdDb::forWrite)->erase();
    if (fields->entries().empty()) {
        const OdDbDictionaryPtr extension = extensionDictionary().openAs<OdDbDictionary>(OdDb::forWrite);
        fields->upgradeOpen();
        fields->erase();
        if (extension->entries().empty()) {
            extension->erase();
            assertWriteEnabled();
            extensionDictionary_ = {};
        }
    }
    return id;
}

// ---------------------------------------------------------------------------------------------------------------------

namespace {

bool isPointCode(int code) {
    return (code >= 10 && code <= 18) || (code >= 110 && code <= 112) || (code >= 1010 && code <= 1013);
}
bool isAngleCode(int code) { return code >= 50 && code <= 58; }

std::vector<std::uint8_t> chunkBytes(std::string_view value, bool binary) {
    std::vector<std::uint8_t> bytes;
    if (binary) {
        bytes.assign(value.begin(), value.end());
        return bytes;
    }
    for (std::size_t i = 0; i + 1 < value.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(parseHandle(value.substr(i, 2))));
    return bytes;
}

bool isScaleCode(int code) { return code >= 41 && code <= 43; }

// The scale whose first group was just read; factors that do not stand there are 1.
OdGeScale3d takeScale(Group group, GroupCursor& cursor, const FileFormat& format) {
    OdGeScale3d scale;
    double* const factors[] = {&scale.sx, &scale.sy, &scale.sz};
    for (;;) {
        *factors[group.code - 41] = groupReal(group, format.binary).value_or(1);
        GroupCursor ahead = cursor;
        if (!ahead.next(group) || !isScaleCode(group.code)) return scale;
        cursor = ahead;
    }
}

void replay(std::string_view bytes, const FileFormat& format, OdDbDatabase& database, OdDbDxfFiler& filer) {
    GroupCursor cursor(bytes, format);
    Group group;
    if (!cursor.next(group)) return;
    const bool isReference = group.value == "INSERT";
    while (cursor.next(group)) {
        const int code = group.code;
        if (isReference && isScaleCode(code)) {
            filer.wrScale3d(41, takeScale(group, cursor, format));
            continue;
        }
        switch (valueKind(code)) {
            case ValueKind::text:
                if (code == 100)
                    filer.wrSubclassMarker(decodeText(group.value, format));
                else if (code == 2 || (code >= 6 && code <= 8))
                    filer.wrName(code, decodeText(group.value, format));
                else
                    filer.wrString(code, decodeText(group.value, format));
                break;
            case ValueKind::handle:
                if (code == 5 || code == 105 || code == 1005)
                    filer.wrHandle(code, parseHandle(group.value));
                else
                    filer.wrObjectId(code, OdDbObjectId(database.core().byHandle(parseHandle(group.value))));
                break;
            case ValueKind::real: {
                const double x = groupReal(group, format.binary).value_or(0);
                double rest[2] = {};
                int parts = 1;
                for (; parts < 3 && (isPointCode(code) || code == 210); ++parts) {
                    GroupCursor ahead = cursor;
                    Group next;
                    if (!ahead.next(next) || next.code != code + 10 * parts) break;
                    rest[parts - 1] = groupReal(next, format.binary).value_or(0);
                    cursor = ahead;
                }
                if (parts == 3 && code == 210)
                    filer.wrVector3d(code, OdGeVector3d(x, rest[0], rest[1]));
                else if (parts == 3)
                    filer.wrPoint3d(code, OdGePoint3d(x, rest[0], rest[1]));
                else if (parts == 2)
                    filer.wrPoint2d(code, OdGePoint2d(x, rest[0]));
                else if (isAngleCode(code))
                    filer.wrAngle(code, x * drawingdb::kPi / 180.0);
                else
                    filer.wrDouble(code, x);
                break;
            }
            case ValueKind::int8:
                filer.wrBool(code, groupInteger(group, format.binary).value_or(0) != 0);
                break;
            case ValueKind::int16:
                filer.wrInt16(code, static_cast<std::int16_t>(groupInteger(group, format.binary).value_or(0)));
                break;
            case ValueKind::int32:
                filer.wrInt32(code, static_cast<std::int32_t>(groupInteger(group, format.binary).value_or(0)));
                break;
            case ValueKind::int64:
                filer.wrInt64(code, groupInteger(group, format.binary).value_or(0));
                break;
            case ValueKind::chunk:
                filer.wrBinaryChunk(code, chunkBytes(group.value, format.binary));
                break;
        }
    }
}

}  // namespace

void OdDbObject::dxfOutFields(OdDbDxfFiler& filer) const {
    if (stub_) {
        coreOf(stub_).flush(*self());
        replay(source_, database_->core().format, *database_, filer);
        return;
    }
    OdDbDatabase* database = filer.database();
    if (!database)
        throw OdError(OdResult::notInDatabase, "the object is in no database, and the filer has none either");
    std::string bytes;
    self()->beforeEncode();
    encodeObject(*this, *description(), {}, database->core().format, bytes);
    replay(bytes, database->core().format, *database, filer);
}

OD_DEFINE_ABSTRACT_CLASS(OdDbFiler, OdRxObject)
OD_DEFINE_ABSTRACT_CLASS(OdDbDxfFiler, OdDbFiler)
// Objects are replayed from their own bytes here, so nothing is marked while they are written.
void OdDbFilerController::clearOwnershipCheckFlags(OdDbDatabase&) {}
