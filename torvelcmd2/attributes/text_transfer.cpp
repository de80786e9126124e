#include "torvelcmd2/attributes/text_transfer.h"

#include "base/format.h"
#include "drawingdb/attribute.h"
#include "drawingdb/database.h"

namespace torvel {
namespace {

CapturedText captureFields(const OdDbField& field, OdDbDatabase* database) {
    CapturedText captured;
    captured.hasField = true;
    // A text is nearly always a field of its own that holds the others; where it is one field alone, its code has no
    // text around it that could be kept.
    if (field.evaluatorId() != kTextEvaluator) {
        captured.text = fieldIndexMarker(0);
        captured.fields.push_back(newFieldLike(field, database));
        return captured;
    }
    captured.text = field.getFieldCode(OdDbField::kRawCode);
    for (std::size_t i = 0; i < field.childCount(); ++i) {
        const OdDbFieldPtr child = field.getChild(i);
        const OdString code = child ? child->getFieldCode(OdDbField::kRawCode) : OdString();
        const std::size_t place = code.empty() ? OdString::npos : captured.text.find(code);
        if (place == OdString::npos) {
            // Takes no index, so that the markers stay in step with the captured fields.
            continue;
        }
        captured.text.replace(place, code.size(), fieldIndexMarker(captured.fields.size()));
        captured.fields.push_back(newFieldLike(*child, database));
    }
    return captured;
}

void applyFields(const CapturedText& captured, OdDbEntity& target) {
    const OdDbFieldPtr field = OdDbField::createObject();
    target.setField(kTextFieldKey, field);
    field->setEvaluationOption(OdDbField::kAutomatic);
    field->setFieldCode(captured.text, OdDbField::kTextField | OdDbField::kPreserveChildren, captured.fields);
    field->setData(L"ACFD_FIELDTEXT_ATTDEF", 1);
    field->evaluate(OdDbField::kAutomatic, target.database());
}

OdString plainValue(const OdDbEntity& source) {
    if (source.isKindOf(OdDbAttribute::desc())) {
        const auto& attribute = static_cast<const OdDbAttribute&>(source);
        return attribute.isMTextAttribute() ? attribute.getMTextAttribute()->contents() : attribute.textString();
    }
    if (source.isKindOf(OdDbAttributeDefinition::desc())) {
        const auto& definition = static_cast<const OdDbAttributeDefinition&>(source);
        return definition.isMTextAttributeDefinition() ? definition.getMTextAttributeDefinition()->contents()
                                                       : definition.textString();
    }
    if (source.isKindOf(OdDbText::desc())) {
        return static_cast<const OdDbText&>(source).textString();
    }
    if (source.isKindOf(OdDbMText::desc())) {
        return static_cast<const OdDbMText&>(source).contents();
    }
    throw OdError_NotThatKindOfClass(source.isA()->name(), OdDbText::desc()->name());
}

void setPlainValue(const OdString& value, OdDbEntity& target) {
    if (target.isKindOf(OdDbMText::desc())) {
        static_cast<OdDbMText&>(target).setContents(value);
    } else if (target.isKindOf(OdDbText::desc())) {
        // In a multi-line attribute or definition this replaces the contents of the multi-line text.
        static_cast<OdDbText&>(target).setTextString(value);
    } else {
        throw OdError_NotThatKindOfClass(target.isA()->name(), OdDbText::desc()->name());
    }
}

}  // namespace

OdString fieldIndexMarker(std::size_t index) { return base::format(L"%%<\\_FldIdx %d>%%", static_cast<int>(index)); }

OdDbFieldPtr newFieldLike(const OdDbField& field, OdDbDatabase* database) {
    OdDbFieldPtr result = field.copy();
    result->setEvaluationOption(OdDbField::kAutomatic);
    result->evaluate(OdDbField::kAutomatic, database);
    return result;
}

CapturedText captureText(const OdDbEntity& source) {
    if (const OdDbFieldPtr field = source.getField(kTextFieldKey)) {
        return captureFields(*field, source.database());
    }
    return {false, plainValue(source), {}};
}

void applyText(const CapturedText& captured, OdDbEntity& target) {
    target.upgradeOpen();
    if (captured.hasField) {
        applyFields(captured, target);
    } else {
        setPlainValue(captured.text, target);
    }
}

}  // namespace torvel
