// A script of events: what a user does in a window, one line an event. docs/window.md has the language.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "torvelhost/lines/reply.h"
#include "torvelhost/window/view_frame.h"

namespace host {

/// A place on the canvas: in pixels, or a point of the drawing.
struct EventPlace {
    CanvasPoint pixel;
    std::optional<TypedPoint> point;
};

struct WindowEvent {
    enum Kind {
        kSize,
        kDpi,
        kMove,
        kClick,
        kRight,
        kDouble,
        kDown,
        kUp,
        kDrag,
        kWheel,
        kType,
        kKeys,
        kKey,
        kMenu,
        kTab,
        kWord,
        kDrop,
        kClose,
        kDialog,
        kExpect,
        kWait,
        kPicture
    };
    Kind kind = kClose;
    std::vector<EventPlace> places;
    MouseButton button = MouseButton::kLeft;
    bool shift = false;
    double number = 0, second = 0;  ///< of size, dpi, wheel, wait
    std::wstring word;              ///< of expect: what is looked at
    std::wstring text;              ///< the rest of the line
    bool exact = false;             ///< of a picture
    std::wstring place;             ///< "plan.ev:3"
};

/// The line, without its comment lines; nothing for one that is empty or a comment. Throws std::invalid_argument with
/// what would be right.
std::optional<WindowEvent> parseEvent(std::wstring_view line);
/// The lines of a file. Throws ScriptError, which names the line, and base::FileError.
std::vector<WindowEvent> readEvents(const std::wstring& path);
std::vector<WindowEvent> parseEvents(std::wstring_view text, const std::wstring& name);

}  // namespace host
