// A window that scripts of events can work the way a hand does, so that they try the way through the toolkit. A frame
// on a screen is one where its file says so; what is done comes to its ViewEvents before the call returns.
#pragma once

#include "torvelhost/window/view_frame.h"

namespace host {

class WindowHand {
  public:
    virtual ~WindowHand() = default;

    /// The window, until the canvas has that size.
    virtual void resizeCanvas(int width, int height) = 0;
    enum class Mouse : std::uint8_t { kMove, kPress, kRelease, kDoubleClick };
    virtual void mouse(Mouse what, MouseButton button, CanvasPoint at, bool shift) = 0;
    virtual void leaveCanvas() = 0;
    virtual void turnWheel(double notches, CanvasPoint at) = 0;
    virtual void pressKey(Key key) = 0;
    virtual void pressBackspace() = 0;
    virtual void type(wchar_t character) = 0;
    /// In the place of all that stands in the command line, as an input method gives a text.
    virtual void enterText(const std::wstring& text) = 0;
    virtual std::wstring commandText() const = 0;
    virtual void chooseEntry(const std::wstring& path) = 0;
    virtual void clickTab(std::size_t index) = 0;
    virtual void clickWord(std::size_t index) = 0;
    virtual void dropFile(const std::wstring& path) = 0;
    virtual void clickClose() = 0;
};

}  // namespace host
