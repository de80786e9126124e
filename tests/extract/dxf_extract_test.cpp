#include "drawingdb/block_reference.h"
#include "extract_fixture.h"
#include "torvelcmd2/extract/tv_dxf_filer.h"

namespace {

using torvel::TVDxfFiler;
using torvel::writeDxfExtract;

using DxfExtract = ExtractTest;

// "|" stands for the end of a line, ">" for a tab.
std::string textFile(const std::string& text) {
    std::string result;
    for (const char c : text)
        if (c == '|')
            result += "\r\n";
        else
            result += c == '>' ? '\t' : c;
    return result;
}

// No object ids, the letter d where a yes or no has its code, and 10, 20, 30 for whatever is a point or vector.
const std::string k60 = textFile(
    ">5|60|wrSubclassMarker: AcDbEntity|>8|0|>d|1|wrSubclassMarker: AcDbBlockReference|>66|1|>2|DOOR|"
    ">10|1.000000|>20|2.000000|>30|0.000000|>10|0.000000|>20|0.000000|>30|-1.000000|EOF|");
const std::string k70 = textFile(
    ">5|70|wrSubclassMarker: AcDbEntity|>8|0|>310 /*wrBinaryChunk*/|3|wrSubclassMarker: AcDbBlockReference|>2|WINDOW|"
    ">10|4.000000|>20|0.000000|>30|0.000000|EOF|");
const std::string k50 = textFile(
    ">5|50|wrSubclassMarker: AcDbEntity|>8|WALLS|wrSubclassMarker: AcDbBlockReference|>66|1|>2|door|"
    ">10|12.500000|>20|-3.000000|>30|0.250000|>10|2.000000|>20|-1.000000|>30|3.000000|>50|1.57|EOF|");

TEST_F(DxfExtract, WritesTheReferencesOfASelectionInItsOrder) {
    EXPECT_EQ(writeDxfExtract(objects({0x60, 0x80, 0x70, 0x51, 0x50}), output(), L""), 3);
    EXPECT_EQ(written(), k60 + k70 + k50);

    const auto changed = object(0x60).openAs<OdDbBlockReference>(OdDb::forWrite);
    changed->setPosition({-7, 2, 0});
    EXPECT_EQ(writeDxfExtract(objects({0x60}), output(), L""), 1);
    EXPECT_NE(written().find(textFile(">10|7.000000|>20|2.000000|")), std::string::npos);
}

TEST_F(DxfExtract, EndsLinesAlikeInsideTexts) {
    open(drawingText().replace(drawingText().find("WALLS"), 5, "A^JB\xC3\xBC"));
    EXPECT_EQ(writeDxfExtract(objects({0x50}), output(), L""), 1);
    EXPECT_NE(written().find(textFile(">8|A|B\xFC|")), std::string::npos);
}

TEST_F(DxfExtract, LeavesAnEmptyFileWhereThereIsNoReference) {
    base::writeFile(output(), "old");
    EXPECT_EQ(writeDxfExtract({}, output(), L""), 0);
    EXPECT_EQ(writeDxfExtract(objects({0x60}), output(), nullptr), 0);
    EXPECT_EQ(writeDxfExtract(objects({0x60}), folder_.path(), L""), 0);
    EXPECT_EQ(written(), "old");
    EXPECT_EQ(writeDxfExtract(objects({0x80}), output(), L""), 0);
    EXPECT_EQ(written(), "");
}

TEST(TVDxfFiler, KeepsALineForEveryValue) {
    const OdDbDatabasePtr database = OdDbDatabase::createNew();
    const OdDbObjectId id = database->layerTableId();
    const auto filer = TVDxfFiler::create(id, database.get());
    const std::uint8_t bytes[] = {1, 2};
    // Through the interface, as an object writes.
    OdDbDxfFiler& out = *filer;
    out.wrName(2, L"100%d");
    out.wrString(1, L"");
    out.wrBool(290, false);
    out.wrInt8(280, -5);
    out.wrUInt8(280, 255);
    out.wrInt16(70, -32768);
    out.wrUInt16(70, 65535);
    out.wrInt32(90, -7);
    out.wrUInt32(90, 4294967295u);
    out.wrInt64(160, -9000000000);
    out.wrUInt64(160, 18446744073709551615u);
    out.wrHandle(5, OdDbHandle(0xAB));
    out.wrObjectId(330, id);
    out.wrAngle(50, 1.005);
    out.wrDouble(40, 2.00006);
    out.wrPoint2d(11, {1, 2});
    out.wrPoint3d(11, {1, 2, 3});
    out.wrVector2d(12, {1, -2});
    out.wrVector3d(210, {0, 0, 1});
    out.wrScale3d(41, {1, 2, 0.5});
    out.wrBinaryChunk(310, bytes);
    out.wrSubclassMarker(L"AcDbEntity");
    filer->wrBinaryChunkLength(12);
    EXPECT_EQ(filer->lines(), (std::vector<OdString>{L"\t2\n100%d",
                                                     L"\t1\n",
                                                     L"\td\n0",
                                                     L"\t280\n-5",
                                                     L"\t280\n255",
                                                     L"\t70\n-32768",
                                                     L"\t70\n65535",
                                                     L"\t90\n-7",
                                                     L"\t90\n-1",
                                                     L"\t160\n-9000000000",
                                                     L"\t160\n-1",
                                                     L"\t5\nAB",
                                                     L"\t50\n1.00",
                                                     L"\t40\n2.0001",
                                                     L"\t10\n1.000000\n\t20\n2.000000",
                                                     L"\t10\n1.000000\n\t20\n2.000000\n\t30\n3.000000",
                                                     L"\t10\n1.000000\n\t20\n-2.000000",
                                                     L"\t10\n0.000000\n\t20\n0.000000\n\t30\n1.000000",
                                                     L"\t10\n1.000000\n\t20\n2.000000\n\t30\n0.500000",
                                                     L"\t310 /*wrBinaryChunk*/\n2",
                                                     L"wrSubclassMarker: AcDbEntity",
                                                     L"wrBinaryChunk: 12"}));
    EXPECT_EQ(filer->database(), database.get());
    EXPECT_EQ(filer->ownObjects(), OdDbObjectIdArray{id});
    EXPECT_EQ(filer->isA(), OdRxClass::find("TVDxfFiler"));
    EXPECT_TRUE(filer->isKindOf(OdDbDxfFiler::desc()));
}

}  // namespace
