// The functions of the command module that the host's own commands call.
#pragma once

#include "base/modules.h"
#include "hostapi/module_functions.h"

namespace host::commands {

/// A function of the command module, which is loaded all the time; null when it has none of that name.
template <class Signature>
Signature* moduleFunction(const hostapi::Service<Signature>& service) {
    return base::findFunction<Signature>(base::findLoadedModule(base::libraryFileName(service.library)), service.name);
}

}  // namespace host::commands
