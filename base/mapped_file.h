// A file's bytes as memory, read as far as they are looked at.
#pragma once

#include <cstddef>
#include <string_view>

namespace base {

class MappedFile {
  public:
    /// Throws FileError.
    explicit MappedFile(std::wstring_view path);
    ~MappedFile();
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    std::string_view view() const { return {bytes_, size_}; }

  private:
    const char* bytes_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace base
