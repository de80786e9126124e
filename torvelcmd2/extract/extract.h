// The attribute extract: what AttExt has written once the user has chosen objects, format, template and output.
//
// The three writers' common rules: lines end in carriage return and line feed on both platforms, also inside a value.
// The output is written beside the target and takes its name at the end, so that a run that fails leaves the old file;
// a target that is no plain file is written directly. An output that is the drawing's own file cannot be opened.
#pragma once

#include <string>

#include "drawingdb/object.h"

namespace torvel {

enum class ExtractFormat { commaDelimited = 0, spaceDelimited = 1, dxf = 2 };

/// What AttExt and the writers share for as long as the module is loaded. Texts are bytes as they go into the file.
struct ExtractSettings {
    /// Between two fields. AttExt sets it before each run; a "C:DELIM" line of the template replaces it for that run.
    std::string delimiter = ",";
    /// Around character fields. A "C:QUOTE" line sets it, for all later runs too; while it is empty, "'" is used.
    std::string quote;
    /// Set by AttExt before each run; of the two delimited formats, which one writeDelimitedExtract writes.
    ExtractFormat format = ExtractFormat::commaDelimited;
    /// Set by AttExt before each run: template and output are UTF-8, and not in the drawing's code page.
    bool isUtf8 = false;
};

ExtractSettings& extractSettings();

/// Writes a record (CDF) or a header and a record (SDF) for each of the references, in the order given, as the template
/// says. Returns how many records were written; 0 when the template cannot be read or has no field, or when the output
/// cannot be written. Throws OdError_NotThatKindOfClass for an id that names no block reference.
int writeDelimitedExtract(const OdString& templatePath, const OdString& outputPath,
                          const OdDbObjectIdArray& references);

/// Writes the groups of every block reference among the selected objects, in that order; other objects are skipped.
/// Returns the number of references; 0 also when the selection is empty (no file is made then), the output cannot be
/// written, or `templatePath` is null. The template itself does not matter.
int writeDxfExtract(const OdDbObjectIdArray& selection, const OdString& outputPath, const wchar_t* templatePath);

}  // namespace torvel
