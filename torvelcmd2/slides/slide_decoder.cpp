// Reads the header and the records of a slide; their layout stands in the header file.
#include "torvelcmd2/slides/slide_decoder.h"

#include <algorithm>
#include <array>

#include "base/format.h"
#include "hostapi/module_functions.h"
#include "torvelcmd2/frame/module_instance.h"
#include "torvelcmd2/slides/slide_file.h"

namespace torvel {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view kSlideMark = "AutoCAD Slide\r\n\x1A\0"sv;
constexpr std::uint16_t kLittleEndian = 0x1234;
constexpr std::uint16_t kBigEndian = 0x3412;

constexpr unsigned kLastVector = 0x7F;
constexpr unsigned kOffsetVector = 0xFB;
constexpr unsigned kEndOfSlide = 0xFC;
constexpr unsigned kSolidFill = 0xFD;
constexpr unsigned kCommonEndpoint = 0xFE;
constexpr unsigned kColor = 0xFF;

constexpr int kLeastVertices = 3;
constexpr int kMostVertices = 10;

[[noreturn]] void fail(CXException::Code code, const OdString& subject = OdString()) {
    throw CXException(code, GetModuleResourceHandle(), subject);
}

// All arithmetic of coordinates wraps around at 16 bits.
SlidePoint moved(SlidePoint point, int dx, int dy) {
    return {static_cast<std::int16_t>(point.x + dx), static_cast<std::int16_t>(point.y + dy)};
}

// The header as painters get it. Throws unless it is a slide's.
SlideHeader readHeader(std::string_view bytes, bool& isBigEndian) {
    SlideHeader header;
    if (bytes.size() < header.bytes.size() || !bytes.starts_with(kSlideMark)) fail(CXException::kNotASlide);
    std::copy_n(bytes.begin(), header.bytes.size(), header.bytes.begin());
    const std::uint16_t test = header.word(29);
    if (test != kLittleEndian && test != kBigEndian) fail(CXException::kNotASlide);
    isBigEndian = test == kBigEndian;
    if (isBigEndian) {
        const auto swap = [&header](std::size_t offset, std::size_t size) {
            std::reverse(header.bytes.data() + offset, header.bytes.data() + offset + size);
        };
        swap(19, 2);
        swap(21, 2);
        swap(23, 4);
    }
    return header;
}

class Records {
  public:
    Records(std::string_view bytes, bool isBigEndian, slidePainter& painter)
        : bytes_(bytes), high_(isBigEndian ? 0 : 1), painter_(painter) {}

    void decodeFrom(std::size_t start) {
        at_ = start;
        while (has(2) && decodeRecord()) {
        }
    }

  private:
    bool has(std::size_t count) const { return bytes_.size() - at_ >= count; }
    int byteAt(std::size_t i) const { return static_cast<unsigned char>(bytes_[at_ + i]); }
    int signedByte(std::size_t i) const { return static_cast<std::int8_t>(byteAt(i)); }
    std::int16_t word(std::size_t i) const {
        return static_cast<std::int16_t>(byteAt(i + high_) << 8 | byteAt(i + 1 - high_));
    }
    unsigned kind() const { return static_cast<unsigned>(byteAt(high_)); }
    std::size_t low() const { return 1 - high_; }

    // False at the end of the slide, and where the data ends inside the record.
    bool decodeRecord() {
        if (kind() <= kLastVector) return has(8) && vector();
        switch (kind()) {
            case kOffsetVector:
                return has(5) && offsetVector();
            case kEndOfSlide:
                return false;
            case kSolidFill:
                return has(6) && solidFill();
            case kCommonEndpoint:
                return has(3) && commonEndpoint();
            case kColor:
                painter_.color(static_cast<std::int16_t>(byteAt(low())));
                return advance(2);
            default:
                // Nobody knows how long it is, so nothing behind it can be understood.
                fail(CXException::kUndefinedRecord, base::format(L"0x%02X at byte %I64d", kind(), std::int64_t(at_)));
        }
    }

    bool advance(std::size_t count) {
        at_ += count;
        return true;
    }

    bool vector() {
        const SlidePoint from{word(0), word(2)};
        painter_.line(from, {word(4), word(6)});
        last_ = from;
        return advance(8);
    }

    bool offsetVector() {
        const SlidePoint from = moved(last_, signedByte(low()), signedByte(2));
        painter_.line(from, moved(last_, signedByte(3), signedByte(4)));
        last_ = from;
        return advance(5);
    }

    bool commonEndpoint() {
        const SlidePoint to = moved(last_, signedByte(low()), signedByte(2));
        painter_.line(last_, to);
        last_ = to;
        return advance(3);
    }

    bool solidFill() {
        const int count = word(2);
        advance(6);
        // What follows a count that cannot be is taken for records like any others.
        if (count < kLeastVertices || count > kMostVertices) return true;
        if (!has(6 * static_cast<std::size_t>(count))) return false;
        std::array<SlidePoint, kMostVertices> vertices;
        for (int i = 0; i < count; ++i) {
            const std::int16_t y = word(4);
            // The sign is a mark of the format's; the place is that of the number without it.
            vertices[static_cast<std::size_t>(i)] = {word(2), static_cast<std::int16_t>(y < 0 ? -y : y)};
            advance(6);
        }
        painter_.fill(vertices.data(), count);
        return true;
    }

    std::string_view bytes_;
    std::size_t at_ = 0;
    std::size_t high_;  // place of a word's high byte: 0 or 1
    slidePainter& painter_;
    SlidePoint last_{0, 0};
};

}  // namespace

void decodeSlide(std::string_view bytes, slidePainter& painter) {
    bool isBigEndian = false;
    const SlideHeader header = readHeader(bytes, isBigEndian);
    painter.header(header);
    Records(bytes, isBigEndian, painter).decodeFrom(header.bytes.size());
}

}  // namespace torvel

void loadAndDrawVSlide(const CXStringW& name, slidePainter* painter) {
    if (painter) torvel::decodeSlide(torvel::loadSlide(name), *painter);
}
static_assert(hostapi::fits(hostapi::loadAndDrawVSlide, &loadAndDrawVSlide));
