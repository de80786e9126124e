// Pages of a plot: which part of which space, how large, on what paper.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "drawingdb/database.h"
#include "torvelhost/plot/plot_settings.h"

namespace host {

struct Sheet {
    std::wstring name;  // of its layout
    OdDbObjectId space;
    Paper paper;
    OdGePoint2d center;  // what of the space lies in the paper's middle
    double scale = 1;    // millimetres of paper for a unit of the space
    std::wstring warning;
};

/// Where the paper of the current layout lies in its space; nothing in model space and where no paper is set up.
std::optional<OdGeExtents3d> paperEdge(const OdDbDatabase& database);
/// "Model, Layout1, Layout2".
std::wstring layoutList(const OdDbDatabase& database);
bool hasLayout(const OdDbDatabase& database, std::wstring_view name);
/// The current space is the whole of a layout with a paper of its own, or what `seen` has of it: not valid when there
/// is nothing.
Sheet currentSheet(const OdDbDatabase& database, const OdGeExtents3d& seen, const PlotSettings& settings);
/// A layout by its name: as its own page is set up, where it is, and settings do not say otherwise.
Sheet layoutSheet(const OdDbDatabase& database, const std::wstring& name, const PlotSettings& settings);
/// The one that the settings name, or all layouts of paper with something on them, in the order of their tabs; model
/// space when there is none.
std::vector<Sheet> layoutSheets(const OdDbDatabase& database, const PlotSettings& settings);

}  // namespace host
