// The state of one control. It is the same for every maker of windows: a maker shows it, and View brings it up
// to date when the user does something.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "dialogs/dialog_template.h"
#include "dialogs/rich_text.h"

namespace dialogs {

class Dialog;

struct Choice {
    std::wstring text;
    std::intptr_t data = 0;
    std::optional<std::uint32_t> swatch;  ///< 0xRRGGBB, shown in front of the text
};

/// A column of a list view.
struct Column {
    std::wstring title;
    int width = 0;  ///< pixels
};

/// A row of a list view.
struct Row {
    std::vector<std::wstring> cells;
    bool emphasized = false;
    std::wstring name = {};  ///< what scripts call it, whatever columns are shown; empty: the first cell
};

struct DIALOGS_API Control {
    Control(Dialog& owner, const ControlTemplate& design);

    Dialog* dialog;
    const ControlTemplate* design;

    std::wstring text;  ///< a caption, or the contents of a field
    bool visible = true;
    bool enabled = true;
    bool readOnly = false;
    bool upperCase = false;  ///< letters become capitals as they are typed
    bool checked = false;
    bool modified = false;  ///< by the user, since setModified(false)
    std::vector<Choice> choices;
    std::vector<Column> columns;
    std::vector<Row> rows;
    std::vector<Dialog*> pages;  ///< of a tab control; their titles are the choices
    int selected = -1;           ///< of the choices, rows or pages
    TextSelection selection;     ///< of an edit or rich edit
    RichText* richText = nullptr;
    std::wstring tooltip;
    int picture = 0;  ///< an icon resource; 0: none

    int id() const { return design->id; }
    ControlKind kind() const { return design->kind; }
    bool isButton() const { return kind() == ControlKind::kButton || kind() == ControlKind::kPictureButton; }
    bool isCheckable() const { return kind() == ControlKind::kCheck || kind() == ControlKind::kRadio; }
    bool isText() const { return kind() == ControlKind::kEdit || kind() == ControlKind::kRichEdit; }
    bool isField() const;
    /// A field whose text can be typed: edits and editable combos.
    bool isTyped() const { return isText() || kind() == ControlKind::kEditCombo; }
    bool takesFocus() const { return isField() || isButton() || isCheckable() || kind() == ControlKind::kTab; }
    /// Shown, enabled, and of a kind that can have the focus.
    bool canHaveFocus() const { return visible && enabled && takesFocus(); }
    bool isMultiLine() const;
    bool isDefaultButton() const;
    int itemCount() const { return static_cast<int>(kind() == ControlKind::kListView ? rows.size() : choices.size()); }
};

}  // namespace dialogs
