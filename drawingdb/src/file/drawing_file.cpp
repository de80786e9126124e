#include "drawingdb/drawing_file.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>

#include "base/paths.h"

namespace drawingdb {
namespace {

// The next line without its end and the blanks around it; nothing where no line ends.
std::optional<std::string_view> takeLine(std::string_view& text) {
    const std::size_t end = text.find_first_of("\r\n");
    if (end == std::string_view::npos) return std::nullopt;
    std::string_view line = text.substr(0, end);
    text.remove_prefix(text.substr(end).starts_with("\r\n") ? end + 2 : end + 1);
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    return line.substr(0, line.find_last_not_of(" \t") + 1);
}

}  // namespace

bool isDrawingFile(std::wstring_view path) {
    const std::filesystem::path name = base::toPath(path);
    std::error_code error;
    if (!std::filesystem::is_regular_file(name, error)) return false;  // reading a pipe would wait for ever
    std::ifstream file(name, std::ios::binary);
    char bytes[1024];
    file.read(bytes, sizeof bytes);
    std::string_view front(bytes, static_cast<std::size_t>(file.gcount()));
    if (front.substr(0, 32).find(" Binary DXF\r\n\x1A") != std::string_view::npos) return true;
    if (front.starts_with("\xEF\xBB\xBF")) front.remove_prefix(3);
    // The first record is a section; comments may stand before it.
    auto code = takeLine(front);
    while (code == "999" && takeLine(front)) code = takeLine(front);
    return code == "0" && takeLine(front) == "SECTION";
}

}  // namespace drawingdb
