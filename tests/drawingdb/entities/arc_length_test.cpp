// Equal lengths along every kind of curve, against lengths found by another way.
#include <algorithm>
#include <cmath>

#include "drawingdb/curves.h"
#include "drawingdb/ellipse.h"
#include "drawingdb/old_polyline.h"
#include "drawingdb/spline.h"
#include "entity_fixture.h"

namespace {

// The length between two parameters, the curve being smooth in between, by chords alone: no derivative, no quadrature
// rule. What halving the chords changes tells the error of all even orders (Richardson), until nothing changes.
double smoothLength(const OdDbCurve& curve, double from, double to, double tolerance) {
    constexpr int kMostHalvings = 16;
    std::vector<double> previous;
    for (int k = 0;; ++k) {
        const int chords = 2 << k;
        double sum = 0;
        OdGePoint3d last = curve.pointAtParam(from);
        for (int i = 1; i <= chords; ++i) {
            const OdGePoint3d next = curve.pointAtParam(i == chords ? to : from + (to - from) * i / chords);
            sum += last.distanceTo(next);
            last = next;
        }
        std::vector<double> row{sum};
        double factor = 4;
        for (const double coarser : previous) {
            row.push_back(row.back() + (row.back() - coarser) / (factor - 1));
            factor *= 4;
        }
        const bool settled = k > 1 && std::fabs(row.back() - previous.back()) <= tolerance;
        previous = std::move(row);
        if (settled || k == kMostHalvings) return previous.back();
    }
}

double chordLength(const OdDbCurve& curve, double from, double to, double tolerance) {
    double length = 0;
    const std::vector<double> breaks = curve.breakParams();
    for (auto next = std::upper_bound(breaks.begin(), breaks.end(), from); from < to; ++next) {
        const double end = next == breaks.end() ? to : std::min(*next, to);
        length += smoothLength(curve, from, end, tolerance);
        from = end;
    }
    return length;
}

// Divides as a drafter does and measures the parts one after the other, or every so many at once.
void expectEqualParts(const OdDbCurve& curve, int parts, int atOnce, const char* what) {
    const double length = curve.distAtParam(curve.endParam());
    ASSERT_GT(length, 0) << what;
    double measured = 0, worst = 0, last = curve.startParam();
    for (int i = atOnce; i <= parts; i += atOnce) {
        const double parameter = curve.paramAtDist(length * i / parts);
        measured += chordLength(curve, last, parameter, 1e-14 * length);
        worst = std::max(worst, std::fabs(measured - length * i / parts));
        last = parameter;
    }
    EXPECT_LE(worst, 1e-9 * length) << what << ", cut into " << parts;
    EXPECT_EQ(last, curve.endParam()) << what;
}

OdSmartPtr<OdDbSpline> spline(int degree, std::vector<double> knots, std::vector<OdGePoint3d> points,
                              std::vector<double> weights = {}) {
    auto curve = OdDbSpline::createObject();
    curve->setNurbs(degree, std::move(knots), std::move(points), std::move(weights));
    return curve;
}

std::vector<std::pair<const char*, OdSmartPtr<OdDbCurve>>> curvesToDivide() {
    const OdGeVector3d tilted = OdGeVector3d(1, 2, 3).normal();
    const OdGeVector3d across = tilted.perpVector();
    std::vector<std::pair<const char*, OdSmartPtr<OdDbCurve>>> curves;
    const auto ellipse = [&](const char* what, double size, double ratio, double start, double end) {
        auto curve = OdDbEllipse::createObject();
        curve->set({5, -3, 2}, tilted, across * size, ratio, start, end);
        curves.emplace_back(what, curve);
    };
    ellipse("an ellipse", 10, 0.4, 0, drawingdb::kTwoPi);
    ellipse("a needle", 1000, 0.001, 0, drawingdb::kTwoPi);
    ellipse("a part across the start", 3, 0.7, 5, 8);
    curves.emplace_back("a spline with uneven knots",
                        spline(3, {0, 0, 0, 0, 0.1, 5, 5, 9, 9, 9, 9},
                               {{0, 0, 0}, {1, 9, 2}, {7, -4, 1}, {9, 9, 9}, {20, 0, 0}, {21, 1, 0}, {30, 4, -5}}));
    curves.emplace_back("a weighted spline", spline(2, {0, 0, 0, 1, 2, 2, 2},
                                                    {{0, 0, 0}, {5, 8, 0}, {9, -3, 0}, {12, 1, 0}}, {1, 7, 0.2, 1}));
    // Two control points alike: the curve stands still there for a moment and turns back.
    curves.emplace_back("a spline with a cusp",
                        spline(3, {0, 0, 0, 0, 1, 1, 1, 1}, {{0, 0, 0}, {10, 10, 0}, {0, 10, 0}, {10, 0, 0}}));
    auto fitted = OdDbSpline::createObject();
    fitted->setFitPoints({{0, 0, 0}, {3, 4, 0}, {3, 4, 0}, {10, -2, 5}, {11, 0, 0}}, OdGeVector3d(0, 5, 0));
    curves.emplace_back("a spline through points", fitted);
    auto polyline = OdDbPolyline::createObject();
    polyline->setNormal(tilted);
    const double bulges[] = {0.5, 0, -2, 1e-7, 0};
    for (std::size_t i = 0; i < std::size(bulges); ++i)
        polyline->addVertexAt(i, {{3.0 * static_cast<double>(i), i % 2 ? 7.0 : -1.0}, bulges[i], -1, -1, 0});
    polyline->setClosed(true);
    curves.emplace_back("a polyline with bulges", polyline);
    return curves;
}

TEST(ArcLengths, AreExactForTheMostPartsThereCanBe) {
    static_assert(32767 % 7 == 0);
    for (const auto& [what, curve] : curvesToDivide()) expectEqualParts(*curve, 32767, 7, what);
}

TEST(ArcLengths, AgreeWithChordsAndTheirReverse) {
    for (const auto& [what, curve] : curvesToDivide()) {
        const double length = curve->distAtParam(curve->endParam());
        EXPECT_NEAR(chordLength(*curve, curve->startParam(), curve->endParam(), 1e-12 * length), length, 1e-9 * length)
            << what;
        for (const double part : {0.0, 0.01, 0.5, 0.77, 1.0})
            EXPECT_NEAR(curve->distAtParam(curve->paramAtDist(part * length)), part * length, 1e-12 * length) << what;
        EXPECT_EQ(curve->paramAtDist(-1), curve->startParam()) << what;
        EXPECT_EQ(curve->paramAtDist(2 * length), curve->endParam()) << what;
        // The derivative is the slope of the points.
        const double middle = curve->paramAtDist(0.3 * length), step = (curve->endParam() - curve->startParam()) * 1e-6;
        const OdGeVector3d slope =
            (curve->pointAtParam(middle + step) - curve->pointAtParam(middle - step)) / (2 * step);
        EXPECT_LT((slope - curve->firstDerivAtParam(middle)).length(), 1e-5 * (1 + slope.length())) << what;
    }
}

// Lengths that are known.
TEST(ArcLengths, KnownOnes) {
    auto round = OdDbEllipse::createObject();
    round->set({}, OdGeVector3d::kZAxis, {5, 0, 0}, 1);
    EXPECT_NEAR(round->distAtParam(drawingdb::kTwoPi), 10 * drawingdb::kPi, 1e-12);
    EXPECT_TRUE(round->isClosed());
    // A quarter of a circle as a weighted spline.
    const double half = std::sqrt(0.5);
    const auto quarter = spline(2, {0, 0, 0, 1, 1, 1}, {{1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {1, half, 1});
    EXPECT_NEAR(quarter->distAtParam(1), drawingdb::kPi / 2, 1e-14);
    expectNear(quarter->pointAtDist(drawingdb::kPi / 6), {std::cos(drawingdb::kPi / 6), 0.5, 0}, 1e-13, "30 degrees");
    // A spline that is a line, passed at an uneven pace.
    const auto straight = spline(2, {0, 0, 0, 1, 1, 1}, {{0, 0, 0}, {1, 0, 0}, {10, 0, 0}});
    expectNear(straight->pointAtDist(2.5), {2.5, 0, 0}, 1e-13, "a quarter");
    auto points = OdDbSpline::createObject();
    points->setFitPoints({{0, 0, 0}, {4, 0, 0}, {5, 0, 0}});
    expectNear(points->pointAtDist(4.5), {4.5, 0, 0}, 1e-13, "through points of a line");
    points->setFitPoints({{0, 0, 0}, {4, 3, 0}, {9, 0, 1}});
    expectNear(points->pointAtParam(5), {4, 3, 0}, 1e-13, "the fit point");
}

// A polyline that was measured is measured anew after a change, and undone changes count too.
TEST(ArcLengths, FollowChanges) {
    const auto database =
        drawing("AC1032",
                "0|LWPOLYLINE|5|A|100|AcDbEntity|8|0|100|AcDbPolyline|90|2|70|0|10|0|20|0|10|4|20|0|"
                "0|SPLINE|5|B|100|AcDbEntity|8|0|100|AcDbSpline|70|0|71|1|72|4|73|2|74|0|40|0|40|0|40|1|40|1|"
                "10|0|20|0|30|0|10|6|20|8|30|0");
    const auto polyline = opened<OdDbPolyline>(database, 0xA);
    const auto curve = opened<OdDbSpline>(database, 0xB);
    EXPECT_EQ(polyline->distAtParam(1), 4);
    EXPECT_NEAR(curve->distAtParam(1), 10, 1e-12);
    const std::size_t before = database->undoPosition();
    polyline->upgradeOpen();
    polyline->setVertexAt(1, {{9, 0}, 0, -1, -1, 0});
    curve->upgradeOpen();
    curve->transformBy(OdGeMatrix3d::scaling(OdGeScale3d(2)));
    EXPECT_EQ(polyline->distAtParam(1), 9);
    EXPECT_NEAR(curve->distAtParam(1), 20, 1e-12);
    database->undoTo(before);
    EXPECT_EQ(polyline->distAtParam(1), 4);
    EXPECT_NEAR(curve->distAtParam(1), 10, 1e-12);
}

// Points without extent, and curves that a damaged file leaves without sense.
TEST(ArcLengths, OfNothing) {
    const auto database = drawing(
        "AC1032",
        "0|LINE|5|A|100|AcDbEntity|8|0|100|AcDbLine|10|1|20|2|30|3|11|1|21|2|31|3|"
        "0|LWPOLYLINE|5|B|100|AcDbEntity|8|0|100|AcDbPolyline|90|3|70|1|10|1|20|2|10|1|20|2|10|1|20|2|"
        "0|LWPOLYLINE|5|C|100|AcDbEntity|8|0|100|AcDbPolyline|90|0|70|1|"
        "0|SPLINE|5|D|100|AcDbEntity|8|0|100|AcDbSpline|70|0|71|3|40|0|40|1|10|1|20|2|30|3|10|4|20|4|30|4|"
        "0|SPLINE|5|E|100|AcDbEntity|8|0|100|AcDbSpline|70|0|71|3|"
        "0|SPLINE|5|F|100|AcDbEntity|8|0|100|AcDbSpline|70|0|71|1|40|0|40|0|40|1|40|1|10|1|20|2|30|3|10|1|20|2|30|3|"
        "0|ELLIPSE|5|10|100|AcDbEntity|8|0|100|AcDbEllipse|10|1|20|2|30|3|11|0|21|0|31|0|40|1|41|0|42|6|"
        "0|CIRCLE|5|11|100|AcDbEntity|8|0|100|AcDbCircle|10|1|20|2|30|3|40|0|"
        "0|SPLINE|5|14|100|AcDbEntity|8|0|100|AcDbSpline|70|0|71|1|40|0|40|0|40|1|40|1|10|1e308|20|2|30|3|10|-1e308|20|"
        "2|30|3|"
        "0|POLYLINE|5|12|100|AcDbEntity|8|0|100|AcDb2dPolyline|66|1|10|0|20|0|30|0|0|SEQEND|5|13");
    for (const std::uint64_t handle : {0xA, 0xB, 0xC, 0xD, 0xE, 0xF, 0x10, 0x11, 0x12}) {
        const auto curve = opened<OdDbCurve>(database, handle);
        EXPECT_EQ(curve->distAtParam(curve->endParam()), 0) << std::hex << handle;
        const OdGePoint3d point = curve->pointAtDist(0);
        EXPECT_TRUE(std::isfinite(point.x + point.y + point.z)) << std::hex << handle;
        EXPECT_EQ(curve->firstDerivAtParam(curve->startParam()).length(), 0) << std::hex << handle;
    }
    const auto endless = opened<OdDbCurve>(database, 0x14);
    EXPECT_EQ(endless->distAtParam(endless->endParam()), 0) << "longer than any number";
    EXPECT_EQ(endless->paramAtDist(1), endless->endParam());
}

}  // namespace
