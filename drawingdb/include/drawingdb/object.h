// OdDbObject: what every object of a drawing database has.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "drawingdb/object_id.h"

class OdDbDictionary;
class OdDbDxfFiler;
class OdDbField;
namespace drawingdb {
class ClassDescription;
class Core;
class Describer;
class GroupWriter;
struct Group;
struct ObjectAccess;
/// A text as the file spells it until it is changed: unchanged text keeps its bytes.
struct FileText {
    std::string_view raw;                // bytes of the file, not yet decoded; empty when `text` is set
    std::unique_ptr<std::wstring> text;  // the new value, once set
};
/// A reference to another object by handle.
struct HandleRef {
    std::uint64_t handle = 0;
};
}  // namespace drawingdb

/// One group of extended data or of an Xrecord.
struct OdDbGroup {
    int code = 0;
    OdString text;    ///< text groups, also handles (hexadecimal)
    double real = 0;  ///< real groups
    std::int64_t integer = 0;
    double point[3] = {};  ///< point groups
};

/// An object, in a database or not yet in one.
///
/// Open modes. An object of a database is reached through its id; while anybody holds it, everybody gets the same
/// object.
///  - Opening for read and for write may be mixed: when one holder opens for write (or upgrades), the object takes
///  changes
///    through every pointer to it until it is downgraded or the last pointer is gone.
///  - A change to an object that is open for read only throws OdError(notOpenForWrite) and changes nothing.
///  - Opening for read an object that is open for write gives the object as it stands, with its changes.
///  - The object closes when the last pointer to it goes; its changes become part of the drawing then, or earlier, at
///  the next
///    undo mark, save, or downgrade.
///  - erase() works on an open object; it stays readable through the pointers held. An erased object can be opened only
///  with
///    `erasedToo`.
///  - undo reaches open objects too: they show the restored state.
class DRAWINGDB_API OdDbObject : public OdRxObject {
    OD_DECLARE_CLASS(OdDbObject)
  public:
    OdDbObject();
    ~OdDbObject() override;

    /// Null before the object is in a database.
    OdDbObjectId objectId() const { return OdDbObjectId(stub_); }
    OdDbDatabase* database() const { return database_; }
    OdDbHandle handle() const;
    /// Block record of an entity, owner reference of an attribute, dictionary of an entry.
    OdDbObjectId ownerId() const;
    bool isErased() const { return objectId().isErased(); }
    bool isDatabaseResident() const { return stub_ != nullptr; }

    bool isWriteEnabled() const { return writable_; }
    /// From read to write. Throws OdError(readOnly) for a drawing opened read-only.
    void upgradeOpen();
    /// From write to read; the changes become part of the drawing at once.
    void downgradeOpen();
    /// Throws unless the object may be changed; every setter calls it.
    void assertWriteEnabled();

    /// Erases the object with what it owns (attributes, extension dictionary, fields, ...), or brings it back when
    /// `erasing` is false (only the object itself and its attributes).
    void erase(bool erasing = true);

    /// Exchanges the identities of two objects: afterwards this object's content is found under the other's id and
    /// handle, at the other's place in the block's order, and the reverse. With `swapExtendedData` and
    /// `swapExtensionDictionaries` those go with the content, otherwise they stay with the identity.
    void swapIdWith(OdDbObjectId other, bool swapExtendedData = true, bool swapExtensionDictionaries = true);

    /// Null when there is none.
    OdDbObjectId extensionDictionary() const;
    /// Makes the extension dictionary when there is none.
    OdDbObjectId createExtensionDictionary();

    /// Ids of the objects that want to hear of changes (group 330 in the reactor list).
    std::vector<OdDbObjectId> persistentReactors() const;
    void addPersistentReactor(OdDbObjectId reactor);
    void removePersistentReactor(OdDbObjectId reactor);

    /// Extended data of one application, or of all when the name is empty; the application name is the first group
    /// (1001).
    std::vector<OdDbGroup> xData(const OdString& application = OdString()) const;
    /// Replaces the extended data of the application named by the first group; only that group: removes it.
    void setXData(const std::vector<OdDbGroup>& groups);

    /// The field stored under `key` ("TEXT") for this object, open in `mode`; null when there is none.
    OdSmartPtr<OdDbField> getField(const OdString& key, OdDb::OpenMode mode = OdDb::forRead) const;
    /// Stores a new field under `key`, replacing (and erasing) the one that was there. Returns its id. The object must
    /// be in a database. What the field needs around it (extension dictionary, field list) is made.
    OdDbObjectId setField(const OdString& key, const OdSmartPtr<OdDbField>& field);
    /// Erases the field under `key` and the dictionaries that become empty by it; null when there was none.
    OdDbObjectId removeField(const OdString& key);

    /// Writes the object's groups to a filer: an unchanged object replays the groups of its file.
    void dxfOutFields(OdDbDxfFiler& filer) const;
    /// The name of the record in files ("INSERT").
    std::string dxfName() const;

  protected:
    /// The class's fields, built once; a class that adds fields overrides it.
    virtual const drawingdb::ClassDescription* description() const;
    /// Zone 0 of every object that is no entity: the owner.
    static void describeHead(drawingdb::Describer& d);
    /// Called before the object is written to bytes; derived values are brought up to date here.
    virtual void beforeEncode();
    /// Called after the fields were read; everything derived is made here.
    virtual void afterDecode();
    /// Groups that come in runs (vertices, dictionary entries): called for each while the object is read.
    virtual void readRunGroup(const drawingdb::Group& group, int zone);
    /// Writes the run anew; only asked for when `runsChanged_` is set or the object is new.
    virtual void writeRun(drawingdb::GroupWriter& writer, int zone) const;
    /// Forgets what readRunGroup has collected.
    virtual void clearRuns();
    /// To be called by a class that changes what its run holds.
    void runsChanged() { runsChanged_ = true; }
    void lastReferenceGone() override;
    OdDbObject* self() const { return const_cast<OdDbObject*>(this); }
    OdString decoded(const drawingdb::FileText& text) const;
    void assign(drawingdb::FileText& field, const OdString& value);
    /// Resolves a handle in this object's database.
    OdDbObjectId resolve(const drawingdb::HandleRef& reference) const;

    friend class drawingdb::Core;
    friend struct drawingdb::ObjectAccess;

    drawingdb::Stub* stub_ = nullptr;
    OdDbDatabase* database_ = nullptr;
    drawingdb::HandleRef owner_;
    drawingdb::HandleRef extensionDictionary_;
    std::vector<drawingdb::HandleRef> reactors_;
    std::unique_ptr<std::vector<OdDbGroup>> newXData_;  // set when the extended data was changed
    std::string_view source_;                           // the bytes that the object was read from; none when it is new
    std::uintptr_t closedContent_ = 0;                  // what the stub's content becomes when the object closes
    bool writable_ = true;
    bool dirty_ = false;
    bool runsChanged_ = false;
    bool hasFileXData_ = false;    // those bytes hold extended data
    bool withoutMarkers_ = false;  // the record was read as one of a file without subclass markers
    bool reactorsChanged_ = false;
};

using OdDbObjectPtr = OdSmartPtr<OdDbObject>;
using OdDbObjectIdArray = std::vector<OdDbObjectId>;
