// A picture as pixels in memory.
#pragma once

#include <cstdint>
#include <vector>

namespace host {

/// Pixels 0xFFRRGGBB, row by row from the top down, `width` of them in a row.
struct PixelBuffer {
    int width = 0, height = 0;
    std::vector<std::uint32_t> pixels;

    /// Of that size, in one colour 0xRRGGBB.
    void clear(int newWidth, int newHeight, std::uint32_t color);
};

/// A part of it; what is at `right` and `bottom` does not belong to it.
struct PixelRectangle {
    int left = 0, top = 0, right = 0, bottom = 0;

    bool isEmpty() const { return left >= right || top >= bottom; }
};

}  // namespace host
