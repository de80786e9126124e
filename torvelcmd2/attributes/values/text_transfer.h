// Carries a text with its fields from one text object to another.
#pragma once

#include <cstdint>
#include <vector>

#include "drawingdb/entity.h"
#include "drawingdb/field.h"

namespace torvel {

/// The key under which a text keeps its field.
inline const OdString kTextFieldKey = L"TEXT";

/// The evaluator of a field that is a text with other fields in it.
inline const OdString kTextEvaluator = L"_text";

/// The value of a text object, taken off the object.
struct CapturedText {
    bool hasField = false;
    /// With fields: the code, where "%<\_FldIdx 0>%" stands for the first of `fields`, and so on. Otherwise the plain
    /// value; that of a multi-line text has its formatting codes.
    OdString text;
    /// New fields, in no database.
    std::vector<OdDbFieldPtr> fields;
};

/// The code of a text that holds fields, with the codes of these written inline.
struct InlineCode {
    static constexpr std::int32_t kNobody = -1;
    OdString text;
    /// One for each unit of the text: whose code it is part of, as an index of `fields`, or kNobody.
    std::vector<std::int32_t> owners;
    /// The children of the text's field; null where one is missing.
    std::vector<OdDbFieldPtr> fields;
};

/// Finds the fields by their codes: each in turn claims the first place of its own code that none has claimed, so that
/// fields of equal code share none. One whose code is nowhere claims nothing.
InlineCode inlineCode(const OdDbField& textField);

/// A child of a text's field that is plain text, to keep it apart from what stands beside it. The text must not be a
/// whole field code by itself.
OdDbFieldPtr newPlainPart(const OdString& text, OdDbDatabase* database);
bool isPlainPart(const OdDbField& field);

/// A new field, in no database, with this one's code and cached value (a field whose evaluator is not there keeps
/// showing that), evaluated for the database.
OdDbFieldPtr newFieldLike(const OdDbField& field, OdDbDatabase* database);

/// Takes the value of a single-line or multi-line text, an attribute or an attribute definition. The source must be in
/// a database, in which its fields are evaluated anew; it stays as it is. Anything else throws
/// OdError_NotThatKindOfClass.
CapturedText captureText(const OdDbEntity& source);

/// What the value looks like: each field's text in the place of its marker. That of a multi-line text has its
/// formatting codes.
OdString shownText(const CapturedText& captured);

/// Another one, with fields of its own.
CapturedText copyOf(const CapturedText& captured);

/// Whether two captured values are the same: the text, and the fields by their codes.
bool sameText(const CapturedText& one, const CapturedText& other);

/// Makes the captured value the value of `target`, of the kinds that captureText takes. The target must be in a
/// database; it is upgraded to write and stays so. The captured fields become the target's: capture again for another
/// target.
void applyText(const CapturedText& captured, OdDbEntity& target);

}  // namespace torvel
