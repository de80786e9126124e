// Help: the pages docs/commands.md and docs/scripts.md, which the host carries with it, as text for a terminal.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct HelpTopic {
    std::wstring names;  // as the page has them: "ATTIPedit, ATTIPeditW"
    std::wstring about;  // one sentence; may be empty
};
/// The commands that have a section or a row, in the order of the pages.
std::vector<HelpTopic> helpTopics();

/// A line for each of them.
std::wstring helpOverview();

/// A command's section or row, or any other section by its heading; without case. Lines end in line feeds. Nothing
/// when there is none.
std::optional<std::wstring> helpOn(std::wstring_view topic);

}  // namespace host
