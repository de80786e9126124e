// The Block Attribute Manager: what its buttons and menu do, and when they can.
#include "torvelcmd2/attmanager/batt_man_dialog.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "base/format.h"
#include "base/text.h"
#include "drawingdb/block.h"
#include "torvelcmd2/attmanager/batt_man_settings_dialog.h"
#include "torvelcmd2/attmanager/definition_columns.h"
#include "torvelcmd2/attmanager/edit_definition_dialog.h"

namespace torvel {
namespace {

constexpr struct {
    int button;  // the command of the entry as well; 0: a separator
    unsigned text;
} kMenu[] = {
    {IDC_BATTMAN_MOVE_UP, IDS_BATTMAN_MENU_MOVE_UP},
    {IDC_BATTMAN_MOVE_DOWN, IDS_BATTMAN_MENU_MOVE_DOWN},
    {IDC_BATTMAN_EDIT, IDS_BATTMAN_MENU_EDIT},
    {IDC_BATTMAN_REMOVE, IDS_BATTMAN_MENU_REMOVE},
    {0, 0},
    {IDC_BATTMAN_SETTINGS, IDS_BATTMAN_MENU_SETTINGS},
};

}  // namespace

CBAttManDlg::CBAttManDlg(const OdDbDatabasePtr& database, std::vector<AttributedBlock> blocks)
    : ModuleDialog(IDD_BATTMAN, kManagerSection, L"IDH_BattMan"),
      database_(database),
      blocks_(std::move(blocks)),
      edited_(database) {
    setPicture(IDC_BATTMAN_SELECT, IDI_PICK_ON_SCREEN);
    setTooltip(IDC_BATTMAN_SELECT, loadText(IDS_BATTMAN_SELECT_TIP));
    setTooltip(IDC_BATTMAN_SYNC, loadText(database_->isReadOnly() ? IDS_DRAWING_IS_READ_ONLY : IDS_BATTMAN_SYNC_TIP));
    if (database_->isReadOnly())
        for (const int button : {IDC_BATTMAN_MOVE_UP, IDC_BATTMAN_MOVE_DOWN, IDC_BATTMAN_EDIT, IDC_BATTMAN_REMOVE})
            setTooltip(button, loadText(IDS_DRAWING_IS_READ_ONLY));
    for (const AttributedBlock& block : blocks_) addChoice(IDC_BATTMAN_BLOCK, block.name);
    showSettings();
    showBlock(blocks_.front().id);
}

// ---- the block

void CBAttManDlg::chooseBlock(OdDbObjectId block) {
    if (block != edited_.block() && leaveBlock()) return showBlock(block);
    select(IDC_BATTMAN_BLOCK,
           static_cast<int>(std::ranges::find(blocks_, edited_.block(), &AttributedBlock::id) - blocks_.begin()));
}

// False when the user wants to stay.
bool CBAttManDlg::leaveBlock() {
    if (!edited_.isChanged()) return true;
    switch (showBox(hostapi::kYesNoCancelBox, loadText(IDS_BATTMAN_SAVE_CHANGES))) {
        case hostapi::kAnswerYes:
            apply();
            edited_.keep();
            return true;
        case hostapi::kAnswerNo:
            edited_.takeBack();
            return true;
        default:
            return false;
    }
}

void CBAttManDlg::showBlock(OdDbObjectId block) {
    auto choice = std::ranges::find(blocks_, block, &AttributedBlock::id);
    if (choice == blocks_.end()) {
        // One that is not offered, but was picked: an anonymous one.
        blocks_.push_back({block, block.openAs<OdDbBlockTableRecord>()->name()});
        addChoice(IDC_BATTMAN_BLOCK, blocks_.back().name);
        choice = std::prev(blocks_.end());
    }
    select(IDC_BATTMAN_BLOCK, static_cast<int>(choice - blocks_.begin()));
    edited_.open(block);
    showRows(0);
    showCounts();
}

// Only references that lie directly in a space count.
void CBAttManDlg::showCounts() {
    const OdDbObjectIdArray references = edited_.block().openAs<OdDbBlockTableRecord>()->blockReferenceIds(true);
    const OdDbObjectId space = database_->currentSpaceId();
    const auto here = std::ranges::count(references, space, &OdDbObjectId::containerId);
    const bool isModelSpace = space == database_->modelSpaceId();
    setText(IDC_BATTMAN_FOUND_IN_DRAWING,
            base::formatPositional(loadText(IDS_BATTMAN_FOUND_IN_DRAWING), references.size()));
    setText(IDC_BATTMAN_FOUND_IN_SPACE,
            base::formatPositional(
                loadText(isModelSpace ? IDS_BATTMAN_FOUND_IN_MODEL_SPACE : IDS_BATTMAN_FOUND_IN_LAYOUT), here));
}

// ---- the list

void CBAttManDlg::showSettings() {
    std::vector<dialogs::Column> shown;
    columns_.clear();
    for (std::size_t i = 0; i < definitionColumns().size(); ++i) {
        const ColumnSetting setting = readColumnSetting(definitionColumns()[i]);
        if (!setting.isShown) continue;
        shown.push_back({loadText(definitionColumns()[i].name), setting.width});
        columns_.push_back(i);
    }
    setTooltip(IDC_BATTMAN_APPLY, appliesChanges() ? OdString() : loadText(IDS_BATTMAN_APPLY_OFF_TIP));
    setRows(IDC_BATTMAN_LIST, {});
    setColumns(IDC_BATTMAN_LIST, std::move(shown));
}

// Scripts call a row by its tag, whatever columns are shown.
dialogs::Row CBAttManDlg::rowOf(OdDbObjectId id) const {
    const auto definition = id.openIf<OdDbAttributeDefinition>();
    dialogs::Row row;
    row.name = cellText(definitionColumns().front(), definition.get());
    for (const std::size_t column : columns_)
        row.cells.push_back(cellText(definitionColumns()[column], definition.get()));
    return row;
}

// Tags that differ only in case are the same tag for AttSync, so they count as such here too.
void CBAttManDlg::emphasizeDuplicates(std::vector<dialogs::Row>& rows) const {
    if (readIntegerSetting(kManagerSection, kEmphasizeDuplicatesKey, 1) == 0) return;
    std::unordered_map<std::wstring, int> times;
    for (const dialogs::Row& row : rows) ++times[base::toUpper(row.name)];
    for (dialogs::Row& row : rows) row.emphasized = times[base::toUpper(row.name)] > 1;
}

void CBAttManDlg::showRows(int selectedRow) {
    std::vector<dialogs::Row> rows;
    rows.reserve(edited_.definitions().size());
    for (OdDbObjectId id : edited_.definitions()) rows.push_back(rowOf(id));
    emphasizeDuplicates(rows);
    setRows(IDC_BATTMAN_LIST, std::move(rows));
    select(IDC_BATTMAN_LIST, std::min(selectedRow, rowCount(IDC_BATTMAN_LIST) - 1));
    showCan();
}

void CBAttManDlg::onSelect(int, int) { showCan(); }

void CBAttManDlg::onDoubleClick(int, int) {
    if (can(IDC_BATTMAN_EDIT)) press(IDC_BATTMAN_EDIT);
}

// As the user left them.
void CBAttManDlg::rememberWidths() const {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const DefinitionColumn& column = definitionColumns()[columns_[i]];
        const ColumnSetting setting = {std::max(columnWidth(IDC_BATTMAN_LIST, static_cast<int>(i)), 1), true};
        if (readColumnSetting(column).width != setting.width) writeColumnSetting(column, setting);
    }
}

// ---- what can be done

bool CBAttManDlg::can(int button) const {
    if (button == IDC_BATTMAN_SETTINGS) return true;
    if (database_->isReadOnly()) return false;
    const int row = selected(IDC_BATTMAN_LIST), rows = rowCount(IDC_BATTMAN_LIST);
    switch (button) {
        case IDC_BATTMAN_MOVE_UP:
            return row > 0;
        case IDC_BATTMAN_MOVE_DOWN:
            return row >= 0 && row + 1 < rows;
        case IDC_BATTMAN_EDIT:
            return row >= 0;
        case IDC_BATTMAN_REMOVE:
            // A block is never left without definitions from here.
            return row >= 0 && rows > 1;
        case IDC_BATTMAN_APPLY:
            return edited_.isChanged();
        default:
            return true;
    }
}

void CBAttManDlg::showCan() {
    for (const int button : {IDC_BATTMAN_SYNC, IDC_BATTMAN_MOVE_UP, IDC_BATTMAN_MOVE_DOWN, IDC_BATTMAN_EDIT,
                             IDC_BATTMAN_REMOVE, IDC_BATTMAN_APPLY})
        enable(button, can(button));
}

std::vector<dialogs::MenuEntry> CBAttManDlg::menuOf(int control) {
    std::vector<dialogs::MenuEntry> entries;
    if (control != IDC_BATTMAN_LIST) return entries;
    for (const auto& [button, text] : kMenu)
        entries.push_back({button ? loadText(text) : OdString(), button, button == 0 || can(button)});
    return entries;
}

void CBAttManDlg::onMenu(int, int command) { press(command); }

void CBAttManDlg::onCommand(int control, dialogs::Event event) {
    if (control == IDC_BATTMAN_BLOCK && event == dialogs::Event::kChosen)
        chooseBlock(blocks_[static_cast<std::size_t>(selected(IDC_BATTMAN_BLOCK))].id);
    else if (event == dialogs::Event::kPressed)
        press(control);
}

void CBAttManDlg::press(int button) {
    switch (button) {
        case IDC_BATTMAN_SELECT:
        case IDC_BATTMAN_EDIT:
            rememberWidths();
            return end(button);
        case IDC_BATTMAN_SYNC:
            return synchronize();
        case IDC_BATTMAN_MOVE_UP:
            return move(-1);
        case IDC_BATTMAN_MOVE_DOWN:
            return move(1);
        case IDC_BATTMAN_REMOVE:
            return remove();
        case IDC_BATTMAN_SETTINGS:
            return changeSettings();
        case IDC_BATTMAN_APPLY:
            return apply();
        default:
            break;
    }
}

// ---- changes

void CBAttManDlg::move(int by) {
    const int neighbour = selected(IDC_BATTMAN_LIST) + by;
    edited_.exchange(selectedDefinition(), static_cast<std::size_t>(neighbour));
    showRows(neighbour);
}

void CBAttManDlg::remove() {
    const int row = selected(IDC_BATTMAN_LIST);
    edited_.remove(selectedDefinition());
    showRows(row);
}

// OK counts as a change, whatever was done in the dialog.
void CBAttManDlg::editDefinition() {
    HostLocalUndo& undo = edited_.undo();
    undo.recordStep();
    CBMEADlg editor(edited_, edited_.definitions()[selectedDefinition()]);
    if (!editor.edit()) {
        undo.undo();
        return;
    }
    showRows(selected(IDC_BATTMAN_LIST));
}

void CBAttManDlg::changeSettings() {
    rememberWidths();
    CBAttManSettingsDlg settings;
    if (settings.runModal() != dialogs::kOkButton) return;
    const int row = selected(IDC_BATTMAN_LIST);
    showSettings();
    showRows(row);
}

// Off until the settings were closed by OK, although their dialog shows it as on: users know it so.
bool CBAttManDlg::appliesChanges() const { return readIntegerSetting(kManagerSection, kApplyChangesKey, 0) != 0; }

void CBAttManDlg::synchronize() {
    edited_.synchronize();
    showCan();
}

void CBAttManDlg::apply() {
    if (appliesChanges() && edited_.isChanged()) synchronize();
}

void CBAttManDlg::onOk() {
    rememberWidths();
    apply();
    edited_.keep();
    end(dialogs::kOkButton);
}

void CBAttManDlg::onCancel() {
    rememberWidths();
    edited_.takeBack();
    end(dialogs::kCancelButton);
}

}  // namespace torvel
