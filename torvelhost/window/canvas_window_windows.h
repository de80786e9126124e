// The canvas of the window: pixels that the view has drawn, and the mouse over them.
#pragma once

#include <windows.h>

#include <functional>

#include "torvelhost/window/view_frame.h"

namespace host {

class CanvasWindow {
  public:
    CanvasWindow() = default;
    ~CanvasWindow();
    CanvasWindow(const CanvasWindow&) = delete;
    CanvasWindow& operator=(const CanvasWindow&) = delete;

    /// `onMouse` is told the mouse's messages. The canvas never has the focus.
    using OnMouse = std::function<void(UINT message, WPARAM wide, LPARAM packed)>;
    void create(HWND parent, OnMouse onMouse);
    HWND window() const { return window_; }

    void show(const PixelBuffer& picture);
    void setCursor(HCURSOR cursor);

  private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wide, LPARAM packed);
    void paint();
    void makeBitmap(int width, int height);
    void dropBitmap();

    HWND window_ = nullptr;
    OnMouse onMouse_;
    HCURSOR cursor_ = nullptr;
    HDC memory_ = nullptr;  // with the bitmap selected into it
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ formerBitmap_ = nullptr;
    std::uint32_t* pixels_ = nullptr;
    int width_ = 0, height_ = 0;
};

}  // namespace host
