// An empty drawing: what every program that reads version 2018 expects to be there, and nothing else.
#include "drawingdb/src/file/new_drawing.h"

#include "drawingdb/src/file/record_writer.h"

namespace drawingdb {

namespace {

// Handles of what the records name each other by.
enum Handle : unsigned {
    hNamed = 0xC,
    hGroups = 0xD,
    hLayouts = 0x1A,
    hBlockTable = 0x1,
    hLayerTable = 0x2,
    hStyleTable = 0x3,
    hLtypeTable = 0x5,
    hViewTable = 0x6,
    hUcsTable = 0x7,
    hVportTable = 0x8,
    hAppidTable = 0x9,
    hDimstyleTable = 0xA,
    hModelRecord = 0x1F,
    hPaperRecord = 0x1B,
    hModelLayout = 0x22,
    hPaperLayout = 0x1E,
    hSeed = 0x40,
};

class Writer : public RecordWriter {
  public:
    using RecordWriter::RecordWriter;
    void variable(const char* name, int code, const char* value) {
        text(9, name);
        text(code, value);
    }
    void integerVariable(const char* name, int code, int value) {
        text(9, name);
        integer(code, value);
    }
    void realVariable(const char* name, double value) {
        text(9, name);
        real(40, value);
    }
    void layout(unsigned handleOf, const char* name, int order, unsigned record, int plotFlags) {
        text(0, "LAYOUT");
        handle(5, handleOf);
        text(102, "{ACAD_REACTORS");
        handle(330, hLayouts);
        text(102, "}");
        handle(330, hLayouts);
        marker("AcDbPlotSettings");
        for (const int code : {1, 2, 4, 6}) text(code, code == 2 ? "none_device" : "");
        for (const int code : {40, 41, 42, 43}) real(code, 7.5);
        real(44, 210);
        real(45, 297);
        for (const int code : {46, 47, 48, 49, 140, 141}) real(code, 0);
        real(142, 1);
        real(143, 1);
        integer(70, plotFlags);
        for (const int code : {72, 73, 74}) integer(code, code == 72 ? 1 : 0);
        text(7, "");
        integer(75, 16);
        integer(76, 0);
        integer(77, 2);
        integer(78, 300);
        real(147, 1);
        real(148, 0);
        real(149, 0);
        marker("AcDbLayout");
        text(1, name);
        integer(70, 1);
        integer(71, order);
        real(10, 0);
        real(20, 0);
        real(11, 420);
        real(21, 297);
        point(12, 0, 0, 0);
        point(14, 1e20, 1e20, 1e20);
        point(15, -1e20, -1e20, -1e20);
        real(146, 0);
        point(13, 0, 0, 0);
        point(16, 1, 0, 0);
        point(17, 0, 1, 0);
        integer(76, 0);
        handle(330, record);
    }
};

}  // namespace

std::string newDrawing() {
    std::string out;
    FileFormat format;
    format.crlf = true;
    Writer w(out, format);

    w.open("HEADER");
    w.variable("$ACADVER", 1, "AC1032");
    w.variable("$DWGCODEPAGE", 3, "ANSI_1252");
    w.text(9, "$INSBASE");
    w.point(10, 0, 0, 0);
    w.realVariable("$LTSCALE", 1);
    w.realVariable("$TEXTSIZE", 2.5);
    w.variable("$TEXTSTYLE", 7, "Standard");
    w.variable("$CLAYER", 8, "0");
    w.variable("$CELTYPE", 6, "ByLayer");
    w.integerVariable("$CECOLOR", 62, 256);
    w.realVariable("$CELTSCALE", 1);
    w.integerVariable("$LUNITS", 70, 2);
    w.integerVariable("$LUPREC", 70, 4);
    w.integerVariable("$AUNITS", 70, 0);
    w.integerVariable("$AUPREC", 70, 0);
    w.variable("$HANDSEED", 5, "40");
    w.text(9, "$UCSORG");
    w.point(10, 0, 0, 0);
    w.text(9, "$UCSXDIR");
    w.point(10, 1, 0, 0);
    w.text(9, "$UCSYDIR");
    w.point(10, 0, 1, 0);
    w.integerVariable("$TILEMODE", 70, 1);
    w.integerVariable("$INSUNITS", 70, 4);
    w.integerVariable("$CELWEIGHT", 370, -1);
    w.close();

    w.open("CLASSES");
    w.close();

    w.open("TABLES");
    w.table("VPORT", hVportTable, 1);
    w.entry("VPORT", 0x23, hVportTable, "AcDbViewportTableRecord", "*Active");
    w.real(10, 0), w.real(20, 0), w.real(11, 1), w.real(21, 1), w.real(12, 210), w.real(22, 148.5);
    w.real(13, 0), w.real(23, 0), w.real(14, 10), w.real(24, 10), w.real(15, 10), w.real(25, 10);
    w.point(16, 0, 0, 1);
    w.point(17, 0, 0, 0);
    w.real(40, 297), w.real(41, 1.6), w.real(42, 50), w.real(43, 0), w.real(44, 0), w.real(50, 0), w.real(51, 0);
    for (const int code : {71, 72, 73, 74, 75, 76, 77, 78})
        w.integer(code, code == 72 ? 100 : code == 73 ? 1 : code == 74 ? 3 : 0);
    w.tableEnd();
    w.table("LTYPE", hLtypeTable, 3);
    w.linetype(0x14, hLtypeTable, "ByBlock", "");
    w.linetype(0x15, hLtypeTable, "ByLayer", "");
    w.linetype(0x16, hLtypeTable, "Continuous", "Solid line");
    w.tableEnd();
    w.table("LAYER", hLayerTable, 1);
    w.layer(0x10, hLayerTable, "0");
    w.integer(370, -3);
    w.handle(390, 0xF);
    w.tableEnd();
    w.table("STYLE", hStyleTable, 1);
    w.textStyle(0x11, hStyleTable, "Standard");
    w.tableEnd();
    w.table("VIEW", hViewTable, 0);
    w.tableEnd();
    w.table("UCS", hUcsTable, 0);
    w.tableEnd();
    w.table("APPID", hAppidTable, 1);
    w.entry("APPID", 0x12, hAppidTable, "AcDbRegAppTableRecord", "ACAD");
    w.tableEnd();
    w.table("DIMSTYLE", hDimstyleTable, 1);
    w.entry("DIMSTYLE", 0x27, hDimstyleTable, "AcDbDimStyleTableRecord", "Standard");
    w.tableEnd();
    w.table("BLOCK_RECORD", hBlockTable, 2);
    for (const bool model : {true, false}) {
        w.blockRecord(model ? hModelRecord : hPaperRecord, hBlockTable, model ? "*Model_Space" : "*Paper_Space");
        w.handle(340, model ? hModelLayout : hPaperLayout);
        w.integer(70, 0);
        w.integer(280, 1);
        w.integer(281, 0);
    }
    w.tableEnd();
    w.close();

    w.open("BLOCKS");
    w.block(0x20, hModelRecord, "*Model_Space", false);
    w.blockEnd(0x21, hModelRecord, false);
    w.block(0x1C, hPaperRecord, "*Paper_Space", true);
    w.blockEnd(0x1D, hPaperRecord, true);
    w.close();

    w.open("ENTITIES");
    w.close();

    w.open("OBJECTS");
    w.dictionary(hNamed, 0);
    w.dictionaryEntry("ACAD_GROUP", hGroups);
    w.dictionaryEntry("ACAD_LAYOUT", hLayouts);
    w.dictionaryEntry("ACAD_PLOTSTYLENAME", 0xE);
    w.dictionary(hGroups, hNamed);
    w.dictionary(hLayouts, hNamed);
    w.dictionaryEntry("Model", hModelLayout);
    w.dictionaryEntry("Layout1", hPaperLayout);
    w.text(0, "ACDBDICTIONARYWDFLT");
    w.handle(5, 0xE);
    w.handle(330, hNamed);
    w.marker("AcDbDictionary");
    w.integer(281, 1);
    w.dictionaryEntry("Normal", 0xF);
    w.marker("AcDbDictionaryWithDefault");
    w.handle(340, 0xF);
    w.text(0, "ACDBPLACEHOLDER");
    w.handle(5, 0xF);
    w.handle(330, 0xE);
    w.layout(hModelLayout, "Model", 0, hModelRecord, 1712);
    w.layout(hPaperLayout, "Layout1", 1, hPaperRecord, 688);
    w.close();
    w.text(0, "EOF");
    (void)hSeed;
    return out;
}

}  // namespace drawingdb
