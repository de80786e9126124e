#include "torvelcmd2/extract/burst/exact_transform.h"

#include <cmath>
#include <utility>

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/mtext.h"
#include "drawingdb/mtext_layout.h"
#include "drawingdb/text.h"
#include "drawingdb/text_style.h"
#include "torvelcmd2/attributes/values/text_transfer.h"

namespace torvel {
namespace {

// How a matrix stretches and slants the letters of multi-line text, which transformBy leaves as they are. `before` is
// the text's layout before the matrix.
class Lettering {
  public:
    Lettering(const OdGeMatrix3d& before, const OdGeMatrix3d& matrix) {
        const OdGeVector3d alongImage = matrix * before.xAxis(), upImage = matrix * before.yAxis();
        widthScale_ = alongImage.length();
        heightScale_ = alongImage.crossProduct(upImage).length() / widthScale_;
        lean_ = alongImage.dotProduct(upImage) / widthScale_;
    }
    bool slants() const { return std::fabs(lean_ / heightScale_) > kSame; }
    bool stretches() const { return std::fabs(stretch(1) - 1) > kSame; }

    // With codes that show it. Those that stand in the contents say it of the letters behind them.
    OdString contents(const OdDbMText& text) const {
        double styleWidth = 1, styleSlant = 0;
        if (const auto style = text.textStyle().openIf<OdDbTextStyleTableRecord>()) {
            styleWidth = style->xScale();
            styleSlant = style->obliquingAngle();
        }
        OdString result;
        if (stretches()) result += code(L'W', stretch(styleWidth));
        if (std::fabs(slant(styleSlant) - styleSlant) > kSame)
            result += code(L'Q', slant(styleSlant) * 180 / drawingdb::kPi);
        const OdString old = text.contents();
        for (std::size_t at = 0; at < old.size(); ++at) {
            const wchar_t letter = old[at] == L'\\' && at + 1 < old.size() ? old[at + 1] : L'\0';
            const std::size_t end = letter == L'W' || letter == L'Q' ? old.find(L';', at) : OdString::npos;
            const auto value = end == OdString::npos
                                   ? std::nullopt
                                   : base::parseReal(std::wstring_view(old).substr(at + 2, end - at - 2));
            if (value) {
                result += letter == L'W' ? code(L'W', stretch(*value))
                                         : code(L'Q', slant(*value * drawingdb::kPi / 180) * 180 / drawingdb::kPi);
                at = end;
            } else {
                result += old[at];
                if (letter != L'\0') result += old[++at];
            }
        }
        return result;
    }

  private:
    static constexpr double kSame = 1e-9;
    static OdString code(wchar_t letter, double value) {
        return OdString(L"\\") + letter + base::widen(base::realToText(value)) + L";";
    }
    double stretch(double widthFactor) const { return widthFactor * widthScale_ / heightScale_; }
    double slant(double oblique) const { return std::atan((lean_ + std::tan(oblique) * widthScale_) / heightScale_); }

    double widthScale_, heightScale_, lean_;
};

bool leavesUpright(const OdDbText& text, const OdGeMatrix3d& matrix) {
    const OdGeMatrix3d writing =
        OdGeMatrix3d::planeToWorld(text.normal()) * OdGeMatrix3d::rotation(text.rotation(), OdGeVector3d::kZAxis);
    return (matrix * writing.xAxis()).isPerpendicularTo(matrix * writing.yAxis());
}

// Justified text hangs upright however it is slanted, which would shift one that the matrix shears. It gives up its
// justification for its place.
void giveUpJustification(OdDbText& text, const OdGeMatrix3d& matrix) {
    // Between two points these give the rotation, and what the text says of it may be anything.
    const bool betweenPoints = text.horizontalMode() == OdDb::kTextAlign || text.horizontalMode() == OdDb::kTextFit;
    if (betweenPoints) text.adjustAlignment();
    if (text.isJustified() && !leavesUpright(text, matrix)) {
        text.adjustAlignment();
        // Backward text begins at the second of its points and runs to the first.
        const OdGePoint3d start = betweenPoints && text.isMirroredInX() ? text.alignmentPoint() : text.position();
        text.setHorizontalMode(OdDb::kTextLeft);
        text.setVerticalMode(OdDb::kTextBase);
        text.setPosition(start);
    }
}

// New contents would take away a field, which brings the old ones back anyway.
bool takesCodes(const OdDbEntity& text) { return !text.getField(kTextFieldKey); }

// Letters can be slanted, but not the lines below each other, nor can the room around the text be stretched: where that
// would show, the text is refused for its lines to be placed one by one.
OdResult transformMText(OdDbMText& text, const OdGeMatrix3d& matrix) {
    const OdGeMatrix3d before = text.layoutToWorld();
    const Lettering lettering(before, matrix);
    const drawingdb::MTextLayout layout = text.layout();
    const bool boxed = text.backgroundFillOn() || text.hasFrame();
    // Nothing but the text itself can cover what lies under it with the colour of the drawing's background.
    const bool masks = text.backgroundFillOn() && text.useBackgroundColorOn();
    if (takesCodes(text) && !masks &&
        ((lettering.slants() && layout.lines.size() > 1) || ((lettering.slants() || lettering.stretches()) && boxed)))
        return OdResult::transformRefused;
    const OdResult result = text.transformBy(matrix);
    if (result == OdResult::ok && takesCodes(text)) {
        if (const OdString contents = lettering.contents(text); contents != text.contents()) {
            text.setContents(contents);
            // Slanted letters lean away from their baseline, not from where the text hangs.
            const auto start = [](const drawingdb::MTextLayout& of) {
                return OdGePoint3d(of.lines.front().position.x, of.lines.front().position.y, 0);
            };
            const OdGeVector3d astray = matrix * (before * start(layout)) - text.layoutToWorld() * start(text.layout());
            if (lettering.slants()) text.setLocation(text.location() + astray);
        }
    }
    return result;
}

// A reference takes its attributes along, which are texts like any other.
OdResult transformReference(OdDbBlockReference& reference, const OdGeMatrix3d& matrix) {
    std::vector<std::pair<OdSmartPtr<OdDbAttribute>, OdString>> withCodes;
    for (OdDbObjectId id : reference.attributes()) {
        const auto attribute = id.openAs<OdDbAttribute>(OdDb::forWrite);
        if (!attribute->isMTextAttribute()) {
            giveUpJustification(*attribute, matrix);
        } else if (takesCodes(*attribute)) {
            const auto lines = attribute->getMTextAttribute();
            withCodes.emplace_back(attribute, Lettering(lines->layoutToWorld(), matrix).contents(*lines));
        }
    }
    const OdResult result = reference.transformBy(matrix);
    if (result == OdResult::ok)
        for (const auto& [attribute, contents] : withCodes) attribute->setTextString(contents);
    return result;
}

}  // namespace

OdResult transformExactly(OdDbEntity& entity, const OdGeMatrix3d& matrix) {
    if (matrix.isUniScaledOrtho()) return entity.transformBy(matrix);
    if (auto* const paragraphs = drawingdb::as<OdDbMText>(entity)) return transformMText(*paragraphs, matrix);
    if (auto* const reference = drawingdb::as<OdDbBlockReference>(entity))
        return transformReference(*reference, matrix);
    if (auto* const text = drawingdb::as<OdDbText>(entity)) giveUpJustification(*text, matrix);
    return entity.transformBy(matrix);
}

}  // namespace torvel
