// What a form looks like in text: every control with its value, its state and the focus.
#pragma once

#include <string>

#include "dialogs/run.h"

namespace dialogs {

/// Line by line.
std::wstring formText(Run& run);
/// All choices of a list or drop-down, or the text of a field.
std::wstring choicesText(const Control& control);

}  // namespace dialogs
