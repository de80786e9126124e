// The view as slides see it.
#pragma once

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "hostapi/settings.h"
#include "hostapi/slides.h"
#include "torvelhost/plot/picture.h"

namespace host {

class SlideView final : public HostSlideView {
  public:
    /// Size in pixels. The background is the settings' ("Colors", "Background", or "LayoutPaper" where the user draws
    /// on a layout's paper), else black.
    SlideView(int width, int height, IProfile& settings, std::function<bool()> isPaper)
        : width_(width), height_(height), settings_(settings), isPaper_(std::move(isPaper)) {}

    /// The slide that is shown is fitted into it.
    void setSize(int width, int height);

    void size(int& width, int& height) override;
    void prepare() override;
    void setColor(std::uint32_t rgb) override { color_ = rgb; }
    void drawPolyline(const OdGePoint3d* points, int count) override;
    void drawPolygon(const OdGePoint3d* points, int count) override;

    /// The slide that is shown; null when the drawing is.
    const Picture* slide() const { return picture_ ? &*picture_ : nullptr; }
    void showDrawing() {
        picture_.reset();
        drawn_.clear();
    }

  private:
    /// As the slide has drawn it: from the view's middle, y up.
    struct Drawn {
        std::vector<OdGePoint2d> points;
        std::uint32_t color;
        bool isArea;
    };
    void draw(const OdGePoint3d* points, int count, bool isArea);
    void paint(const Drawn& drawn);

    int width_, height_;
    IProfile& settings_;
    std::function<bool()> isPaper_;
    std::uint32_t color_ = 0;
    std::optional<Picture> picture_;
    std::vector<Drawn> drawn_;
    OdGeVector2d reach_;       // how far that goes from the middle
    Picture::Contour points_;  // of what is painted, in the picture
};

}  // namespace host
