// slide_decode SLIDE.sld
//
// Decodes a slide for a painter that adds up what it is told, and prints the sums, so that nothing can be left out.
#include <iostream>

#include "base/files.h"
#include "base/text.h"
#include "torvelcmd2/slides/slide_decoder.h"

namespace {

class Sums final : public slidePainter {
  public:
    void header(const SlideHeader&) override {}
    void color(std::int16_t number) override { colors += number; }
    void line(const SlidePoint& from, const SlidePoint& to) override {
        ++lines;
        points += from.x + from.y + to.x + to.y;
    }
    void fill(const SlidePoint* vertices, int count) override {
        ++fills;
        for (int i = 0; i < count; ++i) points += vertices[i].x + vertices[i].y;
    }

    std::int64_t colors = 0, lines = 0, fills = 0, points = 0;
};

}  // namespace

int main(int count, char** arguments) try {
    if (count != 2) {
        std::cerr << "usage: slide_decode SLIDE.sld\n";
        return 2;
    }
    Sums sums;
    torvel::decodeSlide(base::readFile(base::fromUtf8(arguments[1])).view(), sums);
    std::cout << sums.lines << " lines, " << sums.fills << " areas, " << sums.colors << ", " << sums.points << '\n';
    return 0;
} catch (const CXException&) {
    std::cerr << "no slide, or an undefined record\n";
    return 3;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 3;
}
