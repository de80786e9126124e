#include "base/files.h"

#include <cstring>

#include "base/output_file.h"
#include "base/text.h"

namespace base {
namespace {

// Small writes are gathered up to this size.
constexpr std::size_t kPendingLimit = std::size_t{1} << 18;

}  // namespace

FileError::FileError(std::wstring fileName, std::wstring reason)
    : std::runtime_error(toUtf8(fileName) + ": " + toUtf8(reason)),
      fileName_(std::move(fileName)),
      reason_(std::move(reason)) {}

FileBuffer::FileBuffer(std::size_t size) : bytes_(allocateLarge(size + kPadding)), size_(size) {
    std::memset(bytes_.get() + size, 0, kPadding);
}

FileBuffer::FileBuffer(std::string_view bytes) : FileBuffer(bytes.size()) {
    std::memcpy(bytes_.get(), bytes.data(), bytes.size());
}

void FileBuffer::truncate(std::size_t size) {
    std::memset(bytes_.get() + size, 0, kPadding);
    size_ = size;
}

std::string_view untilEndMark(std::string_view text) { return text.substr(0, text.find('\x1A')); }

std::string readTextFile(std::wstring_view path) {
    const FileBuffer buffer = readFile(path);
    std::string_view text = untilEndMark(buffer.view());
    if (text.starts_with("\xEF\xBB\xBF")) {
        text.remove_prefix(3);
    }
    return std::string(text);
}

AtomicFile::AtomicFile(std::wstring_view target) : output_(std::make_unique<Output>(target)) {
    pending_.reserve(kPendingLimit);
}

AtomicFile::~AtomicFile() = default;

void AtomicFile::write(std::string_view bytes) {
    if (pending_.size() + bytes.size() > kPendingLimit) {
        flush();
        if (bytes.size() > kPendingLimit) {
            output_->write(bytes);
            return;
        }
    }
    pending_ += bytes;
}

void AtomicFile::flush() {
    output_->write(pending_);
    pending_.clear();
}

void AtomicFile::commit() {
    flush();
    output_->commit();
}

void writeFile(std::wstring_view target, std::string_view bytes) {
    AtomicFile file(target);
    file.write(bytes);
    file.commit();
}

}  // namespace base
