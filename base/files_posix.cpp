#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/exact_utf8.h"
#include "base/input_file.h"
#include "base/output_file.h"
#include "base/paths.h"
#include "base/text.h"

namespace base {
namespace {

[[noreturn]] void throwSystemError(std::wstring_view fileName, int number) {
    throw FileError(std::wstring(fileName), fromUtf8(std::strerror(number)));
}

// An open file, closed when it goes.
class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) ::close(number_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int number() const { return number_; }

  private:
    int number_;
};

// Makes the folder's entries durable. Some file systems refuse this for folders; the data itself is safe by then.
void syncFolder(const std::filesystem::path& folder) {
    const Descriptor opened(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (opened.number() >= 0) ::fsync(opened.number());
}

// ---- Files beside their targets that are not finished: a signal that ends the program takes them along.

struct Unfinished {
    char name[PATH_MAX];
    std::atomic<bool> isUsed = false;
    std::atomic<bool> isNamed = false;
};
std::array<Unfinished, 8> g_unfinished;
std::atomic<int> g_unfinishedCount = 0;

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGXFSZ, SIGXCPU};

void endBySignal(int signal) {
    for (const Unfinished& file : g_unfinished)
        if (file.isNamed) ::unlink(file.name);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// Only where nobody else does: a program that has a use for a signal goes on after it.
void exchangeHandlers(void (*from)(int), void (*to)(int)) {
    for (const int signal : kEndingSignals) {
        struct sigaction action {};
        if (::sigaction(signal, nullptr, &action) != 0 || (action.sa_flags & SA_SIGINFO) != 0) continue;
        if (action.sa_handler != from) continue;
        action.sa_handler = to;
        ::sigaction(signal, &action, nullptr);
    }
}

// The file has its final name or is gone.
void finishUnfinished(const std::string& name) {
    for (Unfinished& file : g_unfinished) {
        if (!file.isNamed || name != file.name) continue;
        file.isNamed = false;
        file.isUsed = false;
        if (--g_unfinishedCount == 0) exchangeHandlers(endBySignal, SIG_DFL);
        return;
    }
}

// Makes a file of a new name, which stands in for the last six characters of the pattern. -1: the system's error tells.
int makeUnfinished(std::string& pattern) {
    Unfinished* slot = nullptr;
    for (Unfinished& file : g_unfinished)
        if (!slot && pattern.size() < sizeof file.name && !file.isUsed.exchange(true)) slot = &file;
    if (!slot) return ::mkostemp(pattern.data(), O_CLOEXEC);  // more than anybody writes at once
    if (g_unfinishedCount++ == 0) exchangeHandlers(SIG_DFL, endBySignal);
    std::memcpy(slot->name, pattern.c_str(), pattern.size() + 1);
    slot->isNamed = true;  // before the file is there, so that no signal comes between
    const int file = ::mkostemp(slot->name, O_CLOEXEC);
    const int error = errno;
    pattern = slot->name;
    if (file < 0) finishUnfinished(pattern);
    errno = error;
    return file;
}

}  // namespace

InputFile::InputFile(std::wstring_view path)
    : name_(path), handle_(::open(toUtf8Exact(path).c_str(), O_RDONLY | O_CLOEXEC)) {
    struct stat status;
    if (handle_ < 0) throwSystemError(path, errno);
    if (::fstat(static_cast<int>(handle_), &status) == 0)
        size_ = static_cast<std::size_t>(std::max<off_t>(status.st_size, 0));
}

InputFile::~InputFile() { ::close(static_cast<int>(handle_)); }

std::size_t InputFile::read(char* bytes, std::size_t most) {
    for (;;) {
        const ssize_t count = ::read(static_cast<int>(handle_), bytes, most);
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR) throwSystemError(name_, errno);
    }
}

AtomicFile::Output::Output(std::wstring_view target) : target_(target), replaced_(toPath(target)) {
    struct stat status;
    const bool exists = ::stat(replaced_.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        const int file = ::open(replaced_.c_str(), O_WRONLY | O_CLOEXEC);
        if (file < 0) fail();
        handle_ = file;
        return;
    }
    // A link stays: what it leads to is replaced, also where that does not exist yet.
    std::error_code error;
    for (int links = 0; std::filesystem::is_symlink(replaced_, error) && links < 40; ++links)
        replaced_ = replaced_.parent_path() / std::filesystem::read_symlink(replaced_, error);
    if (exists && ::access(replaced_.c_str(), W_OK) != 0) fail();
    std::string pattern = (replaced_.parent_path() / ("." + replaced_.filename().native() + ".XXXXXX")).native();
    const int file = makeUnfinished(pattern);
    if (file < 0) fail();
    handle_ = file;
    beside_ = pattern;
    mode_t mode;
    if (exists) {
        mode = status.st_mode & 07777;
        // Only the superuser may give files away; where that fails the file belongs to who wrote it.
        if (::fchown(file, status.st_uid, status.st_gid) != 0) mode &= 0777;
    } else {
        const mode_t mask = ::umask(0);
        ::umask(mask);
        mode = 0666 & ~mask;
    }
    ::fchmod(file, mode);
}

AtomicFile::Output::~Output() {
    if (handle_ != kClosed) ::close(static_cast<int>(handle_));
    if (beside_.empty()) return;
    ::unlink(beside_.c_str());
    finishUnfinished(beside_.native());
}

void AtomicFile::Output::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(static_cast<int>(handle_), bytes.data(), bytes.size());
        if (count >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            fail();
    }
}

void AtomicFile::Output::commit() {
    const int file = static_cast<int>(handle_);
    const bool isBeside = !beside_.empty();
    if (isBeside && ::fsync(file) != 0) fail();
    handle_ = kClosed;
    if (::close(file) != 0) fail();
    if (isBeside) {
        if (::rename(beside_.c_str(), replaced_.c_str()) != 0) fail();
        finishUnfinished(beside_.native());
        beside_.clear();
        syncFolder(replaced_.parent_path());
    }
}

void AtomicFile::Output::fail() const { throwSystemError(target_, errno); }

}  // namespace base
