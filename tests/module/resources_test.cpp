// The texts that the module carries, where a careless hand or tool would change them.
#include "base/resources.h"

#include <gtest/gtest.h>

#include "base/modules.h"
#include "torvelcmd2/resources/resource.h"

namespace {

TEST(Resources, OddTextsStandAsTheyAre) {
    const base::ModuleReference module = base::loadModule(base::libraryFileName(L"torvelcmd2"));
    ASSERT_NE(module, nullptr);
    const std::pair<unsigned, const wchar_t*> texts[] = {
        {2400, L"Specify through point"},
        {2407, L"That object  is not a block"},
        {2424, L"That object is not a block."},
        {2432, L"Undo _ Undo"},
        {2456, L"Value of 'Tag' can't containt spaces."},
        {2473, L"Specify offset distance [%s] "},
        {2601, L"? Name Select"},
        {2606, L"Block table contains no attributed block named %1%."},
        {2611, L"ATTSYNC block %1%? [%%s] <Yes>"},
        {IDS_ATTSYNC_COMPLETE, L"ATTSYNC complete."},
        {2399, L""},
        {3303, L""},
    };
    for (const auto& [id, text] : texts) EXPECT_EQ(base::loadString(module.get(), id), text) << id;
}

}  // namespace
