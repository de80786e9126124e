#include "torvelhost/lines/progress.h"

#include <chrono>
#include <system_error>

#include "base/console.h"
#include "base/text.h"

namespace host {
namespace {

Progress* g_current = nullptr;
Progress::Watcher g_watcher;

}  // namespace

Progress::Progress(const Terminal& terminal, const std::wstring& work) : work_(work) {
    if (terminal.isQuiet() || g_current || !base::isTerminal(base::Stream::kError)) return;
    try {
        thread_ = std::thread([this] { watch(); });
        g_current = this;
    } catch (const std::system_error&) {
        // No more threads are to be had; the work goes on without being told of.
    }
}

Progress::~Progress() {
    if (!thread_.joinable()) return;
    {
        const std::lock_guard lock(mutex_);
        ended_ = true;
        wipe();
    }
    change_.notify_one();
    thread_.join();
    g_current = nullptr;
}

bool Progress::tell(std::uint64_t done, std::uint64_t total) {
    if (g_current && total > 0)
        g_current->percent_ = static_cast<int>(100.0 * static_cast<double>(done) / static_cast<double>(total));
    const bool goesOn = !g_watcher || total == 0 || g_watcher(static_cast<double>(done) / static_cast<double>(total));
    return !base::takeInterrupt() && goesOn;
}

void Progress::watch(Watcher watcher) { g_watcher = std::move(watcher); }

void Progress::watch() {
    using std::chrono::seconds;
    std::unique_lock lock(mutex_);
    unsigned start = starts_;
    for (int elapsed = 0; !ended_;) {
        change_.wait_for(lock, seconds(1), [&] { return ended_ || starts_ != start; });
        if (ended_) return;
        if (paused_ || starts_ != start) {
            start = starts_;
            elapsed = 0;
            continue;
        }
        ++elapsed;
        const int percent = percent_;
        base::writeTo(base::Stream::kError, "\r" + base::toUtf8(work_) + " ... " +
                                                (percent >= 0 ? std::to_string(percent) + " %, " : std::string()) +
                                                std::to_string(elapsed) + " s");
        shown_ = true;
    }
}

void Progress::wipe() {
    if (shown_) base::wipeLine(base::Stream::kError);
    shown_ = false;
}

Progress::Pause::Pause() {
    if (!g_current) return;
    const std::lock_guard lock(g_current->mutex_);
    g_current->paused_ = true;
    g_current->wipe();
}

Progress::Pause::~Pause() {
    if (!g_current) return;
    {
        const std::lock_guard lock(g_current->mutex_);
        g_current->paused_ = false;
        ++g_current->starts_;
    }
    g_current->change_.notify_one();
}

}  // namespace host
