// The input is a script of events, which works a window on a small drawing. What was recorded, run as a script, must
// give the same drawing; and undone, the drawing must be as it was.
#include <cstdio>
#include <filesystem>

#include "base/paths.h"
#include "base/text.h"
#include "dialogs/process.h"
#include "fuzz/fuzz.h"
#include "fuzz/small_drawing.h"
#include "torvelhost/commands/command_loop.h"
#include "torvelhost/lines/dialog_lines.h"
#include "torvelhost/window/canvas_view.h"
#include "torvelhost/window/headless_frame.h"

namespace {

using fuzz::require;

// Replies without commands that touch files, however their names came into the line.
class Harmless final : public host::ReplySource {
  public:
    explicit Harmless(host::ReplySource& replies) : replies_(replies) {}

    std::optional<std::wstring> next(const host::Question& question) override {
        for (;;) {
            auto line = replies_.next(question);
            if (!line || question.expected.kind != host::Expected::kCommand || !touchesFiles(*line)) return line;
        }
    }
    std::optional<std::wstring> peek() override { return replies_.peek(); }
    void refused(const std::wstring& why) override { replies_.refused(why); }
    std::wstring place() const override { return replies_.place(); }
    bool isScript() const override { return replies_.isScript(); }
    bool wantsToLeave() const override { return replies_.wantsToLeave(); }

  private:
    static bool touchesFiles(const std::wstring& line) {
        const std::wstring name = host::parseReply(line).text;
        for (const wchar_t* command : {L"SAVE", L"VALUESOUT", L"VALUESIN", L"VSlide"})
            if (base::equalsNoCase(name, command)) return true;
        return false;
    }
    host::ReplySource& replies_;
};

// What would touch files, or take long for being large.
bool isHarmless(const host::WindowEvent& event) {
    using Event = host::WindowEvent;
    if (event.kind == Event::kPicture || event.kind == Event::kDrop) return false;
    if (event.kind == Event::kSize && event.number * event.second > 1e6) return false;
    for (const wchar_t* word : {L"file/", L"ctrl+"})
        if (base::findNoCase(event.text, word) != std::wstring::npos) return false;
    return true;
}

const std::wstring& recordingName() {
    static const std::wstring name = base::joinPath(
        base::temporaryFolder(),
        L"events-" + std::to_wstring(std::filesystem::hash_value(std::filesystem::current_path())) + L".scr");
    return name;
}

// The drawing afterwards; nothing where an event did not fit.
std::optional<std::string> runEvents(std::vector<host::WindowEvent> events) {
    const host::Options options;
    host::Terminal terminal(true);
    host::HeadlessFrame frame(std::move(events));
    host::CanvasView view(frame, terminal);
    frame.work(view);
    view.useEventLines({[&frame] { return frame.place(); }, [&frame] { return frame.peekDialogLine(); }});
    view.recording().open(recordingName());
    host::DialogLines lines(view, terminal);
    dialogs::useForms(lines);
    host::Application application(options, terminal);
    const OdDbDatabasePtr database = fuzz::smallDrawing();
    const std::string before = database->writeBytes();
    const std::size_t start = database->undoPosition();
    frame.open(view);
    Harmless replies(view);
    application.open(database, replies);
    view.show(application, L"");
    bool fits = true;
    try {
        host::CommandLoop(application).run();
    } catch (const host::ScriptError&) {
        fits = false;
    }
    view.showNothing();
    std::string after = database->writeBytes();
    database->undoTo(start);
    require(database->writeBytes() == before, "undoing what was done in a window gives the drawing back");
    dialogs::useStandard();
    return fits ? std::optional(std::move(after)) : std::nullopt;
}

std::string runRecording() {
    const host::Options options;
    host::Terminal terminal(true);
    host::ScriptReplies script(terminal);
    script.addFile(recordingName());
    Harmless replies(script);
    host::Application application(options, terminal);
    const OdDbDatabasePtr database = fuzz::smallDrawing();
    application.open(database, replies);
    host::CommandLoop(application).run();  // what was recorded fits
    return database->writeBytes();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***);
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // What commands print is of no interest here; the fuzzer itself writes to standard error.
    return std::freopen("/dev/null", "w", stdout) == nullptr;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<host::WindowEvent> events;
    try {
        events = host::parseEvents(base::fromUtf8(fuzz::bytesOf(data, size)), L"events.ev");
    } catch (const host::ScriptError&) {
        return 0;
    }
    for (const host::WindowEvent& event : events)
        if (!isHarmless(event)) return 0;
    const auto after = runEvents(std::move(events));
    if (after) require(runRecording() == *after, "what was recorded gives the same drawing");
    return 0;
}
