#include "dialogs/form_script.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <stdexcept>
#include <utility>

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

std::wstring inQuotes(std::wstring_view text) { return L"\"" + std::wstring(text) + L"\""; }

struct Value {
    std::wstring text;
    bool quoted = false;
};
bool isQuoted(std::wstring_view text) { return text.size() >= 2 && text.front() == L'"' && text.back() == L'"'; }

Value parseValue(std::wstring_view text) {
    text = base::trimmed(text);
    if (isQuoted(text)) return {std::wstring(text.substr(1, text.size() - 2)), true};
    return {std::wstring(text), false};
}

bool isFieldControl(const Control& control) { return control.isField(); }
bool isList(const Control& control) {
    return control.kind() == ControlKind::kListView || control.kind() == ControlKind::kListBox;
}

// An exact text wins over one in other case.
template <class TextOf>
int findText(int count, std::wstring_view wanted, TextOf textOf) {
    for (int i = 0; i < count; ++i)
        if (textOf(i) == wanted) return i;
    for (int i = 0; i < count; ++i)
        if (base::equalsNoCase(textOf(i), wanted)) return i;
    return -1;
}

int findChoice(const Control& control, std::wstring_view wanted) {
    return findText(
        static_cast<int>(control.choices.size()), wanted,
        [&](int i) -> const std::wstring& { return control.choices[i].text; });
}

const std::wstring& itemName(const Control& list, int item) {
    static const std::wstring kNone;
    if (list.kind() != ControlKind::kListView) return list.choices[item].text;
    const Row& row = list.rows[item];
    if (!row.name.empty()) return row.name;
    return row.cells.empty() ? kNone : row.cells.front();
}

int findListItem(ItemNames& names, const Value& which) {
    const int named = names.find(which.text, 1);
    if (named >= 0 || which.quoted) return named;
    std::wstring_view name = which.text;
    if (const auto n = takeNumber(name)) return names.find(name, *n);
    const auto number = base::parseInteger(std::wstring_view(which.text));
    return number && *number >= 1 && *number <= names.list().itemCount() ? static_cast<int>(*number) - 1 : -1;
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

constexpr struct {
    const wchar_t* name;
    Key key;
} kKeys[] = {
    {L"Enter", Key::kEnter},       {L"Return", Key::kEnter}, {L"Escape", Key::kEscape},
    {L"Esc", Key::kEscape},        {L"Tab", Key::kTab},      {L"Space", Key::kSpace},
    {L"Delete", Key::kDelete},     {L"Left", Key::kLeft},    {L"Backspace", Key::kBackspace},
    {L"Right", Key::kRight},       {L"Up", Key::kUp},        {L"Down", Key::kDown},
    {L"Home", Key::kHome},         {L"End", Key::kEnd},      {L"PageUp", Key::kPageUp},
    {L"PageDown", Key::kPageDown}, {L"F1", Key::kHelp},      {L"Ctrl+A", Key::kSelectAll},
    {L"Ctrl+C", Key::kCopy},       {L"Ctrl+X", Key::kCut},   {L"Ctrl+V", Key::kPaste},
};

// What stands behind the last blank, as a number from 0 on; the text is cut there.
std::optional<int> takeLastNumber(std::wstring_view& text) {
    const std::size_t blank = text.find_last_of(L" \t");
    if (blank == text.npos) return std::nullopt;
    const auto number = base::parseInteger(text.substr(blank + 1));
    if (!number || *number < 0 || *number > 1'000'000) return std::nullopt;
    text = base::trimmed(text.substr(0, blank));
    return static_cast<int>(*number);
}

}  // namespace

namespace {

std::size_t exactHash(std::wstring_view name) { return std::hash<std::wstring_view>()(name); }

std::size_t foldedHash(std::wstring_view name) {
    std::wstring folded;
    for (std::size_t i = 0; i < name.size();)
        base::appendCharacter(folded, base::foldCase(base::nextCharacter(name, i)));
    return exactHash(folded);
}

bool isExact(std::wstring_view a, std::wstring_view b) { return a == b; }
bool isAnyCase(std::wstring_view a, std::wstring_view b) { return base::equalsNoCase(a, b); }

}  // namespace

ItemNames::ItemNames(const Control& list)
    : list_(&list), exact_(exactHash, isExact), inAnyCase_(foldedHash, isAnyCase) {}

void ItemNames::fill(Places& places) const {
    const auto count = static_cast<std::size_t>(list_->itemCount());
    places.first.reserve(count);
    places.next.resize(count);
    for (std::size_t i = count; i-- > 0;) {
        const int item = static_cast<int>(i);
        const auto [place, isNew] = places.first.try_emplace(itemName(*list_, item), item);
        places.next[i] = isNew ? -1 : std::exchange(place->second, item);
    }
}

int ItemNames::nth(Places& places, std::wstring_view name, std::size_t n) const {
    if (places.first.empty()) fill(places);
    const auto found = places.first.find(name);
    int item = n == 0 || found == places.first.end() ? -1 : found->second;
    for (std::size_t alike = 1; item >= 0 && alike < n; ++alike) item = places.next[static_cast<std::size_t>(item)];
    return item;
}

int ItemNames::find(std::wstring_view name, std::size_t n) {
    if (const int exact = nth(exact_, name, n); exact >= 0) return exact;
    // A number has no case.
    return base::toUpper(name) == base::toLower(name) ? -1 : nth(inAnyCase_, name, n);
}

std::size_t ItemNames::numberOf(int item) {
    std::size_t n = 1;
    for (int at = nth(exact_, itemName(*list_, item), 1); at >= 0 && at != item; at = exact_.next[at]) ++n;
    return n;
}

int findItem(ItemNames& names, std::wstring_view which) { return findListItem(names, parseValue(which)); }

std::wstring distinctItem(ItemNames& names, int item) {
    const std::wstring& name = itemName(names.list(), item);
    std::wstring number = std::to_wstring(item + 1);
    if (name.find_first_of(L"\r\n") != name.npos) return number;
    for (const std::wstring& which :
         {valueText(name), inQuotes(name), name + L"(" + std::to_wstring(names.numberOf(item)) + L")"})
        if (!which.empty() && findItem(names, which) == item) return which;
    return number;
}

std::wstring valueText(std::wstring_view text) {
    const bool isComment = text.starts_with(L';');
    return isComment || base::trimmed(text).size() != text.size() || isQuoted(text) ? inQuotes(text)
                                                                                    : std::wstring(text);
}

const wchar_t* nameOf(Key key) {
    const auto* const known =
        std::find_if(std::begin(kKeys), std::end(kKeys), [key](const auto& candidate) { return candidate.key == key; });
    return known->name;
}

struct FormScript::Verb {
    const wchar_t* name;   ///< empty: none, the line only stands in the help
    const wchar_t* usage;  ///< as an example
    const wchar_t* does;
    void (FormScript::*perform)(std::wstring_view argument);
};

const FormScript::Verb FormScript::kVerbs[] = {
    {L"", L"Tag = DOOR", L"moves the focus there and replaces the text; in a list of choices, chooses", nullptr},
    {L"type", L"type Value: text", L"types at the caret", &FormScript::type},
    {L"caret", L"caret Value 4", L"places the caret; a second number selects up to there", &FormScript::caret},
    {L"check", L"check Invisible", L"marks a check box or a radio button", &FormScript::check},
    {L"uncheck", L"uncheck Invisible", L"clears a check box", &FormScript::uncheck},
    {L"row", L"row WIDTH", L"selects the row of that name (WIDTH(2) the second, 3 the third row)", &FormScript::row},
    {L"double", L"double row WIDTH", L"double-clicks it", &FormScript::doubleRow},
    {L"tab", L"tab Text Options", L"shows that page", &FormScript::tab},
    {L"press", L"press OK", L"moves the focus to the button and presses it", &FormScript::press},
    {L"focus", L"focus Tag", L"moves the focus there, as a click does that changes nothing", &FormScript::focus},
    {L"key", L"key Enter", L"presses that key where the focus is", &FormScript::key},
    {L"menu", L"menu Value: Copy", L"chooses from its context menu; without an entry, prints it", &FormScript::menu},
    {L"width", L"width Tag 120", L"drags a column of the list to that width", &FormScript::width},
    {L"move", L"move 100,50", L"moves the window there", &FormScript::move},
    {L"tip", L"tip OK", L"prints a tooltip", &FormScript::tip},
    {L"show", L"show", L"prints the form; with a name, all choices of that list", &FormScript::show},
    {L"picture", L"picture FILE.bmp", L"saves what the window looks like (windows only)", &FormScript::picture},
    {L"close", L"close", L"the close box; so does ^C", &FormScript::close},
    {L"help", L"help", L"prints this", &FormScript::help},
};

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
            for (int i = 0; i < control->itemCount(); ++i) lines.push_back(L"row " + itemName(*control, i));
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
    if (line == L"^C") return close({});
    for (const Verb& known : kVerbs)
        if (known.perform && base::equalsNoCase(verb, known.name)) return (this->*known.perform)(rest);
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
        const int item = findListItem(namesOf(field), value);
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

void FormScript::setCheck(std::wstring_view name, bool on) {
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

// The list that has the focus, or else the first.
Control& FormScript::listMeant(bool withColumns) {
    const auto suits = [withColumns](const Control& control) {
        return withColumns ? control.kind() == ControlKind::kListView : isList(control);
    };
    if (run_.focus() && suits(*run_.focus())) return *run_.focus();
    for (Control* control : run_.shownControls())
        if (suits(*control)) return *control;
    throw Refusal(L"there is no list");
}

ItemNames& FormScript::namesOf(const Control& list) {
    if (!names_ || &names_->list() != &list || namesRevision_ != run_.itemsRevision()) names_.emplace(list);
    namesRevision_ = run_.itemsRevision();
    return *names_;
}

void FormScript::chooseRow(std::wstring_view which, bool twice) {
    Control& list = listMeant(false);
    const Value value = parseValue(which);
    const int row = findListItem(namesOf(list), value);
    if (row < 0) throw Refusal(L"there is no row " + inQuotes(value.text));
    if (!goTo(list)) return;
    run_.view()->choose(list, row);
    if (twice && !run_.hasEnded()) run_.view()->doubleClick(list, row);
}

void FormScript::doubleRow(std::wstring_view argument) {
    if (!base::startsWithNoCase(argument, L"row ") && !base::startsWithNoCase(argument, L"row\t"))
        throw Refusal(L"this is not \"double row NAME\"");
    chooseRow(base::trimmed(argument.substr(4)), true);
}

void FormScript::tab(std::wstring_view title) {
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

void FormScript::focus(std::wstring_view name) {
    goTo(require(
        run_, name, [](const Control& control) { return control.takesFocus(); }, L"control"));
}

void FormScript::key(std::wstring_view keys) {
    if (base::startsWithNoCase(keys, L"Alt+") && keys.size() == 5) {
        if (!run_.view()->hasMnemonicOf(keys.back()))
            throw Refusal(L"no caption has the mnemonic " + std::wstring(keys.substr(4)));
        return run_.view()->pressMnemonic(keys.back());
    }
    std::wstring_view name = keys;
    const bool shift = base::startsWithNoCase(name, L"Shift+");
    if (shift) name.remove_prefix(6);
    for (const auto& known : kKeys)
        if (base::equalsNoCase(name, known.name)) return run_.view()->pressKey(known.key, shift);
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

void FormScript::caret(std::wstring_view argument) {
    const auto isTyped = [](const Control& control) { return control.isTyped(); };
    std::vector<std::size_t> positions;
    std::wstring_view name = argument;
    while (positions.size() < 2) {
        const auto number = takeLastNumber(name);
        if (!number) break;
        positions.insert(positions.begin(), static_cast<std::size_t>(*number));
        Control* const field = findByName(run_, name, isTyped);
        if (!field) continue;
        if (goTo(*field)) run_.view()->select(*field, {positions.front(), positions.back()});
        return;
    }
    throw Refusal(L"this is not \"caret NAME POSITION\"");
}

void FormScript::menu(std::wstring_view argument) {
    const NamedPart part = splitAtName(run_, argument, L':', isFieldControl);
    Control& control = part.control ? *part.control : require(run_, argument, isFieldControl, L"field");
    if (!goTo(control)) return;
    const std::vector<MenuEntry> entries = run_.menuOf(control);
    if (entries.empty()) throw Refusal(L"it has no menu");
    std::wstring listing, known;
    for (const MenuEntry& entry : entries) {
        const std::wstring name = plainName(entry.text);
        listing += (entry.text.empty() ? L"  --" : L"  " + name) + (entry.enabled ? L"\n" : L" (disabled)\n");
        if (entry.text.empty()) continue;
        if (part.control && base::equalsNoCase(name, plainName(part.rest))) {
            if (!entry.enabled) throw Refusal(L"the entry is disabled");
            return run_.menuChosen(control, entry.command);
        }
        known += (known.empty() ? L"" : L", ") + name;
    }
    if (!part.control) return lines_.print(listing);
    throw Refusal(L"there is no entry " + inQuotes(plainName(part.rest)) + L"; there is: " + known);
}

void FormScript::width(std::wstring_view argument) {
    const auto width = takeLastNumber(argument);
    if (!width) throw Refusal(L"this is not \"width COLUMN PIXELS\"");
    Control& list = listMeant(true);
    const int column = findText(static_cast<int>(list.columns.size()), plainName(argument),
                                [&](int i) { return plainName(list.columns[i].title); });
    if (column < 0) throw Refusal(L"there is no column " + inQuotes(argument));
    run_.view()->dragColumn(list, column, *width);
}

void FormScript::move(std::wstring_view argument) {
    const std::vector<std::wstring> numbers = base::split(argument, L',');
    const auto at = [&](std::size_t i) { return base::parseInteger(base::trimmed(numbers[i])); };
    if (numbers.size() != 2 || !at(0) || !at(1)) throw Refusal(L"this is not \"move LEFT,TOP\"");
    const double scale = run_.view()->scale();
    const auto scaled = [scale](auto value) {
        return static_cast<int>(std::lround(static_cast<double>(value) * scale));
    };
    run_.view()->movePlace(scaled(*at(0)), scaled(*at(1)));
}

void FormScript::tip(std::wstring_view name) {
    const Control& control = require(
        run_, name, [](const Control& candidate) { return candidate.takesFocus() || !candidate.tooltip.empty(); },
        L"control");
    lines_.print(L"  " + (control.tooltip.empty() ? L"(no tooltip)" : control.tooltip) + L"\n");
}

void FormScript::show(std::wstring_view name) {
    if (name.empty()) return lines_.print(formText(run_));
    lines_.print(choicesText(require(run_, name, isFieldControl, L"field")));
}

void FormScript::picture(std::wstring_view fileName) {
    if (fileName.empty()) throw Refusal(L"the file is missing (picture FILE.bmp)");
    run_.view()->savePicture(base::absolutePath(fileName));
}

void FormScript::help(std::wstring_view) {
    constexpr std::size_t kUsageWidth = 20;
    for (const Verb& verb : kVerbs) {
        std::wstring usage = verb.usage;
        usage.resize(std::max(usage.size(), kUsageWidth), L' ');
        lines_.print(L"  " + usage + L" " + verb.does + L"\n");
    }
}

}  // namespace dialogs
