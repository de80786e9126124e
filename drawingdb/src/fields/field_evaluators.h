// What computes the values of fields: one function an evaluator, found by name.
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "drawingdb/src/fields/field_code.h"
#include "drawingdb/src/fields/field_format.h"

class OdDbDatabase;

namespace drawingdb {

/// What an evaluator is given.
struct FieldInput {
    const FieldCode& code;
    OdDbDatabase* database = nullptr;          // may be null
    std::span<const OdDbFieldValue> children;  // their values, kUnknown where there is none
    std::span<const OdDbObjectId> objects;     // null where there is none
};

struct FieldResult {
    OdDbFieldValue value;
    Quantity quantity = Quantity::none;
};

/// Nothing when there is no value: an unknown name, a missing object, a division by zero.
using FieldEvaluator = std::optional<FieldResult> (*)(const FieldInput& input);

/// By the evaluator's name, with or without a version; null when there is none.
FieldEvaluator findFieldEvaluator(std::wstring_view evaluator);

/// Units of a drawing; the defaults without one.
UnitSettings unitSettings(const OdDbDatabase* database);

}  // namespace drawingdb
