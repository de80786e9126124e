// The upper halves of the single-byte code pages.
#pragma once

#include <cstddef>

namespace base {

struct SingleBytePage {
    const char* name;
    char16_t upperHalf[128];  // of the bytes 0x80 to 0xFF
};

extern const SingleBytePage kSingleBytePages[];
extern const std::size_t kSingleBytePageCount;

}  // namespace base
