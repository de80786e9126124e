// What the attribute dialogs share: tags, scratch groups, which blocks and references have attributes.
#include <gtest/gtest.h>

#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/database.h"
#include "drawingdb/layer.h"
#include "drawingdb/mtext.h"
#include "torvelcmd2/attributes/attributed_blocks.h"
#include "torvelcmd2/attributes/multiline_editing.h"
#include "torvelcmd2/attributes/tag_rules.h"

using namespace torvel;

namespace {

OdDbDatabasePtr drawing(const char* name) {
    return OdDbDatabase::readFile(base::fromUtf8(TORVEL_SOURCE_DIR) + L"/tests/" + base::fromUtf8(name));
}

}  // namespace

TEST(TagRules, DifferInWordsAndBlanks) {
    static constexpr struct {
        const wchar_t* tag;
        unsigned definition, redefinition, manager;
    } kCases[] = {
        {L"", IDS_TAG_IS_EMPTY, IDS_TAG_IS_NULL_OR_HAS_SPACES, IDS_TAG_MUST_BE_PROVIDED},
        {L" A", IDS_TAG_HAS_SPACES, IDS_TAG_IS_NULL_OR_HAS_SPACES, IDS_TAG_CAN_NOT_INCLUDE_SPACES},
        {L"A B", IDS_TAG_HAS_SPACES, IDS_TAG_IS_NULL_OR_HAS_SPACES, IDS_TAG_CAN_NOT_INCLUDE_SPACES},
        {L"A\tB", 0, IDS_TAG_IS_NULL_OR_HAS_SPACES, 0},
        {L"A\u00A0B", 0, 0, 0},
    };
    for (const auto& [tag, definition, redefinition, manager] : kCases) {
        EXPECT_EQ(tagRefusal(kDefinitionTagRule, tag), definition) << base::toUtf8(tag);
        EXPECT_EQ(tagRefusal(kRedefinitionTagRule, tag), redefinition) << base::toUtf8(tag);
        EXPECT_EQ(tagRefusal(kManagerTagRule, tag), manager) << base::toUtf8(tag);
    }
}

TEST(ScratchGroup, LeavesNoByteOfATemporaryTextWithFields) {
    const OdDbDatabasePtr database = drawing("attsync/fields.dxf");
    const std::string before = database->writeBytes();
    std::size_t tried = 0;
    for (OdDbObjectId id : database->modelSpaceId().openAs<OdDbBlockTableRecord>()->entities()) {
        const auto reference = id.openIf<OdDbBlockReference>();
        if (!reference) continue;
        for (OdDbObjectId attributeId : reference->attributes()) {
            const auto attribute = attributeId.openAs<OdDbAttribute>();
            CapturedText value;
            {
                const ScratchEditing editing(*attribute, WhileEdited::kHidden);
                EXPECT_TRUE(attribute->isInvisibleEntity());
                const auto text = OdDbMText::createObject();
                database->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(text.get());
                applyText(captureText(*attribute), *text);
                value = captureText(*text);
            }
            EXPECT_FALSE(attribute->isInvisibleEntity());
            EXPECT_TRUE(sameText(value, captureText(*attribute)));
            tried += value.hasField;
        }
    }
    EXPECT_GT(tried, 0u);
    EXPECT_EQ(database->undoGroupDepth(), 0);
    EXPECT_EQ(database->writeBytes(), before);
}

TEST(ScratchGroup, TakesBackGroupsLeftOpenWithinIt) {
    const OdDbDatabasePtr database = OdDbDatabase::createNew();
    const std::string before = database->writeBytes();
    database->blockUndoRecording(true);
    {
        const ScratchGroup group(database);
        database->setHeaderReal("$TEXTSIZE", 40, 7);
        database->blockUndoRecording(true);
        database->setHeaderReal("$LTSCALE", 40, 7);
    }
    EXPECT_EQ(database->undoGroupDepth(), 1);
    database->blockUndoRecording(false);
    EXPECT_EQ(database->writeBytes(), before);
}

TEST(AttributedBlocks, ByTheirDefinitions) {
    const OdDbDatabasePtr database = drawing("attsync/constants.dxf");
    EXPECT_FALSE(attributedBlocks(*database, Definitions::kAny).empty());
    EXPECT_TRUE(attributedBlocks(*database, Definitions::kNotConstant).empty());

    const OdDbDatabasePtr plan = drawing("attsync/plan.dxf");
    OdDbObjectId reference, line;
    for (OdDbObjectId id : plan->modelSpaceId().openAs<OdDbBlockTableRecord>()->entities()) {
        const auto candidate = id.openIf<OdDbBlockReference>();
        if (candidate && candidate->blockName() == L"DOOR") reference = id;
        if (!candidate) line = id;
    }
    EXPECT_TRUE(blockHasAttributes(reference, true));
    EXPECT_FALSE(blockHasAttributes(line, false));
    EXPECT_THROW(blockHasAttributes(plan->layerTableId(), false), OdError_NotThatKindOfClass);

    const auto opened = reference.openAs<OdDbBlockReference>();
    const OdDbObjectIdArray editable = editableAttributes(*opened);
    ASSERT_FALSE(editable.empty());
    const OdDbObjectId first = editable.front();
    first.openAs<OdDbAttribute>(OdDb::forWrite)->setConstant(true);
    EXPECT_EQ(editableAttributes(*opened).size(), editable.size() - 1);

    // An attribute is kept from editing by its own layer, and by that of its reference.
    EXPECT_EQ(lockedLayerOf(first), L"");
    const OdString layer = opened->layer();
    opened->layerId().openAs<OdDbLayerTableRecord>(OdDb::forWrite)->setIsLocked(true);
    EXPECT_EQ(lockedLayerOf(first), layer);
    EXPECT_EQ(lockedLayerOf(reference), layer);
}
