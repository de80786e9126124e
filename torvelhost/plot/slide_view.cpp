#include "torvelhost/plot/slide_view.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace host {

void SlideView::size(int& width, int& height) {
    width = width_;
    height = height_;
}

void SlideView::setSize(int width, int height) {
    const bool isOther = width != width_ || height != height_;
    width_ = width;
    height_ = height;
    if (!picture_ || !isOther) return;
    picture_.emplace(width_, height_, picture_->background());
    if (!(reach_.x > 0) || !(reach_.y > 0)) return;
    // A slide fills the view in one direction.
    const double scale = std::min(width_ / 2.0 / reach_.x, height_ / 2.0 / reach_.y);
    reach_ = reach_ * scale;
    for (Drawn& drawn : drawn_) {
        for (OdGePoint2d& point : drawn.points) point = OdGePoint2d(point.x * scale, point.y * scale);
        paint(drawn);
    }
}

void SlideView::prepare() {
    std::int32_t background = 0;
    settings_.readInteger(L"Colors", isPaper_() ? L"LayoutPaper" : L"Background", background);
    picture_.emplace(width_, height_, static_cast<std::uint32_t>(background) & 0xFFFFFF);
    drawn_.clear();
    reach_ = {};
}

void SlideView::drawPolyline(const OdGePoint3d* points, int count) { draw(points, count, false); }

void SlideView::drawPolygon(const OdGePoint3d* points, int count) { draw(points, count, true); }

void SlideView::draw(const OdGePoint3d* points, int count, bool isArea) {
    if (!picture_) return;
    Drawn& drawn = drawn_.emplace_back(Drawn{{}, color_, isArea});
    for (const OdGePoint3d& point : std::span(points, static_cast<std::size_t>(count))) {
        drawn.points.emplace_back(point.x, point.y);
        reach_.x = std::max(reach_.x, std::fabs(point.x));
        reach_.y = std::max(reach_.y, std::fabs(point.y));
    }
    paint(drawn);
}

// From the view's middle with y up to the picture's corner with y down.
void SlideView::paint(const Drawn& drawn) {
    points_.clear();
    for (const OdGePoint2d& point : drawn.points) points_.emplace_back(width_ / 2.0 + point.x, height_ / 2.0 - point.y);
    if (drawn.isArea)
        picture_->addArea({&points_, 1}, drawn.color);
    else
        picture_->addPolyline(points_, Pen{drawn.color, 1.0});
}

}  // namespace host
