// Ellipses, splines, old polylines and wipeouts: transforms, extents, offsets, files.
#include "drawingdb/block.h"
#include "drawingdb/curves.h"
#include "drawingdb/ellipse.h"
#include "drawingdb/field.h"
#include "drawingdb/old_polyline.h"
#include "drawingdb/spline.h"
#include "drawingdb/text.h"
#include "drawingdb/wipeout.h"
#include "entity_fixture.h"

namespace {

class Shapes : public RandomTransforms {
  protected:
    OdSmartPtr<OdDbEllipse> ellipse(bool whole) {
        auto curve = OdDbEllipse::createObject();
        const OdGeVector3d normal = chance() ? OdGeVector3d::kZAxis : direction();
        const OdGeVector3d major = normal.crossProduct(direction());
        curve->set(point(), normal, major.normal() * number(1, 20), number(0.05, 1), whole ? 0 : number(0, 6),
                   whole ? drawingdb::kTwoPi : number(0, 6));
        return curve;
    }
    OdSmartPtr<OdDbSpline> spline() {
        auto curve = OdDbSpline::createObject();
        curve->setNurbs(3, {0, 0, 0, 0, 1, 1.5, 4, 4, 4, 4}, {point(), point(), point(), point(), point(), point()},
                        chance() ? std::vector<double>() : std::vector<double>{1, 2, 0.5, 1, 3, 1});
        return curve;
    }
    std::vector<OdGePoint3d> square() {
        const OdGeMatrix3d place = move() * turn();
        std::vector<OdGePoint3d> corners = {{0, 0, 0}, {8, 0, 0}, {8, 3, 0}, {2, 5, 0}, {0, 0, 0}};
        for (OdGePoint3d& corner : corners) corner.transformBy(place);
        return corners;
    }
};

Strokes along(const OdDbCurve& curve, int count) {
    Strokes points;
    for (int i = 0; i <= count; ++i)
        points.push_back(curve.pointAtParam(curve.startParam() + (curve.endParam() - curve.startParam()) * i / count));
    return points;
}

TEST_F(Shapes, EveryMatrixTakesThePointsAlong) {
    for (int i = 0; i < 100; ++i) {
        const OdGeMatrix3d matrix = chance() ? affine() : similarity();
        const auto curve = spline();
        const Strokes expected = transformed(along(*curve, 30), matrix);
        ASSERT_EQ(curve->transformBy(matrix), OdResult::ok);
        expectSameDrawing(along(*curve, 30), expected, "spline");

        // The axes turn when an ellipse is squeezed: what stays is the set of points, and a part's ends.
        const bool whole = chance();
        const auto oval = ellipse(whole);
        const Strokes before = transformed(along(*oval, 30), matrix);
        ASSERT_EQ(oval->transformBy(matrix), OdResult::ok);
        EXPECT_NEAR(oval->majorAxis().dotProduct(oval->minorAxis()), 0, 1e-8 * oval->majorAxis().lengthSquared());
        for (const OdGePoint3d& p : before) {
            const OdGeVector3d reach = p - oval->center();
            const double x = reach.dotProduct(oval->majorAxis()) / oval->majorAxis().lengthSquared();
            const double y = reach.dotProduct(oval->minorAxis()) / oval->minorAxis().lengthSquared();
            EXPECT_NEAR(x * x + y * y, 1, 1e-8);
        }
        if (whole) continue;
        const Strokes after = along(*oval, 1);
        const bool reversed = after.front().distanceTo(before.back()) < after.front().distanceTo(before.front());
        expectNear(after.front(), reversed ? before.back() : before.front(), 1e-7, "start");
        expectNear(after.back(), reversed ? before.front() : before.back(), 1e-7, "end");
    }
}

// Other than the curve through the transformed points, whose distances are others.
TEST_F(Shapes, SplinesOfFitPointsAloneTakeUnequalScales) {
    const auto database = drawing("AC1032",
                                  "0|SPLINE|5|A|100|AcDbEntity|8|0|100|AcDbSpline|70|8|71|3|72|0|73|0|74|4|"
                                  "11|0|21|0|31|0|11|4|21|9|31|0|11|5|21|0|31|2|11|20|21|3|31|0");
    const auto curve = opened<OdDbSpline>(database, 0xA, OdDb::forWrite);
    const OdGeMatrix3d squeeze = OdGeMatrix3d::scaling(OdGeScale3d(3, 0.5, 1));
    const Strokes expected = transformed(along(*curve, 30), squeeze);
    ASSERT_EQ(curve->transformBy(squeeze), OdResult::ok);
    expectSameDrawing(along(*curve, 30), expected, "spline");
}

TEST_F(Shapes, WhatIsNoCurveIsRefused) {
    const auto curve = OdDbEllipse::createObject();
    curve->set({}, OdGeVector3d::kZAxis, {1e-12, 0, 0}, 1);
    EXPECT_EQ(curve->pointAtParam(0), OdGePoint3d(1e-12, 0, 0)) << "however small";
    EXPECT_THROW(curve->set({}, OdGeVector3d::kZAxis, {}, 1), OdError);
    EXPECT_THROW(curve->set({}, OdGeVector3d::kZAxis, {1, 0, 1}, 1), OdError);
    EXPECT_THROW(curve->set({}, OdGeVector3d::kZAxis, {1, 0, 0}, 1.5), OdError);
    EXPECT_THROW(curve->set({}, OdGeVector3d::kZAxis, {1, 0, 0}, 0), OdError);
    EXPECT_THROW(OdDbSpline::createObject()->setFitPoints({{1, 1, 1}, {1, 1, 1}}), OdError);
    EXPECT_THROW(OdDbSpline::createObject()->setNurbs(2, {0, 0, 0, 1, 1}, {{}, {}, {}}), OdError)
        << "a knot is missing";
}

TEST_F(Shapes, ExtentsAreTight) {
    for (int i = 0; i < 50; ++i)
        for (const OdSmartPtr<OdDbCurve>& curve :
             {OdSmartPtr<OdDbCurve>(ellipse(chance())), OdSmartPtr<OdDbCurve>(spline())}) {
            OdGeExtents3d box, sampled;
            ASSERT_TRUE(curve->geomExtents(box));
            for (const OdGePoint3d& p : along(*curve, 5000)) sampled.addPoint(p);
            EXPECT_TRUE(OdGeExtents3d(box).grow(1e-8).contains(sampled)) << curve->isA()->name();
            expectNear(box, sampled, 5e-3, curve->isA()->name());
        }
}

TEST_F(Shapes, NewOnesSurviveAFile) {
    const auto database = OdDbDatabase::createNew();
    const auto append = [&](OdDbEntity& entity) {
        return database->modelSpaceId()
            .openAs<OdDbBlockTableRecord>(OdDb::forWrite)
            ->appendOdDbEntity(&entity)
            .handle();
    };
    const auto oval = ellipse(false);
    const auto curve = spline();
    const auto area = OdDbWipeout::createObject();
    area->setDatabaseDefaults(database.get());
    const std::vector<OdGePoint3d> corners = square();
    area->setBoundary(corners);
    const OdDbHandle ovalHandle = append(*oval), curveHandle = append(*curve), areaHandle = append(*area);
    OdDbWipeoutVariables::openForWrite(*database)->setShowFrame(false);
    const auto again = reread(database);
    expectSameDrawing(along(*again->getObjectId(ovalHandle).openAs<OdDbEllipse>(), 9), along(*oval, 9), "ellipse");
    expectSameDrawing(along(*again->getObjectId(curveHandle).openAs<OdDbSpline>(), 9), along(*curve, 9), "spline");
    expectSameDrawing(again->getObjectId(areaHandle).openAs<OdDbWipeout>()->boundary(), corners, "wipeout");
    EXPECT_FALSE(OdDbWipeoutVariables::showsFrames(*again));
}

// The left is where a positive distance goes; what has no plane of its own goes by the one that is named.
TEST(Offsets, OfStraightAndRoundCurves) {
    const auto one = [](const OdDbCurve& curve, double distance, const OdGeVector3d& normal = OdGeVector3d::kZAxis) {
        std::vector<OdDbCurvePtr> curves;
        EXPECT_EQ(curve.getOffsetCurves(distance, normal, curves), OdResult::ok);
        return curves.size() == 1 ? curves.front() : OdDbCurvePtr();
    };
    const auto line = OdDbXline::createObject();
    line->setBasePoint({1, 1, 5});
    line->setUnitDir({1, 0, 0});
    line->setLayer(L"AXES");
    EXPECT_EQ(one(*line, 2)->pointAtParam(0), OdGePoint3d(1, 3, 5));
    EXPECT_EQ(one(*line, 2)->layer(), L"AXES");
    EXPECT_EQ(one(*line, -2)->pointAtParam(0), OdGePoint3d(1, -1, 5));
    EXPECT_EQ(one(*line, 2, OdGeVector3d(0, -1, 0))->pointAtParam(1), OdGePoint3d(2, 1, 7));
    const auto segment = OdDbLine::createObject();
    segment->setEndPoint({0, 3, 0});
    EXPECT_EQ(one(*segment, 1)->pointAtParam(3), OdGePoint3d(-1, 3, 0));
    const auto arc = OdDbArc::createObject();
    arc->setRadius(5);
    arc->setAngles(0, 1);
    EXPECT_EQ(one(*arc, -2)->pointAtParam(0), OdGePoint3d(7, 0, 0));
    std::vector<OdDbCurvePtr> none;
    EXPECT_EQ(arc->getOffsetCurves(5, OdGeVector3d::kZAxis, none), OdResult::invalidInput);
    EXPECT_EQ(line->getOffsetCurves(1, OdGeVector3d::kXAxis, none), OdResult::invalidInput) << "no side";
    EXPECT_EQ(OdDbEllipse::createObject()->getOffsetCurves(1, OdGeVector3d::kZAxis, none), OdResult::invalidInput);
    EXPECT_TRUE(none.empty());
}

TEST(OldPolylines, AreCurvesByTheirVertices) {
    const std::string flat =
        "0|POLYLINE|5|A|8|0|66|1|10|0|20|0|30|2|70|1|210|0|220|0|230|-1|"
        "0|VERTEX|5|B|8|0|10|0|20|0|30|2|42|1|0|VERTEX|5|C|8|0|10|4|20|0|30|2|0|SEQEND|5|D|";
    const std::string spatial =
        "0|POLYLINE|5|1A|8|0|66|1|10|0|20|0|30|0|70|12|"
        "0|VERTEX|5|1B|8|0|10|0|20|0|30|0|70|40|0|VERTEX|5|1C|8|0|10|9|20|9|30|9|70|48|"
        "0|VERTEX|5|1D|8|0|10|3|20|0|30|4|70|40|0|SEQEND|5|1E|";
    const std::string mesh = "0|POLYLINE|5|2A|8|0|66|1|10|0|20|0|30|0|70|64|0|SEQEND|5|2E";
    const auto database = drawing("AC1009", flat + spatial + mesh);
    const auto plane = opened<OdDb2dPolyline>(database, 0xA);
    EXPECT_TRUE(plane->isClosed());
    EXPECT_NEAR(plane->distAtParam(2), 2 * drawingdb::kPi + 4, 1e-12);
    // Seen from behind: x runs to the left, and the half circle below it in its plane.
    expectNear(plane->pointAtParam(0.5), {-2, -2, -2}, 1e-12, "on the arc");
    const auto line = opened<OdDb3dPolyline>(database, 0x1A);
    EXPECT_EQ(line->vertices().size(), 2u) << "a frame's vertex is none of the line's";
    EXPECT_EQ(line->distAtParam(1), 5);
    EXPECT_EQ(line->pointAtDist(2.5), OdGePoint3d(1.5, 0, 2));
    EXPECT_FALSE(database->getObjectId(0x2A).isKindOf(OdDbCurve::desc())) << "a mesh is no curve";
    EXPECT_TRUE(database->getObjectId(0x2A).isKindOf(OdDbEntity::desc()));
}

TEST(Wipeouts, BoundaryInTheFilesTerms) {
    const std::string head =
        "0|WIPEOUT|5|A|100|AcDbEntity|8|0|100|AcDbWipeout|90|0|10|-100|20|-13|30|0|11|100|21|0|31|0|"
        "12|0|22|100|32|0|13|1|23|1|340|0|70|7|280|1|281|50|282|50|283|0|290|0|360|0|";
    const auto polygon =
        drawing("AC1032", head + "71|2|91|4|14|-0.5|24|0.5|14|0.5|24|0.5|14|0.5|24|0.37|14|-0.5|24|0.5");
    const auto area = opened<OdDbWipeout>(polygon, 0xA, OdDb::forWrite);
    ASSERT_EQ(area->boundary().size(), 4u);
    expectNear(area->boundary()[0], {-100, -13, 0}, 1e-12, "lower left");
    expectNear(area->boundary()[2], {0, 0, 0}, 1e-12, "upper right");
    area->setBoundary({{0, 0, 1}, {2, 0, 1}, {2, 4, 1}, {0, 0, 1}});
    area->downgradeOpen();
    const std::vector<std::string> expected = {
        "0|WIPEOUT", "5|A",    "100|AcDbEntity", "8|0",    "100|AcDbWipeout", "90|0",    "10|0.0",  "20|0.0", "30|1.0",
        "11|4.0",    "21|0",   "31|0",           "12|0",   "22|4.0",          "32|0",    "13|1",    "23|1",   "340|0",
        "70|7",      "280|1",  "281|50",         "282|50", "283|0",           "290|0",   "360|0",   "71|2",   "91|4",
        "14|-0.5",   "24|0.5", "14|0.0",         "24|0.5", "14|0.0",          "24|-0.5", "14|-0.5", "24|0.5"};
    EXPECT_EQ(savedGroups(polygon, "A"), expected);

    const auto rectangle = drawing("AC1032", head + "71|1|91|2|14|-0.5|24|-0.5|14|0.5|24|0.5");
    const auto corners = opened<OdDbWipeout>(rectangle, 0xA)->boundary();
    ASSERT_EQ(corners.size(), 5u);
    expectNear(corners[0], {-100, 87, 0}, 1e-12, "upper left");
    expectNear(corners[2], {0, -13, 0}, 1e-12, "lower right");
    EXPECT_THROW(OdDbWipeout::createObject()->setBoundary({{1, 1, 1}, {1, 1, 1}}), OdError);
    EXPECT_THROW(OdDbWipeout::createObject()->setBoundary({}), OdError);
}

// Drawn clockwise or not, a flat area keeps the world's axes; on a line any plane through it does.
TEST(Wipeouts, PlaneOfTheBoundary) {
    const auto normalOf = [](const std::vector<OdGePoint3d>& points) {
        const auto area = OdDbWipeout::createObject();
        area->setBoundary(points);
        expectSameDrawing(area->boundary(), points, "boundary");
        return area->normal();
    };
    EXPECT_EQ(normalOf({{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {0, 0, 0}}), OdGeVector3d::kZAxis);
    EXPECT_EQ(normalOf({{0, 0, 0}, {3, 0, 0}, {9, 0, 0}, {0, 0, 0}}), OdGeVector3d::kZAxis);
    EXPECT_EQ(normalOf({{0, 0, 0}, {0, 0, 3}, {3, 0, 3}, {0, 0, 0}}), OdGeVector3d(0, -1, 0));
}

// The names of the CLASS records, with their counts.
std::string kindRecords(const std::string& bytes) {
    std::istringstream lines(bytes);
    std::string code, value, type, found;
    while (std::getline(lines, code) && std::getline(lines, value)) {
        if (value.ends_with('\r')) value.pop_back();
        const int number = std::stoi(code);
        if (number == 0) type = value;
        if (type == "CLASS" && number == 1) found += value + " ";
        if (type == "CLASS" && number == 91) found += value + " ";
    }
    return found;
}

// Other programs take a wipeout for something unknown unless the CLASSES section names it.
TEST(KindRecords, ComeWithNewObjects) {
    const auto addTwo = [](const OdDbDatabasePtr& database) {
        for (int i = 0; i < 2; ++i) {
            const auto area = OdDbWipeout::createObject();
            area->setBoundary({{0, 0, 0}, {2, 0, 0}, {2, 4, 0}, {0, 0, 0}});
            database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(area.get());
        }
        OdDbWipeoutVariables::openForWrite(*database);
    };
    const auto fresh = OdDbDatabase::createNew();
    const std::string before = fresh->writeBytes();
    const std::size_t position = fresh->undoPosition();
    addTwo(fresh);
    const std::string records = "WIPEOUT 2 WIPEOUTVARIABLES 1 ";
    EXPECT_EQ(kindRecords(fresh->writeBytes()), records);
    EXPECT_EQ(kindRecords(fresh->writeBytes()), records) << "saved twice";
    const auto again = reread(fresh);
    addTwo(again);
    EXPECT_EQ(kindRecords(again->writeBytes()), records) << "they are there already";
    fresh->undoTo(position);
    EXPECT_EQ(fresh->writeBytes(), before);

    const auto text = OdDbText::createObject();
    fresh->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(text.get());
    const auto field = OdDbField::createObject();
    field->setFieldCode(L"\\AcVar Author");
    text->setField(L"TEXT", field);
    EXPECT_EQ(kindRecords(fresh->writeBytes()), "FIELD 1 FIELDLIST 1 ");

    std::string without = before;
    const std::size_t at = without.find("  2\r\nCLASSES\r\n");
    ASSERT_NE(at, std::string::npos);
    const std::size_t begin = without.rfind("  0\r\n", at), end = without.find("  0\r\nSECTION", at);
    without.erase(begin, end - begin);
    const auto bare = OdDbDatabase::readBytes(without, L"bare.dxf");
    EXPECT_EQ(bare->writeBytes(), without);
    addTwo(bare);
    EXPECT_EQ(kindRecords(bare->writeBytes()), records) << "the section is made";
    EXPECT_EQ(kindRecords(reread(bare)->writeBytes()), records);
}

}  // namespace
