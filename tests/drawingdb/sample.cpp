#include "sample.h"

#include <cstring>
#include <sstream>
#include <vector>

#include "base/files.h"
#include "base/text.h"

const std::string& sampleBytes() {
    static const std::string bytes(
        base::readFile(base::fromUtf8(TORVEL_SOURCE_DIR "/tests/drawingdb/sample.dxf")).view());
    return bytes;
}

namespace {

struct Pair {
    std::string code, value;
};

// The pairs up to the end-of-file record.
std::vector<Pair> pairsOf(const std::string& ascii) {
    std::vector<Pair> pairs;
    std::istringstream in(ascii);
    Pair pair;
    while (std::getline(in, pair.code) && std::getline(in, pair.value)) {
        pairs.push_back(pair);
        if (pair.value == "EOF") break;
    }
    return pairs;
}

}  // namespace

std::string respelled(const std::string& ascii, const std::string& lineEnd, const std::string& codePadding,
                      bool comments) {
    std::string out;
    for (const Pair& pair : pairsOf(ascii)) {
        const std::string code = pair.code.substr(pair.code.find_first_not_of(' '));
        if (comments && pair.code == "  8") out += "999" + lineEnd + "a comment" + lineEnd;
        out += codePadding + code + lineEnd + pair.value + lineEnd;
    }
    return out;
}

std::string asBinary(const std::string& ascii, bool wideCodes) {
    std::string out = "Drawing Binary DXF\r\n\x1A";  // the name in front has seven letters
    out.push_back('\0');
    const auto number = [&out](const auto value) { out.append(reinterpret_cast<const char*>(&value), sizeof value); };
    for (const Pair& pair : pairsOf(ascii)) {
        const int code = std::stoi(pair.code);
        if (wideCodes)
            number(static_cast<std::int16_t>(code));
        else if (code < 255)
            out.push_back(static_cast<char>(code));
        else
            out.push_back(static_cast<char>(255)), number(static_cast<std::int16_t>(code));
        const bool real = (code >= 10 && code < 60) || (code >= 110 && code < 150) || (code >= 210 && code < 240) ||
                          (code >= 1010 && code < 1060);
        const bool word = (code >= 60 && code < 80) || (code >= 170 && code < 180) || (code >= 270 && code < 290) ||
                          (code >= 370 && code < 390) || (code >= 1060 && code < 1071);
        if (real)
            number(std::stod(pair.value));
        else if (word)
            number(static_cast<std::int16_t>(std::stoi(pair.value)));
        else if ((code >= 90 && code < 100) || (code >= 420 && code < 430) || (code >= 440 && code < 460))
            number(static_cast<std::int32_t>(std::stol(pair.value)));
        else if (code >= 290 && code < 300)
            out.push_back(static_cast<char>(std::stoi(pair.value)));
        else if (code >= 310 && code < 320) {
            out.push_back(static_cast<char>(pair.value.size() / 2));
            for (std::size_t i = 0; i < pair.value.size(); i += 2)
                out.push_back(static_cast<char>(std::stoi(pair.value.substr(i, 2), nullptr, 16)));
        } else {
            out += pair.value;
            out.push_back('\0');
        }
    }
    return out;
}
