// ICSUnknown: the root of every counted object that passes between a host and its modules.
//
// All interfaces of this folder are plain tables of virtual functions: the slot of a function is its place in its
// class, so the order of declarations is binding, and nothing may be put between. There is no C++ destructor in a table
// (one compiler gives it two slots), no overload (compilers order them differently) and no class returned by value.
// A slot whose meaning is not known here is called reservedN and does nothing.
#pragma once

#include <cstdint>
#include <typeinfo>

/// The name of an interface: the address of its run-time type record, `&typeid(ICmdProcess)`. Records are compared with
/// their own operator, since each module may have one of its own.
using InterfaceId = const std::type_info*;

class ICSUnknown {
  public:
    virtual std::uint32_t addRef() = 0;   // slot 0; the new count
    virtual std::uint32_t release() = 0;  // slot 1; the new count, 0 when the object is gone
    /// Slot 2. On success stores the object with a reference added and returns 1; else stores null and returns 0. A
    /// null `result` only asks.
    virtual int queryInterface(InterfaceId id, void** result) = 0;

  protected:
    ~ICSUnknown() = default;
};
