#include "torvelhost/plot/plot.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <new>

#include "base/files.h"
#include "base/text.h"
#include "torvelhost/plot/pdf_writer.h"
#include "torvelhost/plot/plotter.h"
#include "torvelhost/plot/sheet.h"

namespace host {
namespace {

// Of PDF: fine enough for any printer, and whole numbers for the sizes of paper.
constexpr double kPixelsPerMillimetre = 20;

std::wstring_view endOf(std::wstring_view path) { return path.substr(path.size() < 4 ? 0 : path.size() - 4); }

class Drawing {
  public:
    Drawing(OdDbDatabase& database, const Inks& inks)
        : database_(database), inks_(inks), rasters_(database.fileName()) {}

    /// With a place of the space in the picture's middle.
    void draw(Picture& picture, OdDbObjectId space, const OdGePoint2d& middle, const OdGePoint2d& center,
              double pixelsPerUnit) {
        const double scale = pixelsPerUnit;
        // y runs down in pictures.
        const OdGeMatrix3d toPixels =
            OdGeMatrix3d::coordSystem(OdGePoint3d(middle.x - center.x * scale, middle.y + center.y * scale, 0),
                                      OdGeVector3d(scale, 0, 0), OdGeVector3d(0, -scale, 0), OdGeVector3d());
        Plotter plotter(database_, picture, nullptr, inks_);
        plotter.takeRasters(rasters_);
        plotter.drawSpace(space, toPixels, scale);
        for (const auto& [kind, count] : plotter.notDrawn()) notDrawn_[kind] += count;
        letters_.add(plotter.oddLetters());
    }

    /// "not drawn: 3 BODY, 1 IMAGE", and what there is to say of pictures and fonts.
    std::vector<std::wstring> warnings() const {
        std::vector<std::wstring> warnings = rasters_.told();
        for (std::wstring& told : letters_.told()) warnings.push_back(std::move(told));
        std::wstring text;
        for (const auto& [kind, count] : notDrawn_)
            text += (text.empty() ? L"not drawn: " : L", ") + std::to_wstring(count) + L" " + base::fromUtf8(kind);
        if (!text.empty()) warnings.insert(warnings.begin(), std::move(text));
        return warnings;
    }

  private:
    OdDbDatabase& database_;
    Inks inks_;
    OddLetters letters_;
    Rasters rasters_;
    std::map<std::string, int> notDrawn_;  // entities of each kind that could not be drawn
};

std::vector<Sheet> sheetsOf(Document& document, DocumentView& view, const PlotSettings& settings) {
    const OdDbDatabase& database = *document.database();
    if (settings.layout) return layoutSheets(database, settings);
    if (!view.isChosen()) return {layoutSheet(database, database.currentLayoutName(), settings)};
    const View seen = view.current();
    const OdGeVector2d half(seen.height / 2 * view.width() / view.height(), seen.height / 2);
    const OdGePoint2d low = seen.center - half, high = seen.center + half;
    return {currentSheet(database, {OdGePoint3d(low.x, low.y, 0), OdGePoint3d(high.x, high.y, 0)}, settings)};
}

// Its page in the picture that is plotted elsewhere, too.
View viewOf(const Sheet& sheet, const DocumentView& view) {
    const double aspect = static_cast<double>(view.width()) / view.height();
    return {sheet.center, std::max(sheet.paper.height, sheet.paper.width / aspect) / sheet.scale};
}

void plotPages(const std::vector<Sheet>& sheets, Drawing& drawing, const PlotSettings& settings,
               const std::wstring& path) {
    PdfWriter writer(path);
    const Inks& inks = settings.inks;
    for (const Sheet& sheet : sheets) {
        const double width = sheet.paper.width * kPixelsPerMillimetre,
                     height = sheet.paper.height * kPixelsPerMillimetre;
        Picture picture(static_cast<int>(std::ceil(width)), static_cast<int>(std::ceil(height)), inks.background);
        picture.setTaker([&](const Picture& piece) { writer.add(piece); });
        writer.beginPage({sheet.name, sheet.paper, inks.background, kPixelsPerMillimetre, {}});
        drawing.draw(picture, sheet.space, {width / 2, height / 2}, sheet.center, sheet.scale * kPixelsPerMillimetre);
        picture.giveAway();
        writer.endPage();
    }
    writer.finish();
}

}  // namespace

bool isPdfFileName(std::wstring_view path) { return base::equalsNoCase(endOf(path), L".pdf"); }

bool isPlotFileName(std::wstring_view path) {
    return isPdfFileName(path) || base::equalsNoCase(endOf(path), L".svg") || base::equalsNoCase(endOf(path), L".png");
}

std::vector<std::wstring> plotToFile(Document& document, DocumentView& view, const PlotSettings& settings,
                                     const std::wstring& path) {
    std::vector<std::wstring> told;
    const bool isPdf = isPdfFileName(path);
    Inks inks = settings.inks;
    if (isPdf) inks.pixelsPerMillimetre = kPixelsPerMillimetre;
    Drawing drawing(*document.database(), inks);
    if (isPdf) {
        const std::vector<Sheet> sheets = sheetsOf(document, view, settings);
        for (const Sheet& sheet : sheets)
            if (!sheet.warning.empty()) told.push_back(sheet.warning);
        plotPages(sheets, drawing, settings, path);
    } else {
        OdDbObjectId space = document.database()->currentSpaceId();
        View seen;
        if (settings.layout) {
            const Sheet sheet = layoutSheet(*document.database(), *settings.layout, settings);
            space = sheet.space;
            seen = viewOf(sheet, view);
        } else {
            seen = view.toPlot();
        }
        Picture picture(view.width(), view.height(), inks.background);
        drawing.draw(picture, space, {view.width() / 2.0, view.height() / 2.0}, seen.center,
                     view.height() / seen.height);
        plotPicture(picture, settings, path);
    }
    for (std::wstring& warning : drawing.warnings()) told.push_back(std::move(warning));
    return told;
}

void plotPicture(const Picture& picture, const PlotSettings& settings, const std::wstring& path) {
    if (isPdfFileName(path)) {
        const Paper paper = settings.paper.value_or(*parsePaper(L"A4")).suiting(picture.width(), picture.height());
        const double millimetresPerPixel = std::min(paper.width / picture.width(), paper.height / picture.height());
        PdfWriter writer(path);
        writer.beginPage({L"",
                          paper,
                          picture.background(),
                          1 / millimetresPerPixel,
                          {(paper.width - picture.width() * millimetresPerPixel) / 2,
                           (paper.height - picture.height() * millimetresPerPixel) / 2}});
        writer.add(picture);
        writer.endPage();
        return writer.finish();
    }
    const bool isSvg = base::equalsNoCase(endOf(path), L".svg");
    try {
        base::writeFile(path, isSvg ? svgText(picture) : pngBytes(picture));
    } catch (const std::bad_alloc&) {
        throw base::FileError(
            path, L"not written, for there is not enough memory for the picture; a smaller one (--size) needs less");
    }
}

}  // namespace host
