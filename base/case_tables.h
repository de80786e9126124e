// Unicode's simple case mappings as runs of characters.
#pragma once

#include <cstdint>
#include <span>

namespace base {

/// The characters first, first + step, ... last are mapped by adding delta.
struct CaseRange {
    char32_t first;
    char32_t last;
    std::uint32_t step;
    std::int32_t delta;
};

/// In ascending order, not overlapping.
using CaseTable = std::span<const CaseRange>;

extern const CaseTable kUpperCase;
extern const CaseTable kLowerCase;
extern const CaseTable kCaseFolding;

}  // namespace base
