// Modules announce their embedded resources by an ELF note (cmake/embedded_resources.cpp.in writes it):
//   u32 size of the owner's name, u32 size of the contents, u32 type 1, "torvel\0" to a multiple of 4,
//   u64 distance from here to the first byte, u64 size
#include <algorithm>
#include <cstring>
#include <link.h>

#include "base/resources.h"
#include "base/text.h"

namespace base {
namespace {

constexpr char kOwner[] = "torvel";

ResourceBytes resourcesInNotes(const std::byte* notes, std::size_t size, std::size_t alignment) {
    auto aligned = [&](std::size_t n) { return (n + alignment - 1) / alignment * alignment; };
    std::size_t position = 0;
    while (size - position >= sizeof(ElfW(Nhdr))) {
        ElfW(Nhdr) header;
        std::memcpy(&header, notes + position, sizeof header);
        const std::size_t owner = position + sizeof header;
        const std::size_t contents = owner + aligned(header.n_namesz);
        if (header.n_type == 1 && header.n_namesz == sizeof kOwner && header.n_descsz == 16 &&
            std::memcmp(notes + owner, kOwner, sizeof kOwner) == 0) {
            std::int64_t distance;
            std::uint64_t length;
            std::memcpy(&distance, notes + contents, sizeof distance);
            std::memcpy(&length, notes + contents + sizeof distance, sizeof length);
            return {notes + contents + distance, length};
        }
        position = contents + aligned(header.n_descsz);
        if (position > size) break;
    }
    return {};
}

struct Search {
    ElfW(Addr) loadAddress;
    ResourceBytes found;
};

int visitModule(dl_phdr_info* info, std::size_t, void* data) {
    Search& search = *static_cast<Search*>(data);
    if (info->dlpi_addr != search.loadAddress) return 0;
    for (unsigned i = 0; i < info->dlpi_phnum && search.found.empty(); ++i) {
        const ElfW(Phdr)& segment = info->dlpi_phdr[i];
        if (segment.p_type == PT_NOTE) {
            search.found = resourcesInNotes(reinterpret_cast<const std::byte*>(info->dlpi_addr + segment.p_vaddr),
                                            segment.p_memsz, segment.p_align == 8 ? 8 : 4);
        }
    }
    return 1;
}

}  // namespace

ResourceBytes findResource(ModuleHandle module, const ResourceName& type, const ResourceName& name) {
    if (!module) return {};
    // A module's handle is its entry in the loader's list.
    Search search{static_cast<const link_map*>(module)->l_addr, {}};
    dl_iterate_phdr(visitModule, &search);
    return findCompiledResource(search.found, type, name);
}

std::wstring loadString(ModuleHandle module, unsigned id) {
    const std::uint16_t table = static_cast<std::uint16_t>(id / 16 + 1);
    return stringInTable(findResource(module, kStringTableResource, table), id % 16);
}

int loadNarrowString(ModuleHandle module, unsigned id, char* buffer, int size) {
    if (size <= 0) return 0;
    const std::string text = toUtf8(loadString(module, id));
    const std::size_t length = utf8Prefix(text, static_cast<std::size_t>(size) - 1);
    std::copy_n(text.begin(), length, buffer);
    buffer[length] = '\0';
    return static_cast<int>(length);
}

}  // namespace base
