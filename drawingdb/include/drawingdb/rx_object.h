// Reference-counted root class, run-time class system and smart pointer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "drawingdb/api.h"
#include "drawingdb/error.h"

class OdRxObject;
template <class T>
class OdSmartPtr;

/// The run-time record of a class. One static instance a class, reachable by name.
class DRAWINGDB_API OdRxClass {
  public:
    using Factory = OdRxObject* (*)();
    /// Registers itself under `name`; a factory of null means the class is abstract. Names are literals and outlive it.
    OdRxClass(const char* name, const OdRxClass* parent, Factory factory);
    ~OdRxClass();
    OdRxClass(const OdRxClass&) = delete;
    OdRxClass& operator=(const OdRxClass&) = delete;

    const char* name() const { return name_; }
    const OdRxClass* parent() const { return parent_; }
    bool isDerivedFrom(const OdRxClass* other) const {
        for (const OdRxClass* c = this; c; c = c->parent_)
            if (c == other) return true;
        return false;
    }
    /// A new object of this class, or null when the class is abstract.
    OdSmartPtr<OdRxObject> create() const;
    static const OdRxClass* find(std::string_view name);

  private:
    const char* name_;
    const OdRxClass* parent_;
    Factory factory_;
};

/// Root of everything that is counted. A new object has count 0; the first OdSmartPtr makes it 1. Counting is not
/// atomic: a database and its objects belong to one thread.
class DRAWINGDB_API OdRxObject {
  public:
    OdRxObject() = default;
    OdRxObject(const OdRxObject&) = delete;
    OdRxObject& operator=(const OdRxObject&) = delete;
    virtual ~OdRxObject();

    static const OdRxClass* desc();
    virtual const OdRxClass* isA() const;
    bool isKindOf(const OdRxClass* other) const { return isA()->isDerivedFrom(other); }

    void addRef() const { ++references_; }
    void release() const {
        if (--references_ == 0) const_cast<OdRxObject*>(this)->lastReferenceGone();
    }
    std::int32_t references() const { return references_; }

  protected:
    /// Called when the last reference goes. The default deletes the object.
    virtual void lastReferenceGone();

  private:
    mutable std::int32_t references_ = 0;
};

/// Owning pointer to a counted object.
template <class T>
class OdSmartPtr {
  public:
    OdSmartPtr() = default;
    OdSmartPtr(std::nullptr_t) {}
    OdSmartPtr(T* object) : object_(object) {
        if (object_) object_->addRef();
    }
    OdSmartPtr(const OdSmartPtr& other) : OdSmartPtr(other.object_) {}
    OdSmartPtr(OdSmartPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    OdSmartPtr(const OdSmartPtr<U>& other) : OdSmartPtr(other.get()) {}
    ~OdSmartPtr() { reset(); }
    OdSmartPtr& operator=(OdSmartPtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    T* get() const { return object_; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    explicit operator bool() const { return object_ != nullptr; }
    /// Drops the reference. For an object of a database this closes it when it was the last one.
    void reset() {
        if (T* object = std::exchange(object_, nullptr)) object->release();
    }
    friend bool operator==(const OdSmartPtr& a, const OdSmartPtr& b) { return a.object_ == b.object_; }

    /// The object as a T, or null when it is of another class.
    template <class U>
    static OdSmartPtr cast(const OdSmartPtr<U>& other) {
        return other && other->isKindOf(T::desc()) ? OdSmartPtr(static_cast<T*>(other.get())) : OdSmartPtr();
    }
    /// The object as a T; throws OdError_NotThatKindOfClass when it is of another class. Null stays null.
    template <class U>
    static OdSmartPtr castOrThrow(const OdSmartPtr<U>& other) {
        if (other && !other->isKindOf(T::desc()))
            throw OdError_NotThatKindOfClass(other->isA()->name(), T::desc()->name());
        return other ? OdSmartPtr(static_cast<T*>(other.get())) : OdSmartPtr();
    }

  private:
    T* object_ = nullptr;
};

using OdRxObjectPtr = OdSmartPtr<OdRxObject>;

namespace drawingdb {
/// The object as a T, or null when it is of another class; nothing is owned.
template <class T, class Object>
std::conditional_t<std::is_const_v<Object>, const T, T>* as(Object& object) {
    using Result = std::conditional_t<std::is_const_v<Object>, const T, T>;
    return object.isKindOf(T::desc()) ? static_cast<Result*>(&object) : nullptr;
}
}  // namespace drawingdb

/// Declares what every class of the run-time class system has: desc(), isA() and, for concrete classes, createObject().
#define OD_DECLARE_CLASS(Class)            \
  public:                                  \
    static const OdRxClass* desc();        \
    const OdRxClass* isA() const override; \
                                           \
  private:

#define OD_DECLARE_CONCRETE_CLASS(Class)     \
    OD_DECLARE_CLASS(Class)                  \
  public:                                    \
    static OdSmartPtr<Class> createObject(); \
                                             \
  private:

#define OD_DEFINE_ABSTRACT_CLASS(Class, Parent)                         \
    const OdRxClass* Class::desc() {                                    \
        static const OdRxClass record(#Class, Parent::desc(), nullptr); \
        return &record;                                                 \
    }                                                                   \
    const OdRxClass* Class::isA() const { return desc(); }

#define OD_DEFINE_CLASS(Class, Parent)                                                                    \
    const OdRxClass* Class::desc() {                                                                      \
        static const OdRxClass record(#Class, Parent::desc(), []() -> OdRxObject* { return new Class; }); \
        return &record;                                                                                   \
    }                                                                                                     \
    const OdRxClass* Class::isA() const { return desc(); }                                                \
    OdSmartPtr<Class> Class::createObject() { return OdSmartPtr<Class>(new Class); }
