#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/exact_utf8.h"
#include "base/files.h"
#include "base/mapped_file.h"
#include "base/text.h"

namespace base {

MappedFile::MappedFile(std::wstring_view path) {
    const int file = ::open(toUtf8Exact(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0) throw FileError(std::wstring(path), fromUtf8(std::strerror(errno)));
    struct stat state {};
    void* bytes = nullptr;
    bool done = ::fstat(file, &state) == 0;
    if (done && state.st_size > 0) {
        bytes = ::mmap(nullptr, static_cast<std::size_t>(state.st_size), PROT_READ, MAP_PRIVATE, file, 0);
        done = bytes != MAP_FAILED;
    }
    const int error = errno;
    ::close(file);
    if (!done) throw FileError(std::wstring(path), fromUtf8(std::strerror(error)));
    bytes_ = static_cast<const char*>(bytes);
    if (bytes_) size_ = static_cast<std::size_t>(state.st_size);
}

MappedFile::~MappedFile() {
    if (bytes_) ::munmap(const_cast<char*>(bytes_), size_);
}

}  // namespace base
