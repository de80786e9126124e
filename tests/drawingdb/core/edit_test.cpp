// Erasing with all that is owned, identities exchanged, deep clones: and what the file says afterwards.
#include <gtest/gtest.h>

#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/curves.h"
#include "drawingdb/field.h"
#include "drawingdb/text.h"
#include "tests/drawingdb/sample.h"

namespace {

// Every handle that a record of the bytes has or names must be there; 0 names nothing. Gives those that are missing.
std::string dangling(const std::string& bytes) {
    std::vector<std::string> defined, named;
    std::size_t at = 0;
    const auto line = [&] {
        const std::size_t end = bytes.find('\n', at);
        std::string text = bytes.substr(at, end - at);
        at = end == std::string::npos ? bytes.size() : end + 1;
        return text;
    };
    std::string kind;
    bool first = false;
    while (at < bytes.size()) {
        const int code = std::atoi(line().c_str());
        const std::string value = line();
        if (code == 0) {
            kind = value;
            first = true;
            if (value == "EOF") break;
        } else if ((code == 5 || code == 105) && first && kind != "SECTION") {
            defined.push_back(value);
            first = false;
        } else if ((code >= 330 && code < 370) || code == 1005) {
            named.push_back(value);
        }
    }
    std::string missing;
    for (const auto& name : named)
        if (name != "0" && std::find(defined.begin(), defined.end(), name) == defined.end()) missing += name + " ";
    return missing;
}

TEST(Erase, TakesWhatIsOwnedAndWhatNamesIt) {
    ASSERT_EQ(dangling(sampleBytes()), "");
    const auto database = sample();
    objectOf(database, 0x50).openAs<OdDbBlockReference>(OdDb::forWrite)->erase();
    for (const std::uint64_t gone : {0x50, 0x51, 0x52, 0x90, 0x91, 0x92, 0x93, 0xB1, 0xB2}) {
        // Not everything under the dictionary's handle is an entry of it: what only names it as owner stays with its
        // owner.
        if (gone >= 0xB0) continue;
        EXPECT_TRUE(objectOf(database, gone).isErased()) << std::hex << gone;
    }
    objectOf(database, 0x72).openAs<OdDbLine>(OdDb::forWrite)->erase();    // a member of the group
    objectOf(database, 0x65).openAs<OdDbCircle>(OdDb::forWrite)->erase();  // and of the sort table
    const std::string saved = database->writeBytes();
    EXPECT_EQ(saved.find("\n331\n50\n"), std::string::npos);
    EXPECT_EQ(saved.find("\n331\n65\n"), std::string::npos);
    EXPECT_EQ(saved.find("\n340\n72\n"), std::string::npos);
    EXPECT_NE(saved.find("\n 90\n0\n100\nAcDbFieldList\n"), std::string::npos) << "the list of fields is empty";
}

TEST(Erase, FollowsAttributesInTheReferencesOwnGroups) {
    const auto database = sample();
    for (const std::uint64_t handle : {0x51, 0x52})
        objectOf(database, handle).openAs<OdDbAttribute>(OdDb::forWrite)->erase();
    std::string saved = database->writeBytes();
    EXPECT_EQ(saved.find("\n 66\n1\n"), std::string::npos);
    EXPECT_EQ(saved.find("SEQEND"), std::string::npos);
    EXPECT_EQ(OdDbDatabase::readBytes(saved, L"")->warnings().size(), 0u);

    // A reference that had no attributes gets a first one, with the flag and the end mark.
    const auto reference = objectOf(database, 0x5A).openAs<OdDbBlockReference>(OdDb::forWrite);
    const auto attribute = OdDbAttribute::createObject();
    reference->appendAttribute(attribute.get());
    attribute->setAttributeFromBlock(*objectOf(database, 0x36).openAs<OdDbAttributeDefinition>(),
                                     reference->blockTransform());
    saved = database->writeBytes();
    const auto again = OdDbDatabase::readBytes(saved, L"");
    std::size_t count = 0;
    for (const auto id : objectOf(again, 0x5A).openAs<OdDbBlockReference>()->attributes()) {
        EXPECT_EQ(id.openAs<OdDbAttribute>()->tag(), L"WIDTH");
        ++count;
    }
    EXPECT_EQ(count, 1u);
    EXPECT_NE(saved.find("\n 66\n1\n  2\nDOOR\n"), std::string::npos);
    EXPECT_EQ(dangling(saved), "");
    EXPECT_EQ(again->writeBytes(), saved);
}

TEST(Swap, ContentsChangePlaces) {
    const auto database = sample();
    const auto width = objectOf(database, 0x36).openAs<OdDbAttributeDefinition>(OdDb::forWrite);
    const auto maker = objectOf(database, 0x37).openAs<OdDbAttributeDefinition>(OdDb::forWrite);
    width->setXData({{1001, L"SURVEY", 0, 0, {}}, {1000, L"mine", 0, 0, {}}});
    width->swapIdWith(maker->objectId());
    EXPECT_EQ(width->handle().value(), 0x37u);
    EXPECT_EQ(width->tag(), L"WIDTH");
    std::vector<OdString> tags;
    for (const auto id : objectOf(database, 0x30).openAs<OdDbBlockTableRecord>()->entities())
        if (const auto definition = id.openIf<OdDbAttributeDefinition>()) tags.push_back(definition->tag());
    EXPECT_EQ(tags, (std::vector<OdString>{L"MAKER", L"WIDTH", L"NORM", L"NOTES"}));
    EXPECT_EQ(objectOf(database, 0x37).open()->xData(L"SURVEY").size(), 2u);
    EXPECT_TRUE(objectOf(database, 0x36).open()->xData().empty());
    width->swapIdWith(maker->objectId(), false, false);
    EXPECT_EQ(objectOf(database, 0x37).open()->xData(L"SURVEY").size(), 2u) << "left with the identity";
    EXPECT_EQ(objectOf(database, 0x36).openAs<OdDbAttributeDefinition>()->tag(), L"WIDTH");
}

TEST(DeepClone, BringsAttributesDictionariesAndFields) {
    const auto database = sample();
    OdDbIdMapping mapping;
    database->deepCloneObjects({objectOf(database, 0x50), objectOf(database, 0x66)}, database->paperSpaceId(), mapping);
    const auto copy = mapping.find(objectOf(database, 0x50)).openAs<OdDbBlockReference>();
    EXPECT_EQ(copy->blockId(), database->paperSpaceId());
    ASSERT_FALSE(copy->attributes().empty());
    EXPECT_EQ(mapping.pairs().front().source, objectOf(database, 0x50));
    EXPECT_TRUE(mapping.pairs().front().primary);
    const auto field = copy->getField(L"TEXT");
    ASSERT_TRUE(field);
    EXPECT_EQ(field->childCount(), 1u);
    EXPECT_NE(field->getChild(0)->objectId(), objectOf(database, 0x93));
    EXPECT_EQ(field->getChild(0)->objectId(), mapping.find(objectOf(database, 0x93)));
    const std::string saved = database->writeBytes();
    EXPECT_EQ(dangling(saved), "");
    EXPECT_EQ(OdDbDatabase::readBytes(saved, L"")->warnings().size(), 0u);
    EXPECT_EQ(objectOf(OdDbDatabase::readBytes(saved, L""), copy->handle().value())
                  .openAs<OdDbBlockReference>()
                  ->blockId()
                  .handle()
                  .value(),
              0x1Bu);
}

// From R13 on a block is nothing without its record.
TEST(Blocks, AreNotMadeWithoutATableOfThem) {
    std::string bytes = sampleBytes();
    const std::size_t table = bytes.find("  0\nTABLE\n  2\nBLOCK_RECORD");
    bytes.erase(table, bytes.find("  0\nENDTAB\n", table) + 11 - table);
    const auto database = OdDbDatabase::readBytes(bytes, L"plan.dxf");
    try {
        OdDbBlockTableRecord::addNew(*database, L"Made");
        FAIL() << "a block was made";
    } catch (const OdError& error) {
        EXPECT_NE(std::string(error.what()).find("no place for blocks. Remedy: read it with --recover"),
                  std::string::npos);
    }
    EXPECT_EQ(database->writeBytes(), bytes);
}

TEST(Blocks, AreMadeOfCopiesAndMadeAnew) {
    const auto database = sample();
    const std::string before = database->writeBytes();
    const std::size_t position = database->undoPosition();
    const OdDbObjectId reference = objectOf(database, 0x50), line = objectOf(database, 0x72);

    const OdDbObjectId made = OdDbBlockTableRecord::addNew(*database, L"Made");
    EXPECT_EQ(database->findBlock(L"MADE"), made);
    EXPECT_THROW(OdDbBlockTableRecord::addNew(*database, L"mADE"), OdError);
    {
        OdDbIdMapping copies;
        const auto record = made.openAs<OdDbBlockTableRecord>(OdDb::forWrite);
        record->redefine({reference, line}, copies);
        std::vector<OdDbObjectId> held;
        for (const OdDbObjectId id : record->entities()) held.push_back(id);
        EXPECT_EQ(held, (std::vector<OdDbObjectId>{copies.find(reference), copies.find(line)}));
        EXPECT_EQ(held[0].openAs<OdDbEntity>()->ownerId(), made);
    }
    EXPECT_EQ(dangling(database->writeBytes()), "");

    // What it is made of goes with the old definition, and references stay.
    const OdDbObjectId used = OdDbBlockReference::blockTableRecordOf(reference);
    {
        OdDbIdMapping copies;
        const auto record = used.openAs<OdDbBlockTableRecord>(OdDb::forWrite);
        ASSERT_TRUE(record->hasAttributeDefinitions());
        record->createExtensionDictionary();
        record->redefine({line}, copies);
        EXPECT_FALSE(record->hasAttributeDefinitions());
        EXPECT_TRUE(record->extensionDictionary().isNull());
        EXPECT_EQ(record->origin(), OdGePoint3d());
        EXPECT_EQ(record->blockReferenceIds(true).front(), reference);
    }
    // Extended data, of the reference and of its copy, may name what is gone.
    EXPECT_EQ(dangling(database->writeBytes()), "34 34 ");
    database->undoTo(position);
    EXPECT_EQ(database->writeBytes(), before);
}

TEST(Fields, StoredReplacedAndRemovedWithTheirDictionaries) {
    const auto database = sample();
    const auto text = objectOf(database, 0x60).openAs<OdDbText>(OdDb::forWrite);
    const OdString code = L"%<\\AcExpr 1+2 \\f \"%lu2%pr0\">% and %<\\AcExpr 2*3 \\f \"%lu2%pr0\">%";
    for (int round = 0; round < 2; ++round) {
        const auto field = OdDbField::createObject();
        text->setField(L"TEXT", field);
        field->setEvaluationOption(63);
        field->setFieldCode(code);
        EXPECT_TRUE(field->evaluate(63, database.get()));
        EXPECT_EQ(text->textString(), L"3 and 6");
    }
    std::string saved = database->writeBytes();
    EXPECT_EQ(dangling(saved), "");
    EXPECT_NE(saved.find("\n 90\n5\n330\n92\n330\n93\n"), std::string::npos) << "two old fields, a text with two";
    const auto again = OdDbDatabase::readBytes(saved, L"");
    EXPECT_EQ(objectOf(again, 0x60).openAs<OdDbText>()->getField(L"TEXT")->getFieldCode(1), code);
    text->setTextString(L"plain");
    EXPECT_FALSE(text->getField(L"TEXT"));
    EXPECT_TRUE(text->extensionDictionary().isNull());
    saved = database->writeBytes();
    EXPECT_EQ(dangling(saved), "");
    EXPECT_NE(saved.find("\n 90\n2\n330\n92\n330\n93\n"), std::string::npos);
}

}  // namespace
