#include "torvelhost/window/overlay.h"

#include <algorithm>
#include <cmath>

#include "torvelhost/plot/thin_lines.h"

namespace host {
namespace {

constexpr std::uint32_t kCrosshair = 0x606060;
constexpr std::uint32_t kBand = 0x808080;
constexpr std::uint32_t kInside = 0x2060C0, kCrossing = 0x208040;
constexpr int kDash = 4;  // pixels on, pixels off

std::uint32_t blend(std::uint32_t pixel, std::uint32_t color, unsigned of16) {
    std::uint32_t mixed = 0xFF000000;
    for (int shift = 0; shift <= 16; shift += 8)
        mixed |= ((((pixel >> shift) & 255) * (16 - of16) + ((color >> shift) & 255) * of16) / 16) << shift;
    return mixed;
}

// Rows and columns of whole pixels, cut off at the canvas.
class Plain {
  public:
    explicit Plain(PixelBuffer& into) : into_(into) {}

    void row(int y, int from, int to, std::uint32_t color, bool dashed = false) {
        if (y < 0 || y >= into_.height) return;
        for (int x = std::max(0, std::min(from, to)); x <= std::min(into_.width - 1, std::max(from, to)); ++x)
            if (!dashed || x / kDash % 2 == 0) at(x, y) = 0xFF000000 | color;
    }
    void column(int x, int from, int to, std::uint32_t color, bool dashed = false) {
        if (x < 0 || x >= into_.width) return;
        for (int y = std::max(0, std::min(from, to)); y <= std::min(into_.height - 1, std::max(from, to)); ++y)
            if (!dashed || y / kDash % 2 == 0) at(x, y) = 0xFF000000 | color;
    }
    void box(int left, int top, int right, int bottom, std::uint32_t color, bool dashed = false) {
        row(top, left, right, color, dashed);
        row(bottom, left, right, color, dashed);
        column(left, top, bottom, color, dashed);
        column(right, top, bottom, color, dashed);
    }
    void tint(int left, int top, int right, int bottom, std::uint32_t color) {
        for (int y = std::max(0, top); y <= std::min(into_.height - 1, bottom); ++y)
            for (int x = std::max(0, left); x <= std::min(into_.width - 1, right); ++x)
                at(x, y) = blend(at(x, y), color, 2);
    }

  private:
    std::uint32_t& at(int x, int y) {
        return into_
            .pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(into_.width) + static_cast<std::size_t>(x)];
    }
    PixelBuffer& into_;
};

int whole(double value) { return static_cast<int>(std::floor(std::clamp(value, -1e6, 1e6))); }

}  // namespace

void Overlay::draw(PixelBuffer& into) const {
    Plain plain(into);
    if (window) {
        const int left = whole(std::min(window->from.x, window->to.x));
        const int right = whole(std::max(window->from.x, window->to.x));
        const int top = whole(std::min(window->from.y, window->to.y));
        const int bottom = whole(std::max(window->from.y, window->to.y));
        const std::uint32_t color = window->crossing ? kCrossing : kInside;
        plain.tint(left, top, right, bottom, color);
        plain.box(left, top, right, bottom, color, window->crossing);
    }
    if (!cursor) return;
    if (bandFrom) {
        const auto place = [](const CanvasPoint& point) {
            return Picture::Point{static_cast<float>(std::clamp(point.x, -1e6, 1e6)),
                                  static_cast<float>(std::clamp(point.y, -1e6, 1e6))};
        };
        const Picture::Point band[] = {place(*bandFrom), place(*cursor)};
        ThinLines lines;
        lines.attach(into.pixels.data(), into.width, into.height);
        lines.draw(band, 1.0, kBand);
    }
    const int x = whole(cursor->x), y = whole(cursor->y);
    const int gap = pickBox;  // the box stays clear
    if (crosshair) {
        plain.row(y, 0, x - gap - 1, kCrosshair);
        plain.row(y, x + gap + 1, into.width, kCrosshair);
        plain.column(x, 0, y - gap - 1, kCrosshair);
        plain.column(x, y + gap + 1, into.height, kCrosshair);
    }
    if (pickBox > 0) plain.box(x - pickBox, y - pickBox, x + pickBox, y + pickBox, kCrosshair);
}

}  // namespace host
