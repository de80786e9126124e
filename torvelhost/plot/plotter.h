// Draws the entities of a drawing into a picture.
#pragma once

#include <functional>
#include <map>
#include <span>
#include <unordered_set>

#include "torvelhost/plot/extents.h"
#include "torvelhost/plot/picture.h"

class OdDbViewport;

namespace host {

class Plotter {
  public:
    Plotter(OdDbDatabase& database, Picture& picture);

    /// A space as `toPixels` shows it. `pixelsPerUnit` is the scale that linetypes are drawn in.
    void drawSpace(OdDbObjectId space, const OdGeMatrix3d& toPixels, double pixelsPerUnit);
    /// Entities, also ones in no drawing, in the same way; through a floating viewport of the space, if any.
    void drawEntities(std::span<const OdDbEntity* const> entities, const OdGeMatrix3d& toPixels, double pixelsPerUnit,
                      OdDbObjectId viewport);
    /// Entities of spaces that are left out. They are referenced.
    void hide(const std::unordered_set<OdDbObjectId>& entities) { left_ = &entities; }
    /// How everything stands out that is drawn from now on.
    enum class Emphasis { kPlain, kHover, kSelected };
    void setEmphasis(Emphasis emphasis) { emphasis_ = emphasis; }
    /// Entities of each kind that could not be drawn; one in a block counts once.
    const std::map<std::string, int>& notDrawn() const { return notDrawn_; }

  private:
    /// Lists are worked out for a size on the picture: a power of two that is not below it.
    struct BlockAtSize {
        OdDbObjectId block;
        int size;
        bool operator==(const BlockAtSize&) const = default;
    };
    struct Hash {
        std::size_t operator()(const BlockAtSize& key) const {
            return std::hash<OdDbObjectId>()(key.block) * 31 + static_cast<std::size_t>(key.size);
        }
    };

    void setUp(Shapes& shapes) const;
    void add(Shapes& shapes, OdDbObjectId id);
    void count(OdDbObjectId id, const std::string& kind);
    const DisplayList& blockList(OdDbObjectId block, double scale);
    void drawList(const DisplayList& list, const OdGeMatrix3d& toPixels, const Style* inside);
    void drawItem(const DisplayList& list, const DisplayList::Item& item, const OdGeMatrix3d& toPixels,
                  const Look& look);
    void drawItems(const DisplayList& list, std::span<const DisplayList::Item> items, const OdGeMatrix3d& toPixels,
                   const Style* inside);
    /// `attributes` are the items of the list that are its attributes.
    void drawReference(const DisplayList& list, const DisplayList::Reference& reference,
                       std::span<const DisplayList::Item> attributes, const OdGeMatrix3d& toPixels, const Style& style,
                       const Style* inside);
    void drawCell(OdDbObjectId block, const OdGeMatrix3d& toPixels, const Style& style);
    void drawLine(std::span<const OdGePoint2d> points, const Look& look);
    Look emphasized(Look look) const;
    void drawStroke(std::span<const OdGePoint2d> points, const Look& look);
    void drawEndless(const OdGePoint2d& from, const OdGePoint2d& to, bool isRay, const Look& look);
    double markerSize() const;
    void drawMarker(const OdGePoint2d& center, const Look& look);
    void drawViewport(const OdDbViewport& viewport, const OdGeMatrix3d& paperToPixels);
    /// What is drawn in there is seen through the viewport.
    void through(const OdDbViewport& viewport, const OdGeMatrix3d& paperToPixels,
                 const std::function<void(const OdGeMatrix3d& toPixels, double pixelsPerUnit)>& draw);
    std::vector<OdGePoint2d> viewportClip(const OdDbViewport& viewport, OdDbObjectId boundary,
                                          const OdGeMatrix3d& paperToPixels);
    bool isVisible(const OdGeExtents3d& box, const OdGeMatrix3d& toPixels, double& size) const;

    OdDbDatabase& database_;
    Picture& picture_;
    Styles styles_;
    BlockBounds bounds_;
    std::unordered_map<BlockAtSize, DisplayList, Hash> blockLists_;
    std::unordered_set<OdDbObjectId> counted_;
    std::map<std::string, int> notDrawn_;
    double pixelsPerUnit_ = 1.0;
    double spaceScale_ = 1.0;  // pixels for a unit of the space that is being drawn
    double linetypeScale_;
    int pointMode_;
    double pointSize_;
    int attributeMode_;
    bool wipeoutFrames_;
    std::vector<OdDbObjectId> inside_;  // the blocks that are being drawn, outermost first
    std::size_t cells_ = 0;
    bool inViewport_ = false;
    std::vector<OdGePoint2d> points_;
    const std::unordered_set<OdDbObjectId>* left_ = nullptr;
    Emphasis emphasis_ = Emphasis::kPlain;
};

}  // namespace host
