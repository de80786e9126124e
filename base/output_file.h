// The platform's half of AtomicFile: the file that is written, and how it takes the target's place.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/files.h"

namespace base {

/// Makes the file beside the target, or opens the target itself where it is no plain file. The functions throw
/// FileError. An output that goes without commit() removes the file beside the target.
class AtomicFile::Output {
  public:
    explicit Output(std::wstring_view target);
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void write(std::string_view bytes);
    void commit();

  private:
    static constexpr std::intptr_t kClosed = -1;

    /// Throws what the system's last error says about the target.
    [[noreturn]] void fail() const;

    std::wstring target_;             // as the caller named it
    std::filesystem::path replaced_;  // what links lead to
    std::filesystem::path beside_;    // empty when the target is written directly
    std::intptr_t handle_ = kClosed;  // of the system's open file
};

}  // namespace base
