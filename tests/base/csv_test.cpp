#include "base/csv.h"

#include <gtest/gtest.h>

using base::CsvError;
using base::CsvReader;

namespace {

using Records = std::vector<std::vector<std::string>>;

Records recordsOf(std::string_view text, char separator = ',') {
    Records records;
    for (CsvReader reader(text, separator); reader.next();)
        records.emplace_back(reader.cells().begin(), reader.cells().end());
    return records;
}

}  // namespace

TEST(Csv, Records) {
    struct Case {
        std::string_view text;
        Records records;
    };
    using namespace std::string_view_literals;
    for (const auto& [text, records] : {
             Case{"", {}},
             Case{"a,b\r\nc,d\r\n", {{"a", "b"}, {"c", "d"}}},
             Case{"a,b\nc,d", {{"a", "b"}, {"c", "d"}}},
             Case{"a,b\rc,d\r", {{"a", "b"}, {"c", "d"}}},
             Case{"a,,\n", {{"a", "", ""}}},
             Case{"\n,,\n\r\n\"\"\na\n", {{"a"}}},  // nothing stands in the lines before
             Case{"\"a,b\",\"c\r\nd\"\r\n", {{"a,b", "c\r\nd"}}},
             Case{R"("a ""b"" c","""",x)", {{"a \"b\" c", "\"", "x"}}},
             Case{"3/4\",5\"x\n", {{"3/4\"", "5\"x"}}},  // bare cells may have quotes
             Case{" \"a\"\n", {{" \"a\""}}},
         })
        EXPECT_EQ(recordsOf(text), records) << text;
    EXPECT_EQ(recordsOf("a,b;\"c;d\"\n", ';'), (Records{{"a,b", "c;d"}}));
}

// What is written reads back the same, and in quotes only where it must be.
TEST(Csv, CellsComeBack) {
    for (const std::string_view cell :
         {"a", "a b", "a,b", "a;b", "\"", "a\"b", "a\r\nb", "\n", " a", "a ", "\t", "Größe"})
        for (const char separator : {',', ';'}) {
            std::string record = "x";
            record += separator;
            base::appendCsvCell(record, cell);
            EXPECT_EQ(recordsOf(record, separator), (Records{{"x", std::string(cell)}})) << record;
        }
    std::string record;
    base::appendCsvCell(record, "80 x 200");
    EXPECT_EQ(record, "80 x 200");
}

TEST(Csv, LinesAreCounted) {
    CsvReader reader("a\r\n\r\n\"b\r\nb\"\nc\n\"d\"");
    std::vector<std::uint64_t> lines;
    bool isOpen = false;
    while (reader.next()) {
        EXPECT_FALSE(isOpen);
        lines.push_back(reader.line());
        isOpen = reader.isOpen();
    }
    EXPECT_EQ(lines, (std::vector<std::uint64_t>{1, 3, 5, 6}));
    EXPECT_TRUE(isOpen);
}

TEST(Csv, FaultsNameTheirLine) {
    struct Case {
        std::string text;
        std::uint64_t line;
        std::string_view what;
    };
    for (const auto& [text, line, what] : {
             Case{"a\nb,\"c\nd\n", 2, "never closed"},
             Case{"a\n\"b\nb\"c\n", 3, "behind a closing quote"},
             Case{std::string("a\nb\0c\n", 6), 2, "byte 0"},
             Case{"a\nGr\xF6\xDF"
                  "e\n",
                  2, "UTF-8"},
             Case{"a\n" + std::string(CsvReader::kMostCells, ','), 2, "cells"},
         })
        try {
            recordsOf(text);
            ADD_FAILURE() << what;
        } catch (const CsvError& error) {
            EXPECT_EQ(error.line(), line) << error.what();
            EXPECT_NE(std::string_view(error.what()).find(what), std::string_view::npos) << error.what();
        }
}

TEST(Csv, SeparatorIsWhatTheHeadsSay) {
    EXPECT_EQ(base::csvSeparator("#ID,A;B\n", "#id"), ',');
    EXPECT_EQ(base::csvSeparator("A;#ID\n1,2;3\n", "#ID"), ';');
    EXPECT_EQ(base::csvSeparator("\"#ID\";\"A,B\"\n", "#ID"), ';');
    EXPECT_EQ(base::csvSeparator("A\t#ID\n", "#ID"), '\t');
    EXPECT_EQ(base::csvSeparator("#ID\n", "#ID"), ',');
    EXPECT_EQ(base::csvSeparator("#IDS,A\n", "#ID"), std::nullopt);
    EXPECT_EQ(base::csvSeparator("", "#ID"), std::nullopt);
}
