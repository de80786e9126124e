// Field codes: the small language that fields are written in.
//
//   text    =  { character | field }                     Sheet %<\AcVar Title>% of %<\AcExpr (3+4)>%
//   field   =  "%<" code ">%"                            fields may lie within the codes of fields
//   code    =  "\" evaluator [ "." version ] body { option }
//   option  =  "\" name value                            a value in quotes may hold blanks; \" and \\ mean " and \ in
//   it marker  =  "%<\_FldIdx n>%"                          child n of the field
//            | "%<\_ObjIdx n>%"                          object n of the field
//            | "%<\_ObjId h>%"                           the object with the handle h, in decimal digits
//
// "%<" without its ">%", or not followed by a backslash, is plain text; so is a ">%" that closes nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace drawingdb {

/// Fields nest no deeper than this; what lies deeper stays text.
inline constexpr int kMaxFieldDepth = 64;

/// A field or a marker, at [begin, end) of a text.
struct FieldSpan {
    enum Kind { field, childIndex, objectIndex, objectId };
    std::size_t begin = 0;
    std::size_t end = 0;
    Kind kind = field;
    std::uint64_t number = 0;  // of a marker

    /// What stands between "%<" and ">%".
    std::wstring_view code(std::wstring_view text) const { return text.substr(begin + 2, end - begin - 4); }
};

/// The fields and markers that do not lie within others, in order.
std::vector<FieldSpan> findFields(std::wstring_view text);
/// The text of a marker.
std::wstring fieldMarker(FieldSpan::Kind kind, std::uint64_t number);
std::wstring bracketed(std::wstring_view code);

/// A code taken apart.
struct FieldCode {
    std::wstring evaluator;  // with its version; empty when the code does not begin with one
    std::wstring body;       // without blanks around it
    std::vector<std::pair<std::wstring, std::wstring>> options;

    /// The value of the first option of that name (case counts: "f" and "F" differ); empty when there is none.
    std::wstring option(std::wstring_view name) const;
};
FieldCode parseFieldCode(std::wstring_view code);

/// The evaluator without its version: "AcObjProp.16.2" gives "AcObjProp".
std::wstring_view withoutVersion(std::wstring_view evaluator);
/// Without the quotes around it, if there are any.
std::wstring unquoted(std::wstring_view text);

}  // namespace drawingdb
