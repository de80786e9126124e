#include "base/files.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstring>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>

#include "base/input_file.h"
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

namespace {

FileBuffer readWhole(InputFile& file) {
    // One byte more than the size shows the end without growing the buffer.
    FileBuffer buffer(file.size() + 1);
    std::size_t filled = 0;
    while (const std::size_t count = file.read(buffer.data() + filled, buffer.size() - filled)) {
        filled += count;
        if (filled == buffer.size()) {
            FileBuffer larger(buffer.size() * 2 + 65536);
            std::memcpy(larger.data(), buffer.data(), filled);
            buffer = std::move(larger);
        }
    }
    buffer.truncate(filled);
    return buffer;
}

}  // namespace

FileBuffer readFile(std::wstring_view path) {
    InputFile file(path);
    return readWhole(file);
}

// What reader and thread share; `filled`, `ended` and `error` under the mutex.
struct FileReading::Background {
    explicit Background(std::wstring_view path) : file(path) {}

    // A file that grows meanwhile is read as long as it was.
    void read(char* bytes, std::size_t size) {
        std::exception_ptr failure;
        std::size_t place = 0;
        try {
            while (place < size && !isStopped) {
                const std::size_t count = file.read(bytes + place, std::min(size - place, kPiece));
                if (count == 0) break;
                place += count;
                const std::lock_guard lock(mutex);
                filled = place;
                changed.notify_one();
            }
        } catch (const FileError&) {
            failure = std::current_exception();
        }
        const std::lock_guard lock(mutex);
        ended = true;
        error = failure;
        changed.notify_one();
    }

    static constexpr std::size_t kPiece = std::size_t{1} << 21;
    InputFile file;
    std::atomic<bool> isStopped = false;
    std::mutex mutex;
    std::condition_variable changed;
    std::size_t filled = 0;
    bool ended = false;
    std::exception_ptr error;
    std::thread thread;
};

FileReading::FileReading(std::wstring_view path) {
    // Below it, starting a thread costs more than it gains.
    constexpr std::size_t kLarge = std::size_t{1} << 22;
    background_ = std::make_unique<Background>(path);
    const std::size_t size = background_->file.size();
    if (size >= kLarge) {
        buffer_ = FileBuffer(size);
        try {
            background_->thread = std::thread(&Background::read, background_.get(), buffer_.data(), size);
            return;
        } catch (const std::system_error&) {
            // No more threads are to be had: this one reads.
        }
    }
    // A pipe can be opened but once.
    buffer_ = readWhole(background_->file);
    background_.reset();
}

FileReading::FileReading(FileBuffer bytes) : buffer_(std::move(bytes)) {}

FileReading::~FileReading() {
    if (!background_) return;
    background_->isStopped = true;
    if (background_->thread.joinable()) background_->thread.join();
}

std::string_view FileReading::beyond(std::size_t known) {
    if (background_) {
        std::unique_lock lock(background_->mutex);
        background_->changed.wait(lock, [&] { return background_->filled > known || background_->ended; });
        if (background_->error) std::rethrow_exception(background_->error);
        if (!background_->ended) return {buffer_.data(), background_->filled};
        buffer_.truncate(background_->filled);
        lock.unlock();
        background_->thread.join();
        background_.reset();
    }
    isComplete_ = true;
    return buffer_.view();
}

FileBuffer FileReading::take() {
    while (!isComplete_) beyond(buffer_.size());
    return std::move(buffer_);
}

std::string_view untilEndMark(std::string_view text) { return text.substr(0, text.find('\x1A')); }

std::string readTextFile(std::wstring_view path) {
    const FileBuffer buffer = readFile(path);
    std::string_view text = untilEndMark(buffer.view());
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
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
