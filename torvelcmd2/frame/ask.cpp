#include "torvelcmd2/frame/ask.h"

namespace torvel {
namespace {

const wchar_t* listOrNull(const OdString& keywords) { return keywords.empty() ? nullptr : keywords.c_str(); }

}  // namespace

int askPoint(HostEdInput& input, const OdString& prompt, OdGePoint3d& point, const OdGePoint3d* base,
             HostEdInputTracker* tracker, const OdString& keywords) {
    return input.getPoint(base, point, prompt.c_str(), listOrNull(keywords), hostapi::kPlainPrompt, 0, tracker);
}

int askKeyword(HostEdInput& input, const OdString& prompt, const OdString& keywords) {
    return input.getKeyword(prompt.c_str(), listOrNull(keywords), hostapi::kPlainPrompt, 0, 0);
}

int askText(HostEdInput& input, const OdString& prompt, OdString& text, const OdString& keywords) {
    return input.getKeyword(prompt.c_str(), listOrNull(keywords), hostapi::kPlainPrompt,
                            reinterpret_cast<std::uintptr_t>(&text), 0);
}

int askEntity(const OdString& prompt, hostapi::Pick& pick, int flags) {
    auto* const selectEntity = hostService(hostapi::selectEntity);
    return selectEntity ? selectEntity(prompt.c_str(), nullptr, flags, pick) : hostapi::kCancel;
}

int askSet(const OdString& prompt, OdDbObjectIdArray& entities) {
    constexpr int kNoFlags = 0;
    auto* const selectSet = hostService(hostapi::selectSet);
    const int result = selectSet ? selectSet(prompt.c_str(), kNoFlags, entities) : static_cast<int>(hostapi::kCancel);
    if (result == hostapi::kCancel) entities.clear();
    return result;
}

OdDbObjectIdArray pickFirst() {
    OdDbObjectIdArray selected;
    if (auto* const getPickFirst = hostService(hostapi::getPickFirst)) getPickFirst(selected);
    return selected;
}

void redraw(OdDbObjectId entity) {
    if (auto* const redrawEntity = hostService(hostapi::redrawEntity)) redrawEntity(entity);
}

void showDrawing(Drawing how) {
    const auto function = GetHostFunction(hostapi::kRefreshFunction);
    if (function) reinterpret_cast<hostapi::RefreshFunction*>(function)(how == Drawing::kRegenerated ? 1 : 0);
}

OdGeMatrix3d drawingPlane() {
    OdGeMatrix3d plane;
    if (auto* const getDrawingPlane = hostService(hostapi::getDrawingPlane)) getDrawingPlane(plane);
    return plane;
}

TextOrientation textOrientation(double rotation, OdDbDatabase& database) {
    TextOrientation orientation{OdGeVector3d::kZAxis, rotation};
    if (auto* const getTextOrientation = hostService(hostapi::getTextOrientation))
        orientation.rotation = getTextOrientation(orientation.normal, rotation, &database);
    return orientation;
}

}  // namespace torvel
