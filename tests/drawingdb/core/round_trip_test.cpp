// What was not changed is written as it was read, whatever the spelling of the file.
#include <gtest/gtest.h>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/field.h"
#include "drawingdb/mtext.h"
#include "drawingdb/text.h"
#include "tests/drawingdb/sample.h"

namespace {

std::vector<std::pair<std::string, std::string>> spellings() {
    const std::string& ascii = sampleBytes();
    return {{"as it is", ascii},
            {"carriage returns", respelled(ascii, "\r\n", "  ", false)},
            {"no blanks", respelled(ascii, "\n", "", false)},
            {"comments", respelled(ascii, "\n", "\t ", true)},
            {"no end of line at the end", ascii.substr(0, ascii.rfind("EOF") + 3)},
            {"byte order mark", "\xEF\xBB\xBF" + ascii},
            {"binary", asBinary(ascii, true)},
            {"binary with short codes", asBinary(ascii, false)}};
}

TEST(RoundTrip, UnchangedIsTheSameBytes) {
    for (const auto& [name, bytes] : spellings()) {
        const auto database = OdDbDatabase::readBytes(bytes, L"sample.dxf");
        EXPECT_TRUE(database->warnings().empty()) << name << ": " << database->warnings().front().text;
        EXPECT_TRUE(database->writeBytes() == bytes) << name;
    }
}

TEST(RoundTrip, EverythingTouchedIsTheSameBytes) {
    for (const auto& [name, bytes] : spellings()) {
        const auto database = OdDbDatabase::readBytes(bytes, L"sample.dxf");
        EXPECT_GT(database->touchEverything(), 40u) << name;
        EXPECT_EQ(database->writeBytes(), bytes) << name;
        EXPECT_FALSE(database->isModified()) << name;
    }
}

// One value is changed and all else stays, down to the spelling of the numbers next to it.
TEST(RoundTrip, AChangePatchesOnlyItsGroup) {
    const auto database = sample();
    objectOf(database, 0x65).openAs<OdDbCircle>(OdDb::forWrite)->setRadius(20);
    objectOf(database, 0x34).openAs<OdDbLine>(OdDb::forWrite)->setLayer(L"WALLS");
    objectOf(database, 0x60).openAs<OdDbText>(OdDb::forWrite)->setLineweight(50);
    std::string expected = sampleBytes();
    const auto replace = [&expected](const std::string& old, const std::string& now, std::size_t from) {
        const std::size_t at = expected.find(old, from);
        ASSERT_NE(at, std::string::npos) << old;
        expected.replace(at, old.size(), now);
    };
    replace("1.5E+01", "20.0", 0);
    replace("  8\n0\n", "  8\nWALLS\n", expected.find("LINE\n  5\n34"));
    replace("420\n16711680\n", "370\n50\n420\n16711680\n", expected.find("TEXT\n  5\n60"));
    EXPECT_EQ(database->writeBytes(), expected);
}

TEST(RoundTrip, ADefaultLeavesNoGroupBehind) {
    // Of two groups the first counts, and the second may not come into its place.
    const auto database = OdDbDatabase::readBytes(
        "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1032\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n"
        "0\nTEXT\n5\nA1\n100\nAcDbEntity\n8\n0\n62\n1\n420\n255\n62\n3\n100\nAcDbText\n10\n0\n20\n0\n30\n0\n40\n1\n"
        "1\nx\n50\n90\n50\n45\n0\nENDSEC\n0\nEOF\n",
        L"doubled.dxf");
    {
        const auto text = objectOf(database, 0xA1).openAs<OdDbText>(OdDb::forWrite);
        text->setColor(OdCmColor());
        text->setRotation(0);
    }
    const std::string bytes = database->writeBytes();
    const auto again = OdDbDatabase::readBytes(bytes, L"doubled.dxf");
    EXPECT_EQ(objectOf(again, 0xA1).openAs<OdDbText>()->rotation(), 0);
    for (const char* group : {"\n62\n", "\n420\n", "\n50\n"}) EXPECT_EQ(bytes.find(group), bytes.npos) << group;
}

TEST(RoundTrip, TextsAreReadThroughEscapesAndWrittenWithThem) {
    const auto database = sample();
    const auto attribute = objectOf(database, 0x52).openAs<OdDbAttribute>(OdDb::forWrite);
    EXPECT_EQ(attribute->textString(), L"M\u00fcller & S\u00f6hne \n \u65e5\u672c");
    attribute->setTextString(L"\u00e9\t^ \U0001F600");
    const std::string saved = database->writeBytes();
    EXPECT_NE(saved.find("\n\u00e9^I^  \U0001F600\n"), std::string::npos);
    const auto again = OdDbDatabase::readBytes(saved, L"again.dxf");
    EXPECT_EQ(objectOf(again, 0x52).openAs<OdDbAttribute>()->textString(), L"\u00e9\t^ \U0001F600");
}

// Before 2007 a character that the code page has not is written as an escape, never lost.
TEST(RoundTrip, OldCodePagesEscapeWhatTheyCannotHold) {
    std::string old = sampleBytes();
    old.replace(old.find("AC1032"), 6, "AC1015");
    old.replace(old.find("plain %%d"), 9, "Stra\xDF\x65");
    const auto database = OdDbDatabase::readBytes(old, L"old.dxf");
    EXPECT_EQ(objectOf(database, 0x60).openAs<OdDbText>()->textString(), L"Stra\u00dfe");
    objectOf(database, 0x60).openAs<OdDbText>(OdDb::forWrite)->setTextString(L"\u00df\u65e5");
    const std::string saved = database->writeBytes();
    EXPECT_NE(saved.find("\n\xDF\\U+65E5\n"), std::string::npos);
    EXPECT_EQ(objectOf(OdDbDatabase::readBytes(saved, L""), 0x60).openAs<OdDbText>()->textString(), L"\u00df\u65e5");
}

// Bytes that are no UTF-8 are no characters; what is copied keeps them, and what is not touched does too.
TEST(RoundTrip, BytesThatAreNoTextAreCopiedAsBytes) {
    std::string bytes = sampleBytes();
    bytes.replace(bytes.find("plain %%d"), 9, "St\xE4\x28\xFF \xE6\x97");
    const auto database = OdDbDatabase::readBytes(bytes, L"sample.dxf");
    const OdString value = objectOf(database, 0x60).openAs<OdDbText>()->textString();
    objectOf(database, 0x52).openAs<OdDbAttribute>(OdDb::forWrite)->setTextString(value + L"\u00fc");
    const std::string saved = database->writeBytes();
    EXPECT_NE(saved.find("\nSt\xE4\x28\xFF \xE6\x97\xC3\xBC\n"), std::string::npos);
    EXPECT_NE(saved.find("\nSt\xE4\x28\xFF \xE6\x97\n"), std::string::npos);
}

TEST(RoundTrip, LongMultiLineTextIsReadWholeAndCutAgain) {
    const auto database = sample();
    EXPECT_EQ(objectOf(database, 0x61).openAs<OdDbMText>()->contents().size(), 501u);
    const auto note = objectOf(database, 0x39).openAs<OdDbAttributeDefinition>()->getMTextAttributeDefinition();
    ASSERT_TRUE(note);
    EXPECT_EQ(note->contents(), L"first\\P" + std::wstring(243, L'x') + L"tail");
    const std::wstring text = std::wstring(249, L'a') + L"\u65e5\u672c\u8a9e" + std::wstring(400, L'z');
    objectOf(database, 0x61).openAs<OdDbMText>(OdDb::forWrite)->setContents(text);
    EXPECT_EQ(objectOf(OdDbDatabase::readBytes(database->writeBytes(), L""), 0x61).openAs<OdDbMText>()->contents(),
              text);
}

// Each group is a text of its own for who reads the file: whole characters, also where a second byte is a backslash.
TEST(RoundTrip, LongTextIsNotCutWithinCharactersOfTwoBytes) {
    for (const std::size_t before : {0u, 1u, 2u}) {
        std::string bytes = sampleBytes();
        bytes.replace(bytes.find("AC1032"), 6, "AC1015");
        bytes.replace(bytes.find("ANSI_1252"), 9, "ANSI_932");
        const auto database = OdDbDatabase::readBytes(bytes, L"");
        std::wstring text(before, L'a');
        for (int i = 0; i < 200; ++i) text += L"\u8868\u65e5";  // 95 5C, 93 FA
        objectOf(database, 0x61).openAs<OdDbMText>(OdDb::forWrite)->setContents(text);
        const std::string saved = database->writeBytes();
        EXPECT_EQ(objectOf(OdDbDatabase::readBytes(saved, L""), 0x61).openAs<OdDbMText>()->contents(), text);
        const std::string pair = "\x95\x5C\x93\xFA";
        std::size_t groups = 0;
        for (std::size_t at = saved.find(pair); at != std::string::npos; ++groups) {
            const std::size_t begin = saved.rfind('\n', at) + 1, end = saved.find('\n', at);
            std::size_t place = begin;
            for (; place < end; place += static_cast<unsigned char>(saved[place]) >= 0x80 ? 2 : 1) continue;
            EXPECT_EQ(place, end) << "after " << before;
            EXPECT_LE(end - begin, 250u);
            at = saved.find(pair, end);
        }
        EXPECT_EQ(groups, 4u) << "after " << before;
    }
}

TEST(RoundTrip, ANewDrawingIsComplete) {
    const auto database = OdDbDatabase::createNew();
    EXPECT_TRUE(database->warnings().empty());
    EXPECT_EQ(database->layoutNames(), (std::vector<OdString>{L"Model", L"Layout1"}));
    const auto ray = OdDbRay::createObject();
    ray->setDatabaseDefaults(database.get());
    ray->setUnitDir(OdGeVector3d(3, 4, 0));
    const auto id = database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(ray.get());
    const auto again = OdDbDatabase::readBytes(database->writeBytes(), L"");
    const auto read = again->getObjectId(id.handle()).openAs<OdDbRay>();
    EXPECT_EQ(read->unitDir(), OdGeVector3d(0.6, 0.8, 0));
    EXPECT_EQ(read->blockId(), again->modelSpaceId());
}

TEST(RoundTrip, KindsThatAVersionCannotHoldAreRefused) {
    for (const std::string version : {"AC1009", "AC1.40", "AC2.10"}) {
        std::string old = sampleBytes();
        old.replace(old.find("AC1032"), 6, version);
        const auto database = OdDbDatabase::readBytes(old, L"old.dxf");
        EXPECT_TRUE(database->warnings().empty()) << version;
        EXPECT_EQ(database->version(), version);
        const auto space = database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite);
        const auto line = OdDbXline::createObject();
        try {
            space->appendOdDbEntity(line.get());
            ADD_FAILURE() << "an infinite line went into a drawing of " << version;
        } catch (const OdError& error) {
            EXPECT_EQ(error.code(), OdResult::notHeldByVersion);
            EXPECT_NE(std::string(error.what()).find("no XLINE fits into a drawing of version " + version),
                      std::string::npos)
                << error.what();
        }
        EXPECT_EQ(database->writeBytes(), old);
    }
}

// A header of an old version, or none, does not tell whether the records have subclass markers.
TEST(RoundTrip, MarkersAreReadWhateverTheVersionSays) {
    std::string old = sampleBytes();
    old.replace(old.find("AC1032"), 6, "AC1009");
    const auto database = OdDbDatabase::readBytes(old, L"old.dxf");
    database->touchEverything();
    EXPECT_EQ(database->writeBytes(), old);
    const auto arc = objectOf(database, 0x35).openIf<OdDbArc>(OdDb::forWrite);
    ASSERT_TRUE(arc);
    const double radius = arc->radius();
    arc->setLayer(L"WALLS");
    const auto again = OdDbDatabase::readBytes(database->writeBytes(), L"");
    const auto read = objectOf(again, 0x35).openAs<OdDbArc>();
    EXPECT_EQ(read->radius(), radius);
    EXPECT_EQ(read->layer(), L"WALLS");
}

// A record may lack the markers of its own class while it has the common one: its groups mean what they can mean.
TEST(RoundTrip, MarkersThatAreMissingLoseNoGeometry) {
    constexpr std::string_view kMarkers[] = {"AcDbLine",  "AcDbCircle",         "AcDbArc",      "AcDbText",
                                             "AcDbMText", "AcDbBlockReference", "AcDbPolyline", "AcDbAttribute"};
    std::string lacking = sampleBytes();
    for (const std::string_view marker : kMarkers) {
        const std::string lines = "100\n" + std::string(marker) + "\n";
        for (std::size_t at; (at = lacking.find(lines)) != std::string::npos;) lacking.erase(at, lines.size());
    }
    ASSERT_LT(lacking.size(), sampleBytes().size());
    const auto whole = sample();
    const auto database = OdDbDatabase::readBytes(lacking, L"lacking.dxf");
    EXPECT_EQ(objectOf(database, 0x65).openAs<OdDbCircle>()->radius(), 15);
    const auto arc = objectOf(database, 0x35).openAs<OdDbArc>();
    const auto expected = objectOf(whole, 0x35).openAs<OdDbArc>();
    EXPECT_EQ(arc->radius(), expected->radius());
    EXPECT_EQ(arc->endAngle(), expected->endAngle());
    EXPECT_EQ(objectOf(database, 0x60).openAs<OdDbText>()->textString(),
              objectOf(whole, 0x60).openAs<OdDbText>()->textString());
    EXPECT_EQ(objectOf(database, 0x51).openAs<OdDbAttribute>()->tag(),
              objectOf(whole, 0x51).openAs<OdDbAttribute>()->tag());
    EXPECT_EQ(objectOf(database, 0x50).openAs<OdDbBlockReference>()->blockName(),
              objectOf(whole, 0x50).openAs<OdDbBlockReference>()->blockName());
    database->touchEverything();
    EXPECT_EQ(database->writeBytes(), lacking);

    // A change is found again, in the place of the group that it changes or among those of its kind.
    const auto circle = objectOf(database, 0x65).openAs<OdDbCircle>(OdDb::forWrite);
    circle->setRadius(20);
    const OdGePoint3d center = circle->center();
    const auto text = objectOf(database, 0x60).openAs<OdDbText>(OdDb::forWrite);
    text->setOblique(0.25);
    const OdGePoint3d position = text->position();
    const auto again = OdDbDatabase::readBytes(database->writeBytes(), L"");
    EXPECT_EQ(objectOf(again, 0x65).openAs<OdDbCircle>()->radius(), 20);
    EXPECT_EQ(objectOf(again, 0x65).openAs<OdDbCircle>()->center(), center);
    EXPECT_NEAR(objectOf(again, 0x60).openAs<OdDbText>()->oblique(), 0.25, 1e-12);
    EXPECT_EQ(objectOf(again, 0x60).openAs<OdDbText>()->position(), position);
}

// Drawings without handles stay so, and a header gets no $HANDSEED that it never had.
TEST(RoundTrip, DrawingsWithoutHandlesGetNone) {
    const std::string begin = "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1009\n";
    const std::string line = "  0\nLINE\n  8\n0\n 10\n0.0\n 20\n0.0\n 11\n1.0\n 21\n0.0\n";
    const std::string end = "  0\nENDSEC\n  0\nEOF\n";
    const auto saved = [&](const std::string& header, const std::string& entity) {
        const auto database = OdDbDatabase::readBytes(
            begin + header + "  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n" + entity + end, L"old.dxf");
        const auto fresh = OdDbLine::createObject();
        fresh->setEndPoint(OdGePoint3d(5, 0, 0));
        database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(fresh.get());
        return database->writeBytes();
    };
    for (const std::string header : {"", "  9\n$HANDLING\n 70\n     0\n"}) {
        const std::string bytes = saved(header, line);
        EXPECT_NE(bytes.find("5.0\n"), std::string::npos);
        EXPECT_EQ(bytes.find("\n  5\n"), std::string::npos) << bytes;
        EXPECT_EQ(bytes.find("$HANDSEED"), std::string::npos);
    }
    std::string withHandle = line;
    withHandle.insert(withHandle.find("  8\n"), "  5\nA\n");
    EXPECT_NE(saved("", withHandle).find("  5\nB\n"), std::string::npos);
    EXPECT_EQ(saved("", withHandle).find("$HANDSEED"), std::string::npos);
    EXPECT_NE(saved("  9\n$HANDSEED\n  5\nB\n", withHandle).find("$HANDSEED\n  5\nC\n"), std::string::npos);
}

// The count in the list of fields is the number of its ids, whatever it was.
TEST(RoundTrip, TheListOfFieldsIsCounted) {
    std::string bytes = sampleBytes();
    const std::size_t set = bytes.find("100\nAcDbIdSet\n");
    const std::size_t count = bytes.find("90\n", set) + 3;
    const std::size_t countEnd = bytes.find('\n', count);
    const int before = std::stoi(bytes.substr(count, countEnd - count));
    bytes.replace(count, countEnd - count, "77");
    const auto database = OdDbDatabase::readBytes(bytes, L"sample.dxf");
    const auto field = OdDbField::createObject();
    field->setFieldCode(L"\\AcVar Title");
    objectOf(database, 0x60).openAs<OdDbText>(OdDb::forWrite)->setField(L"TEXT", field);
    EXPECT_NE(database->writeBytes().find("100\nAcDbIdSet\n 90\n" + std::to_string(before + 1) + "\n"),
              std::string::npos);
}

}  // namespace
