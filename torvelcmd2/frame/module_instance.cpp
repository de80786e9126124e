#include "torvelcmd2/frame/module_instance.h"

#include "torvelcmd2/frame/resource_translation.h"

namespace torvel {
namespace {

using ModuleHook = int(base::ModuleHandle instance, unsigned reason, void* reserved);
constexpr unsigned kDetach = 0;
constexpr unsigned kAttach = 1;

// Initialised by constants, hence before any static object: one of them may ask for the handle.
base::ModuleHandle moduleInstance = nullptr;
ModuleHook* moduleHook = nullptr;

}  // namespace

base::ModuleHandle GetModuleResourceHandle() {
    if (!moduleInstance) moduleInstance = base::moduleOf(reinterpret_cast<const void*>(&GetModuleResourceHandle));
    return moduleInstance;
}

bool attachModule(base::ModuleHandle instance) {
    moduleInstance = instance;
    base::disableThreadNotifications(instance);
    InitResourceTranslation(instance);
    // A build of this module may export a hook of its own; this one does not.
    moduleHook = base::findFunction<ModuleHook>(instance, "_CSAfxDllMain");
    if (moduleHook) moduleHook(instance, kAttach, nullptr);
    // The hook's answer does not matter: the module loads with or without it.
    return true;
}

void detachModule(base::ModuleHandle instance, void* reserved) {
    if (moduleHook) moduleHook(instance, kDetach, reserved);
}

}  // namespace torvel
