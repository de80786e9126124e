// A module's handle is the address of its entry in the loader's list, which is what dlopen returns too.
#include <dlfcn.h>
#include <link.h>

#include "base/exact_utf8.h"
#include "base/modules.h"
#include "base/paths.h"
#include "base/text.h"

namespace base {
namespace {

struct Search {
    std::string fileName;
    bool wholePath;
    const void* address = nullptr;
};

int visitModule(dl_phdr_info* info, std::size_t, void* data) {
    Search& search = *static_cast<Search*>(data);
    std::string_view name = info->dlpi_name;
    if (!search.wholePath) name = name.substr(name.rfind('/') + 1);
    if (name != search.fileName) return 0;
    for (unsigned i = 0; i < info->dlpi_phnum; ++i) {
        if (info->dlpi_phdr[i].p_type == PT_LOAD) {
            search.address = reinterpret_cast<const void*>(info->dlpi_addr + info->dlpi_phdr[i].p_vaddr);
            return 1;
        }
    }
    return 0;
}

}  // namespace

ModuleHandle findLoadedModule(std::wstring_view fileName) {
    const bool wholePath = fileName.find(L'/') != std::wstring_view::npos;
    // The loader's list holds the program without its name.
    static const std::wstring program = moduleFileName(processImage());
    if (fileName == (wholePath ? program : fileNameOf(program))) return processImage();
    Search search{toUtf8Exact(fileName), wholePath};
    if (!search.fileName.empty()) dl_iterate_phdr(visitModule, &search);
    return moduleOf(search.address);
}

ModuleHandle processImage() {
    static const ModuleHandle program = [] {
        void* handle = dlopen(nullptr, RTLD_LAZY);
        dlclose(handle);
        return handle;
    }();
    return program;
}

ModuleHandle moduleOf(const void* address) {
    Dl_info info;
    void* entry = nullptr;
    if (!address || dladdr1(address, &info, &entry, RTLD_DL_LINKMAP) == 0) return nullptr;
    return entry;
}

std::wstring moduleFileName(ModuleHandle module) {
    if (!module) return {};
    const std::string_view name = static_cast<const link_map*>(module)->l_name;
    if (name.empty()) {
        std::error_code error;
        return fromPath(std::filesystem::read_symlink("/proc/self/exe", error));
    }
    return fromUtf8Exact(name);
}

void* findSymbol(ModuleHandle module, const char* name) {
    if (!module) return nullptr;
    // A module that was only loaded because another needs it cannot be asked before it was opened once by itself.
    const char* fileName = static_cast<const link_map*>(module)->l_name;
    const ModuleReference opened(dlopen(*fileName == '\0' ? nullptr : fileName, RTLD_LAZY | RTLD_NOLOAD));
    if (opened.get() != module) return nullptr;
    // The search goes on in the module's dependencies.
    void* symbol = dlsym(module, name);
    return moduleOf(symbol) == module ? symbol : nullptr;
}

void ModuleUnloader::operator()(ModuleHandle module) const { dlclose(module); }

ModuleReference loadModule(std::wstring_view fileName, std::wstring* reason) {
    std::wstring path(fileName);
    if (fileName.find(L'/') == std::wstring_view::npos) {
        const std::wstring besideProgram = joinPath(folderOf(moduleFileName(processImage())), fileName);
        if (isFile(besideProgram)) path = besideProgram;
    }
    ModuleReference module(dlopen(toUtf8Exact(path).c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!module && reason) *reason = fromUtf8(dlerror());
    return module;
}

std::wstring libraryFileName(std::wstring_view name) { return L"lib" + std::wstring(name) + L".so"; }

void disableThreadNotifications(ModuleHandle) {
    // Modules hear of no threads here.
}

}  // namespace base
