// The real windows of one run of a dialog.
//
// Three things are less simple than they look, and all are kept here, out of every dialog:
//
// Leaving a field. The system has moved the focus by the time it says so, and a box must not be shown at that moment.
// So the step is noted (`pending_`) and checked by a posted message, or earlier when something else is about to happen
// (`settle`). A field that may not be left gets the focus back, and what was to happen is dropped. Enter, Escape and
// the close box move no focus; there the field is asked as if it were left.
//
// Exceptions must not pass through the system's window procedures. They are kept (`failure_`) and thrown again by the
// loop.
//
// Rich edits only show their text: every key and message that would edit it is taken here and done to the control's
// state, then the text is shown anew.
#pragma once

#include <windows.h>
#include <commctrl.h>
#include <richedit.h>

#include <exception>
#include <optional>
#include <unordered_map>

#include "dialogs/run.h"

namespace dialogs {

class WindowView final : public View {
  public:
    explicit WindowView(Run& run);
    ~WindowView() override;

    void work() override;
    void* window() override { return root_; }
    void titleChanged() override;
    void changed(Control& control, Aspect aspect) override;
    void pageShown(Control& tab) override;
    void focusChanged(Control& control) override;
    int listWidth(const Control& list) override;
    void restorePlacement(const std::wstring& placement) override;
    std::wstring placement() override;
    void savePicture(const std::wstring& fileName) override;

    bool moveFocus(Control& control) override;
    void press(Control& button) override;
    void replaceText(Control& field, const std::wstring& text) override;
    void typeText(Control& field, const std::wstring& text) override;
    void select(Control& field, TextSelection selection) override;
    void choose(Control& list, int item) override;
    void doubleClick(Control& list, int row) override;
    void key(Key key, bool shift) override;
    void close() override;

    /// The window of a dialog that is open, and so no message box.
    static bool isDialogWindow(HWND window);

  private:
    /// ---- making windows
    HWND createWindow(Dialog& dialog, HWND parent);
    void adoptControls(Dialog& dialog, HWND window);
    void showAll(Control& control);
    void placePage(Control& tab, HWND page);

    /// ---- showing state; each under an Applying guard
    void showChoices(Control& control, HWND window);
    void showColumns(Control& control, HWND window);
    void showRows(Control& control, HWND window);
    void showPages(Control& control, HWND window);
    void showItem(Control& control, HWND window);
    void showSelection(Control& control, HWND window);
    void showText(Control& control, HWND window);
    void showRichText(Control& control, HWND window);
    void showExtras(Control& control, HWND window);

    /// ---- procedures of the system
    static INT_PTR CALLBACK dialogProcedure(HWND window, UINT message, WPARAM word, LPARAM data);
    static LRESULT CALLBACK controlProcedure(HWND window, UINT message, WPARAM word, LPARAM data, UINT_PTR id,
                                             DWORD_PTR view);
    INT_PTR onDialogMessage(HWND window, UINT message, WPARAM word, LPARAM data);
    void onCommand(Control& control, int code);
    INT_PTR onNotify(HWND dialog, const NMHDR& header, LPARAM data);
    INT_PTR onDrawRow(HWND dialog, const Control& list, LPARAM data);
    void onContextMenu(Control& control, HWND window, LPARAM place);
    void drawChoice(const Control& control, const DRAWITEMSTRUCT& item);
    void onFocusGained(Control& control);
    void onFocusLost(Control& control, HWND window, HWND next);
    /// True when the message is done with.
    bool onRichEditMessage(Control& control, HWND window, UINT message, WPARAM word, LPARAM data);
    bool onRichEditKey(Control& control, WPARAM keyCode);
    void noteRichSelection(Control& control, HWND window);
    void richChanged(Control& control, bool edited);

    /// ---- leaving a field
    /// False: what was to happen is dropped.
    bool settle();
    bool leaveFocusFor(Control* next);
    void putFocusBack(Control& field);

    void clicked(Control& control);
    void cancelled();
    void pump();
    void dispatch(MSG& message);
    void rethrow();
    template <class Action>
    void guard(Action action);

    Control* controlOf(HWND window) const;
    HWND windowOf(const Control& control) const;
    /// Where typing goes: the control itself, or the edit inside a drop-down.
    HWND editOf(const Control& control) const;
    void noteText(Control& control);
    void noteColumns();

    struct Step {
        Control* from;
        Control* to;
    };
    /// While one lives, notifications come from the program's own doing.
    class Applying {
      public:
        explicit Applying(WindowView& view) : view_(view) { ++view_.applying_; }
        ~Applying() { --view_.applying_; }
        Applying(const Applying&) = delete;
        Applying& operator=(const Applying&) = delete;

      private:
        WindowView& view_;
    };

    Run& run_;
    ULONG_PTR activation_ = 0;
    HWND owner_ = nullptr;
    HWND root_ = nullptr;
    HWND tooltips_ = nullptr;
    std::unordered_map<HWND, Control*> controls_;
    std::unordered_map<const Control*, HWND> windows_;
    std::unordered_map<const Dialog*, HWND> dialogs_;
    std::optional<Step> pending_;
    int applying_ = 0;
    bool movingFocus_ = false;
    wchar_t highSurrogate_ = 0;
    std::exception_ptr failure_;
};

}  // namespace dialogs
