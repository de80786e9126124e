// The prompt on a terminal, by libedit. Keys come through a reader of this file, which makes one character of each
// sequence that a key sends: libedit waits for the rest of a sequence for ever, so that the Escape key would swallow
// the next one.

#include <algorithm>
#include <atomic>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <histedit.h>
#include <memory>
#include <optional>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include "base/console.h"
#include "base/files.h"
#include "base/paths.h"
#include "base/text.h"
#include "torvelhost/lines/prompt_line.h"

namespace host {
namespace {

// How long the rest of a key's sequence may take.
constexpr int kSequenceMilliseconds = 100;
// How long a signal may go unseen.
constexpr int kSignalMilliseconds = 100;

// ---- the lines of before

// A file of the user's, a line each. It is a comfort: what cannot be read or written is done without.
class HistoryFile {
  public:
    static constexpr std::size_t kLines = 500;

    std::vector<std::wstring> read() const {
        std::vector<std::wstring> lines;
        try {
            if (base::isFile(name_)) lines = base::split(base::fromUtf8(base::readTextFile(name_)), L'\n');
            std::erase(lines, L"");
            if (lines.size() <= kLines) return lines;
            const bool isLong = lines.size() > 2 * kLines;
            lines.erase(lines.begin(), lines.end() - kLines);
            if (isLong) {
                std::wstring text;
                for (const std::wstring& line : lines) text += line + L"\n";
                base::writeFile(name_, base::toUtf8(text));
            }
        } catch (const base::FileError&) {
        }
        return lines;
    }

    // Each session puts its lines behind those of others.
    void append(const std::wstring& line) const {
        std::error_code ignored;
        std::filesystem::create_directories(base::toPath(base::folderOf(name_)), ignored);
        const int file = ::open(base::toPath(name_).c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        if (file < 0) return;
        const std::string bytes = base::toUtf8(line) + "\n";
        [[maybe_unused]] const ssize_t written = ::write(file, bytes.data(), bytes.size());
        ::close(file);
    }

  private:
    static std::wstring stateFolder() {
        const auto folder = base::environmentVariable(L"XDG_STATE_HOME");
        if (folder && base::isAbsolutePath(*folder)) return *folder;
        return base::joinPath(base::environmentVariable(L"HOME").value_or(L"/"), L".local/state");
    }

    const std::wstring name_ = base::joinPath(stateFolder(), L"torvelhost/history");
};

// ---- signals while keys come one by one

termios g_terminal;

void endBySignal(int signal) {
    ::tcsetattr(STDIN_FILENO, TCSANOW, &g_terminal);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

std::atomic<bool> g_isResized = false;

void noteSize(int) { g_isResized = true; }

// A signal that ends the program gives the terminal back as it was; another size of the window is noted.
class PromptSignals {
  public:
    PromptSignals() {
        ::tcgetattr(STDIN_FILENO, &g_terminal);
        for (std::size_t i = 0; i < std::size(kSignals); ++i) {
            struct sigaction action {};
            action.sa_handler = kSignals[i] == SIGWINCH ? noteSize : endBySignal;
            ::sigaction(kSignals[i], &action, &before_[i]);
        }
    }
    ~PromptSignals() {
        for (std::size_t i = 0; i < std::size(kSignals); ++i) ::sigaction(kSignals[i], &before_[i], nullptr);
    }
    PromptSignals(const PromptSignals&) = delete;
    PromptSignals& operator=(const PromptSignals&) = delete;

  private:
    static constexpr int kSignals[] = {SIGTERM, SIGHUP, SIGWINCH};
    struct sigaction before_[std::size(kSignals)];
};

// ---- the editor

// Keys that send sequences, as the characters that stand for them here.
enum KeyCharacter : wchar_t {
    kToStart = 0x01,  // Ctrl+A and so on, as they are typed too
    kBack = 0x02,
    kInterrupt = 0x03,
    kToEnd = 0x05,
    kForward = 0x06,
    kNext = 0x0E,
    kPrevious = 0x10,
    kShowAgain = 0x1B,
    kWordBack = 0x1C,
    kWordForward = 0x1D,
    kDelete = 0x1E,
    kEmptyLine = 0x1F,
};

class Editor {
  public:
    Editor();
    ~Editor();
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    TypedLine read(std::wstring_view prompt, const Choices& choices);

  private:
    struct Closer {
        // NOLINTNEXTLINE(cppcoreguidelines-owning-memory): this is the deleter of the owner.
        void operator()(FILE* file) const { std::fclose(file); }
        void operator()(EditLine* line) const { el_end(line); }
        void operator()(HistoryW* history) const { history_wend(history); }
    };

    static Editor& of(EditLine* line) {
        void* editor = nullptr;
        el_wget(line, EL_CLIENTDATA, &editor);
        return *static_cast<Editor*>(editor);
    }
    static int readKeyOf(EditLine* line, wchar_t* key) { return of(line).readKey(*key); }
    static wchar_t* promptOf(EditLine* line) { return of(line).prompt_.data(); }
    static unsigned char completeOf(EditLine* line, wint_t) { return of(line).completeLine(); }

    std::wstring typed() const;
    int readKey(wchar_t& key);
    std::optional<wchar_t> readSequence();
    unsigned char completeLine();
    void remember(const std::wstring& line);

    std::unique_ptr<FILE, Closer> output_;
    std::unique_ptr<HistoryW, Closer> history_;
    std::unique_ptr<EditLine, Closer> line_;
    HistoryFile file_;
    std::wstring prompt_;
    std::wstring last_;
    const Choices* choices_ = nullptr;
    bool isCancelled_ = false;
    std::wstring cancelled_;
};

constexpr struct {
    const wchar_t* key;
    const wchar_t* command;
} kBindings[] = {
    {L"\\001", L"ed-move-to-beg"},      {L"\\002", L"ed-prev-char"},        {L"\\005", L"ed-move-to-end"},
    {L"\\006", L"ed-next-char"},        {L"\\011", L"torvel-complete"},     {L"\\013", L"ed-kill-line"},
    {L"\\016", L"ed-next-history"},     {L"\\020", L"ed-prev-history"},     {L"\\022", L"em-inc-search-prev"},
    {L"\\025", L"vi-kill-line-prev"},   {L"\\027", L"ed-delete-prev-word"}, {L"\\030", L"ed-unassigned"},
    {L"\\033", L"ed-redisplay"},        {L"\\034", L"ed-prev-word"},        {L"\\035", L"em-next-word"},
    {L"\\036", L"ed-delete-next-char"}, {L"\\037", L"em-kill-line"},
};

Editor::Editor() : output_(::fdopen(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3), "w")), history_(history_winit()) {
    // libedit asks the locale what a character is and how wide.
    std::setlocale(LC_CTYPE, "C.UTF-8");
    FILE* const output = output_ ? output_.get() : stderr;
    line_.reset(el_init("torvelhost", stdin, output, output));
    EditLine* const line = line_.get();
    if (!line) throw std::bad_alloc();
    el_wset(line, EL_CLIENTDATA, this);
    el_wset(line, EL_GETCFN, &readKeyOf);
    el_wset(line, EL_PROMPT, &promptOf);
    el_wset(line, EL_EDITOR, L"emacs");
    el_wset(line, EL_SETTY, L"-d", L"-isig", nullptr);  // Ctrl+C is a key
    el_wset(line, EL_ADDFN, L"torvel-complete", L"Complete the line", &completeOf);
    for (const auto& [key, command] : kBindings) el_wset(line, EL_BIND, key, command, nullptr);
    HistEventW event;
    history_w(history_.get(), &event, H_SETSIZE, static_cast<int>(HistoryFile::kLines));
    el_wset(line, EL_HIST, &history_w, history_.get());
    for (const std::wstring& old : file_.read()) history_w(history_.get(), &event, H_ENTER, (last_ = old).c_str());
}

Editor::~Editor() = default;

TypedLine Editor::read(std::wstring_view prompt, const Choices& choices) {
    prompt_ = prompt;
    choices_ = &choices;
    isCancelled_ = false;
    el_resize(line_.get());
    const PromptSignals signals;
    el_wset(line_.get(), EL_PREP_TERM,
            1);  // before the prompt is shown, or a key that is quick goes by the terminal's rules
    int count = 0;
    const wchar_t* const read = el_wgets(line_.get(), &count);
    if (isCancelled_) return {TypedLine::kCancelled, cancelled_};
    if (!read || count <= 0) {
        base::writeTo(base::Stream::kError, "\n");
        return {TypedLine::kInputEnded, {}};
    }
    std::wstring text(read, static_cast<std::size_t>(count));
    while (text.ends_with(L'\n') || text.ends_with(L'\r')) text.pop_back();
    remember(text);
    return {TypedLine::kEntered, std::move(text)};
}

void Editor::remember(const std::wstring& line) {
    if (line.find_first_not_of(L' ') == line.npos || line == last_) return;
    last_ = line;
    HistEventW event;
    history_w(history_.get(), &event, H_ENTER, line.c_str());
    file_.append(line);
}

std::wstring Editor::typed() const {
    const LineInfoW& info = *el_wline(line_.get());
    return {info.buffer, info.lastchar};
}

// The next byte; or that none came within the milliseconds or a signal did, or that there are no more.
constexpr int kNoByte = -1, kNoMoreBytes = -2;
int readByte(int milliseconds) {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    if (::poll(&input, 1, milliseconds) <= 0) return kNoByte;
    unsigned char byte = 0;
    return ::read(STDIN_FILENO, &byte, 1) == 1 ? byte : kNoMoreBytes;
}

// Behind an escape character: "[A", "OH", "[3~", "[1;5C", "b". A lone one empties the line; what is not known is
// nothing.
std::optional<wchar_t> Editor::readSequence() {
    const int first = readByte(kSequenceMilliseconds);
    if (first < 0) return kEmptyLine;
    if (first == 'b') return kWordBack;
    if (first == 'f') return kWordForward;
    if (first != '[' && first != 'O') return std::nullopt;
    std::string parameters;
    int last = readByte(kSequenceMilliseconds);
    for (; last >= 0 && !(last >= '@' && last <= '~'); last = readByte(kSequenceMilliseconds))
        parameters += static_cast<char>(last);
    const bool byWord = parameters == "1;5" || parameters == "1;3";
    switch (last) {
        case 'A':
            return kPrevious;
        case 'B':
            return kNext;
        case 'C':
            return byWord ? kWordForward : kForward;
        case 'D':
            return byWord ? kWordBack : kBack;
        case 'H':
            return kToStart;
        case 'F':
            return kToEnd;
        case '~':
            if (parameters == "3") return kDelete;
            if (parameters == "1" || parameters == "7") return kToStart;
            if (parameters == "4" || parameters == "8") return kToEnd;
    }
    return std::nullopt;
}

// What libedit reads keys by: 1 and a character, or 0 at the end of input.
int Editor::readKey(wchar_t& key) {
    std::string bytes;
    for (;;) {
        if (g_isResized.exchange(false)) {
            el_resize(line_.get());
            key = kShowAgain;
            return 1;
        }
        // Signals may come to any thread and so need not end the wait.
        const int byte = readByte(kSignalMilliseconds);
        if (byte == kInterrupt || base::takeInterrupt()) {
            isCancelled_ = true;
            cancelled_ = typed();
            key = L'\n';
            return 1;
        }
        if (byte == kNoByte) continue;
        if (byte == kNoMoreBytes) return 0;
        if (bytes.empty() && byte == 0x1B) {
            const auto character = readSequence();
            if (!character) continue;
            key = *character;
            return 1;
        }
        bytes += static_cast<char>(byte);
        if (!base::isUtf8(bytes) && bytes.size() < 4) continue;
        key = base::fromUtf8(bytes).front();
        return 1;
    }
}

unsigned char Editor::completeLine() {
    const LineInfoW& info = *el_wline(line_.get());
    const std::wstring before(info.buffer, info.cursor);
    const Completion completion = complete(before, *choices_ ? (*choices_)() : std::vector<std::wstring>());
    if (completion.text != before) {
        el_wdeletestr(line_.get(), static_cast<int>(before.size()));
        el_winsertstr(line_.get(), completion.text.c_str());
        return CC_REFRESH;
    }
    if (completion.among.empty()) return CC_REFRESH_BEEP;
    std::wstring list = L"\n";
    for (const std::wstring& line : completion.among) list += line + L"\n";
    std::fputs(base::toUtf8(list).c_str(), output_.get());
    return CC_REDISPLAY;
}

}  // namespace

TypedLine readPromptLine(std::wstring_view prompt, const Choices& choices) {
    if (base::isTerminal(base::Stream::kInput) && base::isTerminal(base::Stream::kError)) {
        static Editor editor;
        return editor.read(prompt, choices);
    }
    base::writeTo(base::Stream::kError, base::toUtf8(prompt));
    const std::optional<std::string> line = base::readLine();
    if (!line) return {TypedLine::kInputEnded, {}};
    return {TypedLine::kEntered, base::fromUtf8(*line)};
}

}  // namespace host
