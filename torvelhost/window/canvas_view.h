// The view: what a window shows, and what is done in it. It is the source of replies for the command loop and for every
// prompt: next() hands over what the user does until a reply is there.
//
// It knows no toolkit, and it runs no command: clicks, menus, tabs and keys become lines of the script language, which
// are recorded. The drawing is read in next() alone, and when a module asks for it with nothing open for write; in
// between the picture stays.
#pragma once

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "dialogs/boxes.h"
#include "torvelhost/lines/reply_source.h"
#include "torvelhost/session/application.h"
#include "torvelhost/window/command_line.h"
#include "torvelhost/window/gestures.h"
#include "torvelhost/window/menus.h"
#include "torvelhost/window/recording.h"
#include "torvelhost/window/safekeeping.h"
#include "torvelhost/window/view_picture.h"

namespace host {

class CanvasView final : public ViewEvents, public ReplySource {
  public:
    CanvasView(ViewFrame& frame, Terminal& terminal);
    ~CanvasView() override;

    /// Replies come from these scripts first. `ended` is called when they are through.
    void useScripts(ScriptReplies& scripts, std::function<void()> ended);
    Recording& recording() { return recording_; }
    /// The files opened and saved last are the user's, from run to run.
    void keepRecent() { keepsRecent_ = true; }
    /// Where events are a script's: the place of the one that is under way, which ScriptError names for a line that
    /// does not suit a dialog; and the next line for a dialog, where that is the next event.
    struct EventLines {
        std::function<std::wstring()> place;
        std::function<std::optional<std::wstring>()> peek;
    };
    void useEventLines(EventLines lines) { eventLines_ = std::move(lines); }

    /// Shows the drawing that the application has open, called `name`; empty: a new one.
    void show(Application& application, const std::wstring& name);
    /// Before the drawing is closed.
    void showNothing();
    /// What is to be opened when the command loop has ended; nothing: the window closes. The name is empty for a new
    /// drawing.
    struct Opened {
        OdDbDatabasePtr database;
        std::wstring name;
        bool isUnsaved = false;  ///< read from a copy that was kept aside
    };
    std::optional<Opened> takeOpened() { return std::exchange(opened_, std::nullopt); }
    /// Reads a drawing; throws what that throws.
    using Open = std::function<OdDbDatabasePtr(const std::wstring& name)>;
    void useOpen(Open open) { open_ = std::move(open); }

    /// Keeps the drawings from now on. It must outlive the view.
    void useSafekeeping(Safekeeping& safekeeping) { safekeeping_ = &safekeeping; }

    /// A dialog is about to wait for the user: what it changed is shown.
    void dialogWaits();

    // ---- the source of replies
    std::optional<std::wstring> next(const Question& question) override;
    std::optional<std::wstring> peek() override;
    void refused(const std::wstring& why) override;
    std::wstring place() const override { return scripts_ ? scripts_->place() : L""; }
    bool isScript() const override { return scripts_ && scripts_->peek(); }

    // ---- what the user does
    void resized(int width, int height, double scale) override;
    void mouseMoved(CanvasPoint at, bool shift) override;
    void mouseLeft() override;
    void mousePressed(MouseButton button, CanvasPoint at, bool shift) override;
    void mouseReleased(MouseButton button, CanvasPoint at, bool shift) override;
    void mouseDoubleClicked(MouseButton button, CanvasPoint at, bool shift) override;
    void wheelTurned(double notches, CanvasPoint at) override;
    bool keyPressed(Key key) override;
    void commandTextChanged(const std::wstring& text) override { commandLine_.changed(text); }
    void menuChosen(const std::wstring& path) override;
    void tabChosen(std::size_t index) override;
    void wordChosen(std::size_t index) override;
    void fileDropped(const std::wstring& path) override;
    void closeAsked() override;

    // ---- what else is to be known where no person looks
    bool isInDialog() const { return isAsked(Expected::kDialog); }
    /// A line for the dialog that asks for one; false when none does.
    bool answerDialog(const std::wstring& line);
    std::size_t selectedCount() const;
    /// An object of the drawing that a command holds in the middle of a change; null: as it must be here.
    OdDbObjectId openForWrite() const;
    CanvasPoint placeOf(const TypedPoint& point);
    /// The exact picture is there.
    void settle();
    /// The window closes without a question; what is under way is cancelled.
    void finish() { finished_ = true; }

  private:
    /// A line that waits until it is asked for.
    struct Queued {
        std::wstring line;
        bool atCommandPrompt = false;  // prompts before that are cancelled
        bool isRepeated = true;        // by Enter at the command prompt, when it is a command
    };
    void reply(const std::wstring& line) { queue_.push_back({line}); }
    void queueCommand(const std::vector<std::wstring>& lines, bool isRepeated);
    void enter();
    bool isAsked(Expected::Kind kind) const { return question_ && question_->expected.kind == kind; }

    std::optional<std::wstring> waitForReply();
    std::optional<std::wstring> takeQueued();
    void showQuestion();
    void record(const std::wstring& line);
    void forgetFollowed() {
        followed_.reset();
        followedAway_.reset();
    }
    void follow(CanvasPoint at);
    void refreshMarks();
    void refreshSurroundings();
    void setStatus();
    void redraw();
    void redrawNow();
    bool tellProgress(double part);

    // ---- files: at the command prompt, with what changes asked about
    void request(const MenuMeaning& meaning);
    void doRequested();
    bool mayLoseChanges(const MenuMeaning& wanted);
    bool save(bool underNewName);
    void plot();
    void openDrawing(const std::wstring& name);
    void offerLeftCopies();
    void remember(const std::wstring& name);
    void readRecent();
    dialogs::Answer ask(dialogs::BoxKind kind, const std::wstring& text);
    std::optional<std::wstring> askFile(const dialogs::FileRequest& request);

    ViewFrame& frame_;
    Terminal& terminal_;
    Application* application_ = nullptr;
    Application::Session* session_ = nullptr;
    ScriptReplies* scripts_ = nullptr;
    std::function<void()> scriptsEnded_;
    Recording recording_;
    CommandLine commandLine_;
    ViewPicture picture_;
    Gestures gestures_;
    Open open_;
    Safekeeping* safekeeping_ = nullptr;
    bool offered_ = false;  // what other windows have left

    const Question* question_ = nullptr;  // while it is asked
    std::deque<Queued> queue_;
    std::wstring lastCommand_;
    std::optional<CanvasPoint> cursor_;
    std::optional<CanvasPoint> pan_;                   // where the middle button was pressed, or moved to since
    std::optional<std::wstring> followed_;             // where a preview has followed the cursor to
    std::optional<std::wstring> followedAway_;         // the last such place that is not the last point
    bool fromScript_ = false, lastWasDialog_ = false;  // the line given last
    std::optional<EventLines> eventLines_;
    double scale_ = 1;
    std::int64_t toldProgress_ = 0, redrawn_ = -1000;
    bool isOutdated_ = false;  // a module asked for the drawing to be shown as it is, and that was not done yet

    std::wstring name_;  // of the drawing; empty: it has none yet
    std::vector<std::wstring> tabs_;
    std::size_t tab_ = 0;
    std::vector<std::wstring> recent_;  // the last one first
    bool keepsRecent_ = false;
    std::deque<MenuMeaning> requested_;  // until the command prompt
    std::optional<Opened> opened_;
    bool closing_ = false, finished_ = false, asking_ = false;
    int cancels_ = 0;
    std::wstring title_;
};

}  // namespace host
