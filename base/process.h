// Other programs, run and waited for.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace base {

/// Runs a program, without a shell: the first of `command` is its name, which the system looks for as ever, the others
/// are its arguments. It has nothing to read, and what it prints to either stream goes into the file `printed`. Returns
/// its exit status, 128 and more when a signal ended it; nothing when it was ended, with all that it started, because
/// it took longer than `limit`. On Windows neither outlives this program or goes on when the program that was run has
/// ended. Throws FileError, which names the program, when it cannot be started.
std::optional<int> runProgram(const std::vector<std::wstring>& command, const std::wstring& printed,
                              std::chrono::milliseconds limit);

}  // namespace base
