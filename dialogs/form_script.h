// The lines that work a dialog. Each is one action:
//
//   NAME = TEXT                 fills a field, or chooses in a list
//   type NAME: TEXT             types at the caret;  caret NAME 4   caret NAME 4 9   place it, or select
//   check NAME  uncheck NAME    a check box; check also marks a radio button
//   row TEXT  row 3  row "3"    selects a row of the list; double row TEXT double-clicks it
//   tab TITLE                   shows that page
//   press NAME                  a button
//   key Enter                   a key where the focus is
//   menu NAME: ENTRY            the context menu of a control
//   show  show NAME             prints the form, or all choices of one control
//   picture FILE.bmp            saves what the window looks like
//   close                       the close box
//   help                        prints this
#pragma once

#include "dialogs/run.h"

namespace dialogs {

class FormScript {
  public:
    FormScript(Run& run, LineSource& lines) : run_(run), lines_(lines) {}

    /// Takes one line and does it. At the end of the lines the dialog is cancelled, or the source of the lines throws.
    void step();

  private:
    void perform(std::wstring_view line);
    bool performAssignment(std::wstring_view line);
    void assign(Control& field, std::wstring_view value);
    void check(std::wstring_view name, bool on);
    void chooseRow(std::wstring_view which, bool twice);
    void chooseTab(std::wstring_view title);
    void press(std::wstring_view name);
    void pressKey(std::wstring_view keys);
    void type(std::wstring_view argument);
    void placeCaret(std::wstring_view argument);
    void chooseMenu(std::wstring_view argument);
    void show(std::wstring_view name);
    void savePicture(std::wstring_view fileName);
    /// The lines that suit the form as it is, or begin one that does.
    std::vector<std::wstring> linesThatSuit();
    /// Moves the focus there; false when the action is to be dropped.
    bool goTo(Control& control);
    void end();

    Run& run_;
    LineSource& lines_;
};

}  // namespace dialogs
