// Plot styles by name: how an entity is plotted. Their names stand in a dictionary of the drawing; what they mean, in
// files of the plotting program.
#pragma once

#include <vector>

#include "drawingdb/database.h"
#include "drawingdb/entity.h"

namespace drawingdb {

enum class PlotStyleKind {
    kByLayer = 0,  ///< numbers as in group 380
    kByBlock = 1,
    kStandard = 2,  ///< the one that the dictionary names for what has none
    kByName = 3,
};

struct PlotStyle {
    PlotStyleKind kind = PlotStyleKind::kByLayer;
    OdDbObjectId style;  ///< by name: what the dictionary's name stands for
    friend bool operator==(const PlotStyle&, const PlotStyle&) = default;
};

/// Whether files of the drawing's version keep plot styles.
DRAWINGDB_API bool holdsPlotStyles(const OdDbDatabase& database);
/// Their names in the order of the dictionary.
DRAWINGDB_API std::vector<OdString> plotStyleNames(const OdDbDatabase& database);
/// Found without case; null when there is none.
DRAWINGDB_API OdDbObjectId findPlotStyle(const OdDbDatabase& database, const OdString& name);

DRAWINGDB_API PlotStyle plotStyleOf(const OdDbEntity& entity);
/// Empty for a style that is not by name, and for one that the dictionary does not have.
DRAWINGDB_API OdString plotStyleName(const OdDbEntity& entity);
/// What is not by name has no style of its own.
DRAWINGDB_API void setPlotStyle(OdDbEntity& entity, const PlotStyle& style);

}  // namespace drawingdb
