// The seam between the view, which knows no toolkit, and a window on the screen: what the user does (ViewEvents), and
// what a window does for the view (ViewFrame).
//
// A frame is thin. It hands over events as they come, shows the picture it is given, and keeps a menu, a toolbar, tabs,
// the history and an edit field for the command line as the view says; it decides nothing. All calls come in one
// thread. Points are pixels of the screen, counted from the upper left corner of the canvas, y down; times are
// milliseconds of the frame's own clock.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "torvelhost/plot/pixel_buffer.h"

namespace host {

struct CanvasPoint {
    double x = 0, y = 0;
    bool operator==(const CanvasPoint&) const = default;
};

enum class MouseButton : std::uint8_t { kLeft, kMiddle, kRight };

/// Keys that mean something to the view, wherever the focus is: in the canvas or in the command line.
enum class Key : std::uint8_t { kEnter, kEscape, kSpace, kTab, kUp, kDown, kDelete, kHelp };

/// What the user does. The frame calls these inside ViewFrame::waitForEvents and nowhere else.
class ViewEvents {
  public:
    virtual ~ViewEvents() = default;

    /// The canvas has this size now. `scale` is 1 at 96 dots an inch. Called once before anything else.
    virtual void resized(int width, int height, double scale) = 0;
    virtual void mouseMoved(CanvasPoint at, bool shift) = 0;
    /// The cursor is no longer over the canvas.
    virtual void mouseLeft() = 0;
    virtual void mousePressed(MouseButton button, CanvasPoint at, bool shift) = 0;
    virtual void mouseReleased(MouseButton button, CanvasPoint at, bool shift) = 0;
    /// The second press of a double click, in place of mousePressed; mouseReleased follows.
    virtual void mouseDoubleClicked(MouseButton button, CanvasPoint at, bool shift) = 0;
    /// Above 0 the user turns the wheel away from himself: nearer. Parts of a notch are usual.
    virtual void wheelTurned(double notches, CanvasPoint at) = 0;

    /// False: the key does in the command line what it does in any field. What is typed goes to the command line, also
    /// while the canvas has the focus; commandTextChanged tells.
    virtual bool keyPressed(Key key) = 0;
    virtual void commandTextChanged(const std::wstring& text) = 0;
    /// An entry of the menu or the toolbar, or its shortcut: "File/Save".
    virtual void menuChosen(const std::wstring& path) = 0;
    virtual void tabChosen(std::size_t index) = 0;
    /// A word of the prompt.
    virtual void wordChosen(std::size_t index) = 0;
    virtual void fileDropped(const std::wstring& path) = 0;
    /// The window's close button. The view closes it, or does not.
    virtual void closeAsked() = 0;
};

struct MenuEntry {
    std::wstring text;      // "&Save"; empty: a line between entries
    std::wstring path;      // "File/Save", which menuChosen gives
    std::wstring shortcut;  // "Ctrl+S", or empty
    std::wstring hint;      // a sentence for tooltips and status
    bool inToolbar = false;

    bool operator==(const MenuEntry&) const = default;
};
struct Menu {
    std::wstring title;  // "&File"
    std::vector<MenuEntry> entries;

    bool operator==(const Menu&) const = default;
};

class ViewFrame {
  public:
    virtual ~ViewFrame() = default;

    /// Shows the window. `events` must outlive it.
    virtual void open(ViewEvents& events) = 0;
    /// Hands over what the user does: returns after something was handed over, or at the time `until`, whichever comes
    /// first; without one it waits as long as it takes.
    virtual void waitForEvents(std::optional<std::int64_t> until) = 0;
    virtual std::int64_t now() = 0;
    /// While a command works: repaints, and hears nothing but Escape. True when that was pressed since the last call.
    virtual bool breathe() = 0;

    // ---- the canvas
    /// The picture has the size that `resized` told last, or the frame waits for the next one. The frame copies it.
    virtual void showPicture(const PixelBuffer& picture) = 0;
    enum class Cursor : std::uint8_t { kNone, kArrow, kWait };
    /// Over the canvas. None where the view draws its own crosshair.
    virtual void setCursor(Cursor cursor) = 0;
    /// A text beside the cursor, in the system's font. Empty: none.
    virtual void setTip(const std::wstring& text, CanvasPoint at) = 0;

    // ---- around it
    virtual void setTitle(const std::wstring& title) = 0;
    virtual void setStatus(const std::wstring& text) = 0;
    /// A part from 0 to 1 of what is under way; below 0: nothing is.
    virtual void setProgress(double part) = 0;
    virtual void setMenus(const std::vector<Menu>& menus) = 0;
    virtual void setTabs(const std::vector<std::wstring>& names, std::size_t current) = 0;

    // ---- the command line
    /// `words` can be clicked.
    virtual void setPrompt(const std::wstring& prompt, const std::vector<std::wstring>& words) = 0;
    /// The caret goes to the end. Does not call commandTextChanged.
    virtual void setCommandText(const std::wstring& text) = 0;
    /// Text with its line ends, behind what is there.
    virtual void addHistory(const std::wstring& text) = 0;

    /// The window as the platform knows it, for dialogs that belong to it (dialogs::useMainWindow).
    virtual void* nativeWindow() = 0;
    /// Brings it to the front and the focus to the canvas: after dialogs.
    virtual void activate() = 0;
};

}  // namespace host
