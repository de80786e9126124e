// What a drawing holds, counted in one pass over its records; no object is opened for it.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "drawingdb/database.h"

struct DRAWINGDB_API OdDbCensus {
    explicit OdDbCensus(OdDbDatabase& database);

    struct Kind {
        std::string name;  ///< of the record in files: "LINE"
        std::size_t count = 0;
        bool isEntity = false;
        bool isCarried = false;  ///< no class understands it: it is kept as it is
    };
    std::vector<Kind> kinds;  ///< by name; what belongs to another record's structure (vertices, end marks) is left out
    std::map<OdString, std::size_t> layers;  ///< entities on each, attributes and those in blocks too; as they spell it
    /// References to each block, by its record: those in spaces and blocks, wherever they lie.
    std::unordered_map<OdDbObjectId, std::size_t> references;
    std::map<OdString, std::size_t> missingBlocks;  ///< references to blocks that are not there
};
