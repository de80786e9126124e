#include "dialogs/boxes.h"

#include "base/paths.h"
#include "base/text.h"
#include "dialogs/form_script.h"
#include "dialogs/maker.h"
#include "dialogs/recording.h"
#include "dialogs/run.h"

namespace dialogs {
namespace {

const wchar_t* markOf(BoxKind kind) {
    switch (kind) {
        case BoxKind::kNotice:
            return L"[notice] ";
        case BoxKind::kWarning:
            return L"[warning] ";
        case BoxKind::kError:
            return L"[error] ";
        case BoxKind::kYesNo:
        case BoxKind::kYesNoCancel:
            break;
    }
    return L"[question] ";
}

// "yes" and its beginnings, Enter for the first button, ^C for the last one.
std::optional<Answer> parseAnswer(std::wstring_view line, bool mayCancel) {
    if (line.empty() || base::startsWithNoCase(L"yes", line)) return Answer::kYes;
    if (base::startsWithNoCase(L"no", line)) return Answer::kNo;
    if (line == L"^C") return mayCancel ? Answer::kCancel : Answer::kNo;
    if (mayCancel && base::startsWithNoCase(L"cancel", line)) return Answer::kCancel;
    return std::nullopt;
}

Answer askAnswer(BoxKind kind, const std::wstring& text) {
    LineSource& lines = *Process::instance().lines;
    const bool mayCancel = kind == BoxKind::kYesNoCancel;
    const std::wstring choices = mayCancel ? L"[yes/no/cancel]" : L"[yes/no]";
    for (;;) {
        const auto line = lines.answer(markOf(kind) + text + L" " + choices + L": ");
        if (!line) {
            if (lines.isScript()) lines.refuse(L"the script ends at the question \"" + text + L"\"");
            return mayCancel ? Answer::kCancel : Answer::kNo;
        }
        if (const auto answer = parseAnswer(base::trimmed(*line), mayCancel)) return *answer;
        lines.refuse(L"\"" + *line + L"\" is not one of " + choices);
    }
}

std::wstring withExtension(std::wstring name, std::wstring_view extension) {
    if (extension.starts_with(L"*")) extension.remove_prefix(1);
    if (extension.starts_with(L".")) extension.remove_prefix(1);
    if (!extension.empty() && base::extensionOf(name).empty()) name += L"." + std::wstring(extension);
    return name;
}

// That of the filter's first pattern: "txt" of "Texts|*.txt;*.asc|All files|*.*||". Empty when it names none.
std::wstring filterExtension(const std::wstring& filter) {
    const std::vector<std::wstring> parts = base::split(filter, L'|');
    std::wstring_view pattern = parts.size() < 2 ? std::wstring_view() : parts[1];
    pattern = pattern.substr(0, pattern.find(L';'));
    if (!pattern.starts_with(L"*.") || pattern.find_first_of(L"*?", 1) != pattern.npos) return {};
    return std::wstring(pattern.substr(2));
}

// The file meant by a name that may lack its extension.
std::optional<std::wstring> existingFile(const std::wstring& name, const FileRequest& request) {
    for (const std::wstring& extension : {std::wstring(), request.defaultExtension, filterExtension(request.filter)}) {
        std::wstring path = base::absolutePath(withExtension(name, extension));
        if (base::isFile(path)) return path;
    }
    return std::nullopt;
}

const wchar_t* lineOf(Answer answer) {
    return answer == Answer::kYes ? L"yes" : answer == Answer::kNo ? L"no" : L"cancel";
}

// Whether the file may be replaced. A script is taken at its word when it goes on with something else.
bool mayReplace(const std::wstring& fileName) {
    LineSource& lines = *Process::instance().lines;
    if (lines.isScript()) {
        const auto next = lines.peek();
        if (!next || base::trimmed(*next).empty() || !parseAnswer(base::trimmed(*next), false)) return true;
    }
    const Answer answer = askAnswer(BoxKind::kYesNo, fileName + L" already exists. Do you want to replace it?");
    recording().answers(lineOf(answer));
    return answer == Answer::kYes;
}

std::wstring withoutQuotes(std::wstring_view line) {
    if (line.size() >= 2 && line.front() == L'"' && line.back() == L'"') line = line.substr(1, line.size() - 2);
    return std::wstring(line);
}

// Open while it lives; what the user did before is told first.
class OpenBox {
  public:
    explicit OpenBox(std::wstring title) {
        Process& process = Process::instance();
        recording().flush();
        process.openBoxes.push_back({std::move(title), process.current});
    }
    ~OpenBox() { Process::instance().openBoxes.pop_back(); }
    OpenBox(const OpenBox&) = delete;
    OpenBox& operator=(const OpenBox&) = delete;
};

template <class Ask>
std::optional<std::wstring> askPerson(const std::wstring& title, Ask ask) {
    const OpenBox open(title);
    std::optional<std::wstring> answer;
    Process::instance().waitFor([&] { answer = ask(*Process::instance().maker); });
    recording().answers(valueText(answer.value_or(std::wstring())));
    return answer;
}

std::wstring titleOf(const std::wstring& caption, const std::wstring& text) {
    Run* const current = Process::instance().current;
    return !caption.empty() ? caption : current ? current->root().title() : text;
}

}  // namespace

Answer messageBox(BoxKind kind, const std::wstring& text, const std::wstring& caption) {
    Process& process = Process::instance();
    const OpenBox open(titleOf(caption, text));
    const bool isQuestion = kind == BoxKind::kYesNo || kind == BoxKind::kYesNoCancel;
    ++process.boxesShown;
    std::optional<Answer> answer;
    if (process.lines) {
        answer = Answer::kOk;
        const std::wstring printed = base::replaceAll(text, L"\r\n", L"\n");
        if (isQuestion)
            answer = askAnswer(kind, printed);
        else
            process.lines->print(markOf(kind) + printed + L"\n");
    }
    Answer given = Answer::kOk;
    process.waitFor([&] { given = process.maker->messageBox(kind, text, caption, answer); });
    if (isQuestion) recording().answers(lineOf(given));
    return given;
}

bool asksLines() { return Process::instance().lines != nullptr; }

std::optional<std::wstring> askLine(const std::wstring& prompt) {
    const OpenBox open(prompt);
    LineSource& lines = *Process::instance().lines;
    const auto line = lines.next(prompt + L": ");
    recording().answers(line ? std::wstring(base::trimmed(*line)) : std::wstring());
    if (!line) {
        if (lines.isScript()) lines.refuse(L"the script ends at the question \"" + prompt + L"\"");
        return std::nullopt;
    }
    const std::wstring_view answer = base::trimmed(*line);
    if (answer.empty() || answer == L"^C") return std::nullopt;
    return withoutQuotes(answer);
}

void refuseLine(const std::wstring& why) { Process::instance().lines->refuse(why); }

std::optional<std::wstring> askFile(const FileRequest& request) {
    std::wstring prompt = !request.title.empty() ? request.title : request.save ? L"Save as" : L"Open";
    if (!asksLines()) {
        auto path = askPerson(prompt, [&](Maker& maker) { return maker.askFile(request); });
        if (path && request.save && request.askOverwrite && base::isFile(*path))
            recording().answers(lineOf(Answer::kYes));
        return path;
    }
    // A pattern says which files to list, and is no file's name.
    if (request.fileName.find_first_of(L"*?") == request.fileName.npos && !request.fileName.empty())
        prompt += L" (now " + request.fileName + L"; empty cancels)";
    for (;;) {
        const auto answer = askLine(prompt);
        if (!answer) return std::nullopt;
        if (!request.save && request.mustExist) {
            if (auto found = existingFile(*answer, request)) return found;
            refuseLine(L"there is no file \"" + *answer + L"\"");
            continue;
        }
        std::wstring path = base::absolutePath(withExtension(*answer, request.defaultExtension));
        if (request.save && request.askOverwrite && base::isFile(path) && !mayReplace(path)) continue;
        return path;
    }
}

std::optional<std::wstring> askFolder(const std::wstring& title) {
    const std::wstring prompt = title.empty() ? L"Folder" : title;
    if (!asksLines()) return askPerson(prompt, [&](Maker& maker) { return maker.askFolder(title); });
    for (;;) {
        const auto answer = askLine(prompt);
        if (!answer) return std::nullopt;
        std::wstring path = base::absolutePath(*answer);
        if (base::isFolder(path)) return path;
        refuseLine(L"there is no folder \"" + *answer + L"\"");
    }
}

std::wstring clipboardText() { return Process::instance().maker->clipboardText(); }

void setClipboardText(const std::wstring& text) { Process::instance().maker->setClipboardText(text); }

}  // namespace dialogs
