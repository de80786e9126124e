// Meshes of the old kind: polylines whose vertices are a grid, or corners and faces.
#include "torvelhost/plot/shapes.h"

namespace host {
namespace {

constexpr std::int64_t kMeshClosedInM = 1, kMeshClosedInN = 32, kPolygonMesh = 16, kPolyfaceMesh = 64;
constexpr std::int64_t kSmoothed = 8, kFrame = 16, kCorner = 64, kFaceOrCorner = 128;

std::vector<std::vector<PlotGroup>> verticesOf(const OdDbEntity& polyline) {
    std::vector<std::vector<PlotGroup>> vertices;
    for (OdDbObjectId id : OdDbObjectIdRange(polyline.objectId().stub(), nullptr, nullptr, true)) {
        const auto vertex = id.open();
        if (vertex && vertex->dxfName() == "VERTEX") vertices.push_back(groupsOf(*vertex));
    }
    return vertices;
}

}  // namespace

bool Shapes::addMesh(const OdDbEntity& polyline, const std::vector<PlotGroup>& groups) {
    const std::int64_t flags = groupOrZero(groups, 70).integer;
    if (flags & kPolygonMesh)
        addPolygonMesh(polyline, groups, flags);
    else if (flags & kPolyfaceMesh)
        addPolyfaceMesh(polyline);
    else
        return false;
    return true;
}

// M rows of N vertices; a smoothed mesh has those of its frame too, which do not show.
void Shapes::addPolygonMesh(const OdDbEntity& polyline, const std::vector<PlotGroup>& groups, std::int64_t flags) {
    const bool smoothed = groupOrZero(groups, 75).integer != 0;
    const auto m = static_cast<std::size_t>(std::max<std::int64_t>(groupOrZero(groups, smoothed ? 73 : 71).integer, 0)),
               n = static_cast<std::size_t>(std::max<std::int64_t>(groupOrZero(groups, smoothed ? 74 : 72).integer, 0));
    Corners corners;
    for (const std::vector<PlotGroup>& vertex : verticesOf(polyline)) {
        const std::int64_t kind = groupOrZero(vertex, 70).integer;
        if (smoothed ? (kind & kSmoothed) != 0 : (kind & kFrame) == 0) corners.push_back(groupOrZero(vertex, 10).point);
    }
    if (m == 0 || n == 0 || corners.size() < m * n) return;
    const auto addLine = [&](std::size_t first, std::size_t count, std::size_t step, bool closed) {
        list_.begin(DisplayList::Kind::kPolyline);
        for (std::size_t i = 0; i < count; ++i) list_.addPoint(corners[first + i * step]);
        if (closed) list_.addPoint(corners[first]);
        list_.end();
    };
    for (std::size_t row = 0; row < m; ++row) addLine(row * n, n, 1, (flags & kMeshClosedInN) != 0);
    for (std::size_t column = 0; column < n; ++column) addLine(column, m, n, (flags & kMeshClosedInM) != 0);
}

// Corners first, then faces of up to four, by the numbers of their corners; a negative number hides the edge after it.
void Shapes::addPolyfaceMesh(const OdDbEntity& polyline) {
    Corners corners;
    for (const std::vector<PlotGroup>& vertex : verticesOf(polyline)) {
        const std::int64_t kind = groupOrZero(vertex, 70).integer;
        if (kind & kCorner) {
            corners.push_back(groupOrZero(vertex, 10).point);
        } else if (kind & kFaceOrCorner) {
            std::vector<std::int64_t> numbers;
            for (int code = 71; code <= 74; ++code) {
                const std::int64_t number = groupOrZero(vertex, code).integer;
                if (number != 0 && std::abs(number) <= static_cast<std::int64_t>(corners.size()))
                    numbers.push_back(number);
            }
            for (std::size_t i = 0; i < numbers.size(); ++i) {
                if (numbers[i] < 0) continue;
                const auto from = static_cast<std::size_t>(numbers[i]),
                           to = static_cast<std::size_t>(std::abs(numbers[(i + 1) % numbers.size()]));
                list_.add(DisplayList::Kind::kPolyline, Corners{corners[from - 1], corners[to - 1]});
            }
        }
    }
}

}  // namespace host
