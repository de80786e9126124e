// Cuts a stream of bytes into lines.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace base {

class LineBuffer {
  public:
    /// Fills the bytes as far as they come, at least one; 0 is the end of the stream.
    using Read = std::function<std::size_t(char* bytes, std::size_t size)>;

    explicit LineBuffer(Read read) : read_(std::move(read)) {}

    /// The next line without LF or CR LF, also one that the stream ends without line end. Nothing at the end of the
    /// stream, which a byte 0x1A is too.
    std::optional<std::string> take();

  private:
    Read read_;
    std::string pending_;
    bool ended_ = false;
};

}  // namespace base
