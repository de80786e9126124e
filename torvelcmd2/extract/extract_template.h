// The extraction template: which columns a CDF or SDF extract has.
//
//   BL:NAME  C008000      a name word and a format word, apart by blanks or line ends
//   BL:X     N010003
//   TAG      C020000      format: type letter, three digits of width, three of precision
//   C:DELIM  ;            sets the delimiter of this extract
//   C:QUOTE  "            sets the quote of this extract and all later ones
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "torvelcmd2/extract/extract.h"

namespace torvel {

/// One column. Texts are bytes as they go into the file.
struct ExtractField {
    enum class Source {
        attribute,  ///< the attribute whose tag is the name
        unknown,    ///< a block property that there is not: the value stays empty
        blockName,
        layer,
        handle,
        x,
        y,
        z,
        orient,
        xScale,
        yScale,
        zScale,
        level,
        number,
        xExtrude,
        yExtrude,
        zExtrude,
    };

    std::string name;  ///< as written
    Source source = Source::attribute;
    bool isNumeric = false;
    int width = 0;  ///< negative: the column is justified to the left
    int precision = 0;
};

/// Reads the words of a template, in pairs; where the lines end does not matter, and a last word without a partner
/// means nothing. A pair whose format word has not seven characters makes no field. A width or precision that is no
/// number is 0; digits count up to what is none. Quote and delimiter go into the settings.
std::vector<ExtractField> parseExtractTemplate(std::string_view text, ExtractSettings& settings);

}  // namespace torvel
