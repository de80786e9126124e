// What the Tab key makes of a line: how it may go on.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The lines that a prompt knows, asked for when a person wants one completed.
using Choices = std::function<std::vector<std::wstring>()>;

struct Completion {
    std::wstring text;                ///< the typed text as far as it can only go on in one way
    std::vector<std::wstring> among;  ///< the ways on, when there are several
};

/// Of the lines that begin with `typed` in any case; where there are none, of the files whose names begin with what
/// stands behind the last "=", or else with all of it.
Completion complete(std::wstring_view typed, const std::vector<std::wstring>& lines);

}  // namespace host
