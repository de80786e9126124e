// Pages: a layout's own is read from its groups, which say in millimetres and inches what its units are on paper.
#include "torvelhost/plot/sheet.h"

#include <algorithm>
#include <cmath>

#include "base/format.h"
#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/dictionary.h"
#include "drawingdb/layout.h"
#include "torvelhost/plot/extents.h"
#include "torvelhost/plot/groups.h"

namespace host {
namespace {

constexpr wchar_t kModel[] = L"Model";
constexpr double kInch = 25.4;
constexpr double kBorder = 5;  // millimetres that are left free around what is made to fit

// Millimetres in a unit, by the numbers of $INSUNITS. Drawings without units are in millimetres.
double unitLength(const OdDbDatabase& database) {
    constexpr double kMetre = 1000, kFoot = 12 * kInch, kAstronomical = 149597870700.0 * kMetre,
                     kLightYear = 9460730472580800.0 * kMetre, kParsec = 30856775814913673.0 * kMetre;
    constexpr double kUnits[] = {1,
                                 kInch,
                                 kFoot,
                                 5280 * kFoot,
                                 1,
                                 10,
                                 kMetre,
                                 1000 * kMetre,
                                 kInch / 1e6,
                                 kInch / 1e3,
                                 3 * kFoot,
                                 1e-7,
                                 1e-6,
                                 1e-3,
                                 100,
                                 10 * kMetre,
                                 100 * kMetre,
                                 1e9 * kMetre,
                                 kAstronomical,
                                 kLightYear,
                                 kParsec,
                                 1200.0 / 3937 * kMetre,
                                 100.0 / 3937 * kMetre,
                                 3600.0 / 3937 * kMetre,
                                 5280 * 1200.0 / 3937 * kMetre};
    const std::int64_t unit = database.headerInteger("$INSUNITS", 0);
    return unit > 0 && unit < static_cast<std::int64_t>(std::size(kUnits)) ? kUnits[unit] : kUnits[0];
}

bool isModel(std::wstring_view name) { return base::equalsNoCase(name, kModel); }

struct Margins {
    double left = 0, bottom = 0, right = 0, top = 0;
};

// How a layout is set up to be plotted, upright as one reads it. Lengths are millimetres.
struct PageSetup {
    enum Area { kLimits = 2, kWindow = 4, kLayout = 5 };
    Paper paper;  // width 0: there is none
    Margins margins;
    OdGeVector2d offset;
    double unit = 1;   // a unit of the paper
    double scale = 0;  // millimetres for a unit of the drawing; 0: as fits
    bool isCentered = false;
    int area = kLayout;
    OdGeExtents3d window, limits;

    double unitOfSpace() const { return scale > 0 ? scale : unit; }
};

PageSetup pageSetup(const OdDbLayout& layout) {
    constexpr int kCentered = 4, kStandardScale = 16;
    const std::vector<PlotGroup> groups = groupsOf(layout);
    const auto zoneOf = [&](std::wstring_view marker) {
        const auto isMarker = [](const PlotGroup& group) { return group.code == 100; };
        auto first = std::find_if(groups.begin(), groups.end(),
                                  [&](const PlotGroup& group) { return isMarker(group) && group.text == marker; });
        if (first != groups.end()) ++first;
        return std::span(first, std::find_if(first, groups.end(), isMarker));
    };
    const auto plot = zoneOf(L"AcDbPlotSettings"), own = zoneOf(L"AcDbLayout");
    const auto real = [&](int code) { return groupOrZero(plot, code).real; };
    const auto integer = [&](int code) { return groupOrZero(plot, code).integer; };

    PageSetup page;
    page.paper = {real(44), real(45)};
    if (!(page.paper.width > 0) || !(page.paper.height > 0) || page.paper.width > kLargestPaperSide ||
        page.paper.height > kLargestPaperSide)
        page.paper = {};
    page.margins = {real(40), real(41), real(42), real(43)};
    page.offset = {real(46), real(47)};
    // Each quarter turn of the drawing brings another edge of the paper to its left.
    for (std::int64_t turn = integer(73) & 3; turn > 0; --turn) {
        std::swap(page.paper.width, page.paper.height);
        const Margins& m = page.margins;
        page.margins = {m.bottom, m.right, m.top, m.left};
    }
    const bool isInches = findGroup(plot, 72) && integer(72) == 0;
    page.unit = isInches ? kInch : 1;
    const bool fits = (integer(70) & kStandardScale) && integer(75) == 0;
    if (!fits) page.scale = page.unit * (real(142) > 0 && real(143) > 0 ? real(142) / real(143) : 1);
    page.isCentered = (integer(70) & kCentered) || fits;
    page.area = static_cast<int>(integer(74));
    page.window.addPoint({real(48), real(49), 0}).addPoint({real(140), real(141), 0});
    page.limits.addPoint(groupOrZero(own, 10).point).addPoint(groupOrZero(own, 11).point);
    return page;
}

bool hasArea(const OdGeExtents3d& box) {
    return box.isValid() && box.diagonal().x > 0 && box.diagonal().y > 0 && box.diagonal().length() < 1e15;
}

OdGeExtents3d extentsOf(OdDbObjectId space) {
    const bool isThere = space.isKindOf(OdDbBlockTableRecord::desc());
    return isThere ? extentsOfSpace(space).value_or(OdGeExtents3d()) : OdGeExtents3d();
}

// Puts a box on paper. `unit`: millimetres in a unit of its space.
void place(Sheet& sheet, const OdGeExtents3d& box, double unit, double border, const PlotSettings& settings,
           const Paper& paper) {
    const OdGeVector3d size = box.isValid() ? box.diagonal() : OdGeVector3d();
    sheet.paper = paper.suiting(size.x, size.y);
    if (box.isValid()) sheet.center = box.center().xy();
    if (settings.scale > 0) {
        sheet.scale = settings.scale * unit;
        // A tenth of a millimetre is no reason for a word.
        const double width = size.x * sheet.scale, height = size.y * sheet.scale;
        if (width > sheet.paper.width + 0.1 || height > sheet.paper.height + 0.1)
            sheet.warning =
                base::format(L"%s: cut off, for at this scale it is %.0f x %.0f mm on paper of %.0f x %.0f mm",
                             sheet.name.c_str(), width, height, sheet.paper.width, sheet.paper.height);
        return;
    }
    const double room = std::max(1.0, std::min(sheet.paper.width, sheet.paper.height) - 2 * border);
    const double width = std::max(room, sheet.paper.width - 2 * border),
                 height = std::max(room, sheet.paper.height - 2 * border);
    if (size.x > 0 || size.y > 0)
        sheet.scale = std::min(size.x > 0 ? width / size.x : HUGE_VAL, size.y > 0 ? height / size.y : HUGE_VAL);
    else
        sheet.scale = unit;
}

// The page as the layout has it.
void placeAsSetUp(Sheet& sheet, const PageSetup& page) {
    sheet.paper = page.paper;
    const Margins& m = page.margins;
    const double width = page.paper.width - m.left - m.right, height = page.paper.height - m.bottom - m.top;
    const OdGeVector2d corner = OdGeVector2d(m.left, m.bottom) + page.offset;
    const OdGePoint2d middle(page.paper.width / 2, page.paper.height / 2);
    sheet.scale = page.unitOfSpace();
    if (page.area == PageSetup::kLayout) {
        // The drawing's origin is where the printer can begin.
        sheet.center = OdGePoint2d() + (middle - OdGePoint2d() - corner) / sheet.scale;
        return;
    }
    OdGeExtents3d box = page.area == PageSetup::kWindow   ? page.window
                        : page.area == PageSetup::kLimits ? page.limits
                                                          : extentsOf(sheet.space);
    if (!hasArea(box)) box = extentsOf(sheet.space);
    if (!hasArea(box)) return;
    const OdGeVector3d size = box.diagonal();
    if (page.scale == 0 && width > 0 && height > 0) sheet.scale = std::min(width / size.x, height / size.y);
    // Where the box's lower left corner comes to lie.
    const OdGePoint2d low = page.isCentered ? OdGePoint2d(m.left + (width - size.x * sheet.scale) / 2,
                                                          m.bottom + (height - size.y * sheet.scale) / 2)
                                            : OdGePoint2d() + corner;
    sheet.center = box.minPoint().xy() + (middle - low) / sheet.scale;
}

OdGeExtents3d boxOf(const Sheet& sheet) {
    const OdGeVector2d half = OdGeVector2d(sheet.paper.width, sheet.paper.height) / (2 * sheet.scale);
    const OdGePoint2d low = sheet.center - half, high = sheet.center + half;
    return {OdGePoint3d(low.x, low.y, 0), OdGePoint3d(high.x, high.y, 0)};
}

Paper paperFor(const PlotSettings& settings) { return settings.paper.value_or(*parsePaper(L"A4")); }

OdSmartPtr<OdDbLayout> findLayout(const OdDbDatabase& database, const std::wstring& name) {
    const auto layouts = database.layoutDictionaryId().openIf<OdDbDictionary>();
    return layouts ? layouts->getAt(name).openIf<OdDbLayout>() : OdSmartPtr<OdDbLayout>();
}

}  // namespace

std::optional<OdGeExtents3d> paperEdge(const OdDbDatabase& database) {
    const std::wstring name = database.currentLayoutName();
    const auto layout = isModel(name) ? OdSmartPtr<OdDbLayout>() : findLayout(database, name);
    if (!layout) return std::nullopt;
    const PageSetup page = pageSetup(*layout);
    if (!(page.paper.width > 0)) return std::nullopt;
    Sheet sheet{name, database.currentSpaceId(), {}, {}, 1, {}};
    placeAsSetUp(sheet, page);
    return boxOf(sheet);
}

std::wstring layoutList(const OdDbDatabase& database) {
    std::wstring list;
    for (const OdString& name : database.layoutNames()) list += (list.empty() ? L"" : L", ") + std::wstring(name);
    return list;
}

bool hasLayout(const OdDbDatabase& database, std::wstring_view name) {
    const std::vector<OdString> names = database.layoutNames();
    return std::any_of(names.begin(), names.end(),
                       [&](const OdString& known) { return base::equalsNoCase(known, name); });
}

Sheet currentSheet(const OdDbDatabase& database, const OdGeExtents3d& seen, const PlotSettings& settings) {
    const OdString name = database.currentLayoutName();
    Sheet sheet{name, database.currentSpaceId(), {}, {}, 1, {}};
    double unit = 1;
    if (isModel(sheet.name))
        unit = unitLength(database);
    else if (const auto layout = findLayout(database, sheet.name))
        unit = pageSetup(*layout).unit;
    place(sheet, seen, unit, kBorder, settings, paperFor(settings));
    return sheet;
}

Sheet layoutSheet(const OdDbDatabase& database, const std::wstring& name, const PlotSettings& settings) {
    const auto layout = findLayout(database, name);
    Sheet sheet{name, layout ? layout->blockTableRecordId() : OdDbObjectId(), {}, {}, 1, {}};
    if (layout) sheet.name = layout->layoutName();
    const PageSetup page = layout ? pageSetup(*layout) : PageSetup();
    if (isModel(name)) {
        // Hardly anybody sets it up; what is seen of it fits.
        sheet.space = database.modelSpaceId();
        Paper own = page.paper.width > 0 && !settings.paper ? page.paper : paperFor(settings);
        if (!settings.paper) own.isTurned = false;
        place(sheet, extentsOf(sheet.space), unitLength(database), kBorder, settings, own);
        return sheet;
    }
    if (sheet.space.isNull()) sheet.space = database.paperSpaceId();
    if (!(page.paper.width > 0)) {
        place(sheet, extentsOf(sheet.space), page.unit, kBorder, settings, paperFor(settings));
        return sheet;
    }
    placeAsSetUp(sheet, page);
    if (settings.paper || settings.scale > 0)
        place(sheet, boxOf(sheet), page.unit, 0, settings, settings.paper.value_or(sheet.paper));
    return sheet;
}

std::vector<Sheet> layoutSheets(const OdDbDatabase& database, const PlotSettings& settings) {
    if (!settings.hasAllLayouts()) return {layoutSheet(database, *settings.layout, settings)};
    std::vector<Sheet> sheets;
    for (const OdString& name : database.layoutNames()) {
        if (isModel(std::wstring(name))) continue;
        Sheet sheet = layoutSheet(database, name, settings);
        if (extentsOf(sheet.space).isValid()) sheets.push_back(std::move(sheet));
    }
    if (sheets.empty()) sheets.push_back(layoutSheet(database, kModel, settings));
    return sheets;
}

}  // namespace host
