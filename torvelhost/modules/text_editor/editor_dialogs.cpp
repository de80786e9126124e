#include "torvelhost/modules/text_editor/editor_dialogs.h"

#include "base/text.h"
#include "dialogs/boxes.h"
#include "dialogs/process.h"
#include "torvelhost/modules/host_services.h"
#include "torvelhost/modules/text_editor/resource.h"

namespace texteditor {
namespace {

constexpr wchar_t kParagraphEnd[] = L"\\P";
constexpr wchar_t kLineEnd[] = L"\r\n";

// Behind a backslash a P is a P: "\\P" in the contents shows a backslash and a P.
OdString withLineEnds(const OdString& contents) {
    OdString lines;
    for (std::size_t at = 0; at < contents.size(); ++at) {
        if (contents.compare(at, 2, kParagraphEnd) == 0) {
            lines += kLineEnd;
            ++at;
        } else {
            lines += contents[at];
            if (contents[at] == L'\\' && at + 1 < contents.size()) lines += contents[++at];
        }
    }
    return lines;
}

// A backslash that ends a line is one to be seen: a single one would make a backslash and a P of the paragraph's end.
OdString withParagraphs(const OdString& shown) {
    const OdString lines = base::replaceAll(shown, kLineEnd, L"\n");
    OdString contents;
    for (std::size_t at = 0; at < lines.size(); ++at) {
        if (lines[at] == L'\n') {
            contents += kParagraphEnd;
            continue;
        }
        contents += lines[at];
        if (lines[at] != L'\\' || at + 1 == lines.size()) continue;
        contents += lines[at + 1] == L'\n' ? L'\\' : lines[++at];
    }
    return contents;
}

base::ModuleHandle thisModule() { return base::moduleOf(reinterpret_cast<const void*>(&thisModule)); }

OdString lengthText(double length) {
    CXStringW text;
    auto* const toText = base::findFunction(hostapi::realToText);
    return toText && toText(length, -1, -1, text) ? OdString(text) : OdString();
}

}  // namespace

EditorDialog::EditorDialog(Lines lines, const Sheet& sheet)
    : Dialog(lines == Lines::kOne ? IDD_LINE_EDITOR : IDD_TEXT_EDITOR),
      lines_(lines),
      sheet_(sheet),
      shown_(hasParagraphs() ? withLineEnds(sheet.contents.text) : sheet.contents.text) {
    setText(IDC_EDITOR_TEXT, shown_);
    // One line is selected whole at first; of several a key must not take the place.
    if (lines == Lines::kOne) selectAll(IDC_EDITOR_TEXT);
    if (lines == Lines::kOneInFull) enable(IDC_EDITOR_WIDTH, false);
    if (hasParagraphs()) setText(IDC_EDITOR_WIDTH, lengthText(sheet.width));
}

void EditorDialog::onCommand(int control, dialogs::Event event) {
    if (control == IDC_EDITOR_FIELD && event == dialogs::Event::kPressed) insertField();
}

// A field goes in as its marker, in the place of what is selected.
void EditorDialog::insertField() {
    OdDbFieldPtr field;
    if (!hostmodule::askField(field)) return;
    const OdString added = drawingdb::fieldIndexMarker(sheet_.contents.fields.size());
    sheet_.contents.fields.push_back(field);
    OdString edited = text(IDC_EDITOR_TEXT);
    const dialogs::TextSelection selected = selection(IDC_EDITOR_TEXT);
    edited.replace(selected.begin(), selected.end() - selected.begin(), added);
    setText(IDC_EDITOR_TEXT, edited);
    focus(IDC_EDITOR_TEXT);
    setSelection(IDC_EDITOR_TEXT, {selected.begin() + added.size(), selected.begin() + added.size()});
}

// What was not changed stands for the width to its last digit.
std::optional<double> EditorDialog::typedWidth() const {
    const OdString typed = text(IDC_EDITOR_WIDTH);
    if (typed == lengthText(sheet_.width)) return sheet_.width;
    auto* const toReal = base::findFunction(hostapi::textToReal);
    double width = 0;
    return toReal && toReal(typed.c_str(), -1, width) && width >= 0 ? std::optional(width) : std::nullopt;
}

bool EditorDialog::onLeave(int control, int next) {
    if (control != IDC_EDITOR_WIDTH || next == dialogs::kCancelButton || typedWidth()) return true;
    dialogs::messageBox(dialogs::BoxKind::kWarning,
                        L"\"" + text(IDC_EDITOR_WIDTH) + L"\" is no width; give a length, or 0 for none.");
    return false;
}

void EditorDialog::onOk() {
    if (hasParagraphs()) sheet_.width = typedWidth().value_or(sheet_.width);
    // What was not changed stands for the contents to the last character, also where a line end was one.
    if (text(IDC_EDITOR_TEXT) != shown_) sheet_.contents.text = editedContents();
    end(dialogs::kOkButton);
}

OdString EditorDialog::editedContents() const {
    const OdString edited = text(IDC_EDITOR_TEXT);
    if (hasParagraphs()) return withParagraphs(edited);
    return lines_ == Lines::kOneInFull ? base::replaceAll(edited, kLineEnd, L" ") : edited;
}

namespace {

// A script gives the whole contents in one line.
bool runEditor(EditorDialog& dialog) {
    dialogs::OneAnswer answer(L"^C");
    if (dialog.runModal() != dialogs::kOkButton) return false;
    answer.tell(dialog.sheet().contents.text);
    return true;
}

}  // namespace

bool editLines(Sheet& sheet) {
    const dialogs::ResourceScope resources(thisModule());
    EditorDialog dialog(EditorDialog::Lines::kParagraphs, sheet);
    if (!runEditor(dialog)) return false;
    sheet = dialog.sheet();
    return true;
}

bool editLine(FieldText& contents, bool inFull) {
    const dialogs::ResourceScope resources(thisModule());
    EditorDialog dialog(inFull ? EditorDialog::Lines::kOneInFull : EditorDialog::Lines::kOne, {contents, 0});
    if (!runEditor(dialog)) return false;
    contents = dialog.sheet().contents;
    return true;
}

}  // namespace texteditor
