// What a window draws over the drawing by itself: the crosshair, the pick box, a rubber band, a selection's window.
#pragma once

#include <optional>

#include "torvelhost/window/view_frame.h"

namespace host {

struct Overlay {
    std::optional<CanvasPoint> cursor;
    bool crosshair = false;
    int pickBox = 0;  // half its side in pixels; 0: none
    std::optional<CanvasPoint> bandFrom;
    struct Window {
        CanvasPoint from, to;
        bool crossing = false;
        bool operator==(const Window&) const = default;
    };
    std::optional<Window> window;
    bool operator==(const Overlay&) const = default;

    void draw(PixelBuffer& into) const;
};

}  // namespace host
