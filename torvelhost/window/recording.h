// What is done in a window, as a script that does it again.
#pragma once

#include <fstream>
#include <optional>
#include <string>
#include <string_view>

namespace host {

class Recording {
  public:
    /// Nothing is kept before a file is named.
    Recording() = default;
    ~Recording() { flush(); }
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    /// Writes that file anew. Throws base::FileError.
    void open(const std::wstring& path);
    /// What was recorded before was of another drawing, and goes.
    void begin(const std::wstring& drawing);

    void add(std::wstring_view line);
    /// The line added last answered nothing.
    void takeBack() { last_.reset(); }

    /// While one lives, nothing is recorded: what is done is none of a script's.
    class Pause {
      public:
        explicit Pause(Recording& recording) : recording_(recording) { ++recording_.paused_; }
        ~Pause() { --recording_.paused_; }
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

      private:
        Recording& recording_;
    };

  private:
    void flush();

    std::wstring path_;
    std::ofstream file_;
    std::optional<std::wstring> last_;  // not written yet
    int paused_ = 0;
};

}  // namespace host
