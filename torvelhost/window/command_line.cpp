#include "torvelhost/window/command_line.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace host {
namespace {

// Words that a prompt takes and does not name are offered all the same, where they usually stand.
std::wstring withWords(std::wstring prompt, const std::vector<std::wstring>& words) {
    if (words.empty() || prompt.find(L'[') != prompt.npos) return prompt;
    std::wstring offered = L" [";
    for (const std::wstring& word : words) offered += (offered.size() > 2 ? L"/" : L"") + word;
    return prompt.insert(std::min({prompt.find(L" <"), prompt.rfind(L':'), prompt.size()}), offered + L"]");
}

}  // namespace

void CommandLine::ask(const Question& question) {
    question_ = &question;
    isShown_ = true;
    words_.clear();
    // At the command prompt there are too many.
    const bool hasWords = question.expected.kind != Expected::kCommand && question.expected.kind != Expected::kDialog;
    if (hasWords && question.choices) words_ = question.choices();
    frame_.setPrompt(withWords(question.prompt, words_), words_);
}

void CommandLine::showNone() {
    if (std::exchange(isShown_, false)) frame_.setPrompt(L"", {});
}

void CommandLine::rest() {
    question_ = nullptr;
    words_.clear();
}

void CommandLine::changed(const std::wstring& text) {
    text_ = text;
    recalled_ = entered_.size();
}

void CommandLine::set(const std::wstring& text) {
    text_ = text;
    frame_.setCommandText(text);
}

std::wstring CommandLine::enter() {
    std::wstring line = text_;
    // Pasted ones: no prompt knows them, and some of them end a script that is recorded.
    std::erase_if(line, [](wchar_t c) { return c < L' ' && c != L'\t'; });
    if (!line.empty() && (entered_.empty() || entered_.back() != line)) entered_.push_back(line);
    recalled_ = entered_.size();
    set(L"");
    return line;
}

void CommandLine::recall(bool older) {
    if (older ? recalled_ == 0 : recalled_ == entered_.size()) return;
    if (recalled_ == entered_.size()) draft_ = text_;
    recalled_ += older ? std::size_t(-1) : 1;
    set(recalled_ == entered_.size() ? draft_ : entered_[recalled_]);
}

void CommandLine::complete() {
    if (!question_ || text_.empty()) return;
    const Completion completion =
        host::complete(text_, question_->choices ? question_->choices() : std::vector<std::wstring>());
    set(completion.text);
    if (completion.among.empty()) return;
    std::wstring ways;
    for (const std::wstring& way : completion.among) ways += (ways.empty() ? L"" : L"  ") + way;
    frame_.addHistory(ways + L"\n");
}

}  // namespace host
