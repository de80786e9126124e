// "Edit Attribute" of the Block Attribute Manager: one attribute definition on three pages.
#pragma once

#include "torvelcmd2/attmanager/attribute_pages.h"
#include "torvelcmd2/attmanager/edited_block.h"
#include "torvelcmd2/attributes/value_control.h"
#include "torvelcmd2/resources/resource.h"

namespace torvel {

/// Modes, tag, prompt and default. A box is written when it is pressed, a text when its field is left.
class CAttDefEditPage final : public AttributePage {
  public:
    explicit CAttDefEditPage(AttributeEditor& editor);

  private:
    void showAttribute(const OdDbAttributeText& attribute) override;
    void onCommand(int control, dialogs::Event event) override;
    bool onLeave(int control, int next) override;

    void showDefault(const OdDbAttributeText& attribute);
    void takeMode(int box);
    bool takeTag();
    void takePrompt();
    void takeDefault();
    void insertField();
    OdSmartPtr<OdDbAttributeDefinition> definition() const;

    CFEdCtrl default_;
};

/// What is changed is in the definition at once, each time as a step of the block's restore points. With "Auto preview
/// changes" the references show it too, as one more step that is taken back before the next change and at the end: they
/// are brought in line for good by the manager alone.
class CBMEADlg final : public AttributeEditor {
  public:
    /// The end code of "..." beside a default of several lines.
    static constexpr int kEditMultiLine = IDC_DEFINITION_EDITOR;

    CBMEADlg(EditedBlock& block, OdDbObjectId definition);

    /// Shown until the user has done. True after OK; otherwise everything is as it was.
    bool edit();

    OdDbDatabase& database() const override { return *definition_.database(); }
    OdDbObjectId current() const override { return definition_; }
    void beforeWrite() override;
    void attributeChanged() override;

  private:
    void onCommand(int control, dialogs::Event event) override;
    void onOk() override;
    void onCancel() override;

    void editMultiLine();
    void preview();
    void takeBackPreview();
    void saveSettings() const;

    EditedBlock& block_;
    OdDbObjectId definition_;
    std::int32_t level_;  // of the restore points, when the dialog was made
    bool previewed_ = false;
    CAttDefEditPage attributePage_;
    CAttDefEditTextOptPage textOptionsPage_;
    CAttDefEditPropertiesPage propertiesPage_;
};

}  // namespace torvel
