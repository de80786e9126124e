// Meshes: polylines whose vertices are a grid, or corners and faces, and the kind that can be subdivided.
#include <algorithm>

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

// 91 how often it is subdivided   92 so many corners: 10...   93 so many numbers (90), of each face how many corners it
// has and which   94 so many edges, 95 so many creases of them. The faces show as they are before they are subdivided,
// an edge between two of them once.
bool Shapes::addSubdivisionMesh(const std::vector<PlotGroup>& groups) {
    Corners corners;
    std::vector<std::int64_t> faces;
    std::int64_t size = 0;
    bool inFaces = false;
    for (const PlotGroup& group : groups) {
        if (group.code == 10) corners.push_back(group.point);
        if (group.code == 93) size = group.integer;
        if (group.code == 90 && inFaces) faces.push_back(group.integer);
        inFaces = group.code == 93 || (inFaces && group.code == 90);
    }
    const auto count = static_cast<std::int64_t>(corners.size());
    std::vector<std::pair<std::size_t, std::size_t>> edges;
    bool isSound = size == static_cast<std::int64_t>(faces.size());
    for (std::span<const std::int64_t> rest = faces; isSound && !rest.empty();) {
        const std::int64_t number = rest[0];
        rest = rest.subspan(1);
        isSound = number > 0 && number <= static_cast<std::int64_t>(rest.size());
        if (!isSound) break;
        const auto face = rest.first(static_cast<std::size_t>(number));
        rest = rest.subspan(face.size());
        isSound = std::ranges::all_of(face, [count](std::int64_t corner) { return corner >= 0 && corner < count; });
        for (std::size_t i = 0; isSound && i < face.size(); ++i) {
            const auto [low, high] = std::minmax(face[i], face[(i + 1) % face.size()]);
            if (low != high) edges.emplace_back(low, high);
        }
    }
    std::ranges::sort(edges);
    edges.erase(std::unique(edges.begin(), edges.end()), edges.end());  // clang 14 takes no subrange
    for (const auto& [from, to] : edges) list_.add(DisplayList::Kind::kPolyline, Corners{corners[from], corners[to]});
    return isSound;
}

}  // namespace host
