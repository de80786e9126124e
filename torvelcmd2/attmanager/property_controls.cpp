// Colours, lineweights and plot styles as texts and back, and the drop-downs that show them.
#include "torvelcmd2/attmanager/property_controls.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "base/format.h"
#include "base/number.h"
#include "base/text.h"
#include "drawingdb/plot_style.h"
#include "torvelcmd2/frame/ask.h"
#include "torvelcmd2/frame/module_dialog.h"

namespace torvel {
namespace {

constexpr wchar_t kByLayer[] = L"By Layer";
constexpr wchar_t kByBlock[] = L"By Block";
constexpr wchar_t kDefault[] = L"Default";
constexpr wchar_t kMoreColors[] = L"More Colors...";

struct BasicColor {
    const wchar_t* name;
    const wchar_t* rgbText;
    std::uint32_t rgb;
};
constexpr BasicColor kBasicColors[] = {
    {L"red", L"255,0,0", 0xFF0000},    {L"yellow", L"255,255,0", 0xFFFF00}, {L"green", L"0,255,0", 0x00FF00},
    {L"cyan", L"0,255,255", 0x00FFFF}, {L"blue", L"0,0,255", 0x0000FF},     {L"magenta", L"255,0,255", 0xFF00FF},
};

constexpr std::int32_t kStandardWeights[] = {0,  5,  9,  13, 15, 18,  20,  25,  30,  35,  40,  50,
                                             53, 60, 70, 80, 90, 100, 106, 120, 140, 158, 200, 211};

constexpr double kInchesPerMillimetre = 0.03937007874015748;

bool weightsAreInInches() { return hostVariable(hostapi::getIntegerVariable, L"LWUNITS", 1) == 0; }

// The number at the start of a text, as scanf's "%lf" takes it: "0.3 mm" is 0.3. Nothing when there is none.
std::optional<double> leadingReal(std::wstring_view text) {
    std::size_t at = std::min(text.find_first_not_of(L" \t\r\n"), text.size());
    const std::size_t start = at;
    const auto skipDigits = [&] {
        const std::size_t first = at;
        while (at < text.size() && base::isDigit(text[at])) ++at;
        return at > first;
    };
    const auto skipSign = [&] {
        if (at < text.size() && (text[at] == L'+' || text[at] == L'-')) {
            ++at;
        }
    };
    skipSign();
    bool hasDigits = skipDigits();
    if (at < text.size() && text[at] == L'.') {
        ++at;
        hasDigits = skipDigits() || hasDigits;
    }
    if (!hasDigits) return std::nullopt;
    std::size_t end = at;
    if (at < text.size() && (text[at] == L'e' || text[at] == L'E')) {
        ++at;
        skipSign();
        if (skipDigits()) end = at;
    }
    return base::parseReal(text.substr(start, end - start));
}

// The chooser begins at `color`.
std::optional<OdCmColor> askHostForColor(OdCmColor color) {
    auto* const select = hostService(hostapi::selectColor);
    if (!select || !select(color)) return std::nullopt;
    return color;
}

}  // namespace

// ---- colours

OdString COdColorProperty::toText(const OdCmColor& color) const {
    switch (color.colorMethod()) {
        case OdCmEntityColor::kByLayer:
            return translate(kByLayer);
        case OdCmEntityColor::kByBlock:
            return translate(kByBlock);
        case OdCmEntityColor::kForeground:
            return L"Foreground";
        case OdCmEntityColor::kNone:
            return L"None";
        default:
            break;
    }
    OdString name = color.colorNameForDisplay();
    for (const BasicColor& basic : kBasicColors)
        if (name == basic.rgbText) return basic.name;
    return name;
}

std::optional<OdCmColor> COdColorProperty::fromText(const OdString& text) const {
    if (text == translate(kByLayer)) return OdCmColor::fromMethod(OdCmEntityColor::kByLayer);
    if (text == translate(kByBlock)) return OdCmColor::fromMethod(OdCmEntityColor::kByBlock);
    if (text == translate(kMoreColors)) return askHostForColor(value());
    for (const BasicColor& basic : kBasicColors)
        if (base::equalsNoCase(text, basic.name)) return OdCmColor::fromRgb(basic.rgb);
    return OdCmColor::fromDisplayName(text);
}

std::vector<OdString> COdColorProperty::choices() const {
    std::vector<OdString> texts = {translate(kByLayer), translate(kByBlock)};
    for (const BasicColor& basic : kBasicColors) texts.emplace_back(basic.name);
    texts.push_back(translate(kMoreColors));
    return texts;
}

// ---- lineweights

OdString CTLineWeightProperty::toText(const std::int32_t& weight) const {
    switch (weight) {
        case kLineWeightByLayer:
            return translate(kByLayer);
        case kLineWeightByBlock:
            return translate(kByBlock);
        case kLineWeightDefault:
            return translate(kDefault);
        default:
            break;
    }
    const double millimetres = weight / 100.0;
    if (weightsAreInInches()) {
        // Two apostrophes are the inch mark.
        return base::format(L"%.3f''", millimetres * kInchesPerMillimetre);
    }
    return base::format(L"%.2f %s", millimetres, translate(L"mm").c_str());
}

std::optional<std::int32_t> CTLineWeightProperty::fromText(const OdString& text) const {
    if (text == translate(kByLayer)) return kLineWeightByLayer;
    if (text == translate(kByBlock)) return kLineWeightByBlock;
    // By the number alone: a listed text in inches gives back what its three digits come to. The pages store the
    // nearest standard weight.
    const std::optional<double> number = text == translate(kDefault) ? std::nullopt : leadingReal(text);
    if (!number) return kLineWeightDefault;
    // Truncated towards zero behind the half, which is not rounding for negative numbers.
    const double weight = *number * (weightsAreInInches() ? 2540 : 100) + 0.5;
    if (weight > std::numeric_limits<std::int32_t>::max() || weight < std::numeric_limits<std::int32_t>::min())
        return kLineWeightDefault;
    return static_cast<std::int32_t>(weight);
}

std::vector<OdString> CTLineWeightProperty::choices() const {
    std::vector<OdString> texts;
    for (std::int32_t special : {kLineWeightByLayer, kLineWeightByBlock, kLineWeightDefault})
        texts.push_back(toText(special));
    for (std::int32_t weight : kStandardWeights) texts.push_back(toText(weight));
    return texts;
}

std::int32_t storableLineWeight(std::int32_t weight) {
    if (weight == kLineWeightByLayer || weight == kLineWeightByBlock || weight == kLineWeightDefault) return weight;
    return *std::ranges::min_element(kStandardWeights, {},
                                     [weight](std::int64_t standard) { return std::abs(standard - weight); });
}

// ---- plot styles

OdString plotStyleText(const OdDbEntity& entity) {
    switch (drawingdb::plotStyleOf(entity).kind) {
        case drawingdb::PlotStyleKind::kByLayer:
            return kPlotsByLayer;
        case drawingdb::PlotStyleKind::kByBlock:
            return kPlotsByBlock;
        default:
            return drawingdb::plotStyleName(entity);
    }
}

// ---- controls

void CCSComboBoxCtrl::show() {
    dialog_.clearChoices(control_);
    for (const OdString& choice : property_.choices()) dialog_.addChoice(control_, choice);
    dialog_.setText(control_, property_.text());
    dialog_.setModified(control_, false);
}

bool CCSComboBoxCtrl::commit() {
    if (!dialog_.isModified(control_)) return false;
    // What is shown already is no other value, though it may not say all digits of it.
    const OdString text = dialog_.text(control_);
    const bool taken = text != property_.text() && property_.setText(text);
    // The value's own text, also in place of one that gave no value.
    dialog_.setText(control_, property_.text());
    dialog_.setModified(control_, false);
    return taken;
}

void CColorCtl::setColor(const OdCmColor& color) {
    property_.setValue(color);
    show();
}

void CLineWeightCtl::setLineWeight(std::int32_t weight) {
    property_.setValue(weight);
    show();
}

// ---- the container

CCSComboBoxCtrl* CEditPropContainer::find(int control) const {
    const auto found = std::find_if(controls_.begin(), controls_.end(),
                                    [control](const CCSComboBoxCtrl* known) { return known->control() == control; });
    return found == controls_.end() ? nullptr : *found;
}

bool CEditPropContainer::onCommand(int control, dialogs::Event event) {
    CCSComboBoxCtrl* const known = event == dialogs::Event::kChosen ? find(control) : nullptr;
    return known != nullptr && known->commit();
}

bool CEditPropContainer::onLeave(int control) {
    CCSComboBoxCtrl* const known = find(control);
    return known != nullptr && known->commit();
}

}  // namespace torvel
