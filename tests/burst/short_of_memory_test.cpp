// Bursts with every allocation failing once. What is short of memory throws std::bad_alloc where it can be caught, and
// taking the changes back gives the drawing that there was.
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <new>

#include "base/files.h"
#include "base/text.h"
#include "drawingdb/block.h"
#include "drawingdb/block_reference.h"
#include "drawingdb/database.h"
#include "torvelcmd2/extract/burst/burst_reference.h"

namespace {

constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();
// Allocations that succeed before others fail, and how many fail then.
std::size_t g_succeeding = kNoLimit, g_failing = 0;
std::size_t g_used = 0;  // by the last burst

void* allocate(std::size_t size) {
    if (g_succeeding > 0) {
        if (g_succeeding != kNoLimit) --g_succeeding;
    } else if (g_failing > 0) {
        if (g_failing != kNoLimit) --g_failing;
        throw std::bad_alloc();
    }
    if (void* const memory = std::malloc(size > 0 ? size : 1)) return memory;
    throw std::bad_alloc();
}

}  // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
// Sorting asks for room that it can do without.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return allocate(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }

namespace {

// False when the memory did not suffice.
bool burstAll(OdDbDatabase& database, std::size_t succeeding, std::size_t failing) {
    g_succeeding = succeeding;
    g_failing = failing;
    bool whole = true;
    try {
        const auto model = database.modelSpaceId().openAs<OdDbBlockTableRecord>(OdDb::forWrite);
        torvel::ReferenceBurster burster;
        OdDbObjectIdArray all;
        for (const OdDbObjectId id : model->entities()) all.push_back(id);
        for (const OdDbObjectId id : all) {
            const auto reference = id.openIf<OdDbBlockReference>(OdDb::forWrite);
            if (reference && burster.burst(*reference, *model)) reference->erase();
        }
    } catch (const std::bad_alloc&) {
        whole = false;
    }
    g_used = succeeding - g_succeeding;
    g_succeeding = kNoLimit;
    if (!whole) return false;
    // What the destructors could not store is told here.
    try {
        database.undoPosition();
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

std::size_t countOf(OdDbDatabase& database) {
    std::size_t count = 0;
    for ([[maybe_unused]] const OdDbObjectId id : database.modelSpaceId().openAs<OdDbBlockTableRecord>()->entities())
        ++count;
    return count;
}

TEST(BurstShortOfMemory, ThrowsAndIsTakenBack) {
    const base::FileBuffer file = base::readFile(base::fromUtf8(TORVEL_SOURCE_DIR "/tests/burst/plan.dxf"));
    const OdDbDatabasePtr database = OdDbDatabase::readBytes(std::string(file.view()), L"plan.dxf");
    const std::string before = database->writeBytes();
    const std::size_t position = database->undoPosition();
    constexpr std::size_t kPlenty = 1'000'000;
    ASSERT_TRUE(burstAll(*database, kPlenty, 0));
    const std::size_t allocations = g_used, burst = countOf(*database);
    database->undoTo(position);

    // Some for a moment's shortage, and some for one that lasts.
    constexpr std::size_t kStep = 23;
    std::size_t failed = 0;
    for (const std::size_t failing : {std::size_t{1}, kNoLimit}) {
        for (std::size_t succeeding = failing % kStep; succeeding < allocations; succeeding += kStep) {
            const bool whole = burstAll(*database, succeeding, failing);
            if (whole) EXPECT_EQ(countOf(*database), burst) << "after " << succeeding << " allocations";
            failed += whole ? 0 : 1;
            database->undoTo(position);
            ASSERT_EQ(database->writeBytes(), before) << "after " << succeeding << " allocations";
        }
    }
    EXPECT_GT(failed, 0u);
}

}  // namespace
