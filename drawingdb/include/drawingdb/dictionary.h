// Dictionaries.
#pragma once

#include "drawingdb/object.h"

class DRAWINGDB_API OdDbDictionary : public OdDbObject {
    OD_DECLARE_CONCRETE_CLASS(OdDbDictionary)
  public:
    struct Entry {
        OdString name;
        OdDbObjectId id;
    };
    std::size_t numEntries() const { return entries_.size(); }
    /// Entries in file order; those whose object is missing or erased are left out.
    std::vector<Entry> entries() const;
    /// Without case; null when there is none or its object is gone.
    OdDbObjectId getAt(const OdString& name) const;
    /// Stores an object under a name, replacing the entry (the object replaced is erased when the dictionary owns it).
    /// A new object comes into the database with this dictionary as its owner.
    OdDbObjectId setAt(const OdString& name, const OdDbObjectPtr& object);
    /// Takes an entry out; the object is left as it is. Returns its id.
    OdDbObjectId remove(const OdString& name);
    void removeId(OdDbObjectId id);
    bool isTreatElementsAsHard() const { return hardOwner_ != 0; }
    void setTreatElementsAsHard(bool on);

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    void readRunGroup(const drawingdb::Group& group, int zone) override;
    void writeRun(drawingdb::GroupWriter& writer, int zone) const override;
    void clearRuns() override;
    friend struct drawingdb::ObjectAccess;

    struct Stored {
        drawingdb::FileText name;
        drawingdb::HandleRef object;
        std::int16_t code = 350;
    };
    std::vector<Stored> entries_;
    std::int16_t hardOwner_ = 0;
    std::int16_t cloning_ = 1;
};
using OdDbDictionaryPtr = OdSmartPtr<OdDbDictionary>;
