#include "torvelcmd2/extract/extract_output.h"

#include "base/paths.h"
#include "drawingdb/drawing_file.h"
#include "torvelcmd2/frame/module_dialog.h"

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
    if (path.empty()) return nullptr;
    // The output path begins as the drawing's own name in another folder, where another drawing may lie. Extracts are
    // made anew again and again, also those whose rows speak of sections; drawings are not.
    if (isFileOf(drawing, path) || drawingdb::isDrawingFile(path)) {
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
