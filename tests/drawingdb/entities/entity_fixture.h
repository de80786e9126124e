// Drawings made of a few groups, and random transforms to try entities with.
#pragma once

#include <gtest/gtest.h>
#include <initializer_list>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "drawingdb/database.h"
#include "drawingdb/ge.h"
#include "drawingdb/mtext.h"
#include "drawingdb/mtext_layout.h"
#include "drawingdb/text.h"
#include "drawingdb/text_metrics.h"

/// A drawing of that version ("AC1032") with these records in its entities section; "|" separates lines.
inline OdDbDatabasePtr drawing(const std::string& version, const std::string& entities) {
    std::string bytes = "0|SECTION|2|HEADER|9|$ACADVER|1|" + version + "|0|ENDSEC|0|SECTION|2|ENTITIES|" + entities +
                        "|0|ENDSEC|0|EOF|";
    for (char& c : bytes)
        if (c == '|') c = '\n';
    return OdDbDatabase::readBytes(bytes, L"test.dxf");
}

template <class T>
OdSmartPtr<T> opened(const OdDbDatabasePtr& database, std::uint64_t handle, OdDb::OpenMode mode = OdDb::forRead) {
    return database->getObjectId(handle).openAs<T>(mode);
}

inline OdDbDatabasePtr reread(const OdDbDatabasePtr& database) {
    return OdDbDatabase::readBytes(database->writeBytes(), L"again.dxf");
}

/// The groups of the record with that handle in a saved drawing: "code|value".
inline std::vector<std::string> savedGroups(const OdDbDatabasePtr& database, const std::string& handle) {
    std::istringstream lines(database->writeBytes());
    std::vector<std::string> record;
    bool wanted = false;
    for (std::string code, value; std::getline(lines, code) && std::getline(lines, value);) {
        code.erase(0, code.find_first_not_of(' '));
        for (std::string* line : {&code, &value})
            if (line->ends_with('\r')) line->pop_back();
        if (code == "0") {
            if (wanted) return record;
            record.clear();
        }
        record.push_back(code + "|" + value);
        wanted = wanted || (code == "5" && value == handle);
    }
    return {};
}

class RandomTransforms : public testing::Test {
  protected:
    void TearDown() override {
        if (HasFailure()) std::cout << "seed " << seed_ << '\n';
    }

    double number(double low, double high) { return std::uniform_real_distribution(low, high)(engine_); }
    bool chance() { return number(0, 1) < 0.5; }
    OdGePoint3d point() { return {number(-50, 50), number(-50, 50), number(-50, 50)}; }
    OdGeVector3d direction() {
        for (;;) {
            const OdGeVector3d v(number(-1, 1), number(-1, 1), number(-1, 1));
            if (v.length() > 0.1) return v.normal();
        }
    }
    OdGeMatrix3d move() { return OdGeMatrix3d::translation(point().asVector()); }
    /// A turn, mostly one that leaves drawings flat.
    OdGeMatrix3d turn() {
        return OdGeMatrix3d::rotation(number(-7, 7), chance() ? OdGeVector3d::kZAxis : direction(), point());
    }
    OdGeMatrix3d mirroring() {
        return OdGeMatrix3d::mirroring(OdGePlane(point(), chance() ? OdGeVector3d::kXAxis : direction()));
    }
    /// Keeps angles: turned, moved, scaled, mirrored every other time.
    OdGeMatrix3d similarity() {
        OdGeMatrix3d m = move() * turn() * OdGeMatrix3d::scaling(number(0.2, 5), point());
        return chance() ? m * mirroring() : m;
    }
    /// Every kind of affine map, well conditioned.
    OdGeMatrix3d affine() {
        const auto factor = [this] { return number(0.4, 2.5) * (chance() ? -1 : 1); };
        return turn() * OdGeMatrix3d::scaling(OdGeScale3d(factor(), factor(), factor()), point()) * turn();
    }

  private:
    unsigned seed_ = std::random_device{}();
    std::mt19937 engine_{seed_};
};

inline void expectNear(const OdGePoint3d& a, const OdGePoint3d& b, double tolerance, const char* what) {
    EXPECT_TRUE(a.isEqualTo(b, {tolerance, tolerance}))
        << what << ": " << a.x << ' ' << a.y << ' ' << a.z << " and " << b.x << ' ' << b.y << ' ' << b.z;
}
inline void expectNear(const OdGeExtents3d& a, const OdGeExtents3d& b, double tolerance, const char* what) {
    expectNear(a.minPoint(), b.minPoint(), tolerance, what);
    expectNear(a.maxPoint(), b.maxPoint(), tolerance, what);
}

using Strokes = std::vector<OdGePoint3d>;

/// Every point of a drawn text, in the world.
inline Strokes strokesOf(const OdDbText& text) {
    Strokes points;
    const OdGeMatrix3d toWorld = OdGeMatrix3d::planeToWorld(text.normal());
    const double elevation = (OdGeMatrix3d::worldToPlane(text.normal()) * text.position()).z;
    for (const auto& stroke : drawingdb::textStrokes(text.textString(), text.textGeometry()))
        for (const OdGePoint2d& p : stroke) points.push_back(toWorld * OdGePoint3d(p.x, p.y, elevation));
    return points;
}
inline Strokes strokesOf(const OdDbMText& text) {
    Strokes points;
    const OdGeMatrix3d toWorld = text.layoutToWorld();
    for (const auto& line : text.layout().lines)
        for (const auto& run : line.runs)
            for (const auto& stroke : drawingdb::mtextRunStrokes(run))
                for (const OdGePoint2d& p : stroke) points.push_back(toWorld * OdGePoint3d(p.x, p.y, 0));
    return points;
}
inline Strokes transformed(Strokes points, const OdGeMatrix3d& matrix) {
    for (OdGePoint3d& p : points) p.transformBy(matrix);
    return points;
}
inline void expectSameDrawing(const Strokes& drawn, const Strokes& expected, const std::string& what) {
    ASSERT_EQ(drawn.size(), expected.size()) << what;
    ASSERT_FALSE(drawn.empty()) << what;
    double worst = 0;
    for (std::size_t i = 0; i < drawn.size(); ++i) worst = std::max(worst, drawn[i].distanceTo(expected[i]));
    EXPECT_LT(worst, 1e-7) << what;
}
