#include <termios.h>
#include <unistd.h>

#include "base/console.h"
#include "base/text.h"
#include "torvelhost/lines/line_edit.h"
#include "torvelhost/lines/prompt_line.h"

namespace host {
namespace {

// Keys come one by one while this lives.
class RawMode {
  public:
    RawMode() {
        active_ = ::tcgetattr(STDIN_FILENO, &before_) == 0;
        if (!active_) return;
        termios raw = before_;
        raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG | IEXTEN);
        raw.c_iflag &= ~static_cast<tcflag_t>(IXON | ICRNL);
        raw.c_cc[VMIN] = 1;
        raw.c_cc[VTIME] = 0;
        active_ = ::tcsetattr(STDIN_FILENO, TCSADRAIN, &raw) == 0;
    }
    ~RawMode() {
        if (active_) ::tcsetattr(STDIN_FILENO, TCSADRAIN, &before_);
    }
    RawMode(const RawMode&) = delete;
    RawMode& operator=(const RawMode&) = delete;
    bool isActive() const { return active_; }

  private:
    termios before_{};
    bool active_ = false;
};

bool readByte(char& byte) { return ::read(STDIN_FILENO, &byte, 1) == 1; }

void redraw(std::wstring_view prompt, const LineEdit& line) {
    // Written anew from the first column; then the caret goes back over what stands behind it.
    std::string out = "\r\x1b[K" + base::toUtf8(prompt) + base::toUtf8(line.text());
    std::size_t behind = 0;
    for (std::size_t at = line.caret(); at < line.text().size(); at = base::positionAfter(line.text(), at)) ++behind;
    if (behind > 0) out += "\x1b[" + std::to_string(behind) + "D";
    base::writeTo(base::Stream::kError, out);
}

// Behind an escape character: "[A", "OH", "[3~", "[1;5C", "b".
void pressSequence(LineEdit& line) {
    char byte = 0;
    if (!readByte(byte)) return;
    if (byte == 'b') return line.press(LineEdit::kWordLeft);
    if (byte == 'f') return line.press(LineEdit::kWordRight);
    if (byte != '[' && byte != 'O') return;
    std::string parameters;
    while (readByte(byte) && !(byte >= '@' && byte <= '~')) parameters += byte;
    const bool control = parameters == "1;5";
    switch (byte) {
        case 'A':
            return line.press(LineEdit::kPrevious);
        case 'B':
            return line.press(LineEdit::kNext);
        case 'C':
            return line.press(control ? LineEdit::kWordRight : LineEdit::kRight);
        case 'D':
            return line.press(control ? LineEdit::kWordLeft : LineEdit::kLeft);
        case 'H':
            return line.press(LineEdit::kHome);
        case 'F':
            return line.press(LineEdit::kEnd);
        case '~':
            if (parameters == "3") return line.press(LineEdit::kDelete);
            if (parameters == "1" || parameters == "7") return line.press(LineEdit::kHome);
            if (parameters == "4" || parameters == "8") return line.press(LineEdit::kEnd);
    }
}

std::optional<std::wstring> editLine(std::wstring_view prompt, const std::vector<std::wstring>& history) {
    constexpr auto control = [](char letter) { return static_cast<char>(letter - '@'); };
    LineEdit line(history);
    std::string character;  // the bytes of one that is not complete yet
    for (;;) {
        redraw(prompt, line);
        char byte = 0;
        if (!readByte(byte)) return std::nullopt;
        switch (byte) {
            case '\r':
            case '\n':
                return line.text();
            case control('C'):
                return L"^C";
            case control('D'):
                if (line.text().empty()) return std::nullopt;
                line.press(LineEdit::kDelete);
                break;
            case control('A'):
                line.press(LineEdit::kHome);
                break;
            case control('E'):
                line.press(LineEdit::kEnd);
                break;
            case control('B'):
                line.press(LineEdit::kLeft);
                break;
            case control('F'):
                line.press(LineEdit::kRight);
                break;
            case control('P'):
                line.press(LineEdit::kPrevious);
                break;
            case control('N'):
                line.press(LineEdit::kNext);
                break;
            case control('W'):
                line.press(LineEdit::kDeleteWord);
                break;
            case control('U'):
                line.press(LineEdit::kDeleteToStart);
                break;
            case control('K'):
                line.press(LineEdit::kDeleteToEnd);
                break;
            case control('H'):
            case 0x7f:
                line.press(LineEdit::kBackspace);
                break;
            case 0x1b:
                pressSequence(line);
                break;
            default:
                if (static_cast<unsigned char>(byte) < 0x20) break;
                character += byte;
                if (base::isUtf8(character) || character.size() == 4) {
                    line.insert(base::fromUtf8(character));
                    character.clear();
                }
        }
    }
}

}  // namespace

std::optional<std::wstring> readPromptLine(std::wstring_view prompt, const std::vector<std::wstring>& history) {
    if (base::isTerminal(base::Stream::kInput) && base::isTerminal(base::Stream::kError)) {
        if (RawMode raw; raw.isActive()) {
            std::optional<std::wstring> line = editLine(prompt, history);
            base::writeTo(base::Stream::kError, "\r\n");
            return line;
        }
    }
    base::writeTo(base::Stream::kError, base::toUtf8(prompt));
    const std::optional<std::string> line = base::readLine();
    if (!line) return std::nullopt;
    return base::fromUtf8(*line);
}

}  // namespace host
