#include "torvelhost/plot/slide_view.h"

#include <span>

namespace host {

void SlideView::size(int& width, int& height) {
    width = width_;
    height = height_;
}

void SlideView::prepare() {
    std::int32_t background = 0;
    settings_.readInteger(L"Colors", isPaper_() ? L"LayoutPaper" : L"Background", background);
    picture_.emplace(width_, height_, static_cast<std::uint32_t>(background) & 0xFFFFFF);
}

void SlideView::drawPolyline(const OdGePoint3d* points, int count) {
    if (!picture_) return;
    toPicture(points, count);
    picture_->addPolyline(points_, Pen{color_, 1.0});
}

void SlideView::drawPolygon(const OdGePoint3d* points, int count) {
    if (!picture_) return;
    toPicture(points, count);
    picture_->addArea({&points_, 1}, color_);
}

// From the view's middle with y up to the picture's corner with y down.
void SlideView::toPicture(const OdGePoint3d* points, int count) {
    points_.clear();
    for (const OdGePoint3d& point : std::span(points, static_cast<std::size_t>(count)))
        points_.emplace_back(width_ / 2.0 + point.x, height_ / 2.0 - point.y);
}

}  // namespace host
