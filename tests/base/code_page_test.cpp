#include "base/code_page.h"

#include <gtest/gtest.h>

#include "base/text.h"

namespace {

std::string encodeOrMark(const base::CodePage& page, std::wstring_view text) {
    return page.encode(
        text, [](char32_t, std::string& bytes) { bytes += '?'; });
}

TEST(CodePage, DecodesWhatDrawingsHold) {
    const struct {
        const char* page;
        const char* bytes;
        const wchar_t* text;
    } cases[] = {
        {"ANSI_1252", "T\xFCr \x80 \x95", L"T\u00FCr \u20AC \u2022"},
        {"ansi_1251", "\xC4\xE2\xE5\xF0\xFC", L"\u0414\u0432\u0435\u0440\u044C"},
        {"ANSI_1250", "\x9Cruba", L"\u015Bruba"},
        {"ANSI_1253", "\xC8\xFD\xF1\xE1", L"\u0398\u03CD\u03C1\u03B1"},
        {"ANSI_874", "\xBB\xC3\xD0\xB5\xD9", L"\u0E1B\u0E23\u0E30\u0E15\u0E39"},
        {"dos850", "T\x81r", L"T\u00FCr"},
        {"dos437", "\xF8", L"\u00B0"},
        {"DOS866", "\x84\xA2\xA5\xE0\xEC", L"\u0414\u0432\u0435\u0440\u044C"},
        {"ISO8859-1", "\xE9", L"\u00E9"},
        {"ANSI_932",
         "\x83h\x83"
         "A \xB1",
         L"\u30C9\u30A2 \uFF71"},
        {"ANSI_936", "\xC3\xC5", L"\u95E8"},
        {"ANSI_949", "\xB9\xAE", L"\uBB38"},
        {"ANSI_950", "\xAA\xF9", L"\u9580"},
        {"dos932", "\x95\x5C", L"\u8868"},  // a second byte that is a backslash by itself
    };
    for (const auto& c : cases) {
        const base::CodePage* page = base::CodePage::byName(c.page);
        ASSERT_NE(page, nullptr) << c.page;
        EXPECT_EQ(page->decode(c.bytes), c.text) << c.page;
        EXPECT_EQ(encodeOrMark(*page, c.text), c.bytes) << c.page;
    }
    EXPECT_EQ(base::CodePage::byName("ANSI_9999"), nullptr);
    EXPECT_EQ(base::CodePage::byName(""), nullptr);
    EXPECT_EQ(base::CodePage::byName("dos932"), base::CodePage::byName("ANSI_932"));
    EXPECT_EQ(base::CodePage::standard().name(), "ANSI_1252");
}

TEST(CodePage, EveryByteOfASingleBytePageComesBack) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
    for (const char* name :
         {"ANSI_874", "ANSI_1250", "ANSI_1251", "ANSI_1252", "ANSI_1253", "ANSI_1254", "ANSI_1255", "ANSI_1256",
          "ANSI_1257", "ANSI_1258", "dos437", "dos850", "dos852", "dos866", "mac-roman"}) {
        const base::CodePage* page = base::CodePage::byName(name);
        ASSERT_NE(page, nullptr) << name;
        EXPECT_EQ(encodeOrMark(*page, page->decode(all)), all) << name;
    }
}

TEST(CodePage, DoubleBytePagesReadBackWhatTheyWrite) {
    for (const char* name : {"ANSI_932", "ANSI_936", "ANSI_949", "ANSI_950"}) {
        const base::CodePage* page = base::CodePage::byName(name);
        ASSERT_NE(page, nullptr) << name;
        int held = 0;
        for (char32_t c = 1; c < 0x10000; ++c) {
            if (c == 0xD800) c = 0xE000;
            if (!page->holds(c)) continue;
            ++held;
            std::wstring text;
            base::appendCharacter(text, c);
            ASSERT_EQ(page->decode(encodeOrMark(*page, text)), text) << name << " " << static_cast<unsigned>(c);
        }
        EXPECT_GT(held, 7000) << name;
    }
    // Roman one is in two rows of the Japanese page, the small one in two others.
    const base::CodePage& japanese = *base::CodePage::byName("ANSI_932");
    EXPECT_EQ(encodeOrMark(japanese, L"\u2160\u2170"), "\x87\x54\xFA\x40");
    EXPECT_EQ(japanese.decode("\xFA\x4A\xEE\xEF"), L"\u2160\u2170");
}

TEST(CodePage, UnencodableCharactersGoToTheCaller) {
    const auto asEscape = [](char32_t c, std::string& bytes) {
        char text[16];
        std::snprintf(text, sizeof text, "\\U+%04X", static_cast<unsigned>(c));
        bytes += text;
    };
    EXPECT_EQ(base::CodePage::standard().encode(L"a\u4E2D\u00FC\U0001F600", asEscape), "a\\U+4E2D\xFC\\U+1F600");
    EXPECT_EQ(base::CodePage::byName("ANSI_932")->encode(L"\u00FC\u30C9", asEscape), "\\U+00FC\x83h");
}

TEST(CodePage, DamagedDoubleByteTextFindsBackToItself) {
    const base::CodePage& page = *base::CodePage::byName("ANSI_936");
    EXPECT_EQ(page.decode("a\xC3"), L"a\uFFFD");                  // cut short
    EXPECT_EQ(page.decode("\xC3\n\xC3\xC5"), L"\uFFFD\n\u95E8");  // a lead byte before what is no second byte
    EXPECT_EQ(page.decode(std::string_view("a\0b", 3)), std::wstring(L"a\0b", 3));
}

}  // namespace
