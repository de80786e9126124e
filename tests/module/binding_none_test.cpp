// A program that exports none of the host's names.
#include "base/resources.h"
#include "binding_fixture.h"
#include "torvelcmd2/frame/module_instance.h"
#include "torvelcmd2/frame/resource_translation.h"

namespace {

TEST(ProgramThatExportsNothing, WithoutHostModules) {
    EXPECT_EQ(torvel::GetHostMainModule(), nullptr);
    EXPECT_EQ(torvel::GetHostFunction(2), nullptr);
    EXPECT_EQ(torvel::hostApplication(), nullptr);
    EXPECT_FALSE(factoryFound());
}

TEST(ProgramThatExportsNothing, TheModuleLoadsWithoutAHost) {
    const base::ModuleReference module = base::loadModule(base::libraryFileName(L"torvelcmd2"));
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(base::findSymbol(module.get(), "_CSAfxDllMain"), nullptr);
}

TEST(ProgramThatExportsNothing, UsesTheViewModuleBeforeTheBridge) {
    const FakeLibrary view = loadView();
    const FakeLibrary other = loadOther();
    const FakeLibrary bridge = loadBridge(other.handle());
    EXPECT_EQ(torvel::GetHostMainModule(), view.handle());
    EXPECT_NE(torvel::GetHostFunction(12), nullptr);
    EXPECT_EQ(view.state().functionId, 12);
    EXPECT_TRUE(factoryFound());
    EXPECT_EQ(view.state().factories, 1);
    EXPECT_EQ(other.state().factories, 0);
}

TEST(ProgramThatExportsNothing, UsesTheBridgeWithoutTheViewModule) {
    const FakeLibrary other = loadOther();
    const FakeLibrary bridge = loadBridge(other.handle());
    EXPECT_EQ(torvel::GetHostMainModule(), other.handle());
    EXPECT_NE(torvel::GetHostFunction(17), nullptr);
    EXPECT_EQ(other.state().functionId, 17);
    EXPECT_TRUE(factoryFound());
    EXPECT_EQ(other.state().factories, 1);
}

TEST(ProgramThatExportsNothing, AViewModuleWithoutFunctionsIsNotSteppedOver) {
    const FakeLibrary view = loadViewWithoutFunctions();
    const FakeLibrary other = loadOther();
    const FakeLibrary bridge = loadBridge(other.handle());
    EXPECT_EQ(torvel::GetHostMainModule(), view.handle());
    EXPECT_EQ(torvel::GetHostFunction(2), nullptr);
    EXPECT_FALSE(factoryFound());
}

TEST(ProgramThatExportsNothing, KeepsNothingFromOneLookupToTheNext) {
    {
        const FakeLibrary view = loadView();
        EXPECT_TRUE(factoryFound());
        EXPECT_NE(torvel::GetHostFunction(2), nullptr);
    }
    EXPECT_FALSE(factoryFound());
    EXPECT_EQ(torvel::GetHostFunction(2), nullptr);
    const FakeLibrary view = loadView();
    EXPECT_EQ(torvel::GetHostMainModule(), view.handle());
}

TEST(ModuleInstance, IsKnownWithoutTheAttachStep) {
    EXPECT_EQ(torvel::GetModuleResourceHandle(), base::processImage());
}

// ---- resource translation

int someObject = 0;
void* const someModule = &someObject;

TEST(ResourceTranslation, WithoutHostLibraries) {
    EXPECT_EQ(torvel::InitResourceTranslation(someModule), 0);
    EXPECT_EQ(torvel::DeInitResourceTranslation(someModule), 0);
    const base::ModuleReference module = base::loadModule(base::libraryFileName(L"torvelcmd2"));
    char text[64] = "?";
    EXPECT_EQ(torvel::LoadStringNotTranslated(module.get(), 2612, text, sizeof text), 6);
    EXPECT_STREQ(text, "Yes No");
    EXPECT_EQ(torvel::LoadStringNotTranslated(module.get(), 2612, text, 4), 3);
    EXPECT_STREQ(text, "Yes");
    EXPECT_EQ(torvel::LoadStringNotTranslated(module.get(), 3303, text, sizeof text), 0);
    EXPECT_STREQ(text, "");
}

TEST(ResourceTranslation, PrefersTheCoreLibrary) {
    const FakeLibrary resources(L"translation", hostapi::kResourceLibrary);
    char text[64];
    EXPECT_EQ(torvel::InitResourceTranslation(someModule), 5);
    EXPECT_EQ(resources.state().translatedModule, someModule);
    EXPECT_EQ(torvel::LoadStringNotTranslated(someModule, 77, text, sizeof text), 77);
    EXPECT_STREQ(text, "untranslated");

    resources.state() = {};
    const FakeLibrary core(L"translation", hostapi::kCoreLibrary);
    EXPECT_EQ(torvel::InitResourceTranslation(someModule), 5);
    EXPECT_EQ(torvel::DeInitResourceTranslation(someModule), 6);
    EXPECT_EQ(core.state().translatedModule, someModule);
    EXPECT_EQ(core.state().translationsEnded, 1);
    EXPECT_EQ(resources.state().translatedModule, nullptr);
}

TEST(ResourceTranslation, ACoreLibraryWithoutTheFunctionsIsNotSteppedOver) {
    const FakeLibrary core(L"empty", hostapi::kCoreLibrary);
    const FakeLibrary resources(L"translation", hostapi::kResourceLibrary);
    EXPECT_EQ(torvel::InitResourceTranslation(someModule), 0);
    EXPECT_EQ(resources.state().translatedModule, nullptr);
}

// ---- loading and unloading

TEST(HookedModule, HearsOfLoadingAfterTheRegistrationsAndOfUnloading) {
    const FakeLibrary core(L"translation", hostapi::kCoreLibrary);
    std::string log;
    base::ModuleReference module = base::loadModule(base::libraryFileName(L"hooked_module"));
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(core.state().translatedModule, module.get());
    using LogFunction = void(std::string*);
    auto* const moveLog = base::findFunction<LogFunction>(module.get(), "moveHookLog");
    ASSERT_NE(moveLog, nullptr);
    moveLog(&log);
    EXPECT_EQ(log, "[registered][attach]");
    module.reset();
    EXPECT_EQ(log, "[registered][attach][detach]");
    EXPECT_EQ(core.state().translationsEnded, 0);
}

}  // namespace
