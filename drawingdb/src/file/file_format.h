// How a file spells things.
#pragma once

#include "base/code_page.h"

namespace drawingdb {

struct FileFormat {
    bool binary = false;
    bool wideCodes = true;  // binary: codes of two bytes
    bool crlf = false;
    int version = 1032;                                            // the number in "AC1032"; 1009 is R12
    const base::CodePage* codePage = &base::CodePage::standard();  // of text before version 1021; UTF-8 from there on

    bool utf8() const { return version >= 1021; }
    bool hasMarkers() const { return version >= 1012; }
};

}  // namespace drawingdb
