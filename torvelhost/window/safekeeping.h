// What keeps the drawing of a window safe: a copy aside every few minutes while it is not saved, and no two windows
// that save over each other.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "torvelhost/lines/terminal.h"
#include "torvelhost/session/document.h"
#include "torvelhost/session/kept_aside.h"

namespace host {

class Safekeeping {
  public:
    /// A drawing that was changed is kept aside after that many milliseconds, and as often while changes come.
    static constexpr std::int64_t kInterval = 180000;

    /// Copies and what is known of them are in `folder`. Where that cannot be, the user is warned, and there are none.
    Safekeeping(const std::wstring& folder, Terminal& terminal);

    /// What windows that did not end in order have left, once.
    std::vector<LeftCopy> takeLeft();
    void dropLeft(const LeftCopy& left);
    /// The drawing shown next was read from it: it goes as soon as a copy of this window's own is there.
    void adopt(const LeftCopy& left) { adopted_ = left; }

    /// The window shows this drawing; empty: a new one. Where another window has it, its file is protected, which is
    /// told.
    void show(const std::wstring& drawing, Document& document);
    /// To be called at the command prompt: keeps what is to be kept at that time, and drops what was saved.
    void work(const std::wstring& drawing, Document& document, std::int64_t now);
    /// The window ends by an error: what is not saved is kept as it is now, or as it was kept last, for the next
    /// window. False: there is nothing of it.
    bool leave(Document& document);
    /// When work() has something to do without anything happening.
    std::optional<std::int64_t> dueAt() const { return due_; }

  private:
    Terminal& terminal_;
    std::unique_ptr<KeptAside> kept_;
    std::wstring drawing_;
    std::optional<DrawingHold> hold_;
    std::optional<LeftCopy> adopted_;
    std::uint64_t keptRevision_ = 0;
    std::optional<std::int64_t> due_;
};

}  // namespace host
