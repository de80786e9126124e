#include <windows.h>

#include "base/resources.h"

namespace base {
namespace {

const wchar_t* systemName(const ResourceName& name) {
    return name.isNumber() ? MAKEINTRESOURCEW(name.number()) : name.text().c_str();
}

}  // namespace

ResourceBytes findResource(ModuleHandle module, const ResourceName& type, const ResourceName& name) {
    const HMODULE handle = static_cast<HMODULE>(module);
    const HRSRC found = handle == nullptr ? nullptr : FindResourceW(handle, systemName(name), systemName(type));
    if (!found) return {};
    const HGLOBAL loaded = LoadResource(handle, found);
    const void* bytes = loaded == nullptr ? nullptr : LockResource(loaded);
    if (!bytes) return {};
    return {static_cast<const std::byte*>(bytes), SizeofResource(handle, found)};
}

std::wstring loadString(ModuleHandle module, unsigned id) {
    // With no buffer the function hands out the string where it lies.
    const wchar_t* text = nullptr;
    const int length =
        module == nullptr ? 0 : LoadStringW(static_cast<HINSTANCE>(module), id, reinterpret_cast<wchar_t*>(&text), 0);
    return length > 0 ? std::wstring(text, static_cast<std::size_t>(length)) : std::wstring();
}

int loadNarrowString(ModuleHandle module, unsigned id, char* buffer, int size) {
    return LoadStringA(static_cast<HINSTANCE>(module), id, buffer, size);
}

}  // namespace base
