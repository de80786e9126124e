// The standard streams: bytes in, bytes out, UTF-8, also where a console has another code page.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace base {

/// Once, at the start of a program: the streams become binary, and what cannot be written is an error.
void setUpConsole();

/// The command line in UTF-8, the program's own name first.
std::vector<std::string> commandLine(int count, char** arguments);

enum class Stream { kInput, kOutput, kError };
bool isTerminal(Stream stream);

/// Written at once, nothing added. Output that cannot be written (a closed pipe, a full disk) returns false.
bool writeTo(Stream stream, std::string_view utf8);

/// Empties the line that the cursor is in and goes to its start.
void wipeLine(Stream stream);

/// From now on Ctrl+C does not end the program, but is noted.
void keepInterrupts();
/// Whether Ctrl+C was noted since the last call.
bool takeInterrupt();

/// The next line of standard input without its line end (LF or CR LF). Nothing at the end of input, which a byte 0x1A
/// is too.
std::optional<std::string> readLine();

}  // namespace base
