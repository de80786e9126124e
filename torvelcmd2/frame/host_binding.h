// How the module finds its host at run time: by the exported names of loaded modules. Nothing is linked, and nothing
// found is kept: the host may load and unload what it offers.
#pragma once

#include <memory>
#include <utility>

#include "base/modules.h"
#include "hostapi/application.h"
#include "hostapi/command.h"
#include "hostapi/services.h"

namespace torvel {

using base::ModuleFunction;

/// The module that holds the host's functions; null when there is no host.
base::ModuleHandle GetHostMainModule();

/// The host function of that number, looked up anew at every call; null when there is none.
hostapi::HostFunction GetHostFunction(int id);

/// Stores a new reference to the host's command factory and returns true; false, with `factory` untouched, when there
/// is none.
bool GetCommandFactory(ICmdFactory*& factory);

/// Null when there is no host.
HostApplication* hostApplication();

/// Null without a host and without an open drawing.
HostDocument* activeDocument();

/// Where messages go: the input channel of the active document, or the application's own when no document is open.
HostEdInput* GetCurrentInput();

/// Says so when the host tells another version of the interfaces than this module was built with: by a notification, or
/// on standard error where the host has none. Calls nothing else of the host.
void checkInterfaceVersion();

/// A service of the host; null when its library is not loaded or lacks it. The caller then does without, silently.
template <class Signature>
Signature* hostService(const hostapi::Service<Signature>& service) {
    return base::findFunction(service);
}

/// A service that is an object, which lives as long as the host; null when there is none.
template <class Object>
Object* hostObject(const hostapi::Service<Object*()>& service) {
    auto* const get = hostService(service);
    return get ? get() : nullptr;
}

/// Gives back the reference to a counted object.
struct ReleaseReference {
    template <class Object>
    void operator()(Object* object) const {
        object->release();
    }
};
template <class Object>
using CountedReference = std::unique_ptr<Object, ReleaseReference>;

}  // namespace torvel
