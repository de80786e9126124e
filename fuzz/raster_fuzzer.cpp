// The input is a picture's file, its first byte how it is to look. It is refused, or has the pixels that it says.
#include <vector>

#include "fuzz/fuzz.h"
#include "torvelhost/plot/raster.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    host::RasterLook look;
    look.isTransparent = data[0] & 1;
    look.isGray = data[0] & 2;
    look.brightness = data[0] & 4 ? 70 : 50;
    // What lies behind the bytes is not theirs.
    const std::vector<char> bytes(data + 1, data + size);
    try {
        const host::Raster raster = host::readRaster({bytes.data(), bytes.size()}, look, 1'000'000);
        for (const host::Raster::Grid& grid : raster.grids) {
            fuzz::require(grid.width > 0 && grid.height > 0, "a grid shows something");
            fuzz::require(grid.pixels.size() == static_cast<std::size_t>(grid.width) * grid.height,
                          "no pixel is missing");
        }
        fuzz::require(raster.grids.back().width == 1 || raster.grids.back().height == 1, "the smallest is small");
    } catch (const host::BadPicture&) {
        return 0;
    }
    return 0;
}
