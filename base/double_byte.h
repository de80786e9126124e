// The double-byte code pages, by the system's own tables.
#pragma once

#include <vector>

namespace base {

/// What each pair of bytes means: the character at [lead * 256 + trail], or 0 where the pair means nothing. Single
/// bytes that are characters by themselves stand at [byte]. Empty when the system does not have the page (932, 936,
/// ...).
std::vector<char32_t> doubleByteTable(unsigned codePage);

}  // namespace base
