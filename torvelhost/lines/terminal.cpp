#include "torvelhost/lines/terminal.h"

#include "base/console.h"
#include "base/text.h"

namespace host {
namespace {

void writeError(std::wstring_view text) { base::writeTo(base::Stream::kError, base::toUtf8(text)); }

}  // namespace

void Terminal::print(std::wstring_view text) {
    if (!base::writeTo(base::Stream::kOutput, base::toUtf8(text) + "\n")) outputFailed_ = true;
}

void Terminal::show(std::wstring_view text) { writeError(text); }

void Terminal::error(std::wstring_view text) { writeError(L"torvelhost: " + std::wstring(text) + L"\n"); }

void Terminal::warning(std::wstring_view text) {
    if (!quiet_) error(L"warning: " + std::wstring(text));
}

void Terminal::notice(std::wstring_view text) {
    if (!quiet_) writeError(std::wstring(text) + L"\n");
}

}  // namespace host
