// The input is a slide. It is decoded and drawn into a view.
#include <array>

#include "fuzz/fuzz.h"
#include "torvelcmd2/slides/slide_decoder.h"
#include "torvelcmd2/slides/slide_draw.h"

namespace {

using fuzz::require;

// Looks at every point it is given.
class View final : public HostSlideView {
  public:
    void size(int& width, int& height) override { width = height = 100; }
    void prepare() override {}
    void setColor(std::uint32_t rgb) override { require(rgb <= 0xFFFFFF, "colours have three bytes"); }
    void drawPolyline(const OdGePoint3d* points, int count) override { see(points, count, 2); }
    void drawPolygon(const OdGePoint3d* points, int count) override { see(points, count, 3); }

    double sum = 0;

  private:
    void see(const OdGePoint3d* points, int count, int least) {
        require(count >= least && count <= 10, "a shape has its points");
        for (int i = 0; i < count; ++i) sum += points[i].x + points[i].y;
    }
};

// Counts what it passes on.
class Watcher final : public slidePainter {
  public:
    explicit Watcher(slidePainter& next) : next_(next) {}
    void header(const SlideHeader& header) override {
        require(headers++ == 0 && records == 0, "the header comes once, before the records");
        next_.header(header);
    }
    void color(std::int16_t number) override {
        require(number >= 0 && number <= 255, "a colour is a byte");
        ++records;
        next_.color(number);
    }
    void line(const SlidePoint& from, const SlidePoint& to) override {
        ++records;
        next_.line(from, to);
    }
    void fill(const SlidePoint* vertices, int count) override {
        require(count >= 3 && count <= 10, "an area has three to ten vertices");
        ++records;
        next_.fill(vertices, count);
    }

    std::size_t headers = 0;
    std::size_t records = 0;

  private:
    slidePainter& next_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    View view;
    torvel::slideDraw painter(view, 0);
    Watcher watcher(painter);
    try {
        torvel::decodeSlide(fuzz::bytesOf(data, size), watcher);
        require(watcher.headers == 1, "a slide has a header");
    } catch (const CXException& error) {
        require((watcher.headers == 1) == (error.code() == CXException::kUndefinedRecord), "no slide draws nothing");
    }
    require(watcher.records * 2 <= size, "a record has two bytes at least");
    return 0;
}
