// Thin lines, a column of pixels at a time (a row for steep ones).
//
// Seen along a column, a line is a strip between two edges. How much of a pixel lies below an edge depends on the
// edge's height at the column's middle and on its slope alone, so it is looked up; what the strip covers is the
// difference of two such looks. That is the area to the last level but at a line's very ends, which are cut off upright
// instead of squarely: a part of a pixel that nobody sees.
//
// A line of one segment is blended at once. The segments of a longer one are first added up, for where two of them
// share a pixel at a corner, each covers a part of it, and one blended over the other would leave a gap.
#include "torvelhost/plot/thin_lines.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace host {
namespace {

// The area of a pixel, in 256ths, that lies below an edge; by the edge's slope and height over the pixel's top.
class Edges {
  public:
    static constexpr int kSlopes = 16;                       // from 0 to 1
    static constexpr int kBits = 7, kPerPixel = 1 << kBits;  // heights
    // Beside these pixels on both sides no strip in a pen that is thin reaches: a pixel farther up or down is covered
    // as a whole, or not at all.
    static constexpr int kBeside = 4;
    static constexpr int kHeights = (2 * kBeside + 1) * kPerPixel;
    using Row = std::array<std::uint16_t, kHeights>;

    Edges() {
        for (std::size_t slope = 0; slope < rows_.size(); ++slope)
            for (std::size_t height = 0; height < kHeights; ++height)
                rows_[slope][height] = static_cast<std::uint16_t>(
                    std::lround(256 * area(static_cast<double>(slope) / kSlopes,
                                           static_cast<double>(height) / kPerPixel - kBeside)));
    }
    // NOLINTNEXTLINE(bugprone-incorrect-roundings): it is never negative, and asked for each pixel.
    const Row& of(double slope) const { return rows_[static_cast<std::size_t>(std::fabs(slope) * kSlopes + 0.5)]; }

  private:
    // From the pixel's left to its right, what lies under the edge and between top and bottom.
    static double area(double slope, double height) {
        const auto below = [](double h) { return h <= 0 ? 0.0 : h >= 1 ? h - 0.5 : h * h / 2; };
        if (slope == 0) return std::clamp(height, 0.0, 1.0);
        return (below(height + slope / 2) - below(height - slope / 2)) / slope;
    }
    std::array<Row, kSlopes + 1> rows_{};
};

const Edges& edges() {
    static const Edges known;
    return known;
}

// A strip of the widest pen at the steepest slope, and what it leans.
constexpr std::size_t kMostInColumn = 5;
// No buffer is longer.
constexpr float kLongest = 1e6f;

// Both of a pixel's outer parts at once, then its middle. The weight is of 256.
std::uint32_t blended(std::uint32_t under, std::uint32_t over, std::uint32_t weight) {
    constexpr std::uint32_t kOuter = 0xFF00FF, kMiddle = 0x00FF00, kHalves = 0x800080;
    const std::uint32_t rest = 256 - weight;
    return 0xFF000000 | ((((under & kOuter) * rest + (over & kOuter) * weight + kHalves) >> 8) & kOuter) |
           ((((under & kMiddle) * rest + (over & kMiddle) * weight + 0x8000) >> 8) & kMiddle);
}

}  // namespace

struct ThinLines::Blend {
    std::uint32_t* pixels;
    std::uint32_t color;

    void operator()(std::size_t pixel, std::uint32_t cover) const {
        pixels[pixel] = blended(pixels[pixel], color, cover);
    }
};

struct ThinLines::Gather {
    std::uint16_t* covered;
    std::uint32_t* touched;  // with room for what a segment can touch
    std::size_t& count;

    void operator()(std::size_t pixel, std::uint32_t cover) const {
        const std::uint32_t before = covered[pixel];
        touched[count] = static_cast<std::uint32_t>(pixel);
        count += before == 0 && cover != 0 ? 1 : 0;
        covered[pixel] = static_cast<std::uint16_t>(std::min<std::uint32_t>(before + cover, 256));
    }
};

void ThinLines::attach(std::uint32_t* pixels, int width, int height) {
    pixels_ = pixels;
    width_ = width;
    height_ = height;
}

void ThinLines::draw(std::span<const Picture::Point> line, double width, std::uint32_t color) {
    color &= 0xFFFFFF;
    const double half = width / 2;
    if (line.size() == 2) return addSegment(line[0], line[1], half, Blend{pixels_, color});
    const std::size_t size = static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
    if (covered_.size() < size) covered_.resize(size);
    std::size_t count = 0;
    for (std::size_t i = 1; i < line.size(); ++i) {
        const float length = std::max(std::fabs(line[i].x - line[i - 1].x), std::fabs(line[i].y - line[i - 1].y));
        const std::size_t most = (static_cast<std::size_t>(std::min(length, kLongest)) + 2) * kMostInColumn;
        if (touched_.size() < count + most) touched_.resize(2 * (count + most));
        addSegment(line[i - 1], line[i], half, Gather{covered_.data(), touched_.data(), count});
    }
    const Blend blend{pixels_, color};
    for (std::size_t i = 0; i < count; ++i) {
        blend(touched_[i], covered_[touched_[i]]);
        covered_[touched_[i]] = 0;
    }
}

template <class Cover>
void ThinLines::addSegment(const Picture::Point& from, const Picture::Point& to, double half, const Cover& cover) {
    const double x = to.x - from.x, y = to.y - from.y;
    const bool upright = std::fabs(y) > std::fabs(x);
    const double along = upright ? y : x;
    if (along == 0) return;
    const double slope = (upright ? x : y) / along;
    const Picture::Point& first = along > 0 ? from : to;
    const Picture::Point& last = along > 0 ? to : from;
    Strip strip = {first.x,
                   last.x,
                   first.y,
                   slope,
                   half * std::sqrt(1 + slope * slope),
                   width_,
                   height_,
                   1,
                   static_cast<std::size_t>(width_)};
    if (upright)
        strip = {first.y, last.y, first.x, slope, strip.reach, height_, width_, static_cast<std::size_t>(width_), 1};
    if (!(strip.to > 0) || !(strip.from < strip.end)) return;
    const double other = strip.across + slope * (strip.to - strip.from), lean = strip.reach + 1;
    const auto [low, high] = std::minmax(strip.across, other);
    if (low - lean >= 0 && high + lean < strip.high)
        addColumns<false>(strip, cover);
    else if (low - lean < strip.high && high + lean >= 0)
        addColumns<true>(strip, cover);
}

// Heights are counted in 2^-32 pixels.
template <bool kCut, class Cover>
void ThinLines::addColumns(const Strip& strip, const Cover& cover) {
    constexpr double kOne = 4294967296.0;
    const Edges::Row& row = edges().of(strip.slope);
    const auto reach = static_cast<std::int64_t>(strip.reach * kOne);
    const auto lean = static_cast<std::int64_t>((strip.reach + std::fabs(strip.slope) / 2) * kOne);
    const auto fixed = [&strip](double along) {
        return static_cast<std::int64_t>((strip.across + strip.slope * (along - strip.from)) * kOne);
    };
    const auto add = [&](int column, std::int64_t middle, std::uint32_t part) {
        auto top = static_cast<int>((middle - lean) >> 32), bottom = static_cast<int>((middle + lean) >> 32);
        if constexpr (kCut) {
            top = std::max(top, 0);
            bottom = std::min(bottom, strip.high - 1);
        }
        const std::int64_t height = middle - (static_cast<std::int64_t>(top) << 32) +
                                    (static_cast<std::int64_t>(Edges::kBeside) << 32) + (1 << (31 - Edges::kBits));
        auto lower = static_cast<std::size_t>((height + reach) >> (32 - Edges::kBits));
        auto upper = static_cast<std::size_t>((height - reach) >> (32 - Edges::kBits));
        std::size_t pixel = static_cast<std::size_t>(column) * strip.step + static_cast<std::size_t>(top) * strip.pitch;
        for (int place = top; place <= bottom; ++place, pixel += strip.pitch) {
            const auto covered = static_cast<std::uint32_t>(row[lower] - row[upper]);
            cover(pixel, part == 256 ? covered : (covered * part + 128) >> 8);
            lower -= Edges::kPerPixel;
            upper -= Edges::kPerPixel;
        }
    };
    const auto addPart = [&](int column) {
        const double left = std::max(strip.from, static_cast<double>(column)), right = std::min(strip.to, column + 1.0);
        // NOLINTNEXTLINE(bugprone-incorrect-roundings): it is never negative, and asked for each pixel.
        add(column, fixed((left + right) / 2), static_cast<std::uint32_t>((right - left) * 256 + 0.5));
    };
    int first = static_cast<int>(std::floor(std::max(strip.from, 0.0)));
    int last = static_cast<int>(std::ceil(std::min<double>(strip.to, strip.end))) - 1;
    if (strip.from > first) addPart(first++);
    if (last >= first && strip.to < last + 1) addPart(last--);
    const auto slope = static_cast<std::int64_t>(strip.slope * kOne);
    std::int64_t middle = fixed(first + 0.5);
    for (int column = first; column <= last; ++column, middle += slope) add(column, middle, 256);
}

}  // namespace host
