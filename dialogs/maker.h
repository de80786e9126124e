// What makes the windows and boxes of dialogs: a maker for the real windows of each platform, and one for forms.
#pragma once

#include <memory>

#include "base/modules.h"
#include "dialogs/boxes.h"
#include "dialogs/process.h"
#include "dialogs/view.h"

namespace dialogs {

class Recording;

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
struct DIALOGS_API Process {
    Process();
    ~Process();
    void setStandard();
    void waitFor(const std::function<void()>& wait) const;

    std::unique_ptr<Maker> maker;
    LineSource* lines = nullptr;  ///< forms: never null; windows: the script or null
    Waiting waiting;
    void* mainWindow = nullptr;  ///< owns what opens outside of any dialog
    int boxesShown = 0;
    base::ModuleHandle resources = nullptr;
    Run* current = nullptr;  ///< the innermost dialog
    std::unique_ptr<Recording> recording;

    /// A box or a file dialog that is open, and the dialog that it was opened over.
    struct OpenBox {
        std::wstring title;
        const Run* over;
    };
    std::vector<OpenBox> openBoxes;

    static Process& instance();
};

std::unique_ptr<Maker> makeFormsMaker();
/// Null where there are no windows; `reason` is then what is missing. One file per platform.
std::unique_ptr<Maker> makeWindowsMaker(bool scripted, std::wstring& reason);
void useSystemLocale();

}  // namespace dialogs
