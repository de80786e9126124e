// What of the command template cannot be seen from outside the module.
#include "torvelcmd2/frame/command.h"

#include <gtest/gtest.h>

namespace {

class UnaffordableCmd : public torvel::CCSUnknownImpl<ICmdProcess> {
  public:
    CMD_RUNSTATUS run() override { return setRunStatus(kCommandFinished); }
    static void* operator new(std::size_t, const std::nothrow_t&) noexcept { return nullptr; }
    static void operator delete(void*) {}
};

TEST(CreateCommand, WithoutMemoryGivesNullAndSucceeds) {
    ICmdProcess* command = reinterpret_cast<ICmdProcess*>(8);
    EXPECT_EQ(torvel::createCommand<UnaffordableCmd>(&command), 1);
    EXPECT_EQ(command, nullptr);
}

}  // namespace
