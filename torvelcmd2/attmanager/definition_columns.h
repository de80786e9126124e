// The columns that the list of the Block Attribute Manager can have, and what each shows of a definition.
#pragma once

#include <span>

#include "drawingdb/attribute.h"

namespace torvel {

struct DefinitionColumn {
    unsigned name;      ///< string id: its header, its check box, its key in the settings
    unsigned fallback;  ///< string id: what a cell shows of a definition that cannot be read
    OdString (*textOf)(const OdDbAttributeDefinition& definition);
};

/// All of them, in the order in which a list shows them.
std::span<const DefinitionColumn> definitionColumns();

/// `definition` is null for one that cannot be read.
OdString cellText(const DefinitionColumn& column, const OdDbAttributeDefinition* definition);

/// How a column is shown. One that is hidden keeps its width.
struct ColumnSetting {
    int width = 0;  ///< pixels, above 0
    bool isShown = false;
};
/// Columns are hidden until the user chose them.
ColumnSetting readColumnSetting(const DefinitionColumn& column);
void writeColumnSetting(const DefinitionColumn& column, const ColumnSetting& setting);

/// The settings of the Block Attribute Manager.
inline constexpr wchar_t kManagerSection[] = L"Dialogs\\BAttMan";
inline constexpr wchar_t kEmphasizeDuplicatesKey[] = L"EmphasizeDuplicates";
inline constexpr wchar_t kApplyChangesKey[] = L"ApplyChanges";

}  // namespace torvel
