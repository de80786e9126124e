// group_floor FILE.dxf
//
// What any reader of ASCII DXF must do at the least: bring the file into memory and pass over all its groups, line by
// line, taking each code as a number. Prints how many groups and records there are, so that nothing can be left out.
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>

namespace {

struct Bytes {
    std::unique_ptr<char[]> data;
    std::size_t size = 0;
};

Bytes readWhole(const char* path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    Bytes bytes;
    if (!file) return bytes;
    bytes.size = static_cast<std::size_t>(file.tellg());
    bytes.data = std::make_unique_for_overwrite<char[]>(bytes.size);
    file.seekg(0);
    if (!file.read(bytes.data.get(), static_cast<std::streamsize>(bytes.size))) bytes.data.reset();
    return bytes;
}

int codeOf(const char* begin, const char* end) {
    while (begin < end && *begin == ' ') ++begin;
    const bool negative = begin < end && *begin == '-';
    if (negative) ++begin;
    int code = 0;
    for (; begin < end && *begin >= '0' && *begin <= '9'; ++begin) code = 10 * code + (*begin - '0');
    return negative ? -code : code;
}

}  // namespace

int main(int count, char** arguments) {
    const Bytes bytes = count == 2 ? readWhole(arguments[1]) : Bytes();
    if (!bytes.data) {
        std::cerr << "usage: group_floor FILE.dxf (one that can be read)\n";
        return 2;
    }
    std::uint64_t groups = 0, records = 0;
    const char* at = bytes.data.get();
    const char* const end = at + bytes.size;
    const auto lineEnd = [end](const char* begin) {
        return static_cast<const char*>(std::memchr(begin, '\n', static_cast<std::size_t>(end - begin)));
    };
    while (at < end) {
        const char* const codeEnd = lineEnd(at);
        const char* const valueEnd = codeEnd == nullptr ? nullptr : lineEnd(codeEnd + 1);
        if (!valueEnd) break;
        ++groups;
        if (codeOf(at, codeEnd) == 0) ++records;
        at = valueEnd + 1;
    }
    std::cout << groups << " groups, " << records << " records\n";
}
