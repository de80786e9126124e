#include "torvelhost/lines/dialog_lines.h"

#include "base/console.h"
#include "base/text.h"
#include "torvelhost/lines/progress.h"

namespace host {

std::optional<std::wstring> DialogLines::choose(const std::wstring& prompt, const Choices& choices) {
    const Progress::Pause pause;
    return replies_.next({prompt, {Expected::kDialog}, choices});
}

std::optional<std::wstring> DialogLines::answer(const std::wstring& question) {
    if (terminal_.isQuiet()) terminal_.show(question + L"\n");
    return next(question);
}

void DialogLines::refuse(const std::wstring& why) {
    replies_.refused(why);
    terminal_.show(why + L".\n");
}

DialogUse::DialogUse(bool windows, DialogLines& lines) {
    const bool scripted = lines.isScript();
    // Lines that come through a pipe are typed by nobody who could use a window.
    const bool person = !scripted && base::isTerminal(base::Stream::kInput);
    const dialogs::Waiting waiting = [](const std::function<void()>& wait) {
        const Progress::Pause pause;
        wait();
    };
    if ((windows || (person && dialogs::windowsAreStandard())) &&
        dialogs::useWindows(scripted ? &lines : nullptr, waiting))
        return;
    dialogs::useForms(lines);
}

DialogUse::~DialogUse() { dialogs::useStandard(); }

}  // namespace host
