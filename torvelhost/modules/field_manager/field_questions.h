// What the field manager asks on the command line.
#pragma once

#include <functional>

#include "drawingdb/database.h"
#include "drawingdb/field.h"
#include "hostapi/input.h"

namespace fieldmanager {

/// Where questions and answers go.
struct Desk {
    HostEdInput& input;
    OdDbDatabase& database;
    /// Asks for an object of the drawing; null when none was picked.
    std::function<OdDbObjectId(const wchar_t* prompt)> selectObject;
    /// Shows a line that is no output.
    std::function<void(const OdString& text)> notice;
};

/// Asks for a field: its code, taken as it is, or else its kind, what it shows and its format. The field is in no
/// database, evaluated, and its value has been shown; null when the user gave up (an empty line, a cancel).
OdDbFieldPtr askField(const Desk& desk);

}  // namespace fieldmanager
