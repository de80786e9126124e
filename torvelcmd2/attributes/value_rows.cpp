#include "torvelcmd2/attributes/value_rows.h"

#include <utility>

#include "torvelcmd2/attributes/attributed_blocks.h"
#include "torvelcmd2/attributes/prompts.h"
#include "torvelcmd2/attributes/values/text_escapes.h"

namespace torvel {
namespace {

OdString labelOf(const OdString& prompt, const OdString& tag) { return prompt.empty() ? tag : prompt; }

}  // namespace

// ---- the attributes of a reference

AttributeRows::AttributeRows(const OdDbBlockReference& reference)
    : database_(reference.database()), blockName_(reference.blockName()) {
    Prompts prompts(reference.blockTableRecord());
    for (OdDbObjectId id : editableAttributes(reference)) {
        const OdString tag = id.openAs<OdDbAttribute>()->tag();
        rows_.push_back({id, labelOf(prompts.take(tag), tag)});
    }
}

bool AttributeRows::isMultiLine(std::size_t row) const {
    return rows_[row].attribute.openAs<OdDbAttribute>()->isMTextAttribute();
}

OdString AttributeRows::refusal(std::size_t row) const { return refusalToEdit(rows_[row].attribute); }

void AttributeRows::show(std::size_t row, CFEdCtrl& control) const {
    const auto attribute = rows_[row].attribute.openAs<OdDbAttribute>();
    if (attribute->isMTextAttribute())
        control.loadForReading(*attribute);
    else
        control.load(*attribute, refusal(row).empty());
}

void AttributeRows::save(std::size_t row, const CFEdCtrl& control) {
    control.save(*rows_[row].attribute.openAs<OdDbAttribute>());
}

MultiLineEdit AttributeRows::edit(std::size_t row) const {
    return editMultiLine(*rows_[row].attribute.openAs<OdDbAttribute>(), WhileEdited::kHidden);
}

void AttributeRows::save(std::size_t row, const MultiLineValue& value) {
    applyMultiLine(value, *rows_[row].attribute.openAs<OdDbAttribute>());
}

// ---- attributes that are not there yet

DefinitionRows::DefinitionRows(OdString blockName, const hostapi::AttributeValues& values,
                               const OdGeMatrix3d& transform)
    : blockName_(std::move(blockName)), values_(values), written_(values.size()), transform_(transform) {}

OdDbDatabase* DefinitionRows::database() const {
    for (std::size_t row = 0; row < count(); ++row)
        if (OdDbDatabase* const database = definition(row).database()) return database;
    return nullptr;
}

OdString DefinitionRows::label(std::size_t row) const {
    return labelOf(definition(row).prompt(), definition(row).tag());
}

bool DefinitionRows::isMultiLine(std::size_t row) const { return definition(row).isMTextAttributeDefinition(); }

// Whether the value is the definition's own, whose fields then are those of the value.
bool DefinitionRows::showsDefinition(std::size_t row) const {
    return definition(row).isDatabaseResident() && definition(row).textString() == text(row);
}

void DefinitionRows::show(std::size_t row, CFEdCtrl& control) const {
    if (!isMultiLine(row))
        return showsDefinition(row) ? control.load(definition(row)) : control.value().setText(text(row));
    control.value().setText({});
    control.value().type(withoutEscapes(text(row)));  // in one line
}

void DefinitionRows::save(std::size_t row, const CFEdCtrl& control) {
    const bool hasFields = control.captured().hasField && definition(row).isDatabaseResident();
    if (hasFields || written_[row]) control.save(definition(row));
    written_[row] = written_[row] || hasFields;
    boost::get<1>(values_[row]) = written_[row] ? definition(row).textString() : control.text();
}

MultiLineEdit DefinitionRows::edit(std::size_t row) const {
    std::optional<CapturedText> value;
    if (!showsDefinition(row)) value = CapturedText{false, text(row), {}};
    return editMultiLine(definition(row), WhileEdited::kAsItIs, transform_, std::move(value));
}

void DefinitionRows::save(std::size_t row, const MultiLineValue& value) {
    if (!definition(row).isDatabaseResident()) {
        boost::get<1>(values_[row]) = shownText(value.text);
        return;
    }
    if (applyMultiLine(value, definition(row))) definition(row).updateMTextAttributeDefinition();
    boost::get<1>(values_[row]) = definition(row).textString();
}

}  // namespace torvel
