// One line typed by a person.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// Shows the prompt on standard error and reads a line of standard input; on a terminal with editing and `history`,
/// where Ctrl-C gives "^C". Nothing at the end of input.
std::optional<std::wstring> readPromptLine(std::wstring_view prompt, const std::vector<std::wstring>& history);

}  // namespace host
