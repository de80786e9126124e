// Groups: the pairs of code and value that every DXF file is made of.
//
//   ASCII:   "  8\r\nWALLS\r\n"           code line, value line; either line end, blanks around the code
//   binary:  08 00 'W' .. 'S' 00           code of one byte (255 escapes to two) or of two, little endian; then by the
//   code a text
//                                          ended by a zero, a double, an integer of 1, 2, 4 or 8 bytes, or a counted
//                                          chunk
#pragma once

#include <array>
#include <bit>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "drawingdb/src/file/text_codec.h"

namespace drawingdb {

/// Finds the line feeds of a text one after the other. It looks at 64 bytes at once, so that where one line ends need
/// not be known before the next is looked for.
class LineFeeds {
  public:
    LineFeeds(const char* begin, const char* end) : begin_(begin), next_(begin), end_(end) {}

    /// The next line feed; the end when there is no more.
    [[gnu::always_inline]] const char* next() {
        while (feeds_ == 0) {
            if (next_ == end_) return end_;
            // The last block overlaps the one before it, for nothing may be read behind the end.
            block_ = end_ - next_ >= kBlock ? next_ : end_ - begin_ >= kBlock ? end_ - kBlock : begin_;
            feeds_ = feedsFrom(block_, next_, end_);
            next_ = end_ - next_ >= kBlock ? next_ + kBlock : end_;
        }
        const char* const feed = block_ + std::countr_zero(feeds_);
        feeds_ &= feeds_ - 1;
        return feed;
    }

  private:
    static constexpr std::ptrdiff_t kBlock = 64;

    /// A bit for each line feed of a block, those before `next` left out.
    static std::uint64_t feedsFrom(const char* block, const char* next, const char* end);

    const char* begin_;
    const char* next_;  // not looked at yet
    const char* end_;
    const char* block_ = nullptr;
    std::uint64_t feeds_ = 0;  // of the block, those not given yet
};

enum class ValueKind : std::uint8_t { text, real, int8, int16, int32, int64, chunk, handle };
/// What the value of a group is, by its code. Handles are texts in files.
ValueKind valueKind(int code);

struct Group {
    int code = 0;
    std::string_view
        value;  // ASCII: the value line without its end; binary: the value's bytes, without terminator or count
    const char* begin = nullptr;
    const char* end = nullptr;  // of the whole group
    std::string_view bytes() const { return {begin, static_cast<std::size_t>(end - begin)}; }
};

/// The code of a line as nearly all are written, in three places: "  8", " 10", "100". Negative for any other.
inline int usualCode(const char* line, const char* lineEnd) {
    const auto digit = [line](int i) { return static_cast<unsigned>(line[i]) - unsigned{'0'}; };
    const std::ptrdiff_t length = lineEnd - line;
    if (length != 3 && (length != 4 || line[3] != '\r')) return -1;
    if (digit(2) >= 10) return -1;
    if (digit(1) < 10 ? digit(0) >= 10 && line[0] != ' ' : line[1] != ' ' || line[0] != ' ') return -1;
    return (line[0] & 15) * 100 + (line[1] & 15) * 10 + (line[2] & 15);  // a blank counts as 0
}

/// The codes that somebody asks a file for, by the lines that they are usually written as.
class WantedCodes {
  public:
    /// `isWanted` says of each code below 1000 whether it is asked for.
    template <class IsWanted>
    constexpr explicit WantedCodes(IsWanted isWanted) {
        for (unsigned code = 0; code < 1000; ++code) {
            const unsigned first = code < 100 ? ' ' : '0' + code / 100;
            const unsigned second = code < 10 ? ' ' : '0' + code / 10 % 10;
            const std::uint32_t places = first | second << 8 | ('0' + code % 10) << 16;
            lines_[rowOf(places)] = places | (isWanted(static_cast<int>(code)) ? kWanted : 0);
        }
    }

  private:
    friend class GroupSieve;
    static constexpr std::uint32_t kWanted = std::uint32_t{1} << 31;
    /// The row of a line by the digits of its three places; the first place is the lowest byte.
    static constexpr std::uint32_t rowOf(std::uint32_t line) { return (line & 0x0F0F0F) * 0x01001001U >> 16 & 0xFFF; }

    std::array<std::uint32_t, 4096> lines_{};
};

/// Passes over the groups of ASCII bytes that are not wanted, as long as all is as usual: the code as usualCode() reads
/// it, the value short.
class GroupSieve {
  public:
    /// From `p` on, where a group begins.
    GroupSieve(const WantedCodes& wanted, const char* p, const char* end, bool crlf)
        : wanted_(wanted),
          end_(end),
          codeLength_(crlf ? 4 : 3),
          behindCode_((crlf ? std::uint32_t{'\r'} : std::uint32_t{'\n'}) << 24),
          at_(p) {}

    /// Goes to the next group that is wanted. False at one that is not as usual, and near the end.
    [[gnu::always_inline]] bool next() {
        at_ = valueEnd_ ? valueEnd_ + 1 : at_;
        valueEnd_ = nullptr;
        for (;;) {
            std::uint64_t valueFeeds = feeds_ & (feeds_ - 1);
            if (valueFeeds == 0) {
                // The next window begins where the group does, so that both its line feeds are in one.
                if (end_ - at_ < kWindow) return false;
                window_ = at_;
                feeds_ = feedsOf(window_);
                valueFeeds = feeds_ & (feeds_ - 1);
            }
            const std::uint32_t line = byte(0) | byte(1) | byte(2) | byte(3);
            const std::uint32_t difference = line ^ behindCode_ ^ wanted_.lines_[WantedCodes::rowOf(line)];
            const bool isUsual = (difference & ~WantedCodes::kWanted) == 0 && valueFeeds != 0 &&
                                 window_ + std::countr_zero(feeds_) == at_ + codeLength_;
            if (!isUsual) {
                feeds_ = 0;
                return false;
            }
            feeds_ = valueFeeds & (valueFeeds - 1);
            const char* const valueEnd = window_ + std::countr_zero(valueFeeds);
            if (difference != 0) {
                valueEnd_ = valueEnd;
                return true;
            }
            at_ = valueEnd + 1;
        }
    }

    /// Where the group begins.
    const char* place() const { return at_; }
    int code() const { return (at_[0] & 15) * 100 + (at_[1] & 15) * 10 + (at_[2] & 15); }  // a blank counts as 0
    const char* codeEnd() const { return at_ + codeLength_; }
    const char* valueEnd() const { return valueEnd_; }

  private:
    static constexpr std::ptrdiff_t kWindow = 64;
    static std::uint64_t feedsOf(const char* window);
    std::uint32_t byte(int i) const { return std::uint32_t{static_cast<unsigned char>(at_[i])} << 8 * i; }

    const WantedCodes& wanted_;
    const char* end_;
    std::ptrdiff_t codeLength_;
    std::uint32_t behindCode_;
    const char* at_;
    const char* valueEnd_ = nullptr;
    const char* window_ = nullptr;
    std::uint64_t feeds_ = 0;  // of the window, from `at_` on
};

/// Reads group after group out of ASCII bytes that are known to be groups (a record as the index found it).
class AsciiGroupCursor {
  public:
    explicit AsciiGroupCursor(std::string_view bytes)
        : at_(bytes.data()), end_(bytes.data() + bytes.size()), feeds_(at_, end_) {}
    /// False at the end, and where what is left is no whole group.
    [[gnu::always_inline]] bool next(Group& group) {
        if (at_ >= end_) return false;
        const char* const codeEnd = feeds_.next();
        int code = usualCode(at_, codeEnd);
        if (code < 0) code = unusualCode(at_, codeEnd);
        if (code == kNoCode || codeEnd == end_) return false;
        group.begin = at_;
        group.code = code;
        const char* const value = codeEnd + 1;
        const char* const valueEnd = feeds_.next();
        at_ = group.end = valueEnd < end_ ? valueEnd + 1 : end_;
        group.value = {value, static_cast<std::size_t>(valueEnd - value)};
        if (group.value.ends_with('\r')) group.value.remove_suffix(1);
        return true;
    }
    const char* place() const { return at_; }

  private:
    static constexpr int kNoCode = INT_MIN;
    static int unusualCode(const char* line, const char* lineEnd);

    const char* at_;
    const char* end_;
    LineFeeds feeds_;
};

/// The same for bytes of a binary file.
class BinaryGroupCursor {
  public:
    BinaryGroupCursor(std::string_view bytes, bool wideCodes)
        : at_(bytes.data()), end_(bytes.data() + bytes.size()), wide_(wideCodes) {}
    bool next(Group& group);
    const char* place() const { return at_; }

  private:
    const char* at_;
    const char* end_;
    bool wide_;
};

/// Either of them, as the file is.
class GroupCursor {
  public:
    GroupCursor(std::string_view bytes, const FileFormat& format)
        : isBinary_(format.binary), binary_(bytes, format.wideCodes), ascii_(bytes) {}
    bool next(Group& group) { return isBinary_ ? binary_.next(group) : ascii_.next(group); }
    const char* place() const { return isBinary_ ? binary_.place() : ascii_.place(); }

  private:
    bool isBinary_;
    BinaryGroupCursor binary_;
    AsciiGroupCursor ascii_;
};

/// The number of a group; nothing when it is none, or not finite.
std::optional<double> groupReal(const Group& group, bool binary);
std::optional<std::int64_t> groupInteger(const Group& group, bool binary);
/// A handle in hexadecimal; blanks around it are skipped; 0 when it is none.
std::uint64_t parseHandle(std::string_view text);

/// Appends groups to bytes, in a file's spelling.
class GroupWriter {
  public:
    GroupWriter(std::string& out, const FileFormat& format) : out_(out), format_(format) {}
    const FileFormat& format() const { return format_; }
    /// Value in the file's encoding.
    void text(int code, std::string_view encoded);
    void wide(int code, std::wstring_view text) { this->text(code, encodeText(text, format_)); }
    void real(int code, double value);
    void integer(int code, std::int64_t value);
    void handle(int code, std::uint64_t value);
    void marker(const char* name) {
        if (format_.hasMarkers()) text(100, name);
    }
    /// Point as three groups: code, code + 10, code + 20.
    void point(int code, double x, double y, double z);
    void raw(std::string_view groups) { out_.append(groups); }

  private:
    struct Line;

    std::string& out_;
    const FileFormat& format_;
};

}  // namespace drawingdb
