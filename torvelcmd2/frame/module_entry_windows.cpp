#include <windows.h>

#include "torvelcmd2/frame/module_entry.h"
#include "torvelcmd2/frame/module_instance.h"

namespace torvel {

// The loader calls the entry routine below, after the static initialisers.
ModuleEntry::ModuleEntry() = default;
ModuleEntry::~ModuleEntry() = default;

}  // namespace torvel

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved) {
    if (reason == DLL_PROCESS_ATTACH) return torvel::attachModule(instance) ? TRUE : FALSE;
    if (reason == DLL_PROCESS_DETACH) torvel::detachModule(instance, reserved);
    return TRUE;
}
