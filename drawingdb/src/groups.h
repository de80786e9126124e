#pragma once
// Groups: the pairs of code and value that every DXF file is made of.
//
//   ASCII:   "  8\r\nWALLS\r\n"           code line, value line; either line end, blanks around the code
//   binary:  08 00 'W' .. 'S' 00           code of one byte (255 escapes to two) or of two, little endian; then by the
//   code a text
//                                          ended by a zero, a double, an integer of 1, 2, 4 or 8 bytes, or a counted
//                                          chunk
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/code_page.h"

namespace drawingdb {

/// How a file spells things.
struct FileFormat {
    bool binary = false;
    bool wideCodes = true;  // binary: codes of two bytes
    bool crlf = false;
    int version = 1032;                                            // the number in "AC1032"; 1009 is R12
    const base::CodePage* codePage = &base::CodePage::standard();  // of text before version 1021; UTF-8 from there on

    bool utf8() const { return version >= 1021; }
    bool hasMarkers() const { return version >= 1012; }
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

/// Reads group after group out of bytes that are known to be groups (a record as the index found it).
class GroupCursor {
  public:
    GroupCursor(std::string_view bytes, const FileFormat& format)
        : at_(bytes.data()), end_(bytes.data() + bytes.size()), binary_(format.binary), wide_(format.wideCodes) {}
    /// False at the end, and where what is left is no whole group.
    bool next(Group& group) { return binary_ ? nextBinary(group) : nextAscii(group); }
    const char* place() const { return at_; }

  private:
    bool nextAscii(Group& group);
    bool nextBinary(Group& group);

    const char* at_;
    const char* end_;
    bool binary_;
    bool wide_;
};

/// The number of a group; nothing when it is none, or not finite.
std::optional<double> groupReal(const Group& group, bool binary);
std::optional<std::int64_t> groupInteger(const Group& group, bool binary);
/// A handle in hexadecimal; blanks around it are skipped; 0 when it is none.
std::uint64_t parseHandle(std::string_view text);

/// Text of a file to wide text: code page, then "\U+XXXX", "\M+nXXXX" and "^" sequences.
std::wstring decodeText(std::string_view raw, const FileFormat& format);
/// The same into a text that has memory already.
void decodeText(std::string_view raw, const FileFormat& format, std::wstring& out);
/// The reverse; what the code page cannot hold becomes "\U+XXXX", control characters "^" sequences.
std::string encodeText(std::wstring_view text, const FileFormat& format);

/// Text in a code page; what it cannot hold becomes "\U+XXXX".
std::string encodeNarrow(std::wstring_view text, const base::CodePage& codePage);

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
    void code(int value);
    void lineEnd() { format_.crlf ? (void)out_.append("\r\n") : out_.push_back('\n'); }

    std::string& out_;
    const FileFormat& format_;
};

}  // namespace drawingdb
