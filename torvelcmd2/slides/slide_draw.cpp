#include "torvelcmd2/slides/slide_draw.h"

#include <array>

#include "base/number.h"
#include "drawingdb/color.h"
#include "torvelcmd2/frame/host_binding.h"

namespace torvel {
namespace {

constexpr std::uint32_t kRgb = 0xFFFFFF;
constexpr std::size_t kMostVertices = 10;

}  // namespace

void slideDraw::header(const SlideHeader& header) {
    const double highX = header.highX();
    const double highY = header.highY();
    const double aspect = header.aspectRatio();
    // How much higher than wide a dot is.
    const double dotRatio = highX / highY / aspect;
    int width = 0;
    int height = 0;
    view_.size(width, height);
    const double viewAspect = static_cast<double>(width) / height + 1e-10;
    double scaleX = 1;
    double scaleY = 1;
    if (aspect > viewAspect) {
        scaleX = width / highX;
        scaleY = scaleX * dotRatio;
    } else {
        scaleY = height / highY;
        scaleX = scaleY / dotRatio;
    }
    matrix_ = OdGeMatrix3d::scaling(OdGeScale3d(scaleX, scaleY, 1));
    offsetX_ = static_cast<std::int16_t>(header.highX() >> 1);
    offsetY_ = static_cast<std::int16_t>(header.highY() >> 1);

    view_.prepare();
    view_.setColor(background_);
    const std::array<OdGePoint3d, 4> screen{toDevice(0, 0), toDevice(highX, 0), toDevice(highX, highY),
                                            toDevice(0, highY)};
    view_.drawPolygon(screen.data(), static_cast<int>(screen.size()));
}

void slideDraw::color(std::int16_t number) {
    isInvisible_ = number == 0;
    if (isInvisible_) return;
    std::uint32_t rgb = OdCmEntityColor::lookUpRGB(static_cast<std::uint8_t>(number));
    // What has the background's colour stays visible.
    if (rgb == background_) rgb = ~rgb & kRgb;
    view_.setColor(rgb);
}

void slideDraw::line(const SlidePoint& from, const SlidePoint& to) {
    if (isInvisible_) return;
    const std::array<OdGePoint3d, 2> points{toDevice(from.x, from.y), toDevice(to.x, to.y)};
    view_.drawPolyline(points.data(), static_cast<int>(points.size()));
}

void slideDraw::fill(const SlidePoint* vertices, int count) {
    if (isInvisible_) return;
    std::array<OdGePoint3d, kMostVertices> points;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
        points[i] = toDevice(vertices[i].x, vertices[i].y);
    view_.drawPolygon(points.data(), count);
}

OdGePoint3d slideDraw::toDevice(double x, double y) const {
    return matrix_ * OdGePoint3d(x - offsetX_, y - offsetY_, 0);
}

std::uint32_t slideBackground(OdDbDatabase& database) {
    auto* const activeSpace = hostService(hostapi::getActiveBTRId);
    OdDbObjectId space;
    const bool isModelSpace = activeSpace == nullptr || activeSpace(space, &database) != 0;
    IProfile* const settings = hostObject(hostapi::getProfile);
    CXStringW text;
    if (!settings || !settings->readText(L"Colors", isModelSpace ? L"Background" : L"LayoutPaper", text)) return 0;
    return static_cast<std::uint32_t>(base::parseInteger(text).value_or(0)) & kRgb;
}

}  // namespace torvel
