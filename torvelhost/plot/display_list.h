// What entities show, in the coordinates they live in: worked out once, drawn wherever it appears.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "drawingdb/ge.h"
#include "drawingdb/object_id.h"
#include "torvelhost/plot/raster.h"
#include "torvelhost/plot/style.h"

namespace host {

class DisplayList {
  public:
    enum class Kind : std::uint8_t {
        kPolyline,  // in the entity's linetype, which runs on round corners
        kSides,     // the same, but the linetype begins anew at each side: a contour a side, end to end
        kStrokes,   // many polylines, always continuous
        kArea,      // even-odd
        kUnion,     // areas that overlap
        kTint,      // even-odd, filled with lines that are too close to be told apart
        kMask,      // an area of the paper's colour
        kRay,       // two points: where it begins, and another
        kInfiniteLine,
        kMarker,  // a point
        kText,    // what a text says, for those who search; its strokes are drawn by themselves
        kImage,
        kReference,
    };
    struct Item {
        Kind kind;
        std::uint32_t style, first, count;  // contours; of a reference, a text or an image: which one
        double ink = 0;                     // of a tint: the length of the lines in a unit of area
    };
    struct Text {
        std::u32string characters;
        OdGePoint3d start, end;  // of its baseline
        OdGePoint3d top;         // of a capital at the start
    };
    struct Reference {
        OdDbObjectId block;
        OdGeMatrix3d transform;  // of the first cell, from the block's coordinates
        OdGeVector3d columnStep, rowStep;
        int columns = 1, rows = 1;
        std::uint32_t attributes = 0;  // as many items behind the reference stand in each cell as it does
        /// What of the block shows, a polygon in the block's coordinates seen from above; null: all of it.
        std::shared_ptr<const std::vector<OdGePoint3d>> clip;
    };

    struct Image {
        std::shared_ptr<const Raster> raster;
        OdGePoint3d corner;                              // the upper left one
        OdGeVector3d along, down;                        // its sides
        std::vector<std::vector<OdGePoint3d>> outlines;  // what shows of it, even-odd
    };

    /// Goes on in this style.
    void setStyle(const Style& style);
    const Style& style() const { return styles_.back(); }

    /// An item is begun, its contours are added point by point, and it is ended.
    void begin(Kind kind);
    void addPoint(const OdGePoint3d& point) { points_.push_back(point); }
    void endContour();
    void end();
    void add(Kind kind, std::span<const OdGePoint3d> contour);
    /// Makes of the tint added last one for each of these lengths of lines in a unit of area, one over the other.
    void setInk(std::span<const double> lengths);
    void addText(Text text);
    /// What it covers does not count for the box around the list.
    void addImage(Image image);
    /// Returns its number; what is added from here to endAttributes belongs to its attributes.
    std::size_t addReference(const Reference& reference);
    void endAttributes(std::size_t reference);
    void clear();

    const std::vector<Item>& items() const { return items_; }
    const std::vector<Style>& styles() const { return styles_; }
    const Text& text(const Item& item) const { return texts_[item.first]; }
    const Image& image(const Item& item) const { return images_[item.first]; }
    const Reference& reference(const Item& item) const { return references_[item.first]; }
    std::span<const OdGePoint3d> contour(std::size_t index) const;
    std::size_t bytes() const;
    /// Around everything but references and what has no end. Not valid when there is nothing else.
    OdGeExtents3d box() const;

  private:
    std::vector<Item> items_;
    std::vector<Style> styles_;
    std::vector<OdGePoint3d> points_;
    std::vector<std::uint32_t> contourEnds_;
    std::vector<Text> texts_;
    std::vector<Image> images_;
    std::vector<Reference> references_;
};

}  // namespace host
