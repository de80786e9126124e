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

}  // namespace host
