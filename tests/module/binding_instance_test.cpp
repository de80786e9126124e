// A program that exports the main module's handle, but not its name.
#include "binding_fixture.h"

extern "C" void* GetMainDllInstance() { return base::processImage(); }

namespace {

TEST(ProgramThatExportsItsHandle, CommandsComeFromTheViewModule) {
    const FakeLibrary view = loadView();
    EXPECT_EQ(torvel::GetHostMainModule(), base::processImage());
    EXPECT_EQ(torvel::GetHostFunction(2), nullptr) << "the program exports no functions";
    EXPECT_EQ(view.state().functionId, 0);
    EXPECT_TRUE(factoryFound());
    EXPECT_EQ(view.state().factories, 1);
}

TEST(ProgramThatExportsItsHandle, CommandsComeThroughTheBridge) {
    const FakeLibrary other = loadOther();
    const FakeLibrary bridge = loadBridge(other.handle());
    EXPECT_TRUE(factoryFound());
    EXPECT_EQ(other.state().factories, 1);
}

TEST(ProgramThatExportsItsHandle, HasNoCommandsByItself) {
    EXPECT_FALSE(factoryFound());
    const FakeLibrary bridge = loadBridge(nullptr);
    EXPECT_FALSE(factoryFound());
}

}  // namespace
