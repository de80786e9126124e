// A quick painter of thin lines: smooth polylines in pens of up to one and a half pixels.
//
// The origin is the buffer's upper left corner, y runs down; a pixel's middle is at a half.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "torvelhost/plot/picture.h"

namespace host {

class ThinLines {
  public:
    /// The widest pen, in pixels.
    static constexpr double kWidest = 1.5;

    /// Rows of opaque pixels 0xFFRRGGBB from the top down. They are referenced.
    void attach(std::uint32_t* pixels, int width, int height);

    /// A polyline with butt ends, of two points or more. Where it meets itself, at its corners too, it is as dark as
    /// anywhere else. The pen is above 0 and at most kWidest pixels wide.
    void draw(std::span<const Picture::Point> line, double width, std::uint32_t color);

  private:
    /// What a segment does with the pixels that it covers, each by so many 256ths.
    struct Blend;
    struct Gather;
    /// A segment as a strip over columns of pixels, or over rows when it is steep.
    struct Strip {
        double from, to;          // along it, `from` the smaller
        double across, slope;     // its height at `from`; the slope is from -1 to 1
        double reach;             // from its middle up and down
        int end, high;            // the buffer's, along it and across
        std::size_t step, pitch;  // pixels from one column to the next, and from one to the next in a column
    };
    template <class Cover>
    void addSegment(const Picture::Point& from, const Picture::Point& to, double half, const Cover& cover);
    template <bool kCut, class Cover>
    void addColumns(const Strip& strip, const Cover& cover);

    std::uint32_t* pixels_ = nullptr;
    int width_ = 0, height_ = 0;
    std::vector<std::uint16_t> covered_;  // of each pixel, while a line of several segments is drawn; otherwise 0
    std::vector<std::uint32_t> touched_;  // those that are not 0; longer than needed
};

}  // namespace host
