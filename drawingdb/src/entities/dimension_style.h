// What dimensions and leaders take from their dimension style, and what they override of it. A style has its values as
// groups, an entity overrides them in its extended data:
//
//   1001 ACAD  1000 DSTYLE  1002 {  (1070 the group's code  1040, 1070 or 1005 its value)...  1002 }
#pragma once

#include <functional>

#include "drawingdb/entity.h"
#include "drawingdb/src/file/groups.h"

namespace drawingdb {

/// Codes of groups of a style.
namespace dimension_style {
inline constexpr int overallScale = 40, arrowSize = 41, textHeight = 140, measurementFactor = 144, textGap = 147,
                     lineColor = 176, textColor = 178, textStyle = 340, leaderArrow = 341;
}

/// Gives the groups of the style that an entity of a database names (3), and behind them those that it overrides: of a
/// code the last one holds.
void readDimensionStyle(const OdDbEntity& entity, const std::function<void(int code, const Group& value)>& take);

/// Overrides a value of the style, or does so with another one.
void overrideDimensionStyle(OdDbEntity& entity, int code, double value);

}  // namespace drawingdb
