#include <windows.h>

#include "base/files.h"
#include "base/mapped_file.h"
#include "base/system_error_windows.h"

namespace base {

MappedFile::MappedFile(std::wstring_view path) {
    const std::wstring name(path);
    HANDLE const file = CreateFileW(name.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) throw FileError(name, systemErrorText(GetLastError()));
    LARGE_INTEGER size{};
    bool done = GetFileSizeEx(file, &size) != 0;
    if (done && size.QuadPart > 0) {
        HANDLE const mapping = CreateFileMappingW(file, nullptr, PAGE_READONLY, 0, 0, nullptr);
        if (mapping) bytes_ = static_cast<const char*>(MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, 0));
        done = bytes_ != nullptr;
        if (done) size_ = static_cast<std::size_t>(size.QuadPart);
        const DWORD error = GetLastError();
        if (mapping) CloseHandle(mapping);
        SetLastError(error);
    }
    const DWORD error = GetLastError();
    CloseHandle(file);
    if (!done) throw FileError(name, systemErrorText(error));
}

MappedFile::~MappedFile() {
    if (bytes_) UnmapViewOfFile(bytes_);
}

}  // namespace base
