// Files read and written whole, in binary.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "base/memory.h"

namespace base {

/// what() reads "NAME: what the system said", in UTF-8.
class FileError : public std::runtime_error {
  public:
    FileError(std::wstring fileName, std::wstring reason);

    const std::wstring& fileName() const { return fileName_; }
    const std::wstring& reason() const { return reason_; }

  private:
    std::wstring fileName_;
    std::wstring reason_;
};

/// A file's bytes, followed by kPadding zero bytes that a reader may look at without checking for the end.
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

    /// Keeps the first `size` bytes; the padding moves up to them.
    void truncate(std::size_t size);

  private:
    LargeMemory bytes_;
    std::size_t size_;
};

/// A file's bytes for a reader that goes through them from the front: a large file is read by a thread of its own, so
/// that the first bytes are worked on while the others are still on their way. All functions but the destructor throw
/// FileError.
class FileReading {
  public:
    explicit FileReading(std::wstring_view path);
    /// Bytes that are all there.
    explicit FileReading(FileBuffer bytes);
    ~FileReading();
    FileReading(const FileReading&) = delete;
    FileReading& operator=(const FileReading&) = delete;

    /// Waits until more than `known` bytes are there, or all. The bytes stay where they are, also in the buffer of
    /// take().
    std::string_view beyond(std::size_t known);
    /// Whether the last call of beyond() gave all bytes.
    bool isComplete() const { return isComplete_; }
    /// All bytes; nothing is left here.
    FileBuffer take();

  private:
    struct Background;

    FileBuffer buffer_;
    bool isComplete_ = false;
    std::unique_ptr<Background> background_;  // while a thread reads
};

/// Reads the whole file, also one that does not tell its size. Throws FileError.
FileBuffer readFile(std::wstring_view path);
/// The same for text, which ends at the first byte 0x1A. A UTF-8 byte order mark is left out. Throws FileError.
std::string readTextFile(std::wstring_view path);
/// The text before the first byte 0x1A.
std::string_view untilEndMark(std::string_view text);

/// A file that is either replaced whole or left as it was. It is written beside the target and takes its name in
/// commit(); without commit() nothing remains of it, on Linux also where a signal ends the program meanwhile. The
/// target's permissions are kept, and a link stays a link. A target that is no plain file (a pipe, a device) is written
/// directly. All but the destructor throw FileError, which names the target.
class AtomicFile {
  public:
    explicit AtomicFile(std::wstring_view target);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    void write(std::string_view bytes);
    /// Flushes to the disk and renames. Nothing may be written afterwards.
    void commit();

  private:
    class Output;  // the platform's file

    void flush();

    std::unique_ptr<Output> output_;
    std::string pending_;
};

/// An AtomicFile with these bytes, committed.
void writeFile(std::wstring_view target, std::string_view bytes);

}  // namespace base
