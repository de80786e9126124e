// Damaged files: an error that names the place, or a warning and sound objects; never a crash.
#include <gtest/gtest.h>
#include <random>

#include "base/files.h"
#include "base/temporary_folder.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "tests/drawingdb/sample.h"

namespace {

// Opens everything there is and asks it for what every object can be asked for.
void walk(const OdDbDatabasePtr& database) {
    for (std::uint64_t handle = 0; handle < 0x100; ++handle) {
        const auto object = database->getObjectId(handle).open();
        if (!object) continue;
        (void)object->xData();
        (void)object->ownerId();
        if (const auto entity = OdDbEntityPtr::cast(object)) {
            OdGeExtents3d extents;
            (void)entity->geomExtents(extents);
            (void)entity->layer();
        }
    }
    (void)database->layoutNames();
    (void)database->currentSpaceId();
}

TEST(Damage, CutAnywhere) {
    const std::string& whole = sampleBytes();
    const std::size_t end = whole.rfind("EOF") + 3;
    std::size_t opened = 0;
    for (std::size_t length = 0; length < end; length += 7) {
        const std::string bytes = whole.substr(0, length);
        try {
            const auto database = OdDbDatabase::readBytes(bytes, L"cut.dxf");
            EXPECT_TRUE(database->isReadOnly()) << length;
            EXPECT_FALSE(database->warnings().empty()) << length;
            walk(database);
            EXPECT_EQ(database->writeBytes(), bytes) << length;
            ++opened;
        } catch (const OdError& error) {
            EXPECT_EQ(error.code(), OdResult::badFile);
            EXPECT_EQ(std::string(error.what()).rfind("cut.dxf:", 0), 0u) << error.what();
        }
    }
    EXPECT_GT(opened, end / 7 - 40);
}

TEST(Damage, RandomBytesAreChanged) {
    for (const bool binary : {false, true}) {
        const std::string whole = binary ? asBinary(sampleBytes(), true) : sampleBytes();
        for (unsigned seed = 1; seed <= 400; ++seed) {
            std::mt19937 random(seed);
            std::string bytes = whole;
            for (int i = 0; i < 8; ++i) {
                const std::size_t at = random() % bytes.size();
                if (random() % 3 == 0)
                    bytes.erase(at, random() % 9);
                else
                    bytes[at] = random() % 2 ? static_cast<char>(random()) : static_cast<char>('0' + random() % 10);
            }
            try {
                const auto database = OdDbDatabase::readBytes(bytes, L"damaged.dxf");
                walk(database);
                ASSERT_EQ(database->writeBytes(), bytes) << "seed " << seed;
                if (!database->isReadOnly()) database->touchEverything();
                ASSERT_EQ(database->writeBytes(), bytes) << "seed " << seed;
            } catch (const OdError& error) {
                EXPECT_EQ(error.code(), OdResult::badFile) << error.what();
            }
        }
    }
}

// Whoever draws or shows anything relies on it.
TEST(Damage, EveryLayoutHasABlock) {
    const std::string record = "  0\nBLOCK_RECORD\n";
    const std::string& whole = sampleBytes();
    std::size_t damaged = 0;
    for (std::size_t at = whole.find(record); at != whole.npos; at = whole.find(record, at + 1)) {
        std::string bytes = whole;
        bytes.replace(at, record.size(), "  0\nVIEW\n");
        const auto database = OdDbDatabase::readBytes(bytes, L"damaged.dxf");
        EXPECT_TRUE(database->modelSpaceId().openIf<OdDbBlockTableRecord>()) << damaged;
        for (const OdString& layout : database->layoutNames()) {
            ASSERT_TRUE(database->setCurrentLayout(layout));
            EXPECT_TRUE(database->currentSpaceId().openIf<OdDbBlockTableRecord>()) << damaged;
        }
        ++damaged;
    }
    EXPECT_GT(damaged, 2u);
}

TEST(Damage, ReadOnlyDrawingsCannotBeChanged) {
    const auto database =
        OdDbDatabase::readBytes(sampleBytes().substr(0, sampleBytes().find("OBJECTS") - 20), L"cut.dxf");
    EXPECT_THROW((void)objectOf(database, 0x65).open(OdDb::forWrite), OdError);
    EXPECT_EQ(objectOf(database, 0x65).openAs<OdDbCircle>()->radius(), 15);
}

TEST(Damage, WarningsNameTheFault) {
    const auto warningsOf = [](const std::string& old, const std::string& now) {
        std::string bytes = sampleBytes();
        bytes.replace(bytes.find(old), old.size(), now);
        const auto database = OdDbDatabase::readBytes(bytes, L"plan.dxf");
        walk(database);
        EXPECT_EQ(database->writeBytes(), bytes);
        std::string all;
        for (const auto& warning : database->warnings()) all += warning.text + "\n";
        return all;
    };
    EXPECT_NE(warningsOf("1.5E+01", "1.5O").find(": group 40 of CIRCLE #65 is not a number: \"1.5O\""),
              std::string::npos);
    EXPECT_NE(warningsOf("\n  5\n66\n", "\n  5\n65\n").find("LWPOLYLINE #65 has the handle of an earlier record"),
              std::string::npos);
    EXPECT_NE(warningsOf("\n  5\n66\n", "\n  5\n\n").find("LWPOLYLINE has an empty handle"), std::string::npos);
    EXPECT_NE(warningsOf("ENDSEC\n  0\nSECTION\n  2\nENTITIES", "REM\n  0\nSECTION\n  2\nENTITIES")
                  .find("a SECTION is not closed by ENDSEC"),
              std::string::npos);
    EXPECT_NE(warningsOf("AC1032\n  9\n$DWGCODEPAGE\n  3\nANSI_1252", "AC1015\n  9\n$DWGCODEPAGE\n  3\nKLINGON")
                  .find("unknown code page \"KLINGON\""),
              std::string::npos);
}

// A file is read while it is gone through; lines that are longer than a piece, and faults behind the first one, must
// come out as those of a file that is there whole.
TEST(Damage, LargeFilesAreReadAsSmallOnesAre) {
    std::string bytes = "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1032\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n";
    int handle = 0x100;
    while (bytes.size() < (std::size_t{7} << 20)) {
        bytes += "0\nPOINT\n5\n" + OdDbHandle(static_cast<std::uint64_t>(handle++)).ascii() + "\n999\n";
        bytes.append(bytes.size() % 3000000, 'x');
        bytes += "\n10\n1.5\n";
    }
    const base::TemporaryFolder folder;
    for (const char* end :
         {"0\nENDSEC\n0\nEOF\n\x1A\nleft over", "0\nENDSEC\n0\nEOF\n", "0\nENDSEC\n\n\n", "no code\n1\n", "10"}) {
        base::writeFile(folder / L"large.dxf", bytes + end);
        const OdDbDatabasePtr read = OdDbDatabase::readFile(folder / L"large.dxf");
        const OdDbDatabasePtr whole = OdDbDatabase::readBytes(bytes + end, L"large.dxf");
        EXPECT_EQ(read->writeBytes(), bytes + end);
        EXPECT_EQ(read->isReadOnly(), whole->isReadOnly());
        EXPECT_TRUE(read->getObjectId(handle - 1).isValid());
        ASSERT_EQ(read->warnings().size(), whole->warnings().size()) << end;
        for (std::size_t i = 0; i < whole->warnings().size(); ++i) {
            EXPECT_EQ(read->warnings()[i].line, whole->warnings()[i].line);
            EXPECT_EQ(read->warnings()[i].text, whole->warnings()[i].text);
        }
    }
}

// Nothing but the end-of-file record is missing: the drawing can be worked on. One that ends behind an earlier section
// was cut off.
TEST(Damage, ACompleteDrawingWithoutItsEndCanBeChanged) {
    const std::string whole = sampleBytes().substr(0, sampleBytes().rfind("  0\nEOF"));
    for (const std::string& bytes : {whole, whole.substr(0, whole.size() - 1), whole + "\n \n"}) {
        const auto database = OdDbDatabase::readBytes(bytes, L"plan.dxf");
        EXPECT_FALSE(database->isReadOnly());
        ASSERT_EQ(database->warnings().size(), 1u);
        EXPECT_NE(database->warnings()[0].text.find("without its end-of-file record"), std::string::npos);
        EXPECT_EQ(database->writeBytes(), bytes);
        database->startUndoRecord();
        objectOf(database, 0x65).openAs<OdDbCircle>(OdDb::forWrite)->setRadius(3);
        const auto again = OdDbDatabase::readBytes(database->writeBytes(), L"again.dxf");
        EXPECT_EQ(objectOf(again, 0x65).openAs<OdDbCircle>()->radius(), 3);
        database->undoLastRecord();
        EXPECT_EQ(database->writeBytes(), bytes);
    }
    const std::string earlier = whole.substr(0, whole.find("ENDSEC", whole.find("ENTITIES")) + 7);
    EXPECT_TRUE(OdDbDatabase::readBytes(earlier, L"cut.dxf")->isReadOnly());
}

// Each further section of entities goes on with the first.
TEST(Damage, SeveralSectionsOfEntitiesAreOne) {
    const std::string between = "  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n";
    std::string bytes = sampleBytes();
    for (const char* place : {"  0\nCIRCLE\n  5\n65\n", "  0\nLWPOLYLINE\n  5\n66\n", "  0\nVIEWPORT\n  5\n71\n"})
        bytes.insert(bytes.find(place), between);
    bytes.insert(bytes.find("  0\nCIRCLE\n  5\n65\n"), between + between);
    const auto entitiesOf = [](OdDbObjectId space) {
        std::vector<std::uint64_t> handles;
        for (const auto id : space.openAs<OdDbBlockTableRecord>()->entities()) {
            EXPECT_EQ(id.containerId(), space);
            EXPECT_TRUE(id.openIf<OdDbEntity>());
            handles.push_back(id.handle().value());
        }
        return handles;
    };
    const auto single = sample();
    const auto database = OdDbDatabase::readBytes(bytes, L"plan.dxf");
    EXPECT_TRUE(database->warnings().empty());
    auto model = entitiesOf(single->modelSpaceId()), paper = entitiesOf(single->paperSpaceId());
    EXPECT_EQ(entitiesOf(database->modelSpaceId()), model);
    EXPECT_EQ(entitiesOf(database->paperSpaceId()), paper);
    database->touchEverything();
    EXPECT_EQ(database->writeBytes(), bytes);

    database->setUndoMark();
    const auto line = OdDbLine::createObject();
    database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(line.get());
    objectOf(database, 0x65).openAs<OdDbCircle>(OdDb::forWrite)->setRadius(3);
    model.push_back(line->handle().value());
    const auto again = OdDbDatabase::readBytes(database->writeBytes(), L"again.dxf");
    EXPECT_EQ(entitiesOf(again->modelSpaceId()), model) << "what is new comes last, also when it is read again";
    EXPECT_EQ(objectOf(again, 0x65).openAs<OdDbCircle>()->radius(), 3);
    database->undoBack();
    EXPECT_EQ(database->writeBytes(), bytes);
}

TEST(Damage, BlocksThatContainEachOtherEnd) {
    std::string bytes = sampleBytes();
    // DOOR gets a reference of FRAME, which holds one of DOOR.
    const std::size_t line = bytes.find("  0\nLINE\n  5\n34");
    bytes.insert(line,
                 "  0\nINSERT\n  5\nF0\n330\n30\n100\nAcDbEntity\n  8\n0\n100\nAcDbBlockReference\n  2\nFRAME\n "
                 "10\n0.0\n 20\n0.0\n 30\n0.0\n");
    const auto database = OdDbDatabase::readBytes(bytes, L"cycle.dxf");
    OdGeExtents3d extents;
    EXPECT_TRUE(objectOf(database, 0x50).openAs<OdDbBlockReference>()->geomExtents(extents));
}

}  // namespace
