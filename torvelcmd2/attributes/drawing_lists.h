// Lists of what a drawing has, as the attribute dialogs offer them.
#pragma once

#include "dialogs/dialog.h"
#include "drawingdb/database.h"

namespace torvel {

/// Text styles, in the order of their table. Those that are shape files have no letters and are left out.
void fillTextStyles(dialogs::Dialog& dialog, int list, const OdDbDatabase& database);
void fillLayers(dialogs::Dialog& dialog, int list, const OdDbDatabase& database);
/// "ByLayer" and "ByBlock" first where the drawing's table does not have them.
void fillLinetypes(dialogs::Dialog& dialog, int list, const OdDbDatabase& database);

/// Selects the choice of that name, whatever its case; none when it is not there.
void selectName(dialogs::Dialog& dialog, int list, const OdString& name);

}  // namespace torvel
