// One line typed by a person.
#pragma once

#include <string>
#include <string_view>

#include "torvelhost/lines/completion.h"

namespace host {

struct TypedLine {
    enum End { kEntered, kCancelled, kInputEnded };
    End end = kEntered;
    std::wstring text;  ///< of a cancelled line what is known of it
};

/// Shows the prompt on standard error and reads a line of standard input; on a terminal with editing and history, where
/// Ctrl+C cancels. The Tab key completes what `choices` has, and names of files.
TypedLine readPromptLine(std::wstring_view prompt, const Choices& choices);

}  // namespace host
