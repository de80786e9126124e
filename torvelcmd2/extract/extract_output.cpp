#include "torvelcmd2/extract/extract_output.h"

#include <algorithm>
#include <fstream>
#include <optional>

#include "base/paths.h"
#include "torvelcmd2/frame/module_dialog.h"

namespace torvel {
namespace {

bool isFileOf(const OdDbDatabase* drawing, const OdString& path) {
    std::error_code error;
    return drawing != nullptr &&
           std::filesystem::equivalent(base::toPath(path), base::toPath(drawing->fileName()), error);
}

// The next line without its end and the blanks around it; nothing where no line ends.
std::optional<std::string_view> takeLine(std::string_view& text) {
    const std::size_t end = text.find_first_of("\r\n");
    if (end == std::string_view::npos) return std::nullopt;
    std::string_view line = text.substr(0, end);
    text.remove_prefix(text.substr(end).starts_with("\r\n") ? end + 2 : end + 1);
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    return line.substr(0, line.find_last_not_of(" \t") + 1);
}

// The output path begins as the drawing's own name in another folder, where another drawing may lie. Extracts are made
// anew again and again, also those whose rows speak of sections; drawings are not.
bool isDrawing(const OdString& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(base::toPath(path), error))
        return false;  // reading a pipe would wait for ever
    std::ifstream file(base::toPath(path), std::ios::binary);
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

}  // namespace

void appendLines(std::string& bytes, std::string_view text) {
    for (;;) {
        const std::size_t lineEnd = text.find('\n');
        bytes += text.substr(0, lineEnd);
        if (lineEnd == std::string_view::npos) return;
        bytes += "\r\n";
        text.remove_prefix(lineEnd + 1);
    }
}

std::unique_ptr<base::AtomicFile> openExtractOutput(const OdString& path, const OdDbDatabase* drawing) {
    if (path.empty()) return nullptr;
    if (isFileOf(drawing, path) || isDrawing(path)) {
        notifyUser(path + L" is a drawing and is not overwritten");
        return nullptr;
    }
    try {
        return std::make_unique<base::AtomicFile>(path);
    } catch (const base::FileError&) {
        return nullptr;
    }
}

}  // namespace torvel
