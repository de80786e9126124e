#include "base/console.h"
#include "base/text.h"
#include "torvelhost/lines/prompt_line.h"

namespace host {

// The console itself edits lines and keeps a history.
std::optional<std::wstring> readPromptLine(std::wstring_view prompt, const std::vector<std::wstring>&) {
    base::writeTo(base::Stream::kError, base::toUtf8(prompt));
    const std::optional<std::string> line = base::readLine();
    if (!line) return std::nullopt;
    return base::fromUtf8(*line);
}

}  // namespace host
