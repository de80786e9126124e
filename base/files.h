// Files read and written whole, in binary.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "base/memory.h"

namespace base {

// what() reads "NAME: what the system said", in UTF-8.
class FileError : public std::runtime_error {
  public:
    FileError(std::wstring fileName, std::wstring reason);

    const std::wstring& fileName() const { return fileName_; }
    const std::wstring& reason() const { return reason_; }

  private:
    std::wstring fileName_;
    std::wstring reason_;
};

// A file's bytes, followed by kPadding zero bytes that a reader may look at without checking for the end.
class FileBuffer {
  public:
    static constexpr std::size_t kPadding = 64;

    FileBuffer() : FileBuffer(0) {}
    explicit FileBuffer(std::size_t size);
    explicit FileBuffer(std::string_view bytes);

    char* data() { return bytes_.get(); }
    const char* data() const { return bytes_.get(); }
    std::size_t size() const { return size_; }
    std::string_view view() const { return {bytes_.get(), size_}; }

    // Keeps the first `size` bytes; the padding moves up to them.
    void truncate(std::size_t size);

  private:
    LargeMemory bytes_;
    std::size_t size_;
};

// Reads the whole file, also one that does not tell its size. Throws FileError.
FileBuffer readFile(std::wstring_view path);
// The same for text, which ends at the first byte 0x1A. A UTF-8 byte order mark is left out. Throws FileError.
std::string readTextFile(std::wstring_view path);
// The text before the first byte 0x1A.
std::string_view untilEndMark(std::string_view text);

// A file that is either replaced whole or left as it was. It is written beside the target and takes its name in
// commit(); without commit() nothing remains of it. The target's permissions are kept, and a link stays a link. A
// target that is no plain file (a pipe, a device) is written directly. All but the destructor throw FileError, which
// names the target.
class AtomicFile {
  public:
    explicit AtomicFile(std::wstring_view target);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    void write(std::string_view bytes);
    // Flushes to the disk and renames. Nothing may be written afterwards.
    void commit();

  private:
    class Output;  // the platform's file

    void flush();

    std::unique_ptr<Output> output_;
    std::string pending_;
};

// An AtomicFile with these bytes, committed.
void writeFile(std::wstring_view target, std::string_view bytes);

}  // namespace base
