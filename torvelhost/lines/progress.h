// Work that takes more than a second says so on a terminal.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <new>
#include <string>
#include <thread>

#include "base/files.h"
#include "torvelhost/lines/terminal.h"

namespace host {

/// Shows "Saving plan.dxf ... 3 s" on standard error while it lives, from the second second on; "AttSync ... 42 %, 3 s"
/// once the work has told how far it is. Does nothing when quiet or when standard error is no terminal. One at a time.
class Progress {
  public:
    Progress(const Terminal& terminal, const std::wstring& work);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// `done` of `total` steps of the work are done. False when the user wants it to stop: Ctrl-C was pressed at the
    /// command prompt's terminal. A script that is run has no one to go on with, and Ctrl-C ends the program.
    static bool tell(std::uint64_t done, std::uint64_t total);
    /// Is told by tell() what part is done, from 0 to 1, and says whether the user lets it go on. Empty: nobody.
    using Watcher = std::function<bool(double part)>;
    static void watch(Watcher watcher);

    /// While a pause lives the program waits for the user; the clock starts anew behind it.
    class Pause {
      public:
        Pause();
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;
    };

  private:
    void watch();
    void wipe();

    std::wstring work_;
    std::mutex mutex_;
    std::condition_variable change_;
    bool ended_ = false;
    bool paused_ = false;
    unsigned starts_ = 0;
    std::atomic<int> percent_ = -1;  // -1: not told
    bool shown_ = false;
    std::thread thread_;  // last: it uses all of the above
};

/// A job on a file, with its progress. Where memory runs out, base::FileError says for what.
template <class Job>
auto onFile(Terminal& terminal, const wchar_t* doing, const wchar_t* verb, const std::wstring& file, Job job) {
    const Progress progress(terminal, doing + (L" " + file));
    try {
        return job();
    } catch (const std::bad_alloc&) {
        throw base::FileError(file, std::wstring(L"there is not enough memory to ") + verb);
    }
}

}  // namespace host
