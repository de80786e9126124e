#include "torvelhost/lines/terminal.h"

#include "base/console.h"
#include "base/text.h"

namespace host {
namespace {

void writeError(std::wstring_view text) { base::writeTo(base::Stream::kError, base::toUtf8(visible(text))); }

bool isSurrogate(wchar_t c) { return c >= 0xD800 && c <= 0xDFFF; }

}  // namespace

std::wstring visible(std::wstring_view text) {
    constexpr wchar_t kReplacement = 0xFFFD;
    std::wstring shown;
    shown.reserve(text.size());
    for (const wchar_t c : text)
        if (c == L'\n' || c == L'\t' || (c >= 0x20 && c < 0x7F) || c >= 0xA0)
            shown += sizeof(wchar_t) > 2 && isSurrogate(c) ? kReplacement : c;
        else if (c <= 0x7F)
            shown.append({L'^', static_cast<wchar_t>(c ^ 0x40)});
        else
            shown += kReplacement;  // these work terminals too
    return shown;
}

Terminal::Terminal(bool quiet)
    : quiet_(quiet),
      outputIsTerminal_(base::isTerminal(base::Stream::kOutput)),
      errorIsTerminal_(base::isTerminal(base::Stream::kError)) {}

void Terminal::print(std::wstring_view text) {
    tell(text, L"\n");
    const std::string line = base::toUtf8(outputIsTerminal_ ? visible(text) : std::wstring(text)) + "\n";
    if (!base::writeTo(base::Stream::kOutput, line)) outputFailed_ = true;
}

void Terminal::show(std::wstring_view text) {
    tell(text);
    writeError(text);
}

void Terminal::prompt(std::wstring_view text) {
    tell(text);
    if (!quiet_) writeError(text);
}

void Terminal::error(std::wstring_view text) {
    tell(text, L"\n");
    writeError(L"torvelhost: " + std::wstring(text) + L"\n");
}

void Terminal::warning(std::wstring_view text) {
    if (!quiet_)
        error(L"warning: " + std::wstring(text));
    else
        tell(L"warning: " + std::wstring(text), L"\n");
}

void Terminal::notice(std::wstring_view text) {
    tell(text, L"\n");
    if (!quiet_) writeError(std::wstring(text) + L"\n");
}

}  // namespace host
