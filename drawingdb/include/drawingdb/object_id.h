// The identity of an object in a database, and ranges of identities.
#pragma once

#include <compare>
#include <cstdint>
#include <iterator>
#include <string>

#include "drawingdb/api.h"
#include "drawingdb/rx_object.h"

class OdDbDatabase;
class OdDbObject;
namespace drawingdb {
struct Stub;
}

using OdString = std::wstring;

/// The number that a file gives to an object. 0 is none.
class OdDbHandle {
  public:
    constexpr OdDbHandle(std::uint64_t value = 0) : value_(value) {}
    constexpr std::uint64_t value() const { return value_; }
    constexpr bool isNull() const { return value_ == 0; }
    /// Upper-case hexadecimal without leading zeros.
    DRAWINGDB_API std::string ascii() const;
    DRAWINGDB_API OdString text() const;
    friend constexpr auto operator<=>(OdDbHandle, OdDbHandle) = default;

  private:
    std::uint64_t value_;
};

namespace OdDb {
enum OpenMode { forRead, forWrite, forNotify };
}

/// Names one record of one database, for as long as the database lives; it stays valid when the object is erased or its
/// erasure is undone. The record, not the handle, is the identity: files have duplicate handles and objects without
/// any. Ids sort as their handles do (records with equal handles, by their place in the file).
class DRAWINGDB_API OdDbObjectId {
  public:
    constexpr OdDbObjectId() = default;
    explicit constexpr OdDbObjectId(drawingdb::Stub* stub) : stub_(stub) {}

    bool isNull() const { return stub_ == nullptr; }
    explicit operator bool() const { return stub_ != nullptr; }
    /// True for an object that was erased, or whose creation was undone.
    bool isErased() const;
    /// Not null and not erased.
    bool isValid() const { return stub_ && !isErased(); }
    OdDbHandle handle() const;
    OdDbDatabase* database() const;
    /// The class that the object has, without opening it.
    const OdRxClass* objectClass() const;
    bool isKindOf(const OdRxClass* other) const { return stub_ && objectClass()->isDerivedFrom(other); }
    /// The block that an entity lies in, the table of a table record, the reference of an attribute, without opening
    /// it; null for objects of the OBJECTS section.
    OdDbObjectId containerId() const;

    /// Opens the object; see OdDbObject for what the modes mean. Null when the id is null or the object is erased
    /// (unless `erasedToo`). forWrite throws OdError(readOnly) for a drawing that was opened read-only.
    OdSmartPtr<OdDbObject> open(OdDb::OpenMode mode = OdDb::forRead, bool erasedToo = false) const;
    /// Opens the object as a T; throws OdError_NotThatKindOfClass for another class and OdError(nullObjectId,
    /// wasErased) when there is nothing to open.
    template <class T>
    OdSmartPtr<T> openAs(OdDb::OpenMode mode = OdDb::forRead, bool erasedToo = false) const {
        return OdSmartPtr<T>::castOrThrow(openOrThrow(mode, erasedToo));
    }
    /// Opens the object when it is a T; null otherwise.
    template <class T>
    OdSmartPtr<T> openIf(OdDb::OpenMode mode = OdDb::forRead) const {
        return isKindOf(T::desc()) ? OdSmartPtr<T>::cast(open(mode)) : OdSmartPtr<T>();
    }

    drawingdb::Stub* stub() const { return stub_; }
    friend bool operator==(OdDbObjectId, OdDbObjectId) = default;
    friend DRAWINGDB_API std::strong_ordering operator<=>(OdDbObjectId a, OdDbObjectId b);

  private:
    OdSmartPtr<OdDbObject> openOrThrow(OdDb::OpenMode mode, bool erasedToo) const;

    drawingdb::Stub* stub_ = nullptr;
};

template <>
struct std::hash<OdDbObjectId> {
    std::size_t operator()(OdDbObjectId id) const noexcept { return std::hash<void*>()(id.stub()); }
};

/// The children of a container (entities of a block, attributes of a reference, records of a table), in file order,
/// then those appended. Nothing is copied: objects may be erased or appended while a walk is under way; appended ones
/// are met.
class DRAWINGDB_API OdDbObjectIdRange {
  public:
    class DRAWINGDB_API Iterator {
      public:
        using value_type = OdDbObjectId;
        using difference_type = std::ptrdiff_t;
        using iterator_category = std::input_iterator_tag;
        using pointer = const OdDbObjectId*;
        using reference = OdDbObjectId;

        Iterator() = default;
        OdDbObjectId operator*() const { return OdDbObjectId(current_); }
        Iterator& operator++();
        friend bool operator==(const Iterator& a, const Iterator& b) { return a.current_ == b.current_; }

      private:
        friend class OdDbObjectIdRange;
        void settle();
        drawingdb::Stub* step() const;

        drawingdb::Stub* current_ = nullptr;
        drawingdb::Stub* container_ = nullptr;  // the one being walked
        drawingdb::Stub* following_ = nullptr;  // a second container: model and paper space continue in ENTITIES
        drawingdb::Stub* block_ = nullptr;      // when set, only children whose block is this one
        bool skipErased_ = true;
    };

    OdDbObjectIdRange() = default;
    OdDbObjectIdRange(drawingdb::Stub* container, drawingdb::Stub* following, drawingdb::Stub* block, bool skipErased)
        : container_(container), following_(following), block_(block), skipErased_(skipErased) {}
    Iterator begin() const;
    Iterator end() const { return Iterator(); }
    bool empty() const { return begin() == end(); }

  private:
    drawingdb::Stub* container_ = nullptr;
    drawingdb::Stub* following_ = nullptr;
    drawingdb::Stub* block_ = nullptr;
    bool skipErased_ = true;
};
