// Block references, and the kinds that the database carries without understanding them.
#include <algorithm>

#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/mtext.h"
#include "drawingdb/reference_cells.h"
#include "drawingdb/text.h"
#include "torvelhost/plot/clip.h"
#include "torvelhost/plot/shapes.h"

namespace host {
namespace {

// Of images.
constexpr std::int64_t kShown = 1, kTransparent = 8;

OdGePoint3d pointOf(const std::vector<PlotGroup>& groups, int code, const OdGePoint3d& fallback = {}) {
    const PlotGroup* group = findGroup(groups, code);
    return group ? group->point : fallback;
}

OdGeVector3d normalOf(const std::vector<PlotGroup>& groups) {
    return pointOf(groups, 210, OdGePoint3d(0, 0, 1)).asVector();
}

}  // namespace

DisplayList::Reference referenceOf(const OdDbBlockReference& reference) {
    DisplayList::Reference item;
    item.block = reference.blockTableRecord();
    const drawingdb::ReferenceCells cells(reference);
    item.transform = cells.transform(0, 0);
    item.columns = cells.columns();
    item.rows = cells.rows();
    if (item.columns > 1) item.columnStep = cells.offset(0, 1);
    if (item.rows > 1) item.rowStep = cells.offset(1, 0);
    if (const auto clip = clipOf(reference); clip && !clip->empty())
        item.clip = std::make_shared<const std::vector<OdGePoint3d>>(*clip);
    return item;
}

bool Shapes::add(const OdDbEntity& entity) {
    if (entity.isInvisibleEntity()) return true;
    const OdRxClass* kind = entity.isA();
    const auto is = [kind](const OdRxClass* other) { return kind->isDerivedFrom(other); };
    const Style style = styles_.styleOf(entity);
    // Inside a block, layer 0 is whatever layer the reference is on. A reference on a layer that is off still shows
    // what its block has on others.
    if (!hiddenToo_ && (!inBlock_ || style.layer != 0)) {
        if (styles_.isFrozen(style) || (styles_.isHidden(style) && !is(OdDbBlockReference::desc()))) return true;
    }
    if (window_ && is(OdDbCurve::desc())) {
        OdGeExtents3d box;
        if (boxOf(entity, box) && !window_->intersects(box)) return true;
    }
    list_.setStyle(style);
    if (is(OdDbLine::desc())) {
        const auto& line = static_cast<const OdDbLine&>(entity);
        list_.add(DisplayList::Kind::kPolyline, Corners{line.startPoint(), line.endPoint()});
    } else if (is(OdDbBlockReference::desc())) {
        return addReference(static_cast<const OdDbBlockReference&>(entity));
    } else if (is(OdDbAttributeText::desc())) {
        addAttributeText(static_cast<const OdDbAttributeText&>(entity));
    } else if (is(OdDbText::desc())) {
        addText(static_cast<const OdDbText&>(entity), static_cast<const OdDbText&>(entity).textString());
    } else if (is(OdDbMText::desc())) {
        addMText(static_cast<const OdDbMText&>(entity));
    } else if (is(OdDbPolyline::desc())) {
        addPolyline(static_cast<const OdDbPolyline&>(entity));
    } else if (is(OdDb2dPolyline::desc())) {
        add2dPolyline(static_cast<const OdDb2dPolyline&>(entity));
    } else if (is(OdDb3dPolyline::desc())) {
        Corners corners;
        const auto& polyline = static_cast<const OdDb3dPolyline&>(entity);
        for (const OdDbOldPolyline::Vertex& vertex : polyline.vertices()) corners.push_back(vertex.point);
        if (polyline.isClosed() && !corners.empty()) corners.push_back(corners.front());
        list_.add(DisplayList::Kind::kPolyline, corners);
    } else if (is(OdDbArc::desc())) {
        const auto& arc = static_cast<const OdDbArc&>(entity);
        addCircle(arc, arc.startParam(), arc.endParam() - arc.startParam());
    } else if (is(OdDbCircle::desc())) {
        addCircle(static_cast<const OdDbCircle&>(entity), 0, drawingdb::kTwoPi);
    } else if (is(OdDbPoint::desc())) {
        list_.add(DisplayList::Kind::kMarker, Corners{static_cast<const OdDbPoint&>(entity).position()});
    } else if (is(OdDbWipeout::desc())) {
        addWipeout(static_cast<const OdDbWipeout&>(entity));
    } else if (is(OdDbConstructionLine::desc())) {
        addConstructionLine(static_cast<const OdDbConstructionLine&>(entity));
    } else if (is(OdDbCurve::desc())) {
        addCurve(static_cast<const OdDbCurve&>(entity));
    } else {
        return addCarried(entity, entity.dxfName());
    }
    return true;
}

bool Shapes::addReference(const OdDbBlockReference& reference) {
    const Style own = list_.style();
    const DisplayList::Reference item = referenceOf(reference);
    const std::size_t number = list_.addReference(item);
    for (OdDbObjectId id : reference.attributes()) {
        const auto attribute = id.openIf<OdDbAttribute>();
        if (!attribute || attribute->isInvisibleEntity()) continue;
        // Attributes take from their reference what entities of its block do.
        list_.setStyle(inReference(styles_.styleOf(*attribute), own));
        addAttributeText(*attribute);
    }
    list_.endAttributes(number);
    return item.block.isKindOf(OdDbBlockTableRecord::desc());
}

void Shapes::addWipeout(const OdDbWipeout& wipeout) {
    const Corners boundary = wipeout.boundary();
    list_.add(DisplayList::Kind::kMask, boundary);
    if (wipeoutFrames_) list_.add(DisplayList::Kind::kPolyline, boundary);
}

bool Shapes::addCarried(const OdDbEntity& entity, const std::string& kind) {
    const auto is = [&kind](const char* name) { return kind == name; };
    // The plotter shows what viewports show; the rest are parts of others, or nothing to look at.
    if (is("VIEWPORT") || is("SEQEND") || is("ENDBLK")) return true;
    if (is("HATCH"))
        return addHatch(groupsOf(entity));
    else if (is("SOLID") || is("TRACE"))
        addSolid(groupsOf(entity));
    else if (is("3DFACE"))
        addFace(groupsOf(entity));
    else if (is("DIMENSION") || is("ARC_DIMENSION") || is("LARGE_RADIAL_DIMENSION"))
        return addDimension(groupsOf(entity));
    else if (is("ACAD_TABLE"))
        return addTable(groupsOf(entity));
    else if (is("IMAGE"))
        return addImage(groupsOf(entity));
    else if (is("LEADER"))
        addLeaderParts(drawingdb::leaderParts(entity));
    else if (is("MULTILEADER"))
        addMultiLeader(groupsOf(entity));
    else if (is("TOLERANCE"))
        addTolerance(entity, groupsOf(entity));
    else if (is("MLINE"))
        addMultiLine(groupsOf(entity));
    else if (is("POLYLINE"))
        return addMesh(entity, groupsOf(entity));
    else if (is("MESH"))
        return addSubdivisionMesh(groupsOf(entity));
    else
        return addProxyGraphics(groupsOf(entity));
    return true;
}

bool Shapes::addBlockAt(OdDbObjectId block, const OdGeMatrix3d& placement) {
    const auto record = block.openIf<OdDbBlockTableRecord>();
    if (!record) return false;
    DisplayList::Reference item;
    item.block = block;
    item.transform = placement * OdGeMatrix3d::translation(OdGePoint3d() - record->origin());
    list_.addReference(item);
    return true;
}

bool Shapes::addBlockNamed(const OdString& name, const OdGeMatrix3d& placement) {
    const OdDbObjectId block = styles_.database().findBlock(name);
    missesBlock_ |= !block;
    return addBlockAt(block, placement);
}

// Its block is drawn in its place already; a copy that was moved along says by how much.
bool Shapes::addDimension(const std::vector<PlotGroup>& groups) {
    const PlotGroup* name = findGroup(groups, 2);
    if (!name) return false;
    const OdGePoint3d moved = OdGeMatrix3d::planeToWorld(normalOf(groups)) * pointOf(groups, 12);
    return addBlockNamed(name->text, OdGeMatrix3d::translation(moved.asVector()));
}

bool Shapes::addTable(const std::vector<PlotGroup>& groups) {
    const PlotGroup* name = findGroup(groups, 2);
    if (!name) return false;
    const OdGeVector3d normal = normalOf(groups).normal();
    const OdGeVector3d along = pointOf(groups, 11, OdGePoint3d(1, 0, 0)).asVector().normal();
    return addBlockNamed(name->text,
                         OdGeMatrix3d::coordSystem(pointOf(groups, 10), along, normal.crossProduct(along), normal));
}

// How the picture is to look; null when it cannot be shown.
std::shared_ptr<const Raster> Shapes::rasterOf(const std::vector<PlotGroup>& image,
                                               const std::vector<PlotGroup>& definition) {
    const auto percent = [&](int code, int standard) {
        const PlotGroup* group = findGroup(image, code);
        return group ? static_cast<int>(std::clamp<std::int64_t>(group->integer, 0, 100)) : standard;
    };
    RasterLook look{percent(281, 50), percent(282, 50), percent(283, 0)};
    look.isTransparent = (groupOrZero(image, 70).integer & kTransparent) != 0;
    look.isGray = styles_.inks().mono;
    look.paper = styles_.inks().background;
    return rasters_->read(groupOrZero(definition, 1).text, look);
}

// 10 lower left corner   11, 12 a pixel's sides   13 size in pixels   14 what it is cut to, in pixels from -0.5 with y
// downwards: two opposite corners of a rectangle, or a polygon   280 whether it is   290 whether what is inside is cut
// out   340 the definition, which names the file (1) and tells whether it is loaded (280)
bool Shapes::addImage(const std::vector<PlotGroup>& groups) {
    const OdGeVector3d u = pointOf(groups, 11).asVector(), v = pointOf(groups, 12).asVector();
    const OdGePoint3d size = pointOf(groups, 13);
    std::vector<Corners> outlines = {{{-0.5, -0.5, 0}, {size.x - 0.5, size.y - 0.5, 0}}};
    Corners clip;
    if (groupOrZero(groups, 280).integer != 0)
        for (const PlotGroup& group : groups)
            if (group.code == 14) clip.push_back(group.point);
    if (clip.size() > 1) {
        if (groupOrZero(groups, 290).integer == 0) outlines.clear();
        outlines.push_back(std::move(clip));
    }
    for (Corners& corners : outlines) {
        if (corners.size() == 2)
            corners = {corners[0], {corners[1].x, corners[0].y, 0}, corners[1], {corners[0].x, corners[1].y, 0}};
        for (OdGePoint3d& corner : corners)
            corner = pointOf(groups, 10) + u * (corner.x + 0.5) + v * (size.y - corner.y - 0.5);
    }
    const auto object = groupOrZero(groups, 340).id.openIf<OdDbObject>();
    const std::vector<PlotGroup> definition = object ? groupsOf(*object) : std::vector<PlotGroup>();
    const PlotGroup* const loaded = findGroup(definition, 280);
    const bool isShown = (groupOrZero(groups, 70).integer & kShown) != 0 && (!loaded || loaded->integer != 0);
    std::shared_ptr<const Raster> raster;
    if (isShown && rasters_ && object) raster = rasterOf(groups, definition);
    if (raster) list_.addImage({raster, pointOf(groups, 10) + v * size.y, u * size.x, v * -size.y, outlines});
    if (imageFrames_ || !raster) {
        for (Corners& corners : outlines) {
            corners.push_back(corners.front());
            list_.add(DisplayList::Kind::kPolyline, corners);
        }
    }
    return raster || !isShown;
}

// The third and fourth corner are stored crosswise.
void Shapes::addSolid(const std::vector<PlotGroup>& groups) {
    const OdGeMatrix3d plane = OdGeMatrix3d::planeToWorld(normalOf(groups));
    const OdGePoint3d third = pointOf(groups, 12, pointOf(groups, 11));
    list_.add(DisplayList::Kind::kArea, Corners{plane * pointOf(groups, 10), plane * pointOf(groups, 11),
                                                plane * pointOf(groups, 13, third), plane * third});
}

// Its edges, of which each may be invisible.
void Shapes::addFace(const std::vector<PlotGroup>& groups) {
    const OdGePoint3d third = pointOf(groups, 12);
    const OdGePoint3d corners[4] = {pointOf(groups, 10), pointOf(groups, 11), third, pointOf(groups, 13, third)};
    const PlotGroup* hidden = findGroup(groups, 70);
    for (int i = 0; i < 4; ++i) {
        if (hidden && (hidden->integer >> i & 1)) continue;
        list_.add(DisplayList::Kind::kPolyline, Corners{corners[i], corners[(i + 1) % 4]});
    }
}

}  // namespace host
