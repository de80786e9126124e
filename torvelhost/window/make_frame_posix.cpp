// The window is made by the library that also makes those of dialogs, which is loaded when it is wanted.
#include "base/modules.h"
#include "torvelhost/window/make_frame.h"

namespace host {

std::unique_ptr<ViewFrame> makeViewFrame(std::wstring& reason) {
    base::ModuleReference library = base::loadModule(base::libraryFileName(L"torvelqt"), &reason);
    auto* const make = base::findFunction<ViewFrame*(const wchar_t**)>(library.get(), "torvelMakeViewFrame");
    if (!make) {
        reason = L"the library that shows them, built with Qt 6 (Debian's qt6-base-dev), is missing: " + reason;
        return nullptr;
    }
    static_cast<void>(library.release());  // the toolkit cannot be unloaded
    const wchar_t* missing = L"";
    std::unique_ptr<ViewFrame> frame(make(&missing));
    if (!frame) reason = missing;
    return frame;
}

}  // namespace host
