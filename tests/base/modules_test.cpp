#include "base/modules.h"

#include <gtest/gtest.h>

#include "base/paths.h"

// Looked up by name below, so that the program exports it.
extern "C" int exportedByProgram() { return 7; }

namespace {

const std::wstring kModule = base::libraryFileName(L"base_test_module");
const std::wstring kDependency = base::libraryFileName(L"base_test_dependency");

TEST(Modules, LookingForAModuleTakesNoReference) {
    EXPECT_EQ(base::findLoadedModule(kModule), nullptr);
    {
        const base::ModuleReference module = base::loadModule(kModule);
        ASSERT_NE(module, nullptr);
        for (int i = 0; i < 3; ++i) EXPECT_EQ(base::findLoadedModule(kModule), module.get());
        EXPECT_EQ(base::fileNameOf(base::moduleFileName(module.get())), kModule);
        EXPECT_EQ(base::findLoadedModule(base::moduleFileName(module.get())), module.get());
    }
    EXPECT_EQ(base::findLoadedModule(kModule), nullptr);
    EXPECT_EQ(base::findLoadedModule(L""), nullptr);
}

TEST(Modules, ASymbolCountsOnlyInTheModuleThatHoldsIt) {
    const base::ModuleReference module = base::loadModule(kModule);
    ASSERT_NE(module, nullptr);
    const auto own = base::findFunction<int()>(module.get(), "exportedByModule");
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(own(), 42);
    EXPECT_EQ(base::moduleOf(reinterpret_cast<const void*>(own)), module.get());
    EXPECT_EQ(base::findFunction<void*()>(module.get(), "moduleThatAnswers")(), module.get());

    EXPECT_EQ(base::findSymbol(module.get(), "exportedByDependency"), nullptr);
    EXPECT_EQ(base::findSymbol(module.get(), "notListed"), nullptr);
    EXPECT_EQ(base::findSymbol(nullptr, "exportedByModule"), nullptr);

    const base::ModuleHandle dependency = base::findLoadedModule(kDependency);
    ASSERT_NE(dependency, nullptr);
    EXPECT_NE(base::findSymbol(dependency, "exportedByDependency"), nullptr);
}

TEST(Modules, TheProgramIsAModuleToo) {
    const base::ModuleHandle program = base::processImage();
    ASSERT_NE(program, nullptr);
    EXPECT_EQ(base::moduleOf(reinterpret_cast<const void*>(&exportedByProgram)), program);
    EXPECT_EQ(base::findLoadedModule(base::fileNameOf(base::moduleFileName(program))), program);
    const auto own = base::findFunction<int()>(program, "exportedByProgram");
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(own(), 7);
    const int onTheStack = 0;
    EXPECT_EQ(base::moduleOf(&onTheStack), nullptr);
    EXPECT_EQ(base::moduleOf(nullptr), nullptr);
}

TEST(Modules, WhatCannotBeLoadedSaysWhy) {
    std::wstring reason;
    EXPECT_EQ(base::loadModule(L"no_such_module", &reason), nullptr);
    EXPECT_FALSE(reason.empty());
}

}  // namespace
