// The text of a CDF or SDF extract, apart from the files it is read from and written to.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "torvelcmd2/extract/extract.h"

namespace torvel {

/// The bytes of the extract file; nothing when the template has no field. `templateBytes` are a template file's: text
/// in the drawing's code page, or in UTF-8 behind a byte order mark or where the settings say so. Throws as
/// writeDelimitedExtract does.
std::optional<std::string> delimitedText(std::string_view templateBytes, const OdDbObjectIdArray& references,
                                         ExtractSettings& settings);

}  // namespace torvel
