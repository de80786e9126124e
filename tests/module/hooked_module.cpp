// A module with the frame's load and unload steps and a frame hook of its own.
#include <string>

#include "torvelcmd2/frame/module_entry.h"
#include "torvelcmd2/frame/module_instance.h"

namespace {

struct Log {
    std::string own;
    std::string* target = nullptr;
    void add(const char* entry) { (target != nullptr ? *target : own) += entry; }
};
// Made first and destroyed last.
Log hookLog;

struct Registration {
    Registration() { hookLog.add("[registered]"); }
} const registration;

const torvel::ModuleEntry entry;

}  // namespace

extern "C" {

int _CSAfxDllMain(void* instance, unsigned reason, void*) {
    if (instance != torvel::GetModuleResourceHandle()) hookLog.add("[another instance]");
    hookLog.add(reason == 1 ? "[attach]" : "[detach]");
    return 0;  // the module loads all the same
}

void moveHookLog(std::string* target) {
    *target = hookLog.own;
    hookLog.target = target;
}

}  // extern "C"
