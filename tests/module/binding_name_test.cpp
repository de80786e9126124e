// A program that exports the main module's name, but not its handle.
#include "binding_fixture.h"

namespace {
std::wstring mainName;
}

extern "C" const wchar_t* GetMainDllNameW() { return mainName.c_str(); }

namespace {

TEST(ProgramThatExportsAName, FunctionsComeFromTheViewModuleOrThroughTheBridge) {
    const FakeLibrary other = loadOther();
    mainName = base::libraryFileName(L"otherhost");
    EXPECT_EQ(torvel::GetHostMainModule(), nullptr);
    EXPECT_TRUE(factoryFound());
    EXPECT_EQ(other.state().factories, 1);
    const FakeLibrary bridge = loadBridge(other.handle());
    EXPECT_EQ(torvel::GetHostMainModule(), other.handle());
    const FakeLibrary view = loadView();
    EXPECT_EQ(torvel::GetHostMainModule(), view.handle());
    EXPECT_TRUE(factoryFound());
    EXPECT_EQ(view.state().factories, 0);
}

TEST(ProgramThatExportsAName, ANamedModuleWithoutCommandsIsNotSteppedOver) {
    const FakeLibrary view = loadView();
    mainName = base::fileNameOf(base::moduleFileName(base::processImage()));
    EXPECT_FALSE(factoryFound());
}

}  // namespace
