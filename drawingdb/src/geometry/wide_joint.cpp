#include "drawingdb/wide_joint.h"

#include <cmath>

namespace drawingdb {

WideJoint wideJoint(const OdGeVector2d& sideBefore, double widthBefore, const OdGeVector2d& sideBehind,
                    double widthBehind) {
    constexpr double kSharpest = -0.7;
    const double cosine = sideBefore.dotProduct(sideBehind), turn = sideBefore.crossProduct(sideBehind);
    WideJoint joint{sideBefore, sideBehind, {}, turn > 0};
    if (std::fabs(widthBefore - widthBehind) <= 1e-9 * widthBefore && cosine >= kSharpest)
        joint.end = joint.start = (sideBefore + sideBehind) / (1 + cosine);
    else if (turn != 0 && widthBefore != 0 && widthBehind != 0)
        joint.wedge = {sideBefore * (std::copysign(widthBefore, -turn) / 2),
                       sideBehind * (std::copysign(widthBehind, -turn) / 2)};
    return joint;
}

}  // namespace drawingdb
