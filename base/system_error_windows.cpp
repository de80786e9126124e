#include "base/system_error_windows.h"

#include <windows.h>

#include "base/format.h"
#include "base/text.h"

namespace base {

std::wstring systemErrorText(unsigned long number) {
    wchar_t text[512];
    const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, number, 0,
                                        text, static_cast<DWORD>(std::size(text)), nullptr);
    std::wstring_view message = trimmed(std::wstring_view(text, length));
    if (message.ends_with(L'.')) message.remove_suffix(1);
    return message.empty() ? format(L"system error %lu", number) : std::wstring(message);
}

}  // namespace base
