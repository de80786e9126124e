// The field manager's dialog: a field's kind, what it shows, its format, its code, and what it shows now.
#pragma once

#include "dialogs/dialog.h"
#include "torvelhost/modules/field_manager/field_code.h"

namespace fieldmanager {

/// The code is what counts. What it is made of is shown where it can be told, and makes it anew when it is changed.
class FieldDialog final : public dialogs::Dialog {
  public:
    /// `code` empty: a new field.
    FieldDialog(const OdString& code, OdDbDatabase& database);

    /// Ends the run when the user wants to pick the object; the dialog can be run again.
    static constexpr int kPickObject = 10;
    void setObject(OdDbObjectId object);

    /// Behind OK.
    OdDbFieldPtr field() const { return field_; }

  private:
    void onCommand(int control, dialogs::Event event) override;
    void onOk() override;

    void showKind();
    void showParts();
    void makeCode();
    void showPreview();

    OdDbDatabase& database_;
    FieldParts parts_;
    OdDbFieldPtr field_;  // what the code means; null: it means none
};

}  // namespace fieldmanager
