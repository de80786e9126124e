// Escaped texts as plain ones; docs/values.md has the table.
#pragma once

#include <string>
#include <string_view>

namespace torvel {

/// The text of a field or a multi-line text without its escapes: formatting goes, escapes that stand for characters
/// become them, paragraphs end in a line feed. What is no complete escape stays as it stands.
std::wstring withoutEscapes(std::wstring_view text);

}  // namespace torvel
