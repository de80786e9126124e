// "Block Attribute Manager": the attribute definitions of one block in a list.
#pragma once

#include <vector>

#include "torvelcmd2/attmanager/edited_block.h"
#include "torvelcmd2/attributes/attributed_blocks.h"
#include "torvelcmd2/frame/module_dialog.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {

/// Lives for a whole command: ended for a pick or for Edit Attribute it is shown again, with what it held. What was
/// changed and not applied is kept by OK and taken back by Cancel.
class CBAttManDlg final : public ModuleDialog {
  public:
    /// End codes of the buttons that want the screen or another dialog.
    enum EndCode { kSelectBlock = IDC_BATTMAN_SELECT, kEdit = IDC_BATTMAN_EDIT };

    /// `blocks`, of which there must be one, are offered; the first of them is shown.
    CBAttManDlg(const OdDbDatabasePtr& database, std::vector<AttributedBlock> blocks);

    /// Shows another block, unless the user wants to stay with the changed one.
    void chooseBlock(OdDbObjectId block);
    /// Edits the selected definition in a dialog of its own.
    void editDefinition();

  private:
    void onInit() override { focus(IDC_BATTMAN_LIST); }
    void onCommand(int control, dialogs::Event event) override;
    void onSelect(int list, int row) override;
    void onDoubleClick(int list, int row) override;
    std::vector<dialogs::MenuEntry> menuOf(int control) override;
    void onMenu(int control, int command) override;
    void onOk() override;
    void onCancel() override;

    void press(int button);
    bool can(int button) const;
    void showCan();
    bool leaveBlock();
    void showBlock(OdDbObjectId block);
    void showCounts();
    void showSettings();
    void showRows(int selectedRow);
    dialogs::Row rowOf(OdDbObjectId definition) const;
    void emphasizeDuplicates(std::vector<dialogs::Row>& rows) const;
    void rememberWidths() const;
    void move(int by);
    void remove();
    void synchronize();
    void apply();
    void changeSettings();
    bool appliesChanges() const;
    std::size_t selectedDefinition() const { return static_cast<std::size_t>(selected(IDC_BATTMAN_LIST)); }

    OdDbDatabasePtr database_;
    std::vector<AttributedBlock> blocks_;  // as the drop-down has them
    EditedBlock edited_;
    std::vector<std::size_t> columns_;  // those shown, by their places among all
};

}  // namespace torvel
