// Names by a pattern.
#pragma once

#include <string_view>

namespace base {

/// Whether the pattern fits the whole text: `*` stands for any characters, also none, `?` for one. Case does not
/// matter.
bool fitsPattern(std::wstring_view text, std::wstring_view pattern);

}  // namespace base
