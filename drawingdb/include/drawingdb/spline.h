#pragma once
#include <memory>

#include "drawingdb/entity.h"

namespace drawingdb {
class ArcLengths;
}

/// A B-spline, rational where it has weights. The parameter is that of its knots, from the one with the number of the
/// degree to the one with the number of control points.
///
/// Splines that files give by fit points alone are curves through these points: cubic, with the stored end tangents, or
/// straightened ends where there are none. Knots and control points that do not fit together make a curve without
/// length.
class DRAWINGDB_API OdDbSpline : public OdDbCurve {
    OD_DECLARE_CONCRETE_CLASS(OdDbSpline)
  public:
    int degree() const { return degree_; }
    bool isRational() const { return !weights_.empty(); }
    bool isPeriodic() const { return (flags_ & 2) != 0; }
    const std::vector<double>& knots() const { return knots_; }
    const std::vector<double>& weights() const { return weights_; }
    /// World coordinates, as those of fit points.
    const std::vector<OdGePoint3d>& controlPoints() const { return controlPoints_; }
    const std::vector<OdGePoint3d>& fitPoints() const { return fitPoints_; }
    /// Throws OdError(invalidInput) unless there are degree + 1 control points or more, as many knots as control points
    /// and degree + 1 together, never falling, and no weights or a positive one for each control point. Fit points go.
    void setNurbs(int degree, std::vector<double> knots, std::vector<OdGePoint3d> controlPoints,
                  std::vector<double> weights = {}, bool closed = false);
    /// Two points or more; tangents without length are none.
    void setFitPoints(std::vector<OdGePoint3d> points, const OdGeVector3d& startTangent = {},
                      const OdGeVector3d& endTangent = {});

    bool isClosed() const override { return (flags_ & 1) != 0; }
    /// Takes every matrix.
    OdResult transformBy(const OdGeMatrix3d& matrix) override;
    bool geomExtents(OdGeExtents3d& extents) const override;
    double startParam() const override;
    double endParam() const override;
    OdGePoint3d pointAtParam(double parameter) const override;
    OdGeVector3d firstDerivAtParam(double parameter) const override;
    double distAtParam(double parameter) const override;
    double paramAtDist(double distance) const override;
    std::vector<double> breakParams() const override;  ///< the knots

  protected:
    const drawingdb::ClassDescription* description() const override;
    static void describe(drawingdb::Describer& d);
    void readRunGroup(const drawingdb::Group& group, int zone) override;
    void writeRun(drawingdb::GroupWriter& writer, int zone) const override;
    void clearRuns() override;
    void beforeEncode() override;
    void afterDecode() override;

    /// What is evaluated: the stored curve, or the one through the fit points.
    struct Shape {
        int degree = 0;
        std::vector<double> knots;
        std::vector<OdGePoint3d> points;
        std::vector<double> weights;
        bool fits() const;
        double start() const { return knots[static_cast<std::size_t>(degree)]; }
        double end() const { return knots[points.size()]; }
        /// The point, and the first derivative when asked for.
        OdGePoint3d at(double parameter, OdGeVector3d* derivative) const;
    };
    static Shape throughFitPoints(const std::vector<OdGePoint3d>& points, OdGeVector3d startTangent,
                                  OdGeVector3d endTangent);
    const Shape* shape() const;  ///< null when the curve is damaged
    void shapeChanged();
    const drawingdb::ArcLengths& lengths() const;
    double speedAt(double parameter) const { return firstDerivAtParam(parameter).length(); }

    std::vector<double> knots_;
    std::vector<double> weights_;
    std::vector<OdGePoint3d> controlPoints_;
    std::vector<OdGePoint3d> fitPoints_;
    OdGeVector3d normal_{0, 0, 1};
    OdGeVector3d startTangent_, endTangent_;
    double knotTolerance_ = 1e-7;
    double controlTolerance_ = 1e-7;
    double fitTolerance_ = 1e-10;
    std::int32_t knotCount_ = 0, controlCount_ = 0, fitCount_ = 0;
    std::int16_t flags_ = 0;
    std::int16_t degree_ = 3;
    /// Made when asked for, dropped after a change.
    mutable std::shared_ptr<const Shape> shape_;
    mutable bool shapeFits_ = false;  // told once: a measured length asks for the shape at each of its points
    mutable std::shared_ptr<const drawingdb::ArcLengths> lengths_;
};
