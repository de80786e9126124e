// The real windows of one run of a dialog.
//
// Leaving a field. The system moves the focus, selects a row or marks a button before anybody can object. So the loop
// looks at what the user does before a window gets it: a mouse button over a control first moves the focus there as
// View does it, and is dropped when the field may not be left; the keys that View knows never reach a window at all.
// Where the focus went by another way (a tool that reads screens, say), it is put back and asked for by a posted
// message, since a box must not be shown while the system moves the focus.
//
// Exceptions must not pass through the system's window procedures. They are kept (`failure_`) and thrown again by the
// loop.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <exception>
#include <optional>
#include <unordered_map>

#include "dialogs/run.h"
#include "dialogs/windows/themed.h"

namespace dialogs {

class WindowView final : public View {
  public:
    explicit WindowView(Run& run);
    ~WindowView() override;

    void work() override;
    void* window() override { return root_; }
    void setShown(bool on) override;
    void titleChanged() override;
    void changed(Control& control, Aspect aspect) override;
    void pageShown(Control& tab) override;
    void showFocus(Control* control) override;
    int listWidth(const Control& list) override;
    PixelRect place() override;
    void movePlace(int left, int top) override;
    double scale() override;
    void savePicture(const std::wstring& fileName) override;

    void press(Control& button) override;
    void typeText(Control& field, const std::wstring& text) override;
    void choose(Control& list, int item) override;
    void doubleClick(Control& list, int row) override;
    void pressKey(Key key, bool shift) override;
    void pressMnemonic(wchar_t letter) override;
    void dragColumn(Control& list, int column, int width) override;
    void close() override;

    /// The window of a dialog that is open, and so no message box.
    static bool isDialogWindow(HWND window);

  private:
    /// ---- making windows
    HWND createWindow(Dialog& dialog, HWND parent);
    void adoptControls(Dialog& dialog, HWND window);
    void placePage(Control& tab, HWND page);
    void showTooltip(Control& control, HWND window);

    /// ---- the loop
    void pump();
    void dispatch(MSG& message);
    /// True: the message is done with.
    bool takeInput(const MSG& message);
    bool takeMouseButton(const MSG& message);
    bool takeWheel(const MSG& message);
    bool takeKey(const MSG& message);
    bool takeLetter(const MSG& message);
    void rethrow();
    template <class Action>
    void guard(Action action);

    /// ---- procedures of the system
    static INT_PTR CALLBACK dialogProcedure(HWND window, UINT message, WPARAM word, LPARAM data);
    static LRESULT CALLBACK controlProcedure(HWND window, UINT message, WPARAM word, LPARAM data, UINT_PTR id,
                                             DWORD_PTR view);
    INT_PTR onDialogMessage(HWND window, UINT message, WPARAM word, LPARAM data);
    void onCommand(Control& control, int code);
    INT_PTR onNotify(HWND dialog, const NMHDR& header, LPARAM data);
    void onContextMenu(Control& control, HWND window, LPARAM place);
    /// True: the message is done with.
    bool beforeControl(Control& control, UINT message, WPARAM& word, LPARAM data);
    void afterControl(Control& control, HWND window, UINT message, LPARAM data);

    Control* controlOf(HWND window) const;
    HWND windowOf(const Control& control) const;

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

    Themed themed_;
    HWND owner_ = nullptr;
    bool disabledOwner_ = false;
    HWND root_ = nullptr;
    HWND tooltips_ = nullptr;
    std::unordered_map<HWND, Control*> controls_;
    std::unordered_map<const Control*, HWND> windows_;
    std::unordered_map<const Dialog*, HWND> dialogs_;
    int applying_ = 0;
    std::exception_ptr failure_;
};

}  // namespace dialogs
