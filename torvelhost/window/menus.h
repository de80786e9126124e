// The menus of a window, and what their entries do.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "torvelhost/window/view_frame.h"

namespace host {

/// What an entry does that is no command.
enum class MenuAction { kCommand, kNew, kOpen, kSave, kSaveAs, kPlot, kRecent, kClose };

struct MenuMeaning {
    MenuAction action = MenuAction::kCommand;
    std::vector<std::wstring> lines;  // of a command: its name, and replies; of a recent file its name
};

/// `recent` are files opened before, the last one first.
std::vector<Menu> windowMenus(const std::vector<std::wstring>& recent);
/// Nothing for a path that no menu has.
std::optional<MenuMeaning> meaningOf(const std::wstring& path, const std::vector<std::wstring>& recent);

}  // namespace host
