// Draws spaces: display lists of blocks for their size on the picture, viewports, and what hides what.
#include "torvelhost/plot/plotter.h"

#include <cmath>

#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/viewport.h"
#include "torvelhost/plot/clip.h"
#include "torvelhost/plot/cut.h"
#include "torvelhost/plot/dashes.h"

namespace host {
namespace {

using Kind = DisplayList::Kind;

// Blocks that hold blocks many times over would never come to an end.
constexpr std::size_t kMostCells = 20000000;
// Of lists of blocks no more is kept.
constexpr std::size_t kMostBytes = 192 << 20;

constexpr std::uint32_t kHoverColor = 0x40A0FF, kSelectedColor = 0x1050D0;
constexpr double kDashes[] = {5, -3};  // pixels

OdGePoint2d flat(const OdGeMatrix3d& m, const OdGePoint3d& p) {
    return {m.entry[0][0] * p.x + m.entry[0][1] * p.y + m.entry[0][2] * p.z + m.entry[0][3],
            m.entry[1][0] * p.x + m.entry[1][1] * p.y + m.entry[1][2] * p.z + m.entry[1][3]};
}

// The longest that a unit gets.
double scaleOf(const OdGeMatrix3d& m) {
    return std::sqrt(
        std::max({m.xAxis().xy().lengthSquared(), m.yAxis().xy().lengthSquared(), m.zAxis().xy().lengthSquared()}));
}

// What the picture shows of a plane seen from above, or nothing when the plane is seen at an angle.
std::optional<OdGeExtents3d> windowOf(const Picture& picture, const OdGeMatrix3d& toPixels) {
    const OdGeVector2d x = toPixels.xAxis().xy(), y = toPixels.yAxis().xy();
    const double area = x.crossProduct(y);
    if (!toPixels.zAxis().xy().isZeroLength() || area == 0) return std::nullopt;
    constexpr double kMargin = 50;  // pens reach in from outside
    constexpr double kFar = 1e300;
    OdGeExtents3d window;
    const OdGePoint2d &low = picture.clipLow(), &high = picture.clipHigh();
    for (const OdGePoint2d& corner :
         {OdGePoint2d(low.x - kMargin, low.y - kMargin), OdGePoint2d(high.x + kMargin, low.y - kMargin),
          OdGePoint2d(low.x - kMargin, high.y + kMargin), OdGePoint2d(high.x + kMargin, high.y + kMargin)}) {
        const OdGeVector2d d = corner - OdGePoint2d(toPixels.entry[0][3], toPixels.entry[1][3]);
        const double u = d.crossProduct(y) / area, v = x.crossProduct(d) / area;
        window.addPoint({u, v, -kFar}).addPoint({u, v, kFar});
    }
    return window;
}

// Unless the drawing says that they do not show.
bool showsImageFrames(const OdDbDatabase& database) {
    const auto named = database.namedObjectsDictionaryId().openIf<OdDbDictionary>();
    const auto variables = named ? named->getAt(L"ACAD_IMAGE_VARS").openIf<OdDbObject>() : OdSmartPtr<OdDbObject>();
    const std::vector<PlotGroup> groups = variables ? groupsOf(*variables) : std::vector<PlotGroup>();
    const PlotGroup* const frames = findGroup(groups, 70);
    return !frames || frames->integer != 0;
}

}  // namespace

Plotter::Plotter(OdDbDatabase& database, Picture& picture, BlockBounds* blocks, const Inks& inks)
    : database_(database),
      picture_(picture),
      styles_(database, inks),
      lettering_(database),
      bounds_(blocks),
      ownRasters_(database.fileName()) {
    if (!bounds_) bounds_ = &ownBounds_.emplace(styles_);
    readVariables();
}

void Plotter::forget(const std::unordered_set<OdDbObjectId>& blocks) {
    std::erase_if(
        blockLists_,
        [&](const auto& entry) {
            if (blocks.count(entry.first.block) == 0) return false;
            bytes_ -= entry.second.bytes();
            return true;
        });
}

void Plotter::forgetAllLists() {
    blockLists_.clear();
    bytes_ = 0;
}

void Plotter::readStyles() {
    styles_ = Styles(database_, styles_.inks());
    lettering_.forgetStyles();
    forgetAllLists();
}

bool Plotter::lettersAnew() {
    if (!lettering_.update()) return false;
    forgetAllLists();
    return true;
}

void Plotter::readVariables() {
    linetypeScale_ = database_.headerReal("$LTSCALE", 1.0);
    pointMode_ = static_cast<int>(database_.headerInteger("$PDMODE", 0));
    pointSize_ = database_.headerReal("$PDSIZE", 0.0);
    attributeMode_ = static_cast<int>(database_.headerInteger("$ATTMODE", 1));
    wipeoutFrames_ = OdDbWipeoutVariables::showsFrames(database_);
    imageFrames_ = showsImageFrames(database_);
}

void Plotter::setUp(Shapes& shapes) {
    shapes.setAttributeMode(attributeMode_);
    shapes.setWipeoutFrames(wipeoutFrames_);
    shapes.setLettering(&lettering_);
    shapes.setRasters(rasters_, imageFrames_);
    shapes.setTexts(picture_.keepsTexts());
}

void Plotter::add(Shapes& shapes, const OdDbEntity& entity) {
    if (!shapes.add(entity)) count(entity.objectId(), entity.dxfName());
    const auto* const reference = drawingdb::as<OdDbBlockReference>(entity);
    if (reference && reference->isClipped() && !clipOf(*reference)) count(entity.objectId(), "clip of INSERT");
}

void Plotter::count(OdDbObjectId id, const std::string& kind) {
    if (counted_.insert(id).second) ++notDrawn_[kind];
}

void Plotter::drawSpace(OdDbObjectId space, const OdGeMatrix3d& toPixels, double pixelsPerUnit) {
    const Pass pass{toPixels, pixelsPerUnit, {}};
    if (!enter(pass)) return;
    const auto record = space.openIf<OdDbBlockTableRecord>();
    if (!record) return;
    for (const OdDbObjectId id : record->entitiesInDrawOrder()) {
        const auto entity = id.openIf<OdDbEntity>();
        if (!entity) continue;
        const auto* const viewport = drawingdb::as<OdDbViewport>(*entity);
        if (!viewport) {
            draw(*entity);
        } else if (showsSpace(*viewport)) {
            if (enter({toPixels, pixelsPerUnit, id})) drawSeen(database_.modelSpaceId());
            enter(pass);
            drawFrame(*viewport);
        }
    }
}

void Plotter::drawSeen(OdDbObjectId space) {
    const auto record = space.openIf<OdDbBlockTableRecord>();
    if (!record) return;
    for (const OdDbObjectId id : record->entitiesInDrawOrder())
        if (const auto entity = id.openIf<OdDbEntity>(); entity && !entity->isKindOf(OdDbViewport::desc()))
            draw(*entity);
}

// ---- piece by piece

std::optional<Rectangle> Plotter::window() const {
    const auto box = windowOf(picture_, toPixels_);
    if (!box) return std::nullopt;
    return Rectangle{box->minPoint().xy(), box->maxPoint().xy()};
}

int Plotter::size() const {
    int size = 0;
    std::frexp(spaceScale_, &size);
    return size;
}

void Plotter::draw(const OdDbEntity& entity) {
    makeRoom();
    seen_.clear();
    Shapes shapes(styles_, seen_, 1 / spaceScale_);
    setUp(shapes);
    if (const auto seen = windowOf(picture_, toPixels_)) shapes.setWindow(*seen);
    add(shapes, entity);
    drawItems(seen_, seen_.items(), toPixels_, nullptr);
}

void Plotter::addTo(DisplayList& list, OdDbObjectId id) {
    const auto entity = id.openIf<OdDbEntity>();
    if (!entity) return;
    Shapes shapes(styles_, list, 1 / std::ldexp(1.0, size()));
    setUp(shapes);
    add(shapes, *entity);
}

void Plotter::draw(const DisplayList& list, std::span<const DisplayList::Item> items) {
    makeRoom();
    drawItems(list, items, toPixels_, nullptr);
}

// ---- lists

// Between the entities of a space: those inside one another draw by lists that have to stay.
void Plotter::makeRoom() {
    if (bytes_ > kMostBytes) forgetAllLists();
}

const DisplayList& Plotter::blockList(OdDbObjectId block, double scale) {
    int size = 0;
    std::frexp(scale, &size);
    const auto [entry, isNew] = blockLists_.try_emplace({block, size, frozen_});
    if (!isNew) return entry->second;
    DisplayList list;
    Shapes shapes(styles_, list, 1 / std::ldexp(1.0, size));
    setUp(shapes);
    shapes.setInBlock(true);
    if (const auto record = block.openIf<OdDbBlockTableRecord>()) {
        for (const OdDbObjectId id : record->entitiesInDrawOrder())
            if (const auto entity = id.openIf<OdDbEntity>()) add(shapes, *entity);
        if (record->isFromExternalReference() && list.items().empty()) count(block, "external reference");
    }
    bytes_ += list.bytes();
    return blockLists_[{block, size, frozen_}] = std::move(list);
}

void Plotter::drawList(const DisplayList& list, const OdGeMatrix3d& toPixels, const Style* inside) {
    drawItems(list, list.items(), toPixels, inside);
}

void Plotter::drawItems(const DisplayList& list, std::span<const DisplayList::Item> items, const OdGeMatrix3d& toPixels,
                        const Style* inside) {
    Style style;
    Look look;
    bool hidden = false;
    std::uint32_t current = ~0u;
    for (std::size_t i = 0; i < items.size(); ++i) {
        const DisplayList::Item& item = items[i];
        if (item.style != current) {
            current = item.style;
            style = inside ? inReference(list.styles()[current], *inside) : list.styles()[current];
            hidden = styles_.isHidden(style) || !styles_.isPlotted(style);
            look = emphasized(styles_.lookOf(style));
        }
        if (item.kind == Kind::kReference) {
            const DisplayList::Reference& reference = list.reference(item);
            drawReference(list, reference, items.subspan(i + 1, reference.attributes), toPixels, style, inside);
            i += reference.attributes;
        } else if (!hidden) {
            drawItem(list, item, toPixels, look);
        }
    }
}

void Plotter::drawItem(const DisplayList& list, const DisplayList::Item& item, const OdGeMatrix3d& toPixels,
                       const Look& look) {
    const auto project = [&](std::size_t contour) {
        points_.clear();
        for (const OdGePoint3d& point : list.contour(item.first + contour)) points_.push_back(flat(toPixels, point));
    };
    switch (item.kind) {
        case Kind::kPolyline:
            project(0);
            return drawLine(points_, look);
        case Kind::kSides: {
            if (look.dashes) {
                for (std::size_t i = 0; i < item.count; ++i) {
                    project(i);
                    drawLine(points_, look);
                }
                return;
            }
            points_.clear();
            for (std::size_t i = 0; i < item.count; ++i)
                for (const OdGePoint3d& point : list.contour(item.first + i)) points_.push_back(flat(toPixels, point));
            return drawLine(points_, look);
        }
        case Kind::kStrokes:
            for (std::size_t i = 0; i < item.count; ++i) {
                project(i);
                drawStroke(points_, look);
            }
            return;
        case Kind::kArea:
        case Kind::kUnion:
        case Kind::kTint:
        case Kind::kMask: {
            std::vector<Picture::Contour> contours;
            for (std::size_t i = 0; i < item.count; ++i) {
                project(i);
                contours.push_back(points_);
            }
            const std::uint32_t color = item.kind == Kind::kMask ? picture_.background() : look.color;
            if (item.kind == Kind::kTint)
                picture_.addTint(contours, color, std::min(item.ink * look.width / scaleOf(toPixels), 1.0));
            else
                picture_.addArea(contours, color, item.kind == Kind::kUnion ? FillRule::kNonZero : FillRule::kEvenOdd);
            return;
        }
        case Kind::kRay:
        case Kind::kInfiniteLine:
            project(0);
            return drawEndless(points_[0], points_[1], item.kind == Kind::kRay, look);
        case Kind::kMarker:
            project(0);
            return drawMarker(points_[0], look);
        case Kind::kText: {
            const DisplayList::Text& text = list.text(item);
            return picture_.addText(
                {text.characters, flat(toPixels, text.start), flat(toPixels, text.end), flat(toPixels, text.top)});
        }
        case Kind::kImage:
            return drawImage(list.image(item), toPixels, look);
        case Kind::kReference:
            return;
    }
}

// What stands out does so by its outline.
void Plotter::drawImage(const DisplayList::Image& image, const OdGeMatrix3d& toPixels, const Look& look) {
    std::vector<Picture::Contour> contours;
    for (const auto& outline : image.outlines) {
        Picture::Contour& contour = contours.emplace_back();
        for (const OdGePoint3d& point : outline) contour.push_back(flat(toPixels, point));
        if (emphasis_ == Emphasis::kPlain) continue;
        contour.push_back(contour.front());
        drawStroke(contour, look);
    }
    if (emphasis_ == Emphasis::kPlain)
        picture_.addImage(
            contours, {image.raster,
                       {flat(toPixels, image.corner), (toPixels * image.along).xy(), (toPixels * image.down).xy()}});
}

void Plotter::drawLine(std::span<const OdGePoint2d> points, const Look& look) {
    if (look.dashes && emphasis_ == Emphasis::kPlain)
        addDashed(picture_, points, {look.color, look.width}, *look.dashes,
                  linetypeScale_ * look.linetypeScale * pixelsPerUnit_);
    else
        drawStroke(points, look);
}

// What is chosen is dashed, whatever is there already; what is too short for dashes is a line.
void Plotter::drawStroke(std::span<const OdGePoint2d> points, const Look& look) {
    const bool dashed = emphasis_ == Emphasis::kSelected;
    picture_.addPolyline(points, {dashed ? picture_.background() : look.color, look.width});
    if (dashed) addDashed(picture_, points, {look.color, look.width}, kDashes, 1);
}

// What stands out is blue, and a little wider.
Look Plotter::emphasized(Look look) const {
    if (emphasis_ == Emphasis::kPlain) return look;
    look.color = emphasis_ == Emphasis::kHover ? kHoverColor : kSelectedColor;
    look.width += emphasis_ == Emphasis::kHover ? 1.5 : 0.4;
    return look;
}

// As far as the picture goes.
void Plotter::drawEndless(const OdGePoint2d& from, const OdGePoint2d& to, bool isRay, const Look& look) {
    const OdGeVector2d along = to - from;
    // Seen from its end it is a point.
    if (along.isZeroLength()) return drawLine(std::span(&from, 1), look);
    const OdGeVector2d pen(look.width, look.width);
    double first = isRay ? 0 : -std::numeric_limits<double>::infinity();
    double last = std::numeric_limits<double>::infinity();
    if (!cutLine(from, along, picture_.clipLow() - pen, picture_.clipHigh() + pen, first, last)) return;
    const OdGePoint2d ends[2] = {from + along * first, from + along * last};
    drawLine(ends, look);
}

// PDMODE: 0 a dot, 1 nothing, 2 a cross, 3 a slanting one, 4 a stroke upwards; with 32 a circle, with 64 a square
// around it. PDSIZE: the diameter of the circle in drawing units, or, negative, as a percentage of the picture's
// height. References do not scale it: the marks of all points of a space are alike.
double Plotter::markerSize() const {
    return pointSize_ > 0   ? pointSize_ * spaceScale_
           : pointSize_ < 0 ? -pointSize_ / 100 * picture_.height()
                            : 0.05 * picture_.height();
}

void Plotter::drawMarker(const OdGePoint2d& center, const Look& look) {
    const Pen pen{look.color, look.width};
    const double size = markerSize();
    const auto line = [&](double x1, double y1, double x2, double y2) {
        const OdGePoint2d ends[2] = {center + OdGeVector2d(x1, y1) * size, center + OdGeVector2d(x2, y2) * size};
        picture_.addPolyline(ends, pen);
    };
    switch (pointMode_ & 7) {
        case 0:
            picture_.addPolyline(std::span(&center, 1), {pen.color, std::max(pen.width, 2.0)});
            break;
        case 2:
            line(-1, 0, 1, 0);
            line(0, -1, 0, 1);
            break;
        case 3:
            line(-1, -1, 1, 1);
            line(-1, 1, 1, -1);
            break;
        case 4:
            line(0, 0, 0, -0.5);
            break;
        default:
            break;
    }
    const auto around = [&](int corners, double radius, double turned) {
        std::vector<OdGePoint2d> points;
        for (int i = 0; i <= corners; ++i) {
            const double angle = turned + drawingdb::kTwoPi * i / corners;
            points.push_back(center + OdGeVector2d(std::cos(angle), std::sin(angle)) * radius);
        }
        picture_.addPolyline(points, pen);
    };
    if (pointMode_ & 32) around(48, size / 2, 0);
    if (pointMode_ & 64) around(4, size / 2 * std::sqrt(2.0), drawingdb::kPi / 4);
}

bool Plotter::isVisible(const OdGeExtents3d& box, const OdGeMatrix3d& toPixels, double& size) {
    OdGeExtents3d seen = box;
    seen.transformBy(toPixels);
    const OdGePoint3d &low = seen.minPoint(), &high = seen.maxPoint();
    size = std::max(high.x - low.x, high.y - low.y);
    // Pens and the marks of points reach farther than what they stand for.
    // Boxes hold texts as the built-in strokes have them; few fonts are twice as wide.
    const double reach = margin() + (lettering_.hasOutlineStyles() ? size : 0);
    return high.x >= picture_.clipLow().x - reach && low.x <= picture_.clipHigh().x + reach &&
           high.y >= picture_.clipLow().y - reach && low.y <= picture_.clipHigh().y + reach;
}

void Plotter::drawReference(const DisplayList& list, const DisplayList::Reference& reference,
                            std::span<const DisplayList::Item> attributes, const OdGeMatrix3d& toPixels,
                            const Style& style, const Style* inside) {
    if (styles_.isFrozen(style)) return;
    const Bounds block = bounds_->of(reference.block);
    double size = 0;
    // Cells that are closer than a pixel are not told apart.
    const auto strideOf = [&](const OdGeVector3d& step, int count) {
        const double pixels = (toPixels * step).xy().length();
        return pixels > 1 ? 1 : pixels > 0 ? static_cast<int>(std::min(1 / pixels, 32767.0)) + 1 : count;
    };
    const int columnStride = strideOf(reference.columnStep, reference.columns),
              rowStride = strideOf(reference.rowStep, reference.rows);
    // Where there are many cells, rows beside the picture are passed over; attributes hardly reach out of their cell.
    const bool isLarge = attributes.empty() || reference.rows > 1000;
    OdGeExtents3d firstRow = block.box;
    firstRow.transformBy(reference.transform);
    if (firstRow.isValid()) {
        const OdGeVector3d toLast = reference.columnStep * (reference.columns - 1);
        firstRow.addExtents(OdGeExtents3d(firstRow.minPoint() + toLast, firstRow.maxPoint() + toLast));
    }
    for (int row = 0; row < reference.rows && cells_ <= kMostCells; row += rowStride) {
        const OdGeMatrix3d toRow = toPixels * OdGeMatrix3d::translation(reference.rowStep * row);
        if (isLarge && !block.endless && firstRow.isValid() && !isVisible(firstRow, toRow, size)) continue;
        for (int column = 0; column < reference.columns; column += columnStride) {
            const OdGeMatrix3d moved = toRow * OdGeMatrix3d::translation(reference.columnStep * column);
            const OdGeMatrix3d cell = moved * reference.transform;
            if (block.endless || !block.box.isValid() || isVisible(block.box, cell, size))
                reference.clip ? drawClipped(reference, cell, style) : drawCell(reference.block, cell, style);
            if (!attributes.empty()) drawItems(list, attributes, moved, inside);
        }
    }
}

void Plotter::drawCell(OdDbObjectId block, const OdGeMatrix3d& toPixels, const Style& style) {
    const double scale = scaleOf(toPixels);
    if (!(scale > 0) || !std::isfinite(scale)) return;
    // A block inside itself is a fault of the file.
    if (inside_.size() == kDeepestNesting || std::find(inside_.begin(), inside_.end(), block) != inside_.end()) return;
    if (++cells_ > kMostCells) {
        ++notDrawn_["INSERT"];
        return;
    }
    const Bounds& bounds = bounds_->of(block);
    double size = 0;
    if (!bounds.endless && !bounds.marked && bounds.box.isValid() && isVisible(bounds.box, toPixels, size) &&
        size < 0.5) {
        // Whatever it holds, it is a dot.
        const OdGePoint2d place = flat(toPixels, bounds.box.center());
        if (!styles_.isHidden(style)) picture_.addPolyline(std::span(&place, 1), {styles_.lookOf(style).color, 1.0});
        return;
    }
    inside_.push_back(block);
    drawList(blockList(block, scale), toPixels, &style);
    inside_.pop_back();
}

// Where the clip lies within the one that holds already.
void Plotter::drawClipped(const DisplayList::Reference& reference, const OdGeMatrix3d& toPixels, const Style& style) {
    Picture::Contour corners;
    for (const OdGePoint3d& corner : *reference.clip) corners.push_back(flat(toPixels, corner));
    const Picture::Contour before = picture_.clip();
    const auto parts = commonParts(before, corners);
    if (!parts) {
        count(reference.block, "clip of INSERT");
        return drawCell(reference.block, toPixels, style);
    }
    for (const Picture::Contour& part : *parts) {
        picture_.setClip(part);
        drawCell(reference.block, toPixels, style);
    }
    picture_.setClip(before);
}

// ---- viewports of a layout

std::vector<OdGePoint2d> Plotter::viewportClip(const OdDbViewport& viewport, OdDbObjectId boundary,
                                               const OdGeMatrix3d& paperToPixels) {
    std::vector<OdGePoint2d> corners;
    if (const auto entity = boundary.openIf<OdDbEntity>()) {
        DisplayList list;
        Shapes shapes(styles_, list, 1 / scaleOf(paperToPixels));
        shapes.setInBlock(true);  // clips on a hidden layer too
        shapes.add(*entity);
        for (const DisplayList::Item& item : list.items()) {
            if (item.kind != Kind::kPolyline && item.kind != Kind::kSides) continue;
            for (std::size_t i = 0; i < item.count; ++i) {
                for (const OdGePoint3d& point : list.contour(item.first + i)) {
                    const OdGePoint2d corner = flat(paperToPixels, point);
                    if (corners.empty() || !corners.back().isEqualTo(corner, {1e-6, 1e-6})) corners.push_back(corner);
                }
            }
            if (corners.size() > 1 && corners.front().isEqualTo(corners.back(), {1e-6, 1e-6})) corners.pop_back();
            break;
        }
    }
    if (corners.size() > 2) return corners;
    const OdGePoint3d center = viewport.centerPoint();
    const double x = viewport.width() / 2, y = viewport.height() / 2;
    return {flat(paperToPixels, center + OdGeVector3d(-x, -y, 0)), flat(paperToPixels, center + OdGeVector3d(x, -y, 0)),
            flat(paperToPixels, center + OdGeVector3d(x, y, 0)), flat(paperToPixels, center + OdGeVector3d(-x, y, 0))};
}

namespace {

// The layers that are frozen in a viewport, and what else than a rectangle it is bounded by.
struct ViewportParts {
    std::vector<OdDbObjectId> frozen;
    OdDbObjectId boundary;
};

ViewportParts partsOf(const OdDbViewport& viewport) {
    ViewportParts parts;
    for (const PlotGroup& group : groupsOf(viewport)) {
        if (group.code == 331 || group.code == 341) parts.frozen.push_back(group.id);
        if (group.code == 340 && group.id.isKindOf(OdDbEntity::desc())) parts.boundary = group.id;
    }
    return parts;
}

}  // namespace

void Plotter::leave() {
    if (frozen_ != 0) styles_.freezeHere({});
    frozen_ = 0;
    picture_.clearClip();
}

bool Plotter::enter(const Pass& pass) {
    leave();
    toPixels_ = pass.toPixels;
    pixelsPerUnit_ = pass.pixelsPerUnit;
    if (const auto viewport = pass.viewport.openIf<OdDbViewport>()) {
        // From the model to what is seen along the view direction, twisted, then onto the paper.
        const double scale = viewport->customScale();
        const OdGePoint3d center = viewport->centerPoint();
        const OdGeMatrix3d ontoPaper =
            OdGeMatrix3d::translation(center.asVector()) * OdGeMatrix3d::scaling(scale) *
            OdGeMatrix3d::translation(OdGeVector3d(-viewport->viewCenter().x, -viewport->viewCenter().y, 0));
        toPixels_ = pass.toPixels * ontoPaper * viewport->worldToView();
        // Dashes are as long on the paper in all viewports, unless the drawing says otherwise.
        if (database_.headerInteger("$PSLTSCALE", 1) == 0) pixelsPerUnit_ *= scale;

        ViewportParts parts = partsOf(*viewport);
        picture_.setClip(viewportClip(*viewport, parts.boundary, pass.toPixels));
        frozen_ = static_cast<std::size_t>(std::find(frozenLayers_.begin(), frozenLayers_.end(), parts.frozen) -
                                           frozenLayers_.begin());
        if (frozen_ == frozenLayers_.size()) frozenLayers_.push_back(parts.frozen);
        if (frozen_ != 0) styles_.freezeHere(parts.frozen);
    }
    const double scale = scaleOf(toPixels_);
    if (!(scale > 0)) return false;
    spaceScale_ = scale;
    return true;
}

bool Plotter::showsSpace(const OdDbViewport& viewport) {
    // The first one is the paper itself.
    if (viewport.number() <= 1 || !viewport.isOn() || !(viewport.width() > 0) || !(viewport.height() > 0)) return false;
    return !viewport.isInvisibleEntity() && !styles_.isFrozen(styles_.styleOf(viewport));
}

void Plotter::drawFrame(const OdDbViewport& viewport) {
    // A boundary of its own shows by itself.
    const OdDbObjectId boundary = partsOf(viewport).boundary;
    const Style style = styles_.styleOf(viewport);
    if (boundary || styles_.isHidden(style) || !styles_.isPlotted(style)) return;
    std::vector<OdGePoint2d> frame = viewportClip(viewport, boundary, toPixels_);
    frame.push_back(frame.front());
    const Look look = styles_.lookOf(style);
    picture_.addPolyline(frame, {look.color, look.width});
}

}  // namespace host
