// The kinds of record, a row each: the name in files, the class that understands it, and what else the database has to
// know of it.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "drawingdb/rx_object.h"

namespace drawingdb {

/// The kinds that the structure of a file depends on, or that have a class.
enum RecordType : std::uint16_t {
    rtNone,  // bytes that are no record: before the first one, after the last
    rtSection,
    rtEndsec,
    rtTable,
    rtEndtab,
    rtBlock,
    rtEndblk,
    rtSeqend,
    rtEof,
    rtClass,
    rtInsert,
    rtAttrib,
    rtPolyline,
    rtVertex,
    rtAttdef,
    rtBlockRecord,
    rtLayer,
    rtStyle,
    rtLtype,
    rtAppid,
    rtDimstyle,
    rtUcs,
    rtView,
    rtVport,
    rtDictionary,
    rtDictionaryWithDefault,
    rtField,
    rtFieldList,
    rtLayout,
    rtViewport,
    rtGroup,
    rtSortents,
    rtLine,
    rtRay,
    rtXline,
    rtPoint,
    rtCircle,
    rtArc,
    rtLwpolyline,
    rtEllipse,
    rtSpline,
    rtWipeout,
    rtWipeoutVariables,
    rtText,
    rtMtext,
    rtFirstCarried,
};

/// What a record of the CLASSES section says of a kind that other programs only know by one.
struct ClassRecord {
    const char* className;
    const char* application;
    int proxyFlags;
    bool entity;
};

struct Kind {
    RecordType type;
    const char* name;
    const OdRxClass* (*desc)() = nullptr;  ///< null: part of the file's structure, or carried
    int since = 0;                         ///< the first version that holds such objects
    /// Its records name no objects of their own but the extension dictionary.
    bool ownsOnlyItsDictionary = false;
    const ClassRecord* classRecord = nullptr;
};

/// All kinds, by their numbers.
std::span<const Kind> allKinds();
inline bool ownsOnlyItsDictionary(std::uint16_t type) {
    return type < rtFirstCarried && allKinds()[type].ownsOnlyItsDictionary;
}

/// Names and numbers of record types; names that a file brings along are added behind the known ones.
class TypeTable {
  public:
    TypeTable();
    std::uint16_t find(std::string_view name);
    const std::string& name(std::uint16_t type) const { return names_[type]; }
    /// The class of a known kind; null for a carried one.
    static const OdRxClass* knownClass(std::uint16_t type);

  private:
    std::uint16_t add(std::string_view name);
    std::vector<std::string> names_;
    std::vector<std::uint16_t> slots_;  // open addressing by hash; 0xFFFF free
};

}  // namespace drawingdb
