#pragma once

#include <windows.h>

#include <string>

namespace dialogs {

/// What a window and everything in it look like now, as a bitmap file. Throws base::FileError.
void saveWindowPicture(HWND window, const std::wstring& fileName);

}  // namespace dialogs
