#include "torvelcmd2/attributes/values/text_transfer.h"

#include <algorithm>

#include "drawingdb/attribute.h"
#include "drawingdb/database.h"
#include "drawingdb/mtext.h"
#include "drawingdb/text.h"

namespace torvel {
namespace {

CapturedText captureFields(const OdDbField& field, OdDbDatabase* database) {
    CapturedText captured;
    captured.hasField = true;
    // A text is nearly always a field of its own that holds the others; where it is one field alone, its code has no
    // text around it that could be kept.
    if (field.evaluatorId() != kTextEvaluator) {
        captured.text = drawingdb::fieldIndexMarker(0);
        captured.fields.push_back(newFieldLike(field, database));
        return captured;
    }
    const InlineCode code = inlineCode(field);
    // A field that is not found takes no index, so that the markers stay in step with the captured fields.
    std::vector<bool> found(code.fields.size());
    for (const std::int32_t owner : code.owners)
        if (owner != InlineCode::kNobody) found[static_cast<std::size_t>(owner)] = true;
    std::vector<std::size_t> indices(code.fields.size());
    for (std::size_t i = 0; i < code.fields.size(); ++i) {
        if (found[i]) {
            indices[i] = captured.fields.size();
            captured.fields.push_back(newFieldLike(*code.fields[i], database));
        }
    }
    for (std::size_t at = 0; at < code.text.size();) {
        const std::int32_t owner = code.owners[at];
        if (owner == InlineCode::kNobody) {
            captured.text += code.text[at++];
            continue;
        }
        captured.text += drawingdb::fieldIndexMarker(indices[static_cast<std::size_t>(owner)]);
        while (at < code.text.size() && code.owners[at] == owner) ++at;
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

OdString codeOf(const OdDbFieldPtr& field) { return field->getFieldCode(OdDbField::kRawCode); }

OdString plainValue(const OdDbEntity& source) {
    // A multi-line attribute or definition gives the contents of its multi-line text.
    if (const auto* const text = drawingdb::as<OdDbText>(source)) return text->textString();
    if (const auto* const paragraphs = drawingdb::as<OdDbMText>(source)) return paragraphs->contents();
    throw OdError_NotThatKindOfClass(source.isA()->name(), OdDbText::desc()->name());
}

void setPlainValue(const OdString& value, OdDbEntity& target) {
    if (auto* const paragraphs = drawingdb::as<OdDbMText>(target)) {
        paragraphs->setContents(value);
    } else if (auto* const text = drawingdb::as<OdDbText>(target)) {
        // In a multi-line attribute or definition this replaces the contents of the multi-line text.
        text->setTextString(value);
    } else {
        throw OdError_NotThatKindOfClass(target.isA()->name(), OdDbText::desc()->name());
    }
}

}  // namespace

InlineCode inlineCode(const OdDbField& textField) {
    InlineCode code;
    code.text = textField.getFieldCode(OdDbField::kRawCode);
    code.owners.assign(code.text.size(), InlineCode::kNobody);
    for (std::size_t i = 0; i < textField.childCount(); ++i) {
        code.fields.push_back(textField.getChild(i));
        const OdString own = code.fields[i] ? code.fields[i]->getFieldCode(OdDbField::kRawCode) : OdString();
        if (own.empty()) continue;
        std::size_t place = code.text.find(own);
        while (place != OdString::npos && code.owners[place] != InlineCode::kNobody) {
            // Two codes may share the per cent sign between them.
            place = code.text.find(own, place + std::max<std::size_t>(own.size() - 1, 1));
        }
        if (place != OdString::npos) {
            std::fill_n(code.owners.begin() + static_cast<std::ptrdiff_t>(place), own.size(),
                        static_cast<std::int32_t>(i));
        }
    }
    return code;
}

OdDbFieldPtr newPlainPart(const OdString& text, OdDbDatabase* database) {
    OdDbFieldPtr part = OdDbField::createObject();
    part->setFieldCode(text, OdDbField::kTextField);
    part->evaluate(OdDbField::kAutomatic, database);
    return part;
}

bool isPlainPart(const OdDbField& field) { return field.evaluatorId() == kTextEvaluator && field.childCount() == 0; }

OdDbFieldPtr newFieldLike(const OdDbField& field, OdDbDatabase* database) {
    OdDbFieldPtr result = field.copy();
    result->setEvaluationOption(OdDbField::kAutomatic);
    result->evaluate(OdDbField::kAutomatic, database);
    return result;
}

CapturedText captureText(const OdDbEntity& source) {
    if (const OdDbFieldPtr field = source.getField(kTextFieldKey)) return captureFields(*field, source.database());
    return {false, plainValue(source), {}};
}

OdString shownText(const CapturedText& captured) {
    OdString shown = captured.text;
    for (std::size_t i = 0; i < captured.fields.size(); ++i) {
        const OdString marker = drawingdb::fieldIndexMarker(i);
        if (const std::size_t at = shown.find(marker); at != OdString::npos)
            shown.replace(at, marker.size(), captured.fields[i]->getFieldCode(OdDbField::kEvaluatedText));
    }
    return shown;
}

CapturedText copyOf(const CapturedText& captured) {
    CapturedText copy = captured;
    for (OdDbFieldPtr& field : copy.fields) field = field->copy();
    return copy;
}

bool sameText(const CapturedText& one, const CapturedText& other) {
    return one.hasField == other.hasField && one.text == other.text &&
           std::ranges::equal(one.fields, other.fields, {}, codeOf, codeOf);
}

void applyText(const CapturedText& captured, OdDbEntity& target) {
    target.upgradeOpen();
    if (captured.hasField)
        applyFields(captured, target);
    else
        setPlainValue(captured.text, target);
}

}  // namespace torvel
