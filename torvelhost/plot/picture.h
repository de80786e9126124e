// A picture: polylines and filled areas in pixels, one drawn over the other, and the files it goes into.
//
// The origin is the picture's upper left corner, y runs down; a pixel's middle is at a half. Colours are 0xRRGGBB.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "drawingdb/ge.h"
#include "torvelhost/plot/pixel_buffer.h"
#include "torvelhost/plot/raster.h"

namespace host {

/// What is inside an area of several contours: what an odd number of them surround, or what any does (contours that
/// turn opposite ways cancel out).
enum class FillRule : std::uint8_t { kEvenOdd, kNonZero };

struct Pen {
    std::uint32_t color = 0;
    double width = 1.0;  // pixels, above 0

    bool operator==(const Pen&) const = default;
};

class Picture {
  public:
    /// What is kept of a point: a thousandth of a pixel is exact enough in the largest picture.
    struct Point {
        float x, y;
    };
    /// Polylines in one pen, or (width 0) one area between contours.
    struct Shape {
        std::uint32_t color;
        float width;
        FillRule rule;
        float opacity;        // of an area: the part of what is under it that it covers
        std::uint32_t image;  // 0, or the number of the one that an area shows in place of its colour, from 1
        std::uint32_t firstContour, contourCount;
    };
    using Contour = std::vector<OdGePoint2d>;
    struct Image {
        std::shared_ptr<const Raster> raster;
        RasterPlace place;
    };
    /// What a text says and where, for those who search; it does not show.
    struct Text {
        std::u32string characters;
        OdGePoint2d start, end, top;  // of the baseline; above its start, as high as a capital
    };

    Picture(int width, int height, std::uint32_t background);
    int width() const { return width_; }
    int height() const { return height_; }
    std::uint32_t background() const { return background_; }

    // ---- drawing. What lies outside the picture and the clip is cut off; what reaches farther than 1e13 pixels, or is
    // not finite, is not drawn.

    /// Dashes are polylines of their own. Ends and corners are round; points that are all in one place give a dot.
    void addPolyline(std::span<const OdGePoint2d> points, const Pen& pen);
    /// Each contour is closed by itself.
    void addArea(std::span<const Contour> contours, std::uint32_t color, FillRule rule = FillRule::kEvenOdd);

    /// An area that lets what is under it be seen; even-odd. The opacity is from 0 to 1.
    void addTint(std::span<const Contour> contours, std::uint32_t color, double opacity);

    /// What lies in these contours of a raster; even-odd. One that is seen from its edge is not drawn.
    void addImage(std::span<const Contour> contours, const Image& image);

    /// Kept where texts are.
    void addText(Text text);

    /// Cuts off what is drawn from now on at a polygon.
    void setClip(const Contour& polygon);
    void clearClip();
    /// The polygon that it is cut off at now.
    Contour clip() const;
    /// What can be seen of the picture: nothing outside this box shows.
    OdGePoint2d clipLow() const { return low_; }
    OdGePoint2d clipHigh() const { return high_; }

    /// ---- for pictures that are written while they are drawn
    /// Whenever there is much, and at giveAway(), it is taken, and then forgotten. Texts are kept from now on.
    void setTaker(std::function<void(const Picture&)> taker) { taker_ = std::move(taker); }
    void giveAway();
    bool keepsTexts() const { return taker_ != nullptr; }

    /// ---- what was drawn
    /// Forgets it; the clip stays.
    void clear();
    const std::vector<Shape>& shapes() const { return shapes_; }
    const std::vector<Text>& texts() const { return texts_; }
    /// What a shape shows; null for one colour.
    const Image* image(const Shape& shape) const { return shape.image == 0 ? nullptr : &images_[shape.image - 1]; }
    std::span<const Point> contour(std::uint32_t index) const;

  private:
    void giveAwayMuch();
    void addCutAtBox(std::span<const OdGePoint2d> points, const Pen& pen);
    void addCutAtPolygon(std::span<const OdGePoint2d> points, const Pen& pen);
    void beginShape(std::uint32_t color, float width);
    void addPoint(const OdGePoint2d& point);
    void endPolyline(const Pen& pen, std::size_t firstPoint);
    void addDot(const OdGePoint2d& center, const Pen& pen);
    void endContour();
    void addContour(const Contour& contour);
    void addInTriangles(const Contour& contour);

    int width_, height_;
    std::uint32_t background_;
    OdGePoint2d low_, high_;  // of the clip
    Contour clip_;            // empty: the box alone
    bool clipIsConvex_ = true;
    std::vector<Shape> shapes_;
    std::vector<std::uint32_t> contourEnds_;
    std::vector<Point> points_;
    std::vector<Text> texts_;
    std::vector<Image> images_;
    std::function<void(const Picture&)> taker_;
};

/// The file's contents.
std::string svgText(const Picture& picture);
std::string pngBytes(const Picture& picture);
std::string pngBytes(const PixelBuffer& buffer);
std::string pngBytes(const Raster& raster);

}  // namespace host
