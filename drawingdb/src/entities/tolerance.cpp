#include "drawingdb/tolerance.h"

#include <cmath>

#include "drawingdb/database.h"
#include "drawingdb/src/core/core.h"
#include "drawingdb/src/entities/dimension_style.h"

namespace drawingdb {

ToleranceLook toleranceLook(const OdDbEntity& tolerance) {
    const bool binary = tolerance.database()->core().format.binary;
    ToleranceLook look;
    look.frameColor = look.textColor = OdCmColor::fromMethod(OdCmEntityColor::kByBlock);
    double scale = 1;
    readDimensionStyle(tolerance, [&](int code, const Group& value) {
        const auto take = [&](double& length) {
            // A negative gap asks dimensions for a box.
            if (const double size = std::fabs(groupReal(value, binary).value_or(0)); size > 0) length = size;
        };
        const auto color = [&] {
            return OdCmColor::fromIndex(static_cast<int>(groupInteger(value, binary).value_or(0)));
        };
        if (code == dimension_style::overallScale) take(scale);
        if (code == dimension_style::textHeight) take(look.textHeight);
        if (code == dimension_style::textGap) take(look.gap);
        if (code == dimension_style::lineColor) look.frameColor = color();
        if (code == dimension_style::textColor) look.textColor = color();
        if (code == dimension_style::textStyle)
            look.textStyle = tolerance.database()->getObjectId(OdDbHandle(parseHandle(value.value)));
    });
    look.textHeight *= scale;
    look.gap *= scale;
    return look;
}

}  // namespace drawingdb
