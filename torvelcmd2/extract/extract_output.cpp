#include "torvelcmd2/extract/extract_output.h"

#include "base/paths.h"

namespace torvel {
namespace {

bool isFileOf(const OdDbDatabase* drawing, const OdString& path) {
    std::error_code error;
    return drawing != nullptr &&
           std::filesystem::equivalent(base::toPath(path), base::toPath(drawing->fileName()), error);
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
    if (path.empty() || isFileOf(drawing, path)) return nullptr;
    try {
        return std::make_unique<base::AtomicFile>(path);
    } catch (const base::FileError&) {
        return nullptr;
    }
}

}  // namespace torvel
