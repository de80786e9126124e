// The window of one run of a dialog: what the user can do to its controls, the same for every maker.
//
// A maker derives from View. It shows what the controls hold (the pure functions), and tells what the user did in its
// windows by `userPressed` and the like, which ask whether the focus may go, change the controls, have the change shown
// and tell the run. So what a button, a radio group, a list or a key does is written here alone. docs/dialogs.md says
// what a maker has to do.
#pragma once

#include <span>
#include <string>

#include "dialogs/api.h"
#include "dialogs/control.h"
#include "dialogs/keys.h"

namespace dialogs {

class Run;

/// What of a control changed.
enum class Aspect {
    kText,  ///< with the selection in it, and the runs of a rich edit
    kChecked,
    kEnabled,
    kVisible,
    kReadOnly,
    kSelection,  ///< of a field; the choice, row or page selected
    kChoices,
    kColumns,
    kRows,
    kPages,
    kExtras  ///< tooltip and picture
};

struct PixelRect {
    int left = 0, top = 0, width = 0, height = 0;
};

/// Which of the controls behind a caption it is for: the field up to the next caption, also when a button that picks
/// for the field comes first; else the next that `takes` holds of. Null: none.
DIALOGS_API Control* controlOfCaption(std::span<Control* const> behind, bool (*takes)(const Control&));

class DIALOGS_API View {
  public:
    explicit View(Run& run) : run_(run) {}
    virtual ~View() = default;
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    /// ---- showing
    /// Until the run has ended.
    virtual void work() = 0;
    /// The handle of the window; null: there is none.
    virtual void* window() { return nullptr; }
    virtual void setShown(bool) {}
    virtual void titleChanged() = 0;
    virtual void changed(Control& control, Aspect aspect) = 0;
    /// A page was initialised and is to be shown from now on.
    virtual void pageShown(Control& tab) = 0;
    /// The focus is to be there, by the user or by the program; null: nowhere.
    virtual void showFocus(Control* control) = 0;
    /// What columns share, in pixels.
    virtual int listWidth(const Control& list) = 0;
    /// Where the window is, in pixels.
    virtual PixelRect place() = 0;
    /// The corner, in pixels. One that is on no screen is left alone.
    virtual void movePlace(int left, int top) = 0;
    /// Pixels on this screen for one at 96 dots an inch.
    virtual double scale() { return 1; }
    virtual void savePicture(const std::wstring& fileName) = 0;

    /// ---- doing as a user would, for scripts. The control is visible and enabled; `press` to `doubleClick` need the
    /// focus there. A maker with windows of a system does them to these, so that scripts try what a hand would.
    /// False when a leave check refused or showed a box: what was to follow is dropped.
    virtual bool moveFocus(Control& control);
    virtual void press(Control& button) { userPressed(button); }
    /// Puts the text in the place of what is selected.
    virtual void typeText(Control& field, const std::wstring& text);
    virtual void select(Control& field, TextSelection selection);
    /// A choice, a row, or a page.
    virtual void choose(Control& list, int item) { userChose(list, item); }
    virtual void doubleClick(Control& list, int row) { userDoubleClicked(list, row); }
    /// Where the focus is.
    virtual void pressKey(Key key, bool shift) { userPressedKey(key, shift); }
    virtual void pressMnemonic(wchar_t letter) { userPressedMnemonic(letter); }
    /// Whether a caption that is shown has the letter behind its "&".
    bool hasMnemonicOf(wchar_t letter) const;
    virtual void dragColumn(Control& list, int column, int width);
    virtual void close() { userClosed(); }

  protected:
    /// ---- what the user did. Each asks the field that has the focus, and does nothing when that may not be left.
    /// A button, a check box, a radio button.
    void userPressed(Control& button);
    /// The new text and selection are in the control.
    void userEdited(Control& field);
    void userChose(Control& list, int item);
    void userDoubleClicked(Control& list, int row);
    void userPressedKey(Key key, bool shift);
    /// The letter behind "&" in a caption. A label's leads to the control behind it. False: there is none.
    bool userPressedMnemonic(wchar_t letter);
    /// The close box.
    void userClosed();
    /// The contents that the user is given are put in the place of what is selected, as typing does.
    void userTyped(Control& field, const std::wstring& text);
    /// A context menu is wanted; what it holds. Empty: none.
    std::vector<MenuEntry> userWantsMenu(Control& control);

    /// Whether `userPressedKey` does the key, and no window of the system need.
    bool isOwnKey(Key key) const;
    /// Asks as if the focus went to `next` (null: to no control), and leaves it where it is.
    bool mayLeaveFor(Control* next);

    Run& run_;

  private:
    bool goTo(Control& control);
    bool askAndGo(Control& control);
    bool moveFocusBy(const wchar_t* key, Control& control);
    void edited(Control& field);
    void tryToClose();
    void enter();
    void tab(bool backwards);
    void fieldKey(Control& field, Key key, bool shift);
    void copy(Control& field, Key key);
    void cutSelection(Control& field);
    void paste(Control& field);
    void itemKey(Control& list, Key key);
    void groupKey(Control& button, Key key);
    void showChecks(Control& button);
};

}  // namespace dialogs
