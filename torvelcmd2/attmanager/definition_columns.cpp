#include "torvelcmd2/attmanager/definition_columns.h"

#include <algorithm>
#include <cstdlib>

#include "base/text.h"
#include "drawingdb/symbol_table.h"
#include "torvelcmd2/attmanager/property_controls.h"
#include "torvelcmd2/attributes/justification.h"
#include "torvelcmd2/attributes/number_field.h"
#include "torvelcmd2/attributes/values/text_escapes.h"
#include "torvelcmd2/frame/module_dialog.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

// A cell has one line.
OdString defaultText(const OdDbAttributeDefinition& definition) {
    if (!definition.isMultiLine()) return definition.textString();
    return base::replaceAll(withoutEscapes(definition.textString()), L"\n", L" ");
}

// One letter a mode, in the order of the template, which translators may replace by another of six letters.
OdString modeLetters(const OdDbAttributeDefinition& definition) {
    constexpr std::size_t kModes = 6;
    const OdString letters = translate(L"ICVPLM");
    if (letters.size() != kModes) return loadText(IDS_UNTRANSLATED_MODES);
    const bool modes[kModes] = {definition.isInvisible(), definition.isConstant(),          definition.isVerifiable(),
                                definition.isPreset(),    definition.lockPositionInBlock(), definition.isMultiLine()};
    OdString shown;
    for (std::size_t mode = 0; mode < kModes; ++mode)
        if (modes[mode]) shown += letters[mode];
    return shown;
}

OdString justificationName(const OdDbAttributeDefinition& definition) {
    const Justification* const row = justificationOf(definition);
    return row ? loadText(row->textId) : OdString();
}

// Only multi-line text has one.
OdString boundaryWidth(const OdDbAttributeDefinition& definition) {
    const OdSmartPtr<OdDbMText> text = definition.getMTextAttributeDefinition();
    return text ? numberText(NumberKind::kLength, text->width()) : OdString();
}

// As its table spells it.
OdString linetypeName(const OdDbAttributeDefinition& definition) {
    const OdString name = definition.linetype();
    const auto linetype = definition.database()->findLinetype(name).openIf<OdDbSymbolTableRecord>();
    return linetype ? linetype->name() : name;
}

constexpr DefinitionColumn kColumns[] = {
    {IDS_COLUMN_TAG, IDS_UNREAD_TAG, [](const OdDbAttributeDefinition& d) { return d.tag(); }},
    {IDS_COLUMN_PROMPT, IDS_UNREAD_PROMPT, [](const OdDbAttributeDefinition& d) { return d.prompt(); }},
    {IDS_COLUMN_DEFAULT, IDS_UNREAD_DEFAULT, defaultText},
    {IDS_COLUMN_MODES, IDS_UNREAD_MODES, modeLetters},
    {IDS_COLUMN_STYLE, IDS_UNREAD_STYLE, [](const OdDbAttributeDefinition& d) { return d.textStyleName(); }},
    {IDS_COLUMN_JUSTIFICATION, IDS_UNREAD_JUSTIFICATION, justificationName},
    {IDS_COLUMN_HEIGHT, IDS_UNREAD_HEIGHT,
     [](const OdDbAttributeDefinition& d) { return numberText(NumberKind::kLength, d.height()); }},
    {IDS_COLUMN_ROTATION, IDS_UNREAD_ROTATION,
     [](const OdDbAttributeDefinition& d) { return numberText(NumberKind::kAngle, d.rotation()); }},
    {IDS_COLUMN_WIDTH_FACTOR, IDS_UNREAD_WIDTH_FACTOR,
     [](const OdDbAttributeDefinition& d) { return numberText(NumberKind::kFactor, d.widthFactor()); }},
    {IDS_COLUMN_OBLIQUE_ANGLE, IDS_UNREAD_OBLIQUE_ANGLE,
     [](const OdDbAttributeDefinition& d) { return numberText(NumberKind::kAngle, d.oblique()); }},
    {IDS_COLUMN_BOUNDARY_WIDTH, IDS_UNREAD_BOUNDARY_WIDTH, boundaryWidth},
    {IDS_COLUMN_LAYER, IDS_UNREAD_LAYER, [](const OdDbAttributeDefinition& d) { return d.layer(); }},
    {IDS_COLUMN_LINETYPE, IDS_UNREAD_LINETYPE, linetypeName},
    {IDS_COLUMN_COLOR, IDS_UNREAD_COLOR,
     [](const OdDbAttributeDefinition& d) { return COdColorProperty().toText(d.color()); }},
    {IDS_COLUMN_LINEWEIGHT, IDS_UNREAD_LINEWEIGHT,
     [](const OdDbAttributeDefinition& d) { return CTLineWeightProperty().toText(d.lineweight()); }},
    {IDS_COLUMN_PLOTSTYLE, IDS_UNREAD_PLOTSTYLE, [](const OdDbAttributeDefinition& d) { return plotStyleText(d); }},
};

}  // namespace

std::span<const DefinitionColumn> definitionColumns() { return kColumns; }

OdString cellText(const DefinitionColumn& column, const OdDbAttributeDefinition* definition) {
    return definition ? column.textOf(*definition) : loadText(column.fallback);
}

// ---- settings: one number a column, its width, below 0 while it is hidden

ColumnSetting readColumnSetting(const DefinitionColumn& column) {
    constexpr int kNeverChosen = -30, kWidest = 10'000;
    int stored = readIntegerSetting(kManagerSection, loadText(column.name).c_str(), kNeverChosen);
    if (stored == 0) stored = kNeverChosen;
    return {std::min(std::abs(std::max(stored, -kWidest)), kWidest), stored > 0};
}

void writeColumnSetting(const DefinitionColumn& column, const ColumnSetting& setting) {
    writeIntegerSetting(kManagerSection, loadText(column.name).c_str(),
                        setting.isShown ? setting.width : -setting.width);
}

}  // namespace torvel
