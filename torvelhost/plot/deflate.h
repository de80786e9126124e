// Bytes made smaller, as PNG and PDF want them (zlib's format).
#pragma once

#include <string>
#include <string_view>
#include <zlib.h>

namespace host {

/// Takes bytes piece by piece. Throws std::bad_alloc where memory runs out.
class Deflater {
  public:
    Deflater();
    ~Deflater();
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;

    void add(std::string_view bytes) { run(bytes, Z_NO_FLUSH); }
    /// What became of all of them; nothing may be added afterwards.
    std::string end();

  private:
    void run(std::string_view bytes, int flush);

    z_stream stream_ = {};
    std::string packed_;
};

std::string deflated(std::string_view bytes);

}  // namespace host
