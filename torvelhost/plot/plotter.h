// Draws the entities of a drawing into a picture.
#pragma once

#include <map>
#include <span>
#include <unordered_set>

#include "torvelhost/plot/extents.h"
#include "torvelhost/plot/lettering.h"
#include "torvelhost/plot/picture.h"
#include "torvelhost/plot/rectangle.h"

class OdDbViewport;

namespace host {

class Plotter {
  public:
    /// All are referenced. Whoever measures blocks already gives how far they reach.
    Plotter(OdDbDatabase& database, Picture& picture, BlockBounds* blocks = nullptr, const Inks& inks = {});

    /// A space as `toPixels` shows it. `pixelsPerUnit` is the scale that linetypes are drawn in.
    void drawSpace(OdDbObjectId space, const OdGeMatrix3d& toPixels, double pixelsPerUnit);
    /// Entities of each kind that could not be drawn; one in a block counts once.
    const std::map<std::string, int>& notDrawn() const { return notDrawn_; }

    /// Whoever reads pictures for images from now on; it is referenced.
    void takeRasters(Rasters& rasters) { rasters_ = &rasters; }

    /// ---- piece by piece
    /// A space as it is seen, itself or through a floating viewport of the paper that it says it of.
    struct Pass {
        OdGeMatrix3d toPixels;  // of the paper for a viewport
        double pixelsPerUnit = 1;
        OdDbObjectId viewport;
    };
    /// False when nothing can be seen. Passes do not nest: it ends the one before.
    bool enter(const Pass& pass);
    /// What is seen of the space, from above; nothing when it is seen at an angle.
    std::optional<Rectangle> window() const;
    /// The power of two that lists are worked out for.
    int size() const;
    /// Another number for each set of layers that a viewport freezes; lists hold for one.
    std::size_t frozenLayers() const { return frozen_; }
    /// An entity of the space, also one in no drawing, as it is seen here.
    void draw(const OdDbEntity& entity);
    /// Adds to a list for the size of this pass what an entity shows, whatever part of the space is seen.
    void addTo(DisplayList& list, OdDbObjectId entity);
    void draw(const DisplayList& list, std::span<const DisplayList::Item> items);
    /// Whether a floating viewport shows anything.
    bool showsSpace(const OdDbViewport& viewport);
    /// In a pass of its paper.
    void drawFrame(const OdDbViewport& viewport);

    /// How everything stands out that is drawn from now on.
    void setEmphasis(Emphasis emphasis) { emphasis_ = emphasis; }

    /// ---- for a picture that is kept up to date
    /// Whoever measures blocks from now on.
    void measureBy(BlockBounds& blocks) { bounds_ = &blocks; }
    /// Forgets what blocks show.
    void forget(const std::unordered_set<OdDbObjectId>& blocks);
    void forgetAllLists();
    /// True, and all lists are forgotten, when texts are drawn in other fonts than before.
    bool lettersAnew();
    /// What is to be told of the fonts.
    const OddLetters& oddLetters() const { return lettering_.odd(); }
    const Rasters& rasters() const { return *rasters_; }
    std::size_t bytes() const { return bytes_; }  // of the lists of blocks
    /// Reads the layers anew, and forgets all lists.
    void readStyles();
    /// Reads the header's variables. Lists do not hold any more when it is another $ATTMODE.
    void readVariables();
    /// How far a picture reaches beyond its border, in pixels: what is farther away does not show.
    double margin() const { return 20 + 2 * markerSize(); }
    void beginPicture() { cells_ = 0; }

  private:
    /// Lists are worked out for a size on the picture: a power of two that is not below it.
    struct BlockAtSize {
        OdDbObjectId block;
        int size;
        std::size_t frozen;
        bool operator==(const BlockAtSize&) const = default;
    };
    struct Hash {
        std::size_t operator()(const BlockAtSize& key) const {
            return std::hash<OdDbObjectId>()(key.block) * 31 + static_cast<std::size_t>(key.size) + key.frozen * 1009;
        }
    };

    void setUp(Shapes& shapes);
    void add(Shapes& shapes, const OdDbEntity& entity);
    void drawSeen(OdDbObjectId space);
    void count(OdDbObjectId id, const std::string& kind);
    void makeRoom();
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
    void drawClipped(const DisplayList::Reference& reference, const OdGeMatrix3d& toPixels, const Style& style);
    void drawImage(const DisplayList::Image& image, const OdGeMatrix3d& toPixels, const Look& look);
    void drawLine(std::span<const OdGePoint2d> points, const Look& look);
    Look emphasized(Look look) const;
    void drawStroke(std::span<const OdGePoint2d> points, const Look& look);
    void drawEndless(const OdGePoint2d& from, const OdGePoint2d& to, bool isRay, const Look& look);
    double markerSize() const;
    void drawMarker(const OdGePoint2d& center, const Look& look);
    void leave();
    std::vector<OdGePoint2d> viewportClip(const OdDbViewport& viewport, OdDbObjectId boundary,
                                          const OdGeMatrix3d& paperToPixels);
    bool isVisible(const OdGeExtents3d& box, const OdGeMatrix3d& toPixels, double& size);

    OdDbDatabase& database_;
    Picture& picture_;
    Styles styles_;
    Lettering lettering_;
    std::optional<BlockBounds> ownBounds_;
    BlockBounds* bounds_;
    OdGeMatrix3d toPixels_;
    std::vector<std::vector<OdDbObjectId>> frozenLayers_ = {{}};  // sets of them; the first is empty
    std::size_t frozen_ = 0;                                      // which of them holds
    std::size_t bytes_ = 0;
    std::unordered_map<BlockAtSize, DisplayList, Hash> blockLists_;
    std::unordered_set<OdDbObjectId> counted_;
    std::map<std::string, int> notDrawn_;
    double pixelsPerUnit_ = 1.0;
    double spaceScale_ = 1.0;  // pixels for a unit of the space that is being drawn
    double linetypeScale_ = 1.0;
    int pointMode_ = 0;
    double pointSize_ = 0.0;
    int attributeMode_ = 1;
    bool wipeoutFrames_ = true;
    std::vector<OdDbObjectId> inside_;  // the blocks that are being drawn, outermost first
    std::size_t cells_ = 0;
    std::vector<OdGePoint2d> points_;
    DisplayList seen_;  // of the entity that is being drawn
    Emphasis emphasis_ = Emphasis::kPlain;
    Rasters ownRasters_;
    Rasters* rasters_ = &ownRasters_;
    bool imageFrames_ = true;
};

}  // namespace host
