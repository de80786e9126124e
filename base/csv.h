// CSV files, as RFC 4180 has them:
//
//     file    record {end record} [end]      end   CR LF; on reading LF or CR alone too
//     record  cell {separator cell}          cell  bare, or in quotes, in which a quote is doubled and anything may
//     stand
//
// Text is UTF-8. A byte order mark is for the caller to leave out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace base {

/// The cell as it stands in a record, in quotes where it must be.
void appendCsvCell(std::string& record, std::string_view cell);

/// What no CSV file has. what() is a sentence without the place, in UTF-8.
class CsvError : public std::runtime_error {
  public:
    CsvError(std::uint64_t line, const std::string& what) : std::runtime_error(what), line_(line) {}
    std::uint64_t line() const { return line_; }

  private:
    std::uint64_t line_;
};

/// Reads the records of a text one after the other. Bare cells may have quotes inside.
class CsvReader {
  public:
    /// No program that writes such files has more cells in a record.
    static constexpr std::size_t kMostCells = 65536;

    /// The text must outlive the reader.
    explicit CsvReader(std::string_view text, char separator = ',') : text_(text), separator_(separator) {}

    /// Goes to the next record; those without any character in their cells are passed over. False at the end. Throws
    /// CsvError at a quote that is not closed or has text behind it, at a byte 0, at what is no UTF-8, and above
    /// kMostCells.
    bool next();
    /// Of the record; good until next() is called.
    const std::vector<std::string_view>& cells() const { return cells_; }
    /// Where the record begins, counted from 1.
    std::uint64_t line() const { return recordLine_; }
    /// How many bytes of the text have been read.
    std::size_t position() const { return at_; }
    /// Whether the record ends with the text and not with the end of a line.
    bool isOpen() const { return isOpen_; }

  private:
    void readRecord();
    std::string_view readQuoted();
    void checkBytes(std::string_view record) const;

    std::string_view text_;
    char separator_;
    std::size_t at_ = 0;
    std::uint64_t line_ = 1;
    std::uint64_t recordLine_ = 1;
    bool isOpen_ = false;
    std::vector<std::string_view> cells_;
    std::deque<std::string> unquoted_;  // cells that are not in the text as they are, for reuse
    std::size_t unquotedCount_ = 0;
};

/// The separator with which a cell of the text's first record reads so (ASCII, without case): a comma, a semicolon or a
/// tab, as spreadsheets write them by the customs of their country. Nothing when none does.
std::optional<char> csvSeparator(std::string_view text, std::string_view cell);

}  // namespace base
