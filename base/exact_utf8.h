// UTF-8 whose bytes must come back as they were, whatever they are: file names, values of drawings.
#pragma once

#include <string>
#include <string_view>

namespace base {

/// A byte that is no part of a character becomes a lone surrogate, U+DC80 to U+DCFF.
std::wstring fromUtf8Exact(std::string_view utf8);
/// Such a surrogate becomes its byte again.
std::string toUtf8Exact(std::wstring_view text);

}  // namespace base
