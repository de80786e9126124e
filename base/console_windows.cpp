#include <windows.h>
#include <shellapi.h>

#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <io.h>
#include <memory>

#include "base/console.h"
#include "base/line_buffer.h"
#include "base/text.h"

namespace base {
namespace {

struct LocalFreer {
    void operator()(void* memory) const { LocalFree(memory); }
};

HANDLE handleOf(Stream stream) {
    return GetStdHandle(stream == Stream::kInput    ? STD_INPUT_HANDLE
                        : stream == Stream::kOutput ? STD_OUTPUT_HANDLE
                                                    : STD_ERROR_HANDLE);
}

// A console gives UTF-16, which is converted here: its own conversion of input to UTF-8 loses characters.
std::size_t readConsole(HANDLE console, char* bytes, std::size_t size) {
    wchar_t units[1024];
    DWORD count = 0;
    if (!ReadConsoleW(console, units, static_cast<DWORD>(std::min(std::size(units), size / 3)), &count, nullptr))
        return 0;
    const std::string utf8 = toUtf8(std::wstring_view(units, count));
    std::copy(utf8.begin(), utf8.end(), bytes);
    return utf8.size();
}

// Its code page, which outlives the program, is left alone.
bool writeConsole(HANDLE console, std::wstring_view text) {
    while (!text.empty()) {
        DWORD count = 0;
        const DWORD size = static_cast<DWORD>(std::min<std::size_t>(text.size(), 1u << 14));
        if (!WriteConsoleW(console, text.data(), size, &count, nullptr) || count == 0) return false;
        text.remove_prefix(count);
    }
    return true;
}

std::atomic<bool> g_isInterrupted = false;

std::size_t readInput(char* bytes, std::size_t size) {
    const HANDLE input = handleOf(Stream::kInput);
    if (isTerminal(Stream::kInput)) return readConsole(input, bytes, size);
    DWORD count = 0;
    return ReadFile(input, bytes, static_cast<DWORD>(size), &count, nullptr) ? count : 0;
}

}  // namespace

void setUpConsole() {
    for (int descriptor : {0, 1, 2}) _setmode(descriptor, _O_BINARY);
}

std::vector<std::string> commandLine(int, char**) {
    int count = 0;
    const std::unique_ptr<wchar_t*, LocalFreer> arguments(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::string> result;
    for (int i = 0; i < count; ++i) result.push_back(toUtf8(arguments.get()[i]));
    return result;
}

bool isTerminal(Stream stream) {
    DWORD mode = 0;
    return GetConsoleMode(handleOf(stream), &mode) != FALSE;
}

bool writeTo(Stream stream, std::string_view utf8) {
    if (isTerminal(stream)) return writeConsole(handleOf(stream), fromUtf8(utf8));
    while (!utf8.empty()) {
        DWORD count = 0;
        const DWORD size = static_cast<DWORD>(std::min<std::size_t>(utf8.size(), 1u << 20));
        if (!WriteFile(handleOf(stream), utf8.data(), size, &count, nullptr)) return false;
        utf8.remove_prefix(count);
    }
    return true;
}

void wipeLine(Stream stream) {
    const HANDLE console = handleOf(stream);
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!GetConsoleScreenBufferInfo(console, &info)) return;
    const COORD start{0, info.dwCursorPosition.Y};
    DWORD count = 0;
    FillConsoleOutputCharacterW(console, L' ', static_cast<DWORD>(info.dwSize.X), start, &count);
    SetConsoleCursorPosition(console, start);
}

void keepInterrupts() {
    SetConsoleCtrlHandler(
        [](DWORD event) -> BOOL {
            if (event != CTRL_C_EVENT) return FALSE;
            g_isInterrupted = true;
            return TRUE;
        },
        TRUE);
}

bool takeInterrupt() { return g_isInterrupted.exchange(false); }

std::optional<std::string> readLine() {
    static LineBuffer input(readInput);
    return input.take();
}

}  // namespace base
