// Writes the records that every drawing has: for new drawings, and for what a damaged one lacks.
#pragma once

#include <cstdint>
#include <string_view>

#include "base/text.h"
#include "drawingdb/src/file/groups.h"

namespace drawingdb {

/// A handle of 0 is left out; owners stand in files from 2000 on.
class RecordWriter : public GroupWriter {
  public:
    using GroupWriter::GroupWriter;
    void open(std::string_view section) {
        text(0, "SECTION");
        text(2, section);
    }
    void close() { text(0, "ENDSEC"); }
    /// A record up to its handle and owner.
    void record(std::string_view type, std::uint64_t handleOf, std::uint64_t owner) {
        text(0, type);
        if (handleOf) handle(type == "DIMSTYLE" ? 105 : 5, handleOf);
        if (format().version >= version::v2000) handle(330, owner);
    }
    void table(std::string_view name, std::uint64_t handleOf, int count) {
        text(0, "TABLE");
        text(2, name);
        if (handleOf) handle(5, handleOf);
        if (format().version >= version::v2000) handle(330, 0);
        marker("AcDbSymbolTable");
        integer(70, count);
        if (name == "DIMSTYLE") marker("AcDbDimStyleTable");
    }
    void tableEnd() { text(0, "ENDTAB"); }
    void entry(std::string_view type, std::uint64_t handleOf, std::uint64_t table, const char* zone,
               std::string_view name) {
        record(type, handleOf, table);
        marker("AcDbSymbolTableRecord");
        marker(zone);
        text(2, name);
        if (type != "BLOCK_RECORD") integer(70, 0);
    }
    void linetype(std::uint64_t handleOf, std::uint64_t table, std::string_view name, std::string_view description) {
        entry("LTYPE", handleOf, table, "AcDbLinetypeTableRecord", name);
        text(3, description);
        integer(72, 65);
        integer(73, 0);
        real(40, 0);
    }
    void layer(std::uint64_t handleOf, std::uint64_t table, std::string_view name) {
        entry("LAYER", handleOf, table, "AcDbLayerTableRecord", name);
        integer(62, 7);
        text(6, "Continuous");
    }
    void textStyle(std::uint64_t handleOf, std::uint64_t table, std::string_view name) {
        entry("STYLE", handleOf, table, "AcDbTextStyleTableRecord", name);
        real(40, 0), real(41, 1), real(50, 0);
        integer(71, 0);
        real(42, 2.5);
        text(3, "txt");
        text(4, "");
    }
    /// One that says nothing but its name, of the table of that kind.
    void plainEntry(std::string_view type, std::uint64_t handleOf, std::uint64_t table, std::string_view name) {
        if (type == "LAYER")
            layer(handleOf, table, name);
        else if (type == "LTYPE")
            linetype(handleOf, table, name, "");
        else if (type == "STYLE")
            textStyle(handleOf, table, name);
        else
            entry(type, handleOf, table, type == "DIMSTYLE" ? "AcDbDimStyleTableRecord" : "AcDbRegAppTableRecord",
                  name);
    }
    void blockRecord(std::uint64_t handleOf, std::uint64_t table, std::string_view name) {
        entry("BLOCK_RECORD", handleOf, table, "AcDbBlockTableRecord", name);
    }
    void block(std::uint64_t handleOf, std::uint64_t blockRecord, std::string_view name, bool paper) {
        blockLimit("BLOCK", handleOf, blockRecord, paper);
        marker("AcDbBlockBegin");
        text(2, name);
        integer(70, 0);
        point(10, 0, 0, 0);
        text(3, name);
        text(1, "");
    }
    void blockEnd(std::uint64_t handleOf, std::uint64_t blockRecord, bool paper) {
        blockLimit("ENDBLK", handleOf, blockRecord, paper);
        marker("AcDbBlockEnd");
    }
    void dictionary(std::uint64_t handleOf, std::uint64_t owner) {
        record("DICTIONARY", handleOf, owner);
        marker("AcDbDictionary");
        integer(281, 1);
    }
    void dictionaryEntry(std::string_view name, std::uint64_t handleOf) {
        text(3, name);
        handle(350, handleOf);
    }

  private:
    void blockLimit(std::string_view type, std::uint64_t handleOf, std::uint64_t blockRecord, bool paper) {
        record(type, handleOf, blockRecord);
        marker("AcDbEntity");
        if (paper) integer(67, 1);
        text(8, "0");
    }
};

/// Whether records may name it though the table has no entry of that name.
inline bool isBuiltInEntry(std::string_view table, std::wstring_view name) {
    const auto is = [name](const wchar_t* builtIn) { return base::equalsNoCase(name, builtIn); };
    if (table == "LAYER") return is(L"0");
    if (table == "LTYPE") return is(L"BYLAYER") || is(L"BYBLOCK") || is(L"CONTINUOUS");
    return (table == "STYLE" || table == "DIMSTYLE") && is(L"STANDARD");
}

}  // namespace drawingdb
