#include "torvelhost/lines/progress.h"

#include <chrono>

#include "base/console.h"
#include "base/text.h"

namespace host {
namespace {

Progress* g_current = nullptr;

}  // namespace

Progress::Progress(const Terminal& terminal, const std::wstring& work) : work_(work) {
    if (terminal.isQuiet() || g_current || !base::isTerminal(base::Stream::kError)) return;
    g_current = this;
    thread_ = std::thread([this] { watch(); });
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
        base::writeTo(base::Stream::kError, "\r" + base::toUtf8(work_) + " ... " + std::to_string(elapsed) + " s");
        shown_ = true;
    }
}

void Progress::wipe() {
    if (shown_) base::writeTo(base::Stream::kError, "\r\x1b[K");
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
