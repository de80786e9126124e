// "Attribute redefinition": tag, prompt and default of an attribute definition as plain texts.
#pragma once

#include "drawingdb/attribute.h"
#include "torvelcmd2/frame/module_dialog.h"

namespace torvel {

/// OK writes the values back. A default that the user did not change stays as it is, with its fields; a changed one
/// becomes plain text.
class CAttReDefDlg final : public ModuleDialog {
  public:
    explicit CAttReDefDlg(OdSmartPtr<OdDbAttributeDefinition> definition);

  private:
    void onCommand(int control, dialogs::Event event) override;
    void onOk() override;

    void insertField();
    void editDefault();
    void putDefault();

    OdSmartPtr<OdDbAttributeDefinition> definition_;
    OdString default_;  // as the box was filled
};

}  // namespace torvel
