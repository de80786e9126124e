// One run of a dialog, from its opening to its end: which control has the focus, and what the user's actions lead to.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "dialogs/dialog.h"
#include "dialogs/maker.h"

namespace dialogs {

class DIALOGS_API Run {
  public:
    explicit Run(Dialog& root);
    ~Run();
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    int execute();
    void end(int code);
    bool hasEnded() const { return result_.has_value(); }

    Dialog& root() { return root_; }
    /// The dialog in which this one was opened; null: none.
    Run* outer() { return outer_; }
    /// Null while a run is being set up.
    View* view() { return view_.get(); }
    Control* focus() { return focus_; }
    /// Without asking; null: nowhere.
    void setFocus(Control* control);

    /// Another number after every change of what lists hold: what was derived from that at the same one still holds.
    std::uint64_t itemsRevision() const { return itemsRevision_; }
    void itemsChanged() { ++itemsRevision_; }

    /// ---- the controls that are shown, in template order; those of a page behind its tab control
    std::vector<Control*> shownControls();
    bool isShown(const Control& control);
    Control* nextInTabOrder(bool backwards);
    /// The button that Enter presses: the one that has the focus, or else the dialog's default button. Null: none.
    Control* buttonOfEnter();
    Control* findButton(int id);

    /// ---- leaving a field
    enum class Leave { kFree, kRefused, kInterrupted };
    /// Asks the dialog of `from` whether the focus may go to `next`, whose id is 0 when null. Interrupted: it may, but
    /// a box was shown or the dialog ended. A field that may not be left has its whole text selected afterwards.
    Leave mayLeave(Control& from, Control* next);

    /// ---- what the user did, already noted in the control
    void pressed(Control& control);
    void edited(Control& control);
    void chosen(Control& control);
    void rowSelected(Control& list);
    void doubleClicked(Control& list, int row);
    void pageChosen(Control& tab);
    void cancelled();
    void helpWanted();
    std::vector<MenuEntry> menuOf(Control& control);
    void menuChosen(Control& control, int command);

  private:
    template <class Handler>
    void call(Dialog& dialog, Handler handler);
    void initialize(Dialog& dialog);
    void initializePage(Control& tab);
    void appendShown(Dialog& dialog, std::vector<Control*>& found, const Control* alsoHidden);
    void moveFocusOn();
    static void attach(Dialog& dialog, Run* run);

    Dialog& root_;
    Run* outer_;
    std::unique_ptr<View> view_;
    Control* focus_ = nullptr;
    std::optional<int> result_;
    std::uint64_t itemsRevision_ = 0;
};

/// The controls from one with WS_GROUP to before the next that are of this kind.
std::vector<Control*> groupOf(Control& member, const std::function<bool(const Control&)>& kind);
/// The radio buttons of a control's group.
std::vector<Control*> radioGroup(Control& radio);
void markRadio(Control& radio);

}  // namespace dialogs
