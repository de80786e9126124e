#include <filesystem>

#include "base/paths.h"
#include "base/text.h"
#include "drawingdb/attribute.h"
#include "extract_fixture.h"

namespace {

using torvel::ExtractFormat;
using torvel::extractSettings;

class DelimitedExtract : public ExtractTest {
  protected:
    int run(const std::string& text, ExtractFormat format, std::initializer_list<std::uint64_t> handles = {0x50}) {
        base::writeFile(folder_ / L"template.txt", text);
        extractSettings().format = format;
        extractSettings().delimiter.assign(1, format == ExtractFormat::spaceDelimited ? ' ' : ',');
        return torvel::writeDelimitedExtract(folder_ / L"template.txt", output(), objects(handles));
    }
    // What one run writes; "none" when it wrote nothing.
    std::string extract(const std::string& text, ExtractFormat format = ExtractFormat::commaDelimited,
                        std::initializer_list<std::uint64_t> handles = {0x50}) {
        std::filesystem::remove(base::toPath(output()));
        if (run(text, format, handles) != static_cast<int>(handles.size())) return "none";
        return written();
    }
    // The value of a column of reference #50 that does not pad.
    std::string value(const std::string& name) { return extract(name + " C000000"); }
};

constexpr auto kCdf = ExtractFormat::commaDelimited;
constexpr auto kSdf = ExtractFormat::spaceDelimited;

TEST_F(DelimitedExtract, WritesColumnsToTheByte) {
    const std::string blanks(40, ' ');
    const auto wide = [&](std::size_t count, const std::string& text) { return blanks.substr(0, count) + text; };
    struct Case {
        const char* text;
        ExtractFormat format;
        std::string expected;
    } const cases[] = {
        {"BL:NAME C031000\nTAG1 C020000\n", kCdf, wide(24, "'DOOR',") + wide(16, "'42'")},
        // The delimiter stands inside the padding, or widens a number that fills its column already.
        {"BL:X N010003\r\nTAG1 C006000", kCdf, "    12.500,  '42'"},
        {"BL:X N010003", kCdf, "    12.500"},
        {"BL:X C010003", kCdf, "'        12'"},  // precision is for numeric fields
        {"BL:X N000000 BL:Y N006001 BL:Z N006002", kCdf, "12,  -3.0,  0.25"},
        {"TAG1 N000000 BL:NAME N002000", kCdf, "42,DOOR"},  // numeric ones are not quoted, whatever they hold
        {"BL:NUMBER N005000\nBL:LEVEL N003000", kCdf, "$Number$,  1"},
        {"BL:ORIENT N008004", kCdf, "  1.5708"},
        {"BL:XSCALE N003001 BL:YSCALE N003001 BL:ZSCALE N003001", kCdf, "2.0,-1.0,3.0"},
        {"BL:XEXTRUDE N003001 BL:YEXTRUDE N003001 BL:ZEXTRUDE N003001", kCdf, "0.0,0.0,1.0"},
        {"BL:LAYER C000000 BL:HANDLE C000000", kCdf, "'WALLS','50'"},
        {"BL:COLOR C004000 BL: C004000 bl:name C000000 tag1 C000000", kCdf, " '', '','',''"},
        // Words, not lines; a last word alone means nothing.
        {"BL:NAME\n\n C000000 TAG1\tC000000\vTAG1", kCdf, "'DOOR','42'"},
        {"TAG1 C00000 TAG1 C0000000 BL:NAME C000000", kCdf, "'DOOR'"},
        {"TAG1 n000000 BL:NAME X000000", kCdf, "'42','DOOR'"},  // other letters mean characters
        {"TAG1 Cabcdef BL:X N.12001 BL:X N2x1001", kCdf,
         "'42',12.5,12.5"},  // no number: 0; digits count up to what is none
        // A negative width justifies to the left, a negative precision is none.
        {"BL:X N-10002 BL:Y N+10-01 BL:Y N-10001", kCdf, "12.50     , -3.000000,-3.0      "},
        {"BL:NAME C010000\nTAG1 C006000", kSdf, "(BL:NAME) (TAG1)|DOOR      42    "},
        {"BL:NAME C002000\nBL:X N008002\nTAG1 C-06000", kSdf, "(BL:NAME)(BL:X)  (TAG1)|DOOR    12.50 42    "},
        {"c:delim ; TAG1 C000000 BL:NAME C000000", kCdf, "'42';'DOOR'"},
        {"C:DELIM || TAG1 C004000 BL:NAME C000000", kSdf, "(TAG1)(BL:NAME)|42||DOOR"},
        {"TAG1 C004000\x1A BL:NAME C000000", kCdf, "'42'"},  // the text ends there
        {"\xEF\xBB\xBFTAG1 C000000", kCdf, "'42'"},
    };
    for (const Case& c : cases) {
        std::string expected = c.expected;
        // In the table "|" ends a line and "||" is the character twice.
        for (std::size_t i = 0; (i = expected.find('|', i)) != std::string::npos; i += 2)
            if (expected.compare(i, 2, "||") != 0) expected.replace(i, 1, "\r\n");
        EXPECT_EQ(extract(c.text, c.format), expected + "\r\n") << c.text;
    }
}

TEST_F(DelimitedExtract, WritesTheReferencesInTheirOrder) {
    EXPECT_EQ(extract("BL:HANDLE C000000\nTAG1 C010000\nbl:name C000000", kCdf, {0x60, 0x70, 0x50}),
              "'60','a value that is long','low'\r\n"  // of equal tags the later; longer than its column
              "'70',       '',''\r\n"
              "'50',     '42',''\r\n");
}

TEST_F(DelimitedExtract, KeepsTheQuoteAndForgetsTheDelimiter) {
    EXPECT_EQ(extract("C:QUOTE \" C:DELIM ; TAG1 C000000 TAG1 C000000"), "\"42\";\"42\"\r\n");
    EXPECT_EQ(extract("TAG1 C000000 TAG1 C000000"), "\"42\",\"42\"\r\n");
    EXPECT_EQ(extract("c:quote <> TAG1 C000000"), "<>42<>\r\n");
    EXPECT_EQ(extract("C:QUOTE $"), "none");
    EXPECT_EQ(extract("TAG1 C000000"), "$42$\r\n") << "also from a template without fields";
}

TEST_F(DelimitedExtract, WritesLongNumbersWhole) {
    open(drawingText("AC1032", attributeRecord("52", "NOTE", "")).replace(drawingText().find("12.5"), 4, "1e300"));
    const std::string number = extract("BL:X N000002");
    EXPECT_EQ(number.size(), 301 + 3 + 2u);
    EXPECT_EQ(std::stod(number), 1e300);
    open(drawingText());
    EXPECT_EQ(extract("BL:X N999999"), "12.5" + std::string(998, '0') + "\r\n");
    EXPECT_EQ(extract("BL:Y N999000"), std::string(997, ' ') + "-3\r\n");
}

TEST_F(DelimitedExtract, WritesWhatTheCodePageHoldsAndNamesTheRest) {
    struct Case {
        const char* version;
        std::string text;
        std::string expected;
    } const cases[] = {
        {"AC1032", "T\xC3\xBCr \xE2\x82\xAC", "'T\xFCr \x80'"},
        {"AC1032", "\xE4\xB8\xAD\xF0\x9F\x9A\xAA", "'\\U+4E2D\\U+D83D\\U+DEAA'"},
        {"AC1015", "T\xFCr \\U+4E2D \\U+00FC", "'T\xFCr \\U+4E2D \xFC'"},
        {"AC1032", "one^Jtwo^I^Zend",
         "'one\r\ntwo\t\x1A"
         "end'"},  // lines of a text file end alike
    };
    for (const Case& c : cases) {
        open(drawingText(c.version, attributeRecord("52", "NOTE", c.text)));
        EXPECT_EQ(value("NOTE"), c.expected + "\r\n") << c.expected;
    }
    // The page counts in drawings that are written in UTF-8 too.
    open(drawingText("AC1032", attributeRecord("52", "NOTE", "\xE4\xB8\xAD\xC3\xBC"))
             .replace(drawingText().find("ANSI_1252"), 9, "ANSI_932"));
    EXPECT_EQ(value("NOTE"), "'\x92\x86\\U+00FC'\r\n");
    // Columns count bytes, and tags are known in either spelling of the template.
    open(drawingText("AC1032", attributeRecord("52", "GR\xC3\x96SSE", "\xC3\xBC") +
                                   attributeRecord("53", "\xE4\xB8\xAD", "middle")));
    EXPECT_EQ(extract("GR\xD6SSE C005000 \\U+4E2D C000000", kSdf), "(GR\xD6SSE)(\\U+4E2D)\r\n\xFC    middle\r\n");
    EXPECT_EQ(extract("\xEF\xBB\xBFGR\xC3\x96SSE C005000 \xE4\xB8\xAD C000000", kSdf),
              "(GR\xD6SSE)(\\U+4E2D)\r\n\xFC    middle\r\n");
}

TEST_F(DelimitedExtract, TakesAnyTemplate) {
    std::string text;
    for (int i = 0; i < 5000; ++i) text += "TAG1 C000000\n";
    EXPECT_EQ(extract(text).size(), 5000 * 5 - 1 + 2u);
    using namespace std::string_literals;
    EXPECT_EQ(extract("TA\0G1 C00\000000 TAG1 C000000"s), "'','42'\r\n") << "a zero is part of its word";
    EXPECT_EQ(extract("\xFF\xFET\0A\0G\0"s), "none");
    for (const char* nothing : {"", " \n", "TAG1", "TAG1 C01000", "C:DELIM ;"}) EXPECT_EQ(extract(nothing), "none");
}

TEST_F(DelimitedExtract, ReadsAttributesThatAreOpenAndChanged) {
    const auto attribute = object(0x51).openAs<OdDbAttribute>(OdDb::forWrite);
    attribute->setTextString(L"43");
    EXPECT_EQ(value("TAG1"), "'43'\r\n");
    attribute->erase();
    EXPECT_EQ(value("TAG1"), "''\r\n");
}

TEST_F(DelimitedExtract, LeavesTheOldFileWhenItFails) {
    base::writeFile(output(), "old");
    EXPECT_THROW(run("TAG1 C000000", kCdf, {0x50, 0x80}), OdError_NotThatKindOfClass);
    EXPECT_EQ(run("TAG1 C01", kCdf), 0);
    EXPECT_EQ(torvel::writeDelimitedExtract(folder_ / L"no template.txt", output(), objects({0x50})), 0);
    EXPECT_EQ(written(), "old");

    base::writeFile(folder_ / L"template.txt", "TAG1 C000000");
    const auto writeTo = [&](const std::wstring& path) {
        return torvel::writeDelimitedExtract(folder_ / L"template.txt", path, objects({0x50}));
    };
    EXPECT_EQ(writeTo(folder_.path()), 0);
    EXPECT_EQ(writeTo(folder_ / L"no folder/out.txt"), 0);
    EXPECT_EQ(writeTo(L""), 0);

    // The drawing itself, by whatever name.
    base::writeFile(folder_ / L"plan.dxf", drawingText());
    database_ = OdDbDatabase::readFile(folder_ / L"plan.dxf");
    EXPECT_EQ(writeTo(folder_ / L"./plan.dxf"), 0);
    EXPECT_EQ(base::readFile(folder_ / L"plan.dxf").view(), drawingText());
    // Another drawing is left as well; what only speaks of sections is no drawing.
    const struct {
        std::string file;
        int records;
    } files[] = {
        {"  0\r\nSECTION\r\n  2\r\nHEADER\r\n", 0},
        {"999\nmade by hand\n0\nSECTION\n2\nENTITIES\n", 0},
        {"\xEF\xBB\xBF"
         "0\nSECTION \n2\nHEADER\n",
         0},
        {" 0 SECTION A\r\n", 1},
        {"   0\r\nSECTION A\r\n", 1},
        {"0\nSECTION", 1},
        {"10\nSECTION\n", 1},
    };
    for (const auto& [file, records] : files) {
        base::writeFile(output(), file);
        EXPECT_EQ(writeTo(output()), records) << file;
        EXPECT_EQ(written(), records == 0 ? file : "'42'\r\n");
    }
}

}  // namespace
