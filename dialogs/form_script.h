// The lines that work a dialog. Each is one action: "NAME = TEXT", or a verb and what it needs. The verbs stand in one
// table (form_script.cpp), which "help" prints and docs/scripts.md shows.
#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "dialogs/run.h"

namespace dialogs {

/// Where the items of a list are, by their names: a long list is worked by many lines. Good until its items change.
class ItemNames {
  public:
    explicit ItemNames(const Control& list);

    const Control& list() const { return *list_; }
    /// The nth item of that name; an exact name wins over one in other case. -1: there is none.
    int find(std::wstring_view name, std::size_t n);
    /// Which of the items of that very name it is, from 1 on.
    std::size_t numberOf(int item);

  private:
    using Hash = std::size_t (*)(std::wstring_view name);
    using Alike = bool (*)(std::wstring_view a, std::wstring_view b);
    /// The items by one idea of what names are alike.
    struct Places {
        Places(Hash hash, Alike alike) : first(0, hash, alike) {}
        std::unordered_map<std::wstring_view, int, Hash, Alike> first;
        std::vector<int> next;  // the next item of the same name; -1: none
    };
    void fill(Places& places) const;
    int nth(Places& places, std::wstring_view name, std::size_t n) const;

    const Control* list_;
    Places exact_, inAnyCase_;  // filled when they are first wanted
};

/// What a line calls an item by: its name, "NAME(2)", or its number. -1: there is none.
int findItem(ItemNames& names, std::wstring_view which);
/// What findItem finds that item by.
std::wstring distinctItem(ItemNames& names, int item);
/// A text as it stands behind "=" and ":", in quotes where they keep something.
std::wstring valueText(std::wstring_view text);
/// "Enter", for lines with `key`.
const wchar_t* nameOf(Key key);

class FormScript {
  public:
    FormScript(Run& run, LineSource& lines) : run_(run), lines_(lines) {}

    /// Takes one line and does it. At the end of the lines the dialog is cancelled, or the source of the lines throws.
    DIALOGS_API void step();

  private:
    struct Verb;
    static const Verb kVerbs[];

    void perform(std::wstring_view line);
    bool performAssignment(std::wstring_view line);
    void assign(Control& field, std::wstring_view value);
    void setCheck(std::wstring_view name, bool on);
    Control& listMeant(bool withColumns);
    void chooseRow(std::wstring_view which, bool twice);
    ItemNames& namesOf(const Control& list);

    /// ---- the verbs
    void type(std::wstring_view argument);
    void caret(std::wstring_view argument);
    void check(std::wstring_view name) { setCheck(name, true); }
    void uncheck(std::wstring_view name) { setCheck(name, false); }
    void row(std::wstring_view which) { chooseRow(which, false); }
    void doubleRow(std::wstring_view argument);
    void tab(std::wstring_view title);
    void press(std::wstring_view name);
    void focus(std::wstring_view name);
    void key(std::wstring_view keys);
    void menu(std::wstring_view argument);
    void width(std::wstring_view argument);
    void move(std::wstring_view argument);
    void tip(std::wstring_view name);
    void show(std::wstring_view name);
    void picture(std::wstring_view fileName);
    void close(std::wstring_view) { run_.view()->close(); }
    void help(std::wstring_view);

    /// The lines that suit the form as it is, or begin one that does.
    std::vector<std::wstring> linesThatSuit();
    /// Moves the focus there; false when the action is to be dropped.
    bool goTo(Control& control);
    void end();

    Run& run_;
    LineSource& lines_;
    std::optional<ItemNames> names_;  // of the list that was looked at last
    std::uint64_t namesRevision_ = 0;
};

}  // namespace dialogs
