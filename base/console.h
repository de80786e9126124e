// The standard streams: bytes in, bytes out, UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace base {

/// Once, at the start of a program: the streams become binary, and a console takes and shows UTF-8.
void setUpConsole();

/// The command line in UTF-8, the program's own name first.
std::vector<std::string> commandLine(int count, char** arguments);

enum class Stream { kInput, kOutput, kError };
bool isTerminal(Stream stream);

/// Written at once, nothing added. Output that cannot be written (a closed pipe, a full disk) returns false.
bool writeTo(Stream stream, std::string_view utf8);

/// The next line of standard input without its line end (LF or CR LF). Nothing at the end of input, which a byte 0x1A
/// is too.
std::optional<std::string> readLine();

}  // namespace base
