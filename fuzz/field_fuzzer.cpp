// The input is the text of a field. It is taken apart, computed and formatted by itself, then set as a field of a text
// in a drawing, evaluated, and brought into another field by its raw code. A value control shows it, edits and saves
// it.
#include <cmath>

#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/database.h"
#include "drawingdb/field.h"
#include "drawingdb/src/fields/expression.h"
#include "drawingdb/src/fields/field_code.h"
#include "drawingdb/src/fields/field_format.h"
#include "drawingdb/text.h"
#include "fuzz/fuzz.h"
#include "torvelcmd2/attributes/values/field_edit.h"

namespace {

using fuzz::require;
using namespace drawingdb;

void checkCode(const std::wstring& text) {
    std::size_t end = 0;
    for (const FieldSpan& span : findFields(text)) {
        require(end <= span.begin && span.begin < span.end && span.end <= text.size(),
                "fields lie in order in the text");
        end = span.end;
        require(text.substr(span.begin, span.end - span.begin) == bracketed(span.code(text)), "a field is its code");
        (void)parseFieldCode(span.code(text));
    }
    const FieldCode code = parseFieldCode(text);
    (void)withoutVersion(code.evaluator);
    (void)unquoted(code.body);

    const auto child = [](std::size_t index) -> std::optional<double> {
        if (index > 3) return std::nullopt;
        return static_cast<double>(index);
    };
    if (const auto value = evaluateExpression(text, child)) require(std::isfinite(*value), "values are finite");
}

void checkFormat(const std::wstring& format) {
    for (const Quantity quantity : {Quantity::none, Quantity::length, Quantity::angle, Quantity::area}) {
        OdDbFieldValue value;
        for (const double real : {0.0, -1.0 / 3, 2460000.75, 1e300, -1e-300}) {
            value.real = real;
            for (const auto type : {OdDbFieldValue::kDouble, OdDbFieldValue::kDate, OdDbFieldValue::k3dPoint}) {
                value.type = type;
                value.point[0] = value.point[1] = value.point[2] = real;
                (void)formatFieldValue(value, format, UnitSettings(), quantity);
            }
        }
        value.type = OdDbFieldValue::kLong;
        value.integer = INT64_MIN;
        (void)formatFieldValue(value, format, UnitSettings(), quantity);
        value.type = OdDbFieldValue::kString;
        value.text = L"folder/Name of it.dxf";
        (void)formatFieldValue(value, format, UnitSettings(), quantity);
    }
}

void checkRuns(const torvel::FieldEdit& edit) {
    require(edit.owners().size() == edit.text().size(), "each character has an owner");
    std::size_t owned = 0;
    for (const auto& entry : edit.entries()) {
        require(0 <= entry.first && entry.first <= entry.last, "a run has characters");
        for (auto at = static_cast<std::size_t>(entry.first); at <= static_cast<std::size_t>(entry.last); ++at)
            require(edit.owners().at(at) == entry.number, "a run's characters are its own");
        owned += static_cast<std::size_t>(entry.last - entry.first) + 1;
    }
    for (const std::int32_t owner : edit.owners()) owned -= owner != torvel::FieldEdit::kNoField;
    require(owned == 0, "whoever owns a character has a run");
}

// Half of what the text shows is deleted, from the middle on, and the rest saved.
void checkEditing(const OdSmartPtr<OdDbText>& text, OdDbDatabase* database) {
    torvel::FieldEdit edit(database);
    edit.load(*text);
    checkRuns(edit);
    edit.select(edit.text().size() / 4, edit.text().size() * 3 / 4);
    const OdString copied = edit.copy();
    edit.deleteBack();
    checkRuns(edit);
    edit.selectAll();
    edit.moveCaret(true, false);
    edit.paste(copied);
    checkRuns(edit);
    OdString shown;
    edit.save(*text, shown);
    torvel::FieldEdit again(database);
    again.load(*text);
    checkRuns(again);
}

void checkInDrawing(const std::wstring& code, int flags) {
    static const std::string empty = OdDbDatabase::createNew()->writeBytes();
    const OdDbDatabasePtr database = OdDbDatabase::readBytes(empty, L"field.dxf");
    database->setClock([] { return std::int64_t{1767225600}; });
    const auto addText = [&database] {
        const auto text = OdDbText::createObject();
        text->setDatabaseDefaults(database.get());
        database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(text.get());
        return text;
    };
    const auto setField = [&](const OdDbObjectPtr& text, const OdString& fieldCode, int fieldFlags) {
        const auto field = OdDbField::createObject();
        text->setField(L"TEXT", field);
        field->setFieldCode(fieldCode, fieldFlags);
        field->evaluate(OdDbField::kAutomatic, database.get());
        return field;
    };
    const auto first = addText();
    const auto field = setField(first, code, flags);
    for (std::size_t i = 0; i < field->childCount(); ++i) (void)field->getChild(i);
    (void)field->getFieldCode(OdDbField::kFieldCode);

    const OdString raw = field->getFieldCode(OdDbField::kRawCode);
    const auto second = setField(addText(), raw, OdDbField::kTextField);
    (void)second->getFieldCode(OdDbField::kEvaluatedText);

    const std::string saved = database->writeBytes();
    const OdDbDatabasePtr again = OdDbDatabase::readBytes(saved, L"again.dxf");
    const auto read = again->getObjectId(field->handle()).openAs<OdDbField>();
    require(read->getFieldCode(OdDbField::kRawCode) == raw, "a field that is read again has the same code");
    checkEditing(first, database.get());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    // The last byte chooses how the code is set, so that seeds begin as plain text.
    const int flags = data[size - 1] % 2 == 0 ? OdDbField::kTextField : 0;
    const std::wstring text = base::fromUtf8(fuzz::bytesOf(data, size - 1));
    checkCode(text);
    checkFormat(text);
    checkInDrawing(text, flags);
    return 0;
}
