// This module's own handle, and the steps of its loading and unloading.
#pragma once

#include "base/modules.h"

namespace torvel {

/// The module whose resources and exports are this module's own. Known at any time, also while static objects are still
/// being made, before the attach step.
base::ModuleHandle GetModuleResourceHandle();

/// The attach step: runs once, after the static objects of the registrations. False would make the loading fail.
bool attachModule(base::ModuleHandle instance);

/// The detach step. Registered commands stay with the host, resource translation stays as it is.
void detachModule(base::ModuleHandle instance, void* reserved);

}  // namespace torvel
