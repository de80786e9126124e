#include "drawingdb/ge.h"

#include <gtest/gtest.h>
#include <random>
#include <stdexcept>

namespace {

using drawingdb::kPi;
using drawingdb::kTwoPi;

class RandomGeometry : public testing::Test {
  protected:
    void SetUp() override { RecordProperty("seed", std::to_string(seed_)); }
    void TearDown() override {
        if (HasFailure()) std::cout << "seed " << seed_ << '\n';
    }

    double number(double low, double high) { return std::uniform_real_distribution(low, high)(engine_); }
    OdGePoint3d point() { return {number(-100, 100), number(-100, 100), number(-100, 100)}; }
    OdGeVector3d direction() {
        for (;;) {
            const OdGeVector3d v(number(-1, 1), number(-1, 1), number(-1, 1));
            if (v.length() > 0.1) return v.normal();
        }
    }
    OdGeMatrix3d rotation() { return OdGeMatrix3d::rotation(number(-10, 10), direction(), point()); }
    // Rotated, scaled by different factors with any signs, rotated again: every kind of affine map, well conditioned.
    OdGeMatrix3d affine() {
        const auto factor = [this] { return number(0.2, 5) * (number(-1, 1) < 0 ? -1 : 1); };
        return rotation() * OdGeMatrix3d::scaling(OdGeScale3d(factor(), factor(), factor()), point()) * rotation();
    }

  private:
    unsigned seed_ = std::random_device{}();
    std::mt19937 engine_{seed_};
};

constexpr OdGeTol kRounding{1e-8, 1e-8};

TEST_F(RandomGeometry, MatricesAreAnAlgebra) {
    for (int i = 0; i < 200; ++i) {
        const OdGeMatrix3d a = affine(), b = affine();
        const OdGePoint3d p = point(), q = point();
        EXPECT_TRUE(((a * b) * p).isEqualTo(a * (b * p), kRounding));
        EXPECT_TRUE((a * q - a * p).isEqualTo(a * (q - p), kRounding)) << "vectors do not feel the translation";
        EXPECT_TRUE((a.inverse() * (a * p)).isEqualTo(p, kRounding));
        EXPECT_TRUE((a * a.inverse()).isEqualTo(OdGeMatrix3d::kIdentity, kRounding));
        EXPECT_TRUE((a * b).inverse().isEqualTo(b.inverse() * a.inverse(), {1e-6, 1e-6}));
        EXPECT_NEAR((a * b).det(), a.det() * b.det(), 1e-9 * std::fabs(a.det() * b.det()));
    }
}

TEST_F(RandomGeometry, RotationTurnsByItsAngle) {
    for (int i = 0; i < 200; ++i) {
        const OdGeVector3d axis = direction();
        const OdGeVector3d v = axis.perpVector();
        const double angle = number(0.001, kTwoPi - 0.001);
        OdGeVector3d turned = v;
        turned.rotateBy(angle, axis * number(0.1, 10));
        EXPECT_NEAR(v.angleTo(turned, axis), angle, 1e-9);
        EXPECT_NEAR(v.angleTo(turned, -axis), kTwoPi - angle, 1e-9);
        EXPECT_NEAR(v.angleTo(turned), std::min(angle, kTwoPi - angle), 1e-9);
        const OdGePoint3d center = point();
        EXPECT_TRUE((OdGeMatrix3d::rotation(angle, axis, center) * (center + v)).isEqualTo(center + turned, kRounding));
    }
}

TEST_F(RandomGeometry, NormalsStayNormal) {
    for (int i = 0; i < 200; ++i) {
        const OdGeMatrix3d m = affine();
        const OdGeVector3d n = direction();
        const OdGeVector3d x = n.perpVector(), y = n.crossProduct(x);
        const OdGeVector3d mapped = m.transformNormal(n);
        EXPECT_NEAR(mapped.length(), 1.0, 1e-12);
        EXPECT_TRUE(mapped.isPerpendicularTo(m * x, kRounding));
        EXPECT_TRUE(mapped.isPerpendicularTo(m * y, kRounding));
        EXPECT_GT(mapped.dotProduct(m * n), 0.0) << "it points to the mapped side";
    }
}

TEST_F(RandomGeometry, MirroringIsItsOwnInverse) {
    for (int i = 0; i < 100; ++i) {
        const OdGePlane plane(point(), direction() * number(0.1, 10));
        const OdGeMatrix3d m = OdGeMatrix3d::mirroring(plane);
        const OdGePoint3d p = point();
        EXPECT_NEAR(m.det(), -1.0, 1e-12);
        EXPECT_TRUE((m * m).isEqualTo(OdGeMatrix3d::kIdentity, kRounding));
        EXPECT_NEAR(plane.signedDistanceTo(m * p), -plane.signedDistanceTo(p), 1e-9);
        EXPECT_TRUE((m * plane.projected(p)).isEqualTo(plane.projected(p), kRounding));
    }
}

TEST_F(RandomGeometry, PlaneCoordinatesRoundTrip) {
    for (int i = 0; i < 200; ++i) {
        const OdGePlane plane(point(), direction() * number(0.1, 10));
        const OdGeMatrix3d toWorld = OdGeMatrix3d::planeToWorld(plane), toPlane = OdGeMatrix3d::worldToPlane(plane);
        EXPECT_TRUE((toWorld * toPlane).isEqualTo(OdGeMatrix3d::kIdentity, kRounding));
        EXPECT_TRUE(toPlane.isEqualTo(toWorld.inverse(), kRounding));
        EXPECT_TRUE(toWorld.zAxis().isEqualTo(plane.normal.normal()));
        EXPECT_NEAR(toWorld.det(), 1.0, 1e-12) << "right-handed";
        const auto scale = toWorld.isUniScaledOrtho();
        ASSERT_TRUE(scale);
        EXPECT_NEAR(*scale, 1.0, 1e-12);
        const OdGePoint3d p = point();
        EXPECT_NEAR((toPlane * p).z, plane.signedDistanceTo(p), 1e-9);
    }
}

TEST_F(RandomGeometry, ExtentsHoldWhatIsMappedFromInside) {
    for (int i = 0; i < 100; ++i) {
        const OdGeExtents3d box(point(), point());
        const OdGeMatrix3d m = affine();
        OdGeExtents3d mapped = box;
        mapped.transformBy(m).grow(1e-9);
        const OdGeVector3d d = box.diagonal();
        for (int k = 0; k < 10; ++k) {
            const OdGeVector3d step(d.x * number(0, 1), d.y * number(0, 1), d.z * number(0, 1));
            EXPECT_TRUE(mapped.contains(m * (box.minPoint() + step)));
        }
    }
}

TEST(Ge, ArbitraryAxisRule) {
    const double inside = 1.0 / 65.0, outside = 1.0 / 63.0;
    const struct {
        OdGeVector3d normal, xAxis;
    } cases[] = {
        {{0, 0, 1}, {1, 0, 0}},
        {{0, 0, -1}, {-1, 0, 0}},
        {{0, 0, 0}, {1, 0, 0}},  // files have it; it counts as the Z axis
        {{0, -1, 0}, {1, 0, 0}},
        {{0, 1, 0}, {-1, 0, 0}},
        {{1, 0, 0}, {0, 1, 0}},
        {{0, 0, 25.4}, {1, 0, 0}},
        {{inside, 0, 1}, OdGeVector3d(1, 0, -inside).normal()},
        {{0, inside, 1}, {1, 0, 0}},
        {{outside, 0, 1}, {0, 1, 0}},
        {{0, outside, 1}, {-1, 0, 0}},
    };
    for (const auto& c : cases) {
        const OdGeMatrix3d m = OdGeMatrix3d::planeToWorld(c.normal);
        EXPECT_TRUE(m.xAxis().isEqualTo(c.xAxis)) << c.normal.x << ' ' << c.normal.y << ' ' << c.normal.z << " gives "
                                                  << m.xAxis().x << ' ' << m.xAxis().y << ' ' << m.xAxis().z;
    }
}

TEST(Ge, AnglesStayInTheirRange) {
    const OdGeVector3d x = OdGeVector3d::kXAxis, z = OdGeVector3d::kZAxis;
    EXPECT_EQ(x.angleTo(x, z), 0.0);
    EXPECT_EQ(x.angleTo(-x, z), kPi);
    EXPECT_EQ(x.angleTo(-x, -z), kPi);
    EXPECT_NEAR(x.angleTo(-OdGeVector3d::kYAxis, z), 1.5 * kPi, 1e-15);
    EXPECT_EQ(x.angleTo(OdGeVector3d::kIdentity), 0.0);
    // Less than a whole turn, even when only rounding is missing.
    EXPECT_LT(x.angleTo(OdGeVector3d(1, -1e-17, 0), z), kTwoPi);
    EXPECT_LT(drawingdb::normalizedAngle(-1e-20), kTwoPi);
    EXPECT_FALSE(std::signbit(drawingdb::normalizedAngle(-0.0)));
    EXPECT_NEAR(drawingdb::normalizedAngle(-7 * kPi), kPi, 1e-12);
    EXPECT_EQ(drawingdb::normalizedAngle(std::numeric_limits<double>::infinity()), 0.0);
    EXPECT_NEAR(OdGeVector2d(0, 1).ccwAngleTo(OdGeVector2d(1, 0)), 1.5 * kPi, 1e-15);
    EXPECT_NEAR(OdGeVector2d(0, 1).angleTo(OdGeVector2d(1, 0)), 0.5 * kPi, 1e-15);
}

TEST(Ge, LengthsOfExtremeVectors) {
    for (const double size : {1e-320, 1e-200, 1e-10, 1.0, 1e160, 1e307}) {
        const OdGeVector3d v(3 * size, 4 * size, 0);
        EXPECT_DOUBLE_EQ(v.length(), 5 * size);
        EXPECT_TRUE(v.normal().isEqualTo({0.6, 0.8, 0}, size < 1e-300 ? OdGeTol{1e-3, 1e-3} : OdGeTol{}));
    }
    EXPECT_EQ(OdGeVector3d().normal(), OdGeVector3d());
    EXPECT_EQ(OdGeVector3d(3, 4, 0).length(), 5.0);
}

TEST(Ge, ComparesDirections) {
    const OdGeVector3d v(1, 2, 3), zero;
    EXPECT_TRUE(v.isParallelTo(v * -20));
    EXPECT_FALSE(v.pointsAlong(v * -20));
    EXPECT_TRUE(v.pointsAlong(v * 1e6));
    EXPECT_FALSE(v.isParallelTo(zero));
    EXPECT_FALSE(v.isPerpendicularTo(zero));
    EXPECT_TRUE(v.isPerpendicularTo(v.perpVector()));
    EXPECT_FALSE(v.isParallelTo({1, 2, 3.001}));
    EXPECT_TRUE(OdGePoint3d(1, 1, 1).isEqualTo({1, 1, 1 + 1e-11}));
    EXPECT_NE(OdGePoint3d(1, 1, 1), OdGePoint3d(1, 1, 1 + 1e-11));
}

TEST(Ge, SingularMatrices) {
    const OdGeMatrix3d flat = OdGeMatrix3d::scaling(OdGeScale3d(2, 3, 0));
    EXPECT_TRUE(flat.isSingular());
    EXPECT_THROW(flat.inverse(), std::domain_error);
    EXPECT_TRUE(flat.transformNormal({1, 1, 1}).isEqualTo({0, 0, 1}));
    // Small is not singular.
    const OdGeMatrix3d tiny = OdGeMatrix3d::scaling(1e-20);
    EXPECT_FALSE(tiny.isSingular());
    EXPECT_TRUE((tiny.inverse() * tiny).isEqualTo(OdGeMatrix3d::kIdentity));
    const OdGeMatrix3d sheared = OdGeMatrix3d::coordSystem({}, {1, 0, 0}, {1e6, 1, 0}, {0, 0, 1});
    EXPECT_TRUE((sheared.inverse() * sheared).isEqualTo(OdGeMatrix3d::kIdentity));
}

TEST(Ge, UniformScale) {
    const OdGeMatrix3d turned = OdGeMatrix3d::rotation(1, {1, 2, 3});
    EXPECT_NEAR(*(turned * OdGeMatrix3d::scaling(25.4)).isUniScaledOrtho(), 25.4, 1e-12);
    EXPECT_NEAR(*(turned * OdGeMatrix3d::scaling(OdGeScale3d(-2, 2, 2))).isUniScaledOrtho(), 2, 1e-12);
    EXPECT_FALSE((turned * OdGeMatrix3d::scaling(OdGeScale3d(1, 1, 1.001))).isUniScaledOrtho());
    EXPECT_FALSE(OdGeMatrix3d::coordSystem({}, {1, 0, 0}, {0.6, 0.8, 0}, {0, 0, 1}).isUniScaledOrtho());
    EXPECT_FALSE(OdGeMatrix3d::scaling(0.0).isUniScaledOrtho());
    EXPECT_TRUE(OdGeScale3d(-2, 2, 2).isProportional());
    EXPECT_FALSE(OdGeScale3d(2, 2, 2.001).isProportional());
}

TEST(Ge, EmptyExtentsStayEmpty) {
    OdGeExtents3d box;
    box.addExtents(OdGeExtents3d()).grow(5).transformBy(OdGeMatrix3d::scaling(2));
    EXPECT_FALSE(box.isValid());
    EXPECT_FALSE(box.intersects(OdGeExtents3d({0, 0, 0}, {1, 1, 1})));
    EXPECT_FALSE(OdGeExtents3d({0, 0, 0}, {1, 1, 1}).contains(box));
    box.addPoint({1, 2, 3});
    EXPECT_EQ(box, OdGeExtents3d({1, 2, 3}, {1, 2, 3}));
    EXPECT_TRUE(box.intersects(OdGeExtents3d({5, 5, 5}, {1, 2, 3})));
}

}  // namespace
