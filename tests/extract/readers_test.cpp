// Reading a record must say what the object says, however the record is written.
#include "drawingdb/readers.h"

#include <filesystem>
#include <gtest/gtest.h>

#include "base/paths.h"
#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/database.h"
#include "drawingdb/symbol_table.h"

namespace {

std::string narrow(const OdDbDatabase& database, const OdString& text) {
    std::string bytes;
    database.appendNarrow(bytes, text);
    return bytes;
}

void compareReference(OdDbBlockReferenceReader& reader, const OdDbBlockReference& reference) {
    const OdDbDatabase& database = *reference.database();
    EXPECT_EQ(reader.handle(), reference.handle());
    EXPECT_EQ(reader.blockTableRecord(), reference.blockTableRecord());
    EXPECT_EQ(reader.narrowBlockName(), narrow(database, reference.blockName()));
    EXPECT_EQ(reader.narrowLayer(), narrow(database, reference.layer()));
    EXPECT_EQ(reader.position(), reference.position());
    EXPECT_EQ(reader.rotation(), reference.rotation());
    EXPECT_EQ(reader.normal(), reference.normal());
    EXPECT_EQ(reader.scaleFactors().sx, reference.scaleFactors().sx);
    EXPECT_EQ(reader.scaleFactors().sy, reference.scaleFactors().sy);
    EXPECT_EQ(reader.scaleFactors().sz, reference.scaleFactors().sz);
}

void compareAttributes(const std::filesystem::path& path, int& count) {
    const OdDbDatabasePtr database = OdDbDatabase::readFile(base::fromPath(path));
    const auto blocks = database->blockTableId().openIf<OdDbSymbolTable>();
    if (!blocks) return;
    OdDbAttributeReader reader;
    OdDbBlockReferenceReader referenceReader;
    for (const OdDbObjectId record : blocks->records()) {
        const auto block = record.openIf<OdDbBlockTableRecord>();
        if (!block) continue;
        for (const OdDbObjectId entity : block->entities()) {
            if (entity.isKindOf(OdDbBlockReference::desc()))
                referenceReader.read(entity);
            else
                EXPECT_THROW(referenceReader.read(entity), OdError);
            const OdDbObjectId shown = OdDbBlockReference::blockTableRecordOf(entity);
            const auto reference = entity.openIf<OdDbBlockReference>();
            EXPECT_EQ(shown, reference ? reference->blockTableRecord() : OdDbObjectId()) << path;
            EXPECT_EQ(shown, OdDbBlockReference::blockTableRecordOf(entity)) << path;
            if (!reference) {
                EXPECT_EQ(reader.read(entity), entity.isKindOf(OdDbAttribute::desc()));
                continue;
            }
            compareReference(referenceReader, *reference);
            referenceReader.read(entity);  // open now
            compareReference(referenceReader, *reference);
            for (const OdDbObjectId id : referenceReader.attributes()) {
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
        for (const auto& entry : std::filesystem::directory_iterator(source / folder))
            if (entry.path().extension() == ".dxf") compareAttributes(entry.path(), count);
    }
    EXPECT_GT(count, 20);
}

// What is not written in the usual way: groups of other subclasses, twice, in control strings, behind the extended
// data.
TEST(ReferenceReader, UnderstandsUnusualRecords) {
    const char* const records[] = {
        ("100|AcDbEntity|8|WALLS|100|AcDbBlockReference|2|A|10|1.5|20|-2|30|3|41|2|42|-1|43|0.5|50|30|210|0|220|0|230|-"
         "1|"),
        "100|AcDbEntity|8|T\\U+00FCr|100|AcDbBlockReference|2|*U1|10|1|10|2|20|5|8|late|",
        "100|AcDbEntity|102|{VENDOR|8|no|102|}|8|yes|100|AcDbBlockReference|2|a|10|1|20|1|210|0.3|220|0.4|230|0.5|",
        "102|{VENDOR|8|no|102|}|100|AcDbEntity|8||100|AcDbBlockReference|2|NOWHERE|50|1e1|",
        "100|AcDbEntity|8|X|100|AcDbMInsertBlock|2|A|10|1|20|1|70|3|44|5|",
        "100|AcDbEntity|100|AcDbBlockReference|2|A|10|1O|20|1|41|x|1001|A|1040|7|10|3|",
        "8|OLD|2|A|10|1|20|2|",
        "",
    };
    for (const char* record : records) {
        std::string bytes =
            std::string(
                "0|SECTION|2|HEADER|9|$ACADVER|1|AC1032|0|ENDSEC|0|SECTION|2|BLOCKS|0|BLOCK|5|40|2|A|0|ENDBLK|5|41|") +
            "0|ENDSEC|0|SECTION|2|ENTITIES|0|INSERT|5|50|" + record + "0|ENDSEC|0|EOF|";
        for (char& c : bytes)
            if (c == '|') c = '\n';
        const OdDbDatabasePtr database = OdDbDatabase::readBytes(bytes, L"test.dxf");
        OdDbBlockReferenceReader reader;
        reader.read(database->getObjectId(0x50));
        const std::size_t warnings = database->warnings().size();
        compareReference(reader, *database->getObjectId(0x50).openAs<OdDbBlockReference>());
        EXPECT_EQ(database->warnings().size(), warnings) << "reading told the faults";
    }
}

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
        for (char& c : bytes)
            if (c == '|') c = '\n';
        const OdDbDatabasePtr database = OdDbDatabase::readBytes(bytes, L"test.dxf");
        OdDbAttributeReader reader;
        ASSERT_TRUE(reader.read(database->getObjectId(0x51))) << record;
        const auto attribute = database->getObjectId(0x51).openAs<OdDbAttribute>();
        EXPECT_EQ(reader.tag(), attribute->tag()) << record;
        EXPECT_EQ(reader.textString(), attribute->textString()) << record;
    }
}

}  // namespace
