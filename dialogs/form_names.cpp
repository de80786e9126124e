#include "dialogs/form_names.h"

#include <algorithm>
#include <array>

#include "base/number.h"
#include "base/text.h"
#include "dialogs/styles.h"

namespace dialogs {
namespace {

bool hasOwnCaption(const Control& control) {
    switch (control.kind()) {
        case ControlKind::kLabel:
        case ControlKind::kGroup:
        case ControlKind::kButton:
        case ControlKind::kPictureButton:
        case ControlKind::kCheck:
        case ControlKind::kRadio:
            return true;
        default:
            return false;
    }
}

std::wstring withPlainAmpersands(std::wstring_view text) { return base::replaceAll(text, L"&", L"&&"); }

std::wstring ownCaption(const Control& control) {
    // What a picture button shows is its picture.
    if (!hasOwnCaption(control) || (control.kind() == ControlKind::kPictureButton && control.picture != 0)) return {};
    const bool noPrefix = control.kind() == ControlKind::kLabel && (control.design->style & kNoPrefixStyle) != 0;
    return plainName(noPrefix ? withPlainAmpersands(control.text) : control.text);
}

// The nearest caption before the control. An empty label ends the search: it belongs to the control, and says nothing
// now. A field does not go by the caption of a field in front of it, unless `overFields`; a button does.
std::wstring captionBefore(const Control& control, bool overFields) {
    const auto& all = control.dialog->controls();
    auto at = std::find_if(all.begin(), all.end(), [&](const auto& other) { return other.get() == &control; });
    while (at != all.begin()) {
        const Control& before = **--at;
        if (!before.visible) continue;
        if (before.isField() && control.isField() && !overFields) return {};
        if (!hasOwnCaption(before)) continue;
        std::wstring caption = ownCaption(before);
        if (!caption.empty() || before.kind() == ControlKind::kLabel) return caption;
    }
    return {};
}

// In their order of precedence.
using Names = std::array<std::wstring, 4>;
Names namesOf(const Control& control) {
    const std::wstring own = ownCaption(control);
    const bool named = !own.empty() || control.kind() == ControlKind::kLabel;
    const bool isList = control.kind() == ControlKind::kListView || control.kind() == ControlKind::kListBox;
    return {named ? own : captionBefore(control, false), plainName(control.tooltip),
            named ? std::wstring() : captionBefore(control, true), isList ? L"list" : L""};
}

bool liesInside(const UnitRect& inner, const UnitRect& outer) {
    const int x = inner.x + inner.width / 2;
    const int y = inner.y + inner.height / 2;
    return x >= outer.x && x < outer.x + outer.width && y >= outer.y && y < outer.y + outer.height;
}

// Whether the name, perhaps with a group's in front, is `wanted`.
bool isCalled(const Control& control, std::wstring_view name, std::wstring_view wanted) {
    if (name.empty()) return false;
    if (base::equalsNoCase(name, wanted)) return true;
    if (wanted.size() <= name.size()) return false;
    const std::size_t begin = wanted.size() - name.size();
    std::wstring_view front = base::trimmed(wanted.substr(0, begin));
    if (!front.ends_with(L'/') || !base::equalsNoCase(wanted.substr(begin), name)) return false;
    front = base::trimmed(front.substr(0, front.size() - 1));
    for (const auto& group : control.dialog->controls())
        if (group->kind() == ControlKind::kGroup && group.get() != &control && group->visible &&
            base::equalsNoCase(plainName(group->text), front) &&
            liesInside(control.design->place, group->design->place))
            return true;
    return false;
}

// The names of the controls that may be meant.
class NameTable {
  public:
    NameTable(Run& run, const ControlTest& test) {
        for (Control* control : run.shownControls())
            if (test(*control)) entries_.push_back({control, namesOf(*control)});
    }

    Control* find(std::wstring_view name) const;
    std::wstring distinctName(const Control& control) const;

  private:
    struct Entry {
        Control* control;
        Names names;
    };

    Control* findNth(std::wstring_view wanted, std::size_t n) const {
        for (std::size_t precedence = 0; precedence < std::tuple_size_v<Names>; ++precedence) {
            std::size_t alike = 0;
            for (const Entry& entry : entries_)
                if (isCalled(*entry.control, entry.names[precedence], wanted) && ++alike == n) return entry.control;
        }
        return nullptr;
    }

    std::vector<Entry> entries_;
};

// A name is written as it is shown, or as the template has it.
Control* NameTable::find(std::wstring_view name) const {
    const auto find = [this](std::wstring_view wanted, std::size_t n) {
        Control* const found = findNth(plainName(withPlainAmpersands(wanted)), n);
        return found ? found : findNth(plainName(wanted), n);
    };
    if (Control* const found = find(name, 1)) return found;
    std::wstring_view withoutNumber = base::trimmed(name);
    const auto number = takeNumber(withoutNumber);
    return number ? find(withoutNumber, *number) : nullptr;
}

// A group's name in front tells more than a number behind.
std::wstring NameTable::distinctName(const Control& control) const {
    const auto finds = [&](const std::wstring& name) {
        return name.find_first_of(L"\r\n") == name.npos && find(name) == &control;
    };
    const Names names = namesOf(control);
    for (const std::wstring& name : names)
        if (!name.empty() && finds(name)) return name;
    for (const std::wstring& name : names) {
        if (name.empty()) continue;
        for (const auto& group : control.dialog->controls()) {
            if (group->kind() != ControlKind::kGroup) continue;
            if (std::wstring inGroup = plainName(group->text) + L"/" + name; finds(inGroup)) return inGroup;
        }
        for (std::size_t n = 2; n <= entries_.size(); ++n)
            if (std::wstring numbered = name + L"(" + std::to_wstring(n) + L")"; finds(numbered)) return numbered;
    }
    return {};
}

}  // namespace

std::wstring plainName(std::wstring_view caption) {
    std::wstring name;
    for (std::size_t i = 0; i < caption.size(); ++i) {
        if (caption[i] == L'&' && ++i == caption.size()) break;
        name += caption[i];
    }
    for (bool cut = true; cut;) {
        cut = false;
        name = base::trimmed(name);
        for (std::wstring_view ending : {L"...", L":", L"<"}) {
            if (!name.ends_with(ending)) continue;
            name.resize(name.size() - ending.size());
            cut = true;
        }
    }
    return name;
}

std::optional<std::size_t> takeNumber(std::wstring_view& name) {
    if (!name.ends_with(L')')) return std::nullopt;
    const std::size_t open = name.rfind(L'(');
    if (open == name.npos) return std::nullopt;
    const auto number = base::parseInteger(name.substr(open + 1, name.size() - open - 2));
    if (!number || *number < 1) return std::nullopt;
    name = base::trimmed(name.substr(0, open));
    return static_cast<std::size_t>(*number);
}

std::wstring nameOf(const Control& control) {
    const auto names = namesOf(control);
    return !names[0].empty() ? names[0] : !names[1].empty() ? names[1] : names[3];
}

Control* findByName(Run& run, std::wstring_view name, const ControlTest& test) {
    return NameTable(run, test).find(name);
}

std::wstring distinctName(Run& run, const Control& control, const ControlTest& test) {
    return NameTable(run, test).distinctName(control);
}

NamedPart splitAtName(Run& run, std::wstring_view line, wchar_t separator, const ControlTest& test) {
    if (line.find(separator) == line.npos) return {};
    const NameTable table(run, test);
    for (std::size_t at = line.rfind(separator); at != line.npos && at > 0; at = line.rfind(separator, at - 1))
        if (Control* const found = table.find(line.substr(0, at))) return {found, line.substr(at + 1)};
    return {};
}

}  // namespace dialogs
