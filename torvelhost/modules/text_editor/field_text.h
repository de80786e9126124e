// A text with fields as it is edited in one string: an index marker, "%<\_FldIdx 0>%", stands for each field.
#pragma once

#include <vector>

#include "drawingdb/entity.h"
#include "drawingdb/field.h"

namespace texteditor {

/// The contents of a single-line or multi-line text, and the fields that its markers stand for.
struct FieldText {
    OdString text;
    std::vector<OdDbFieldPtr> fields;  ///< in no database
};

/// What a text in a drawing holds.
FieldText contentsOf(const OdDbEntity& text);

/// Makes it the contents of a text that is open for write. A marker keeps its field, one left out drops it, one that
/// stands twice is a copy; one without a field is plain text.
void setContents(OdDbEntity& text, const FieldText& contents);

}  // namespace texteditor
