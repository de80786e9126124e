// Text as files spell it: in a code page or UTF-8, with sequences for what that cannot hold.
//
//   ^X            a control character, X its letter ('@' for 0); "^ " is the caret itself
//   \U+XXXX       a character by its number; beyond the first 65536 two halves, one after the other
//   \M+nXXXX      a character by its bytes in a double-byte code page, n from 1 to 5; only read
#pragma once

#include <string>
#include <string_view>

#include "drawingdb/src/file/file_format.h"

namespace drawingdb {

/// Text of a file to wide text.
std::wstring decodeText(std::string_view raw, const FileFormat& format);
/// Whether every byte of a file's text is the character itself.
bool isPlainText(std::string_view raw);
/// The reverse.
std::string encodeText(std::wstring_view text, const FileFormat& format);

/// Text in a code page; what it cannot hold becomes "\U+XXXX".
std::string encodeNarrow(std::wstring_view text, const base::CodePage& codePage);

}  // namespace drawingdb
