#include "drawingdb/src/entities/filled_strip.h"

#include "drawingdb/src/core/core.h"
#include "drawingdb/src/core/description.h"
#include "drawingdb/src/geometry/curve_math.h"

using namespace drawingdb;

namespace {

// These classes are for what is made anew; once it is closed, such an entity is carried as those from files are.

class NewSolidHatch : public OdDbEntity {
    OD_DECLARE_CONCRETE_CLASS(NewSolidHatch)
  public:
    void set(const FilledStrip& strip) {
        normal_ = strip.normal;
        elevation_ = strip.elevation;
        outline_ = strip.left;
        outline_.insert(outline_.end(), strip.right.rbegin(), strip.right.rend());
    }
    OdResult transformBy(const OdGeMatrix3d& matrix) override {
        const auto plane = mapPlane(matrix, normal_);
        if (!plane) return OdResult::transformRefused;
        assertWriteEnabled();
        for (OdGePoint2d& corner : outline_) corner = (plane->map * OdGePoint3d(corner.x, corner.y, elevation_)).xy();
        elevation_ = (plane->map * OdGePoint3d(0, 0, elevation_)).z;
        normal_ = plane->normal;
        runsChanged();
        return OdResult::ok;
    }

  protected:
    const ClassDescription* description() const override {
        static const ClassDescription d = drawingdb::describe<NewSolidHatch>("HATCH", &NewSolidHatch::describe);
        return &d;
    }
    static void describe(Describer& d) {
        describeCommon(d);
        d.zone("AcDbHatch");
        d.run();
    }
    void readRunGroup(const Group&, int) override {}
    void writeRun(GroupWriter& writer, int) const override {
        constexpr int kExternal = 1, kPolyline = 2;
        writer.point(10, 0, 0, elevation_);
        writer.point(210, normal_.x, normal_.y, normal_.z);
        writer.text(2, "SOLID");
        writer.integer(70, 1);  // filled
        writer.integer(71, 0);  // not associative
        writer.integer(91, 1);
        writer.integer(92, kExternal | kPolyline);
        writer.integer(72, 0);  // without bulges
        writer.integer(73, 1);  // closed
        writer.integer(93, static_cast<std::int64_t>(outline_.size()));
        for (const OdGePoint2d& corner : outline_) {
            writer.real(10, corner.x);
            writer.real(20, corner.y);
        }
        writer.integer(97, 0);
        writer.integer(75, 0);
        writer.integer(76, 1);
        writer.integer(98, 0);
    }

  private:
    OdGeVector3d normal_{0, 0, 1};
    double elevation_ = 0;
    std::vector<OdGePoint2d> outline_;
};

class NewSolid : public OdDbEntity {
    OD_DECLARE_CONCRETE_CLASS(NewSolid)
  public:
    void set(const OdGeVector3d& normal, double thickness, const std::array<OdGePoint3d, 4>& corners) {
        normal_ = normal;
        thickness_ = thickness;
        corners_ = corners;
    }
    OdResult transformBy(const OdGeMatrix3d& matrix) override {
        const auto plane = mapPlane(matrix, normal_);
        if (!plane) return OdResult::transformRefused;
        assertWriteEnabled();
        for (OdGePoint3d& corner : corners_) corner.transformBy(plane->map);
        thickness_ = mapThickness(matrix, normal_, thickness_, plane->normal);
        normal_ = plane->normal;
        return OdResult::ok;
    }

  protected:
    const ClassDescription* description() const override {
        static const ClassDescription d = drawingdb::describe<NewSolid>("SOLID", &NewSolid::describe);
        return &d;
    }
    static void describe(Describer& d) {
        auto& self = d.self<NewSolid>();
        describeCommon(d);
        d.zone("AcDbTrace");
        for (int i = 0; i < 4; ++i) d.required().point(10 + i, self.corners_[static_cast<std::size_t>(i)]);
        d.real(39, self.thickness_);
        d.vector(210, self.normal_);
    }

  private:
    std::array<OdGePoint3d, 4> corners_;
    OdGeVector3d normal_{0, 0, 1};
    double thickness_ = 0;
};

OD_DEFINE_CLASS(NewSolidHatch, OdDbEntity)
OD_DEFINE_CLASS(NewSolid, OdDbEntity)

}  // namespace

OdDbEntityPtr drawingdb::newSolidHatch(const FilledStrip& strip) {
    const OdSmartPtr<NewSolidHatch> hatch = NewSolidHatch::createObject();
    hatch->set(strip);
    return OdDbEntityPtr(hatch.get());
}

OdDbEntityPtr drawingdb::newSolid(const OdGeVector3d& normal, double thickness,
                                  const std::array<OdGePoint3d, 4>& corners) {
    const OdSmartPtr<NewSolid> solid = NewSolid::createObject();
    solid->set(normal, thickness, corners);
    return OdDbEntityPtr(solid.get());
}

std::vector<OdDbEntityPtr> drawingdb::newSolids(const FilledStrip& strip, double thickness) {
    std::vector<OdDbEntityPtr> solids;
    const auto corner = [&](const OdGePoint2d& point) { return OdGePoint3d(point.x, point.y, strip.elevation); };
    for (std::size_t i = 1; i < strip.left.size(); ++i) {
        solids.push_back(newSolid(
            strip.normal, thickness,
            {corner(strip.left[i - 1]), corner(strip.right[i - 1]), corner(strip.left[i]), corner(strip.right[i])}));
    }
    return solids;
}
