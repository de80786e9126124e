// Pictures out of files, which images show.
#pragma once

#include <compare>
#include <cstdint>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "drawingdb/ge.h"

namespace host {

/// Pixels 0xAARRGGBB, row by row from the top down, and the same picture at half the size, and at half of that ...
struct Raster {
    struct Grid {
        int width = 0, height = 0;
        std::vector<std::uint32_t> pixels;
    };
    std::vector<Grid> grids;  // the first as it came, the last one pixel wide or high
    bool isOpaque = true;
    std::string jpeg;  // the file, where it is that and shows just these pixels
    bool isJpegGray = false;

    int width() const { return grids.front().width; }
    int height() const { return grids.front().height; }
};

/// How an image wants its picture to look.
struct RasterLook {
    int brightness = 50, contrast = 50, fade = 0;  // 0 to 100
    bool isTransparent = false;                    // else the paper is seen where the picture lets it
    bool isGray = false;
    std::uint32_t paper = 0xFFFFFF;

    // NOLINTNEXTLINE(modernize-use-nullptr): what is compared with 0 is no pointer.
    auto operator<=>(const RasterLook&) const = default;
};

/// Where a raster is drawn, in a plane: its upper left corner, and its upper and its left side.
struct RasterPlace {
    OdGePoint2d corner;
    OdGeVector2d along, down;
};

/// Says behind the name of a file why it shows nothing.
struct BadPicture : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Of a PNG, JPEG or BMP file with so many pixels at most. Throws BadPicture.
Raster readRaster(std::string_view bytes, const RasterLook& look, std::uint64_t mostPixels);

/// The pictures of a drawing: PNG, JPEG and BMP files, each read once.
class Rasters {
  public:
    /// `drawing` is the path of its file.
    explicit Rasters(std::wstring drawing) : drawing_(std::move(drawing)) {}

    /// Null when there is no such picture. The name is taken from the drawing's folder; what is not there is looked for
    /// beside the drawing.
    std::shared_ptr<const Raster> read(const std::wstring& name, const RasterLook& look);
    /// "the picture photo.png is not there; ...", one for each that could not be read.
    std::vector<std::wstring> told() const;

  private:
    std::wstring drawing_;
    std::map<std::pair<std::wstring, RasterLook>, std::shared_ptr<const Raster>> known_;
    std::map<std::wstring, std::wstring> faults_;  // by name
    std::uint64_t pixels_ = 0;                     // of all that are known
};

}  // namespace host
