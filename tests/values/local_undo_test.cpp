#include "torvelcmd2/attributes/values/local_undo.h"

#include <gtest/gtest.h>
#include <random>

#include "drawingdb/block.h"
#include "drawingdb/text.h"

namespace {

using torvel::HostLocalUndo;

class LocalUndo : public testing::Test {
  protected:
    LocalUndo() {
        text_ = OdDbText::createObject();
        text_->setTextString(L"0");
        database_->modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite)->appendOdDbEntity(text_.get());
    }
    void change(const OdString& to) {
        text_->upgradeOpen();
        text_->setTextString(to);
    }
    OdString text() const { return text_->textString(); }

    OdDbDatabasePtr database_ = OdDbDatabase::createNew();
    OdSmartPtr<OdDbText> text_;
};

TEST_F(LocalUndo, StepsGoBackOneByOne) {
    const std::string before = database_->writeBytes();
    HostLocalUndo undo(database_);
    EXPECT_FALSE(undo.undo()) << "nothing is recorded";
    EXPECT_EQ(undo.level(), 0);
    {
        const HostLocalUndo::step first(undo);
        change(L"1");
        const HostLocalUndo::step second(undo);
        change(L"2");
    }
    EXPECT_EQ(undo.level(), 2);
    EXPECT_TRUE(undo.undo());
    EXPECT_EQ(text(), L"1");
    EXPECT_TRUE(undo.undo());
    EXPECT_EQ(text(), L"0");
    EXPECT_FALSE(undo.undo());
    EXPECT_EQ(undo.level(), 0);
    EXPECT_EQ(database_->writeBytes(), before);
}

TEST_F(LocalUndo, WithoutADrawingThereIsNothingToUndo) {
    HostLocalUndo undo;
    undo.recordStep();
    EXPECT_FALSE(undo.undo());
}

TEST_F(LocalUndo, OpensAGroupOnlyWhereThereIsNone) {
    {
        const HostLocalUndo undo(database_);
        EXPECT_EQ(database_->undoGroupDepth(), 1);
    }
    EXPECT_EQ(database_->undoGroupDepth(), 0);
    database_->blockUndoRecording(true);
    {
        HostLocalUndo undo(database_);
        EXPECT_EQ(database_->undoGroupDepth(), 1);
        undo.recordStep();
        change(L"1");
    }
    EXPECT_EQ(database_->undoGroupDepth(), 1);
    database_->rollBackUndoGroup();
    EXPECT_EQ(text(), L"0") << "the group around it takes all back";
}

TEST_F(LocalUndo, AnInnerOneLeavesNothingBehindForTheOuterOneToStopAt) {
    for (const bool dropped : {true, false}) {
        SCOPED_TRACE(dropped);
        change(L"0");
        HostLocalUndo outer(database_);
        outer.recordStep();
        change(L"1");
        {
            HostLocalUndo inner(database_);
            inner.recordStep();
            change(L"2");
            inner.recordStep();
            change(L"3");
            if (dropped) inner.dropTo(0);
        }
        EXPECT_EQ(outer.level(), 1);
        EXPECT_TRUE(outer.undo());
        EXPECT_EQ(text(), L"0");
    }
}

TEST_F(LocalUndo, EachGoesBackToItsOwnRestorePoints) {
    HostLocalUndo one(database_);
    HostLocalUndo other(database_);
    one.recordStep();
    change(L"1");
    other.recordStep();
    change(L"2");
    one.recordStep();
    change(L"3");
    other.dropTo(0);
    EXPECT_TRUE(one.undo());
    EXPECT_EQ(text(), L"2");
    other.recordStep();
    change(L"4");
    EXPECT_TRUE(one.undo());
    EXPECT_EQ(text(), L"0");
    EXPECT_FALSE(other.undo()) << "gone with what the other has taken back";
    EXPECT_EQ(text(), L"0");
}

// Against a plain stack of texts: what undoing a level shows is what the text was when the level was recorded.
TEST_F(LocalUndo, DroppedStepsGoWithTheOneBelow) {
    std::mt19937 random(5);
    HostLocalUndo undo(database_);
    std::vector<OdString> stack;
    for (int i = 1; i <= 2000; ++i) {
        switch (random() % 4) {
            case 0:
            case 1:
                undo.recordStep();
                stack.push_back(text());
                change(std::to_wstring(i));
                break;
            case 2: {
                const bool undone = undo.undo();
                ASSERT_EQ(undone, !stack.empty());
                if (undone) {
                    ASSERT_EQ(text(), stack.back()) << "at " << i;
                    stack.pop_back();
                }
                break;
            }
            default: {
                const auto level = static_cast<std::int32_t>(random() % (stack.size() + 2));
                undo.dropTo(level);
                stack.resize(std::min(stack.size(), static_cast<std::size_t>(level)));
            }
        }
        ASSERT_EQ(undo.level(), static_cast<std::int32_t>(stack.size()));
    }
}

}  // namespace
