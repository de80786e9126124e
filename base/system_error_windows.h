// The system's texts for its error numbers (Windows only).
#pragma once

#include <string>

namespace base {

std::wstring systemErrorText(unsigned long number);

}  // namespace base
