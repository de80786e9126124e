#include "torvelhost/plot/deflate.h"

#include <new>

namespace host {
namespace {

// Pictures get smaller by some hundredths with more, and take much longer.
constexpr int kLevel = 4;

}  // namespace

Deflater::Deflater() {
    if (deflateInit(&stream_, kLevel) != Z_OK) throw std::bad_alloc();
}

Deflater::~Deflater() { deflateEnd(&stream_); }

void Deflater::run(std::string_view bytes, int flush) {
    // It is only read, though zlib does not say so.
    stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream_.avail_in = static_cast<uInt>(bytes.size());
    do {
        char buffer[65536];
        stream_.next_out = reinterpret_cast<Bytef*>(buffer);
        stream_.avail_out = sizeof buffer;
        if (::deflate(&stream_, flush) == Z_STREAM_ERROR) throw std::bad_alloc();
        packed_.append(buffer, sizeof buffer - stream_.avail_out);
    } while (stream_.avail_out == 0);
}

std::string Deflater::end() {
    run({}, Z_FINISH);
    return std::move(packed_);
}

std::string deflated(std::string_view bytes) {
    Deflater deflater;
    deflater.add(bytes);
    return deflater.end();
}

}  // namespace host
