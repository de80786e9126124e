#include "torvelhost/lines/line_edit.h"

#include "base/text.h"

namespace host {
namespace {

std::size_t wordStart(std::wstring_view text, std::size_t caret) {
    while (caret > 0 && text[caret - 1] == L' ') --caret;
    while (caret > 0 && text[caret - 1] != L' ') --caret;
    return caret;
}

std::size_t wordEnd(std::wstring_view text, std::size_t caret) {
    while (caret < text.size() && text[caret] == L' ') ++caret;
    while (caret < text.size() && text[caret] != L' ') ++caret;
    return caret;
}

}  // namespace

void LineEdit::insert(std::wstring_view text) {
    text_.insert(caret_, text);
    caret_ += text.size();
}

void LineEdit::press(Key key) {
    const auto eraseTo = [this](std::size_t end) { text_.erase(caret_, end - caret_); };
    const auto eraseFrom = [this](std::size_t start) {
        text_.erase(start, caret_ - start);
        caret_ = start;
    };
    switch (key) {
        case kLeft:
            caret_ = base::positionBefore(text_, caret_);
            break;
        case kRight:
            caret_ = base::positionAfter(text_, caret_);
            break;
        case kWordLeft:
            caret_ = wordStart(text_, caret_);
            break;
        case kWordRight:
            caret_ = wordEnd(text_, caret_);
            break;
        case kHome:
            caret_ = 0;
            break;
        case kEnd:
            caret_ = text_.size();
            break;
        case kPrevious:
            if (line_ > 0) showLine(line_ - 1);
            break;
        case kNext:
            if (line_ < history_.size()) showLine(line_ + 1);
            break;
        case kBackspace:
            eraseFrom(base::positionBefore(text_, caret_));
            break;
        case kDelete:
            eraseTo(base::positionAfter(text_, caret_));
            break;
        case kDeleteWord:
            eraseFrom(wordStart(text_, caret_));
            break;
        case kDeleteToStart:
            eraseFrom(0);
            break;
        case kDeleteToEnd:
            eraseTo(text_.size());
            break;
    }
}

void LineEdit::showLine(std::size_t line) {
    if (line_ == history_.size()) newLine_ = text_;
    line_ = line;
    text_ = line_ == history_.size() ? newLine_ : history_[line_];
    caret_ = text_.size();
}

}  // namespace host
