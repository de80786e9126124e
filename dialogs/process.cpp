#include "base/console.h"
#include "base/text.h"
#include "dialogs/maker.h"
#include "dialogs/recording.h"
#include "dialogs/run.h"

namespace dialogs {
namespace {

// The terminal, for a process that says nothing about its dialogs.
class TerminalLines final : public LineSource {
  public:
    std::optional<std::wstring> next(const std::wstring& prompt) override {
        print(prompt);
        const auto line = base::readLine();
        return line ? std::optional(base::fromUtf8(*line)) : std::nullopt;
    }
    void print(std::wstring_view text) override { base::writeTo(base::Stream::kError, base::toUtf8(text)); }
    void refuse(const std::wstring& why) override { print(why + L"\n"); }
    bool isScript() const override { return false; }
};

TerminalLines& terminalLines() {
    static TerminalLines lines;
    return lines;
}

}  // namespace

LineSource::~LineSource() = default;

Process::Process() : recording(std::make_unique<Recording>()) { setStandard(); }
Process::~Process() = default;

void Process::setStandard() {
    std::wstring reason;
    maker = windowsAreStandard() ? makeWindowsMaker(false, reason) : nullptr;
    lines = nullptr;
    waiting = {};
    if (maker) return;
    maker = makeFormsMaker();
    lines = &terminalLines();
}

void Process::waitFor(const std::function<void()>& wait) const { waiting ? waiting(wait) : wait(); }

Process& Process::instance() {
    static Process process;
    return process;
}

void useForms(LineSource& lines) {
    Process& process = Process::instance();
    process.maker = makeFormsMaker();
    process.lines = &lines;
    process.waiting = {};
}

bool useWindows(LineSource* script, Waiting waiting, std::wstring* reason) {
    std::wstring missing;
    std::unique_ptr<Maker> maker = makeWindowsMaker(script != nullptr, missing);
    if (!maker && reason) *reason = missing;
    if (!maker) return false;
    Process& process = Process::instance();
    process.maker = std::move(maker);
    process.lines = script;
    process.waiting = std::move(waiting);
    return true;
}

namespace {

// The inner one goes first and comes last.
void setShown(Run* run, bool on) {
    if (!run) return;
    if (on) setShown(run->outer(), on);
    if (run->view()) run->view()->setShown(on);
    if (!on) setShown(run->outer(), on);
}

}  // namespace

// What is asked elsewhere is told elsewhere, behind what led to it.
HiddenWindows::HiddenWindows() {
    recording().flush();
    if (!Process::instance().lines) setShown(Process::instance().current, false);
}
HiddenWindows::~HiddenWindows() {
    if (!Process::instance().lines) setShown(Process::instance().current, true);
}

std::wstring openTitle() {
    const Process& process = Process::instance();
    const bool isBox = !process.openBoxes.empty() && process.openBoxes.back().over == process.current;
    if (isBox) return process.openBoxes.back().title;
    return process.current ? process.current->root().title() : std::wstring();
}

void useRecorder(std::function<void(std::wstring_view line)> recorder) { recording().use(std::move(recorder)); }

void OneAnswer::begin() { recording().setQuiet(true); }
OneAnswer::~OneAnswer() {
    recording().setQuiet(false);
    recording().answers(line_);
}
void OneAnswer::tell(std::wstring_view text) { line_ = text.empty() ? L"\"\"" : valueText(text); }
bool OneAnswer::isAwaited() { return recording().isQuiet(); }

void useMainWindow(void* window) { Process::instance().mainWindow = window; }

void useStandard() { Process::instance().setStandard(); }

}  // namespace dialogs
