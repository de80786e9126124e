#include <cerrno>
#include <csignal>
#include <unistd.h>

#include "base/console.h"
#include "base/line_buffer.h"

namespace base {
namespace {

int descriptorOf(Stream stream) {
    return stream == Stream::kInput ? STDIN_FILENO : stream == Stream::kOutput ? STDOUT_FILENO : STDERR_FILENO;
}

volatile std::sig_atomic_t g_isInterrupted = 0;

std::size_t readInput(char* bytes, std::size_t size) {
    for (;;) {
        const ssize_t count = ::read(STDIN_FILENO, bytes, size);
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR) return 0;
    }
}

}  // namespace

void setUpConsole() {
    // Writing into a closed pipe is an error like any other, not the end of the program.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);  // nor is a file that grew too large
}

std::vector<std::string> commandLine(int count, char** arguments) { return {arguments, arguments + count}; }

bool isTerminal(Stream stream) { return ::isatty(descriptorOf(stream)) != 0; }

bool writeTo(Stream stream, std::string_view utf8) {
    while (!utf8.empty()) {
        const ssize_t count = ::write(descriptorOf(stream), utf8.data(), utf8.size());
        if (count >= 0)
            utf8.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return false;
    }
    return true;
}

void wipeLine(Stream stream) { writeTo(stream, "\r\x1b[K"); }

void keepInterrupts() {
    struct sigaction action {};
    action.sa_handler = [](int) { g_isInterrupted = 1; };
    ::sigaction(SIGINT, &action, nullptr);
}

bool takeInterrupt() {
    const bool isInterrupted = g_isInterrupted != 0;
    g_isInterrupted = 0;
    return isInterrupted;
}

std::optional<std::string> readLine() {
    static LineBuffer input(readInput);
    return input.take();
}

}  // namespace base
