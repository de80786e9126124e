#include <cstdlib>
#include <new>
#include <sys/mman.h>

#include "base/memory.h"

namespace base {

// NOLINTNEXTLINE(cppcoreguidelines-owning-memory): this is the deleter of the owner.
void FreeLargeMemory::operator()(char* memory) const { std::free(memory); }

LargeMemory allocateLarge(std::size_t size) {
    constexpr std::size_t kLargePage = std::size_t{2} << 20;
    if (size < 2 * kLargePage) {
        LargeMemory memory(static_cast<char*>(std::malloc(size)));
        if (!memory) throw std::bad_alloc();
        return memory;
    }
    const std::size_t whole = (size + kLargePage - 1) / kLargePage * kLargePage;
    LargeMemory memory(static_cast<char*>(std::aligned_alloc(kLargePage, whole)));
    if (!memory) throw std::bad_alloc();
#ifdef MADV_HUGEPAGE
    // The last page is mostly used in part, so it stays made of small ones. A refusal does no harm.
    ::madvise(memory.get(), whole - kLargePage, MADV_HUGEPAGE);
#endif
    return memory;
}

}  // namespace base
