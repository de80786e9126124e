// Geometric tolerances: rows of cells, each in a box, with texts and signs.
//
//     tolerance = row *( line feed row )
//     row       = cell *( "%%v" cell )       empty cells take no room
//     cell      = text and signs             {\Fgdt;j}: in the font of signs each letter is one
#include <algorithm>

#include "base/text.h"
#include "drawingdb/mtext.h"
#include "drawingdb/tolerance.h"
#include "torvelhost/plot/shapes.h"

namespace host {
namespace {

// What the letters stand for in the font of signs.
constexpr std::wstring_view kLetters = L"abcdefghijklmnprstu", kSigns = L"∠⟂⏥⌓○∥⌭↗⌯⌖⌒ⓁⓂ⌀Ⓟ◎Ⓢ⌰⏤";
static_assert(kLetters.size() == kSigns.size());

using Cells = std::vector<std::wstring>;

// With the signs as characters of their own.
std::vector<Cells> rowsOf(std::wstring_view contents) {
    std::vector<Cells> rows(1, Cells(1));
    bool inSigns = false;
    while (!contents.empty()) {
        const auto begins = [&](std::wstring_view text) { return base::startsWithNoCase(contents, text); };
        std::size_t taken = 1;
        if (contents[0] == L'\n') {
            rows.emplace_back(1);
        } else if (begins(L"%%v")) {
            rows.back().emplace_back();
            taken = 3;
        } else if (begins(L"{\\Fgdt") && contents.find(L';') != contents.npos) {
            inSigns = true;
            taken = contents.find(L';') + 1;
        } else if (inSigns && contents[0] == L'}') {
            inSigns = false;
        } else {
            const std::size_t sign = inSigns ? kLetters.find(contents[0]) : kLetters.npos;
            rows.back().back() += sign == kLetters.npos ? contents[0] : kSigns[sign];
        }
        contents.remove_prefix(taken);
    }
    return rows;
}

}  // namespace

// 1 contents   10 middle of the left edge of the first row   11 direction of the rows
void Shapes::addTolerance(const OdDbEntity& tolerance, const std::vector<PlotGroup>& groups) {
    const auto vectorOf = [&](int code, const OdGeVector3d& standard) {
        const PlotGroup* const group = findGroup(groups, code);
        return group && !group->point.asVector().isZeroLength() ? group->point.asVector().normal() : standard;
    };
    const OdGeVector3d normal = vectorOf(210, OdGeVector3d::kZAxis), along = vectorOf(11, OdGeVector3d::kXAxis);
    const OdGeVector3d up = normal.crossProduct(along);
    const OdGePoint3d origin = groupOrZero(groups, 10).point;
    const auto place = [&](double x, double y) { return origin + along * x + up * y; };

    const drawingdb::ToleranceLook look = drawingdb::toleranceLook(tolerance);
    const double rowHeight = look.textHeight + 2 * look.gap;
    const Style own = list_.style();
    const auto styleOf = [&](const OdCmColor& color) { return color.isByBlock() ? own : styles_.colored(own, color); };
    const auto text = OdDbMText::createObject();
    text->setNormal(normal);
    text->setDirection(along);
    text->setTextHeight(look.textHeight);
    text->setAttachment(2);  // the middle of its upper edge
    if (look.textStyle) text->setTextStyle(look.textStyle);

    const std::vector<Cells> rows = rowsOf(groupOrZero(groups, 1).text);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        double x = 0;
        for (std::size_t i = 0; i < rows[row].size(); ++i) {
            const std::wstring& cell = rows[row][i];
            if (cell.empty()) continue;
            // A sign that the rows below repeat stands once for all of them.
            const auto repeats = [&](std::size_t other) {
                return i == 0 && other < rows.size() && rows[other][0] == cell;
            };
            std::size_t last = row;
            while (repeats(last + 1)) ++last;
            const double top = rowHeight * (0.5 - static_cast<double>(row)),
                         bottom = rowHeight * (-0.5 - static_cast<double>(last));
            text->setContents(cell);
            const double width = set(*text).layout.width + 2 * look.gap;
            if (row == 0 || !repeats(row - 1)) {
                list_.setStyle(styleOf(look.frameColor));
                list_.add(DisplayList::Kind::kPolyline,
                          Corners{place(x, top), place(x + width, top), place(x + width, bottom), place(x, bottom),
                                  place(x, top)});
                list_.setStyle(styleOf(look.textColor));
                text->setLocation(place(x + width / 2, (top + bottom + look.textHeight) / 2));
                addMText(*text);
            }
            x += width;
        }
    }
    list_.setStyle(own);
}

}  // namespace host
