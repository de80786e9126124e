#include <cstdlib>
#include <new>

#include "base/memory.h"

namespace base {

void FreeLargeMemory::operator()(char* memory) const { std::free(memory); }

// Large pages need a right that users do not have.
LargeMemory allocateLarge(std::size_t size) {
    LargeMemory memory(static_cast<char*>(std::malloc(size)));
    if (!memory) throw std::bad_alloc();
    return memory;
}

}  // namespace base
