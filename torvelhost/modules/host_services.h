// What the modules that are loaded for one call ask the host for.
#pragma once

#include "base/modules.h"
#include "hostapi/application.h"
#include "hostapi/services.h"

namespace hostmodule {

/// Null when the library is not loaded or lacks it.
template <class Signature>
Signature* hostService(const hostapi::Service<Signature>& service) {
    return base::findFunction<Signature>(base::findLoadedModule(base::libraryFileName(service.library)), service.name);
}

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
    const base::ModuleReference manager = base::loadModule(base::libraryFileName(hostapi::insertField.library));
    auto* const insert = base::findFunction<bool(OdDbFieldPtr&)>(manager.get(), hostapi::insertField.name);
    return insert && insert(field) && field;
}

}  // namespace hostmodule
