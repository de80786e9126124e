#include "base/csv.h"

#include <algorithm>
#include <cstring>

#include "base/text.h"

namespace base {
namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }

// A carriage return before a line feed does not count.
std::uint64_t lineEndsIn(std::string_view text) {
    std::uint64_t count = 0;
    for (std::size_t at = text.find_first_of("\r\n"); at != text.npos; at = text.find_first_of("\r\n", at + 1))
        if (text[at] == '\n' || at + 1 == text.size() || text[at + 1] != '\n') ++count;
    return count;
}

}  // namespace

void appendCsvCell(std::string& record, std::string_view cell) {
    if (cell.empty()) return;
    // Blanks at an end are part of a cell, which not every reader knows.
    if (cell.find_first_of(",;\"\r\n") == cell.npos && !isBlank(cell.front()) && !isBlank(cell.back())) {
        record += cell;
        return;
    }
    record += '"';
    for (std::size_t quote; (quote = cell.find('"')) != cell.npos; cell.remove_prefix(quote + 1)) {
        record += cell.substr(0, quote + 1);
        record += '"';
    }
    record += cell;
    record += '"';
}

bool CsvReader::next() {
    do {
        if (at_ == text_.size()) return false;
        readRecord();
    } while (std::ranges::all_of(cells_, &std::string_view::empty));
    return true;
}

void CsvReader::readRecord() {
    const std::size_t begin = at_;
    recordLine_ = line_;
    cells_.clear();
    unquotedCount_ = 0;
    for (;;) {
        if (cells_.size() == kMostCells)
            throw CsvError(recordLine_, "more than " + std::to_string(kMostCells) + " cells stand in one line");
        if (at_ < text_.size() && text_[at_] == '"') {
            cells_.push_back(readQuoted());
        } else {
            const std::size_t cell = at_;
            while (at_ < text_.size() && text_[at_] != separator_ && text_[at_] != '\n' && text_[at_] != '\r') ++at_;
            cells_.push_back(text_.substr(cell, at_ - cell));
        }
        if (at_ == text_.size() || text_[at_] != separator_) break;
        ++at_;
    }
    checkBytes(text_.substr(begin, at_ - begin));
    isOpen_ = at_ == text_.size();
    if (isOpen_) return;
    ++line_;
    at_ += text_.substr(at_, 2) == "\r\n" ? 2 : 1;
}

// Begins at the quote and ends behind the other.
std::string_view CsvReader::readQuoted() {
    const std::size_t begin = ++at_;
    const std::uint64_t beginLine = line_;
    std::string* unquoted = nullptr;
    std::size_t copied = begin;  // what stands before is in `unquoted`
    for (;;) {
        const std::size_t quote = text_.find('"', at_);
        if (quote == text_.npos) throw CsvError(beginLine, "a quote is opened here and never closed");
        at_ = quote + 1;
        if (at_ == text_.size() || text_[at_] != '"') break;
        if (!unquoted) {
            if (unquotedCount_ == unquoted_.size()) unquoted_.emplace_back();
            unquoted = &unquoted_[unquotedCount_++];
            unquoted->clear();
        }
        *unquoted += text_.substr(copied, at_ - copied);
        copied = ++at_;
    }
    const std::size_t end = at_ - 1;
    line_ += lineEndsIn(text_.substr(begin, end - begin));
    if (at_ < text_.size() && text_[at_] != separator_ && text_[at_] != '\n' && text_[at_] != '\r')
        throw CsvError(line_, "text stands behind a closing quote; a quote inside quotes is doubled");
    if (!unquoted) return text_.substr(begin, end - begin);
    *unquoted += text_.substr(copied, end - copied);
    return *unquoted;
}

void CsvReader::checkBytes(std::string_view record) const {
    if (std::memchr(record.data(), 0, record.size())) throw CsvError(recordLine_, "a byte 0 is no text");
    if (!isUtf8(record)) throw CsvError(recordLine_, "this is not UTF-8; save the file as CSV in UTF-8");
}

std::optional<char> csvSeparator(std::string_view text, std::string_view cell) {
    for (const char separator : {',', ';', '\t'}) {
        CsvReader reader(text, separator);
        try {
            if (!reader.next()) return std::nullopt;
        } catch (const CsvError&) {
            continue;  // what another separator makes of it
        }
        const auto reads = [cell](std::string_view each) { return equalsNoCase(each, cell); };
        if (std::ranges::any_of(reader.cells(), reads)) return separator;
    }
    return std::nullopt;
}

}  // namespace base
