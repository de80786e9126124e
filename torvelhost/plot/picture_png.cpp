// Pictures as PNG.
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <unordered_map>

#include "torvelhost/plot/painter.h"
#include "torvelhost/plot/pdf_writer.h"
#include "torvelhost/plot/picture.h"

namespace host {
namespace {

// The memory of the PNG writer, which goes on writing where it got none. Here it does not come back then: the
// exception leaves it, and whatever it holds is given back.
class WriterMemory {
  public:
    WriterMemory() { current_ = this; }
    ~WriterMemory() { current_ = nullptr; }
    WriterMemory(const WriterMemory&) = delete;
    WriterMemory& operator=(const WriterMemory&) = delete;

    static void* allocate(std::size_t size) {
        auto block = std::make_unique_for_overwrite<std::max_align_t[]>(size / sizeof(std::max_align_t) + 1);
        void* const place = block.get();
        current_->blocks_.emplace(place, std::move(block));
        return place;
    }
    static void* reallocate(void* old, std::size_t oldSize, std::size_t size) {
        void* const block = allocate(size);
        if (old) std::memcpy(block, old, std::min(oldSize, size));
        free(old);
        return block;
    }
    static void free(void* old) { current_->blocks_.erase(old); }

  private:
    static thread_local WriterMemory* current_;
    std::unordered_map<void*, std::unique_ptr<std::max_align_t[]>> blocks_;
};

thread_local WriterMemory* WriterMemory::current_ = nullptr;

}  // namespace
}  // namespace host

#define STBIW_MALLOC(size) host::WriterMemory::allocate(size)
#define STBIW_REALLOC_SIZED(old, oldSize, size) \
    host::WriterMemory::reallocate(old, static_cast<std::size_t>(oldSize), static_cast<std::size_t>(size))
#define STBIW_FREE(old) host::WriterMemory::free(old)
#define STBI_WRITE_NO_STDIO
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

namespace host {
namespace {

void append(void* out, void* data, int size) {
    static_cast<std::string*>(out)->append(static_cast<const char*>(data), static_cast<std::size_t>(size));
}

}  // namespace

std::string deflated(std::string_view bytes) {
    WriterMemory memory;
    // The data are not changed, only not declared so.
    auto* const data = reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data()));
    int size = 0;
    const unsigned char* const packed = stbi_zlib_compress(data, static_cast<int>(bytes.size()), &size, 5);
    if (!packed) throw std::bad_alloc();
    return {reinterpret_cast<const char*>(packed), static_cast<std::size_t>(size)};
}

std::string pngBytes(const Picture& picture) {
    PixelBuffer buffer;
    buffer.clear(picture.width(), picture.height(), picture.background());
    Painter().paint(picture, buffer);
    return pngBytes(std::move(buffer));
}

std::string pngBytes(PixelBuffer buffer) {
    // Without their unused parts, in their own place.
    auto* const colors = reinterpret_cast<unsigned char*>(buffer.pixels.data());
    for (std::size_t i = 0; i < buffer.pixels.size(); ++i) {
        const std::uint32_t pixel = buffer.pixels[i];
        colors[3 * i] = static_cast<unsigned char>(pixel >> 16);
        colors[3 * i + 1] = static_cast<unsigned char>(pixel >> 8);
        colors[3 * i + 2] = static_cast<unsigned char>(pixel);
    }
    // Rows of one colour, and the edges of thin lines, are smallest as they stand; looking longer for what repeats
    // makes no difference either.
    stbi_write_force_png_filter = 0;
    stbi_write_png_compression_level = 5;
    std::string bytes;
    WriterMemory memory;
    if (!stbi_write_png_to_func(append, &bytes, buffer.width, buffer.height, 3, colors, buffer.width * 3))
        throw std::bad_alloc();
    return bytes;
}

}  // namespace host
