// The drawing that these tests work on, and the spellings that a file may have of it.
#pragma once

#include <string>

#include "drawingdb/database.h"

/// The bytes of sample.dxf.
const std::string& sampleBytes();
/// The same groups with other line ends, blanks, comments between groups.
std::string respelled(const std::string& ascii, const std::string& lineEnd, const std::string& codePadding,
                      bool comments);
/// The same groups as a binary file with codes of two bytes, or of one.
std::string asBinary(const std::string& ascii, bool wideCodes);

inline OdDbDatabasePtr sample() { return OdDbDatabase::readBytes(sampleBytes(), L"sample.dxf"); }
inline OdDbObjectId objectOf(const OdDbDatabasePtr& database, std::uint64_t handle) {
    return database->getObjectId(handle);
}
