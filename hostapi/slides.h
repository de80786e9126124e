// Slides: recorded vector pictures, and what they are drawn by and into.
#pragma once

#include <array>
#include <cstdint>
#include <exception>
#include <utility>

#include "drawingdb/ge.h"
#include "hostapi/text.h"

/// The first 31 bytes of a slide file, with the screen's size and the aspect ratio in little-endian order.
struct SlideHeader {
    std::array<std::uint8_t, 31> bytes;

    /// Size of the slide's screen in dots.
    std::uint16_t highX() const { return word(19); }
    std::uint16_t highY() const { return word(21); }
    /// Width to height of the screen as it looked.
    double aspectRatio() const { return (word(23) + 65536.0 * word(25)) * 1e-7; }
    std::uint16_t word(std::size_t offset) const {
        return static_cast<std::uint16_t>(bytes[offset] | bytes[offset + 1] << 8);
    }
};

/// In dots of the slide's screen, from its lower left corner.
struct SlidePoint {
    std::int16_t x;
    std::int16_t y;

    bool operator==(const SlidePoint&) const = default;
};

/// Takes a slide's records in their order.
class slidePainter {
  public:
    virtual void header(const SlideHeader& header) = 0;                   // slot 0; once, first of all
    virtual void color(std::int16_t number) = 0;                          // slot 1; 0 to 255
    virtual void line(const SlidePoint& from, const SlidePoint& to) = 0;  // slot 2
    virtual void fill(const SlidePoint* vertices, int count) = 0;         // slot 3; 3 to 10

  protected:
    ~slidePainter() = default;
};

/// Why a slide was not drawn, or not to its end.
class CXException : public std::exception {
  public:
    enum Code : int {
        kFileNotFound = 1,
        kInvalidSlideName = 2,
        kSlideNotInLibrary = 3,
        kNotASlide = 4,
        kUndefinedRecord = 5,
    };

    /// `resources` is the handle of the module that throws; `subject` the name or the place that is meant.
    CXException(Code code, void* resources, CXStringW subject)
        : code_(code), resources_(resources), subject_(std::move(subject)) {}

    Code code() const { return code_; }
    void* resources() const { return resources_; }
    const CXStringW& subject() const { return subject_; }
    const char* what() const noexcept override { return "slide error"; }

  private:
    Code code_;
    void* resources_;
    CXStringW subject_;
};

/// The view that slides are drawn into. Device coordinates are pixels from the middle of the view, y up.
class HostSlideView {
  public:
    virtual void size(int& width, int& height) = 0;  // slot 0; in pixels, above 0
    /// Slot 1. Empties the view; it shows what is drawn from now on until the next regeneration.
    virtual void prepare() = 0;
    virtual void setColor(std::uint32_t rgb) = 0;                         // slot 2; 0xRRGGBB, for what follows
    virtual void drawPolyline(const OdGePoint3d* points, int count) = 0;  // slot 3
    virtual void drawPolygon(const OdGePoint3d* points, int count) = 0;   // slot 4; filled

  protected:
    ~HostSlideView() = default;
};
