// "Edit of attributes": a list of values, eight rows a page.
#pragma once

#include <functional>

#include "torvelcmd2/attributes/value_control.h"
#include "torvelcmd2/attributes/value_rows.h"
#include "torvelcmd2/attributes/values/local_undo.h"
#include "torvelcmd2/frame/module_dialog.h"

namespace torvel {

/// A value is written when its field is left, and only when the user changed it. Shown anew after each visit to the
/// text editor, with the page that it showed. The drawing is as it was at the end, unless keep() was called.
class CAttEditDlgEx final : public ModuleDialog {
  public:
    /// The end code of the "..." buttons: editMultiLine() is to be called.
    static constexpr int kEditMultiLine = 10;

    /// `rows`, at least one, must outlive the dialog.
    explicit CAttEditDlgEx(ValueRows& rows);
    ~CAttEditDlgEx() override;

    /// Lets the user edit the value whose "..." was pressed.
    void editMultiLine();
    /// What was written stays.
    void keep() { undo_.dropTo(0); }

  private:
    static constexpr int kPlaces = 8;

    void onCommand(int control, dialogs::Event event) override;
    bool onLeave(int control, int next) override;

    std::size_t rowAt(int place) const { return page_ * kPlaces + static_cast<std::size_t>(place); }
    std::size_t pageCount() const { return (rows_.count() + kPlaces - 1) / kPlaces; }
    void showPage(std::size_t page);
    void showRow(int place);
    void showValue(int place);
    void write(int place);
    void change(int place, const std::function<void()>& make);
    void turnTo(std::size_t page);

    ValueRows& rows_;
    HostLocalUndo undo_;
    std::vector<CFEdCtrl> places_;  // the rows of the page
    std::size_t page_ = 0;
    int edited_ = 0;  // the place whose "..." was pressed
};

}  // namespace torvel
