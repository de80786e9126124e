#include <iconv.h>
#include <memory>
#include <string>

#include "base/double_byte.h"

namespace base {
namespace {

struct Closer {
    void operator()(void* converter) const { iconv_close(converter); }
};

const char* systemName(unsigned codePage) {
    switch (codePage) {
        case 932:
            return "CP932";
        case 936:
            return "CP936";
        case 949:
            return "CP949";
        case 950:
            return "CP950";
        case 1361:
            return "JOHAB";
        default:
            return "";
    }
}

// The one character that the bytes mean, or 0.
char32_t decode(iconv_t converter, char* bytes, std::size_t count) {
    char32_t characters[4] = {};
    char* out = reinterpret_cast<char*>(characters);
    std::size_t room = sizeof characters;
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    if (iconv(converter, &bytes, &count, &out, &room) == static_cast<std::size_t>(-1) || count != 0 ||
        room != sizeof characters - sizeof(char32_t))
        return 0;
    return characters[0];
}

}  // namespace

std::vector<char32_t> doubleByteTable(unsigned codePage) {
    const iconv_t opened = iconv_open("UTF-32LE", systemName(codePage));
    if (opened == reinterpret_cast<iconv_t>(-1)) return {};
    const std::unique_ptr<void, Closer> converter(opened);
    std::vector<char32_t> table(0x10000);
    for (unsigned code = 0; code < 0x10000; ++code) {
        char bytes[2] = {static_cast<char>(code >> 8), static_cast<char>(code)};
        if (code < 0x100)
            table[code] = decode(opened, bytes + 1, 1);
        else if (code >= 0x8000 && table[code >> 8] == 0)
            table[code] = decode(opened, bytes, 2);
    }
    return table;
}

}  // namespace base
