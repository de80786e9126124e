// The synchronisation of one reference where it lies outside the current space, as a block manager calls it.
#include "torvelcmd2/attributes/sync_reference.h"

#include <gtest/gtest.h>
#include <vector>

#include "base/files.h"
#include "base/text.h"
#include "drawingdb/attribute.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/database.h"
#include "drawingdb/field.h"

namespace {

using Values = std::vector<std::pair<OdString, OdString>>;

OdString planName() { return base::fromUtf8(TORVEL_SOURCE_DIR) + L"/tests/attsync/plan.dxf"; }
OdDbDatabasePtr plan() { return OdDbDatabase::readFile(planName()); }

TEST(ReferenceSynchronizer, ServesAnySpaceAndBlock) {
    const OdDbDatabasePtr database = plan();
    const OdDbObjectId door = database->findBlock(L"DOOR");
    torvel::ReferenceSynchronizer synchronizer(door);
    synchronizer.synchronizeReferencesIn(database->findBlock(L"HOUSE"));
    const auto valuesOf = [&](std::uint64_t handle) {
        Values values;
        for (OdDbObjectId id : database->getObjectId(handle).openAs<OdDbBlockReference>()->attributes()) {
            const auto attribute = id.openAs<OdDbAttribute>();
            values.emplace_back(attribute->tag(), attribute->textString());
        }
        return values;
    };
    EXPECT_EQ(valuesOf(0x5C), (Values{{L"SIZE", L"80x200"},
                                      {L"TAG", L"N1"},
                                      {L"TAG", L"E?"},
                                      {L"NOTE", L"none"},
                                      {L"color", L"white"},
                                      {L"COST", L"0"}}));
    EXPECT_EQ(valuesOf(0xC0), (Values{{L"TAG", L"P1"}, {L"OLD", L"paper"}})) << "not asked for";

    const auto reference = database->getObjectId(0xC0).openAs<OdDbBlockReference>();
    synchronizer.synchronize(*reference);
    EXPECT_FALSE(reference->isWriteEnabled());
    EXPECT_EQ(valuesOf(0xC0)[1], (Values::value_type{L"TAG", L"P1"}));
    EXPECT_EQ(valuesOf(0xC0).size(), 6u);
}

// A definition's default that is a field goes on being one: each new attribute gets a field of its own. An old value
// is kept as it is, also one that has none.
TEST(ReferenceSynchronizer, NewAttributesOfFieldsHaveFieldsOfTheirOwn) {
    const OdDbDatabasePtr database = plan();
    const OdDbObjectId door = database->findBlock(L"DOOR");
    OdDbObjectId defaultField;
    for (OdDbObjectId id : door.openAs<OdDbBlockTableRecord>()->entities()) {
        const auto definition = id.openIf<OdDbAttributeDefinition>();
        if (!definition || (definition->tag() != L"COST" && definition->tag() != L"TAG")) continue;
        definition->upgradeOpen();
        const OdDbFieldPtr field = OdDbField::createObject();
        defaultField = definition->setField(L"TEXT", field);
        field->setFieldCode(L"about %<\\AcExpr 3+4 \\f \"%lu2%pr0\">%", OdDbField::kTextField);
    }
    torvel::ReferenceSynchronizer(door).synchronizeReferencesIn(database->findBlock(L"HOUSE"));
    const auto again = OdDbDatabase::readBytes(database->writeBytes(), L"again.dxf");
    EXPECT_TRUE(again->warnings().empty());
    // The first TAG takes over an old value; the second is as new as COST.
    std::vector<std::pair<OdString, bool>> withFields;
    for (OdDbObjectId id : again->getObjectId(0x5C).openAs<OdDbBlockReference>()->attributes()) {
        const auto attribute = id.openAs<OdDbAttribute>();
        const auto field = attribute->getField(L"TEXT");
        if (attribute->tag() == L"TAG" || attribute->tag() == L"COST")
            withFields.emplace_back(attribute->textString(), static_cast<bool>(field));
        if (field) EXPECT_NE(field->objectId().handle(), defaultField.handle());
    }
    EXPECT_EQ(withFields,
              (std::vector<std::pair<OdString, bool>>{{L"N1", false}, {L"about 7", true}, {L"about 7", true}}));
}

// A value of bytes that are no text is carried over as bytes.
TEST(ReferenceSynchronizer, ValuesKeepTheirBytes) {
    base::FileBuffer file = base::readFile(planName());
    std::string bytes(file.view());
    const std::string value = "N\xE4\xFF.";
    bytes.replace(bytes.find("\nN1\n") + 1, 2, value);
    const auto database = OdDbDatabase::readBytes(bytes, L"plan.dxf");
    torvel::ReferenceSynchronizer(database->findBlock(L"DOOR")).synchronizeReferencesIn(database->findBlock(L"HOUSE"));
    const std::string saved = database->writeBytes();
    EXPECT_NE(saved, bytes);
    EXPECT_NE(saved.find("\n" + value + "\n"), std::string::npos);
}

TEST(ReferenceSynchronizer, RefusesWhatIsNoBlock) {
    const OdDbDatabasePtr database = OdDbDatabase::createNew();
    EXPECT_THROW(torvel::ReferenceSynchronizer(database->layerTableId()), OdError_NotThatKindOfClass);
}

}  // namespace
