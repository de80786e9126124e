// The view, from below: the source of replies; what the user does; what is shown; files.
#include "torvelhost/window/canvas_view.h"

#include <algorithm>
#include <cmath>

#include "base/files.h"
#include "base/paths.h"
#include "base/text.h"
#include "dialogs/process.h"
#include "torvelhost/lines/progress.h"
#include "torvelhost/lines/reply.h"
#include "torvelhost/lines/units.h"
#include "torvelhost/plot/plot.h"
#include "torvelhost/session/drawing_files.h"

namespace host {
namespace {

constexpr wchar_t kCancelLine[] = L"^C";
constexpr double kWheelStep = 1.25;
constexpr std::size_t kRecentFiles = 8;
constexpr wchar_t kRecentSection[] = L"Recent Files";
constexpr double kSmallestView = 1e-9, kLargestView = 1e15;

// A line as a script has to give it.
std::wstring scriptLine(const std::wstring& line) { return isComment(line) ? L"\"" + line + L"\"" : line; }

}  // namespace

CanvasView::CanvasView(ViewFrame& frame, Terminal& terminal)
    : frame_(frame),
      terminal_(terminal),
      commandLine_(frame),
      picture_(frame, terminal),
      gestures_([this](const std::wstring& line) { reply(line); }) {
    terminal.watch([this](std::wstring_view text) { frame_.addHistory(std::wstring(text)); });
    Progress::watch([this](double part) { return tellProgress(part); });
    dialogs::useRecorder([this](std::wstring_view line) { recording_.add(line); });
    frame.setMenus(windowMenus(recent_));
}

CanvasView::~CanvasView() {
    showNothing();
    dialogs::useRecorder(nullptr);
    Progress::watch(nullptr);
    terminal_.watch(nullptr);
}

void CanvasView::useScripts(ScriptReplies& scripts, std::function<void()> ended) {
    scripts_ = &scripts;
    scriptsEnded_ = std::move(ended);
}

void CanvasView::show(Application& application, const std::wstring& name) {
    application_ = &application;
    session_ = application.session();
    name_ = name;
    lastCommand_.clear();
    queue_.clear();
    picture_.show(&application);
    gestures_.use(session_);
    application.watchScreen([this] { redraw(); });
    recording_.begin(name);
    if (safekeeping_) safekeeping_->show(name, session_->document);
    if (keepsRecent_) readRecent();
    if (!name.empty()) remember(name);
}

void CanvasView::showNothing() {
    if (!application_) return;
    application_->watchScreen(nullptr);
    gestures_.use(nullptr);
    picture_.show(nullptr);
    application_ = nullptr;
    session_ = nullptr;
}

// ---- the source of replies

std::optional<std::wstring> CanvasView::next(const Question& question) {
    fromScript_ = isScript();
    if (fromScript_) {
        auto line = scripts_->next(question);
        forgetFollowed();
        if (line && question.expected.kind != Expected::kDialog) record(*line);
        return line;
    }
    if (scripts_ && scriptsEnded_) std::exchange(scriptsEnded_, nullptr)();
    scripts_ = nullptr;

    const Question* const before = std::exchange(question_, &question);
    showQuestion();
    forgetFollowed();
    frame_.setProgress(-1);
    std::optional<std::wstring> line = waitForReply();
    if (line) {
        terminal_.prompt(question.prompt + *line + L"\n");
        if (question.expected.kind != Expected::kDialog) record(*line);
    }
    picture_.forgetCursor();
    lastWasDialog_ = question.expected.kind == Expected::kDialog;
    question_ = before;
    commandLine_.rest();
    frame_.setTip(L"", {});
    frame_.setCursor(ViewFrame::Cursor::kWait);
    if (before) showQuestion();
    return line;
}

void CanvasView::showQuestion() {
    const bool isDialog = isAsked(Expected::kDialog);
    gestures_.expect(question_->expected.kind);
    commandLine_.ask(*question_);
    frame_.setCursor(isDialog ? ViewFrame::Cursor::kArrow : ViewFrame::Cursor::kNone);
}

std::optional<std::wstring> CanvasView::peek() {
    if (scripts_) return scripts_->peek();
    return eventLines_ ? eventLines_->peek() : std::nullopt;
}

std::optional<std::wstring> CanvasView::waitForReply() {
    const Expected::Kind kind = question_->expected.kind;
    picture_.update();
    refreshSurroundings();
    for (;;) {
        if (auto line = takeQueued()) return line;
        const bool cancels = kind != Expected::kCommand && kind != Expected::kDialog;
        if (cancels && (finished_ || !requested_.empty())) return kCancelLine;
        if (finished_) return asking_ ? std::optional<std::wstring>(L"no") : std::nullopt;
        if (kind == Expected::kCommand && !requested_.empty()) {
            doRequested();
            if (closing_ || opened_) return std::nullopt;
            continue;
        }
        std::optional<std::int64_t> keptAt;
        if (kind == Expected::kCommand && safekeeping_) {
            if (!std::exchange(offered_, true)) {
                offerLeftCopies();
                if (opened_) return std::nullopt;
                continue;
            }
            safekeeping_->work(name_, session_->document, frame_.now());
            keptAt = safekeeping_->dueAt();
        }
        if (kind != Expected::kDialog) refreshMarks();
        picture_.work();
        const auto due = picture_.dueAt();
        frame_.waitForEvents(due && keptAt ? std::min(due, keptAt) : due ? due : keptAt);
    }
}

std::optional<std::wstring> CanvasView::takeQueued() {
    if (queue_.empty()) return std::nullopt;
    const Queued front = queue_.front();
    const Expected::Kind kind = question_->expected.kind;
    if (front.atCommandPrompt && kind != Expected::kCommand) {
        // What cannot be cancelled so goes on, and the entry was chosen in vain.
        constexpr int kMostPrompts = 20;
        if (kind != Expected::kDialog && ++cancels_ <= kMostPrompts) return kCancelLine;
        queue_.clear();
        return std::nullopt;
    }
    queue_.pop_front();
    if (kind == Expected::kCommand) {
        const std::vector<std::wstring> names = question_->choices ? question_->choices() : std::vector<std::wstring>();
        for (const std::wstring& name : names)
            if (front.isRepeated && base::equalsNoCase(name, front.line)) lastCommand_ = name;
    }
    return front.line;
}

void CanvasView::record(const std::wstring& line) {
    if (dialogs::OneAnswer::isAwaited()) return;
    // A click moves the cursor from the last point to its own, in a script as here: that brings a preview where it is,
    // unless both are the same.
    std::wstring reason;
    const auto typed = parsePoint(line);
    const auto point = typed ? session_->document.toWorld(*typed, reason) : std::nullopt;
    const bool staysThere = point && point->isEqualTo(session_->document.lastPoint());
    if (line != kCancelLine && (!typed || staysThere)) {
        if (followedAway_) recording_.add(L"> " + *followedAway_);
        if (followed_ && followed_ != followedAway_ && !typed) recording_.add(L"> " + *followed_);
    }
    recording_.add(scriptLine(line));
}

void CanvasView::refused(const std::wstring& why) {
    if (fromScript_ && scripts_) scripts_->refused(why);
    if (eventLines_ && lastWasDialog_) throw ScriptError(base::toUtf8(eventLines_->place() + L": " + why));
    recording_.takeBack();
}

void CanvasView::queueCommand(const std::vector<std::wstring>& lines, bool isRepeated) {
    cancels_ = 0;
    bool first = true;
    for (const std::wstring& line : lines) queue_.push_back({line, std::exchange(first, false), isRepeated});
}

// ---- what the user does

void CanvasView::enter() {
    const std::wstring text = commandLine_.enter();
    if (!question_ || isAsked(Expected::kDialog)) return;
    if (!isAsked(Expected::kCommand)) return reply(gestures_.named(text));
    if (base::equalsNoCase(base::trimmed(text), L"QUIT")) return closeAsked();
    if (!base::trimmed(text).empty())
        reply(gestures_.named(text));
    else if (!lastCommand_.empty())
        reply(lastCommand_);
}

bool CanvasView::keyPressed(Key key) {
    switch (key) {
        case Key::kEnter:
            enter();
            return true;
        case Key::kSpace:
            if (!commandLine_.text().empty() || isAsked(Expected::kText)) return false;
            enter();
            return true;
        case Key::kEscape:
            if (!commandLine_.text().empty())
                commandLine_.set(L"");
            else if (gestures_.giveUp() || !question_ || isAsked(Expected::kDialog))
                return true;
            else if (!isAsked(Expected::kCommand) || !session_->selection.pickFirst().empty())
                reply(kCancelLine);
            return true;
        case Key::kUp:
        case Key::kDown:
            commandLine_.recall(key == Key::kUp);
            return true;
        case Key::kTab:
            if (commandLine_.text().empty()) return false;  // on to the next control
            commandLine_.complete();
            return true;
        case Key::kHelp:
            if (application_) application_->help().showTopic(session_->command.c_str(), nullptr);
            return true;
        case Key::kDelete:
            break;
    }
    return false;
}

void CanvasView::wordChosen(std::size_t index) {
    if (question_ && index < commandLine_.words().size()) reply(commandLine_.words()[index]);
}

void CanvasView::mousePressed(MouseButton button, CanvasPoint at, bool) {
    cursor_ = at;
    if (button == MouseButton::kMiddle) {
        pan_ = at;
        return;
    }
    if (!question_ || isAsked(Expected::kDialog)) return;
    if (button == MouseButton::kRight)
        enter();
    else
        gestures_.pressed(at);
}

void CanvasView::mouseReleased(MouseButton button, CanvasPoint at, bool shift) {
    cursor_ = at;
    if (button == MouseButton::kMiddle) pan_.reset();
    if (button == MouseButton::kLeft && question_) gestures_.released(at, shift);
}

void CanvasView::mouseDoubleClicked(MouseButton button, CanvasPoint at, bool) {
    cursor_ = at;
    if (button == MouseButton::kMiddle && session_) {
        picture_.showWhole();
        picture_.disturb();
    }
    if (!question_ || isAsked(Expected::kDialog)) return;
    if (button == MouseButton::kRight) enter();
    if (button == MouseButton::kLeft) gestures_.doubleClicked(at);
}

void CanvasView::mouseMoved(CanvasPoint at, bool) {
    cursor_ = at;
    if (!session_) return;
    if (pan_) {
        View view = session_->view.current();
        const double unit = view.height / session_->view.height();
        view.center = {view.center.x - (at.x - pan_->x) * unit, view.center.y + (at.y - pan_->y) * unit};
        pan_ = at;
        session_->view.move(view);
        picture_.disturb();
        return;
    }
    gestures_.moved(at);
    setStatus();
    follow(at);
}

void CanvasView::mouseLeft() {
    cursor_.reset();
    frame_.setTip(L"", {});
}

void CanvasView::wheelTurned(double notches, CanvasPoint at) {
    cursor_ = at;
    if (!session_) return;
    const OdGePoint2d fixed = ViewMap(session_->document, session_->view).currentSpacePointAt(at);
    View view = session_->view.current();
    const double height = std::clamp(view.height * std::pow(kWheelStep, -notches), kSmallestView, kLargestView);
    view.center = fixed + (view.center - fixed) * (height / view.height);
    view.height = height;
    session_->view.move(view);
    picture_.disturb();
}

// The preview goes where the cursor is.
void CanvasView::follow(CanvasPoint at) {
    if (!isAsked(Expected::kPoint) || !question_->expected.follow) return;
    ViewMap map(session_->document, session_->view);
    const std::wstring text = map.pointText(at);
    const auto point = map.pointOf(text);
    if (!point) return;
    question_->expected.follow(*point);
    followed_ = text;
    if (!point->isEqualTo(session_->document.lastPoint())) followedAway_ = followed_;
    picture_.previewChanged();
}

void CanvasView::menuChosen(const std::wstring& path) {
    const auto meaning = meaningOf(path, recent_);
    if (!meaning) return;
    if (meaning->action != MenuAction::kCommand) return request(*meaning);
    // A selection answers where one is asked for.
    const bool selects = meaning->lines == std::vector<std::wstring>{L"all"};
    if (selects && isAsked(Expected::kSet)) return reply(meaning->lines.front());
    queueCommand(meaning->lines, meaning->lines.size() == 1 && !selects);
}

void CanvasView::tabChosen(std::size_t index) {
    if (index >= tabs_.size() || index == tab_) return;
    queueCommand({L"LAYOUT", L"\"" + tabs_[index] + L"\""}, false);  // whatever it reads like
}

void CanvasView::fileDropped(const std::wstring& path) { request({MenuAction::kRecent, {path}}); }

void CanvasView::closeAsked() { request({MenuAction::kClose, {}}); }

bool CanvasView::answerDialog(const std::wstring& line) {
    if (!isAsked(Expected::kDialog)) return false;
    reply(line);
    return true;
}

// ---- what is shown

void CanvasView::resized(int width, int height, double scale) {
    gestures_.setScale(scale);
    picture_.resize(width, height);
    scale_ = scale;
}

void CanvasView::refreshMarks() {
    const Selection& selection = session_->selection;
    const Expected& expected = question_->expected;
    ViewPicture::Marks marks;
    const OdDbObjectIdArray* const set = selection.setInTheMaking();
    const OdDbObjectIdArray& chosen = set ? *set : selection.pickFirst();
    marks.selected.assign(chosen.begin(), chosen.end());
    marks.selected.insert(marks.selected.end(), selection.highlighted().begin(), selection.highlighted().end());
    const auto window = gestures_.window();
    if (cursor_ && gestures_.picks() && !window && !pan_) marks.hover = gestures_.under(*cursor_);
    marks.preview = session_->input.drawablesShown();
    picture_.setMarks(std::move(marks));

    Overlay overlay;
    overlay.cursor = cursor_;
    overlay.crosshair = true;
    if (gestures_.picks()) overlay.pickBox = static_cast<int>(std::lround(selection.pickBox * scale_));
    if (expected.kind == Expected::kPoint && expected.base)
        overlay.bandFrom = ViewMap(session_->document, session_->view).placeOf(*expected.base);
    overlay.window = window;
    picture_.setOverlay(overlay);
    const bool tells = cursor_ && expected.kind != Expected::kCommand;
    frame_.setTip(tells ? std::wstring(base::trimmed(question_->prompt)) : std::wstring(),
                  cursor_.value_or(CanvasPoint()));
}

void CanvasView::refreshSurroundings() {
    if (!session_) return;
    OdDbDatabase& database = *session_->document.database();
    // The window is of the file that the drawing was saved in last.
    if (const std::wstring& saved = session_->document.savedName(); !saved.empty() && saved != name_) {
        name_ = saved;
        remember(name_);
    }
    const std::wstring name = name_.empty() ? L"New drawing" : base::fileNameOf(name_);
    const bool isReadOnly = !name_.empty() && session_->document.isFileProtected(name_);
    const std::wstring title =
        (session_->document.isModified() ? L"*" : L"") + name + (isReadOnly ? L" (read-only)" : L"") + L" - torvelhost";
    if (title != title_) frame_.setTitle(title_ = title);
    std::vector<std::wstring> tabs;
    for (const OdString& layout : database.layoutNames()) tabs.push_back(layout);
    const auto current = std::find(tabs.begin(), tabs.end(), std::wstring(database.currentLayoutName()));
    const auto tab = static_cast<std::size_t>(current - tabs.begin());
    if (tabs == tabs_ && tab == tab_) return;
    tabs_ = std::move(tabs);
    tab_ = tab;
    frame_.setTabs(tabs_, tab_);
}

void CanvasView::setStatus() {
    if (!cursor_) return;
    const OdGePoint3d point = ViewMap(session_->document, session_->view).userPointAt(*cursor_);
    const auto integer = [&](const wchar_t* name) {
        const auto value = session_->variables.get(name);
        return value && std::holds_alternative<std::int64_t>(*value) ? static_cast<int>(std::get<std::int64_t>(*value))
                                                                     : 0;
    };
    const int units = integer(L"LUNITS"), precision = integer(L"LUPREC");
    if (!std::isfinite(point.x) || !std::isfinite(point.y)) return;
    frame_.setStatus(lengthToText(point.x, units, precision) + L", " + lengthToText(point.y, units, precision));
}

// A module asks to see the drawing as it is, in the middle of its work.
void CanvasView::redraw() {
    if (!session_) return;
    if (question_) return picture_.update();  // next() goes on with it
    // A command may change a thousand entities, one after the other.
    constexpr std::int64_t kOften = 40;
    isOutdated_ = frame_.now() - redrawn_ < kOften;
    if (!isOutdated_) redrawNow();
}

void CanvasView::redrawNow() {
    isOutdated_ = false;
    redrawn_ = frame_.now();
    picture_.update();
    picture_.work();
    frame_.breathe();
}

void CanvasView::dialogWaits() {
    if (!question_) commandLine_.showNone();
    if (session_ && isOutdated_) redrawNow();
}

bool CanvasView::tellProgress(double part) {
    const std::int64_t now = frame_.now();
    constexpr std::int64_t kOften = 50;
    if (now - toldProgress_ < kOften && part < 1) return true;
    toldProgress_ = now;
    frame_.setProgress(part < 1 ? part : -1);
    return !frame_.breathe();
}

std::size_t CanvasView::selectedCount() const {
    if (!session_) return 0;
    const OdDbObjectIdArray* const set = session_->selection.setInTheMaking();
    return set ? set->size() : session_->selection.pickFirst().size();
}

OdDbObjectId CanvasView::openForWrite() const {
    return session_ ? session_->document.database()->anyOpenForWrite() : OdDbObjectId();
}

CanvasPoint CanvasView::placeOf(const TypedPoint& point) {
    std::wstring reason;
    const auto world = session_ ? session_->document.toWorld(point, reason) : std::nullopt;
    return world ? ViewMap(session_->document, session_->view).placeOf(*world) : CanvasPoint();
}

void CanvasView::settle() {
    if (question_ && !isAsked(Expected::kDialog)) refreshMarks();
    picture_.finish();
}

// ---- files

void CanvasView::request(const MenuMeaning& meaning) { requested_.push_back(meaning); }

dialogs::Answer CanvasView::ask(dialogs::BoxKind kind, const std::wstring& text) {
    const Recording::Pause pause(recording_);
    const bool before = std::exchange(asking_, true);
    const dialogs::Answer answer = dialogs::messageBox(kind, text, L"torvelhost");
    asking_ = before;
    return answer;
}

std::optional<std::wstring> CanvasView::askFile(const dialogs::FileRequest& request) {
    const Recording::Pause pause(recording_);
    return dialogs::askFile(request);
}

// False when the user stays; saving, which he may want first, is a command of its own.
bool CanvasView::mayLoseChanges(const MenuMeaning& wanted) {
    if (!session_->document.isModified()) return true;
    const std::wstring name = name_.empty() ? L"the new drawing" : base::fileNameOf(name_);
    switch (ask(dialogs::BoxKind::kYesNoCancel, L"Save the changes to " + name + L"?")) {
        case dialogs::Answer::kNo:
            return true;
        case dialogs::Answer::kYes:
            if (save(false)) requested_.push_front(wanted);
            return false;
        default:
            return false;
    }
}

bool CanvasView::save(bool underNewName) {
    std::wstring name = name_;
    if (underNewName || name.empty() || session_->document.isFileProtected(name)) {
        dialogs::FileRequest request;
        request.save = true;
        request.title = L"Save Drawing";
        request.fileName = isDwgName(name) ? base::joinPath(base::folderOf(name), base::stemOf(name) + L".dxf") : name;
        request.defaultExtension = L"dxf";
        request.filter = L"Drawings (*.dxf)|*.dxf|All files|*.*||";
        request.askOverwrite = true;
        const auto chosen = askFile(request);
        if (!chosen) return false;
        name = *chosen;
    }
    const bool isItsOwn = name == std::wstring(session_->document.database()->fileName());
    queueCommand({L"SAVE", isItsOwn ? std::wstring() : name}, false);
    return true;
}

void CanvasView::plot() {
    dialogs::FileRequest request;
    request.save = true;
    request.title = L"Plot";
    request.defaultExtension = L"png";
    request.filter = L"Pictures (*.png;*.svg;*.pdf)|*.png;*.svg;*.pdf|All files|*.*||";
    request.askOverwrite = true;
    const auto path = askFile(request);
    if (!path) return;
    try {
        if (!isPlotFileName(*path)) throw base::FileError(*path, L"give a name that ends in .svg, .png or .pdf");
        application_->plot({}, *path);
    } catch (const base::FileError& error) {
        ask(dialogs::BoxKind::kError, base::fromUtf8(error.what()));
    }
}

void CanvasView::openDrawing(const std::wstring& name) {
    try {
        frame_.setCursor(ViewFrame::Cursor::kWait);
        opened_ = Opened{open_(name), name, false};
    } catch (const std::exception& error) {
        ask(dialogs::BoxKind::kError, base::fromUtf8(error.what()));
    }
}

// After a window that did not end in order.
void CanvasView::offerLeftCopies() {
    for (const LeftCopy& left : safekeeping_->takeLeft()) {
        if (opened_ || session_->document.isModified()) return;  // the others are offered to the next window
        const std::wstring name = left.drawing.empty() ? L"A new drawing" : base::fileNameOf(left.drawing);
        const dialogs::Answer answer =
            ask(dialogs::BoxKind::kYesNoCancel, name +
                                                    L" had changes that were not saved when its window ended. Open "
                                                    L"them?\n\nNo deletes them; Cancel asks again the next time.");
        if (answer == dialogs::Answer::kNo) safekeeping_->dropLeft(left);
        if (answer != dialogs::Answer::kYes) continue;
        try {
            opened_ = Opened{OdDbDatabase::readBytes(std::string(base::readFile(left.copy).view()), left.drawing),
                             left.drawing, true};
            safekeeping_->adopt(left);
        } catch (const std::exception& error) {
            ask(dialogs::BoxKind::kError, base::fromUtf8(error.what()));
        }
    }
}

void CanvasView::doRequested() {
    const MenuMeaning wanted = requested_.front();
    requested_.pop_front();
    switch (wanted.action) {
        case MenuAction::kSave:
        case MenuAction::kSaveAs:
            save(wanted.action == MenuAction::kSaveAs);
            return;
        case MenuAction::kPlot:
            return plot();
        case MenuAction::kClose:
            closing_ = mayLoseChanges(wanted);
            return;
        case MenuAction::kNew:
            if (mayLoseChanges(wanted)) openDrawing(L"");
            return;
        case MenuAction::kRecent:
            if (mayLoseChanges(wanted)) openDrawing(wanted.lines.front());
            return;
        case MenuAction::kOpen: {
            if (!mayLoseChanges(wanted)) return;
            dialogs::FileRequest request;
            request.title = L"Open Drawing";
            request.filter = L"Drawings (*.dxf;*.dwg)|*.dxf;*.dwg|All files|*.*||";
            request.mustExist = true;
            if (const auto chosen = askFile(request)) openDrawing(*chosen);
            return;
        }
        case MenuAction::kCommand:
            return;
    }
}

void CanvasView::readRecent() {
    recent_.clear();
    for (std::size_t i = 1; i <= kRecentFiles; ++i) {
        CXStringW name;
        const bool is = application_->profile().readText(kRecentSection, std::to_wstring(i).c_str(), name);
        if (is && !name.empty()) recent_.push_back(name);
    }
    frame_.setMenus(windowMenus(recent_));
}

void CanvasView::remember(const std::wstring& name) {
    const std::wstring path = base::absolutePath(name);
    std::erase(recent_, path);
    recent_.insert(recent_.begin(), path);
    if (recent_.size() > kRecentFiles) recent_.resize(kRecentFiles);
    for (std::size_t i = 0; keepsRecent_ && i < recent_.size(); ++i)
        application_->profile().writeText(kRecentSection, std::to_wstring(i + 1).c_str(), recent_[i].c_str());
    frame_.setMenus(windowMenus(recent_));
}

}  // namespace host
