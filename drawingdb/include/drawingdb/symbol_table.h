// Symbol tables and what all their records have.
#pragma once

#include "drawingdb/object.h"

class OdDbSymbolTableRecord;

class DRAWINGDB_API OdDbSymbolTable : public OdDbObject {
    OD_DECLARE_CONCRETE_CLASS(OdDbSymbolTable)
  public:
    /// In file order, without erased ones unless asked for.
    OdDbObjectIdRange records(bool skipErased = true) const;
    /// Without case; null when there is none.
    OdDbObjectId getAt(const OdString& name) const;
    bool has(const OdString& name) const { return !getAt(name).isNull(); }
    /// Adds a new record (no block record, which needs a block too). The table must be open for write; throws
    /// OdError(duplicateName) when it has a record of that name.
    OdDbObjectId add(const OdSmartPtr<OdDbSymbolTableRecord>& record);

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
};

class DRAWINGDB_API OdDbSymbolTableRecord : public OdDbObject {
    OD_DECLARE_CONCRETE_CLASS(OdDbSymbolTableRecord)
  public:
    OdString name() const;
    void setName(const OdString& name);
    int flags() const { return flags_; }

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    static void describeRecord(drawingdb::Describer& d);
    friend class OdDbSymbolTable;
    friend struct drawingdb::ObjectAccess;
    drawingdb::FileText name_;
    std::int16_t flags_ = 0;
};
