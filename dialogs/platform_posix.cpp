// Windows are made by a library of their own, which is loaded when they are wanted: a program without windows starts
// without their toolkit, and need not have it.
#include "base/modules.h"
#include "dialogs/desktop.h"
#include "dialogs/maker.h"

namespace dialogs {

bool windowsAreStandard() { return false; }

void useOwnDesktop() {}

std::unique_ptr<Maker> makeWindowsMaker(bool, std::wstring& reason) {
    base::ModuleReference library = base::loadModule(base::libraryFileName(L"torvelqt"), &reason);
    auto* const makeMaker = base::findFunction<Maker*(std::wstring&)>(library.get(), "makeQtMaker");
    if (!makeMaker) {
        reason = L"the library that shows them, built with Qt 6 (Debian's qt6-base-dev), is missing: " + reason;
        return nullptr;
    }
    static_cast<void>(library.release());  // the toolkit cannot be unloaded
    return std::unique_ptr<Maker>(makeMaker(reason));
}

// Texts and numbers here do not depend on a thread's locale.
void useSystemLocale() {}

}  // namespace dialogs
