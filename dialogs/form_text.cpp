#include "dialogs/form_text.h"

#include <algorithm>

#include "base/format.h"
#include "base/text.h"
#include "dialogs/form_names.h"
#include "dialogs/styles.h"

namespace dialogs {
namespace {

constexpr std::size_t kLineWidth = 78;
constexpr std::size_t kChoicesShown = 12;
constexpr std::size_t kCellWidth = 30;

// Words, separated by commas, in lines that fit a terminal.
std::wstring wrapped(const std::vector<std::wstring>& words, std::wstring_view indent) {
    std::wstring text, line(indent);
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::wstring word = words[i] + (i + 1 < words.size() ? L"," : L"");
        if (line.size() + 1 + word.size() > kLineWidth && line.size() > indent.size()) {
            text += line + L"\n";
            line = indent;
        }
        line += (line.size() > indent.size() ? L" " : L"") + word;
    }
    return text + line + L"\n";
}

std::vector<std::wstring> choiceTexts(const Control& control, std::size_t limit) {
    std::vector<std::wstring> texts;
    for (const Choice& choice : control.choices) {
        if (texts.size() == limit) {
            texts.push_back(L"... " + std::to_wstring(control.choices.size()) + L" in all");
            break;
        }
        texts.push_back(choice.text);
    }
    return texts;
}

std::wstring inOneLine(std::wstring_view text) {
    return base::replaceAll(base::replaceAll(text, L"\r", L""), L"\n", L"\\n");
}

std::wstring cellText(std::wstring text, std::size_t width) {
    if (text.size() > width) text = std::wstring(base::prefix(text, width - 3)) + L"...";
    text.resize(std::max(text.size(), width), L' ');
    return text;
}

std::wstring rowsText(const Control& list, std::wstring_view indent) {
    std::vector<std::size_t> widths;
    for (std::size_t column = 0; column < list.columns.size(); ++column) {
        std::size_t width = list.columns[column].title.size();
        for (const Row& row : list.rows) width = std::max(width, inOneLine(row.cells[column]).size());
        widths.push_back(std::min(width, kCellWidth));
    }
    const auto line = [&](std::wstring start, const auto& textOf) {
        for (std::size_t column = 0; column < widths.size(); ++column)
            start += L" " + cellText(textOf(column), widths[column]);
        start.erase(start.find_last_not_of(L' ') + 1);
        return std::wstring(indent) + start + L"\n";
    };
    std::wstring text = line(L"      ", [&](std::size_t column) { return list.columns[column].title; });
    for (std::size_t i = 0; i < list.rows.size(); ++i) {
        const Row& row = list.rows[i];
        const bool selected = static_cast<int>(i) == list.selected;
        text += line(
            base::format(L"%s%3d%s ", selected ? L"*" : L" ", static_cast<int>(i) + 1, row.emphasized ? L"!" : L"."),
            [&](std::size_t column) { return inOneLine(row.cells[column]); });
    }
    return text;
}

std::wstring listBoxText(const Control& list, std::wstring_view indent) {
    std::wstring text;
    for (std::size_t i = 0; i < list.choices.size(); ++i)
        text += base::format(L"%s%s%3d. %s\n", std::wstring(indent).c_str(),
                             static_cast<int>(i) == list.selected ? L"*" : L" ", static_cast<int>(i) + 1,
                             list.choices[i].text.c_str());
    return text;
}

// The text of a field, its runs in braces.
std::wstring fieldText(const Control& field) {
    std::wstring text = field.text;
    if (field.richText) {
        const std::vector<RichText::Run> runs = field.richText->runs();
        for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
            text.insert(run->end, L"}");
            text.insert(run->begin, L"{");
        }
    }
    return inOneLine(text);
}

bool isInGroup(const Control& control) {
    const UnitRect& inner = control.design->place;
    for (const auto& group : control.dialog->controls()) {
        if (group->kind() != ControlKind::kGroup || group.get() == &control || !group->visible) continue;
        const UnitRect& outer = group->design->place;
        if (inner.x >= outer.x && inner.x < outer.x + outer.width && inner.y >= outer.y &&
            inner.y < outer.y + outer.height)
            return true;
    }
    return false;
}

class Printer {
  public:
    explicit Printer(Run& run) : run_(run), shown_(run.shownControls()) {}

    std::wstring print() {
        std::wstring text = L"=== " + run_.root().title() + L" ===\n";
        for (std::size_t i = 0; i < shown_.size(); ++i)
            if (!standsInFieldsLine(i)) text += line(*shown_[i]);
        return text;
    }

  private:
    // A label in front of a field is printed with it, also when a button without a name of its own stands between.
    bool standsInFieldsLine(std::size_t i) const {
        if (shown_[i]->kind() != ControlKind::kLabel) return false;
        std::size_t next = i + 1;
        while (next < shown_.size() && shown_[next]->isButton() && plainName(shown_[next]->text).empty()) ++next;
        return next < shown_.size() && shown_[next]->isField() && shown_[i]->dialog == shown_[next]->dialog;
    }

    std::wstring line(const Control& control) const {
        const std::wstring name = nameOf(control);
        std::wstring indent(isInGroup(control) ? 4 : 2, L' ');
        if (&control == run_.focus()) indent[0] = L'>';
        const std::wstring state = !control.enabled ? L"  (disabled)" : control.readOnly ? L"  (read only)" : L"";
        switch (control.kind()) {
            case ControlKind::kLabel:
                return control.text.empty() ? L"" : indent + labelText(control) + state + L"\n";
            case ControlKind::kGroup:
                return indent + L"-- " + name + L" --\n";
            case ControlKind::kButton:
            case ControlKind::kPictureButton:
                return indent + buttonText(control, name) + state + L"\n";
            case ControlKind::kCheck:
                return indent + (control.checked ? L"[x] " : L"[ ] ") + name + state + L"\n";
            case ControlKind::kRadio:
                return indent + (control.checked ? L"(o) " : L"( ) ") + name + state + L"\n";
            case ControlKind::kEdit:
            case ControlKind::kRichEdit:
                return indent + name + L" = \"" + fieldText(control) + L"\"" + state + L"\n";
            case ControlKind::kCombo:
            case ControlKind::kEditCombo:
                return indent + name + L" = \"" + control.text + L"\"" + state + L"\n" +
                       (control.enabled && !control.choices.empty()
                            ? wrapped(choiceTexts(control, kChoicesShown), L"        of: ")
                            : L"");
            case ControlKind::kListBox:
                return indent + name + L":" + state + L"\n" + listBoxText(control, indent.substr(1));
            case ControlKind::kListView:
                return indent + name + L":" + state + L"\n" + rowsText(control, indent.substr(1));
            case ControlKind::kTab:
                return indent + tabText(control) + L"\n";
            case ControlKind::kPicture:
            case ControlKind::kOther:
                break;
        }
        return {};
    }

    static std::wstring labelText(const Control& label) {
        std::wstring caption = inOneLine(label.text);
        if ((label.design->style & kNoPrefixStyle) != 0) return caption;
        return base::replaceAll(base::replaceAll(base::replaceAll(caption, L"&&", L"\x1"), L"&", L""), L"\x1", L"&");
    }

    static std::wstring buttonText(const Control& button, const std::wstring& name) {
        const bool captionOfField = plainName(button.text) != name;
        const std::wstring tip = button.tooltip == name ? std::wstring() : button.tooltip;
        return L"[ " + name + (captionOfField ? L" ..." : L"") + L" ]" + (tip.empty() ? L"" : L"  (" + tip + L")");
    }

    static std::wstring tabText(const Control& tab) {
        std::wstring text;
        for (std::size_t i = 0; i < tab.choices.size(); ++i) {
            const std::wstring title = plainName(tab.choices[i].text);
            text += static_cast<int>(i) == tab.selected ? L" <" + title + L">" : L"  " + title + L" ";
        }
        return L"pages:" + text;
    }

    Run& run_;
    std::vector<Control*> shown_;
};

}  // namespace

std::wstring formText(Run& run) { return Printer(run).print(); }

std::wstring choicesText(const Control& control) {
    if (control.kind() == ControlKind::kListView) return rowsText(control, L" ");
    if (control.choices.empty()) return fieldText(control) + L"\n";
    return wrapped(choiceTexts(control, control.choices.size()), L"  ");
}

}  // namespace dialogs
