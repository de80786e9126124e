#include "torvelhost/lines/reply_source.h"

#include "base/console.h"
#include "base/files.h"
#include "base/paths.h"
#include "base/text.h"
#include "torvelhost/lines/prompt_line.h"
#include "torvelhost/lines/reply.h"

namespace host {

void ScriptReplies::addFile(const std::wstring& path) {
    Part part;
    if (path == L"-") {
        part.name = L"standard input";
        part.standardInput = true;
    } else {
        part.name = path;
        part.lines = base::split(base::fromUtf8(base::readTextFile(path)), L'\n');
        for (std::wstring& line : part.lines)
            if (line.ends_with(L'\r')) line.pop_back();
        if (part.lines.back().empty()) part.lines.pop_back();  // behind the last line end
    }
    parts_.push_back(std::move(part));
}

void ScriptReplies::addText(const std::wstring& text) {
    Part part;
    part.name = L"--command";
    part.lines = base::split(text, L'|');
    parts_.push_back(std::move(part));
}

std::optional<std::wstring> ScriptReplies::nextRaw() {
    for (; part_ < parts_.size(); ++part_) {
        Part& part = parts_[part_];
        std::optional<std::wstring> line;
        if (part.standardInput) {
            if (auto bytes = base::readLine()) {
                constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
                if (part.taken == 0 && bytes->starts_with(kByteOrderMark)) bytes->erase(0, kByteOrderMark.size());
                line = base::fromUtf8(*bytes);
            }
        } else if (part.taken < part.lines.size()) {
            line = part.lines[part.taken];
        }
        place_ = part.name + L":" + std::to_wstring(part.taken + (line ? 1 : 0));
        if (!line) continue;
        ++part.taken;
        return line;
    }
    return std::nullopt;
}

std::optional<std::wstring> ScriptReplies::peek() {
    while (!peeked_) {
        peeked_ = nextRaw();
        if (!peeked_) return std::nullopt;
        if (isComment(*peeked_)) peeked_.reset();
    }
    return peeked_;
}

std::optional<std::wstring> ScriptReplies::next(const Question& question) {
    std::optional<std::wstring> line = peek();
    if (line) terminal_.prompt(question.prompt + *line + L"\n");
    peeked_.reset();
    return line;
}

void ScriptReplies::refused(const std::wstring& why) { throw ScriptError(base::toUtf8(place_ + L": " + why)); }

std::optional<std::wstring> TypedReplies::next(const Question& question) {
    wantsToLeave_ = false;
    if (base::takeInterrupt()) {
        terminal_.prompt(question.prompt + L"^C\n");
        return L"^C";
    }
    const TypedLine line =
        readPromptLine(terminal_.isQuiet() ? std::wstring() : visible(question.prompt), question.choices);
    if (line.end == TypedLine::kInputEnded) return std::nullopt;
    if (line.end == TypedLine::kEntered) return line.text;
    wantsToLeave_ = line.text.empty();
    return L"^C";
}

}  // namespace host
