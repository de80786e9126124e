#include "torvelhost/window/safekeeping.h"

#include <filesystem>
#include <gtest/gtest.h>

#include "base/files.h"
#include "base/paths.h"
#include "base/temporary_folder.h"
#include "base/text.h"

namespace {

using host::Document;
using host::Safekeeping;

class SafekeepingTest : public testing::Test {
  protected:
    SafekeepingTest() { OdDbDatabase::createNew()->writeFile(plan_); }

    std::size_t copies() const {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(base::toPath(folder_.path())))
            count += base::fromPath(entry.path()).find(L".kept-") != std::wstring::npos;
        return count;
    }

    const base::TemporaryFolder folder_;
    const std::wstring state_ = folder_ / L"state", plan_ = folder_ / L"plan.dxf";
    host::Terminal terminal_{true};
    static constexpr std::int64_t kInterval = Safekeeping::kInterval;
};

TEST_F(SafekeepingTest, AChangedDrawingIsKeptUntilItIsSaved) {
    Safekeeping keeping(state_, terminal_);
    Document document(OdDbDatabase::readFile(plan_));
    keeping.show(plan_, document);
    keeping.work(plan_, document, 1000);
    EXPECT_FALSE(keeping.dueAt()) << "nothing to keep";

    const auto change = [&](double scale) { document.database()->setHeaderReal("$LTSCALE", 40, scale); };
    change(7);
    keeping.work(plan_, document, 2000);
    EXPECT_EQ(keeping.dueAt(), 2000 + kInterval);
    keeping.work(plan_, document, 1999 + kInterval);
    EXPECT_EQ(copies(), 0u);
    keeping.work(plan_, document, 2000 + kInterval);
    EXPECT_EQ(copies(), 1u);
    EXPECT_FALSE(keeping.dueAt()) << "it is kept as it is";
    change(8);
    keeping.work(plan_, document, 3000 + kInterval);
    EXPECT_EQ(keeping.dueAt(), 3000 + 2 * kInterval);

    document.save(plan_);
    keeping.work(plan_, document, 4000 + kInterval);
    EXPECT_EQ(copies(), 0u);
    EXPECT_FALSE(keeping.dueAt());
}

TEST_F(SafekeepingTest, OneWindowSavesADrawing) {
    Safekeeping first(state_, terminal_), second(state_, terminal_);
    Document ours(OdDbDatabase::readFile(plan_)), theirs(OdDbDatabase::readFile(plan_));
    first.show(plan_, ours);
    second.show(plan_, theirs);
    EXPECT_FALSE(ours.isFileProtected(plan_));
    ASSERT_TRUE(theirs.isFileProtected(plan_));
    ours.save(plan_);
    theirs.database()->setHeaderReal("$LTSCALE", 40, 7);
    EXPECT_THROW(theirs.save(plan_), base::FileError);
    const std::wstring copy = folder_ / L"copy.dxf";
    theirs.save(copy);
    second.work(copy, theirs, 1000);
    EXPECT_THROW(ours.save(copy), base::FileError) << "the first time too";
    EXPECT_FALSE(ours.isFileProtected(copy));
    first.work(copy, ours, 1000);
    EXPECT_TRUE(ours.isFileProtected(copy)) << "now that is the second window's";
    EXPECT_THROW(ours.save(copy), base::FileError);
    ours.save(plan_);
}

// What another window has left stays until the drawing opened from it is kept by this one.
TEST_F(SafekeepingTest, AnOpenedCopyIsReplacedByItsOwn) {
    const std::wstring copy = folder_ / L".plan.dxf.kept-x";
    std::filesystem::create_directories(base::toPath(state_));
    std::filesystem::copy(base::toPath(plan_), base::toPath(copy));
    base::writeFile(base::joinPath(state_, L"1.window"), base::toUtf8(plan_ + L"\n" + copy + L"\n"));
    Safekeeping keeping(state_, terminal_);
    const std::vector<host::LeftCopy> left = keeping.takeLeft();
    ASSERT_EQ(left.size(), 1u);
    keeping.adopt(left[0]);
    Document document(OdDbDatabase::readFile(copy));
    document.markUnsaved();
    keeping.show(plan_, document);
    EXPECT_TRUE(base::isFile(copy));
    keeping.work(plan_, document, 5);
    EXPECT_FALSE(base::isFile(copy));
    EXPECT_EQ(copies(), 1u);
}

// A window that ends by an error has not asked for its changes.
TEST_F(SafekeepingTest, AWindowThatFailsLeavesItsChanges) {
    for (const bool isModified : {true, false}) {
        {
            Safekeeping keeping(state_, terminal_);
            Document document(OdDbDatabase::readFile(plan_));
            keeping.show(plan_, document);
            if (isModified) document.database()->setHeaderReal("$LTSCALE", 40, 7);
            EXPECT_EQ(keeping.leave(document), isModified);
        }
        EXPECT_EQ(copies(), isModified ? 1u : 0u);
        Safekeeping next(state_, terminal_);
        const std::vector<host::LeftCopy> left = next.takeLeft();
        ASSERT_EQ(left.size(), copies());
        if (!isModified) continue;
        EXPECT_EQ(OdDbDatabase::readFile(left[0].copy)->headerReal("$LTSCALE", 1), 7);
        next.dropLeft(left[0]);
    }
}

}  // namespace
