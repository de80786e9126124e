// What texts take from the drawing's text styles.
#pragma once

#include "drawingdb/object_id.h"

namespace drawingdb {

struct CurrentTextStyle {
    OdString name;
    double height = 0.2;  ///< the style's fixed one, or else the current one
    double widthFactor = 1;
    double oblique = 0;  ///< radians
};

/// The style that new texts get.
CurrentTextStyle currentTextStyle(OdDbDatabase& database);
/// The name of a style's record. Throws as openAs does.
OdString textStyleName(OdDbObjectId style);

/// Text without a style has this one.
inline constexpr const wchar_t* kStandardStyle = L"Standard";

}  // namespace drawingdb
