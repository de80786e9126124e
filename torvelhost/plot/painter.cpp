// Thin lines have a painter of their own; wide ones and areas are painted by the Anti-Grain Geometry rasterizer.
#include "torvelhost/plot/painter.h"

#include <agg2/agg_pixfmt_rgb.h>
#include <agg2/agg_rasterizer_scanline_aa_nogamma.h>
#include <agg2/agg_renderer_scanline.h>
#include <agg2/agg_scanline_p.h>
#include <agg2/agg_span_allocator.h>
#include <algorithm>
#include <cmath>

#include "torvelhost/plot/thin_lines.h"

namespace host {

void PixelBuffer::clear(int newWidth, int newHeight, std::uint32_t color) {
    width = newWidth;
    height = newHeight;
    pixels.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0xFF000000 | color);
}

namespace {

// The colours of a raster along a row of pixels: between the middles of its own pixels they change evenly. Seen small,
// it is its copy that is hardly larger.
class RasterSpans {
  public:
    explicit RasterSpans(const Picture::Image& image) {
        const auto& [corner, along, down] = image.place;
        const double area = along.crossProduct(down);
        const Raster& raster = *image.raster;
        const OdGeVector2d x = OdGeVector2d(down.y, -along.y) * (1 / area),
                           y = OdGeVector2d(-down.x, along.x) * (1 / area);
        const auto stepOf = [&](const OdGeVector2d& pixel) {
            return std::max(std::fabs(pixel.x) * raster.width(), std::fabs(pixel.y) * raster.height());
        };
        const double step = std::max(stepOf(x), stepOf(y));
        std::size_t level = 0;
        while (level + 1 < raster.grids.size() && std::ldexp(1.5, static_cast<int>(level)) < step) ++level;
        grid_ = &raster.grids[level];
        x_.set(x.x * grid_->width, x.y * grid_->height);
        y_.set(y.x * grid_->width, y.y * grid_->height);
        corner_ = corner;
    }

    void prepare() {}
    void generate(agg::rgba8* span, int x, int y, unsigned length) const {
        OdGePoint2d at = OdGePoint2d(-0.5, -0.5) + x_ * (x + 0.5 - corner_.x) + y_ * (y + 0.5 - corner_.y);
        for (; length != 0; --length, at += x_) *span++ = colorAt(at);
    }

  private:
    agg::rgba8 colorAt(const OdGePoint2d& at) const {
        const double x = std::clamp(at.x, 0.0, grid_->width - 1.0), y = std::clamp(at.y, 0.0, grid_->height - 1.0);
        const int left = static_cast<int>(x), above = static_cast<int>(y);
        const int right = std::min(left + 1, grid_->width - 1), below = std::min(above + 1, grid_->height - 1);
        const auto u = static_cast<float>(x - left), v = static_cast<float>(y - above);
        float sums[4] = {};
        const auto add = [&](int column, int row, float weight) {
            const std::uint32_t pixel = grid_->pixels[static_cast<std::size_t>(row) * grid_->width + column];
            const float alpha = weight * static_cast<float>(pixel >> 24);
            for (int i = 0; i < 3; ++i) sums[i] += alpha * static_cast<float>(pixel >> (8 * i) & 255);
            sums[3] += alpha;
        };
        add(left, above, (1 - u) * (1 - v));
        add(right, above, u * (1 - v));
        add(left, below, (1 - u) * v);
        add(right, below, u * v);
        if (!(sums[3] > 0)) return agg::rgba8(0, 0, 0, 0);
        // None is below zero, and std::lround would be a call for each.
        // NOLINTNEXTLINE(bugprone-incorrect-roundings)
        const auto rounded = [](float value) { return static_cast<unsigned>(value + 0.5F); };
        const auto part = [&](int i) { return rounded(sums[i] / sums[3]); };
        return agg::rgba8(part(2), part(1), part(0), rounded(sums[3]));
    }

    const Raster::Grid* grid_;
    OdGePoint2d corner_;
    OdGeVector2d x_, y_;  // pixels of the grid for one of the picture
};

}  // namespace

class Painter::Brush {
  public:
    void paint(const Picture& picture, PixelBuffer& into) {
        buffer_.attach(reinterpret_cast<unsigned char*>(into.pixels.data()), static_cast<unsigned>(into.width),
                       static_cast<unsigned>(into.height), into.width * 4);
        base_.reset_clipping(true);
        rasterizer_.clip_box(0, 0, into.width, into.height);
        lines_.attach(into.pixels.data(), into.width, into.height);
        for (const Picture::Shape& shape : picture.shapes()) {
            for (std::uint32_t i = 0; i < shape.contourCount; ++i) {
                const auto contour = picture.contour(shape.firstContour + i);
                if (shape.width == 0)
                    polygon(contour);
                else if (shape.width <= ThinLines::kWidest)
                    lines_.draw(contour, shape.width, shape.color);
                else
                    stroke(contour, shape);
            }
            if (shape.width > 0) continue;
            rasterizer_.filling_rule(shape.rule == FillRule::kNonZero ? agg::fill_non_zero : agg::fill_even_odd);
            if (const Picture::Image* const image = picture.image(shape))
                fill(*image);
            else
                fill(shape.color, shape.opacity);
        }
    }

  private:
    static agg::rgba8 colorOf(std::uint32_t rgb) { return agg::rgba8((rgb >> 16) & 255, (rgb >> 8) & 255, rgb & 255); }

    void fill(std::uint32_t color, double opacity = 1) {
        agg::rgba8 paint = colorOf(color);
        agg::render_scanlines_aa_solid(rasterizer_, scanline_, base_, paint.opacity(opacity));
        rasterizer_.reset();
        corners_ = 0;
    }

    void fill(const Picture::Image& image) {
        RasterSpans spans(image);
        agg::render_scanlines_aa(rasterizer_, scanline_, base_, allocator_, spans);
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
        rasterizer_.filling_rule(agg::fill_non_zero);
        const double half = shape.width / 2;
        OdGeVector2d before;
        for (std::size_t i = 1; i < line.size(); ++i) {
            const OdGePoint2d from(line[i - 1].x, line[i - 1].y), to(line[i].x, line[i].y);
            const OdGeVector2d along = (to - from).normal(), side = along.perpVector() * half;
            const bool sharp = along.dotProduct(before) < 0 || std::fabs(along.crossProduct(before)) * half > 0.3;
            if (i == 1 || sharp) disc(from, half);
            rectangle(from, to, side);
            before = along;
            // The rasterizer holds a limited number of cells.
            if ((corners_ += 4) > 20000) fill(shape.color);
        }
        disc({line.back().x, line.back().y}, half);
        fill(shape.color);
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

    // A pixel's lowest byte, blue, is its first in memory.
    agg::rendering_buffer buffer_;
    agg::pixfmt_bgrx32 format_{buffer_};
    agg::renderer_base<agg::pixfmt_bgrx32> base_{format_};
    agg::rasterizer_scanline_aa_nogamma<> rasterizer_;
    agg::scanline_p8 scanline_;
    agg::span_allocator<agg::rgba8> allocator_;
    int corners_ = 0;
    ThinLines lines_;
};

Painter::Painter() : brush_(std::make_unique<Brush>()) {}

Painter::~Painter() = default;

void Painter::paint(const Picture& picture, PixelBuffer& into) { brush_->paint(picture, into); }

}  // namespace host
