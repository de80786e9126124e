#include "drawingdb/symbol_table.h"

#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"

using namespace drawingdb;

OD_DEFINE_CLASS(OdDbSymbolTable, OdDbObject)
OD_DEFINE_CLASS(OdDbSymbolTableRecord, OdDbObject)

void OdDbSymbolTable::describe(Describer& d) { describeHead(d); }
const ClassDescription* OdDbSymbolTable::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbSymbolTable>("TABLE", &OdDbSymbolTable::describe);
    return &d;
}
OdDbObjectIdRange OdDbSymbolTable::records(bool skipErased) const {
    return stub_ ? OdDbObjectIdRange(stub_, nullptr, nullptr, skipErased) : OdDbObjectIdRange();
}
OdDbObjectId OdDbSymbolTable::getAt(const OdString& name) const {
    if (!stub_) return {};
    Core& core = coreOf(stub_);
    const std::string_view table =
        stub_->type == rtSection ? std::string_view("BLOCK_RECORD") : core.groupText(*stub_, 2);
    return OdDbObjectId(core.findRecord(table, name));
}

OdDbObjectId OdDbSymbolTable::add(const OdSmartPtr<OdDbSymbolTableRecord>& record) {
    if (!stub_) throw OdError(OdResult::notInDatabase, "the table is in no database");
    if (!record || record->isKindOf(OdDbBlockTableRecord::desc()))
        throw OdError(OdResult::invalidInput, "such a record cannot be added to a table");
    if (const OdString kind = coreOf(stub_).groupWide(*stub_, 2);
        !base::equalsNoCase(kind, base::widen(record->dxfName())))
        throw OdError(OdResult::invalidInput,
                      "only a record of its own kind can be added to the table " + base::toUtf8(kind));
    assertWriteEnabled();
    if (has(record->name()))
        throw OdError(OdResult::duplicateName, "there is a " + record->dxfName() + " of that name already");
    coreOf(stub_).appendObject(*record, *stub_);
    record->owner_.handle = stub_->handle;
    return record->objectId();
}

void OdDbSymbolTableRecord::describeRecord(Describer& d) {
    auto& self = d.self<OdDbSymbolTableRecord>();
    describeHead(d);
    d.zone("AcDbSymbolTableRecord");
    // Every kind of record goes on in a zone of its own, whose name this class need not know.
    d.required().text(2, self.name_);
    d.required().int16(70, self.flags_);
}
void OdDbSymbolTableRecord::describe(Describer& d) { describeRecord(d); }
const ClassDescription* OdDbSymbolTableRecord::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbSymbolTableRecord>("", &OdDbSymbolTableRecord::describe);
    return &d;
}
OdString OdDbSymbolTableRecord::name() const {
    if (!name_.raw.empty() || name_.text || !stub_) return decoded(name_);
    return coreOf(stub_).groupWide(*stub_, 2);
}
void OdDbSymbolTableRecord::setName(const OdString& name) {
    assertWriteEnabled();
    assign(name_, name);
}
