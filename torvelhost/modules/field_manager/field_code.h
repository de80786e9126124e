// Field codes by what they are made of: a kind of field, what it shows, and a format.
#pragma once

#include <optional>
#include <vector>

#include "drawingdb/database.h"
#include "drawingdb/field.h"

namespace fieldmanager {

enum class Kind { kProperty, kDate, kVariable, kObject, kFormula };

struct KindNames {
    Kind kind;
    const wchar_t* keyword;
    const wchar_t* names;  ///< the usual ones, with blanks between; empty: any
};
/// In the order of the enumeration.
inline constexpr KindNames kKinds[] = {
    {Kind::kProperty, L"Property",
     L"Title Subject Author Comments Keywords LastSavedBy RevisionNumber HyperlinkBase Filename Filesize Login"},
    {Kind::kDate, L"Date", L"Date CreateDate SaveDate PlotDate"},
    {Kind::kVariable, L"Variable", L""},
    {Kind::kObject, L"Object", L""},
    {Kind::kFormula, L"Formula", L""},
};

/// What a field of one kind is made of.
struct FieldParts {
    Kind kind = Kind::kProperty;
    OdString name;             ///< a property, a date, a variable or a formula
    std::uint64_t object = 0;  ///< handle of the object that has the property; 0: none chosen
    OdString format = {};
};

/// The whole code, in brackets. A property that is none of the usual ones is one that the user has named. Empty while
/// a name or the object is missing.
OdString codeOf(const FieldParts& parts);
/// Nothing for a code that codeOf does not make.
std::optional<FieldParts> partsOf(const OdString& code);
/// The code that a text means: texts with field codes in them stay as they are, and one code may lack its brackets.
/// Nothing when there is no code in it.
std::optional<OdString> codeMeant(const OdString& text);

/// What is said of such a text, behind it.
inline constexpr wchar_t kNoCode[] = L" is no field code and no kind of field; a code is written %<\\AcVar Title>%";

/// In no database, and evaluated.
OdDbFieldPtr makeField(const OdString& code, OdDbDatabase& database);

}  // namespace fieldmanager
