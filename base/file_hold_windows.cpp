#include <windows.h>

#include "base/file_hold.h"
#include "base/files.h"
#include "base/system_error_windows.h"

namespace base {
namespace {

HANDLE toHandle(std::intptr_t number) { return reinterpret_cast<HANDLE>(number); }

}  // namespace

// Nobody else may write to it or take its name away while it is open.
FileHold::FileHold(std::wstring_view path) : path_(path) {
    HANDLE const file = CreateFileW(path_.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_ALWAYS,
                                    FILE_ATTRIBUTE_HIDDEN, nullptr);
    if (file != INVALID_HANDLE_VALUE)
        handle_ = reinterpret_cast<std::intptr_t>(file);
    else if (const DWORD error = GetLastError(); error != ERROR_SHARING_VIOLATION)
        throw FileError(path_, systemErrorText(error));
}

FileHold::~FileHold() {
    if (!isHeld()) return;
    CloseHandle(toHandle(handle_));
    // Who comes first holds it from now on, and then it cannot be deleted.
    if (!leavesFile_) DeleteFileW(path_.c_str());
}

void FileHold::write(std::string_view bytes) {
    HANDLE const file = toHandle(handle_);
    DWORD count = 0;
    if (SetFilePointer(file, 0, nullptr, FILE_BEGIN) == INVALID_SET_FILE_POINTER ||
        !WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) || count != bytes.size() ||
        !SetEndOfFile(file))
        throw FileError(path_, systemErrorText(GetLastError()));
}

}  // namespace base
