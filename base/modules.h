// Loaded modules (programs and shared libraries) and their functions.
#pragma once

#include <memory>
#include <string>
#include <string_view>

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

}  // namespace base
