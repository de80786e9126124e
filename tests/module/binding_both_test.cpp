// A program that exports both the main module's handle and its name.
#include "binding_fixture.h"

namespace {
void* mainInstance = nullptr;
std::wstring mainName;
}  // namespace

extern "C" {
void* GetMainDllInstance() { return mainInstance; }
const wchar_t* GetMainDllNameW() { return mainName.c_str(); }
}

namespace {

TEST(ProgramThatExportsHandleAndName, FunctionsComeByHandleAndCommandsByName) {
    const FakeLibrary view = loadView();
    const FakeLibrary other = loadOther();
    mainInstance = other.handle();
    mainName = base::libraryFileName(hostapi::kViewModule);
    EXPECT_EQ(torvel::GetHostMainModule(), other.handle());
    EXPECT_NE(torvel::GetHostFunction(2), nullptr);
    EXPECT_EQ(other.state().functionId, 2);
    EXPECT_EQ(view.state().functionId, 0);
    EXPECT_TRUE(factoryFound());
    EXPECT_EQ(view.state().factories, 1);
    EXPECT_EQ(other.state().factories, 0);
}

TEST(ProgramThatExportsHandleAndName, WhatItSaysIsFinal) {
    const FakeLibrary view = loadView();
    const FakeLibrary bridge = loadBridge(view.handle());
    mainInstance = nullptr;
    mainName = base::libraryFileName(L"nosuchhost");
    EXPECT_EQ(torvel::GetHostMainModule(), nullptr);
    EXPECT_EQ(torvel::GetHostFunction(2), nullptr);
    EXPECT_FALSE(factoryFound());
    EXPECT_EQ(view.state().factories, 0);
}

}  // namespace
