#include <windows.h>

#include "base/double_byte.h"

namespace base {

std::vector<char32_t> doubleByteTable(unsigned codePage) {
    if (!IsValidCodePage(codePage)) return {};
    std::vector<char32_t> table(0x10000);
    for (unsigned code = 0; code < 0x10000; ++code) {
        const bool isPair = code >= 0x100;
        const BYTE lead = static_cast<BYTE>(isPair ? code >> 8 : code);
        if (isPair != (IsDBCSLeadByteEx(codePage, lead) != FALSE)) continue;
        const char bytes[2] = {static_cast<char>(code >> 8), static_cast<char>(code)};
        wchar_t units[2] = {};
        const int count =
            MultiByteToWideChar(codePage, MB_ERR_INVALID_CHARS, isPair ? bytes : bytes + 1, isPair ? 2 : 1, units, 2);
        if (count == 1) table[code] = units[0];
    }
    return table;
}

}  // namespace base
