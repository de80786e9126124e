#include "torvelcmd2/attmanager/batt_man_settings_dialog.h"

#include "torvelcmd2/attmanager/definition_columns.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {
namespace {

constexpr struct {
    int box;
    const wchar_t* key;
} kSwitches[] = {
    {IDC_BATTMAN_DUPLICATES, kEmphasizeDuplicatesKey},
    // Shown as on until it is written, although the manager takes it as off until then: users know it so.
    {IDC_BATTMAN_APPLY_CHANGES, kApplyChangesKey},
};

}  // namespace

// The box of Annotative has no column behind it; it only goes along with Select All and Clear All.
CBAttManSettingsDlg::CBAttManSettingsDlg() : ModuleDialog(IDD_BATTMAN_SETTINGS, nullptr, L"IDH_BattMan") {
    int box = IDC_BATTMAN_FIRST_COLUMN;
    for (const DefinitionColumn& column : definitionColumns()) {
        setText(box, loadText(column.name));
        setChecked(box++, readColumnSetting(column).isShown);
    }
    for (const auto& [control, key] : kSwitches) setChecked(control, readIntegerSetting(kManagerSection, key, 1) != 0);
}

void CBAttManSettingsDlg::onCommand(int control, dialogs::Event event) {
    if (event != dialogs::Event::kPressed) return;
    if (control == IDC_BATTMAN_SELECT_ALL) checkAll(true);
    if (control == IDC_BATTMAN_CLEAR_ALL) checkAll(false);
}

void CBAttManSettingsDlg::checkAll(bool on) {
    for (int box = IDC_BATTMAN_FIRST_COLUMN; box <= IDC_BATTMAN_LAST_COLUMN; ++box) setChecked(box, on);
    setChecked(IDC_BATTMAN_ANNOTATIVE, on);
}

void CBAttManSettingsDlg::onOk() {
    int box = IDC_BATTMAN_FIRST_COLUMN;
    for (const DefinitionColumn& column : definitionColumns())
        writeColumnSetting(column, {readColumnSetting(column).width, isChecked(box++)});
    for (const auto& [control, key] : kSwitches) writeIntegerSetting(kManagerSection, key, isChecked(control) ? 1 : 0);
    end(dialogs::kOkButton);
}

}  // namespace torvel
