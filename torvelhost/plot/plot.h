// Plotting: what a document shows, as a file.
#pragma once

#include <string>
#include <vector>

#include "torvelhost/plot/picture.h"
#include "torvelhost/plot/plot_settings.h"
#include "torvelhost/session/document_view.h"

namespace host {

/// Whether the name ends as that of a plot does: .svg, .png or .pdf.
bool isPlotFileName(std::wstring_view path);
bool isPdfFileName(std::wstring_view path);

/// The current space as ZOOM left it, or all of it; or the layouts that the settings name. SVG and PNG have the view's
/// size. Throws base::FileError; the file is as it was then. Returns what there is to be told: "not drawn: 3 BODY".
std::vector<std::wstring> plotToFile(Document& document, DocumentView& view, const PlotSettings& settings,
                                     const std::wstring& path);
/// A picture that is there already.
void plotPicture(const Picture& picture, const PlotSettings& settings, const std::wstring& path);

}  // namespace host
