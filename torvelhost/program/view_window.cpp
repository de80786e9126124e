#include "torvelhost/program/view_window.h"

#include "base/paths.h"
#include "base/text.h"
#include "dialogs/desktop.h"
#include "torvelhost/lines/progress.h"
#include "torvelhost/window/make_frame.h"
#include "torvelhost/window/played_frame.h"

namespace host {

ViewWindow::ViewWindow(const Options& options, std::unique_ptr<ScriptReplies> scripts, Terminal& terminal)
    : scripts_(std::move(scripts)) {
    if (options.events) {
        auto headless = std::make_unique<HeadlessFrame>(readEvents(*options.events));
        headless_ = headless.get();
        frame_ = std::move(headless);
    }
    if (options.view) {
        if (headless_) dialogs::useOwnDesktop();
        std::wstring reason;
        std::unique_ptr<ViewFrame> window = makeViewFrame(reason);
        if (!window) throw UsageError("--view: " + base::toUtf8(reason));
        if (headless_) script_ = std::exchange(frame_, nullptr);
        frame_ = headless_ ? PlayedFrame::make(std::move(window), *headless_) : std::move(window);
        if (!frame_) throw UsageError("--view: events cannot work this window; give --events alone");
    }
    view_ = std::make_unique<CanvasView>(*frame_, terminal);
    if (!headless_) {
        view_->keepRecent();
        view_->useSafekeeping(safekeeping_.emplace(base::joinPath(base::userStateFolder(), L"torvelhost"), terminal));
    }
    if (options.record) view_->recording().open(*options.record);
    view_->useScripts(*scripts_, [this] {
        if (!headless_) useWindows();
    });
    if (headless_) {
        headless_->work(*view_);
        view_->useEventLines({[this] { return headless_->place(); }, [this] { return headless_->peekDialogLine(); }});
        dialogLines_ = std::make_unique<EventDialogLines>(*view_, terminal);
    } else {
        dialogLines_ = std::make_unique<DialogLines>(*view_, terminal);
    }
    if (!script_ || !dialogs::useWindows(dialogLines_.get())) dialogs::useForms(*dialogLines_);
}

ViewWindow::~ViewWindow() {
    dialogs::useMainWindow(nullptr);
    dialogs::useStandard();
}

void ViewWindow::open() {
    frame_->open(*view_);
    dialogs::useMainWindow(frame_->nativeWindow());
}

// When scripts are through, the user works the dialogs.
void ViewWindow::useWindows() {
    dialogs::useWindows(
        nullptr,
        [this](const std::function<void()>& wait) {
            const Progress::Pause pause;
            view_->dialogWaits();
            wait();
        });
}

}  // namespace host
