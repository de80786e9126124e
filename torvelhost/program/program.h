// The whole run of the program, from its arguments to its exit status.
#pragma once

#include <string>
#include <vector>

namespace host {

/// The arguments are UTF-8, the program's name first.
int runProgram(const std::vector<std::string>& arguments);

}  // namespace host

/// For the program, which holds no code of its own.
extern "C" int torvelhostMain(int count, char** arguments);
