// "Block Attribute Settings": which columns the manager's list has, and what it does with duplicates and changes.
#pragma once

#include "torvelcmd2/frame/module_dialog.h"

namespace torvel {

/// OK writes the settings.
class CBAttManSettingsDlg final : public ModuleDialog {
  public:
    CBAttManSettingsDlg();

  private:
    void onCommand(int control, dialogs::Event event) override;
    void onOk() override;
    void checkAll(bool on);
};

}  // namespace torvel
