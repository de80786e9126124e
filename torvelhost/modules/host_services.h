// What the modules that are loaded for one call ask the host for.
#pragma once

#include "base/modules.h"
#include "hostapi/application.h"
#include "hostapi/services.h"

namespace hostmodule {

/// Null without a host and without an open drawing.
inline HostDocument* activeDocument() {
    // This host's functions are in its core library.
    auto* const functions = base::findFunction<hostapi::HostFunction(int)>(
        base::findLoadedModule(base::libraryFileName(hostapi::kCoreLibrary)), hostapi::get_host_funcptr.name);
    auto* const application =
        functions ? reinterpret_cast<hostapi::ApplicationFunction*>(functions(hostapi::kApplicationFunction)) : nullptr;
    HostApplication* const host = application ? application() : nullptr;
    return host ? host->activeDocument() : nullptr;
}

/// By the field manager, which is loaded for the call. False when there is none, and when the user gave up.
inline bool askField(OdDbFieldPtr& field) {
    const base::ModuleFunction insert(hostapi::insertField);
    return insert && insert(field) && field;
}

}  // namespace hostmodule
