#include <algorithm>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "base/exact_utf8.h"
#include "base/files.h"
#include "base/process.h"
#include "base/text.h"

namespace base {
namespace {

// What the program begins with.
class Streams {
  public:
    explicit Streams(const std::string& printed) {
        posix_spawn_file_actions_init(&actions_);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, printed.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        posix_spawn_file_actions_adddup2(&actions_, STDOUT_FILENO, STDERR_FILENO);
    }
    ~Streams() { posix_spawn_file_actions_destroy(&actions_); }
    Streams(const Streams&) = delete;
    Streams& operator=(const Streams&) = delete;

    const posix_spawn_file_actions_t* actions() const { return &actions_; }

  private:
    posix_spawn_file_actions_t actions_;
};

// What would end this program ends the other one first, with all that it started: they are a group of their own, which
// a terminal's Ctrl+C does not reach. Meanwhile these signals wait.
class HeldSignals {
  public:
    HeldSignals() {
        sigset_t held;
        sigemptyset(&held);
        for (const int number : kSignals) sigaddset(&held, number);
        pthread_sigmask(SIG_BLOCK, &held, &before_);
    }
    ~HeldSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

    const sigset_t& before() const { return before_; }
    static bool isAnyPending() {
        sigset_t pending;
        sigpending(&pending);
        return std::ranges::any_of(kSignals, [&](int number) { return sigismember(&pending, number) == 1; });
    }

  private:
    static constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
    sigset_t before_;
};

// How the program begins.
class Start {
  public:
    explicit Start(const sigset_t& signals) {
        posix_spawnattr_init(&attributes_);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
        posix_spawnattr_setsigmask(&attributes_, &signals);
    }
    ~Start() { posix_spawnattr_destroy(&attributes_); }
    Start(const Start&) = delete;
    Start& operator=(const Start&) = delete;

    const posix_spawnattr_t* attributes() const { return &attributes_; }

  private:
    posix_spawnattr_t attributes_;
};

// Nothing once `end` is over, or this program is to end.
std::optional<int> waitFor(pid_t process, std::chrono::steady_clock::time_point end) {
    std::chrono::milliseconds pause(1);
    for (;;) {
        int status = 0;
        const pid_t ended = ::waitpid(process, &status, WNOHANG);
        if (ended == process) return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        if (ended < 0 && errno != EINTR) return 255;
        if (std::chrono::steady_clock::now() >= end || HeldSignals::isAnyPending()) return std::nullopt;
        std::this_thread::sleep_for(pause);
        pause = std::min(2 * pause, std::chrono::milliseconds(50));
    }
}

}  // namespace

std::optional<int> runProgram(const std::vector<std::wstring>& command, const std::wstring& printed,
                              std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    std::vector<std::string> words;
    words.reserve(command.size());
    for (const std::wstring& word : command) words.push_back(toUtf8Exact(word));
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const Streams streams(toUtf8Exact(printed));
    const HeldSignals signals;
    const Start start(signals.before());
    pid_t process = 0;
    if (const int error =
            ::posix_spawnp(&process, arguments[0], streams.actions(), start.attributes(), arguments.data(), environ);
        error != 0)
        throw FileError(command[0], fromUtf8(std::strerror(error)));
    const std::optional<int> status = waitFor(process, end);
    if (!status) {
        ::kill(-process, SIGKILL);
        while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
    return status;
}

}  // namespace base
