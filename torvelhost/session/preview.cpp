#include "torvelhost/session/preview.h"

#include <cmath>

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/curves.h"

namespace host {
namespace {

std::string rounded(double value) {
    constexpr double kPlaces = 1e6;
    // Without a minus zero.
    std::string text = base::realToText(std::round(value * kPlaces) / kPlaces + 0.0);
    if (text.ends_with(".0")) text.resize(text.size() - 2);
    return text;
}

std::wstring coordinates(double x, double y, double z) {
    return base::widen(rounded(x) + "," + rounded(y) + "," + rounded(z));
}

}  // namespace

std::wstring previewText(const OdDbEntity& entity) {
    std::wstring text = base::widen(entity.dxfName());
    const auto add = [&text](const OdGePoint3d& p) { text += L" " + coordinates(p.x, p.y, p.z); };
    OdGeExtents3d box;
    if (const auto* const line = drawingdb::as<OdDbConstructionLine>(entity)) {
        const OdGeVector3d direction = line->unitDir();
        add(line->basePoint());
        text += L" towards " + coordinates(direction.x, direction.y, direction.z);
    } else if (const auto* const polyline = drawingdb::as<OdDbPolyline>(entity)) {
        for (std::size_t i = 0; i < polyline->numVerts(); ++i) add(polyline->pointAt(i));
    } else if (entity.geomExtents(box)) {
        add(box.minPoint());
        add(box.maxPoint());
    }
    return text;
}

}  // namespace host
