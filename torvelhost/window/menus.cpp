#include "torvelhost/window/menus.h"

#include "base/paths.h"
#include "base/text.h"

namespace host {
namespace {

struct Entry {
    const wchar_t* text;  // empty: a line between entries
    const wchar_t* shortcut;
    const wchar_t* hint;
    MenuAction action;
    const wchar_t* lines;  // of a command, separated by "|"
    bool inToolbar;
};
struct Titled {
    const wchar_t* title;
    std::vector<Entry> entries;
};

constexpr MenuAction kCommand = MenuAction::kCommand;
constexpr Entry kLine = {L"", L"", L"", kCommand, L"", false};

const std::vector<Titled>& table() {
    static const std::vector<Titled> menus = {
        {L"&File",
         {{L"&New", L"Ctrl+N", L"Begins a new drawing", MenuAction::kNew, L"", false},
          {L"&Open...", L"Ctrl+O", L"Opens a drawing", MenuAction::kOpen, L"", true},
          {L"&Save", L"Ctrl+S", L"Saves the drawing", MenuAction::kSave, L"", true},
          {L"Save &As...", L"Ctrl+Shift+S", L"Saves the drawing under another name", MenuAction::kSaveAs, L"", false},
          kLine,
          {L"&Plot...", L"Ctrl+P", L"Draws what the view shows into a file", MenuAction::kPlot, L"", false},
          kLine,
          {L"&Close", L"", L"Closes the window", MenuAction::kClose, L"", false}}},
        {L"&Edit",
         {{L"&Undo", L"Ctrl+Z", L"Takes back the last command", kCommand, L"UNDO|1", true},
          {L"&Redo", L"Ctrl+Y", L"Brings back what was taken back last", kCommand, L"REDO|1", true},
          kLine,
          {L"Select A&ll", L"Ctrl+A", L"Selects everything for the next command", kCommand, L"all", false}}},
        {L"&View",
         {{L"Zoom &Extents", L"", L"Shows all there is", kCommand, L"ZOOM|Extents", true},
          {L"Zoom &Window", L"", L"Shows what lies between two corners", kCommand, L"ZOOM|Window", false},
          {L"Zoom &Previous", L"", L"Shows what was shown before", kCommand, L"ZOOM|Previous", false},
          {L"&Regenerate", L"", L"Evaluates the fields and draws everything anew", kCommand, L"REGEN", false},
          kLine,
          {L"&Slide...", L"", L"Shows a slide file", kCommand, L"VSlide", false}}},
        {L"&Draw",
         {{L"&Infinite Line", L"", L"Draws infinite lines", kCommand, L"XLINE", true},
          {L"&Ray", L"", L"Draws rays from a point", kCommand, L"Ray", true},
          {L"&Wipeout", L"", L"Masks an area", kCommand, L"Wipeout", true},
          {L"&Divide", L"", L"Marks equal lengths on a curve", kCommand, L"Divide", true},
          kLine,
          {L"Make &Block", L"", L"Makes a block of what is selected", kCommand, L"BLOCK", false},
          {L"I&nsert Block", L"", L"Inserts a block", kCommand, L"INSERT", false},
          kLine,
          {L"&Layers", L"", L"Makes layers and changes what they are", kCommand, L"LAYER", false}}},
        {L"&Attributes",
         {{L"&Define...", L"", L"Makes an attribute definition", kCommand, L"Attdef", true},
          {L"Edit &Values...", L"", L"Edits the attribute values of a reference", kCommand, L"AttEdit", true},
          {L"&Edit Attributes...", L"", L"Edits values, texts and properties of a reference's attributes", kCommand,
           L"EAttEdit", true},
          {L"Edit &in Place", L"", L"Edits the text of one attribute", kCommand, L"ATTIPedit", true},
          kLine,
          {L"&Manage...", L"", L"Orders, edits and removes the definitions of a block", kCommand, L"BAttMan", true},
          {L"&Synchronize", L"", L"Gives references the attributes of their block", kCommand, L"AttSync", true},
          {L"&Burst", L"", L"Replaces references by what they show, values included", kCommand, L"Burst", true},
          kLine,
          {L"E&xtract...", L"", L"Writes attribute values into a file", kCommand, L"AttExt", true},
          {L"Values to a &List", L"", L"Writes attribute values into a table for a spreadsheet", kCommand, L"VALUESOUT",
           false},
          {L"Values &from a List", L"", L"Takes the values of a table that a spreadsheet has changed", kCommand,
           L"VALUESIN", false}}},
        {L"&Help", {{L"&Try a Text", L"", L"Asks for a text and prints it", kCommand, L"ElxTest", false}}},
    };
    return menus;
}

std::wstring plain(std::wstring_view text) {
    std::wstring name;
    for (const wchar_t c : text)
        if (c != L'&') name += c;
    while (name.ends_with(L'.')) name.pop_back();
    return name;
}

std::wstring pathOf(const Titled& menu, const Entry& entry) { return plain(menu.title) + L"/" + plain(entry.text); }

constexpr wchar_t kRecentPath[] = L"File/Recent/";

}  // namespace

std::vector<Menu> windowMenus(const std::vector<std::wstring>& recent) {
    std::vector<Menu> menus;
    for (const Titled& titled : table()) {
        Menu menu{titled.title, {}};
        for (const Entry& entry : titled.entries) {
            // Recent files stand before the last entry of the first menu.
            if (entry.action == MenuAction::kClose && !recent.empty()) {
                for (std::size_t i = 0; i < recent.size(); ++i) {
                    const std::wstring number = std::to_wstring(i + 1);
                    menu.entries.push_back(
                        {L"&" + number + L" " + base::replaceAll(base::fileNameOf(recent[i]), L"&", L"&&"),
                         kRecentPath + number, L"", recent[i], false});
                }
                menu.entries.push_back({});
            }
            const bool isLine = *entry.text == L'\0';
            menu.entries.push_back({entry.text, isLine ? std::wstring() : pathOf(titled, entry), entry.shortcut,
                                    entry.hint, entry.inToolbar});
        }
        menus.push_back(std::move(menu));
    }
    return menus;
}

std::optional<MenuMeaning> meaningOf(const std::wstring& path, const std::vector<std::wstring>& recent) {
    for (std::size_t i = 0; i < recent.size(); ++i)
        if (path == kRecentPath + std::to_wstring(i + 1)) return MenuMeaning{MenuAction::kRecent, {recent[i]}};
    for (const Titled& menu : table())
        for (const Entry& entry : menu.entries)
            if (*entry.text != L'\0' && base::equalsNoCase(path, pathOf(menu, entry))) {
                MenuMeaning meaning{entry.action, {}};
                if (entry.action == kCommand) meaning.lines = base::split(entry.lines, L'|');
                return meaning;
            }
    return std::nullopt;
}

}  // namespace host
