// "Attribute redefinition" for definitions whose default may have fields and several lines.
#pragma once

#include "drawingdb/attribute.h"
#include "torvelcmd2/attributes/value_control.h"
#include "torvelcmd2/frame/module_dialog.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {

/// Lives for a whole ShowAttDDEIT and is shown anew after each visit to the text editor, with what it held.
class CAttReDefDlgEx final : public ModuleDialog {
  public:
    /// The end code of the "..." button: the default is to be edited as a multi-line text.
    static constexpr int kEditMultiLine = IDC_ATTREDEFEX_EDITOR;

    explicit CAttReDefDlgEx(OdSmartPtr<OdDbAttributeDefinition> definition);

    /// Shows the default anew after it was changed from outside.
    void showDefault();

  private:
    void onCommand(int control, dialogs::Event event) override;
    bool onLeave(int control, int next) override;
    void onOk() override;

    void lock(const OdString& layer);

    OdSmartPtr<OdDbAttributeDefinition> definition_;
    CFEdCtrl default_;
    bool locked_ = false;
};

}  // namespace torvel

/// Exported. Lets the user edit tag, prompt and default of an attribute definition. 1 after OK; 0 otherwise, with the
/// definition as it was, and for what is no definition.
extern "C" int ShowAttDDEIT(const OdDbObjectId& definition);
