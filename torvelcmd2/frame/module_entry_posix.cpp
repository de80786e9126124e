#include "torvelcmd2/frame/module_entry.h"
#include "torvelcmd2/frame/module_instance.h"

namespace torvel {

ModuleEntry::ModuleEntry() { attachModule(GetModuleResourceHandle()); }

ModuleEntry::~ModuleEntry() { detachModule(GetModuleResourceHandle(), nullptr); }

}  // namespace torvel
