// CXStringW: the wide string of the host's interfaces.
#pragma once

#include <string>

using CXStringW = std::wstring;
