// Pictures as SVG: one path a shape, coordinates to a hundredth of a pixel.
//
//   <svg ...><rect .../>                                   the background
//   <g fill="none" stroke-linecap="round" ...>
//   <path stroke="#0000ff" stroke-width="1.5" d="M1 2L3 4M5 6L7 8"/>     polylines in one pen
//   <path fill="#ff0000" stroke="none" d="M1 2L3 4L5 6Z"/>                  an area, even-odd
//   <image id="i1" width="1" height="1" .../>                               a picture, where it is first needed
//   <clipPath id="c1"><path d="M1 2L3 4L5 6Z"/></clipPath>                  what shows of it in one place, and it there
//   <g clip-path="url(#c1)"><use href="#i1" transform="matrix(20 0 0 10 30 40)"/></g>
//   </g></svg>
#include <charconv>
#include <cmath>
#include <map>

#include "torvelhost/plot/picture.h"

namespace host {
namespace {

class SvgWriter {
  public:
    explicit SvgWriter(const Picture& picture) : picture_(picture) {}

    std::string write() {
        const std::string width = std::to_string(picture_.width()), height = std::to_string(picture_.height());
        out_ = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + width + "\" height=\"" + height +
               "\" viewBox=\"0 0 " + width + " " + height + "\">\n<rect width=\"" + width + "\" height=\"" + height +
               "\" fill=\"";
        color(picture_.background());
        out_ += "\"/>\n<g fill=\"none\" fill-rule=\"evenodd\" stroke-linecap=\"round\" stroke-linejoin=\"round\">\n";
        for (const Picture::Shape& shape : picture_.shapes()) this->shape(shape);
        out_ += "</g>\n</svg>\n";
        return std::move(out_);
    }

  private:
    void shape(const Picture::Shape& shape) {
        const bool isArea = shape.width == 0;
        if (const Picture::Image* const image = picture_.image(shape)) return this->image(shape, *image);
        out_ += isArea ? "<path fill=\"" : "<path stroke=\"";
        color(shape.color);
        if (isArea) {
            if (shape.opacity < 1) {
                out_ += "\" fill-opacity=\"";
                number(shape.opacity);
            }
            out_ += shape.rule == FillRule::kNonZero ? "\" fill-rule=\"nonzero\" d=\"" : "\" d=\"";
        } else {
            out_ += "\" stroke-width=\"";
            number(shape.width);
            out_ += "\" d=\"";
        }
        contours(shape, isArea);
        out_ += "\"/>\n";
    }

    void contours(const Picture::Shape& shape, bool isArea) {
        for (std::uint32_t i = 0; i < shape.contourCount; ++i) {
            char command = 'M';
            for (const Picture::Point& point : picture_.contour(shape.firstContour + i)) {
                out_ += command;
                number(point.x);
                out_ += ' ';
                number(point.y);
                command = 'L';
            }
            if (isArea) out_ += 'Z';
        }
    }

    void image(const Picture::Shape& shape, const Picture::Image& image) {
        const auto [entry, isNew] = images_.try_emplace(image.raster.get(), images_.size() + 1);
        const std::string name = "i" + std::to_string(entry->second), clip = "c" + std::to_string(++clips_);
        if (isNew) {
            const bool isJpeg = !image.raster->jpeg.empty();
            out_ += "<defs><image id=\"" + name +
                    "\" width=\"1\" height=\"1\" preserveAspectRatio=\"none\" style=\"image-orientation:none\" "
                    "href=\"data:" +
                    (isJpeg ? "image/jpeg" : "image/png") + ";base64,";
            base64(isJpeg ? image.raster->jpeg : pngBytes(*image.raster));
            out_ += "\"/></defs>\n";
        }
        out_ += "<clipPath id=\"" + clip + "\"><path clip-rule=\"evenodd\" d=\"";
        contours(shape, true);
        out_ += "\"/></clipPath><g clip-path=\"url(#" + clip + ")\"><use href=\"#" + name + "\" transform=\"matrix(";
        const auto& [corner, along, down] = image.place;
        for (const double value : {along.x, along.y, down.x, down.y, corner.x, corner.y}) {
            if (out_.back() != '(') out_ += ' ';
            number(static_cast<float>(value));
        }
        out_ += ")\"/></g>\n";
    }

    void base64(std::string_view bytes) {
        static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        for (std::size_t i = 0; i < bytes.size(); i += 3) {
            const std::string_view part = bytes.substr(i, 3);
            std::uint32_t bits = 0;
            for (std::size_t k = 0; k < 3; ++k)
                bits = bits << 8 | (k < part.size() ? static_cast<unsigned char>(part[k]) : 0U);
            for (std::size_t k = 0; k < 4; ++k) out_ += k > part.size() ? '=' : kDigits[bits >> (18 - 6 * k) & 63];
        }
    }

    void color(std::uint32_t rgb) {
        static constexpr char kDigits[] = "0123456789abcdef";
        out_ += '#';
        for (int shift = 20; shift >= 0; shift -= 4) out_ += kDigits[(rgb >> shift) & 15];
    }

    // Hundredths, without zeros at the end.
    void number(float value) {
        long hundredths = std::lround(value * 100.0);
        if (hundredths < 0) out_ += '-';
        hundredths = std::labs(hundredths);
        char digits[24];
        out_.append(digits, std::to_chars(digits, digits + sizeof digits, hundredths / 100).ptr);
        const long rest = hundredths % 100;
        if (rest == 0) return;
        out_ += '.';
        out_ += static_cast<char>('0' + rest / 10);
        if (rest % 10 != 0) out_ += static_cast<char>('0' + rest % 10);
    }

    const Picture& picture_;
    std::string out_;
    std::map<const Raster*, std::size_t> images_;
    std::size_t clips_ = 0;
};

}  // namespace

std::string svgText(const Picture& picture) { return SvgWriter(picture).write(); }

}  // namespace host
