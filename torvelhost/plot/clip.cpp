// A reference's clip is a spatial filter in its extension dictionary, below ACAD_FILTER:
//
//     70 number of corners   10 corners; two are opposite ones of a rectangle   71 whether it is in force
//     72 40, 73 41 a plane in front and one behind, which do not matter from above
//     40 ... twelve numbers: from where the reference was when it was clipped back into its block
//     40 ... twelve numbers: from there into the plane of the corners
//
// A matrix is written as its first three rows.
#include "torvelhost/plot/clip.h"

#define BOOST_GEOMETRY_NO_ROBUSTNESS  // no grid of integers: the corners of clips lie a pixel and more apart
#include <boost/geometry/algorithms/correct.hpp>
#include <boost/geometry/algorithms/intersection.hpp>
#include <boost/geometry/geometries/point_xy.hpp>
#include <boost/geometry/geometries/polygon.hpp>

#include "drawingdb/dictionary.h"
#include "torvelhost/plot/groups.h"

namespace host {
namespace {

constexpr std::size_t kMatrixNumbers = 12;

OdGeMatrix3d matrixOf(std::span<const double> numbers) {
    OdGeMatrix3d matrix;
    for (std::size_t i = 0; i < kMatrixNumbers; ++i) matrix.entry[i / 4][i % 4] = numbers[i];
    return matrix;
}

using Point = boost::geometry::model::d2::point_xy<double>;
using Polygon = boost::geometry::model::polygon<Point>;

Polygon polygonOf(const Picture::Contour& contour) {
    Polygon polygon;
    for (const OdGePoint2d& corner : contour) polygon.outer().emplace_back(corner.x, corner.y);
    boost::geometry::correct(polygon);
    return polygon;
}

}  // namespace

std::optional<std::vector<OdGePoint3d>> clipOf(const OdDbBlockReference& reference) {
    if (!reference.isClipped()) return std::vector<OdGePoint3d>();
    const auto dictionary = reference.extensionDictionary().openAs<OdDbDictionary>();
    const auto filter =
        dictionary->getAt(L"ACAD_FILTER").openAs<OdDbDictionary>()->getAt(L"SPATIAL").openIf<OdDbObject>();
    if (!filter || filter->dxfName() != "SPATIAL_FILTER") return std::nullopt;
    const std::vector<PlotGroup> groups = groupsOf(*filter);
    if (groupOrZero(groups, 71).integer == 0) return std::vector<OdGePoint3d>();
    std::vector<OdGePoint3d> corners;
    std::vector<double> numbers;
    for (const PlotGroup& group : groups) {
        if (group.code == 10) corners.push_back(group.point);
        if (group.code == 40) numbers.push_back(group.real);
    }
    if (corners.size() == 2) {
        const OdGePoint3d low = corners[0], high = corners[1];
        corners = {low, {high.x, low.y, 0}, high, {low.x, high.y, 0}};
    }
    if (corners.size() < 3 || numbers.size() < 2 * kMatrixNumbers) return std::nullopt;
    const std::span last = std::span(numbers).last(2 * kMatrixNumbers);
    const OdGeMatrix3d toPlane = matrixOf(last.last(kMatrixNumbers));
    if (toPlane.isSingular()) return std::nullopt;
    const OdGeMatrix3d toBlock = matrixOf(last.first(kMatrixNumbers)) * toPlane.inverse();
    for (OdGePoint3d& corner : corners) corner = toBlock * corner;
    return corners;
}

std::optional<std::vector<Picture::Contour>> commonParts(const Picture::Contour& one, const Picture::Contour& other) {
    std::vector<Polygon> parts;
    try {
        boost::geometry::intersection(polygonOf(one), polygonOf(other), parts);
    } catch (const boost::geometry::exception&) {
        return std::nullopt;
    }
    std::vector<Picture::Contour> contours;
    for (const Polygon& part : parts) {
        Picture::Contour& contour = contours.emplace_back();
        for (const Point& point : part.outer()) contour.emplace_back(point.x(), point.y());
        contour.pop_back();  // the first one again
    }
    return contours;
}

}  // namespace host
