// The host's translation of resources. Every function asks the host core library or, when that is not loaded, the
// host's resource library.
#pragma once

#include "base/modules.h"

namespace torvel {

/// Makes the module's resources translatable; 0 when the host cannot.
int InitResourceTranslation(base::ModuleHandle instance);

/// The way back; 0 when the host cannot. Unloading does not call it: the host drops a module's translations by itself.
int DeInitResourceTranslation(base::ModuleHandle instance);

/// The string as it stands in the module's resources, cut to fit into `size` bytes with a zero at the end. Returns its
/// length; 0 when there is no such string. Without a host that offers it the string comes from base::loadNarrowString.
int LoadStringNotTranslated(base::ModuleHandle instance, unsigned id, char* buffer, int size);

}  // namespace torvel
