// The resources compiled into a module: strings, dialog templates, menus.
#pragma once

#include <string>

#include "base/compiled_resources.h"
#include "base/modules.h"

namespace base {

/// The bytes of a resource, which live as long as the module is loaded. Empty when the module has no such resource.
ResourceBytes findResource(ModuleHandle module, const ResourceName& type, const ResourceName& name);

/// The string of the module's string tables; empty when it is not there.
std::wstring loadString(ModuleHandle module, unsigned id);

}  // namespace base
