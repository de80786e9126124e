#include "torvelhost/window/view_map.h"

#include <cmath>

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/viewport.h"

namespace host {
namespace {

// A coordinate to so many decimal places: as far as doubles have them.
double rounded(double value, int places) {
    const double power = std::pow(10.0, places);
    const double scaled = value * power;
    constexpr double kExact = 9007199254740992.0;  // 2^53
    return std::fabs(scaled) < kExact ? std::round(scaled) / power : value;
}

std::wstring numberText(double value) {
    std::string text = base::realToText(value == 0 ? 0.0 : value);
    if (text.ends_with(".0")) text.resize(text.size() - 2);
    return base::widen(text);
}

}  // namespace

double ViewMap::pixelsPerUnit() { return view_.height() / view_.current().height; }

OdGeMatrix3d ViewMap::toPixels() {
    const View seen = view_.current();
    const double scale = pixelsPerUnit();
    // y runs down in pictures.
    return OdGeMatrix3d::coordSystem(
        OdGePoint3d(view_.width() / 2.0 - seen.center.x * scale, view_.height() / 2.0 + seen.center.y * scale, 0),
        OdGeVector3d(scale, 0, 0), OdGeVector3d(0, -scale, 0), OdGeVector3d());
}

OdGePoint2d ViewMap::currentSpacePointAt(CanvasPoint at) {
    const View seen = view_.current();
    const double scale = pixelsPerUnit();
    return {seen.center.x + (at.x - view_.width() / 2.0) / scale,
            seen.center.y - (at.y - view_.height() / 2.0) / scale};
}

OdGePoint3d ViewMap::userPointAt(CanvasPoint at) {
    const OdGePoint2d paper = currentSpacePointAt(at);
    OdGePoint3d seen(paper.x, paper.y, 0);
    OdGeVector3d along = OdGeVector3d::kZAxis;
    if (const auto viewport = document_.floatingViewportId().openIf<OdDbViewport>()) {
        const double scale = viewport->customScale();
        const OdGePoint3d middle = viewport->centerPoint();
        const OdGePoint2d shown = viewport->viewCenter();
        seen = viewport->worldToView().inverse() *
               OdGePoint3d(shown.x + (paper.x - middle.x) / scale, shown.y + (paper.y - middle.y) / scale, 0);
        along = viewport->viewDirection().normal();
    }
    const OdGeMatrix3d toUser = document_.ucs().inverse();
    const OdGePoint3d point = toUser * seen;
    const OdGeVector3d down = toUser * along;
    constexpr double kEdgeOn = 1e-9;
    if (std::fabs(down.z) < kEdgeOn) return point;
    return point + down * ((document_.elevation() - point.z) / down.z);
}

std::wstring ViewMap::pointText(CanvasPoint at) {
    const OdGePoint3d point = userPointAt(at);
    constexpr double kPartOfPixel = 1e-3;
    const double fine = view_.pixelSize() * kPartOfPixel;
    const int places = fine > 0 ? std::max(0, static_cast<int>(std::ceil(-std::log10(fine)))) : 0;
    std::wstring text = numberText(rounded(point.x, places)) + L"," + numberText(rounded(point.y, places));
    // A plane that is seen from its edge is left.
    constexpr double kFlat = 1e-9;
    if (std::fabs(point.z - document_.elevation()) > kFlat * (1 + std::fabs(point.z)))
        text += L"," + numberText(rounded(point.z, places));
    return text;
}

std::optional<OdGePoint3d> ViewMap::pointOf(const std::wstring& text) {
    std::wstring reason;
    const auto typed = parsePoint(text);
    return typed ? document_.toWorld(*typed, reason) : std::nullopt;
}

CanvasPoint ViewMap::placeOf(const OdGePoint3d& world) {
    OdGePoint3d shown = world;
    if (const auto viewport = document_.floatingViewportId().openIf<OdDbViewport>()) {
        const OdGePoint3d seen = viewport->worldToView() * world;
        const double scale = viewport->customScale();
        shown.x = viewport->centerPoint().x + (seen.x - viewport->viewCenter().x) * scale;
        shown.y = viewport->centerPoint().y + (seen.y - viewport->viewCenter().y) * scale;
    }
    const View seen = view_.current();
    const double scale = pixelsPerUnit();
    return {view_.width() / 2.0 + (shown.x - seen.center.x) * scale,
            view_.height() / 2.0 - (shown.y - seen.center.y) * scale};
}

OdDbObjectId ViewMap::viewportAt(CanvasPoint at) {
    const OdGePoint2d point = currentSpacePointAt(at);
    OdDbObjectId found;
    double smallest = 0;
    for (OdDbObjectId id : document_.floatingViewports()) {
        const auto viewport = id.openAs<OdDbViewport>();
        const OdGePoint3d middle = viewport->centerPoint();
        const bool inside = std::fabs(point.x - middle.x) <= viewport->width() / 2 &&
                            std::fabs(point.y - middle.y) <= viewport->height() / 2;
        const double area = viewport->width() * viewport->height();
        if (!inside || (found && area >= smallest)) continue;
        found = id;
        smallest = area;
    }
    return found;
}

}  // namespace host
