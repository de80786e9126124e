// Pictures as PNG: a sign, and chunks with a length, a name, bytes and a checksum. Rows are as they stand, without a
// filter: those of one colour, and the edges of thin lines, are smallest so.
#include <vector>

#include "torvelhost/plot/deflate.h"
#include "torvelhost/plot/painter.h"
#include "torvelhost/plot/picture.h"

namespace host {
namespace {

void appendNumber(std::string& bytes, std::uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift & 255);
}

void appendChunk(std::string& bytes, std::string_view name, std::string_view contents) {
    appendNumber(bytes, static_cast<std::uint32_t>(contents.size()));
    const std::size_t begin = bytes.size();
    bytes += name;
    bytes += contents;
    const std::string_view checked = std::string_view(bytes).substr(begin);
    appendNumber(
        bytes, static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(checked.data()), checked.size())));
}

std::string packedRows(int columns, std::span<const std::uint32_t> pixels, bool withAlpha) {
    Deflater deflater;
    const auto width = static_cast<std::size_t>(columns);
    const std::size_t size = withAlpha ? 4 : 3;
    std::string row(1 + size * width, '\0');  // begins with its filter: none
    for (std::size_t begin = 0; begin < pixels.size(); begin += width) {
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint32_t pixel = pixels[begin + x];
            char* const to = &row[1 + size * x];
            to[0] = static_cast<char>(pixel >> 16);
            to[1] = static_cast<char>(pixel >> 8);
            to[2] = static_cast<char>(pixel);
            if (withAlpha) to[3] = static_cast<char>(pixel >> 24);
        }
        deflater.add(row);
    }
    return deflater.end();
}

std::string fileOf(int width, int height, std::span<const std::uint32_t> pixels, bool withAlpha) {
    std::string head;
    appendNumber(head, static_cast<std::uint32_t>(width));
    appendNumber(head, static_cast<std::uint32_t>(height));
    // Eight bits for each of red, green and blue, and of what it covers; not interlaced.
    head += withAlpha ? std::string_view("\x08\x06\0\0\0", 5) : std::string_view("\x08\x02\0\0\0", 5);
    std::string bytes = "\x89PNG\r\n\x1A\n";
    appendChunk(bytes, "IHDR", head);
    appendChunk(bytes, "IDAT", packedRows(width, pixels, withAlpha));
    appendChunk(bytes, "IEND", {});
    return bytes;
}

}  // namespace

std::string pngBytes(const Picture& picture) {
    PixelBuffer buffer;
    buffer.clear(picture.width(), picture.height(), picture.background());
    Painter().paint(picture, buffer);
    return pngBytes(buffer);
}

std::string pngBytes(const PixelBuffer& buffer) { return fileOf(buffer.width, buffer.height, buffer.pixels, false); }

std::string pngBytes(const Raster& raster) {
    return fileOf(raster.width(), raster.height(), raster.grids.front().pixels, !raster.isOpaque);
}

}  // namespace host
