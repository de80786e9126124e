#include "torvelhost/window/canvas_window_windows.h"

#include <algorithm>

#include "base/modules.h"

namespace host {
namespace {

constexpr wchar_t kClassName[] = L"TorvelCanvas";

HINSTANCE instance() { return static_cast<HINSTANCE>(base::moduleOf(reinterpret_cast<const void*>(&instance))); }

}  // namespace

CanvasWindow::~CanvasWindow() {
    if (window_) DestroyWindow(window_);
    dropBitmap();
}

void CanvasWindow::create(HWND parent, OnMouse onMouse) {
    onMouse_ = std::move(onMouse);
    cursor_ = LoadCursorW(nullptr, IDC_ARROW);
    WNDCLASSEXW kind = {};
    kind.cbSize = sizeof kind;
    kind.lpfnWndProc = procedure;
    kind.hInstance = instance();
    kind.style = CS_DBLCLKS;
    kind.lpszClassName = kClassName;
    RegisterClassExW(&kind);  // fails where it is registered already
    window_ = CreateWindowExW(0, kClassName, L"Drawing", WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, parent, nullptr, instance(),
                              this);
}

void CanvasWindow::dropBitmap() {
    if (!memory_) return;
    SelectObject(memory_, formerBitmap_);
    DeleteObject(bitmap_);
    DeleteDC(memory_);
    memory_ = nullptr;
    pixels_ = nullptr;
    width_ = height_ = 0;
}

void CanvasWindow::makeBitmap(int width, int height) {
    dropBitmap();
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;  // from the top down
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    bitmap_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (!bitmap_) return;
    memory_ = CreateCompatibleDC(nullptr);
    formerBitmap_ = SelectObject(memory_, bitmap_);
    pixels_ = static_cast<std::uint32_t*>(bits);
    width_ = width;
    height_ = height;
}

void CanvasWindow::show(const PixelBuffer& picture) {
    if (picture.width <= 0 || picture.height <= 0) return;
    if (picture.width != width_ || picture.height != height_) makeBitmap(picture.width, picture.height);
    if (!pixels_) return;
    GdiFlush();
    std::copy(picture.pixels.begin(), picture.pixels.end(), pixels_);
    InvalidateRect(window_, nullptr, FALSE);
    UpdateWindow(window_);
}

void CanvasWindow::setCursor(HCURSOR cursor) {
    if (cursor == cursor_) return;
    cursor_ = cursor;
    POINT at;
    if (GetCursorPos(&at) && WindowFromPoint(at) == window_) SetCursor(cursor_);
}

void CanvasWindow::paint() {
    PAINTSTRUCT painting;
    HDC const screen = BeginPaint(window_, &painting);
    const RECT& r = painting.rcPaint;
    if (memory_) BitBlt(screen, r.left, r.top, r.right - r.left, r.bottom - r.top, memory_, r.left, r.top, SRCCOPY);
    // What the picture does not reach yet, while the window grows.
    RECT whole;
    GetClientRect(window_, &whole);
    const RECT right = {width_, 0, whole.right, whole.bottom}, below = {0, height_, whole.right, whole.bottom};
    if (right.left < right.right) FillRect(screen, &right, GetSysColorBrush(COLOR_WINDOW));
    if (below.top < below.bottom) FillRect(screen, &below, GetSysColorBrush(COLOR_WINDOW));
    EndPaint(window_, &painting);
}

LRESULT CALLBACK CanvasWindow::procedure(HWND window, UINT message, WPARAM wide, LPARAM packed) {
    if (message == WM_NCCREATE) {
        const auto* const created = reinterpret_cast<const CREATESTRUCTW*>(packed);
        auto* const canvas = static_cast<CanvasWindow*>(created->lpCreateParams);
        canvas->window_ = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(canvas));
    }
    auto* const canvas = reinterpret_cast<CanvasWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!canvas) return DefWindowProcW(window, message, wide, packed);
    switch (message) {
        case WM_PAINT:
            canvas->paint();
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_SETCURSOR:
            if (LOWORD(packed) != HTCLIENT) break;
            SetCursor(canvas->cursor_);
            return TRUE;
        case WM_MOUSEMOVE:
        case WM_MOUSELEAVE:
        case WM_LBUTTONDOWN:
        case WM_MBUTTONDOWN:
        case WM_RBUTTONDOWN:
        case WM_LBUTTONUP:
        case WM_MBUTTONUP:
        case WM_RBUTTONUP:
        case WM_LBUTTONDBLCLK:
        case WM_MBUTTONDBLCLK:
        case WM_RBUTTONDBLCLK:
        case WM_CAPTURECHANGED:
            canvas->onMouse_(message, wide, packed);
            return 0;
        case WM_NCDESTROY:
            canvas->window_ = nullptr;
            break;
        default:
            break;
    }
    return DefWindowProcW(window, message, wide, packed);
}

}  // namespace host
