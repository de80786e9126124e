// Recovery: a damaged file is made into a sound one, and what had to be left out is told.
//
//   damaged bytes --DamagedGroups--> records --tree--> sections, tables, blocks --links--> names, handles --> bytes
//
// It works on bytes, before the reader sees any of them: so the reader stays as plain and quick as it is, and what was
// recovered is a file like any other. A sound file comes out as it was.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "drawingdb/database.h"

namespace drawingdb {

struct Recovered {
    std::string bytes;
    std::vector<OdDbWarning> damages;  ///< empty: nothing was wrong
};

/// `name` stands in the messages. Where not a single record can be found, the bytes come back as they are.
Recovered recover(std::string_view file, const std::wstring& name);

}  // namespace drawingdb
