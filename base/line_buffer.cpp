#include "base/line_buffer.h"

namespace base {

std::optional<std::string> LineBuffer::take() {
    std::size_t searched = 0;
    std::size_t end;
    while ((end = pending_.find('\n', searched)) == std::string::npos && !ended_) {
        searched = pending_.size();
        char bytes[4096];
        const std::size_t count = read_(bytes, sizeof bytes);
        pending_.append(bytes, count);
        if (const std::size_t mark = pending_.find('\x1A', searched); mark != std::string::npos) {
            pending_.resize(mark);
            ended_ = true;
        }
        ended_ = ended_ || count == 0;
    }
    if (pending_.empty()) return std::nullopt;
    std::string line = pending_.substr(0, end);
    pending_.erase(0, end == std::string::npos ? end : end + 1);
    if (line.ends_with('\r')) line.pop_back();
    return line;
}

}  // namespace base
