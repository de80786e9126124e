// The colour chooser that the host offers to its modules.
#pragma once

#include "dialogs/dialog.h"
#include "drawingdb/color.h"

namespace host {

/// A list of the numbered colours with swatches, and a field for any colour by number, name or "red,green,blue".
class ColorDialog final : public dialogs::Dialog {
  public:
    explicit ColorDialog(const OdCmColor& color);
    const OdCmColor& color() const { return color_; }

  private:
    void onCommand(int control, dialogs::Event event) override;
    void onDoubleClick(int list, int row) override;
    void onOk() override;

    OdCmColor color_;
};

/// By the dialog, or in forms by one line; false when the user cancels.
bool chooseColor(OdCmColor& color);

}  // namespace host
