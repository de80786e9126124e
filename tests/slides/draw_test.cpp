#include <gtest/gtest.h>
#include <sstream>

#include "torvelcmd2/slides/slide_draw.h"

namespace {

// A view that says what is drawn into it, in whole pixels.
class View final : public HostSlideView {
  public:
    View(int width, int height) : width_(width), height_(height) {}
    void size(int& width, int& height) override {
        width = width_;
        height = height_;
    }
    void prepare() override { drawn_ << "prepare"; }
    void setColor(std::uint32_t rgb) override { drawn_ << " | " << std::hex << rgb << std::dec; }
    void drawPolyline(const OdGePoint3d* points, int count) override { add("line", points, count); }
    void drawPolygon(const OdGePoint3d* points, int count) override { add("area", points, count); }
    std::string text() const { return drawn_.str(); }

  private:
    void add(const char* what, const OdGePoint3d* points, int count) {
        drawn_ << " | " << what;
        for (int i = 0; i < count; ++i) drawn_ << " " << points[i].x << "," << points[i].y;
    }

    int width_, height_;
    std::ostringstream drawn_;
};

SlideHeader header(std::uint16_t highX, std::uint16_t highY, double aspect) {
    SlideHeader header{};
    const auto stored = static_cast<std::uint32_t>(aspect * 1e7);
    const std::uint32_t words[] = {highX, highY, stored & 0xFFFF, stored >> 16};
    for (std::size_t i = 0; i < 4; ++i) {
        header.bytes[19 + 2 * i] = static_cast<std::uint8_t>(words[i]);
        header.bytes[20 + 2 * i] = static_cast<std::uint8_t>(words[i] >> 8);
    }
    return header;
}

TEST(SlideDraw, FitsTheSlideIntoTheMiddleOfTheView) {
    const struct {
        int width, height;
        std::uint16_t highX, highY;
        double aspect;
        const char* screen;  // its four corners
    } cases[] = {
        // Wider than the view: the width is filled; higher: the height; the same: the height.
        {1000, 1000, 400, 200, 2, "-500,-250 500,-250 500,250 -500,250"},
        {1000, 1000, 200, 400, 0.5, "-250,-500 250,-500 250,500 -250,500"},
        {800, 400, 400, 200, 2, "-400,-200 400,-200 400,200 -400,200"},
        // Dots that are not square.
        {1000, 1000, 400, 400, 2, "-500,-250 500,-250 500,250 -500,250"},
        {1000, 500, 400, 400, 0.5, "-125,-250 125,-250 125,250 -125,250"},
        // The middle is a whole dot.
        {300, 300, 3, 3, 1, "-100,-100 200,-100 200,200 -100,200"},
    };
    for (const auto& c : cases) {
        View view(c.width, c.height);
        torvel::slideDraw painter(view, 0x123456);
        painter.header(header(c.highX, c.highY, c.aspect));
        EXPECT_EQ(view.text(), std::string("prepare | 123456 | area ") + c.screen);
    }
}

TEST(SlideDraw, ShowsColoursAgainstTheBackgroundAndLeavesOutColourZero) {
    View view(100, 100);
    torvel::slideDraw painter(view, 0xFF0000);
    const SlidePoint corners[] = {{50, 50}, {60, 50}, {50, 60}};
    painter.header(header(100, 100, 1));
    painter.line(corners[0], corners[1]);
    painter.color(2);
    painter.fill(corners, 3);
    painter.color(0);
    painter.fill(corners, 3);
    painter.line(corners[0], corners[1]);
    painter.color(1);
    painter.line(corners[0], corners[2]);
    EXPECT_EQ(view.text(),
              "prepare | ff0000 | area -50,-50 50,-50 50,50 -50,50 | line 0,0 10,0 | ffff00 | area 0,0 10,0 0,10 | "
              "ffff | line 0,0 0,10");
}

}  // namespace
