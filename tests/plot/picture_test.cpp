// What a picture keeps of what is drawn into it, and its two files.
#include "torvelhost/plot/picture.h"

#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

#include <cmath>
#include <limits>
#include <memory>

#include "gtest/gtest.h"
#include "torvelhost/plot/painter.h"
#include "torvelhost/plot/thin_lines.h"

namespace host {
namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF, kRed = 0xFF0000, kBlue = 0x0000FF;

class Pixels {
  public:
    explicit Pixels(const Picture& picture) {
        const std::string png = pngBytes(picture);
        int parts = 0;
        bytes_.reset(stbi_load_from_memory(reinterpret_cast<const unsigned char*>(png.data()),
                                           static_cast<int>(png.size()), &width_, &height_, &parts, 3));
        EXPECT_TRUE(bytes_);
        EXPECT_EQ(width_, picture.width());
        EXPECT_EQ(height_, picture.height());
    }
    std::uint32_t at(int x, int y) const {
        const unsigned char* pixel = bytes_.get() + 3 * (y * width_ + x);
        return static_cast<std::uint32_t>(pixel[0] << 16 | pixel[1] << 8 | pixel[2]);
    }

  private:
    struct Free {
        void operator()(unsigned char* bytes) const { stbi_image_free(bytes); }
    };
    std::unique_ptr<unsigned char, Free> bytes_;
    int width_ = 0, height_ = 0;
};

// The paths of the SVG text, a line each.
std::string paths(const Picture& picture) {
    const std::string text = svgText(picture);
    const std::size_t begin = text.find("<path");
    return begin == text.npos ? "" : text.substr(begin, text.find("</g>") - begin);
}

void line(Picture& picture, std::initializer_list<OdGePoint2d> points, const Pen& pen) {
    picture.addPolyline(std::span(points.begin(), points.size()), pen);
}

TEST(Picture, WritesShapesInTheirOrder) {
    Picture picture(100, 50, kWhite);
    line(picture, {{10, 10}, {20.25, 10}}, {kRed, 1});
    line(picture, {{30, 10}, {40, 10.004}, {40, 30.5}}, {kRed, 1});
    line(picture, {{1, 2}, {3, 4}}, {kRed, 2.5});
    const std::vector<Picture::Contour> ring = {{{10, 20}, {30, 20}, {30, 40}, {10, 40}},
                                                {{15, 25}, {25, 25}, {25, 35}, {15, 35}}};
    picture.addArea(ring, kBlue);
    EXPECT_EQ(paths(picture),
              "<path stroke=\"#ff0000\" stroke-width=\"1\" d=\"M10 10L20.25 10M30 10L40 10L40 30.5\"/>\n"
              "<path stroke=\"#ff0000\" stroke-width=\"2.5\" d=\"M1 2L3 4\"/>\n"
              "<path fill=\"#0000ff\" d=\"M10 20L30 20L30 40L10 40ZM15 25L25 25L25 35L15 35Z\"/>\n");

    const Pixels pixels(picture);
    EXPECT_EQ(pixels.at(12, 30), kBlue);
    EXPECT_EQ(pixels.at(20, 30), kWhite) << "the hole";
    EXPECT_EQ(pixels.at(60, 40), kWhite);
    EXPECT_EQ(pixels.at(15, 9) & 0xFF, pixels.at(15, 10) & 0xFF) << "a line between two rows of pixels covers both";
    EXPECT_NE(pixels.at(15, 9), kWhite);
}

TEST(Picture, CutsOffWhatLiesOutside) {
    Picture picture(100, 50, kWhite);
    line(picture, {{-1e9, 25}, {1e9, 25}}, {kRed, 2});
    line(picture, {{50, -10}, {120, 25}, {50, 60}}, {kBlue, 2});  // leaves and comes back
    line(picture, {{200, 200}, {300, 300}}, {kBlue, 2});          // never there
    line(picture, {{10, 10}, {std::nan(""), 10}}, {kBlue, 2});
    line(picture, {{-1e300, 10}, {1e300, 10}}, {kBlue, 2});
    line(picture, {{10, 10}, {std::numeric_limits<double>::infinity(), 10}}, {kBlue, 2});
    EXPECT_EQ(paths(picture),
              "<path stroke=\"#ff0000\" stroke-width=\"2\" d=\"M-1 25L101 25\"/>\n"
              "<path stroke=\"#0000ff\" stroke-width=\"2\" d=\"M68 -1L101 15.5M101 34.5L68 51\"/>\n");
}

TEST(Picture, DrawsDots) {
    Picture picture(20, 20, kWhite);
    line(picture, {{10.5, 10.5}}, {kRed, 5});
    line(picture, {{4, 4}, {4, 4}, {4, 4}}, {kBlue, 2});
    ASSERT_EQ(picture.shapes().size(), 2u);
    const Pixels pixels(picture);
    EXPECT_EQ(pixels.at(10, 10), kRed);
    EXPECT_EQ(pixels.at(12, 10), kRed);
    EXPECT_EQ(pixels.at(14, 10), kWhite);
    EXPECT_EQ(pixels.at(3, 3), pixels.at(4, 4));
    EXPECT_NE(pixels.at(4, 4), kWhite);
}

TEST(Picture, CutsAtAClip) {
    struct Case {
        const char* name;
        Picture::Contour clip;
        const char* expected;
    };
    const Case cases[] = {
        {"box", {{20, 10}, {20, 40}, {60, 40}, {60, 10}}, "M19 20L61 20"},
        {"triangle, clockwise", {{20, 0}, {60, 0}, {20, 40}}, "M20 20L40 20"},
        {"not convex: two parts", {{20, 0}, {60, 0}, {60, 40}, {40, 10}, {20, 40}}, "M20 20L33.33 20M46.67 20L60 20"},
    };
    for (const Case& each : cases) {
        Picture picture(100, 50, kWhite);
        picture.setClip(each.clip);
        line(picture, {{0, 20}, {50, 20}, {100, 20}}, {kRed, 2});
        std::string expected = each.expected;
        // The bend in the middle stays where it is inside.
        if (expected.find("L61") != expected.npos) expected.insert(expected.find("L61"), "L50 20");
        if (expected.find("L60") != expected.npos) expected.insert(expected.find("L60"), "L50 20");
        EXPECT_EQ(paths(picture), "<path stroke=\"#ff0000\" stroke-width=\"2\" d=\"" + expected + "\"/>\n")
            << each.name;
        picture.clearClip();
        line(picture, {{0, 45}, {100, 45}}, {kRed, 2});
        EXPECT_NE(paths(picture).find("M0 45L100 45"), std::string::npos) << each.name;
    }

    Picture picture(100, 50, kWhite);
    picture.setClip({{20, 0}, {60, 0}, {20, 40}});
    const std::vector<Picture::Contour> everything = {{{-1000, -1000}, {1000, -1000}, {1000, 1000}, {-1000, 1000}}};
    picture.addArea(everything, kBlue);
    const Pixels pixels(picture);
    EXPECT_EQ(pixels.at(25, 20), kBlue);
    EXPECT_EQ(pixels.at(45, 20), kWhite);
    EXPECT_EQ(pixels.at(15, 20), kWhite);
}

TEST(Picture, CutsAreasAtAClipThatIsNotConvex) {
    // A frame between two contours, in a clip that looks like a U, by both rules.
    const Picture::Contour clip = {{10, 10}, {30, 10}, {30, 60}, {60, 60}, {60, 10}, {80, 10}, {80, 90}, {10, 90}};
    const std::vector<Picture::Contour> frame = {{{0, 0}, {100, 0}, {100, 100}, {0, 100}},
                                                 {{20, 20}, {20, 80}, {70, 80}, {70, 20}}};
    for (const FillRule rule : {FillRule::kEvenOdd, FillRule::kNonZero}) {
        for (const bool reversed : {false, true}) {
            Picture picture(100, 100, kWhite);
            picture.setClip(reversed ? Picture::Contour(clip.rbegin(), clip.rend()) : clip);
            picture.addArea(frame, kBlue, rule);
            const Pixels pixels(picture);
            for (int y = 0; y < 100; ++y) {
                for (int x = 0; x < 100; ++x) {
                    const bool inClip = x >= 10 && x < 80 && y >= 10 && y < 90 && !(x >= 30 && x < 60 && y < 60);
                    const bool inHole = x >= 20 && x < 70 && y >= 20 && y < 80;
                    ASSERT_EQ(pixels.at(x, y), inClip && !inHole ? kBlue : kWhite) << x << ',' << y;
                }
            }
        }
    }
}

// The picture's pixels, 255 where nothing of a black line is.
PixelBuffer painted(const Picture& picture) {
    PixelBuffer buffer;
    buffer.clear(picture.width(), picture.height(), picture.background());
    Painter().paint(picture, buffer);
    for (const std::uint32_t pixel : buffer.pixels) EXPECT_EQ(pixel >> 24, 0xFFu);
    return buffer;
}

double inkOf(const PixelBuffer& buffer) {
    double ink = 0;
    for (const std::uint32_t pixel : buffer.pixels) ink += 255 - (pixel & 0xFF);
    return ink / 255;
}

TEST(ThinLines, CoverWhatTheAreaOfALineCovers) {
    for (const double width : {0.3, 0.7, 1.0, 1.5}) {
        for (int angle = 0; angle < 360; angle += 7) {
            const OdGeVector2d along(std::cos(angle * drawingdb::kPi / 180), std::sin(angle * drawingdb::kPi / 180));
            const OdGePoint2d from = OdGePoint2d(50.3, 50.8) + along * 5, to = from + along * 40;
            const OdGeVector2d side = along.perpVector() * (width / 2);
            Picture asLine(100, 100, kWhite), asArea(100, 100, kWhite);
            line(asLine, {from, to}, {0, width});
            const std::vector<Picture::Contour> corners = {{from + side, to + side, to - side, from - side}};
            asArea.addArea(corners, 0);
            const PixelBuffer thin = painted(asLine), area = painted(asArea);
            for (std::size_t i = 0; i < thin.pixels.size(); ++i) {
                const OdGePoint2d middle(static_cast<double>(i % 100) + 0.5, static_cast<double>(i / 100) + 0.5);
                const bool atEnd = middle.distanceTo(from) < 2 || middle.distanceTo(to) < 2;
                const int here = static_cast<int>(thin.pixels[i] & 0xFF),
                          there = static_cast<int>(area.pixels[i] & 0xFF);
                ASSERT_NEAR(here, there, atEnd ? 90 : 16) << width << " wide, " << angle << " degrees, pixel " << i;
            }
            EXPECT_NEAR(inkOf(thin), 40 * width, 0.4) << width << " wide, " << angle << " degrees";
        }
    }
}

TEST(ThinLines, HaveCornersWithoutGapsAndBlobs) {
    // A circle of short sides is as dark all around as its length says, and a straight line does not show its points.
    for (const double side : {0.3, 0.9, 2.5, 11.0}) {
        Picture circle(100, 100, kWhite), whole(100, 100, kWhite), parts(100, 100, kWhite);
        std::vector<OdGePoint2d> corners;
        const int count = static_cast<int>(drawingdb::kTwoPi * 40 / side);
        for (int i = 0; i <= count; ++i) {
            const double angle = drawingdb::kTwoPi * i / count;
            corners.emplace_back(50.2 + 40 * std::cos(angle), 50.1 + 40 * std::sin(angle));
        }
        circle.addPolyline(corners, {0, 1});
        EXPECT_NEAR(inkOf(painted(circle)), drawingdb::kTwoPi * 40, 3) << side;
        std::vector<OdGePoint2d> onLine;
        for (double t = 0; t <= 80; t += side) onLine.emplace_back(10 + t, 20 + t / 3);
        parts.addPolyline(onLine, {0, 1});
        line(whole, {onLine.front(), onLine.back()}, {0, 1});
        const PixelBuffer a = painted(parts), b = painted(whole);
        for (std::size_t i = 0; i < a.pixels.size(); ++i)
            ASSERT_NEAR(static_cast<int>(a.pixels[i] & 0xFF), static_cast<int>(b.pixels[i] & 0xFF), 16) << side;
    }
}

TEST(ThinLines, StayInTheirBuffer) {
    // What stands before the first row and behind the last is somebody else's.
    constexpr int kWidth = 20, kHeight = 10, kBeside = 100;
    const std::vector<std::uint32_t> white(kWidth * kHeight + 2 * kBeside, 0xFFFFFFFF);
    std::vector<std::uint32_t> pixels = white;
    ThinLines lines;
    lines.attach(pixels.data() + kBeside, kWidth, kHeight);
    std::vector<Picture::Point> star;
    for (int i = 0; i < 40; ++i) {
        const auto angle = static_cast<float>(i);
        star.push_back({10 + 1000 * std::cos(angle), 5 + 1000 * std::sin(angle)});
        star.push_back({10, 5});
    }
    lines.draw(star, 1.5, 0);
    for (std::size_t i = 1; i < star.size(); ++i) lines.draw(std::span(star).subspan(i - 1, 2), 1.5, 0);
    const auto painted = [&](std::ptrdiff_t from, std::ptrdiff_t to) {
        return to - from - std::count(pixels.begin() + from, pixels.begin() + to, 0xFFFFFFFF);
    };
    EXPECT_EQ(painted(kBeside, kBeside + kWidth * kHeight), kWidth * kHeight);
    EXPECT_EQ(painted(0, kBeside) + painted(kBeside + kWidth * kHeight, std::ssize(pixels)), 0);

    // Half over the right border, and over the left one: nothing comes into the next row's other end.
    for (const float x : {0.0f, static_cast<float>(kWidth)}) {
        pixels = white;
        const Picture::Point upright[] = {{x, -5}, {x, 5}, {x, 50}};
        lines.draw(upright, 1.5, 0);
        lines.draw(std::span(upright).first(2), 1.5, 0);
        int rows = 0;
        for (int y = 0; y < kHeight; ++y) {
            const auto row = std::span(pixels).subspan(static_cast<std::size_t>(kBeside + y * kWidth), kWidth);
            EXPECT_EQ(x == 0 ? row.back() : row.front(), 0xFFFFFFFF) << x << " in row " << y;
            rows += (x == 0 ? row.front() : row.back()) != 0xFFFFFFFF ? 1 : 0;
        }
        EXPECT_EQ(rows, kHeight) << x;
    }
}

}  // namespace
}  // namespace host
