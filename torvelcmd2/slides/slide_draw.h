// slideDraw: the painter that shows slides in the host's view.
#pragma once

#include <cstdint>

#include "drawingdb/database.h"
#include "hostapi/slides.h"

namespace torvel {

/// Fits a slide into the view, its middle in the view's middle.
class slideDraw final : public slidePainter {
  public:
    /// `background`, 0xRRGGBB, is what the slide's screen is filled with.
    slideDraw(HostSlideView& view, std::uint32_t background) : view_(view), background_(background) {}

    void header(const SlideHeader& header) override;
    void color(std::int16_t number) override;
    void line(const SlidePoint& from, const SlidePoint& to) override;
    void fill(const SlidePoint* vertices, int count) override;

  private:
    OdGePoint3d toDevice(double x, double y) const;

    HostSlideView& view_;
    std::uint32_t background_;
    OdGeMatrix3d matrix_;
    std::int16_t offsetX_ = 0;
    std::int16_t offsetY_ = 0;
    bool isInvisible_ = false;
};

/// The background colour in the host's settings, of model space or of the layouts' paper, whichever is shown; black
/// when nothing is set.
std::uint32_t slideBackground(OdDbDatabase& database);

}  // namespace torvel
