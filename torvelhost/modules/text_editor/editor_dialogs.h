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
/// A text of one line; in the full editor too, where the user wants that.
bool editLine(FieldText& contents, bool inFull);

/// The dialog behind both. Of paragraphs an end, "\P" in the contents, is a line end in the field; of one line in the
/// full editor a line end becomes a blank, codes are characters, and there is no width.
class EditorDialog final : public dialogs::Dialog {
  public:
    enum class Lines { kOne, kOneInFull, kParagraphs };
    EditorDialog(Lines lines, const Sheet& sheet);

    const Sheet& sheet() const { return sheet_; }

  protected:
    void onCommand(int control, dialogs::Event event) override;
    bool onLeave(int control, int next) override;
    void onOk() override;

  private:
    bool hasParagraphs() const { return lines_ == Lines::kParagraphs; }
    OdString editedContents() const;
    std::optional<double> typedWidth() const;
    void insertField();

    Lines lines_;
    Sheet sheet_;
    OdString shown_;  // the contents as the field was filled
};

}  // namespace texteditor
