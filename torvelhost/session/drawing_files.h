// Drawings from files: DXF, and DWG by a program that the user names in the settings:
//
//     [Converters]
//     dwg=COMMAND %in %out
//     seconds=120
//
// COMMAND is a program with its arguments, between blanks or in quotes; %in is the drawing, %out where its DXF is
// wanted. It is ended when it takes longer than the seconds.
#pragma once

#include <string>

#include "drawingdb/database.h"
#include "torvelhost/session/profile.h"

namespace host {

/// Whether a file of this name is DWG, which is read by a converter and never written.
bool isDwgName(std::wstring_view path);

/// As OdDbDatabase::readFile, or recoverFile, which take a converted drawing under the name of the DWG file. Throws
/// base::FileError where there is no converter or it fails.
OdDbDatabasePtr readDrawingFile(const std::wstring& path, bool recover, Profile& profile);

}  // namespace host
