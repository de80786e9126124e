// A file that one process at a time holds.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace base {

/// Holds a file, which is made where it is not there. The hold ends with the object, and then the file goes; or with
/// the process, however that ends, and then the file stays behind, for anybody to hold.
class FileHold {
  public:
    /// Throws FileError when the file can neither be made nor opened.
    explicit FileHold(std::wstring_view path);
    ~FileHold();
    FileHold(const FileHold&) = delete;
    FileHold& operator=(const FileHold&) = delete;

    /// False: somebody else holds it.
    bool isHeld() const { return handle_ != kNone; }
    const std::wstring& path() const { return path_; }
    /// Replaces what stands in the file, which others may read. Throws FileError.
    void write(std::string_view bytes);
    /// The file stays when the object goes.
    void leaveFile() { leavesFile_ = true; }

  private:
    static constexpr std::intptr_t kNone = -1;

    std::wstring path_;
    std::intptr_t handle_ = kNone;
    bool leavesFile_ = false;
};

}  // namespace base
