#include <windows.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "base/format.h"
#include "base/input_file.h"
#include "base/output_file.h"
#include "base/paths.h"
#include "base/system_error_windows.h"

namespace base {
namespace {

HANDLE toHandle(std::intptr_t number) { return reinterpret_cast<HANDLE>(number); }
std::intptr_t toNumber(HANDLE handle) { return reinterpret_cast<std::intptr_t>(handle); }

// The calls take 32-bit counts.
constexpr std::size_t kLargestTransfer = std::size_t{1} << 30;

}  // namespace

InputFile::InputFile(std::wstring_view path) : name_(path) {
    const HANDLE opened =
        CreateFileW(name_.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (opened == INVALID_HANDLE_VALUE) throw FileError(name_, systemErrorText(GetLastError()));
    handle_ = toNumber(opened);
    LARGE_INTEGER size{};
    if (GetFileType(opened) == FILE_TYPE_DISK && GetFileSizeEx(opened, &size))
        size_ = static_cast<std::size_t>(size.QuadPart);
}

InputFile::~InputFile() { CloseHandle(toHandle(handle_)); }

std::size_t InputFile::read(char* bytes, std::size_t most) {
    DWORD count = 0;
    if (!ReadFile(toHandle(handle_), bytes, static_cast<DWORD>(std::min(most, kLargestTransfer)), &count, nullptr)) {
        // A pipe whose other end is closed is at its end.
        if (const DWORD error = GetLastError(); error != ERROR_BROKEN_PIPE)
            throw FileError(name_, systemErrorText(error));
    }
    return count;
}

AtomicFile::Output::Output(std::wstring_view target) : target_(target), replaced_(toPath(target)) {
    const DWORD attributes = GetFileAttributesW(replaced_.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES) {
        // Opening the target for writing tells whether it may be replaced, and what it is.
        const HANDLE file = CreateFileW(replaced_.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE) fail();
        if (GetFileType(file) != FILE_TYPE_DISK) {
            handle_ = toNumber(file);
            return;
        }
        if (attributes & FILE_ATTRIBUTE_REPARSE_POINT) {
            // A link stays: what it leads to is replaced.
            std::error_code error;
            const std::filesystem::path real = std::filesystem::canonical(replaced_, error);
            if (!error) replaced_ = real;
        }
        CloseHandle(file);
    }
    for (unsigned i = 0; handle_ == kClosed; ++i) {
        beside_ = replaced_;
        beside_ += format(L".%lx-%x.tmp", GetCurrentProcessId(), i);
        const HANDLE file =
            CreateFileW(beside_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            handle_ = toNumber(file);
        } else if (GetLastError() != ERROR_FILE_EXISTS) {
            beside_.clear();
            fail();
        }
    }
}

AtomicFile::Output::~Output() {
    if (handle_ != kClosed) CloseHandle(toHandle(handle_));
    if (!beside_.empty()) DeleteFileW(beside_.c_str());
}

void AtomicFile::Output::write(std::string_view bytes) {
    while (!bytes.empty()) {
        DWORD count = 0;
        const DWORD size = static_cast<DWORD>(std::min(bytes.size(), kLargestTransfer));
        if (!WriteFile(toHandle(handle_), bytes.data(), size, &count, nullptr)) fail();
        bytes.remove_prefix(count);
    }
}

void AtomicFile::Output::commit() {
    const bool isBeside = !beside_.empty();
    if (isBeside && !FlushFileBuffers(toHandle(handle_))) fail();
    CloseHandle(toHandle(handle_));
    handle_ = kClosed;
    if (!isBeside) return;
    // Replacing keeps the target's permissions and attributes; it needs a target.
    const bool replaced =
        ReplaceFileW(replaced_.c_str(), beside_.c_str(), nullptr,
                     REPLACEFILE_IGNORE_MERGE_ERRORS | REPLACEFILE_IGNORE_ACL_ERRORS, nullptr, nullptr);
    if (!replaced &&
        !MoveFileExW(beside_.c_str(), replaced_.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
        fail();
    beside_.clear();
}

void AtomicFile::Output::fail() const { throw FileError(target_, systemErrorText(GetLastError())); }

}  // namespace base
