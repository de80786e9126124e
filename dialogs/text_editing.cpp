#include "dialogs/text_editing.h"

#include <algorithm>

#include "base/text.h"
#include "dialogs/boxes.h"

namespace dialogs {
namespace {

std::vector<RichText::Run> runsOf(const Control& field) {
    return field.richText ? field.richText->runs() : std::vector<RichText::Run>();
}

// The run that holds the position strictly inside itself.
const RichText::Run* runAround(const std::vector<RichText::Run>& runs, std::size_t position) {
    const auto found = std::find_if(runs.begin(), runs.end(), [position](const RichText::Run& run) {
        return run.begin < position && position < run.end;
    });
    return found == runs.end() ? nullptr : &*found;
}

std::size_t stepBack(const Control& field, std::size_t position) {
    if (position == 0) return 0;
    const std::size_t before = base::positionBefore(field.text, position);
    for (const RichText::Run& run : runsOf(field))
        if (run.begin <= before && before < run.end) return run.begin;
    return before;
}

std::size_t stepForward(const Control& field, std::size_t position) {
    if (position >= field.text.size()) return field.text.size();
    for (const RichText::Run& run : runsOf(field))
        if (run.begin <= position && position < run.end) return run.end;
    return base::positionAfter(field.text, position);
}

void moveCaret(Control& field, std::size_t position, bool keepAnchor) {
    field.selection.caret = position;
    if (!keepAnchor) field.selection.anchor = position;
}

}  // namespace

void snapSelection(Control& field) {
    TextSelection& selection = field.selection;
    selection.anchor = std::min(selection.anchor, field.text.size());
    selection.caret = std::min(selection.caret, field.text.size());
    const std::vector<RichText::Run> runs = runsOf(field);
    const bool forward = selection.anchor <= selection.caret;
    const bool empty = selection.isEmpty();
    std::size_t begin = selection.begin();
    std::size_t end = selection.end();
    if (const RichText::Run* run = runAround(runs, begin)) begin = run->begin;
    if (const RichText::Run* run = runAround(runs, end)) end = run->end;
    if (empty) begin = end;  // a lone caret goes behind the run that it was in
    selection = forward ? TextSelection{begin, end} : TextSelection{end, begin};
}

void refreshFromRichText(Control& field) {
    if (field.richText) field.text = field.richText->text();
    snapSelection(field);
}

namespace {

enum class Source { kTyped, kClipboard };

bool replaceBy(Control& field, std::wstring_view text, Source source) {
    snapSelection(field);
    if (!field.isMultiLine()) text = text.substr(0, text.find_first_of(L"\r\n"));
    const std::size_t begin = field.selection.begin();
    const std::size_t end = field.selection.end();
    if (text.empty() && begin == end) return false;
    if (field.richText) {
        source == Source::kTyped ? field.richText->replace(begin, end, text) : field.richText->paste(begin, end, text);
        field.text = field.richText->text();
    } else {
        field.text.replace(begin, end - begin, text);
    }
    moveCaret(field, std::min(begin + text.size(), field.text.size()), false);
    snapSelection(field);
    return true;
}

}  // namespace

bool replaceSelection(Control& field, std::wstring_view text) { return replaceBy(field, text, Source::kTyped); }

bool pasteClipboard(Control& field) { return replaceBy(field, clipboardText(), Source::kClipboard); }

void copySelection(Control& field) {
    snapSelection(field);
    const std::size_t begin = field.selection.begin();
    const std::size_t end = field.selection.end();
    if (begin == end) return;
    setClipboardText(field.richText ? field.richText->copy(begin, end) : field.text.substr(begin, end - begin));
}

std::optional<bool> editByKey(Control& field, Key key, bool shift) {
    snapSelection(field);
    TextSelection& selection = field.selection;
    switch (key) {
        case Key::kBackspace:
        case Key::kDelete:
            if (selection.isEmpty())
                selection.anchor =
                    key == Key::kBackspace ? stepBack(field, selection.caret) : stepForward(field, selection.caret);
            return replaceSelection(field, L"");
        case Key::kLeft:
        case Key::kUp:
            moveCaret(field, shift || selection.isEmpty() ? stepBack(field, selection.caret) : selection.begin(),
                      shift);
            return false;
        case Key::kRight:
        case Key::kDown:
            moveCaret(field, shift || selection.isEmpty() ? stepForward(field, selection.caret) : selection.end(),
                      shift);
            return false;
        case Key::kHome:
            moveCaret(field, 0, shift);
            return false;
        case Key::kEnd:
            moveCaret(field, field.text.size(), shift);
            return false;
        default:
            return std::nullopt;
    }
}

}  // namespace dialogs
