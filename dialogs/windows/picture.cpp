#include "dialogs/windows/picture.h"

#include <vector>

#include "base/files.h"

namespace dialogs {
namespace {

// The windows draw into contexts of their own; each is copied from there, the inner ones over the outer.
void copyWindow(HWND window, HDC picture, POINT origin) {
    if (!IsWindowVisible(window)) return;
    RECT place;
    GetWindowRect(window, &place);
    HDC const source = GetWindowDC(window);
    BitBlt(picture, place.left - origin.x, place.top - origin.y, place.right - place.left, place.bottom - place.top,
           source, 0, 0, SRCCOPY);
    ReleaseDC(window, source);
    // From the bottom of the stack to its top.
    for (HWND child = GetWindow(window, GW_CHILD) ? GetWindow(GetWindow(window, GW_CHILD), GW_HWNDLAST) : nullptr;
         child; child = GetWindow(child, GW_HWNDPREV))
        copyWindow(child, picture, origin);
}

template <class Number>
void append(std::string& bytes, Number number) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

}  // namespace

void saveWindowPicture(HWND window, const std::wstring& fileName) {
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN | RDW_FRAME | RDW_ERASE);
    RECT place;
    GetWindowRect(window, &place);
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = place.right - place.left;
    info.bmiHeader.biHeight = place.bottom - place.top;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 24;
    const auto rowSize = static_cast<std::size_t>((info.bmiHeader.biWidth * 3 + 3) / 4 * 4);

    HDC const context = CreateCompatibleDC(nullptr);
    void* pixels = nullptr;
    HBITMAP const bitmap = CreateDIBSection(context, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
    HGDIOBJ const before = SelectObject(context, bitmap);
    copyWindow(window, context, {place.left, place.top});
    GdiFlush();

    const std::size_t size = rowSize * static_cast<std::size_t>(info.bmiHeader.biHeight);
    std::string bytes = "BM";
    append(bytes, static_cast<std::uint32_t>(14 + sizeof info.bmiHeader + size));
    append(bytes, std::uint32_t{0});
    append(bytes, static_cast<std::uint32_t>(14 + sizeof info.bmiHeader));
    append(bytes, info.bmiHeader);
    bytes.append(static_cast<const char*>(pixels), size);
    SelectObject(context, before);
    DeleteObject(bitmap);
    DeleteDC(context);
    base::writeFile(fileName, bytes);
}

}  // namespace dialogs
