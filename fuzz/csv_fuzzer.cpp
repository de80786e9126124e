// The input is a CSV file. It is read with every separator; what was read is written and read again, and is the same.
#include "base/csv.h"
#include "base/text.h"
#include "fuzz/fuzz.h"

using fuzz::require;

namespace {

using Records = std::vector<std::vector<std::string>>;

Records read(std::string_view text, char separator) {
    Records records;
    base::CsvReader reader(text, separator);
    std::uint64_t line = 0;
    std::size_t position = 0;
    bool isOpen = false;
    try {
        while (reader.next()) {
            require(!isOpen, "nothing is behind the end");
            isOpen = reader.isOpen();
            require(isOpen == (reader.position() == text.size() && text.back() != '\n' && text.back() != '\r'),
                    "an open record is the last");
            require(reader.line() > line && reader.position() > position && reader.position() <= text.size(),
                    "records follow each other");
            line = reader.line();
            position = reader.position();
            for (const std::string_view cell : reader.cells())
                require(base::isUtf8(cell) && cell.find('\0') == cell.npos, "cells are text");
            records.emplace_back(reader.cells().begin(), reader.cells().end());
        }
    } catch (const base::CsvError& error) {
        require(error.line() >= line && *error.what() != '\0', "a fault has a place");
    }
    return records;
}

void checkAgain(const Records& records) {
    std::string text;
    for (const auto& record : records) {
        for (std::size_t i = 0; i < record.size(); ++i) {
            if (i > 0) text += ',';
            base::appendCsvCell(text, record[i]);
        }
        text += "\r\n";
    }
    require(read(text, ',') == records, "what is written reads back the same");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzz::bytesOf(data, size);
    for (const char separator : {',', ';', '\t'}) checkAgain(read(text, separator));
    constexpr std::string_view kHead = "#HANDLE";
    if (const auto separator = base::csvSeparator(text, kHead)) {
        base::CsvReader reader(text, *separator);
        require(reader.next(), "there is a first record");
        bool found = false;
        for (const std::string_view cell : reader.cells()) found = found || base::equalsNoCase(cell, kHead);
        require(found, "the separator makes the head");
    }
    return 0;
}
