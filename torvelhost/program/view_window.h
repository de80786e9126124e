// The window of a run: its frame, on a screen or worked by a script of events, with the view and what dialogs are in
// it.
#pragma once

#include <memory>
#include <optional>

#include "torvelhost/lines/dialog_lines.h"
#include "torvelhost/session/options.h"
#include "torvelhost/window/canvas_view.h"
#include "torvelhost/window/headless_frame.h"

namespace host {

class ViewWindow {
  public:
    /// `scripts` run first. Throws UsageError where there is no screen, base::FileError and ScriptError for a script of
    /// events that cannot be used.
    ViewWindow(const Options& options, std::unique_ptr<ScriptReplies> scripts, Terminal& terminal);
    ~ViewWindow();
    ViewWindow(const ViewWindow&) = delete;
    ViewWindow& operator=(const ViewWindow&) = delete;

    CanvasView& view() { return *view_; }
    void open();
    /// The window ends by an error: what is not saved is kept for the next one. False: nothing is.
    bool leave(Document& document) { return safekeeping_ && safekeeping_->leave(document); }

  private:
    /// Dialogs take the lines of events as those of a script.
    class EventDialogLines final : public DialogLines {
      public:
        using DialogLines::DialogLines;
        bool isScript() const override { return true; }
    };
    void useWindows();

    std::unique_ptr<ViewFrame> script_;  // the headless frame, where another one does what it says
    std::unique_ptr<ViewFrame> frame_;
    HeadlessFrame* headless_ = nullptr;
    std::optional<Safekeeping> safekeeping_;
    std::unique_ptr<ScriptReplies> scripts_;
    std::unique_ptr<CanvasView> view_;
    std::unique_ptr<DialogLines> dialogLines_;
};

}  // namespace host
