// Memory in large pieces.
#pragma once

#include <cstddef>
#include <memory>

namespace base {

struct FreeLargeMemory {
    void operator()(char* memory) const;
};
using LargeMemory = std::unique_ptr<char[], FreeLargeMemory>;

/// `size` bytes, not set to anything. What is big is held in large pages where the system has them: filling small ones
/// takes a quarter of the time in which a drawing is read.
LargeMemory allocateLarge(std::size_t size);

}  // namespace base
