#include "base/resources.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

base::ResourceBytes asBytes(const std::string& text) { return std::as_bytes(std::span(text.data(), text.size())); }

std::string asText(base::ResourceBytes bytes) { return {reinterpret_cast<const char*>(bytes.data()), bytes.size()}; }

class Resources : public testing::Test {
  protected:
    const base::ModuleReference module_ = base::loadModule(base::libraryFileName(L"base_test_module"));
};

TEST_F(Resources, StringsByNumber) {
    ASSERT_NE(module_, nullptr);
    const auto string = [&](unsigned id) { return base::loadString(module_.get(), id); };
    EXPECT_EQ(string(2403), L"Hor Ver Ang Bisect Offset");
    EXPECT_EQ(string(2404), L"Gr\u00F6\u00DFe \u201E\u03A9\u201C \u4E2D \u2013 done\n");
    EXPECT_EQ(string(2416), L"");
    EXPECT_EQ(string(2417), L"first of the next block");
    EXPECT_EQ(string(65535), L"last");
    for (unsigned id : {0u, 2402u, 2405u, 3303u, 65534u}) EXPECT_EQ(string(id), L"") << id;
    EXPECT_EQ(base::loadString(nullptr, 2403), L"");
}

TEST_F(Resources, EachModuleHasItsOwn) {
    ASSERT_NE(module_, nullptr);
    EXPECT_EQ(base::loadString(base::processImage(), 2403), L"the program's own");
    EXPECT_EQ(base::loadString(base::processImage(), 2417), L"");
    const auto length = base::findFunction<unsigned(void*, unsigned)>(module_.get(), "lengthOfString");
    EXPECT_EQ(length(module_.get(), 2403), 25u);
    EXPECT_EQ(length(base::processImage(), 2403), 17u);
    EXPECT_EQ(length(base::findLoadedModule(base::libraryFileName(L"base_test_dependency")), 2403), 0u);
}

TEST_F(Resources, DialogsAndRawData) {
    ASSERT_NE(module_, nullptr);
    const base::ResourceBytes dialog = base::findResource(module_.get(), base::kDialogResource, 101);
    ASSERT_GT(dialog.size(), 26u);
    // An extended template begins with its version 1 and the mark 0xFFFF.
    EXPECT_EQ(asText(dialog.first(4)), std::string("\x01\x00\xFF\xFF", 4));
    EXPECT_EQ(asText(base::findResource(module_.get(), base::kRawDataResource, L"settings")),
              std::string("raw\0bytes", 9));
    EXPECT_TRUE(base::findResource(module_.get(), base::kDialogResource, 102).empty());
    EXPECT_TRUE(base::findResource(module_.get(), L"DIALOG", 101).empty());
    EXPECT_TRUE(base::findResource(nullptr, base::kDialogResource, 101).empty());
}

// One entry with type 10 and name 1, its data and its padding.
std::string entry(std::string data) {
    std::string bytes;
    const auto u32 = [&](std::uint32_t n) {
        for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(n >> shift);
    };
    u32(static_cast<std::uint32_t>(data.size()));
    u32(32);
    u32(0x000AFFFF);
    u32(0x0001FFFF);
    for (int i = 0; i < 4; ++i) u32(0);
    bytes += data;
    bytes.resize((bytes.size() + 3) / 4 * 4);
    return bytes;
}

TEST(CompiledResources, DamageEndsTheSearch) {
    const std::string whole = entry("first") + entry("second");
    EXPECT_EQ(asText(base::findCompiledResource(asBytes(whole), 10, 1)), "first");
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        // In a buffer of just that size, where the sanitizer sees every byte too far.
        const std::string cut(whole, 0, size);
        const base::ResourceBytes found = base::findCompiledResource(asBytes(cut), 10, 1);
        EXPECT_EQ(asText(found), size >= 37 ? "first" : "") << size;
        EXPECT_TRUE(base::findCompiledResource(asBytes(cut), 10, 2).empty()) << size;
    }
    for (std::size_t at = 0; at < 8; ++at) {
        std::string damaged = whole;
        damaged[at] = '\xFF';
        base::findCompiledResource(asBytes(damaged), 10, 2);
    }
    std::string endlessName = whole;
    std::memset(endlessName.data() + 8, 'x', endlessName.size() - 8);
    EXPECT_TRUE(base::findCompiledResource(asBytes(endlessName), L"xx", 1).empty());
}

TEST(CompiledResources, StringTablesCutShort) {
    const std::string table("\x02\0a\0b\0\x05\0c\0", 10);
    EXPECT_EQ(base::stringInTable(asBytes(table), 0), L"ab");
    EXPECT_EQ(base::stringInTable(asBytes(table), 1), L"");
    EXPECT_EQ(base::stringInTable(asBytes(table), 2), L"");
    EXPECT_EQ(base::stringInTable({}, 0), L"");
    EXPECT_EQ(base::fromUtf16Bytes(asBytes(std::string("\x3D\xD8\x00\xDEx", 5))), L"\U0001F600");
}

}  // namespace
