// What the test wants of a module of another maker.
#pragma once

#include <string>
#include <vector>

#include "hostapi/module_functions.h"

/// What became of one value, as the other module saw it within its undo group.
struct ForeignValue {
    OdString text;
    OdString definitionText;
    bool hasField = false;  // the definition
};

/// Asks for the values of a block's attributes, each beginning with its default, and takes back what that did to the
/// definitions. Returns what the dialog returned, or -1 where nobody offers it.
using ForeignAsk = int(OdDbObjectId block, const OdGeMatrix3d& transform, std::vector<ForeignValue>& values);
/// The same for a reference that is there.
using ForeignEdit = int(OdDbObjectId reference);
