#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/exact_utf8.h"
#include "base/file_hold.h"
#include "base/files.h"
#include "base/text.h"

namespace base {
namespace {

[[noreturn]] void fail(const std::wstring& path) { throw FileError(path, fromUtf8(std::strerror(errno))); }

// Who held it before may have taken the name away between opening and locking.
bool isStillNamed(int file, const char* name) {
    struct stat opened, named;
    return ::fstat(file, &opened) == 0 && ::stat(name, &named) == 0 && opened.st_ino == named.st_ino &&
           opened.st_dev == named.st_dev;
}

}  // namespace

FileHold::FileHold(std::wstring_view path) : path_(path) {
    const std::string name = toUtf8Exact(path_);
    for (;;) {
        int file = ::open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        // Another user's is held as well by who may only read it.
        if (file < 0 && errno == EACCES) file = ::open(name.c_str(), O_RDONLY | O_CLOEXEC);
        if (file < 0) fail(path_);
        if (::flock(file, LOCK_EX | LOCK_NB) != 0) {
            const int error = errno;
            ::close(file);
            if (error == EWOULDBLOCK) return;
            errno = error;
            fail(path_);
        }
        if (isStillNamed(file, name.c_str())) {
            handle_ = file;
            return;
        }
        ::close(file);
    }
}

FileHold::~FileHold() {
    if (!isHeld()) return;
    if (!leavesFile_) ::unlink(toUtf8Exact(path_).c_str());
    ::close(static_cast<int>(handle_));
}

void FileHold::write(std::string_view bytes) {
    const int file = static_cast<int>(handle_);
    if (::ftruncate(file, 0) != 0) fail(path_);
    for (off_t place = 0; !bytes.empty();) {
        const ssize_t count = ::pwrite(file, bytes.data(), bytes.size(), place);
        if (count < 0 && errno != EINTR) fail(path_);
        if (count < 0) continue;
        place += count;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

}  // namespace base
