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

/// The same in the system's narrow encoding (the ANSI code page on Windows, UTF-8 elsewhere), cut to fit into `size`
/// bytes with a zero at the end. Returns its length; 0 when there is no such string.
int loadNarrowString(ModuleHandle module, unsigned id, char* buffer, int size);

}  // namespace base
