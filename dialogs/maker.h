// What makes the windows of dialogs: one maker for real windows, one for forms.
#pragma once

#include <memory>

#include "base/modules.h"
#include "dialogs/boxes.h"
#include "dialogs/control.h"
#include "dialogs/process.h"

namespace dialogs {

class Run;

/// What of a control changed.
enum class Aspect {
    kText,
    kChecked,
    kEnabled,
    kVisible,
    kReadOnly,
    kSelection,
    kChoices,
    kColumns,
    kRows,
    kPages,
    kExtras
};

enum class Key { kEnter, kEscape, kTab, kSpace, kBackspace, kDelete, kLeft, kRight, kUp, kDown, kHome, kEnd, kHelp };

/// The window of one run of a dialog, with its pages. It shows what the controls hold. What the user does it first
/// notes in the controls and then tells the run.
class View {
  public:
    virtual ~View() = default;

    /// Until the run has ended.
    virtual void work() = 0;
    /// The handle of the window; null: there is none.
    virtual void* window() { return nullptr; }
    virtual void titleChanged() = 0;
    virtual void changed(Control& control, Aspect aspect) = 0;
    /// A page was initialised and is to be shown from now on.
    virtual void pageShown(Control& tab) = 0;
    /// The focus went there by the program.
    virtual void focusChanged(Control& control) = 0;
    virtual int listWidth(const Control& list) = 0;
    virtual void restorePlacement(const std::wstring& placement) = 0;
    virtual std::wstring placement() = 0;
    virtual void savePicture(const std::wstring& fileName) = 0;

    /// ---- doing as a user would, for scripts. The control is visible and enabled; all but moveFocus, key and
    /// close need the focus there.
    /// False when a leave check refused or showed a box: what was to follow is dropped.
    virtual bool moveFocus(Control& control) = 0;
    virtual void press(Control& button) = 0;
    virtual void replaceText(Control& field, const std::wstring& text) = 0;
    virtual void typeText(Control& field, const std::wstring& text) = 0;
    virtual void select(Control& field, TextSelection selection) = 0;
    /// A choice, a row, or a page.
    virtual void choose(Control& list, int item) = 0;
    virtual void doubleClick(Control& list, int row) = 0;
    /// Where the focus is.
    virtual void key(Key key, bool shift) = 0;
    virtual void close() = 0;
};

class Maker {
  public:
    virtual ~Maker() = default;
    virtual std::unique_ptr<View> makeView(Run& run) = 0;
    /// With a script the answer is known beforehand.
    virtual Answer messageBox(BoxKind kind, const std::wstring& text, const std::wstring& caption,
                              std::optional<Answer> answer) = 0;
    /// Never asked for files where lines answer.
    virtual std::optional<std::wstring> askFile(const FileRequest& request) = 0;
    virtual std::optional<std::wstring> askFolder(const std::wstring& title) = 0;
    virtual std::wstring clipboardText() = 0;
    virtual void setClipboardText(const std::wstring& text) = 0;
};

/// The process's own, see process.cpp.
struct Process {
    Process();
    void setStandard();
    void waitFor(const std::function<void()>& wait) const;

    std::unique_ptr<Maker> maker;
    LineSource* lines = nullptr;  ///< forms: never null; windows: the script or null
    Waiting waiting;
    int boxesShown = 0;
    base::ModuleHandle resources = nullptr;
    Run* current = nullptr;  ///< the innermost dialog

    static Process& instance();
};

std::unique_ptr<Maker> makeFormsMaker();
/// Null where there are no windows. One file per platform.
std::unique_ptr<Maker> makeWindowsMaker(bool scripted);
void useSystemLocale();

}  // namespace dialogs
