// Strings that are not translated, read without a host: as the system gives them.
#include <windows.h>

#include <gtest/gtest.h>
#include <string>

#include "base/resources.h"
#include "torvelcmd2/frame/resource_translation.h"

namespace {

TEST(ResourceTranslation, WithoutHostLibrariesStringsAreInTheAnsiCodePage) {
    const base::ModuleReference module = base::loadModule(base::libraryFileName(L"base_test_module"));
    ASSERT_NE(module, nullptr);
    const std::wstring wide = base::loadString(module.get(), 2404);
    char expected[64] = {}, text[64] = {};
    const int length = WideCharToMultiByte(CP_ACP, 0, wide.data(), static_cast<int>(wide.size()), expected,
                                           sizeof expected, nullptr, nullptr);
    ASSERT_GT(length, 10);
    EXPECT_EQ(torvel::LoadStringNotTranslated(module.get(), 2404, text, sizeof text), length);
    EXPECT_STREQ(text, expected);
}

}  // namespace
