#include "torvelcmd2/attributes/value_control.h"

#include <algorithm>
#include <utility>

#include "dialogs/boxes.h"
#include "torvelcmd2/frame/module_dialog.h"

namespace torvel {

CapturedText CFEdCtrl::captured() const {
    auto [code, fields] = value_.code();
    return {!fields.empty(), std::move(code), std::move(fields)};
}

void CFEdCtrl::markFound() {
    foundText_ = text();
    found_ = captured();
}

bool CFEdCtrl::isChanged() const { return text() != foundText_ || !sameText(captured(), found_); }

OdString CFEdCtrl::save(OdDbEntity& entity) const {
    OdString shown;
    value_.save(entity, shown);
    return shown;
}

std::vector<dialogs::RichText::Run> CFEdCtrl::runs() const {
    std::vector<Run> runs;
    for (const FieldEdit::FieldEntry& entry : value_.entries())
        if (entry.first <= entry.last)
            runs.push_back({static_cast<std::size_t>(entry.first), static_cast<std::size_t>(entry.last) + 1});
    // Entries stand in the order in which they were placed.
    std::sort(runs.begin(), runs.end(), [](const Run& a, const Run& b) { return a.begin < b.begin; });
    return runs;
}

void CFEdCtrl::replace(std::size_t begin, std::size_t end, std::wstring_view plain) {
    if (plain.empty() && begin == end) return;
    value_.select(begin, end);
    if (plain.empty())
        value_.deleteBack();
    else
        value_.type(OdString(plain));
}

std::wstring CFEdCtrl::copy(std::size_t begin, std::size_t end) {
    value_.select(begin, end);
    return value_.copy();
}

void CFEdCtrl::paste(std::size_t begin, std::size_t end, std::wstring_view copied) {
    value_.select(begin, end);
    value_.paste(OdString(copied));
}

std::vector<dialogs::MenuEntry> CFEdCtrl::menu(const dialogs::TextSelection& selection) const {
    FieldEdit selected = value_;
    selected.select(selection.anchor, selection.caret);
    std::vector<dialogs::MenuEntry> entries;
    for (int i = 0; i < FieldEdit::kCommands; ++i) {
        const auto command = static_cast<FieldEdit::Command>(i);
        const bool allowed = !readOnly_ || command == FieldEdit::kCopy || command == FieldEdit::kSelectAll;
        entries.push_back({translate(FieldEdit::commandText(command)), i, allowed && selected.isAvailable(command)});
    }
    return entries;
}

bool CFEdCtrl::onMenu(int command, dialogs::TextSelection& selection) {
    value_.select(selection.anchor, selection.caret);
    OdString clipboard;
    if (command == FieldEdit::kPaste) clipboard = dialogs::clipboardText();
    value_.run(static_cast<FieldEdit::Command>(command), clipboard);
    // Nothing was copied when nothing is selected.
    if (command == FieldEdit::kCopy && !clipboard.empty()) dialogs::setClipboardText(clipboard);
    selection = {value_.anchor(), value_.caret()};
    return command != FieldEdit::kCopy && command != FieldEdit::kSelectAll;
}

}  // namespace torvel
