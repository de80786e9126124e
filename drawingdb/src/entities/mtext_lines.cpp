// A multi-line text taken apart into its lines, for matrices under which its lines would not stand below each other.
#include <cmath>

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/curves.h"
#include "drawingdb/mtext.h"
#include "drawingdb/mtext_layout.h"
#include "drawingdb/mtext_parser.h"
#include "drawingdb/src/entities/filled_strip.h"
#include "drawingdb/text_style.h"

using drawingdb::MTextFormat;
using drawingdb::MTextLine;
using drawingdb::MTextPlacedRun;
using drawingdb::MTextRunKind;

namespace {

OdString code(wchar_t letter, double value) {
    return OdString(L"\\") + letter + base::widen(base::realToText(value)) + L";";
}

OdString escaped(const OdString& text, const wchar_t* special) {
    OdString result;
    for (const wchar_t c : text) {
        if (std::wstring_view(special).find(c) != std::wstring_view::npos) result += L'\\';
        result += c;
    }
    return result;
}

OdString colorCode(const OdCmColor& color) {
    if (color.colorMethod() != OdCmEntityColor::kByRgb) return code(L'C', color.colorIndex());
    const std::uint32_t blueHighest = color.red() | color.green() << 8 | color.blue() << 16;
    return code(L'c', blueHighest);
}

bool isShapeFont(std::wstring_view font) {
    constexpr std::wstring_view kExtension = L".shx";
    return font.size() > kExtension.size() &&
           base::equalsNoCase(font.substr(font.size() - kExtension.size()), kExtension);
}

// The codes that lead from one format to the other.
OdString formatCodes(const MTextFormat& to, const MTextFormat& from) {
    OdString codes;
    if (to.font != from.font || to.bold != from.bold || to.italic != from.italic)
        codes += isShapeFont(to.font)
                     ? L"\\F" + to.font + L";"
                     : L"\\f" + to.font + (to.bold ? L"|b1" : L"|b0") + (to.italic ? L"|i1;" : L"|i0;");
    if (to.height != from.height) codes += code(L'H', to.height);
    if (to.widthFactor != from.widthFactor) codes += code(L'W', to.widthFactor);
    if (to.tracking != from.tracking) codes += code(L'T', to.tracking);
    if (to.oblique != from.oblique) codes += code(L'Q', to.oblique * 180 / drawingdb::kPi);
    if (to.alignment != from.alignment) codes += code(L'A', static_cast<int>(to.alignment));
    if (to.color && to.color != from.color) codes += colorCode(*to.color);
    if (to.underlined) codes += L"\\L";
    if (to.overlined) codes += L"\\O";
    if (to.struckThrough) codes += L"\\K";
    return codes;
}

OdString contentsOf(const MTextLine& line, const MTextFormat& initial) {
    OdString contents;
    for (const MTextPlacedRun& run : line.runs) {
        OdString shown = base::replaceAll(escaped(run.text, L"\\{}"), L"\u00A0", L"\\~");
        if (run.kind == MTextRunKind::Tab) shown = L"\t";
        if (run.kind == MTextRunKind::Stack)
            shown = L"\\S" + escaped(run.text, L"\\/#^;") + run.separator + escaped(run.lower, L"\\;") + L";";
        const OdString codes = formatCodes(run.format, initial);
        contents += codes.empty() ? shown : L"{" + codes + shown + L"}";
    }
    return contents;
}

}  // namespace

std::array<OdGePoint2d, 4> OdDbMText::box() const {
    const drawingdb::MTextLayout lines = layout();
    const double margin = (backgroundScale_ - 1) * height_;
    const OdGePoint2d &topLeft = lines.boundingPoints[0], &bottomRight = lines.boundingPoints[3];
    const double left = topLeft.x - margin, right = bottomRight.x + margin;
    const double top = topLeft.y + margin, bottom = bottomRight.y - margin;
    return {OdGePoint2d(left, top), OdGePoint2d(right, top), OdGePoint2d(right, bottom), OdGePoint2d(left, bottom)};
}

OdResult OdDbMText::explode(std::vector<OdDbEntityPtr>& pieces) const {
    if (backgroundFillOn() && useBackgroundColorOn()) return OdResult::transformRefused;
    const drawingdb::MTextLayout lines = layout();
    // One line is in pieces already: taking it apart would never end.
    if (lines.lines.size() == 1 && !backgroundFillOn() && !hasFrame()) return OdResult::transformRefused;
    const OdGeMatrix3d toWorld = layoutToWorld();
    const auto add = [&](const OdDbEntityPtr& piece) -> OdDbEntity& {
        piece->setPropertiesFrom(*this);
        pieces.push_back(piece);
        return *piece;
    };
    if (backgroundFillOn() || hasFrame()) {
        std::array<OdGePoint3d, 4> corners;
        const std::array<OdGePoint2d, 4> flat = box();
        for (std::size_t i = 0; i < 4; ++i) corners[i] = toWorld * OdGePoint3d(flat[i].x, flat[i].y, 0);
        if (backgroundFillOn()) {
            const OdGeMatrix3d toPlane = OdGeMatrix3d::worldToPlane(normal_);
            add(drawingdb::newSolid(
                    normal_.normal(), 0,
                    {toPlane * corners[0], toPlane * corners[1], toPlane * corners[3], toPlane * corners[2]}))
                .setColor(backgroundFillColor());
        }
        for (std::size_t i = 0; i < 4 && hasFrame(); ++i) {
            const OdSmartPtr<OdDbLine> side = OdDbLine::createObject();
            side->setStartPoint(corners[i]);
            side->setEndPoint(corners[(i + 1) % 4]);
            add(OdDbEntityPtr(side.get()));
        }
    }
    MTextFormat initial;
    initial.height = height_;
    if (const auto style = textStyle().openIf<OdDbTextStyleTableRecord>()) {
        initial.widthFactor = style->xScale();
        initial.oblique = style->obliquingAngle();
    }
    for (const MTextLine& line : lines.lines) {
        if (line.runs.empty()) continue;
        const OdSmartPtr<OdDbMText> text = createObject();
        add(OdDbEntityPtr(text.get()));
        text->copyMTextFrom(*this);
        text->background_ = 0;
        text->width_ = text->definedHeight_ = 0;
        // Hung on its top, at the side or the middle where the whole text hangs.
        const int column = (attachment_ - 1) % 3;
        text->setAttachment(column + 1);
        text->setLocation(toWorld *
                          OdGePoint3d(line.position.x + line.width * column / 2, line.position.y + line.height, 0));
        text->setContents(contentsOf(line, initial));
    }
    return OdResult::ok;
}
