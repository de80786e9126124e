#include <windows.h>

#include "base/modules.h"
#include "base/system_error_windows.h"

namespace base {

ModuleHandle findLoadedModule(std::wstring_view fileName) {
    // An empty name would find the program.
    return fileName.empty() ? nullptr : GetModuleHandleW(std::wstring(fileName).c_str());
}

ModuleHandle processImage() { return GetModuleHandleW(nullptr); }

ModuleHandle moduleOf(const void* address) {
    MEMORY_BASIC_INFORMATION region;
    if (VirtualQuery(address, &region, sizeof region) == 0 || region.Type != MEM_IMAGE) return nullptr;
    return region.AllocationBase;
}

std::wstring moduleFileName(ModuleHandle module) {
    if (!module) return {};
    std::wstring name(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            GetModuleFileNameW(static_cast<HMODULE>(module), name.data(), static_cast<DWORD>(name.size()));
        if (length < name.size()) {
            name.resize(length);
            return name;
        }
        name.resize(name.size() * 2);
    }
}

void* findSymbol(ModuleHandle module, const char* name) {
    if (!module) return nullptr;
    // Only the module's own exports are searched; what it forwards to another one counts as its own.
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(module), name));
}

void ModuleUnloader::operator()(ModuleHandle module) const { FreeLibrary(static_cast<HMODULE>(module)); }

ModuleReference loadModule(std::wstring_view fileName, std::wstring* reason) {
    ModuleReference module(LoadLibraryW(std::wstring(fileName).c_str()));
    if (!module && reason) *reason = systemErrorText(GetLastError());
    return module;
}

std::wstring libraryFileName(std::wstring_view name) { return std::wstring(name) + L".dll"; }

void disableThreadNotifications(ModuleHandle module) { DisableThreadLibraryCalls(static_cast<HMODULE>(module)); }

}  // namespace base
