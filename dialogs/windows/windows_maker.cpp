// Real windows, message boxes and file dialogs.
#include <windows.h>
#include <commdlg.h>
#include <shlobj.h>

#include <algorithm>
#include <cderr.h>

#include "base/text.h"
#include "dialogs/desktop.h"
#include "dialogs/windows/window_view.h"

namespace dialogs {
namespace {

HWND ownerWindow() {
    Run* const run = Process::instance().current;
    return static_cast<HWND>(run && run->view() ? run->view()->window() : Process::instance().mainWindow);
}

// ---- message boxes that a script answers: a timer ticks inside the box, finds it and presses the button

int scriptedButton = 0;

BOOL CALLBACK pressInBox(HWND window, LPARAM) {
    wchar_t name[16];
    GetClassNameW(window, name, 16);
    if (std::wstring_view(name) != L"#32770" || !IsWindowVisible(window) || WindowView::isDialogWindow(window))
        return TRUE;
    HWND button = GetDlgItem(window, scriptedButton);
    if (!button) button = FindWindowExW(window, nullptr, L"Button", nullptr);  // a lone button may have any id
    if (button) PostMessageW(button, BM_CLICK, 0, 0);
    return FALSE;
}

void CALLBACK pressWhenShown(HWND, UINT, UINT_PTR, DWORD) { EnumThreadWindows(GetCurrentThreadId(), pressInBox, 0); }

class BoxTimer {
  public:
    explicit BoxTimer(Answer answer) {
        scriptedButton = static_cast<int>(answer);
        timer_ = SetTimer(nullptr, 0, 10, pressWhenShown);
    }
    ~BoxTimer() { KillTimer(nullptr, timer_); }
    BoxTimer(const BoxTimer&) = delete;
    BoxTimer& operator=(const BoxTimer&) = delete;

  private:
    UINT_PTR timer_;
};

UINT boxStyle(BoxKind kind) {
    switch (kind) {
        case BoxKind::kNotice:
            return MB_OK | MB_ICONINFORMATION;
        case BoxKind::kWarning:
            return MB_OK | MB_ICONWARNING;
        case BoxKind::kError:
            return MB_OK | MB_ICONERROR;
        case BoxKind::kYesNo:
            return MB_YESNO | MB_ICONQUESTION;
        case BoxKind::kYesNoCancel:
            return MB_YESNOCANCEL | MB_ICONQUESTION;
    }
    return MB_OK;
}

// "Texts|*.txt||" with zeros for the bars.
std::wstring systemFilter(std::wstring filter) {
    std::replace(filter.begin(), filter.end(), L'|', L'\0');
    return filter + L'\0';
}

class WindowsMaker final : public Maker {
  public:
    std::unique_ptr<View> makeView(Run& run) override { return std::make_unique<WindowView>(run); }

    Answer messageBox(BoxKind kind, const std::wstring& text, const std::wstring& caption,
                      std::optional<Answer> answer) override {
        const Themed themed;
        std::optional<BoxTimer> timer;
        if (answer) timer.emplace(*answer);
        std::wstring title = caption;
        if (Run* const run = Process::instance().current; run && title.empty()) title = run->root().title();
        // Without an owner the box must not be covered by what runs elsewhere.
        const UINT above = ownerWindow() ? 0 : MB_SETFOREGROUND;
        return static_cast<Answer>(MessageBoxW(ownerWindow(), text.c_str(), title.c_str(), boxStyle(kind) | above));
    }

    std::optional<std::wstring> askFile(const FileRequest& request) override {
        const Themed themed;
        std::wstring name = request.fileName;
        name.resize(32768);
        const std::wstring filter = systemFilter(request.filter);
        std::wstring_view extension = request.defaultExtension;
        if (extension.starts_with(L"*.")) extension.remove_prefix(2);
        const std::wstring defaultExtension(extension);
        OPENFILENAMEW dialog = {};
        dialog.lStructSize = sizeof dialog;
        dialog.hwndOwner = ownerWindow();
        dialog.lpstrFilter = request.filter.empty() ? nullptr : filter.c_str();
        dialog.lpstrFile = name.data();
        dialog.nMaxFile = static_cast<DWORD>(name.size());
        dialog.lpstrTitle = request.title.empty() ? nullptr : request.title.c_str();
        dialog.lpstrDefExt = defaultExtension.empty() ? nullptr : defaultExtension.c_str();
        dialog.Flags = OFN_HIDEREADONLY | OFN_ENABLESIZING | OFN_EXPLORER | OFN_NOCHANGEDIR;
        if (request.mustExist) dialog.Flags |= OFN_FILEMUSTEXIST;
        if (request.askOverwrite) dialog.Flags |= OFN_OVERWRITEPROMPT;
        while (!(request.save ? GetSaveFileNameW(&dialog) : GetOpenFileNameW(&dialog))) {
            // A first name that can be none keeps the dialog from opening at all.
            if (CommDlgExtendedError() != FNERR_INVALIDFILENAME || name.front() == L'\0') return std::nullopt;
            name.front() = L'\0';
        }
        return std::wstring(name.c_str());
    }

    std::optional<std::wstring> askFolder(const std::wstring& title) override {
        const Themed themed;
        BROWSEINFOW dialog = {};
        dialog.hwndOwner = ownerWindow();
        dialog.lpszTitle = title.c_str();
        dialog.ulFlags = BIF_RETURNONLYFSDIRS | BIF_USENEWUI;
        PIDLIST_ABSOLUTE const folder = SHBrowseForFolderW(&dialog);
        if (!folder) return std::nullopt;
        wchar_t path[MAX_PATH];
        const bool found = SHGetPathFromIDListW(folder, path);
        CoTaskMemFree(folder);
        return found ? std::optional<std::wstring>(path) : std::nullopt;
    }

    std::wstring clipboardText() override {
        std::wstring text;
        if (!OpenClipboard(ownerWindow())) return text;
        if (HANDLE const data = GetClipboardData(CF_UNICODETEXT)) {
            text = static_cast<const wchar_t*>(GlobalLock(data));
            GlobalUnlock(data);
        }
        CloseClipboard();
        return text;
    }

    void setClipboardText(const std::wstring& text) override {
        if (!OpenClipboard(ownerWindow())) return;
        EmptyClipboard();
        const std::size_t size = (text.size() + 1) * sizeof(wchar_t);
        // The clipboard owns the memory from then on.
        if (HGLOBAL const memory = GlobalAlloc(GMEM_MOVEABLE, size)) {
            std::copy_n(text.c_str(), text.size() + 1, static_cast<wchar_t*>(GlobalLock(memory)));
            GlobalUnlock(memory);
            if (!SetClipboardData(CF_UNICODETEXT, memory)) GlobalFree(memory);
        }
        CloseClipboard();
    }
};

}  // namespace

bool windowsAreStandard() { return true; }

// Scripts that run at the same time would take the focus from each other. A thread with windows cannot change its
// desktop.
void useOwnDesktop() {
    static bool done = false;
    if (done) return;
    done = true;
    const std::wstring name = L"torvel-" + std::to_wstring(GetCurrentProcessId());
    if (HDESK const desktop = CreateDesktopW(name.c_str(), nullptr, nullptr, 0, GENERIC_ALL, nullptr))
        SetThreadDesktop(desktop);
}

std::unique_ptr<Maker> makeWindowsMaker(bool scripted, std::wstring&) {
    if (scripted) useOwnDesktop();
    return std::make_unique<WindowsMaker>();
}

void useSystemLocale() { SetThreadLocale(LOCALE_SYSTEM_DEFAULT); }

}  // namespace dialogs
