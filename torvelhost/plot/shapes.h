// From entities to what they show. Curves become polylines as fine as can be seen.
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "drawingdb/attribute.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/leader.h"
#include "drawingdb/mtext.h"
#include "drawingdb/old_polyline.h"
#include "drawingdb/text.h"
#include "drawingdb/text_metrics.h"
#include "drawingdb/wipeout.h"
#include "torvelhost/plot/display_list.h"
#include "torvelhost/plot/groups.h"
#include "torvelhost/plot/lettering.h"

namespace host {

class ProxyBytes;

/// The part of a reference that its block shows.
DisplayList::Reference referenceOf(const OdDbBlockReference& reference);

/// Where single-line text stands. Justified text hangs on its alignment point in this font too, wherever another one
/// made it begin.
drawingdb::TextGeometry geometryOf(const OdDbText& text, const OdString& shown);
/// The corners of the box around it, in the coordinates that the text lies in.
std::vector<OdGePoint3d> cornersOf(const OdDbText& text, const OdString& shown);

/// Widens the box by what a text shows: of a definition that is not constant its tag.
void addShownText(const OdDbText& text, OdGeExtents3d& box);

/// The box around an entity's geometry and the width of a polyline's line; false for what has none.
bool boxOf(const OdDbEntity& entity, OdGeExtents3d& box);

class Shapes {
  public:
    /// `pixel` is the length of a pixel in the coordinates of what is added; 0: everything as fine as it gets.
    Shapes(Styles& styles, DisplayList& list, double pixel) : styles_(styles), list_(list), pixel_(pixel) {}

    /// In a block, definitions of attributes show only when they are constant.
    void setInBlock(bool inBlock) { inBlock_ = inBlock; }
    /// 0: no attribute shows, 1: all but invisible ones, 2: all.
    void setAttributeMode(int mode) { attributeMode_ = mode; }
    void setWipeoutFrames(bool shown) { wipeoutFrames_ = shown; }
    /// What texts are drawn in, referenced; all in the built-in font without it.
    void setLettering(Lettering* lettering) { lettering_ = lettering; }
    /// What images show, referenced; their frames alone without it.
    void setRasters(Rasters* rasters, bool withFrames) {
        rasters_ = rasters;
        imageFrames_ = withFrames;
    }
    /// Whether what texts say is added beside their strokes.
    void setTexts(bool added) { texts_ = added; }
    /// Whether what is on layers that are off or frozen is added too.
    void setHiddenToo(bool added) { hiddenToo_ = added; }
    /// Whether one of the entities shows a block by a name that no block has.
    bool missesBlock() const { return missesBlock_; }
    /// Leaves out what lies beside a box, seen from above, as far as that is quickly told.
    void setWindow(const OdGeExtents3d& window) { window_ = window; }

    /// False when the entity cannot be drawn: its kind is not known, or what it shows (its block, its boundary) is not
    /// there. What is invisible, or empty, is drawn.
    bool add(const OdDbEntity& entity);

  private:
    using Corners = std::vector<OdGePoint3d>;
    struct Vertex {  // of a flat polyline; widths are across it, at both ends of the segment that follows
        OdGePoint2d point;
        double bulge = 0, startWidth = 0, endWidth = 0;
    };
    struct WideSegment {
        OdGePoint2d start, end;
        double startWidth = 0, endWidth = 0;
    };

    /// curve_shapes.cpp
    void addCircle(const OdDbCircle& circle, double start, double sweep);
    void addCurve(const OdDbCurve& curve);
    void addPolyline(const OdDbPolyline& polyline);
    void add2dPolyline(const OdDb2dPolyline& polyline);
    void addFlatPolyline(const std::vector<Vertex>& vertices, bool closed, bool throughout, const OdGeMatrix3d& toWorld,
                         double elevation);
    void addConstructionLine(const OdDbConstructionLine& line);
    /// Ends with the point at `to`; the point at `from` is there already.
    void addBulge(const OdGePoint2d& from, const OdGePoint2d& to, double bulge,
                  const std::function<void(const OdGePoint2d&)>& add) const;
    void addWide(const std::vector<WideSegment>& segments, bool closed, const OdGeMatrix3d& toWorld, double elevation);
    int stepsOf(double radius, double sweep) const;

    /// text_shapes.cpp
    void addText(const OdDbText& text, const OdString& shown);
    void addAttributeText(const OdDbAttributeText& text);
    void addMText(const OdDbMText& text);
    struct SetText {
        drawingdb::MTextLayout layout;  // in the fonts that it is drawn in
        Typeface* font = nullptr;       // of its style
        bool outlined = false;
    };
    SetText set(const OdDbMText& text);
    /// Letters in their places, and what is drawn of a run of multi-line text: a row, or the two of a stack and the
    /// line between them. Of a run that is written both ways there may be several.
    struct SetRow {
        drawingdb::TextRow row;
        std::vector<Lettering::Letter> letters;  // one for each of the row's characters
    };
    struct SetRun {
        const drawingdb::MTextPlacedRun* run = nullptr;
        std::vector<SetRow> rows;
        std::vector<drawingdb::Polyline2d> lines;
    };
    SetRun setRun(const drawingdb::MTextPlacedRun& run, Typeface* font);
    /// Line by line. Runs that are written the other way, or beside such, are moved to where they stand.
    std::vector<std::vector<SetRun>> setParagraph(std::span<drawingdb::MTextLine> lines, Typeface* font);
    /// `runs` are those of each of the paragraph's characters. Blanks from `wordsEnd` on end the line.
    std::vector<SetRun> setShapedLine(drawingdb::MTextLine& line, std::span<const Lettering::Letter> letters,
                                      std::size_t wordsEnd, std::span<drawingdb::MTextPlacedRun* const> runs,
                                      Typeface* font);
    /// False when all of it is in the built-in font.
    bool addOutlineText(const OdDbText& text, const OdString& shown);
    void addSaid(const OdString& shown, const OdGePoint3d& start, const OdGePoint3d& end, const OdGePoint3d& top);
    bool isInStrokes(Typeface* font, const drawingdb::MTextLayout& layout) const;
    /// `place` takes points of the row's plane to where they are drawn.
    template <class Place>
    void addRow(const drawingdb::TextRow& row, std::span<const Lettering::Letter> letters, const Place& place);
    bool isBesideWindow(const OdDbText& text, const OdString& shown) const;
    bool isTooSmall(double height) const { return height < 1.3 * pixel_; }

    /// reference_shapes.cpp
    bool addReference(const OdDbBlockReference& reference);
    void addWipeout(const OdDbWipeout& wipeout);
    bool addCarried(const OdDbEntity& entity, const std::string& kind);
    bool addBlockAt(OdDbObjectId block, const OdGeMatrix3d& placement);
    bool addBlockNamed(const OdString& name, const OdGeMatrix3d& placement);
    bool addDimension(const std::vector<PlotGroup>& groups);
    bool addTable(const std::vector<PlotGroup>& groups);
    bool addImage(const std::vector<PlotGroup>& groups);
    std::shared_ptr<const Raster> rasterOf(const std::vector<PlotGroup>& image,
                                           const std::vector<PlotGroup>& definition);
    void addSolid(const std::vector<PlotGroup>& groups);
    void addFace(const std::vector<PlotGroup>& groups);

    /// leader_shapes.cpp
    void addLeaderParts(const drawingdb::LeaderParts& parts);
    void addMultiLeader(const std::vector<PlotGroup>& groups);
    void addMultiLine(const std::vector<PlotGroup>& groups);

    /// proxy_shapes.cpp. False when there are none, or some that are not known, or damaged.
    bool addProxyGraphics(const std::vector<PlotGroup>& groups);
    bool addProxyRecord(std::uint32_t kind, ProxyBytes& record, bool isFilled);

    /// tolerance_shapes.cpp
    void addTolerance(const OdDbEntity& tolerance, const std::vector<PlotGroup>& groups);

    /// mesh_shapes.cpp. False for another kind of polyline.
    bool addMesh(const OdDbEntity& polyline, const std::vector<PlotGroup>& groups);
    void addPolygonMesh(const OdDbEntity& polyline, const std::vector<PlotGroup>& groups, std::int64_t flags);
    void addPolyfaceMesh(const OdDbEntity& polyline);
    /// False when its faces are damaged; those before the damage are drawn.
    bool addSubdivisionMesh(const std::vector<PlotGroup>& groups);

    /// hatch_shapes.cpp
    bool addHatch(const std::vector<PlotGroup>& groups);

    Styles& styles_;
    DisplayList& list_;
    double pixel_;
    Lettering* lettering_ = nullptr;
    bool inBlock_ = false;
    int attributeMode_ = 1;
    Rasters* rasters_ = nullptr;
    bool wipeoutFrames_ = true, imageFrames_ = true;
    bool texts_ = false;
    bool hiddenToo_ = false;
    bool missesBlock_ = false;
    std::optional<OdGeExtents3d> window_;
};

}  // namespace host
