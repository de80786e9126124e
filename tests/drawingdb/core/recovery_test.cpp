// Recovery of damaged files: what is kept, what is told, and that what is saved is sound.
#include <algorithm>
#include <gtest/gtest.h>
#include <random>

#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/layer.h"
#include "drawingdb/text.h"
#include "tests/drawingdb/sample.h"

namespace {

std::string toldOf(const OdDbDatabasePtr& database) {
    std::string all;
    for (const OdDbWarning& warning : database->warnings()) all += warning.text + "\n";
    return all;
}

// What comes out of a recovery is a drawing that nobody complains of.
void expectSound(const OdDbDatabasePtr& recovered, const std::string& what) {
    ASSERT_FALSE(recovered->isReadOnly()) << what;
    const std::string saved = recovered->writeBytes();
    const auto strict = OdDbDatabase::readBytes(saved, L"saved.dxf");
    EXPECT_FALSE(strict->isReadOnly()) << what;
    const auto blocks = strict->blockTableId().openIf<OdDbSymbolTable>();
    if (blocks)
        for (OdDbObjectId record : blocks->records())
            if (const auto block = record.openIf<OdDbBlockTableRecord>())
                for (OdDbObjectId entity : block->entities()) (void)entity.open();
    EXPECT_EQ(toldOf(strict), "") << what;
    const auto again = OdDbDatabase::recoverBytes(saved, L"saved.dxf");
    EXPECT_FALSE(again->isRecovered()) << what << toldOf(again);
    EXPECT_EQ(again->writeBytes(), saved) << what;
}

std::string with(std::string bytes, const std::string& old, const std::string& now) {
    const std::size_t at = bytes.find(old);
    EXPECT_NE(at, std::string::npos) << old;
    return bytes.replace(at, old.size(), now);
}

// From the beginning of one stretch up to that of another.
std::string without(std::string bytes, const std::string& from, const std::string& to) {
    const std::size_t at = bytes.find(from);
    return bytes.erase(at, bytes.find(to, at + 1) - at);
}

OdDbDatabasePtr recovered(const std::string& bytes) {
    auto database = OdDbDatabase::recoverBytes(bytes, L"plan.dxf");
    expectSound(database, toldOf(database));
    return database;
}

TEST(Recovery, LeavesSoundDrawingsAlone) {
    const std::string old = "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\nANY\n10\n0\n20\n0\n11\n1\n21\n1\n0\nENDSEC\n0\nEOF\n";
    for (const std::string& bytes :
         {sampleBytes(), asBinary(sampleBytes(), true), respelled(sampleBytes(), "\r\n", "   ", true),
          OdDbDatabase::createNew()->writeBytes(), old}) {
        const auto database = OdDbDatabase::recoverBytes(bytes, L"sound.dxf");
        EXPECT_FALSE(database->isRecovered()) << toldOf(database);
        EXPECT_TRUE(database->writeBytes() == bytes);
    }
}

TEST(Recovery, TellsWhatWasLeftOutByRecordAndLine) {
    const std::string& whole = sampleBytes();
    const struct {
        const char* what;
        std::string bytes;
        const char* told;
    } cases[] = {
        {"number", with(whole, "\n420\n16711680\n", "\n420\n1671I680\n"),
         "TEXT #60: the value of group 420 is no number"},
        {"circle without a radius", with(whole, "1.5E+01", "1.5O"), "plan.dxf:1157: CIRCLE #65 was left out"},
        {"handle", with(whole, "\n  5\n66\n", "\n  5\n6G6\n"),
         "LWPOLYLINE: the value of group 5 is no handle: \"6G6\""},
        {"double handle", with(whole, "\n  5\n66\n", "\n  5\n65\n"),
         "LWPOLYLINE #65 has the handle of an earlier record"},
        {"a line too many", with(whole, "\n  5\n65\n", "\n  5\n65\nrubbish\n"),
         "plan.dxf:1161: CIRCLE #65: a line that belongs to no group was left out: \"rubbish\""},
        {"zero bytes in the name of a table", with(whole, "\n  2\nLAYER\n", std::string("\n  2\nLA\0YER\n", 12)),
         "TABLE: the text of group 2 has zero bytes, which were left out"},
        {"zero bytes", with(whole, "door", std::string("do\0or", 5)), "has zero bytes, which were left out"},
        {"no ENDSEC", with(whole, "ENDSEC\n  0\nSECTION\n  2\nENTITIES", "SECTION\n  2\nENTITIES"),
         "the ENDSEC of SECTION BLOCKS is missing before this"},
        {"no SECTION", without(whole, "  0\nSECTION\n  2\nENTITIES", "  0\nINSERT\n  5\n50"),
         "into a new SECTION ENTITIES"},
        {"no TABLE", without(whole, "  0\nTABLE\n  2\nSTYLE", "  0\nTABLE\n  2\nAPPID"), "the TABLE STYLE is missing"},
        {"no OBJECTS", without(whole, "  0\nSECTION\n  2\nOBJECTS", "  0\nEOF"), "the SECTION OBJECTS is missing"},
        {"no ENDBLK", without(whole, "  0\nENDBLK\n  5\n33", "  0\nBLOCK"), "the ENDBLK of BLOCK DOOR #32 is missing"},
        {"no BLOCK", without(whole, "  0\nBLOCK\n  5\n32", "  0\nLINE\n  5\n34"), "went into BLOCK DOOR"},
        {"no SEQEND", without(whole, "  0\nSEQEND\n", "  0\nINSERT"), "the SEQEND of INSERT #50 is missing"},
        {"attribute of nothing", without(whole, "  0\nINSERT\n  5\n50", "  0\nATTRIB"),
         "ATTRIB #51 was left out: it belongs to nothing"},
        {"layer", without(whole, "  0\nLAYER\n  5\n11", "  0\nENDTAB"), "names the LAYER \"WALLS\", which is missing"},
        {"owner", with(whole, "\n  5\n60\n330\n1F\n", "\n  5\n60\n330\nFFF\n"),
         "TEXT #60: its owner, #FFF, is not there; it is #1F now"},
        {"member of a group", without(whole, "  0\nCIRCLE", "  0\nLWPOLYLINE"), "the reference was taken out"},
        {"no version", without(whole, "  9\n$ACADVER", "  9\n$DWG"), "$ACADVER is missing; read as AC1032"},
        {"version without a value", with(whole, "\n  1\nAC1032\n", "\n"), "\"$ACADVER\" has no value; it was left out"},
        {"code page", with(with(whole, "AC1032", "AC1015"), "ANSI_1252", "KLINGON"), "unknown code page \"KLINGON\""},
        {"kind of a layer", with(whole, "  0\nLAYER\n  5\n11", "  0\nL\xC1YER\n  5\n11"),
         "#11 stands in the TABLE LAYER; it was read as LAYER #11"},
        {"kind of a block's record", with(whole, "  0\nBLOCK_RECORD\n  5\n30", "  0\nBLOCK_RECqRD\n  5\n30"),
         "BLOCK_RECqRD #30 stands in the TABLE BLOCK_RECORD; it was read as BLOCK_RECORD #30"},
        {"kind of a style of dimensions", with(whole, "  0\nDIMSTYLE\n105", "  0\nDIMqTYLE\n105"),
         "DIMqTYLE stands in the TABLE DIMSTYLE; it was read as DIMSTYLE #"},
        {"no ENDTAB", with(whole, "  0\nENDTAB\n  0\nTABLE\n  2\nLAYER", "  0\nTABLE\n  2\nLAYER"),
         "the ENDTAB of TABLE LTYPE #5 is missing before this"},
        {"kind of a table", with(whole, "  0\nENDTAB\n  0\nTABLE\n  2\nLAYER", "  0\nTAXLE\n  2\nLAYER"),
         "TAXLE #2 stands in the TABLE LTYPE; it was read as TABLE LAYER #2"},
        {"no UTF-8", with(whole, "\n  2\nWALLS\n", "\n  2\nW\xC4LLE\n"),
         "is not UTF-8; it was read in the drawing's code page"},
    };
    for (const auto& row : cases) {
        const auto database = recovered(row.bytes);
        EXPECT_TRUE(database->isRecovered()) << row.what;
        EXPECT_NE(toldOf(database).find(row.told), std::string::npos) << row.what << ":\n" << toldOf(database);
        EXPECT_EQ(toldOf(database).rfind("plan.dxf:", 0), 0u) << row.what;
    }
}

// One fault is told once: what follows from its mend is none.
TEST(Recovery, TellsAFaultOnce) {
    const std::string polyline =
        "0\nSECTION\n2\nENTITIES\n0\nPOLYLINE\n8\n0\n66\n1\n0\nVERTEX\n8\n0\n10\n1\n20\n2\n"
        "0\nVERTEX\n8\n0\n10\n3\n20\n4\n0\nLINE\n8\n0\n10\n0\n20\n0\n11\n1\n21\n1\n"
        "0\nENDSEC\n0\nEOF\n";
    EXPECT_EQ(toldOf(recovered(polyline)),
              "plan.dxf:27: the SEQEND of POLYLINE is missing before this; it was added\n");

    const std::string twice = with(sampleBytes(), "  0\nTABLE\n  2\nSTYLE\n",
                                   "  0\nENDSEC\n  0\nSECTION\n  2\nTABLES\n  0\nTABLE\n  2\nSTYLE\n");
    const auto database = recovered(twice);
    EXPECT_FALSE(database->findLayer(L"WALLS").isNull());
    const std::string told = toldOf(database);
    EXPECT_NE(told.find("a second SECTION TABLES; what it holds went into the first\n"), std::string::npos) << told;
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
}

// A name leads to the first that has it; the second is still to be found.
TEST(Recovery, RenamesTwins) {
    const std::string old =
        "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n70\n3\n0\nLAYER\n2\nWALL\n70\n0\n62\n1\n6\nCONTINUOUS\n"
        "0\nLAYER\n70\n0\n62\n2\n6\nCONTINUOUS\n0\nLAYER\n2\nwall\n70\n0\n62\n3\n6\nCONTINUOUS\n0\nENDTAB\n"
        "0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n"
        "0\nBLOCK\n8\n0\n2\nDOOR\n70\n0\n10\n0\n20\n0\n3\nDOOR\n0\nENDBLK\n8\n0\n"
        "0\nBLOCK\n8\n0\n2\nDOOR$2\n70\n0\n10\n0\n20\n0\n3\nDOOR$2\n0\nENDBLK\n8\n0\n"
        "0\nBLOCK\n8\n0\n2\nDoor\n70\n0\n10\n7\n20\n0\n3\nDoor\n0\nENDBLK\n8\n0\n"
        "0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n";
    auto database = recovered(old);
    EXPECT_EQ(toldOf(database),
              "plan.dxf:21: LAYER has no name; it was left out\n"
              "plan.dxf:29: LAYER has the name of an earlier one; it is \"wall$2\" now\n"
              "plan.dxf:83: BLOCK Door has the name of an earlier one; it is \"Door$3\" now\n");
    EXPECT_NE(toldOf(OdDbDatabase::readBytes(old, L"plan.dxf")).find("plan.dxf:83: BLOCK Door has the name of an"),
              std::string::npos);
    EXPECT_FALSE(database->findLayer(L"wall$2").isNull());
    EXPECT_EQ(database->findBlock(L"DOOR").openAs<OdDbBlockTableRecord>()->origin().x, 0);
    EXPECT_EQ(database->findBlock(L"Door$3").openAs<OdDbBlockTableRecord>()->origin().x, 7);

    // A record and its block get the same name: FRAME is called as DOOR is, and none is made for either.
    std::string bytes = sampleBytes();
    for (std::size_t at; (at = bytes.find("\nFRAME\n")) != bytes.npos;) bytes.replace(at + 1, 5, "DOOR");
    database = recovered(bytes);
    const std::string told = toldOf(database);
    EXPECT_NE(told.find(" has the name of an earlier one; it is \"DOOR$2\" now\n"), std::string::npos) << told;
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    const auto entities = [](const OdDbDatabasePtr& drawing, const wchar_t* block) {
        std::uint64_t sum = 0;
        for (const OdDbObjectId id : drawing->findBlock(block).openAs<OdDbBlockTableRecord>()->entities())
            sum += id.handle().value();
        return sum;
    };
    EXPECT_EQ(entities(database, L"DOOR") + entities(database, L"DOOR$2"),
              entities(sample(), L"DOOR") + entities(sample(), L"FRAME"));

    // Blocks do not say which record is theirs before 2000, and where two name one each gets its own.
    for (const bool isOld : {true, false})
        for (const bool haveOneRecord : {false, true}) {
            std::string twins = sampleBytes();
            if (isOld) twins = with(twins, "AC1032", "AC1014");
            if (haveOneRecord) {
                twins = without(twins, "  0\nBLOCK_RECORD\n  5\n31", "  0\nENDTAB");
                for (std::size_t at; (at = twins.find("330\n31\n")) != twins.npos;) twins.replace(at, 7, "330\n30\n");
            }
            for (std::size_t at; (at = twins.find("\nFRAME\n")) != twins.npos;) twins.replace(at + 1, 5, "DOOR");
            EXPECT_NE(toldOf(OdDbDatabase::readBytes(twins, L"plan.dxf")).find("has the name of an"),
                      std::string::npos);
            database = recovered(twins);
            EXPECT_EQ(entities(database, L"DOOR") + entities(database, L"DOOR$2"),
                      entities(sample(), L"DOOR") + entities(sample(), L"FRAME"))
                << toldOf(database);
            const OdDbObjectId twin = database->findBlock(L"DOOR$2");
            for (const OdDbObjectId id : twin.openAs<OdDbBlockTableRecord>()->entities())
                EXPECT_EQ(id.open()->ownerId(), twin);
        }

    // Also where no block is left: those that are made have one record each.
    const auto alone = recovered(
        "0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nBLOCK_RECORD\n0\nBLOCK_RECORD\n5\n1F\n2\nDOOR\n"
        "0\nBLOCK_RECORD\n0\nBLOCK_RECORD\n5\n20\n2\ndoor\n0\nENDTAB\n0\nENDSEC\n"
        "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n");
    EXPECT_NE(toldOf(alone).find("BLOCK_RECORD has no name; it was left out"), std::string::npos) << toldOf(alone);
    EXPECT_NE(toldOf(alone).find("it is \"door$2\" now"), std::string::npos) << toldOf(alone);
    EXPECT_EQ(toldOf(recovered(alone->writeBytes())), "");
}

// What has lost the name that it is found by gets it from what it belongs to, or another.
TEST(Recovery, NamesWhatHasLostItsName) {
    const std::string& whole = sampleBytes();
    auto database = recovered(with(whole, "AcDbBlockTableRecord\n  2\nFRAME\n", "AcDbBlockTableRecord\n"));
    EXPECT_EQ(database->findBlock(L"FRAME"), objectOf(database, 0x31)) << toldOf(database);
    database = recovered(with(with(whole, "AcDbBlockTableRecord\n  2\nFRAME\n", "AcDbBlockTableRecord\n"),
                              "  0\nBLOCK_RECORD\n  5\n31", "  0\nBLOCKoRECORD\n  5\n31"));
    EXPECT_EQ(database->findBlock(L"FRAME"), objectOf(database, 0x31)) << toldOf(database);
    EXPECT_EQ(toldOf(recovered(database->writeBytes())), "");

    const std::size_t reference = whole.find("  0\nINSERT\n  5\n50");
    for (const char* const name : {"", "  2\n\n"}) {
        std::string bytes = whole;
        bytes.replace(bytes.find("  2\ndoor\n", reference), 9, name);
        database = recovered(bytes);
        EXPECT_EQ(objectOf(database, 0x50).openAs<OdDbBlockReference>()->blockName(), L"BLOCK$1");
        EXPECT_FALSE(database->findBlock(L"BLOCK$1").isNull());
        EXPECT_EQ(objectOf(database, 0x51).open()->ownerId(), objectOf(database, 0x50));
    }

    // A style that dimensions name comes back even where its table is lost.
    std::string bytes = without(whole, "  0\nTABLE\n  2\nDIMSTYLE", "  0\nENDTAB");
    bytes = with(bytes, "  0\nINSERT\n  5\n50",
                 "  0\nLEADER\n  5\nE00\n100\nAcDbEntity\n  8\n0\n100\nAcDbLeader\n  3\nLARGE\n 71\n0\n 76\n2\n"
                 " 10\n0\n 20\n0\n 30\n0\n 10\n1\n 20\n1\n 30\n0\n  0\nINSERT\n  5\n50");
    database = recovered(bytes);
    EXPECT_NE(toldOf(database).find("LEADER #E00 names the DIMSTYLE \"LARGE\", which is missing; it was added"),
              std::string::npos)
        << toldOf(database);
}

// A block is there even when nothing says its name, at the base point that it has.
TEST(Recovery, KeepsBlocksWithoutName) {
    const auto plan = [](const std::string& names) {
        return "0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n8\n0\n" + names +
               "70\n0\n10\n7\n20\n0\n0\nPOINT\n8\n0\n10\n1\n20\n2\n0\nENDBLK\n8\n0\n"
               "0\nBLOCK\n8\n0\n2\nDOOR\n70\n0\n10\n0\n20\n0\n3\nDOOR\n0\nENDBLK\n8\n0\n"
               "0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nENDSEC\n0\nEOF\n";
    };
    for (const auto& [names, name] : {std::pair<const char*, const wchar_t*>{"", L"BLOCK$1"},
                                      {"3\nGATE\n", L"GATE"},
                                      {"2\n\n3\ndoor\n", L"BLOCK$1"}}) {
        const auto database = recovered(plan(names));
        const auto block = database->findBlock(name).openAs<OdDbBlockTableRecord>();
        ASSERT_TRUE(block) << toldOf(database);
        EXPECT_EQ(block->origin().x, 7);
        EXPECT_EQ(std::distance(block->entities().begin(), block->entities().end()), 1);
    }
}

TEST(Recovery, KeepsWhatIsWhole) {
    const std::string& whole = sampleBytes();
    const auto widthOf = [](const OdDbDatabasePtr& database) {
        return objectOf(database, 0x51).openAs<OdDbAttribute>()->textString();
    };
    const OdString width = widthOf(sample());

    // Lines between two groups cost nothing but themselves.
    auto database = recovered(with(whole, "\n  5\n65\n", "\n  5\n65\n<<<<<<< HEAD\n\nend of line\n"));
    EXPECT_EQ(objectOf(database, 0x65).openAs<OdDbCircle>()->radius(), 15);

    // A lost end of a record costs neither it nor the next.
    database = recovered(without(whole, "  0\nSEQEND\n", "  0\nINSERT"));
    EXPECT_EQ(widthOf(database), width);
    EXPECT_EQ(objectOf(database, 0x52).open()->ownerId(), objectOf(database, 0x50));

    // A block that is not there any more leaves its references and their values.
    database = recovered(without(without(whole, "  0\nBLOCK_RECORD\n  5\n30", "  0\nBLOCK_RECORD"),
                                 "  0\nBLOCK\n  5\n32", "  0\nBLOCK\n  5\n3A"));
    EXPECT_FALSE(database->findBlock(L"DOOR").isNull());
    EXPECT_EQ(widthOf(database), width);

    // What the beginning of a section, a table or a block is lost of comes into its place.
    database = recovered(without(whole, "  0\nSECTION\n  2\nENTITIES", "  0\nINSERT\n  5\n50"));
    EXPECT_EQ(objectOf(database, 0x65).openAs<OdDbCircle>()->blockId(), database->modelSpaceId());
    database = recovered(without(whole, "  0\nTABLE\n  2\nLAYER", "  0\nLAYER"));
    EXPECT_FALSE(database->findLayer(L"WALLS").isNull());
    database = recovered(without(whole, "  0\nBLOCK\n  5\n32", "  0\nLINE\n  5\n34"));
    EXPECT_EQ(objectOf(database, 0x34).openAs<OdDbLine>()->blockId(), database->findBlock(L"DOOR"));

    // A bad byte in a text of a newer drawing is a letter of the code page.
    database = recovered(with(whole, "\n  2\nWALLS\n", "\n  2\nW\xC4LLE\n"));
    EXPECT_FALSE(database->findLayer(L"W\u00c4LLE").isNull());

    // Two faults in a variable of the header cost it, not the one before it too.
    database = recovered(with(whole, "\n 70\n     1\n  9\n$CLAYER\n", "\nno\n 70\n     1\nno\n  9\n$CLAYER\n"));
    EXPECT_NE(database->writeBytes().find("$INSBASE"), std::string::npos);
    EXPECT_EQ(database->writeBytes().find("$TILEMODE"), std::string::npos);
}

// Where one record ends and the next begins is not seen any more: neither gets the other's groups.
TEST(Recovery, KeepsRecordsApart) {
    const std::string& whole = sampleBytes();
    const std::string begin = "  0\nCIRCLE\n  5\n65\n";
    for (const char* damaged : {"CIRCLE\n  5\n65\n", "x\nCIRCLE\n  5\n65\n", "  0\n7\nCIRCLE\n  5\n65\n"}) {
        const auto database = recovered(with(whole, begin, damaged));
        EXPECT_NE(toldOf(database).find("the group 0 of a record CIRCLE is damaged; it was put right"),
                  std::string::npos);
        // But for the seed of handles.
        const std::string saved = database->writeBytes();
        EXPECT_TRUE(saved.substr(saved.find("ENDSEC")) == whole.substr(whole.find("ENDSEC"))) << damaged;
    }
    const auto nameless = recovered(with(whole, begin, "  0\n  5\n65\n"));
    EXPECT_NE(toldOf(nameless).find("a record without a name #65 was left out"), std::string::npos);
    EXPECT_TRUE(objectOf(nameless, 0x65).isNull());
    EXPECT_EQ(objectOf(nameless, 0x66).openAs<OdDbPolyline>()->numVerts(),
              objectOf(sample(), 0x66).openAs<OdDbPolyline>()->numVerts());
}

TEST(Recovery, ClosesControlStrings) {
    const std::string& whole = sampleBytes();
    const std::string owner = "330\n1F\n100\nAcDbEntity\n";
    const std::string begin = "\n  5\n65\n";
    ASSERT_NE(whole.find(begin + owner), std::string::npos);
    for (const char* control : {"102\n{ACAD_REACTORS\n330\n66\n", "102\n{ACAD_XDICTIONARY\n360\n66\n",
                                "102\n{ACAD_REACTORS\n330\n66\n102\n{ACAD_XDICTIONARY\n360\n66\n102\n}\n"}) {
        const auto database = recovered(with(whole, begin + owner, begin + control + owner));
        EXPECT_NE(toldOf(database).find("CIRCLE #65: the end of the control string \"{ACAD_"), std::string::npos);
        const auto circle = objectOf(database, 0x65).openAs<OdDbCircle>();
        EXPECT_EQ(circle->radius(), 15);
        EXPECT_EQ(circle->ownerId(), database->modelSpaceId());
    }
}

// A record that had another one's handle is the owner of what stands in it all the same.
TEST(Recovery, OwnersFollowTheirNewHandles) {
    const auto database =
        recovered(with(sampleBytes(), "  0\nBLOCK_RECORD\n  5\n30\n", "  0\nBLOCK_RECORD\n  5\n10\n"));
    const OdDbObjectId door = database->findBlock(L"DOOR");
    EXPECT_EQ(objectOf(database, 0x34).openAs<OdDbLine>()->ownerId(), door) << toldOf(database);
    EXPECT_EQ(objectOf(database, 0x32).open()->ownerId(), door);
}

// Texts that look like handles, empty ones in a row, the largest of all.
TEST(Recovery, GivesHandlesThatAreFree) {
    const std::string lacking = with(sampleBytes(), "\n  5\n65\n", "\n  5\n\n");
    recovered(with(lacking, "\n100\nAcDbCircle\n", "\n100\nAcDbCircle\n  5\nFFFFFFFFFFFFFFFF\n"));
    recovered(with(lacking, "\n  5\n66\n", "\n  5\n3FFFFFFFFFFFFFFF\n"));
    recovered("0\nSECTION\n2\nENTITIES\n0\nPOINT\n5\n\n5\n\n8\n0\n10\n0\n20\n0\n0\nENDSEC\n");
}

TEST(Recovery, CutAnywhere) {
    for (const bool binary : {false, true}) {
        const std::string whole = binary ? asBinary(sampleBytes(), true) : sampleBytes();
        const std::size_t begin = whole.find("$ACADVER"), end = whole.rfind("EOF");
        for (std::size_t length = begin; length < end; length += 97) {
            const auto database = OdDbDatabase::recoverBytes(whole.substr(0, length), L"cut.dxf");
            EXPECT_TRUE(database->isRecovered()) << length;
            expectSound(database, "cut at " + std::to_string(length));
        }
    }
}

TEST(Recovery, RandomDamage) {
    for (const bool binary : {false, true}) {
        const std::string whole = binary ? asBinary(sampleBytes(), true) : sampleBytes();
        for (unsigned seed = 1; seed <= 150; ++seed) {
            std::mt19937 random(seed);
            std::string bytes = whole;
            const auto place = [&] { return 30 + random() % (bytes.size() - 30); };
            for (int i = 0; i < 4; ++i) {
                const std::size_t at = place();
                switch (random() % 4) {
                    case 0:
                        bytes.erase(at, random() % 200);
                        break;
                    case 1:
                        bytes.insert(at, bytes.substr(place(), random() % 200));
                        break;
                    case 2:
                        bytes.replace(at, std::min<std::size_t>(random() % 60, bytes.size() - at), random() % 60, '\0');
                        break;
                    default:
                        bytes[at] = static_cast<char>(random());
                }
            }
            expectSound(OdDbDatabase::recoverBytes(bytes, L"damaged.dxf"), "seed " + std::to_string(seed));
        }
    }
}

TEST(Recovery, RefusesWhatIsNoDrawing) {
    for (const std::string& bytes : {std::string(), std::string("Dear reader,\n\nhello\n"), std::string(5000, '\0'),
                                     std::string("AC1032\0\0\0\0\0\0\0", 13),
                                     std::string("DRAWING Binary DXF\r\n\x1A\0\0SECTION\0\2HE\1\0\0SECTI", 42)})
        EXPECT_THROW(OdDbDatabase::recoverBytes(bytes, L"letter.dxf"), OdError);
}

}  // namespace
