// The text editor as windows: several lines with a width, or one line.
#pragma once

#include <optional>

#include "dialogs/dialog.h"
#include "torvelhost/modules/text_editor/field_text.h"

namespace texteditor {

/// What the editor works on.
struct Sheet {
    FieldText contents;
    double width = 0;
};

/// Shows the sheet and lets the user change it. False when it was given up; the sheet is as it was then.
bool editLines(Sheet& sheet);
bool editLine(FieldText& contents);

/// The dialog behind both. A paragraph's end, "\P" in the contents, is a line end in the field.
class EditorDialog final : public dialogs::Dialog {
  public:
    enum class Lines { kOne, kMany };
    EditorDialog(Lines lines, const Sheet& sheet);

    const Sheet& sheet() const { return sheet_; }

  protected:
    void onCommand(int control, dialogs::Event event) override;
    bool onLeave(int control, int next) override;
    void onOk() override;

  private:
    bool hasWidth() const { return lines_ == Lines::kMany; }
    std::optional<double> typedWidth() const;
    void insertField();

    Lines lines_;
    Sheet sheet_;
    OdString shown_;  // the contents as the field was filled
};

}  // namespace texteditor
