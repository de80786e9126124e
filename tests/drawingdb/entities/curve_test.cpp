// Curves: measures, transforms, extents, files.
#include "drawingdb/block.h"
#include "drawingdb/curves.h"
#include "entity_fixture.h"

namespace {

// The curve's length by its derivative alone, segment by segment (Simpson's rule).
double integratedLength(const OdDbCurve& curve, double from, double to) {
    constexpr int kSteps = 2000;
    double sum = 0;
    const auto speed = [&](double p) { return curve.firstDerivAtParam(p).length(); };
    const double h = (to - from) / kSteps;
    for (int i = 0; i < kSteps; ++i) {
        // Not at the very ends, where the derivative of a polyline jumps.
        const double a = from + h * i, inset = h * 1e-9;
        sum += h / 6 * (speed(a + inset) + 4 * speed(a + h / 2) + speed(a + h - inset));
    }
    return sum;
}

class Curves : public RandomTransforms {
  protected:
    OdSmartPtr<OdDbLine> line() {
        auto curve = OdDbLine::createObject();
        curve->setStartPoint(point());
        curve->setEndPoint(point());
        return curve;
    }
    OdSmartPtr<OdDbCircle> circle() {
        auto curve = OdDbCircle::createObject();
        place(*curve);
        return curve;
    }
    OdSmartPtr<OdDbArc> arc() {
        auto curve = OdDbArc::createObject();
        place(*curve);
        curve->setAngles(number(0, 6.28), number(0, 6.28));
        return curve;
    }
    OdSmartPtr<OdDbPolyline> polyline(bool bulges) {
        auto curve = OdDbPolyline::createObject();
        if (chance()) curve->setNormal(direction());
        curve->setElevation(number(-5, 5));
        const int count = static_cast<int>(number(2, 9));
        for (int i = 0; i < count; ++i) {
            OdDbPolyline::Vertex vertex;
            vertex.point = point().xy();
            if (bulges && i % 3 != 2) vertex.bulge = number(-3, 3) * (chance() ? 1 : 1e-7);
            if (bulges) vertex.startWidth = 1;
            curve->addVertexAt(curve->numVerts(), vertex);
        }
        curve->setClosed(chance());
        return curve;
    }
    std::vector<OdSmartPtr<OdDbCurve>> oneOfEach() {
        return {line(), circle(), arc(), polyline(true), polyline(false)};
    }

  private:
    void place(OdDbCircle& curve) {
        if (chance()) curve.setNormal(direction());
        curve.setCenter(point());
        curve.setRadius(number(0.1, 20));
    }
};

std::vector<OdGePoint3d> pointsAlong(const OdDbCurve& curve, int count) {
    std::vector<OdGePoint3d> points;
    const double whole = curve.distAtParam(curve.endParam());
    for (int i = 0; i <= count; ++i) points.push_back(curve.pointAtParam(curve.paramAtDist(whole * i / count)));
    return points;
}

TEST_F(Curves, LengthsAreThoseOfTheDerivative) {
    for (int i = 0; i < 20; ++i)
        for (const auto& curve : oneOfEach()) {
            // A polyline segment by segment, the others at once.
            const bool segments = curve->isKindOf(OdDbPolyline::desc());
            const int pieces = segments ? static_cast<int>(curve->endParam()) : 1;
            const double start = curve->startParam(), step = (curve->endParam() - start) / pieces;
            double length = 0;
            for (int k = 0; k < pieces; ++k)
                length += integratedLength(*curve, start + step * k, start + step * (k + 1));
            EXPECT_NEAR(curve->distAtParam(curve->endParam()), length, 1e-6 * length) << curve->isA()->name();
        }
}

TEST_F(Curves, PointsFollowFromDistancesAndBack) {
    for (int i = 0; i < 50; ++i)
        for (const auto& curve : oneOfEach()) {
            const double whole = curve->distAtParam(curve->endParam());
            const double distance = number(0, whole), parameter = curve->paramAtDist(distance);
            EXPECT_NEAR(curve->distAtParam(parameter), distance, 1e-9 * whole) << curve->isA()->name();
            // The derivative is what the points say it is.
            constexpr double kStep = 1e-6;
            const OdGeVector3d slope =
                (curve->pointAtParam(parameter + kStep) - curve->pointAtParam(parameter)) / kStep;
            const OdGeVector3d derivative = curve->firstDerivAtParam(parameter);
            const bool acrossVertex = std::floor(parameter) != std::floor(parameter + kStep);
            EXPECT_TRUE(acrossVertex || slope.isEqualTo(derivative, {1e-3, 1e-3 * (1 + derivative.length())}))
                << curve->isA()->name();
        }
}

TEST_F(Curves, TransformedCurvesRunThroughTheTransformedPoints) {
    for (int i = 0; i < 100; ++i)
        for (const auto& curve : oneOfEach()) {
            const OdGeMatrix3d matrix = similarity();
            std::vector<OdGePoint3d> expected = pointsAlong(*curve, 12);
            for (OdGePoint3d& p : expected) p.transformBy(matrix);
            ASSERT_EQ(curve->transformBy(matrix), OdResult::ok);
            std::vector<OdGePoint3d> points = pointsAlong(*curve, 12);
            // Mirrored arcs and circles run the other way round; circles also begin elsewhere.
            if (curve->isA() == OdDbCircle::desc()) {
                const auto& round = static_cast<OdDbCircle&>(*curve);
                for (const OdGePoint3d& p : expected) {
                    EXPECT_NEAR(p.distanceTo(round.center()), round.radius(), 1e-9 * (100 + round.radius()));
                    EXPECT_NEAR((p - round.center()).dotProduct(round.normal()), 0, 1e-8 * (100 + round.radius()));
                }
                continue;
            }
            if (!points.front().isEqualTo(expected.front(), {1e-6, 1e-6})) std::reverse(points.begin(), points.end());
            for (std::size_t k = 0; k < points.size(); ++k)
                expectNear(points[k], expected[k], 1e-7, curve->isA()->name());
        }
}

TEST_F(Curves, UnequalScalesBendWhatIsStraightAndAreRefusedByWhatIsRound) {
    const OdGeMatrix3d squeeze = OdGeMatrix3d::scaling(OdGeScale3d(2, 1, 1));
    const OdGeMatrix3d nearly = OdGeMatrix3d::scaling(OdGeScale3d(2, 2 * (1 + 1e-11), 2));
    const OdGeMatrix3d flattening = OdGeMatrix3d::scaling(OdGeScale3d(0, 1, 1));
    for (const OdSmartPtr<OdDbCurve>& curve :
         {OdSmartPtr<OdDbCurve>(circle()), OdSmartPtr<OdDbCurve>(arc()), OdSmartPtr<OdDbCurve>(polyline(true))}) {
        const auto before = pointsAlong(*curve, 5);
        EXPECT_EQ(curve->transformBy(squeeze), OdResult::transformRefused) << curve->isA()->name();
        EXPECT_EQ(pointsAlong(*curve, 5), before) << curve->isA()->name();
        EXPECT_EQ(curve->transformBy(nearly), OdResult::ok) << curve->isA()->name();
    }
    // Only the scale within the plane counts, and that what rises from it still does so at right angles.
    auto flatArc = arc();
    flatArc->setNormal(OdGeVector3d::kZAxis);
    flatArc->setRadius(3);
    EXPECT_EQ(flatArc->transformBy(OdGeMatrix3d::scaling(OdGeScale3d(2, 2, 1))), OdResult::ok);
    EXPECT_DOUBLE_EQ(flatArc->radius(), 6);
    OdGeMatrix3d leaning;
    leaning.entry[0][2] = 1;
    auto bulged = OdDbPolyline::createObject();
    bulged->addVertexAt(0, {{0, 0}, 1});
    bulged->addVertexAt(1, {{2, 0}});
    bulged->addVertexAt(2, {{5, 1}});
    EXPECT_EQ(bulged->transformBy(leaning), OdResult::ok);
    bulged->setThickness(4);
    EXPECT_EQ(bulged->transformBy(leaning), OdResult::transformRefused);
    std::vector<OdDbEntityPtr> pieces;
    ASSERT_EQ(bulged->explode(pieces), OdResult::ok);
    ASSERT_EQ(pieces.size(), 2u);
    ASSERT_EQ(pieces[1]->isA(), OdDbLine::desc());
    EXPECT_EQ(static_cast<OdDbLine&>(*pieces[1]).thickness(), 4);
    for (int i = 0; i < 100; ++i) {
        const auto straight = polyline(false);
        const OdGeMatrix3d matrix = affine();
        std::vector<OdGePoint3d> expected;
        for (std::size_t k = 0; k < straight->numVerts(); ++k) expected.push_back(matrix * straight->pointAt(k));
        ASSERT_EQ(straight->transformBy(matrix), OdResult::ok);
        for (std::size_t k = 0; k < expected.size(); ++k) expectNear(straight->pointAt(k), expected[k], 1e-8, "vertex");
    }
    // A width takes an unequal scale where the ends of the line stay square.
    const OdGeMatrix3d unequal = OdGeMatrix3d::scaling(OdGeScale3d(3, 2, 1));
    auto arrow = OdDbPolyline::createObject();
    for (const double x : {1.0, 4.0, 7.0}) arrow->addVertexAt(arrow->numVerts(), {{x, 5}, 0, 1, x / 8});
    EXPECT_EQ(arrow->transformBy(unequal), OdResult::ok);
    EXPECT_DOUBLE_EQ(arrow->vertexAt(1).startWidth, 2);
    EXPECT_DOUBLE_EQ(arrow->vertexAt(1).endWidth, 1);
    EXPECT_EQ(arrow->transformBy(OdGeMatrix3d::rotation(0.5, OdGeVector3d::kZAxis)), OdResult::ok);
    EXPECT_EQ(arrow->transformBy(unequal), OdResult::transformRefused);
    auto flat = polyline(false);
    flat->setNormal(OdGeVector3d::kZAxis);
    EXPECT_EQ(flat->transformBy(flattening), OdResult::transformRefused);
    auto ray = OdDbRay::createObject();
    ray->setUnitDir(OdGeVector3d::kXAxis);
    EXPECT_EQ(ray->transformBy(flattening), OdResult::transformRefused);
}

// A drawing that is mirrored in its plane stays flat for programs that do not look at normals.
TEST_F(Curves, MirroringInThePlaneKeepsTheNormal) {
    auto curve = OdDbArc::createObject();
    curve->setCenter(OdGePoint3d(3, 0, 0));
    curve->setAngles(0, drawingdb::kPi / 2);
    ASSERT_EQ(curve->transformBy(OdGeMatrix3d::mirroring(OdGePlane({}, OdGeVector3d::kXAxis))), OdResult::ok);
    EXPECT_EQ(curve->normal(), OdGeVector3d::kZAxis);
    EXPECT_EQ(curve->center(), OdGePoint3d(-3, 0, 0));
    EXPECT_NEAR(curve->startAngle(), drawingdb::kPi / 2, 1e-15);
    EXPECT_NEAR(curve->endAngle(), drawingdb::kPi, 1e-15);
    ASSERT_EQ(curve->transformBy(OdGeMatrix3d::rotation(drawingdb::kPi, OdGeVector3d::kXAxis)), OdResult::ok);
    EXPECT_TRUE(curve->normal().isEqualTo(-OdGeVector3d::kZAxis)) << "turned over, it is seen from behind";
}

TEST_F(Curves, ExtentsAreTight) {
    for (int i = 0; i < 50; ++i)
        for (const auto& curve : oneOfEach()) {
            OdGeExtents3d box, sampled;
            ASSERT_TRUE(curve->geomExtents(box));
            // Parameters in steps that meet every vertex of a polyline.
            const int steps = curve->isKindOf(OdDbPolyline::desc()) ? static_cast<int>(curve->endParam()) * 500 : 4000;
            for (int k = 0; k <= steps; ++k)
                sampled.addPoint(
                    curve->pointAtParam(curve->startParam() + (curve->endParam() - curve->startParam()) * k / steps));
            EXPECT_TRUE(OdGeExtents3d(box).grow(1e-9).contains(sampled)) << curve->isA()->name();
            expectNear(box, sampled, 5e-3, curve->isA()->name());
        }
    OdGeExtents3d box;
    EXPECT_FALSE(OdDbRay::createObject()->geomExtents(box));
}

// Every kind is written, read, and says the same.
TEST_F(Curves, NewOnesSurviveAFile) {
    const auto database = OdDbDatabase::createNew();
    const auto ray = OdDbRay::createObject();
    ray->setBasePoint(point());
    ray->setUnitDir(direction());
    const auto dot = OdDbPoint::createObject();
    dot->setPosition(point());
    auto entities = oneOfEach();
    std::vector<OdDbHandle> handles;
    const auto append = [&](OdDbEntity& entity) {
        const auto space = database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite);
        return space->appendOdDbEntity(&entity).handle();
    };
    for (const auto& curve : entities) handles.push_back(append(*curve));
    const OdDbHandle rayHandle = append(*ray), dotHandle = append(*dot);
    const auto again = reread(database);
    for (std::size_t i = 0; i < entities.size(); ++i) {
        const auto curve = again->getObjectId(handles[i]).openAs<OdDbCurve>();
        EXPECT_EQ(curve->isA(), entities[i]->isA());
        EXPECT_EQ(curve->isClosed(), entities[i]->isClosed());
        // Angles go through degrees.
        const auto points = pointsAlong(*curve, 7), expected = pointsAlong(*entities[i], 7);
        for (std::size_t k = 0; k < points.size(); ++k)
            expectNear(points[k], expected[k], 1e-12 * 1000, curve->isA()->name());
    }
    EXPECT_EQ(again->getObjectId(rayHandle).openAs<OdDbRay>()->unitDir(), ray->unitDir());
    EXPECT_EQ(again->getObjectId(rayHandle).openAs<OdDbRay>()->basePoint(), ray->basePoint());
    EXPECT_EQ(again->getObjectId(dotHandle).openAs<OdDbPoint>()->position(), dot->position());
}

TEST(CurveFiles, VerticesOfAPolyline) {
    const auto database = drawing("AC1032",
                                  "0|LWPOLYLINE|5|A|100|AcDbEntity|8|0|100|AcDbPolyline|90|3|70|1|43|0.5|38|2|"
                                  "10|0|20|0|42|1|10|4|20|0|40|0.25|41|0.75|91|7|10|4.00|20|3|210|0|220|0|230|1");
    const auto polyline = opened<OdDbPolyline>(database, 0xA, OdDb::forWrite);
    ASSERT_EQ(polyline->numVerts(), 3u);
    EXPECT_TRUE(polyline->isClosed());
    EXPECT_EQ(polyline->pointAt(2), OdGePoint3d(4, 3, 2));
    EXPECT_EQ(polyline->vertexAt(1).endWidth, 0.75);
    EXPECT_EQ(polyline->vertexAt(1).identifier, 7);
    EXPECT_EQ(polyline->vertexAt(0).startWidth, -1);
    EXPECT_NEAR(polyline->distAtParam(3), 2 * drawingdb::kPi + 3 + 5, 1e-12);
    expectNear(polyline->pointAtParam(0.5), OdGePoint3d(2, -2, 2), 1e-12, "the lowest point of the half circle");

    polyline->removeVertexAt(0);
    polyline->addVertexAt(2, {OdGePoint2d(9, 9), -0.5, -1, -1, 0});
    polyline->addVertexAt(0, {});
    polyline->downgradeOpen();
    const std::vector<std::string> expected = {
        "0|LWPOLYLINE", "5|A",    "100|AcDbEntity", "8|0",    "100|AcDbPolyline", "90|4",    "70|1",    "43|0.5",
        "38|2",         "10|0.0", "20|0.0",         "10|4.0", "20|0.0",           "40|0.25", "41|0.75", "91|7",
        "10|4.0",       "20|3.0", "10|9.0",         "20|9.0", "42|-0.5",          "210|0",   "220|0",   "230|1"};
    EXPECT_EQ(savedGroups(database, "A"), expected);
}

// Old files have no markers: an arc's groups come in any order, and ends of arcs are not those of lines.
TEST(CurveFiles, OldFilesAndOddValues) {
    const auto database = drawing("AC1009",
                                  "0|ARC|5|A|8|0|50|270|51|0|10|5|20|5|30|0|40|2|"
                                  "0|ARC|5|D|8|0|10|5|20|5|40|2|50|90|51|450|"
                                  "0|CIRCLE|5|B|8|0|10|1|20|2|40|3|210|0|220|0|230|-1|"
                                  "0|LINE|5|C|8|0|10|1|20|2|30|3|11|4|21|6");
    const auto arc = opened<OdDbArc>(database, 0xA);
    EXPECT_NEAR(arc->distAtParam(arc->endParam()), drawingdb::kPi, 1e-12) << "a quarter of a circle of radius 2";
    expectNear(arc->pointAtParam(arc->startParam()), OdGePoint3d(5, 3, 0), 1e-12, "start");
    const auto round = opened<OdDbArc>(database, 0xD);
    EXPECT_NEAR(round->distAtParam(round->endParam()), 4 * drawingdb::kPi, 1e-12) << "all the way round";
    EXPECT_EQ(opened<OdDbCircle>(database, 0xB)->center(), OdGePoint3d(-1, 2, 0))
        << "the plane of a normal that points down";
    const auto line = opened<OdDbLine>(database, 0xC);
    EXPECT_EQ(line->endPoint(), OdGePoint3d(4, 6, 0));
    EXPECT_EQ(line->pointAtParam(line->endParam()), line->endPoint());
    EXPECT_THROW(OdDbCircle::createObject()->setRadius(-1), OdError);
    EXPECT_THROW(OdDbRay::createObject()->setUnitDir(OdGeVector3d()), OdError);
}

}  // namespace
