// Loaded modules (programs and shared libraries) and their functions.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace base {

/// An HMODULE on Windows; elsewhere what dlopen returns. One module has one handle, however it was found.
using ModuleHandle = void*;

/// The module of that file name, with or without folder, if it is loaded; else null. Takes no reference. The program's
/// own file name finds the program.
ModuleHandle findLoadedModule(std::wstring_view fileName);
/// The program itself.
ModuleHandle processImage();
/// The module whose image holds the address; null when none does.
ModuleHandle moduleOf(const void* address);
/// The full file name; empty when the handle is no module.
std::wstring moduleFileName(ModuleHandle module);

/// The address of an exported name, if that very module holds it: modules it depends on do not count.
void* findSymbol(ModuleHandle module, const char* name);
template <typename Function>
Function* findFunction(ModuleHandle module, const char* name) {
    return reinterpret_cast<Function*>(findSymbol(module, name));
}

/// A reference to a loaded module, given back when it goes.
struct ModuleUnloader {
    void operator()(ModuleHandle module) const;
};
using ModuleReference = std::unique_ptr<void, ModuleUnloader>;

/// A bare file name is looked up beside the program first. Null when the module cannot be loaded; `reason` is then
/// what the system said.
ModuleReference loadModule(std::wstring_view fileName, std::wstring* reason = nullptr);
/// The platform's file name of a library: "libNAME.so", "NAME.dll".
std::wstring libraryFileName(std::wstring_view name);

/// The module need not hear of threads that begin and end.
void disableThreadNotifications(ModuleHandle module);

/// The function that a row of a table of functions names, with the row's signature: of a library that is loaded. Null
/// when it is not, or lacks the function.
template <template <class> class Row, class Signature>
Signature* findFunction(const Row<Signature>& row) {
    return findFunction<Signature>(findLoadedModule(libraryFileName(row.library)), row.name);
}

/// A function of a module that is loaded by its file name for one use and unloaded together with this object. False
/// when the module is not there or lacks the function.
template <class Signature>
class ModuleFunction {
  public:
    template <template <class> class Row>
    explicit ModuleFunction(const Row<Signature>& row)
        : module_(loadModule(libraryFileName(row.library))),
          function_(findFunction<Signature>(module_.get(), row.name)) {}
    explicit operator bool() const { return function_ != nullptr; }
    template <class... Arguments>
    auto operator()(Arguments&&... arguments) const {
        return function_(std::forward<Arguments>(arguments)...);
    }

  private:
    ModuleReference module_;
    Signature* function_;
};
template <template <class> class Row, class Signature>
ModuleFunction(const Row<Signature>&) -> ModuleFunction<Signature>;

}  // namespace base
