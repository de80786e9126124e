#include "torvelhost/window/recording.h"

#include "base/files.h"
#include "base/paths.h"
#include "base/text.h"

namespace host {

void Recording::open(const std::wstring& path) {
    path_ = path;
    begin(L"");
}

void Recording::begin(const std::wstring& drawing) {
    last_.reset();
    if (path_.empty()) return;
    file_.close();  // or what it still holds would go into the new file
    file_ = std::ofstream(base::toPath(path_), std::ios::binary | std::ios::trunc);
    if (!file_) throw base::FileError(path_, L"the recording cannot be written there");
    if (!drawing.empty()) file_ << "; drawing: " << base::toUtf8(drawing) << "\n";
}

void Recording::add(std::wstring_view line) {
    if (path_.empty() || paused_ > 0) return;
    flush();
    last_ = line;
}

void Recording::flush() {
    if (!last_) return;
    file_ << base::toUtf8(*last_) << "\n" << std::flush;
    last_.reset();
}

}  // namespace host
