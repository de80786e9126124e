// What a prompt asks for: its words, for whoever reads them, and what they mean, for a window that helps with the
// answer.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "drawingdb/ge.h"
#include "torvelhost/lines/completion.h"

namespace host {

/// What an answer is expected to be. Scripts do not look at it.
struct Expected {
    enum Kind {
        kAnswer,   ///< a keyword, a number: typed
        kCommand,  ///< the name of a command, or a selection before it
        kPoint,    ///< a point; so are the others that can be shown by points: a distance, an angle
        kEntity,   ///< a pick
        kNested,   ///< a pick that goes into references
        kSet,      ///< selections, until Enter
        kText,     ///< anything; blanks belong to it
        kDialog,   ///< a line of the forms language, or the answer of a box or a file dialog
    };
    Kind kind = kAnswer;
    /// Where a rubber band to the cursor begins; world coordinates.
    std::optional<OdGePoint3d> base = {};
    /// Is called where the cursor moves while there is no answer, in world coordinates: a preview follows it. May be
    /// empty.
    std::function<void(const OdGePoint3d& cursor)> follow = {};
};

struct Question {
    std::wstring prompt;
    Expected expected = {};
    Choices choices = {};  ///< lines that answer it: keywords, names of commands
};

}  // namespace host
