// A drawing with a few references, and a folder for what is written.
#pragma once

#include <gtest/gtest.h>
#include <string>

#include "base/files.h"
#include "base/temporary_folder.h"
#include "drawingdb/database.h"
#include "torvelcmd2/extract/extract.h"

/// "|" separates lines.
inline std::string lines(std::string text) {
    for (char& c : text)
        if (c == '|') c = '\n';
    return text;
}

inline std::string attributeRecord(const std::string& handle, const std::string& tag, const std::string& text) {
    return "0|ATTRIB|5|" + handle + "|100|AcDbEntity|8|0|100|AcDbText|10|0.0|20|0.0|30|0.0|40|2.5|1|" + text +
           "|100|AcDbAttribute|2|" + tag + "|70|0|";
}

/// Three references of two blocks (#50, #60 of DOOR, #70 of WINDOW) and a line (#80).
inline std::string drawingText(const std::string& version = "AC1032", const std::string& attributesOf50 = "") {
    return lines(
        "0|SECTION|2|HEADER|9|$ACADVER|1|" + version +
        "|9|$DWGCODEPAGE|3|ANSI_1252|0|ENDSEC|"
        "0|SECTION|2|BLOCKS|0|BLOCK|5|30|8|0|2|DOOR|70|2|10|0.0|20|0.0|30|0.0|0|ENDBLK|5|31|8|0|"
        "0|BLOCK|5|32|8|0|2|WINDOW|70|0|10|0.0|20|0.0|30|0.0|0|ENDBLK|5|33|8|0|0|ENDSEC|"
        "0|SECTION|2|ENTITIES|"
        "0|INSERT|5|50|100|AcDbEntity|8|WALLS|100|AcDbBlockReference|66|1|2|door|10|12.5|20|-3.0|30|0.25|41|2.0|42|-1."
        "0|"
        "43|3.0|50|90.0|" +
        attributeRecord("51", "TAG1", "42") + attributesOf50 +
        "0|SEQEND|5|5F|100|AcDbEntity|8|0|"
        "0|INSERT|5|60|100|AcDbEntity|8|0|290|1|100|AcDbBlockReference|66|1|2|DOOR|10|1.0|20|2.0|30|0.0|210|0.0|220|0."
        "0|"
        "230|-1.0|" +
        attributeRecord("61", "TAG1", "first") + attributeRecord("62", "TAG1", "a value that is long") +
        attributeRecord("63", "bl:name", "low") +
        "0|SEQEND|5|6F|100|AcDbEntity|8|0|"
        "0|INSERT|5|70|330|1F|100|AcDbEntity|8|0|310|00FF7F|100|AcDbBlockReference|2|WINDOW|10|4.0|20|0.0|30|0.0|"
        "0|LINE|5|80|100|AcDbEntity|8|0|100|AcDbLine|10|0.0|20|0.0|11|1.0|21|1.0|"
        "0|ENDSEC|0|EOF|");
}

class ExtractTest : public testing::Test {
  protected:
    void SetUp() override {
        torvel::extractSettings() = {};
        open(drawingText());
    }

    void open(const std::string& text) { database_ = OdDbDatabase::readBytes(text, L"plan.dxf"); }
    OdDbObjectId object(std::uint64_t handle) const { return database_->getObjectId(handle); }
    OdDbObjectIdArray objects(std::initializer_list<std::uint64_t> handles) const {
        OdDbObjectIdArray ids;
        for (const std::uint64_t handle : handles) ids.push_back(object(handle));
        return ids;
    }
    std::wstring output() const { return folder_ / L"out.txt"; }
    std::string written() const { return std::string(base::readFile(output()).view()); }

    base::TemporaryFolder folder_;
    OdDbDatabasePtr database_;
};
