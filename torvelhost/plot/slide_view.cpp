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
    if (picture_) picture_->addPolyline(toPicture(points, count), Pen{color_, 1.0});
}

void SlideView::drawPolygon(const OdGePoint3d* points, int count) {
    if (!picture_) return;
    const Picture::Contour contour = toPicture(points, count);
    picture_->addArea({&contour, 1}, color_);
}

// From the view's middle with y up to the picture's corner with y down.
Picture::Contour SlideView::toPicture(const OdGePoint3d* points, int count) const {
    Picture::Contour contour;
    for (const OdGePoint3d& point : std::span(points, static_cast<std::size_t>(count))) {
        contour.emplace_back(width_ / 2.0 + point.x, height_ / 2.0 - point.y);
    }
    return contour;
}

}  // namespace host
