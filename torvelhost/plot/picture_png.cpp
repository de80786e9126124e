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

std::string packedRows(const PixelBuffer& buffer) {
    Deflater deflater;
    const auto width = static_cast<std::size_t>(buffer.width);
    std::string row(1 + 3 * width, '\0');  // begins with its filter: none
    for (std::size_t begin = 0; begin < buffer.pixels.size(); begin += width) {
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint32_t pixel = buffer.pixels[begin + x];
            row[1 + 3 * x] = static_cast<char>(pixel >> 16);
            row[2 + 3 * x] = static_cast<char>(pixel >> 8);
            row[3 + 3 * x] = static_cast<char>(pixel);
        }
        deflater.add(row);
    }
    return deflater.end();
}

}  // namespace

std::string pngBytes(const Picture& picture) {
    PixelBuffer buffer;
    buffer.clear(picture.width(), picture.height(), picture.background());
    Painter().paint(picture, buffer);
    return pngBytes(buffer);
}

std::string pngBytes(const PixelBuffer& buffer) {
    std::string head;
    appendNumber(head, static_cast<std::uint32_t>(buffer.width));
    appendNumber(head, static_cast<std::uint32_t>(buffer.height));
    head += std::string_view("\x08\x02\0\0\0", 5);  // eight bits for each of red, green and blue; not interlaced
    std::string bytes = "\x89PNG\r\n\x1A\n";
    appendChunk(bytes, "IHDR", head);
    appendChunk(bytes, "IDAT", packedRows(buffer));
    appendChunk(bytes, "IEND", {});
    return bytes;
}

}  // namespace host
