// The platform's open file for reading.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace base {

/// The functions throw FileError.
class InputFile {
  public:
    explicit InputFile(std::wstring_view path);
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /// In bytes; 0 for pipes and the like, which tell none.
    std::size_t size() const { return size_; }
    /// Reads up to `most` bytes; 0 at the end.
    std::size_t read(char* bytes, std::size_t most);

  private:
    std::wstring name_;
    std::intptr_t handle_;
    std::size_t size_ = 0;
};

}  // namespace base
