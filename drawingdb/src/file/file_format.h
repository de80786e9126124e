// How a file spells things.
#pragma once

#include "base/code_page.h"

namespace drawingdb {

/// Versions by the number in "AC1015": when each came.
namespace version {
inline constexpr int ofTheFirst = 1000, oldest = 1001, r12 = 1009, r13 = 1012, r14 = 1014, v2000 = 1015, v2004 = 1018,
                     v2007 = 1021, v2010 = 1024, v2013 = 1027, v2018 = 1032, newest = v2018;
}

struct FileFormat {
    bool binary = false;
    bool wideCodes = true;  // binary: codes of two bytes
    bool crlf = false;
    int version = version::newest;
    const base::CodePage* codePage = &base::CodePage::standard();  // of text before 2007; UTF-8 from there on

    bool utf8() const { return version >= version::v2007; }
    bool hasMarkers() const { return version >= version::r13; }
};

}  // namespace drawingdb
