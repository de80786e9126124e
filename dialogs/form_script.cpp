#include "dialogs/form_script.h"

#include <algorithm>
#include <optional>
#include <stdexcept>

#include "base/number.h"
#include "base/paths.h"
#include "base/text.h"
#include "dialogs/form_names.h"
#include "dialogs/form_text.h"
#include "dialogs/styles.h"

namespace dialogs {
namespace {

// A line that cannot be done.
class Refusal : public std::runtime_error {
  public:
    explicit Refusal(const std::wstring& why) : std::runtime_error(base::toUtf8(why)) {}
};

constexpr wchar_t kHelp[] =
    L"  NAME = TEXT            fills a field, or chooses in a list (quotes keep blanks)\n"
    L"  check NAME             a check box or radio button; uncheck NAME\n"
    L"  press NAME             a button\n"
    L"  row TEXT, row 3        selects a row; double row TEXT double-clicks it\n"
    L"  tab TITLE              shows that page\n"
    L"  type NAME: TEXT        types at the caret; caret NAME 4, caret NAME 4 9 place it\n"
    L"  key Enter              presses a key where the focus is\n"
    L"  menu NAME: ENTRY       the context menu of a control\n"
    L"  show, show NAME        the form, or all choices of one list\n"
    L"  close                  the close box\n";

std::wstring inQuotes(std::wstring_view text) { return L"\"" + std::wstring(text) + L"\""; }

struct Value {
    std::wstring text;
    bool quoted = false;
};
Value parseValue(std::wstring_view text) {
    text = base::trimmed(text);
    if (text.size() >= 2 && text.front() == L'"' && text.back() == L'"')
        return {std::wstring(text.substr(1, text.size() - 2)), true};
    return {std::wstring(text), false};
}

bool isFieldControl(const Control& control) { return control.isField(); }
bool isList(const Control& control) {
    return control.kind() == ControlKind::kListView || control.kind() == ControlKind::kListBox;
}

// An exact text wins over one in other case.
template <class TextOf>
int findItem(int count, std::wstring_view wanted, TextOf textOf) {
    for (int i = 0; i < count; ++i)
        if (textOf(i) == wanted) return i;
    for (int i = 0; i < count; ++i)
        if (base::equalsNoCase(textOf(i), wanted)) return i;
    return -1;
}

int findChoice(const Control& control, std::wstring_view wanted) {
    return findItem(
        static_cast<int>(control.choices.size()), wanted,
        [&](int i) -> const std::wstring& { return control.choices[i].text; });
}

// By the first column, then by any other.
int findRow(const Control& list, std::wstring_view wanted) {
    for (std::size_t column = 0; column < list.columns.size(); ++column) {
        const int row = findItem(static_cast<int>(list.rows.size()), wanted,
                                 [&](int i) -> const std::wstring& { return list.rows[i].cells[column]; });
        if (row >= 0) return row;
    }
    return -1;
}

int findListItem(const Control& list, const Value& which) {
    const int named = list.kind() == ControlKind::kListView ? findRow(list, which.text) : findChoice(list, which.text);
    if (named >= 0 || which.quoted) return named;
    const auto number = base::parseInteger(std::wstring_view(which.text));
    return number && *number >= 1 && *number <= list.itemCount() ? static_cast<int>(*number) - 1 : -1;
}

std::wstring joinedChoices(const Control& control) {
    std::wstring joined;
    for (const Choice& choice : control.choices) joined += (joined.empty() ? L"" : L", ") + choice.text;
    return joined;
}

Control& require(Run& run, std::wstring_view name, const ControlTest& test, const wchar_t* kind) {
    if (Control* const found = findByName(run, name, test)) return *found;
    std::wstring known;
    for (Control* control : run.shownControls())
        if (test(*control) && !nameOf(*control).empty()) known += (known.empty() ? L"" : L", ") + nameOf(*control);
    throw Refusal(L"there is no " + std::wstring(kind) + L" " + inQuotes(base::trimmed(name)) +
                  (known.empty() ? std::wstring() : L"; there is: " + known));
}

const struct {
    const wchar_t* name;
    Key key;
} kKeys[] = {{L"Enter", Key::kEnter},         {L"Return", Key::kEnter}, {L"Escape", Key::kEscape},
             {L"Esc", Key::kEscape},          {L"Tab", Key::kTab},      {L"Space", Key::kSpace},
             {L"Backspace", Key::kBackspace}, {L"Left", Key::kLeft},    {L"Delete", Key::kDelete},
             {L"Right", Key::kRight},         {L"Up", Key::kUp},        {L"Down", Key::kDown},
             {L"Home", Key::kHome},           {L"End", Key::kEnd},      {L"F1", Key::kHelp}};

}  // namespace

void FormScript::step() {
    const auto line = lines_.choose(run_.root().title() + L"> ", [this] { return linesThatSuit(); });
    if (!line) return end();
    const std::wstring_view text = base::trimmed(*line);
    if (text.empty()) return;
    try {
        perform(text);
    } catch (const Refusal& refusal) {
        lines_.refuse(inQuotes(text) + L": " + base::fromUtf8(refusal.what()) + L", in the dialog " +
                      inQuotes(run_.root().title()));
    }
}

std::vector<std::wstring> FormScript::linesThatSuit() {
    std::vector<std::wstring> lines = {L"show", L"close", L"help", L"key Enter", L"key Escape", L"key Tab"};
    for (const Control* control : run_.shownControls()) {
        const std::wstring name = nameOf(*control);
        if (!control->enabled) continue;
        if (control->kind() == ControlKind::kTab)
            for (const Choice& page : control->choices) lines.push_back(L"tab " + plainName(page.text));
        if (control->kind() == ControlKind::kListView)
            for (const Row& row : control->rows) lines.push_back(L"row " + row.cells.front());
        if (name.empty()) continue;
        if (control->isButton()) lines.push_back(L"press " + name);
        if (control->isCheckable()) lines.push_back(L"check " + name);
        if (control->kind() == ControlKind::kCheck) lines.push_back(L"uncheck " + name);
        if (!control->isField() || control->readOnly) continue;
        lines.push_back(name + L" = ");
        if (control->isTyped()) lines.push_back(L"type " + name + L": ");
        for (const Choice& choice : control->choices) lines.push_back(name + L" = " + choice.text);
    }
    return lines;
}

void FormScript::end() {
    if (lines_.isScript()) lines_.refuse(L"the script ends in the dialog " + inQuotes(run_.root().title()));
    run_.cancelled();
    run_.end(kCancelButton);  // also when it does not want to
}

void FormScript::perform(std::wstring_view line) {
    if (performAssignment(line)) return;
    const std::size_t blank = std::min(line.find_first_of(L" \t"), line.size());
    const std::wstring_view verb = line.substr(0, blank);
    const std::wstring_view rest = base::trimmed(line.substr(blank));
    const auto is = [verb](std::wstring_view word) { return base::equalsNoCase(verb, word); };
    if (line == L"^C" || is(L"close")) return run_.view()->close();
    if (is(L"press")) return press(rest);
    if (is(L"check")) return check(rest, true);
    if (is(L"uncheck")) return check(rest, false);
    if (is(L"row")) return chooseRow(rest, false);
    if (is(L"double") && (base::startsWithNoCase(rest, L"row ") || base::startsWithNoCase(rest, L"row\t")))
        return chooseRow(base::trimmed(rest.substr(4)), true);
    if (is(L"tab")) return chooseTab(rest);
    if (is(L"key")) return pressKey(rest);
    if (is(L"type")) return type(rest);
    if (is(L"caret")) return placeCaret(rest);
    if (is(L"menu")) return chooseMenu(rest);
    if (is(L"show")) return show(rest);
    if (is(L"picture")) return savePicture(rest);
    if (is(L"help")) return lines_.print(kHelp);
    const std::size_t equals = line.find(L'=');
    if (equals != line.npos) require(run_, line.substr(0, equals), isFieldControl, L"field");
    throw Refusal(L"this is no action on a form (\"help\" lists them)");
}

bool FormScript::goTo(Control& control) {
    if (!control.enabled) throw Refusal(L"it is disabled");
    return run_.view()->moveFocus(control) && !run_.hasEnded() && control.enabled && run_.isShown(control);
}

bool FormScript::performAssignment(std::wstring_view line) {
    const NamedPart part = splitAtName(run_, line, L'=', isFieldControl);
    if (!part.control) return false;
    assign(*part.control, part.rest);
    return true;
}

void FormScript::assign(Control& field, std::wstring_view valueText) {
    const Value value = parseValue(valueText);
    View& view = *run_.view();
    if (field.readOnly) throw Refusal(L"it can only be read");
    if (isList(field)) {
        const int item = findListItem(field, value);
        if (item < 0) throw Refusal(L"there is no row " + inQuotes(value.text));
        if (goTo(field)) view.choose(field, item);
        return;
    }
    const int choice = field.isText() ? -1 : findChoice(field, value.text);
    if (field.kind() == ControlKind::kCombo && choice < 0)
        throw Refusal(L"there is no choice " + inQuotes(value.text) + L"; there is: " + joinedChoices(field));
    if (!goTo(field)) return;
    if (choice >= 0) return view.choose(field, choice);
    view.select(field, {0, field.text.size()});
    view.typeText(field, value.text);
}

void FormScript::check(std::wstring_view name, bool on) {
    Control& box = require(
        run_, name,
        [on](const Control& control) {
            return control.kind() == ControlKind::kCheck || (on && control.kind() == ControlKind::kRadio);
        },
        L"box");
    if (!goTo(box)) return;
    // A radio button is clicked in any case, as a hand would that does not care what is marked.
    if (box.checked != on || box.kind() == ControlKind::kRadio) run_.view()->press(box);
}

void FormScript::chooseRow(std::wstring_view which, bool twice) {
    // The list that has the focus, or else the first.
    Control* list = run_.focus() && isList(*run_.focus()) ? run_.focus() : nullptr;
    for (Control* control : run_.shownControls())
        if (!list && isList(*control)) list = control;
    if (!list) throw Refusal(L"there is no list");
    const Value value = parseValue(which);
    const int row = findListItem(*list, value);
    if (row < 0) throw Refusal(L"there is no row " + inQuotes(value.text));
    if (!goTo(*list)) return;
    run_.view()->choose(*list, row);
    if (twice && !run_.hasEnded()) run_.view()->doubleClick(*list, row);
}

void FormScript::chooseTab(std::wstring_view title) {
    for (Control* control : run_.shownControls()) {
        if (control->kind() != ControlKind::kTab) continue;
        for (std::size_t i = 0; i < control->choices.size(); ++i) {
            if (!base::equalsNoCase(plainName(control->choices[i].text), plainName(title))) continue;
            if (goTo(*control)) run_.view()->choose(*control, static_cast<int>(i));
            return;
        }
    }
    throw Refusal(L"there is no page " + inQuotes(title));
}

void FormScript::press(std::wstring_view name) {
    Control& button = require(
        run_, name, [](const Control& control) { return control.isButton(); }, L"button");
    if (goTo(button)) run_.view()->press(button);
}

void FormScript::pressKey(std::wstring_view keys) {
    bool shift = false;
    if (base::startsWithNoCase(keys, L"Shift+")) {
        shift = true;
        keys.remove_prefix(6);
    }
    for (const auto& known : kKeys)
        if (base::equalsNoCase(keys, known.name)) return run_.view()->pressKey(known.key, shift);
    throw Refusal(L"there is no key " + inQuotes(keys));
}

void FormScript::type(std::wstring_view argument) {
    const auto isTyped = [](const Control& control) { return control.isTyped(); };
    const NamedPart part = splitAtName(run_, argument, L':', isTyped);
    if (!part.control) {
        require(run_, argument.substr(0, argument.find(L':')), isTyped, L"field");
        throw Refusal(L"what is to be typed is missing (type NAME: TEXT)");
    }
    if (part.control->readOnly) throw Refusal(L"it can only be read");
    if (goTo(*part.control)) run_.view()->typeText(*part.control, parseValue(part.rest).text);
}

void FormScript::placeCaret(std::wstring_view argument) {
    const auto isTyped = [](const Control& control) { return control.isTyped(); };
    std::vector<std::size_t> positions;
    for (std::wstring_view name = argument; positions.size() < 2;) {
        const std::size_t blank = name.find_last_of(L" \t");
        const auto number =
            blank == name.npos ? std::nullopt : base::parseInteger(name.substr(std::min(blank, name.size())));
        if (!number || *number < 0) break;
        positions.insert(positions.begin(), static_cast<std::size_t>(*number));
        name = base::trimmed(name.substr(0, blank));
        Control* const field = findByName(run_, name, isTyped);
        if (!field) continue;
        if (goTo(*field)) run_.view()->select(*field, {positions.front(), positions.back()});
        return;
    }
    throw Refusal(L"this is not \"caret NAME POSITION\"");
}

void FormScript::chooseMenu(std::wstring_view argument) {
    const auto takesFocus = [](const Control& control) { return control.takesFocus(); };
    const NamedPart part = splitAtName(run_, argument, L':', takesFocus);
    if (!part.control) throw Refusal(L"there is no control of that name");
    if (!goTo(*part.control)) return;
    const std::wstring wanted = plainName(part.rest);
    std::wstring known;
    for (const MenuEntry& entry : run_.menuOf(*part.control)) {
        if (entry.text.empty()) continue;
        if (base::equalsNoCase(plainName(entry.text), wanted)) {
            if (!entry.enabled) throw Refusal(L"the entry is disabled");
            return run_.menuChosen(*part.control, entry.command);
        }
        known += (known.empty() ? L"" : L", ") + plainName(entry.text);
    }
    throw Refusal(L"there is no entry " + inQuotes(wanted) + L"; there is: " + (known.empty() ? L"no menu" : known));
}

void FormScript::show(std::wstring_view name) {
    if (name.empty()) return lines_.print(formText(run_));
    lines_.print(choicesText(require(run_, name, isFieldControl, L"field")));
}

void FormScript::savePicture(std::wstring_view fileName) {
    if (fileName.empty()) throw Refusal(L"the file is missing (picture FILE.bmp)");
    run_.view()->savePicture(base::absolutePath(fileName));
}

}  // namespace dialogs
