#include "torvelcmd2/extract/extract_output.h"

#include <cctype>
#include <fstream>

#include "base/paths.h"

namespace torvel {
namespace {

bool isFileOf(const OdDbDatabase* drawing, const OdString& path) {
    std::error_code error;
    return drawing != nullptr &&
           std::filesystem::equivalent(base::toPath(path), base::toPath(drawing->fileName()), error);
}

// The output path begins as the drawing's own name in another folder, where another drawing may lie. Extracts are made
// anew again and again; drawings are not.
bool isDrawing(const OdString& path) {
    std::ifstream file(base::toPath(path), std::ios::binary);
    char bytes[256];
    file.read(bytes, sizeof bytes);
    const std::string_view front(bytes, static_cast<std::size_t>(file.gcount()));
    if (front.substr(0, 32).find(" Binary DXF\r\n\x1A") != std::string_view::npos) return true;
    // The first record is a section; comments may stand before it.
    std::string_view before = front.substr(0, front.find("SECTION"));
    if (before.size() == front.size()) return false;
    before = before.substr(0, before.find_last_not_of(" \t\r\n") + 1);
    return before.ends_with('0') &&
           (before.size() == 1 || !std::isdigit(static_cast<unsigned char>(before[before.size() - 2])));
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
    if (path.empty() || isFileOf(drawing, path) || isDrawing(path)) return nullptr;
    try {
        return std::make_unique<base::AtomicFile>(path);
    } catch (const base::FileError&) {
        return nullptr;
    }
}

}  // namespace torvel
