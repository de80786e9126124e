#include "drawingdb/database.h"

#include <algorithm>
#include <chrono>

#include "base/files.h"
#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/layer.h"
#include "drawingdb/layout.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/object_access.h"
#include "drawingdb/src/core/recovery.h"
#include "drawingdb/src/file/new_drawing.h"
#include "drawingdb/viewport.h"

using namespace drawingdb;

OD_DEFINE_ABSTRACT_CLASS(OdDbDatabase, OdRxObject)

void OdDbIdMapping::add(OdDbObjectId source, OdDbObjectId copy, bool primary) {
    index_.emplace(source, pairs_.size());
    pairs_.push_back({source, copy, primary});
}

OdDbDatabase::OdDbDatabase() : core_(std::make_unique<Core>(*this)) {}
OdDbDatabase::~OdDbDatabase() = default;

// ---- files

OdDbDatabasePtr OdDbDatabase::createNew() { return readBytes(newDrawing(), L""); }

OdDbDatabasePtr OdDbDatabase::readFile(const std::wstring& path) {
    OdDbDatabasePtr database(new OdDbDatabase);
    database->core_->name = path;
    try {
        base::FileReading reading(path);
        database->core_->readIndex(reading);
    } catch (const base::FileError& error) {
        throw OdError(OdResult::fileError, error.what());
    }
    return database;
}

OdDbDatabasePtr OdDbDatabase::readBytes(const std::string& bytes, const std::wstring& name) {
    OdDbDatabasePtr database(new OdDbDatabase);
    database->core_->name = name;
    base::FileReading reading{base::FileBuffer(bytes)};
    database->core_->readIndex(reading);
    return database;
}

OdDbDatabasePtr OdDbDatabase::recoverFile(const std::wstring& path) {
    try {
        return recoverBytes(std::string(base::readFile(path).view()), path);
    } catch (const base::FileError& error) {
        throw OdError(OdResult::fileError, error.what());
    }
}

OdDbDatabasePtr OdDbDatabase::recoverBytes(const std::string& bytes, const std::wstring& name) {
    Recovered recovered = recover(bytes, name);
    OdDbDatabasePtr database(new OdDbDatabase);
    database->core_->name = name;
    database->core_->recovered = !recovered.damages.empty();
    database->core_->warnings = std::move(recovered.damages);
    base::FileReading reading{base::FileBuffer(recovered.bytes)};
    database->core_->readIndex(reading);
    // Where the recovery finds no record, the bytes come as they were; the reader may still see the head of a drawing.
    if (database->isReadOnly())
        throw OdError(OdResult::badFile, database->core_->where(nullptr) +
                                             "this is no drawing: not a single section of it can be recovered");
    return database;
}

bool OdDbDatabase::isRecovered() const { return core_->recovered; }

void OdDbDatabase::writeFile(const std::wstring& path) {
    if (isReadOnly() && isModified()) core_->requireWritable();
    try {
        base::AtomicFile file(path);
        core_->write([&file](std::string_view piece) { file.write(piece); });
        file.commit();
    } catch (const base::FileError& error) {
        throw OdError(OdResult::fileError, error.what());
    }
}

std::string OdDbDatabase::writeBytes() {
    std::string bytes;
    core_->write([&bytes](std::string_view piece) { bytes.append(piece); });
    return bytes;
}

const std::vector<OdDbWarning>& OdDbDatabase::warnings() const { return core_->warnings; }
void OdDbDatabase::addWarning(std::uint64_t line, const std::string& text) { core_->addWarning(line, text); }
const std::wstring& OdDbDatabase::fileName() const { return core_->name; }
bool OdDbDatabase::isReadOnly() const { return core_->readOnly; }
bool OdDbDatabase::isModified() const {
    core_->flushAll();
    return core_->modified();
}
OdDbObjectId OdDbDatabase::anyOpenForWrite() { return OdDbObjectId(core_->openForWrite()); }
OdDbTouched OdDbDatabase::takeTouched(OdDbTouchMark& mark) { return core_->takeTouched(mark); }
std::string OdDbDatabase::version() const { return core_->version(); }
bool OdDbDatabase::isBinary() const { return core_->format.binary; }

std::size_t OdDbDatabase::touchEverything() {
    std::size_t touched = 0;
    const std::uint32_t count = core_->stubs.size();
    for (std::uint32_t i = 1; i < count; ++i) {
        Stub& stub = core_->at(i);
        // Tables and vertices belong to other things, but are typed too.
        if (!core_->isObject(stub) && stub.type != rtTable && stub.type != rtVertex) continue;
        if (const OdDbObjectPtr object = core_->open(stub, OdDb::forWrite, false)) {
            object->assertWriteEnabled();
            ObjectAccess::runsChanged(*object) = false;
            ++touched;
        }
    }
    return touched;
}

// ---- where things are

OdDbObjectId OdDbDatabase::tableId(std::string_view dxfName) const { return OdDbObjectId(core_->tableNamed(dxfName)); }
OdDbObjectId OdDbDatabase::blockTableId() const {
    const OdDbObjectId table = tableId("BLOCK_RECORD");
    return table.isNull() ? OdDbObjectId(core_->section(drawingdb::Section::blocks)) : table;
}
OdDbObjectId OdDbDatabase::layerTableId() const { return tableId("LAYER"); }
OdDbObjectId OdDbDatabase::textStyleTableId() const { return tableId("STYLE"); }
OdDbObjectId OdDbDatabase::linetypeTableId() const { return tableId("LTYPE"); }

OdDbObjectId OdDbDatabase::namedObjectsDictionaryId() const {
    // The first object of the section.
    Stub* section = core_->section(drawingdb::Section::objects);
    Stub* first = section ? core_->nextChild(*section, nullptr) : nullptr;
    return first && first->type == rtDictionary ? OdDbObjectId(first) : OdDbObjectId();
}
OdDbObjectId OdDbDatabase::layoutDictionaryId() const {
    const auto named = namedObjectsDictionaryId().openIf<OdDbDictionary>();
    return named ? named->getAt(L"ACAD_LAYOUT") : OdDbObjectId();
}
OdDbObjectId OdDbDatabase::modelSpaceId() const { return OdDbObjectId(core_->modelSpace()); }
OdDbObjectId OdDbDatabase::paperSpaceId() const { return OdDbObjectId(core_->paperSpace()); }
OdDbObjectId OdDbDatabase::getObjectId(OdDbHandle handle) const {
    Stub* stub = core_->byHandle(handle.value());
    return stub && !stub->has(Stub::unborn) ? OdDbObjectId(stub) : OdDbObjectId();
}
namespace {
// A record in a damaged table may be of another kind.
template <class Record>
OdDbObjectId recordOf(Stub* found) {
    const OdDbObjectId id(found);
    return found && id.isKindOf(Record::desc()) ? id : OdDbObjectId();
}
}  // namespace

OdDbObjectId OdDbDatabase::findBlock(const OdString& name) const {
    return recordOf<OdDbBlockTableRecord>(core_->findRecord("BLOCK_RECORD", name));
}
OdDbObjectId OdDbDatabase::findLayer(const OdString& name) const {
    return recordOf<OdDbLayerTableRecord>(core_->findRecord("LAYER", name));
}
OdDbObjectId OdDbDatabase::findTextStyle(const OdString& name) const {
    return OdDbObjectId(core_->findRecord("STYLE", name));
}
OdDbObjectId OdDbDatabase::findLinetype(const OdString& name) const {
    return OdDbObjectId(core_->findRecord("LTYPE", name));
}
std::size_t OdDbDatabase::objectCount() const { return core_->stubs.size(); }

// ---- the current space

namespace {
OdSmartPtr<OdDbLayout> findLayout(const OdDbDatabase& database, const OdString& name) {
    const auto layouts = database.layoutDictionaryId().openIf<OdDbDictionary>();
    return layouts ? layouts->getAt(name).openIf<OdDbLayout>() : OdSmartPtr<OdDbLayout>();
}
constexpr const wchar_t* kModel = L"Model";
constexpr const wchar_t* kFirstLayout = L"Layout1";
}  // namespace

std::vector<OdString> OdDbDatabase::layoutNames() const {
    std::vector<std::pair<int, OdString>> rows;
    if (const auto layouts = layoutDictionaryId().openIf<OdDbDictionary>()) {
        for (const auto& entry : layouts->entries())
            if (const auto layout = entry.id.openIf<OdDbLayout>())
                rows.emplace_back(base::equalsNoCase(entry.name, kModel) ? -1 : layout->tabOrder(), entry.name);
    }
    if (rows.empty()) {
        rows.emplace_back(-1, kModel);
        if (!paperSpaceId().isNull()) rows.emplace_back(1, kFirstLayout);
    }
    std::stable_sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<OdString> names;
    names.reserve(rows.size());
    for (auto& row : rows) names.push_back(std::move(row.second));
    return names;
}

OdString OdDbDatabase::currentLayoutName() const {
    if (!core_->currentLayout.empty()) return base::fromUtf8(core_->currentLayout);
    if (headerInteger("$TILEMODE", 1) != 0 || paperSpaceId().isNull()) return kModel;
    if (const auto paper = paperSpaceId().openIf<OdDbBlockTableRecord>())
        if (const auto layout = paper->layoutId().openIf<OdDbLayout>()) return layout->layoutName();
    return kFirstLayout;
}

OdDbObjectId OdDbDatabase::currentSpaceId() const {
    const OdString name = currentLayoutName();
    if (base::equalsNoCase(name, kModel)) return modelSpaceId();
    if (const auto layout = findLayout(*this, name))
        if (const OdDbObjectId block = layout->blockTableRecordId(); block.isKindOf(OdDbBlockTableRecord::desc()))
            return block;
    // A damaged layout may have no block.
    return paperSpaceId().isNull() ? modelSpaceId() : paperSpaceId();
}

bool OdDbDatabase::setCurrentLayout(const OdString& name) {
    const std::vector<OdString> names = layoutNames();
    const auto found =
        std::find_if(names.begin(), names.end(), [&](const OdString& n) { return base::equalsNoCase(n, name); });
    if (found == names.end()) return false;
    const bool model = base::equalsNoCase(*found, kModel);
    if (hasHeaderVariable("$TILEMODE") && (headerInteger("$TILEMODE", 1) != 0) != model && !isReadOnly())
        setHeaderInteger("$TILEMODE", 70, model ? 1 : 0);
    core_->currentLayout = base::toUtf8(*found);
    core_->activeViewport = 0;
    return true;
}

OdDbObjectId OdDbDatabase::activeViewportId() const {
    const OdDbObjectId space = currentSpaceId();
    if (space.isNull() || space == modelSpaceId()) return {};
    if (core_->activeViewport) {
        Stub& stub = core_->at(core_->activeViewport);
        if (!stub.gone()) return OdDbObjectId(&stub);
    }
    const auto block = space.openIf<OdDbBlockTableRecord>();
    if (!block) return {};
    for (const OdDbObjectId id : block->entities())
        if (const auto viewport = id.openIf<OdDbViewport>(); viewport && viewport->number() == 1) return id;
    return {};
}

void OdDbDatabase::setActiveViewport(OdDbObjectId viewport) {
    core_->activeViewport = 0;
    if (viewport.isNull()) return;
    const auto opened = viewport.openAs<OdDbViewport>();
    if (opened->blockId() != currentSpaceId())
        throw OdError(OdResult::invalidInput, "the viewport is not on the current layout");
    if (opened->number() > 1) core_->activeViewport = core_->indexOf(viewport.stub());
}

// ---- header variables

bool OdDbDatabase::hasHeaderVariable(std::string_view name) const { return core_->headerVariable(name).has_value(); }
OdString OdDbDatabase::headerText(std::string_view name, const OdString& fallback) const {
    const auto found = core_->headerVariable(name);
    return found ? decodeText(found->first, core_->format) : fallback;
}
double OdDbDatabase::headerReal(std::string_view name, double fallback) const {
    const auto found = core_->headerVariable(name);
    if (!found) return fallback;
    Group group;
    group.code = found->code;
    group.value = found->first;
    return groupReal(group, core_->format.binary).value_or(fallback);
}
std::int64_t OdDbDatabase::headerInteger(std::string_view name, std::int64_t fallback) const {
    const auto found = core_->headerVariable(name);
    if (!found) return fallback;
    Group group;
    group.code = found->code;
    group.value = found->first;
    return groupInteger(group, core_->format.binary).value_or(fallback);
}
OdGePoint3d OdDbDatabase::headerPoint(std::string_view name, const OdGePoint3d& fallback) const {
    const auto found = core_->headerVariable(name);
    if (!found) return fallback;
    OdGePoint3d point;
    GroupCursor cursor(found->groups, core_->format);
    Group group;
    while (cursor.next(group)) {
        const double value = groupReal(group, core_->format.binary).value_or(0);
        if (group.code == 10) point.x = value;
        if (group.code == 20) point.y = value;
        if (group.code == 30) point.z = value;
    }
    return point;
}
void OdDbDatabase::setHeaderText(std::string_view name, int groupCode, const OdString& value) {
    core_->setHeaderVariable(
        name, [&](GroupWriter& writer) { writer.wide(groupCode, value); });
}
void OdDbDatabase::setHeaderReal(std::string_view name, int groupCode, double value) {
    core_->setHeaderVariable(
        name, [&](GroupWriter& writer) { writer.real(groupCode, value); });
}
void OdDbDatabase::setHeaderInteger(std::string_view name, int groupCode, std::int64_t value) {
    core_->setHeaderVariable(
        name, [&](GroupWriter& writer) { writer.integer(groupCode, value); });
}
void OdDbDatabase::setHeaderPoint(std::string_view name, const OdGePoint3d& value) {
    core_->setHeaderVariable(
        name, [&](GroupWriter& writer) { writer.point(10, value.x, value.y, value.z); });
}

// ---- objects

OdDbObjectId OdDbDatabase::addObject(const OdDbObjectPtr& object, OdDbObjectId owner) {
    Stub* section = core_->section(drawingdb::Section::objects);
    if (!section)
        throw OdError(OdResult::notHeldByVersion,
                      core_->where(nullptr) + "no " + object->dxfName() + " fits into a drawing of version " +
                          version() +
                          " without an OBJECTS section. Remedy: open it with a program that can save newer versions");
    core_->appendObject(*object, *section);
    ObjectAccess::owner(*object).handle = owner.handle().value();
    if (auto* const field = drawingdb::as<OdDbField>(*object)) ObjectAccess::fieldEntered(*field);
    return object->objectId();
}
void OdDbDatabase::deepCloneObjects(const OdDbObjectIdArray& objects, OdDbObjectId owner, OdDbIdMapping& mapping) {
    if (owner.isNull()) throw OdError(OdResult::nullObjectId, "no owner is named for the copies");
    core_->flushAll();
    core_->deepClone(objects, *owner.stub(), mapping);
}

void OdDbDatabase::appendNarrow(std::string& bytes, std::wstring_view text) const {
    const std::size_t start = bytes.size();
    for (const wchar_t c : text) {
        if (static_cast<char32_t>(c) >= 0x80) {
            bytes.resize(start);
            bytes += encodeNarrow(text, *core_->format.codePage);
            return;
        }
        bytes.push_back(static_cast<char>(c));
    }
}

// ---- undo

void OdDbDatabase::startUndoRecord() { core_->startRecord(); }
std::uint64_t OdDbDatabase::setUndoMark() { return core_->setMark(); }
void OdDbDatabase::dropUndoMark(std::uint64_t mark) { core_->dropMark(mark); }
void OdDbDatabase::undoBack() { core_->undoBack(); }
bool OdDbDatabase::hasUndoMark() const { return core_->hasMark(); }
bool OdDbDatabase::hasUndoMark(std::uint64_t mark) const { return core_->hasMark(mark); }
bool OdDbDatabase::undoLastRecord() { return core_->undoLastRecord(); }
void OdDbDatabase::blockUndoRecording(bool begin) { begin ? core_->groupBegin() : core_->groupEnd(); }
bool OdDbDatabase::isUndoBlockStarted() const { return core_->groupDepth() > 0; }
int OdDbDatabase::undoGroupDepth() const { return core_->groupDepth(); }
void OdDbDatabase::rollBackUndoGroup() { core_->groupRollBack(); }
std::uint64_t OdDbDatabase::revision() { return core_->revision(); }
std::size_t OdDbDatabase::undoPosition() { return core_->undoPosition(); }
bool OdDbDatabase::isChangedSince(std::size_t undoPosition) { return core_->isChangedSince(undoPosition); }
std::size_t OdDbDatabase::objectsChangedSince(std::size_t undoPosition) {
    return core_->objectsChangedSince(undoPosition);
}
void OdDbDatabase::undoTo(std::size_t position) { core_->undoTo(position); }
void OdDbDatabase::undoForRedo(std::size_t position) { core_->undoForRedo(position); }
bool OdDbDatabase::redo() { return core_->redo(); }

// ---- fields

void OdDbDatabase::setSystemVariables(SystemVariables callback) { core_->systemVariables = std::move(callback); }
bool OdDbDatabase::systemVariable(const OdString& name, OdString& value) const {
    return core_->systemVariables && core_->systemVariables(name, value);
}
void OdDbDatabase::setClock(Clock clock) { core_->clock = std::move(clock); }
std::int64_t OdDbDatabase::now() const {
    if (core_->clock) return core_->clock();
    return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}
void OdDbDatabase::setUtcOffset(int seconds) { core_->utcOffset = seconds; }
int OdDbDatabase::utcOffset() const { return core_->utcOffset; }
