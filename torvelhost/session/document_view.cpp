#include "torvelhost/session/document_view.h"

#include <algorithm>

#include "drawingdb/viewport.h"
#include "torvelhost/plot/extents.h"
#include "torvelhost/plot/sheet.h"

namespace host {
namespace {

constexpr double kEmptyViewHeight = 9.0;

}  // namespace

DocumentView::DocumentView(Document& document, int width, int height)
    : document_(document), width_(width), height_(height) {}

View DocumentView::current() {
    std::vector<View>& views = views_[currentSpaceId()];
    if (views.empty()) {
        // What the drawing was seen with is not asked: it need not fit this view's shape. The header knows how far the
        // drawing reached when it was saved, which spares a walk over it.
        const OdDbDatabase& database = *document_.database();
        const bool model = currentSpaceId() == database.modelSpaceId();
        const OdGePoint3d low = database.headerPoint(model ? "$EXTMIN" : "$PEXTMIN", OdGePoint3d(1, 1, 1));
        const OdGePoint3d high = database.headerPoint(model ? "$EXTMAX" : "$PEXTMAX", OdGePoint3d());
        std::optional<OdGeExtents3d> box;
        if (low.x < high.x && low.y < high.y && high.x < 1e15 && high.y < 1e15 && low.x > -1e15 && low.y > -1e15)
            box = OdGeExtents3d(low, high);
        else
            box = extentsOfSpace(currentSpaceId());
        if (!box) box = paperEdge(database);
        views.push_back(
            box ? showing(*box)
                : View{OdGePoint2d(kEmptyViewHeight * aspect() / 2, kEmptyViewHeight / 2), kEmptyViewHeight});
    }
    return views.back();
}

void DocumentView::set(const View& view) {
    current();
    keep(views_[currentSpaceId()], view);
}

void DocumentView::setSize(int width, int height) {
    for (auto& [space, views] : views_) {
        if (space.isKindOf(OdDbViewport::desc())) continue;  // it keeps its size on the paper
        for (View& view : views) view.height *= static_cast<double>(height) / height_;
    }
    width_ = width;
    height_ = height;
}

void DocumentView::move(const View& view) {
    if (moved_ != currentSpaceId()) set(view);
    views_[currentSpaceId()].back() = view;
    moved_ = currentSpaceId();
}

void DocumentView::begin(const View& view) {
    views_[currentSpaceId()] = {view};
    moved_ = OdDbObjectId();
}

void DocumentView::keep(std::vector<View>& views, const View& view) {
    moved_ = OdDbObjectId();
    constexpr std::size_t kKept = 10;
    if (views.size() == kKept) views.erase(views.begin());
    views.push_back(view);
}

View DocumentView::zoomed() {
    const auto viewport = document_.floatingViewportId().openIf<OdDbViewport>();
    return viewport ? View{viewport->viewCenter(), viewport->viewHeight()} : current();
}

void DocumentView::setZoomed(const View& view) {
    const OdDbObjectId viewport = document_.floatingViewportId();
    if (!viewport) return set(view);
    keep(views_[viewport], zoomed());
    viewport.openAs<OdDbViewport>(OdDb::forWrite)->setView(view.center, view.height);
}

bool DocumentView::setPrevious() {
    moved_ = OdDbObjectId();
    if (const OdDbObjectId viewport = document_.floatingViewportId()) {
        std::vector<View>& before = views_[viewport];
        if (before.empty()) return false;
        viewport.openAs<OdDbViewport>(OdDb::forWrite)->setView(before.back().center, before.back().height);
        before.pop_back();
        return true;
    }
    std::vector<View>& views = views_[currentSpaceId()];
    if (views.size() < 2) return false;
    views.pop_back();
    return true;
}

std::optional<OdGeExtents3d> DocumentView::extents() const { return extentsOfSpace(document_.activeSpaceId()); }

bool DocumentView::isChosen() const {
    const auto views = views_.find(currentSpaceId());
    return views != views_.end() && views->second.size() > 1;
}

View DocumentView::toPlot() { return isChosen() ? current() : whole(); }

View DocumentView::whole() {
    const auto box = extentsOfSpace(currentSpaceId());
    return box ? showing(*box) : current();
}

View DocumentView::showing(const OdGeExtents3d& box, double aspect) {
    const OdGeVector3d size = box.diagonal();
    const double height = std::max(size.y, size.x / aspect);
    return {box.center().xy(), height > 0 ? height * 1.02 : kEmptyViewHeight};
}

OdGeExtents3d DocumentView::seenInZoomed(const OdGeExtents3d& box) const {
    OdGeExtents3d seen = box;
    if (const auto viewport = document_.floatingViewportId().openIf<OdDbViewport>())
        seen.transformBy(viewport->worldToView());
    return seen;
}

View DocumentView::zoomedOn(const OdGeExtents3d& seen) const {
    const auto viewport = document_.floatingViewportId().openIf<OdDbViewport>();
    if (!viewport || !(viewport->width() > 0) || !(viewport->height() > 0)) return showing(seen);
    return showing(seen, viewport->width() / viewport->height());
}

double DocumentView::pixelSize() {
    const double paperPixel = current().height / height_;
    const auto viewport = document_.floatingViewportId().openIf<OdDbViewport>();
    if (!viewport || viewport->customScale() <= 0) return paperPixel;
    return paperPixel / viewport->customScale();
}

}  // namespace host
