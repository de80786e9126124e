// From shapes to pixels.
#pragma once

#include <memory>

#include "torvelhost/plot/picture.h"
#include "torvelhost/plot/pixel_buffer.h"

namespace host {

/// Paints smooth shapes. What a polyline or an area covers does not depend on what was painted before it, so that
/// a picture painted in parts has the same pixels as one painted at once.
class Painter {
  public:
    Painter();
    ~Painter();
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    /// All shapes, in their order. The picture is as large as the buffer; its background is not painted.
    void paint(const Picture& picture, PixelBuffer& into);

  private:
    class Brush;
    std::unique_ptr<Brush> brush_;
};

}  // namespace host
