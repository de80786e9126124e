#include <windows.h>

#include "base/console.h"
#include "base/text.h"
#include "torvelhost/lines/prompt_line.h"

namespace host {
namespace {

// Ctrl+C ends the reading, and tells a thread of its own of it, perhaps a little later.
bool wasInterrupted() {
    for (int i = 0; i < 20; ++i) {
        if (base::takeInterrupt()) return true;
        Sleep(10);
    }
    return false;
}

// The console itself edits lines and keeps a history.
TypedLine readConsoleLine() {
    std::wstring text;
    while (!text.ends_with(L'\n')) {
        wchar_t units[256];
        DWORD count = 0;
        const bool isRead = ReadConsoleW(GetStdHandle(STD_INPUT_HANDLE), units, std::size(units), &count, nullptr);
        const bool isAborted = count == 0 && GetLastError() == ERROR_OPERATION_ABORTED;
        if (isAborted ? wasInterrupted() : base::takeInterrupt()) return {TypedLine::kCancelled, text};
        if (!isRead || count == 0) return {TypedLine::kInputEnded, {}};
        text.append(units, count);
        if (text.front() == L'\x1A') return {TypedLine::kInputEnded, {}};  // Ctrl+Z
    }
    while (text.ends_with(L'\n') || text.ends_with(L'\r')) text.pop_back();
    return {TypedLine::kEntered, text};
}

}  // namespace

TypedLine readPromptLine(std::wstring_view prompt, const Choices&) {
    base::writeTo(base::Stream::kError, base::toUtf8(prompt));
    if (base::isTerminal(base::Stream::kInput)) {
        SetLastError(0);
        TypedLine line = readConsoleLine();
        if (line.end != TypedLine::kEntered) base::writeTo(base::Stream::kError, "\r\n");
        return line;
    }
    const std::optional<std::string> line = base::readLine();
    if (!line) return {TypedLine::kInputEnded, {}};
    return {TypedLine::kEntered, base::fromUtf8(*line)};
}

}  // namespace host
