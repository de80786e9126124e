#include "torvelhost/plot/plot.h"

#include "base/text.h"
#include "torvelhost/plot/plotter.h"

namespace host {

std::wstring Plot::warning() const {
    std::wstring text;
    for (const auto& [kind, count] : notDrawn)
        text += (text.empty() ? L"not drawn: " : L", ") + std::to_wstring(count) + L" " + base::fromUtf8(kind);
    return text;
}

Plot plotView(Document& document, DocumentView& view) {
    Plot plot{Picture(view.width(), view.height(), Styles::kBackground), {}};
    const View seen = view.toPlot();
    const double scale = view.height() / seen.height;
    // y runs down in pictures.
    const OdGeMatrix3d toPixels = OdGeMatrix3d::coordSystem(
        OdGePoint3d(view.width() / 2.0 - seen.center.x * scale, view.height() / 2.0 + seen.center.y * scale, 0),
        OdGeVector3d(scale, 0, 0), OdGeVector3d(0, -scale, 0), OdGeVector3d());
    Plotter plotter(*document.database(), plot.picture);
    plotter.drawSpace(document.database()->currentSpaceId(), toPixels, scale);
    plot.notDrawn = plotter.notDrawn();
    return plot;
}

}  // namespace host
