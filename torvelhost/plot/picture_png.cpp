// Pictures as PNG: shapes become anti-aliased pixels with the Anti-Grain Geometry rasterizer.
#include <agg2/agg_pixfmt_rgb.h>
#include <agg2/agg_rasterizer_scanline_aa_nogamma.h>
#include <agg2/agg_renderer_scanline.h>
#include <agg2/agg_scanline_p.h>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <unordered_map>

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

class Painter {
  public:
    explicit Painter(const Picture& picture)
        : picture_(picture),
          bytes_(static_cast<std::size_t>(picture.width()) * static_cast<std::size_t>(picture.height()) * 3),
          buffer_(bytes_.data(), static_cast<unsigned>(picture.width()), static_cast<unsigned>(picture.height()),
                  picture.width() * 3),
          format_(buffer_),
          base_(format_) {
        base_.clear(colorOf(picture.background()));
        rasterizer_.clip_box(0, 0, picture.width(), picture.height());
    }

    const std::vector<unsigned char>& paint() {
        for (const Picture::Shape& shape : picture_.shapes()) {
            rasterizer_.filling_rule(shape.width > 0 || shape.rule == FillRule::kNonZero ? agg::fill_non_zero
                                                                                         : agg::fill_even_odd);
            for (std::uint32_t i = 0; i < shape.contourCount; ++i) {
                const auto contour = picture_.contour(shape.firstContour + i);
                if (shape.width > 0)
                    stroke(contour, shape);
                else
                    polygon(contour);
            }
            fill(shape.color, shape.opacity);
        }
        return bytes_;
    }

  private:
    static agg::rgba8 colorOf(std::uint32_t rgb) { return agg::rgba8((rgb >> 16) & 255, (rgb >> 8) & 255, rgb & 255); }

    void fill(std::uint32_t color, double opacity = 1) {
        agg::rgba8 paint = colorOf(color);
        agg::render_scanlines_aa_solid(rasterizer_, scanline_, base_, paint.opacity(opacity));
        rasterizer_.reset();
        corners_ = 0;
    }

    void polygon(std::span<const Picture::Point> contour) {
        rasterizer_.move_to_d(contour[0].x, contour[0].y);
        for (const Picture::Point& point : contour.subspan(1)) rasterizer_.line_to_d(point.x, point.y);
        rasterizer_.close_polygon();
    }

    // A rectangle a segment, and discs where the gap between two would show. All turn the same way round, so that
    // they add up.
    void stroke(std::span<const Picture::Point> line, const Picture::Shape& shape) {
        const double half = shape.width / 2;
        OdGeVector2d before;
        for (std::size_t i = 1; i < line.size(); ++i) {
            const OdGePoint2d from(line[i - 1].x, line[i - 1].y), to(line[i].x, line[i].y);
            const OdGeVector2d along = (to - from).normal(), side = along.perpVector() * half;
            const bool sharp = along.dotProduct(before) < 0 || std::fabs(along.crossProduct(before)) * half > 0.3;
            if (half > 0.75 && (i == 1 || sharp)) disc(from, half);
            rectangle(from, to, side);
            before = along;
            // The rasterizer holds a limited number of cells.
            if ((corners_ += 4) > 20000) fill(shape.color);
        }
        if (half > 0.75) disc({line.back().x, line.back().y}, half);
    }

    void rectangle(const OdGePoint2d& from, const OdGePoint2d& to, const OdGeVector2d& side) {
        rasterizer_.move_to_d(from.x + side.x, from.y + side.y);
        rasterizer_.line_to_d(from.x - side.x, from.y - side.y);
        rasterizer_.line_to_d(to.x - side.x, to.y - side.y);
        rasterizer_.line_to_d(to.x + side.x, to.y + side.y);
        rasterizer_.close_polygon();
    }

    void disc(const OdGePoint2d& center, double radius) {
        const int corners = radius < 2 ? 8 : radius < 10 ? 16 : 48;
        for (int i = 0; i < corners; ++i) {
            const double angle = drawingdb::kTwoPi * i / corners;
            const double x = center.x + radius * std::cos(angle), y = center.y + radius * std::sin(angle);
            if (i == 0)
                rasterizer_.move_to_d(x, y);
            else
                rasterizer_.line_to_d(x, y);
        }
        rasterizer_.close_polygon();
        corners_ += corners;
    }

    const Picture& picture_;
    std::vector<unsigned char> bytes_;
    agg::rendering_buffer buffer_;
    agg::pixfmt_rgb24 format_;
    agg::renderer_base<agg::pixfmt_rgb24> base_;
    agg::rasterizer_scanline_aa_nogamma<> rasterizer_;
    agg::scanline_p8 scanline_;
    int corners_ = 0;
};

void append(void* out, void* data, int size) {
    static_cast<std::string*>(out)->append(static_cast<const char*>(data), static_cast<std::size_t>(size));
}

}  // namespace

std::string pngBytes(const Picture& picture) {
    Painter painter(picture);
    // Rows of one colour, and the edges of thin lines, are smallest as they stand; looking longer for what repeats
    // makes no difference either.
    stbi_write_force_png_filter = 0;
    stbi_write_png_compression_level = 5;
    std::string bytes;
    WriterMemory memory;
    if (!stbi_write_png_to_func(append, &bytes, picture.width(), picture.height(), 3, painter.paint().data(),
                                picture.width() * 3))
        throw std::bad_alloc();
    return bytes;
}

}  // namespace host
