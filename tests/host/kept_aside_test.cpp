#include "torvelhost/session/kept_aside.h"

#include <filesystem>
#include <gtest/gtest.h>

#include "base/files.h"
#include "base/paths.h"
#include "base/temporary_folder.h"
#include "base/text.h"

namespace {

using host::DrawingHold;
using host::KeptAside;
using host::LeftCopy;

std::size_t filesIn(const std::wstring& folder) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(base::toPath(folder)))
        count += entry.is_regular_file();
    return count;
}

class KeptAsideTest : public testing::Test {
  protected:
    KeptAsideTest() { drawing_->writeFile(plan_); }

    const base::TemporaryFolder folder_;
    const std::wstring state_ = folder_ / L"state", plan_ = folder_ / L"plan \u00FC.dxf";
    const OdDbDatabasePtr drawing_ = OdDbDatabase::createNew();
};

TEST_F(KeptAsideTest, AnEndInOrderLeavesNothing) {
    {
        KeptAside window(state_);
        window.show(plan_);
        drawing_->setHeaderReal("$LTSCALE", 40, 7);
        window.keep(*drawing_);
        EXPECT_TRUE(window.hasCopy());
        EXPECT_EQ(filesIn(folder_.path()), 2u) << "beside the drawing";
        window.drop();
        EXPECT_EQ(filesIn(folder_.path()), 1u);
        window.keep(*drawing_);
    }
    EXPECT_EQ(filesIn(folder_.path()), 1u);
    EXPECT_EQ(filesIn(state_), 0u);
}

// What is left of a killed window: its files, which nobody holds any more.
TEST_F(KeptAsideTest, TheCopyOfAKilledWindowIsOffered) {
    const std::wstring copy = folder_ / L".plan.dxf.kept-1";
    {
        KeptAside window(state_);
        window.show(plan_);
        window.keep(*drawing_);
        EXPECT_TRUE(KeptAside(state_).takeLeft().empty()) << "the window lives";
    }
    drawing_->writeFile(copy);
    base::writeFile(state_ + base::pathSeparator() + L"1.window", base::toUtf8(plan_ + L"\n" + copy + L"\n"));
    {
        KeptAside second(state_);
        const std::vector<LeftCopy> left = second.takeLeft();
        ASSERT_EQ(left.size(), 1u);
        EXPECT_EQ(left[0].drawing, plan_);
        EXPECT_EQ(left[0].copy, copy);
        EXPECT_TRUE(KeptAside(state_).takeLeft().empty()) << "it is offered to one window at a time";
    }
    KeptAside third(state_);
    const std::vector<LeftCopy> left = third.takeLeft();
    ASSERT_EQ(left.size(), 1u) << "and again, as long as nobody dropped it";
    third.dropLeft(left[0]);
    EXPECT_FALSE(base::isFile(copy));
    EXPECT_TRUE(KeptAside(state_).takeLeft().empty());
}

TEST_F(KeptAsideTest, ACopyThatIsGoneIsNotOffered) {
    std::filesystem::create_directories(base::toPath(state_));
    base::writeFile(state_ + base::pathSeparator() + L"7.window", base::toUtf8(plan_ + L"\n" + plan_ + L"x\n"));
    KeptAside window(state_);
    EXPECT_TRUE(window.takeLeft().empty());
    EXPECT_EQ(filesIn(state_), 1u) << "its own record alone";
}

TEST_F(KeptAsideTest, NewDrawingsAndThoseInFoldersThatAreGoneAreKeptInTheStateFolder) {
    KeptAside window(state_);
    window.show(L"");
    window.keep(*drawing_);
    EXPECT_EQ(filesIn(state_), 2u);
    window.show(folder_ / L"gone/plan.dxf");
    EXPECT_EQ(filesIn(state_), 1u) << "the copy of the drawing before is gone";
    window.keep(*drawing_);
    EXPECT_EQ(filesIn(state_), 2u);
}

TEST_F(KeptAsideTest, ADrawingIsOpenForChangesInOneWindow) {
    {
        const DrawingHold first(plan_);
        EXPECT_TRUE(first.isHeld());
        EXPECT_FALSE(DrawingHold(plan_).isHeld());
        EXPECT_TRUE(DrawingHold(folder_ / L"other.dxf").isHeld());
    }
    EXPECT_TRUE(DrawingHold(plan_).isHeld());
    EXPECT_TRUE(DrawingHold(folder_ / L"gone/plan.dxf").isHeld()) << "nobody can save there";
    EXPECT_EQ(filesIn(folder_.path()), 1u);
}

}  // namespace
