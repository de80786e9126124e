#include "drawingdb/spline.h"

#include <algorithm>
#include <array>

#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/geometry/arc_length.h"

using drawingdb::ArcLengths;
using drawingdb::ClassDescription;
using drawingdb::Describer;

OD_DEFINE_CLASS(OdDbSpline, OdDbCurve)

namespace {

constexpr int kHighestDegree = 25;
enum Flag : std::int16_t { kClosed = 1, kPeriodic = 2, kRational = 4, kPlanar = 8, kLinear = 16 };

void setCoordinate(std::vector<OdGePoint3d>& points, int part, double value) {
    if (part == 0) points.emplace_back();
    if (points.empty()) return;
    OdGePoint3d& point = points.back();
    (part == 0 ? point.x : part == 1 ? point.y : point.z) = value;
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------------------
// Files

const ClassDescription* OdDbSpline::description() const {
    static const ClassDescription d = drawingdb::describe<OdDbSpline>("SPLINE", &OdDbSpline::describe);
    return &d;
}

void OdDbSpline::describe(Describer& d) {
    auto& self = d.self<OdDbSpline>();
    describeCommon(d);
    d.zone("AcDbSpline");
    d.vector(210, self.normal_);
    d.required().int16(70, self.flags_);
    d.required().int16(71, self.degree_);
    d.required().int32(72, self.knotCount_);
    d.required().int32(73, self.controlCount_);
    d.required().int32(74, self.fitCount_);
    d.real(42, self.knotTolerance_);
    d.real(43, self.controlTolerance_);
    d.real(44, self.fitTolerance_);
    d.vector(12, self.startTangent_);
    d.vector(13, self.endTangent_);
    d.run({40, 41, 10, 20, 30, 11, 21, 31});
}

void OdDbSpline::readRunGroup(const drawingdb::Group& group, int) {
    const double value = groupReal(group, database()->core().format.binary).value_or(0);
    if (group.code == 40)
        knots_.push_back(value);
    else if (group.code == 41)
        weights_.push_back(value);
    else
        setCoordinate(group.code % 10 == 0 ? controlPoints_ : fitPoints_, group.code / 10 - 1, value);
}

void OdDbSpline::writeRun(drawingdb::GroupWriter& writer, int) const {
    for (const double knot : knots_) writer.real(40, knot);
    for (const double weight : weights_) writer.real(41, weight);
    for (const OdGePoint3d& p : controlPoints_) writer.point(10, p.x, p.y, p.z);
    for (const OdGePoint3d& p : fitPoints_) writer.point(11, p.x, p.y, p.z);
}

void OdDbSpline::clearRuns() {
    knots_.clear();
    weights_.clear();
    controlPoints_.clear();
    fitPoints_.clear();
}

void OdDbSpline::beforeEncode() {
    // Wrong counts in a file stay as they are until the points change.
    if (!runsChanged_ && !source_.empty()) return;
    knotCount_ = static_cast<std::int32_t>(knots_.size());
    controlCount_ = static_cast<std::int32_t>(controlPoints_.size());
    fitCount_ = static_cast<std::int32_t>(fitPoints_.size());
}

void OdDbSpline::afterDecode() {
    shape_.reset();
    lengths_.reset();
}

void OdDbSpline::shapeChanged() {
    shape_.reset();
    lengths_.reset();
    runsChanged();
}

// ---------------------------------------------------------------------------------------------------------------------
// Setting

bool OdDbSpline::Shape::fits() const {
    const auto order = static_cast<std::size_t>(degree) + 1;
    return degree >= 1 && degree <= kHighestDegree && points.size() >= order && knots.size() == points.size() + order &&
           std::is_sorted(knots.begin(), knots.end()) && end() > start() &&
           (weights.empty() || (weights.size() == points.size() &&
                                std::all_of(weights.begin(), weights.end(), [](double w) { return w > 0; })));
}

void OdDbSpline::setNurbs(int degree, std::vector<double> knots, std::vector<OdGePoint3d> controlPoints,
                          std::vector<double> weights, bool closed) {
    Shape wanted{degree, std::move(knots), std::move(controlPoints), std::move(weights)};
    if (!wanted.fits())
        throw OdError(OdResult::invalidInput, "the degree, knots, control points and weights make no spline");
    assertWriteEnabled();
    degree_ = static_cast<std::int16_t>(degree);
    knots_ = std::move(wanted.knots);
    controlPoints_ = std::move(wanted.points);
    weights_ = std::move(wanted.weights);
    fitPoints_.clear();
    flags_ = static_cast<std::int16_t>((closed ? kClosed : 0) | (weights_.empty() ? 0 : kRational));
    shapeChanged();
}

void OdDbSpline::setFitPoints(std::vector<OdGePoint3d> points, const OdGeVector3d& startTangent,
                              const OdGeVector3d& endTangent) {
    Shape shape = throughFitPoints(points, startTangent, endTangent);
    if (!shape.fits()) throw OdError(OdResult::invalidInput, "a spline goes through two different points or more");
    assertWriteEnabled();
    degree_ = 3;
    // Other programs draw what stands in the control points.
    knots_ = std::move(shape.knots);
    controlPoints_ = std::move(shape.points);
    weights_.clear();
    fitPoints_ = std::move(points);
    startTangent_ = startTangent;
    endTangent_ = endTangent;
    flags_ = 0;
    shapeChanged();
}

OdResult OdDbSpline::transformBy(const OdGeMatrix3d& matrix) {
    assertWriteEnabled();
    // The distances between fit points make the knots: under an unequal scale the curve through their images is another
    // one than the image of the curve.
    if (controlPoints_.empty() && shape() && !matrix.isUniScaledOrtho()) {
        degree_ = static_cast<std::int16_t>(shape_->degree);
        knots_ = shape_->knots;
        weights_ = shape_->weights;
        controlPoints_ = shape_->points;
    }
    for (std::vector<OdGePoint3d>* points : {&controlPoints_, &fitPoints_})
        for (OdGePoint3d& point : *points) point.transformBy(matrix);
    startTangent_.transformBy(matrix);
    endTangent_.transformBy(matrix);
    const OdGeMatrix3d plane = matrix * OdGeMatrix3d::planeToWorld(normal_);
    const OdGeVector3d normal = plane.xAxis().crossProduct(plane.yAxis());
    if (!normal.isZeroLength() && !normal.normal().isEqualTo(normal_, {1e-12, 1e-12})) normal_ = normal.normal();
    shapeChanged();
    return OdResult::ok;
}

// ---------------------------------------------------------------------------------------------------------------------
// The curve

// Chord lengths make the knots. The tangents at the points solve the equations that make the curve smooth to the
// second derivative; each cubic piece between two points with their tangents then gives a control point (the pole of
// its knots before, at and behind the piece's beginning).
OdDbSpline::Shape OdDbSpline::throughFitPoints(const std::vector<OdGePoint3d>& all, OdGeVector3d startTangent,
                                               OdGeVector3d endTangent) {
    std::vector<OdGePoint3d> points;
    for (const OdGePoint3d& point : all)
        if (points.empty() || !point.isEqualTo(points.back())) points.push_back(point);
    if (points.size() < 2) return {};
    const std::size_t last = points.size() - 1;
    std::vector<double> t{0}, step;
    for (std::size_t i = 0; i < last; ++i) {
        step.push_back(points[i].distanceTo(points[i + 1]));
        t.push_back(t.back() + step.back());
    }
    // One row a point: below * T[i-1] + diagonal * T[i] + above * T[i+1] = right side.
    std::vector<double> diagonal(last + 1), above(last + 1);
    std::vector<OdGeVector3d> tangent(last + 1);
    const auto chord = [&](std::size_t i) { return (points[i + 1] - points[i]) / step[i]; };
    for (std::size_t i = 0; i <= last; ++i) {
        double below = 0;
        if (i == 0) {
            const bool given = !startTangent.isZeroLength();
            diagonal[i] = given ? 1 : 2;
            above[i] = given ? 0 : 1;
            tangent[i] = given ? startTangent.normal() : chord(0) * 3;
        } else if (i == last) {
            const bool given = !endTangent.isZeroLength();
            below = given ? 0 : 1;
            diagonal[i] = given ? 1 : 2;
            tangent[i] = given ? endTangent.normal() : chord(last - 1) * 3;
        } else {
            below = step[i];
            diagonal[i] = 2 * (step[i - 1] + step[i]);
            above[i] = step[i - 1];
            tangent[i] = (chord(i - 1) * step[i] + chord(i) * step[i - 1]) * 3;
        }
        if (i == 0) continue;
        const double factor = below / diagonal[i - 1];
        diagonal[i] -= factor * above[i - 1];
        tangent[i] -= tangent[i - 1] * factor;
    }
    for (std::size_t i = last + 1; i-- > 0;) {
        if (i < last) tangent[i] -= tangent[i + 1] * above[i];
        tangent[i] /= diagonal[i];
    }
    Shape shape;
    shape.degree = 3;
    shape.knots.assign(3, t.front());
    shape.knots.insert(shape.knots.end(), t.begin(), t.end());
    shape.knots.insert(shape.knots.end(), 3, t.back());
    shape.points.push_back(points.front());
    for (std::size_t i = 0; i < last; ++i) {
        const OdGePoint3d first = points[i] + tangent[i] * (step[i] / 3);
        const OdGePoint3d second = points[i + 1] - tangent[i + 1] * (step[i] / 3);
        const double before = i > 0 ? -step[i - 1] / step[i] : 0;
        shape.points.push_back(first + (second - first) * before);
        if (i + 1 == last) shape.points.push_back(second);
    }
    shape.points.push_back(points.back());
    return shape;
}

const OdDbSpline::Shape* OdDbSpline::shape() const {
    if (!shape_) {
        Shape stored{degree_, knots_, controlPoints_, weights_};
        shape_ = std::make_shared<Shape>(
            controlPoints_.empty() ? throughFitPoints(fitPoints_, startTangent_, endTangent_) : std::move(stored));
        shapeFits_ = shape_->fits();
    }
    return shapeFits_ ? shape_.get() : nullptr;
}

// De Boor's scheme on the points times their weights. The last step but one gives the derivative.
OdGePoint3d OdDbSpline::Shape::at(double parameter, OdGeVector3d* derivative) const {
    struct Weighted {
        OdGeVector3d v;
        double w;
    };
    const double inside = std::clamp(parameter, start(), end());
    // The knot interval, never an empty one: the last interval takes the end.
    const auto begin = knots.begin() + degree;
    auto next = std::upper_bound(begin, knots.begin() + static_cast<std::ptrdiff_t>(points.size()) + 1, inside);
    if (next == knots.begin() + static_cast<std::ptrdiff_t>(points.size()) + 1)
        next = std::lower_bound(begin, next, end());
    const auto span = static_cast<std::size_t>(next - knots.begin()) - 1;
    const auto p = static_cast<std::size_t>(degree);
    std::array<Weighted, kHighestDegree + 1> pole;
    for (std::size_t j = 0; j <= p; ++j) {
        const std::size_t index = span - p + j;
        const double w = weights.empty() ? 1 : weights[index];
        pole[j] = {points[index].asVector() * w, w};
    }
    for (std::size_t level = 1; level <= p; ++level) {
        if (level == p && derivative) {
            const double scale = static_cast<double>(degree) / (knots[span + 1] - knots[span]);
            const OdGeVector3d slope = (pole[p].v - pole[p - 1].v) * scale;
            const double weightSlope = (pole[p].w - pole[p - 1].w) * scale;
            const double part = (inside - knots[span]) / (knots[span + 1] - knots[span]);
            const OdGeVector3d v = pole[p - 1].v * (1 - part) + pole[p].v * part;
            const double w = pole[p - 1].w * (1 - part) + pole[p].w * part;
            *derivative = (slope - v * (weightSlope / w)) / w;
        }
        for (std::size_t j = p; j >= level; --j) {
            const double low = knots[span - p + j], high = knots[span + 1 + j - level];
            const double part = (inside - low) / (high - low);
            pole[j].v = pole[j - 1].v * (1 - part) + pole[j].v * part;
            pole[j].w = pole[j - 1].w * (1 - part) + pole[j].w * part;
        }
    }
    const OdGeVector3d v = pole[p].v / pole[p].w;
    return {v.x, v.y, v.z};
}

double OdDbSpline::startParam() const { return shape() ? shape()->start() : 0; }
double OdDbSpline::endParam() const { return shape() ? shape()->end() : 0; }

OdGePoint3d OdDbSpline::pointAtParam(double parameter) const {
    if (const Shape* curve = shape()) return curve->at(parameter, nullptr);
    if (!controlPoints_.empty()) return controlPoints_.front();
    return fitPoints_.empty() ? OdGePoint3d() : fitPoints_.front();
}

OdGeVector3d OdDbSpline::firstDerivAtParam(double parameter) const {
    OdGeVector3d derivative;
    if (const Shape* curve = shape()) curve->at(parameter, &derivative);
    return derivative;
}

std::vector<double> OdDbSpline::breakParams() const {
    const Shape* curve = shape();
    if (!curve) return {0, 0};
    std::vector<double> breaks(curve->knots.begin() + curve->degree,
                               curve->knots.begin() + static_cast<std::ptrdiff_t>(curve->points.size()) + 1);
    breaks.erase(std::unique(breaks.begin(), breaks.end()), breaks.end());
    return breaks;
}

const ArcLengths& OdDbSpline::lengths() const {
    if (!lengths_) lengths_ = std::make_shared<ArcLengths>(breakParams(), [this](double t) { return speedAt(t); });
    return *lengths_;
}
double OdDbSpline::distAtParam(double parameter) const {
    return lengths().lengthAt(
        parameter, [this](double t) { return speedAt(t); });
}
double OdDbSpline::paramAtDist(double distance) const {
    return lengths().parameterAt(
        distance, [this](double t) { return speedAt(t); });
}

// Where the curve turns back along one of the world's axes, its derivative there changes sign.
bool OdDbSpline::geomExtents(OdGeExtents3d& extents) const {
    const Shape* curve = shape();
    if (!curve) return false;
    constexpr int kSamples = 16;
    constexpr int kHalvings = 40;
    extents = OdGeExtents3d();
    const auto slope = [&](double parameter, int axis) {
        const OdGeVector3d d = firstDerivAtParam(parameter);
        return axis == 0 ? d.x : axis == 1 ? d.y : d.z;
    };
    const std::vector<double> breaks = breakParams();
    for (std::size_t piece = 1; piece < breaks.size(); ++piece) {
        const double step = (breaks[piece] - breaks[piece - 1]) / kSamples;
        for (int i = 0; i < kSamples; ++i) {
            const double from = breaks[piece - 1] + step * i;
            extents.addPoint(pointAtParam(from));
            for (int axis = 0; axis < 3; ++axis) {
                double low = from, high = from + step;
                const bool rising = slope(low, axis) > 0;
                if (rising == (slope(high, axis) > 0)) continue;
                for (int k = 0; k < kHalvings; ++k) {
                    const double middle = low + (high - low) / 2;
                    ((slope(middle, axis) > 0) == rising ? low : high) = middle;
                }
                extents.addPoint(pointAtParam(low));
            }
        }
    }
    extents.addPoint(pointAtParam(breaks.back()));
    return true;
}
