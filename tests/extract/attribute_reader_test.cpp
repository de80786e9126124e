// Reading a record must say what the object says, however the record is written.
#include <filesystem>
#include <gtest/gtest.h>

#include "base/paths.h"
#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/database.h"

namespace {

void compareAttributes(const std::filesystem::path& path, int& count) {
    const OdDbDatabasePtr database = OdDbDatabase::readFile(base::fromPath(path));
    const auto blocks = database->blockTableId().openIf<OdDbSymbolTable>();
    if (!blocks) return;
    OdDbAttributeReader reader;
    for (const OdDbObjectId record : blocks->records()) {
        const auto block = record.openIf<OdDbBlockTableRecord>();
        if (!block) continue;
        for (const OdDbObjectId entity : block->entities()) {
            const OdDbObjectId shown = OdDbBlockReference::blockTableRecordOf(entity);
            const auto reference = entity.openIf<OdDbBlockReference>();
            EXPECT_EQ(shown, reference ? reference->blockTableRecord() : OdDbObjectId()) << path;
            EXPECT_EQ(shown, OdDbBlockReference::blockTableRecordOf(entity)) << path;
            if (!reference) {
                EXPECT_EQ(reader.read(entity), entity.isKindOf(OdDbAttribute::desc()));
                continue;
            }
            for (const OdDbObjectId id : reference->attributes()) {
                ASSERT_TRUE(reader.read(id));
                const auto attribute = id.openAs<OdDbAttribute>();
                EXPECT_EQ(reader.tag(), attribute->tag()) << path;
                EXPECT_EQ(reader.textString(), attribute->textString()) << path;
                ++count;
            }
        }
    }
}

TEST(AttributeReader, SaysWhatTheObjectSays) {
    const std::filesystem::path source = base::toPath(base::fromUtf8(TORVEL_SOURCE_DIR));
    int count = 0;
    for (const char* folder : {"fuzz/seeds/drawing", "tests/attsync", "tests/drawingdb"}) {
        for (const auto& entry : std::filesystem::directory_iterator(source / folder)) {
            if (entry.path().extension() == ".dxf") compareAttributes(entry.path(), count);
        }
    }
    EXPECT_GT(count, 20);
}

// What is not written in the usual way: groups of other subclasses, twice, in control strings, behind the extended
// data.
TEST(AttributeReader, UnderstandsUnusualRecords) {
    const char* const records[] = {
        "100|AcDbEntity|1|a|2|b|100|AcDbText|1|text|1|again|2|c|100|AcDbAttribute|1|d|2|TAG|2|again|",
        "100|AcDbEntity|100|AcDbText|102|{VENDOR|1|a|102|}|1|text|100|AcDbAttribute|102|{VENDOR|2|b|102|}|2|TAG|",
        "100|AcDbEntity|102|{ACAD_REACTORS|330|1F|102|}|100|AcDbText|1|text|100|AcDbAttribute|2|TAG|1001|A|1000|x|2|b|",
        "100|AcDbText|1|text|100|AcDbAttribute|2|TAG|",
        "100|AcDbEntity|100|AcDbText|100|AcDbAttribute|2|TAG|",
        "100|AcDbEntity|100|AcDbText|1||1|b|100|AcDbVendor|1|c|2|d|100|AcDbAttribute|2|T^ ^J\\U+00C4|",
        "100|AcDbEntity|100|AcDbText|1|text|100|AcDbText|1|b|100|AcDbAttribute|2|TAG|100|AcDbXrecord|2|b|",
        "100|AcDbEntity|100|AcDbText|1|text|100|AcDbAttribute|2|TAG|101|Embedded Object|1|embedded|",
        "1|old|2|TAG|",
        "",
    };
    for (const char* record : records) {
        std::string bytes = std::string("0|SECTION|2|HEADER|9|$ACADVER|1|AC1032|0|ENDSEC|0|SECTION|2|ENTITIES|") +
                            "0|INSERT|5|50|100|AcDbEntity|8|0|100|AcDbBlockReference|2|A|0|ATTRIB|5|51|" + record +
                            "0|SEQEND|5|52|0|ENDSEC|0|EOF|";
        for (char& c : bytes) {
            if (c == '|') c = '\n';
        }
        const OdDbDatabasePtr database = OdDbDatabase::readBytes(bytes, L"test.dxf");
        OdDbAttributeReader reader;
        ASSERT_TRUE(reader.read(database->getObjectId(0x51))) << record;
        const auto attribute = database->getObjectId(0x51).openAs<OdDbAttribute>();
        EXPECT_EQ(reader.tag(), attribute->tag()) << record;
        EXPECT_EQ(reader.textString(), attribute->textString()) << record;
    }
}

}  // namespace
